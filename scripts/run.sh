#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The one run command: installs what the project needs, builds the desktop
# application and starts it. Extra arguments go to cmake on first configure.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
BUILD_DIR=${BUILD_DIR:-build}
if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
  GEN=()
  command -v ninja >/dev/null && GEN=(-G Ninja)
  # Only the programs: the tests need what a run-only install leaves out.
  cmake -S . -B "$BUILD_DIR" "${GEN[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTWINSWEEP_BUILD_TESTS=OFF -DTWINSWEEP_BUILD_BENCH=OFF "$@"
fi
cmake --build "$BUILD_DIR" --target twinsweep --parallel "$(nproc)"
if [ "$(uname)" = Linux ] && [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] &&
   [ -z "${QT_QPA_PLATFORM:-}" ]; then
  echo "twinsweep is built ($BUILD_DIR/src/ui/twinsweep) but there is no display to show it on." >&2
  echo "Run this from a desktop session, or under a virtual one: xvfb-run -a $BUILD_DIR/src/ui/twinsweep" >&2
  exit 1
fi
exec "$BUILD_DIR/src/ui/twinsweep"
