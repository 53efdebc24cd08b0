#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Walk benchmark: the engine's folder walk alone against `find -type f -printf '%s\n'`
# on the same tree: hot cache (median of 5), then, as root, cold (the page,
# folder and inode caches dropped before every run; median of 3).
# usage: bench/walk.sh   (trees go to $TWINSWEEP_TREES, default /tmp/twinsweep-trees)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
command -v hyperfine >/dev/null || apt-get install -y -q hyperfine >/dev/null
BUILD_DIR=${BUILD_DIR:-$here/../build-release}
cmake -S "$here/.." -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTWINSWEEP_BUILD_UI=OFF \
  -DTWINSWEEP_BUILD_TESTS=OFF >/dev/null
cmake --build "$BUILD_DIR" --target walk-only >/dev/null
make_tree t2 --files 300000 --seed 11 --median-kb 2 --max-mb 0.0625
T="$TREES/t2"
out=$(mktemp)
report() {
  medians "$out" | tee /dev/stderr | python3 -c '
import sys
rows = [l.split("\t") for l in sys.stdin.read().splitlines()]
find, walk = float(rows[0][0]), float(rows[1][0])
print(f"'"$1"': find {find:.3f} s, walk {walk:.3f} s, ratio walk/find {walk/find:.2f}")'
}
hyperfine --warmup 2 --runs 5 --export-json "$out" \
  "find $T -type f -printf '%s\n' > /dev/null" \
  "$BUILD_DIR/bench/walk-only $T > /dev/null" >&2
report hot
if [ -w /proc/sys/vm/drop_caches ]; then
  hyperfine --runs 3 --prepare 'sync; echo 3 > /proc/sys/vm/drop_caches' --export-json "$out" \
    "find $T -type f -printf '%s\n' > /dev/null" \
    "$BUILD_DIR/bench/walk-only $T > /dev/null" >&2
  report cold
else
  echo "cold: skipped (dropping the page cache needs root)"
fi
rm -f "$out"
