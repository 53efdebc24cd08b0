# SPDX-License-Identifier: GPL-3.0-or-later
# Shared by the benchmark scripts: where trees live and how they are made.
TREES=${TWINSWEEP_TREES:-/tmp/twinsweep-trees}
MAKE_TREE=${MAKE_TREE:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/bench/make-tree.py}
[ -f "$MAKE_TREE" ] || MAKE_TREE=/work/shared/bench/make-tree.py

# make_tree NAME ARGS...: builds $TREES/NAME once (a NAME.done file marks a finished tree).
make_tree() {
  local name=$1; shift
  mkdir -p "$TREES"
  if [ ! -f "$TREES/$name.done" ]; then
    rm -rf "${TREES:?}/$name"
    echo "making $TREES/$name ($*)" >&2
    python3 "$MAKE_TREE" "$TREES/$name" "$@" > "$TREES/$name.summary"
    touch "$TREES/$name.done"
  fi
}

# Median of hyperfine's runs for each command, in seconds, from its JSON export.
medians() {
  python3 - "$1" <<'PY'
import json, statistics, sys
for r in json.load(open(sys.argv[1]))["results"]:
    print(f'{statistics.median(r["times"]):.3f}\t{r["command"]}')
PY
}
