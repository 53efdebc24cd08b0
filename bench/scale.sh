#!/usr/bin/env bash
# Scale benchmark: twinsweep-cli on a tree of a million small files (most sizes
# unique, sparse), with its wall time and peak memory (/usr/bin/time -v). The
# memory per file is what the run holds beyond an empty run and beyond the
# path bytes themselves:
#   (peak RSS - peak RSS on an empty folder - path bytes) / files
# usage: bench/scale.sh [RUNS]   (default 3; trees go to $TWINSWEEP_TREES)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
runs=${1:-3}
BUILD_DIR=${BUILD_DIR:-$here/../build-release}
cmake -S "$here/.." -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTWINSWEEP_BUILD_UI=OFF \
  -DTWINSWEEP_BUILD_TESTS=OFF >/dev/null
cmake --build "$BUILD_DIR" --target twinsweep-cli >/dev/null
cli=$BUILD_DIR/src/cli/twinsweep-cli

name=scale1m
mkdir -p "$TREES"
if [ ! -f "$TREES/$name.done" ]; then
  rm -rf "${TREES:?}/$name"
  echo "making $TREES/$name (takes a few minutes)" >&2
  python3 "$here/make-scale-tree.py" "$TREES/$name" > "$TREES/$name.summary"
  touch "$TREES/$name.done"
fi
summary=$(cat "$TREES/$name.summary")
files=$(sed -E 's/.*files=([0-9]+).*/\1/' <<<"$summary")
path_bytes=$(sed -E 's/.*path_bytes=([0-9]+).*/\1/' <<<"$summary")

# measure DIR: prints "seconds max_rss_kib" of one run.
measure() {
  local log
  log=$(mktemp)
  /usr/bin/time -v "$cli" --any-location "$1" > /dev/null 2> "$log"
  python3 - "$log" <<'PY'
import re, sys
t = open(sys.argv[1]).read()
rss = int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", t).group(1))
m = re.search(r"Elapsed \(wall clock\) time \(h:mm:ss or m:ss\): (?:(\d+):)?(\d+):([\d.]+)", t)
secs = int(m.group(1) or 0) * 3600 + int(m.group(2)) * 60 + float(m.group(3))
print(f"{secs:.2f} {rss}")
PY
  rm -f "$log"
}

empty=$(mktemp -d)
read -r _ base_kib < <(measure "$empty")
rmdir "$empty"
echo "empty folder: peak RSS $base_kib KiB" >&2
# Warm the page cache so every run sees the same tree state.
find "$TREES/$name" -type f > /dev/null
results=$(mktemp)
for i in $(seq "$runs"); do
  read -r t kib < <(measure "$TREES/$name")
  echo "run $i: ${t} s, peak RSS ${kib} KiB" >&2
  echo "$t $kib" >> "$results"
done
python3 - "$results" "$files" "$path_bytes" "$base_kib" <<'PY'
import statistics, sys
rows = [tuple(map(float, l.split())) for l in open(sys.argv[1])]
files, path_bytes, base = int(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
t = statistics.median(r[0] for r in rows)
kib = statistics.median(r[1] for r in rows)
per = (kib * 1024 - base * 1024 - path_bytes) / files
print(f"files {files}, path bytes {path_bytes}, empty-run peak RSS {base} KiB")
print(f"median of {len(rows)}: {t:.2f} s, peak RSS {kib:.0f} KiB, "
      f"{per:.0f} bytes per file beyond the path bytes (target <= 250)")
PY
rm -f "$results"
