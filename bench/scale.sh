#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Scale benchmark: twinsweep-cli on a tree of a million small files (most sizes
# unique, sparse), with its wall time and peak memory (/usr/bin/time -v). The
# memory per file is what the run holds beyond an empty run and beyond the
# path bytes themselves:
#   (peak RSS - peak RSS on an empty folder - path bytes) / files
# The peers named in $PEERS (default: jdupes rmlint) run once each on the same
# tree, for time and memory ratios taken in the same run.
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

# measure COMMAND...: prints "seconds max_rss_kib" of one run.
measure() {
  local log
  log=$(mktemp)
  /usr/bin/time -v "$@" > /dev/null 2> "$log"
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
read -r _ base_kib < <(measure "$cli" --any-location "$empty")
rmdir "$empty"
echo "empty folder: peak RSS $base_kib KiB" >&2
# Warm the page cache so every run sees the same tree state.
find "$TREES/$name" -type f > /dev/null
results=$(mktemp)
for i in $(seq "$runs"); do
  read -r t kib < <(measure "$cli" --any-location "$TREES/$name")
  echo "run $i: ${t} s, peak RSS ${kib} KiB" >&2
  echo "$t $kib" >> "$results"
done
scratch=$(mktemp -d)
peers=()
for peer in ${PEERS:-jdupes rmlint}; do
  command -v "$peer" > /dev/null || apt-get install -y -q "$peer" > /dev/null
  case $peer in
    jdupes|fdupes) cmd=("$peer" -r -q "$TREES/$name") ;;
    rmlint) cmd=(rmlint -T df -o "fdupes:$scratch/rmlint.out" "$TREES/$name") ;;
    rdfind) cmd=(rdfind -dryrun true -outputname "$scratch/rdfind.out" "$TREES/$name") ;;
    *) echo "unknown peer $peer" >&2; continue ;;
  esac
  read -r t kib < <(measure "${cmd[@]}")
  echo "$peer: ${t} s, peak RSS ${kib} KiB" >&2
  peers+=("$peer:$t:$kib")
done
rm -rf "$scratch"
python3 - "$results" "$files" "$path_bytes" "$base_kib" "${peers[@]}" <<'PY'
import statistics, sys
rows = [tuple(map(float, l.split())) for l in open(sys.argv[1])]
files, path_bytes, base = int(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
peers = [p.split(":") for p in sys.argv[5:]]
t = statistics.median(r[0] for r in rows)
kib = statistics.median(r[1] for r in rows)
per = (kib * 1024 - base * 1024 - path_bytes) / files
print(f"files {files}, path bytes {path_bytes}, empty-run peak RSS {base} KiB")
print(f"median of {len(rows)}: {t:.2f} s, peak RSS {kib:.0f} KiB, "
      f"{per:.0f} bytes per file beyond the path bytes (target <= 250)")
for name, pt, pk in peers:
    print(f"{name}: {float(pt):.2f} s, peak RSS {int(pk)} KiB; "
          f"twinsweep-cli/{name}: time {t / float(pt):.2f}, memory {kib / int(pk):.2f}")
PY
rm -f "$results"
