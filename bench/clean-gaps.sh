#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Responsiveness of the results window during a clean of many groups: makes
# GROUPS groups of 2 small files in a temporary folder, then runs the real
# windows offscreen (bench/ui/clean-frame-gaps), which cleans every copy but
# the first of each group, and prints, per run, the longest gap between 10 ms
# ticks of a GUI-thread timer from the click on Clean to the done message
# (target: under 100 ms).
# usage: bench/clean-gaps.sh [RUNS] [GROUPS] [--trash]   (default 3, 50000)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
runs=${1:-3}
groups=${2:-50000}
mode=${3:-}
BUILD_DIR=${BUILD_DIR:-$here/../build}
cmake --build "$BUILD_DIR" --target clean-frame-gaps >/dev/null
dir=$(mktemp -d "${TMPDIR:-/tmp}/twinsweep-clean-gaps-XXXXXX")
trap 'rm -rf "$dir"' EXIT
export QT_QPA_PLATFORM=offscreen
# The Trash, undo records and lock of the runs stay in the temporary folder.
export XDG_DATA_HOME=$dir/data XDG_STATE_HOME=$dir/state XDG_RUNTIME_DIR=$dir/run
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
for i in $(seq "$runs"); do
  rm -rf "$dir/t"
  python3 "$here/make-pairs.py" "$dir/t" "$groups"
  out=$("$BUILD_DIR/bench/clean-frame-gaps" $mode "$dir/t" 2>/dev/null)
  echo "run $i: $out; $(find "$dir/t" -type f | wc -l) files left (expected $groups)"
done
