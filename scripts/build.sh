#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Configures and builds into build/ (or $BUILD_DIR). Extra arguments go to cmake.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
GEN=()
command -v ninja >/dev/null && GEN=(-G Ninja)
if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
  cmake -S . -B "$BUILD_DIR" "${GEN[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
elif [ "$#" -gt 0 ]; then
  cmake -S . -B "$BUILD_DIR" "$@"
fi
cmake --build "$BUILD_DIR" --parallel "$(nproc)"
