#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Remembered fingerprints: the second cold search with --cache against the
# first (which fills the store), against a search without it, and against
# jdupes, all in the same run. Cold: the page cache is dropped before each
# search (needs root). Every search with and without the store must print the
# same report, byte for byte.
# usage: bench/cache.sh [twinsweep-cli] [t2 file count (default 300000)]
set -euo pipefail
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$HERE/common.sh"
CLI=${1:-$HERE/../build-release/src/cli/twinsweep-cli}
T2_FILES=${2:-300000}
command -v jdupes >/dev/null || { echo "cache.sh: jdupes is not installed" >&2; exit 1; }
make_tree t1 --files 30000 --seed 7
make_tree "t2-$T2_FILES" --files "$T2_FILES" --seed 11 --median-kb 2 --max-mb 0.0625
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

cold() { sync; echo 3 > /proc/sys/vm/drop_caches; }
# seconds NAME COMMAND...: runs cold, prints the wall time, keeps the output in $WORK/NAME.
seconds() {
  local name=$1; shift
  cold
  local start end
  start=$(date +%s.%N)
  "$@" > "$WORK/$name" 2> "$WORK/$name.err"
  end=$(date +%s.%N)
  python3 -c "print(f'{$end - $start:.2f}')"
}

printf '| tree | first with --cache | second with --cache | without | jdupes | second vs first | second vs jdupes |\n'
printf '|---|---:|---:|---:|---:|---:|---:|\n'
for tree in t1 "t2-$T2_FILES"; do
  export XDG_CACHE_HOME=$WORK/cache-$tree
  first=$(seconds first "$CLI" --any-location --cache "$TREES/$tree")
  second=$(seconds second "$CLI" --any-location --cache "$TREES/$tree")
  plain=$(seconds plain "$CLI" --any-location "$TREES/$tree")
  peer=$(seconds jdupes jdupes -r -q "$TREES/$tree")
  cmp -s "$WORK/first" "$WORK/plain" && cmp -s "$WORK/second" "$WORK/plain" ||
    { echo "cache.sh: $tree: the reports with and without the store differ" >&2; exit 1; }
  store=$(du -k "$XDG_CACHE_HOME/twinsweep/fingerprints.sqlite" | cut -f1)
  python3 -c "print(f'| $tree | $first s | $second s | $plain s | $peer s | {$first/$second:.2f}x | {$peer/$second:.2f}x |')"
  echo "$tree: store $store KiB; reports identical with and without the store" >&2
done
