#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A search of the t2 tree through the real progress window (offscreen,
# bench/ui/progress-window-bench) against twinsweep-cli on the same tree, in
# one run: hot cache, median of 5 each, runs interleaved so both see the same
# machine load. Prints the medians and their ratio (target: at most 1.15).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
BUILD_DIR=${BUILD_DIR:-$here/../build}
cmake --build "$BUILD_DIR" --target twinsweep-cli progress-window-bench >/dev/null
make_tree t2 --files 300000 --seed 11 --median-kb 2 --max-mb 0.0625
tree=$TREES/t2
cli=("$BUILD_DIR/src/cli/twinsweep-cli" --any-location "$tree")
win=("$BUILD_DIR/bench/progress-window-bench" --any-location "$tree")
export QT_QPA_PLATFORM=offscreen

"${cli[@]}" > /dev/null # warm the cache
"${win[@]}" > /dev/null
# Whole processes on both sides; the window's own click-to-results time too.
cli_times=() win_times=() click_times=()
for _ in 1 2 3 4 5; do
  s=$(date +%s.%N); "${cli[@]}" > /dev/null; e=$(date +%s.%N)
  cli_times+=("$(echo "$e - $s" | bc -l)")
  s=$(date +%s.%N); out=$("${win[@]}"); e=$(date +%s.%N)
  win_times+=("$(echo "$e - $s" | bc -l)")
  click_times+=("$(echo "$out" | cut -d' ' -f1)")
done
python3 - "${cli_times[*]}" "${win_times[*]}" "${click_times[*]}" <<'PY'
import statistics, sys
cli, win, click = ([float(x) for x in a.split()] for a in sys.argv[1:4])
c, w, k = statistics.median(cli), statistics.median(win), statistics.median(click)
print(f"twinsweep-cli            median {c:.3f} s")
print(f"progress window process  median {w:.3f} s  (click to results {k:.3f} s)")
print(f"ratio window/cli {w / c:.3f} (target <= 1.15)")
PY
