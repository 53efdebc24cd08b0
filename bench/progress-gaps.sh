#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Responsiveness of the progress window during a million-file search: runs the
# real windows offscreen (bench/ui/progress-frame-gaps) on the scale tree of
# bench/scale.sh and prints, per run, the longest gap between 10 ms ticks of a
# GUI-thread timer (target: under 100 ms).
# usage: bench/progress-gaps.sh [RUNS]   (default 3)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
runs=${1:-3}
BUILD_DIR=${BUILD_DIR:-$here/../build}
cmake --build "$BUILD_DIR" --target progress-frame-gaps >/dev/null
[ -f "$TREES/scale1m.done" ] || { echo "make the tree first: bash bench/scale.sh" >&2; exit 1; }
export QT_QPA_PLATFORM=offscreen
for i in $(seq "$runs"); do
  echo "run $i: $("$BUILD_DIR/bench/progress-frame-gaps" --any-location "$TREES/scale1m" 2>/dev/null)"
done
