#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian package: installs what building needs, builds the programs
# alone (no tests, no benchmarks) into build-package/ (or $BUILD_DIR), and
# writes build-package/twinsweep_VERSION_ARCH.deb with CPack.
# Install it with: sudo apt install ./build-package/twinsweep_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
export BUILD_DIR=${BUILD_DIR:-build-package}
bash scripts/build.sh -DTWINSWEEP_BUILD_TESTS=OFF -DTWINSWEEP_BUILD_BENCH=OFF
(cd "$BUILD_DIR" && cpack -G DEB >/dev/null)
ls "$BUILD_DIR"/twinsweep_*.deb
