#!/usr/bin/env bash
# Builds the Debian package: installs what the project needs, builds into
# build/ (or $BUILD_DIR), and writes build/twinsweep_VERSION_ARCH.deb with
# CPack. Install it with: sudo apt install ./build/twinsweep_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
BUILD_DIR=${BUILD_DIR:-build}
bash scripts/build.sh
(cd "$BUILD_DIR" && cpack -G DEB >/dev/null)
ls "$BUILD_DIR"/twinsweep_*.deb
