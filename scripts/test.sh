#!/usr/bin/env bash
# The one test command: installs what the project needs, builds, runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh
export QT_QPA_PLATFORM=offscreen
cd "${BUILD_DIR:-build}"
ctest --output-on-failure --parallel "$(nproc)" --timeout 600
