#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Cleaning many groups: 120 000 groups of 2 small files, deleted for good.
# Times the search alone (a plain report) and the whole run (search + clean),
# so the clean's own cost is the difference.
#   bash bench/clean-many-groups.sh [twinsweep-cli] [groups]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
CLI=${1:-$here/../build/src/cli/twinsweep-cli}
GROUPS_N=${2:-120000}
DIR=$(mktemp -d "${TMPDIR:-/tmp}/twinsweep-clean-XXXXXX")
trap 'rm -rf "$DIR"' EXIT

make_tree() {
  python3 "$here/make-pairs.py" "$DIR/t" "$GROUPS_N"
}

seconds() {
  local s=$EPOCHREALTIME
  "$@" > /dev/null 2>&1 || true
  awk -v s="$s" -v e="$EPOCHREALTIME" 'BEGIN { printf "%.2f", e - s }'
}

make_tree
echo "search only: $(seconds "$CLI" --any-location "$DIR/t") s"
echo "search + clean: $(seconds "$CLI" --any-location --keep oldest --delete --yes "$DIR/t") s"
echo "files left: $(find "$DIR/t" -type f | wc -l) (expected $GROUPS_N)"
