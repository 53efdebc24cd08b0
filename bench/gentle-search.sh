#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Whether a search of t1 pushes the user's working files out of the page
# cache, and what it costs: the search's time hot (tree cached) and cold
# (tree dropped first), and the pages of the tree left cached after a cold
# search, for two builds of twinsweep-cli.
#
# usage: bench/gentle-search.sh BEFORE_CLI AFTER_CLI   (as root)
# The working file (64 MiB) is read, then a cold search runs, both inside a
# memory cgroup limited to 512 MiB (a desktop with little free memory), and
# fincore tells how much of the working file is still cached.
set -euo pipefail
. "$(dirname "$0")/common.sh"
BEFORE=$1
AFTER=$2
ROUNDS=${ROUNDS:-3}
make_tree t1 --files 30000 --seed 7
T1=$TREES/t1
WORK=$TREES/working-file
[ -f "$WORK" ] || head -c $((64 << 20)) /dev/urandom > "$WORK"

CG=/sys/fs/cgroup/memory/twinsweep-gentle
if [ -d /sys/fs/cgroup/memory ]; then
  mkdir -p "$CG"
  echo $((512 << 20)) > "$CG/memory.limit_in_bytes"
  enter() { echo $BASHPID > "$CG/tasks"; }
else
  CG=/sys/fs/cgroup/twinsweep-gentle
  mkdir -p "$CG"
  echo $((512 << 20)) > "$CG/memory.max"
  enter() { echo $BASHPID > "$CG/cgroup.procs"; }
fi

# Drops the tree and the working file from the page cache, file by file.
drop() {
  python3 - "$T1" "$WORK" <<'PY'
import os, sys
def drop(p):
    try:
        fd = os.open(p, os.O_RDONLY)
    except OSError:
        return
    os.posix_fadvise(fd, 0, 0, os.POSIX_FADV_DONTNEED)
    os.close(fd)
drop(sys.argv[2])
for d, _, files in os.walk(sys.argv[1]):
    for f in files:
        drop(os.path.join(d, f))
PY
}

cached_mib() { # pages of the tree in the cache, in MiB
  find "$T1" -type f -print0 | xargs -0 fincore -b -n -o RES 2>/dev/null |
    awk '{s += $1} END {printf "%.0f", s / 1048576}'
}

seconds() { # the wall time of one search, in seconds
  local start end
  start=$(date +%s.%N)
  "$1" --any-location "$T1" > /dev/null
  end=$(date +%s.%N)
  echo "$end - $start" | bc
}

median() { sort -n | awk '{a[NR] = $1} END {print a[int((NR + 1) / 2)]}'; }

printf 'build\thot s\tcold s\ttree cached after cold (MiB)\tworking file cached after (MiB, 512 MiB cgroup)\n'
for which in before after; do
  cli=$BEFORE
  [ "$which" = after ] && cli=$AFTER
  hot=$(for _ in $(seq "$ROUNDS"); do find "$T1" -type f -exec cat {} + > /dev/null; seconds "$cli"; done | median)
  cold=$(for _ in $(seq "$ROUNDS"); do drop; seconds "$cli"; done | median)
  left=$(cached_mib)
  drop
  work=$( (enter; cat "$WORK" > /dev/null; "$cli" --any-location "$T1" > /dev/null
          fincore -b -n -o RES "$WORK" | awk '{printf "%.0f", $1 / 1048576}') )
  printf '%s\t%s\t%s\t%s\t%s\n' "$which" "$hot" "$cold" "$left" "$work"
done
rmdir "$CG" 2>/dev/null || true
