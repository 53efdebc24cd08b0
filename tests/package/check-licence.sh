#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Every source file of ours carries the licence line on its first line (the
# second after a #! line or an editor's mode line); fails naming those that don't.
# Usage: check-licence.sh SOURCE_DIR
set -uo pipefail
cd "$1" || exit 1
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
  files=$(git ls-files)
else
  files=$(find . -type f -not -path './build*' -not -path './.git/*' | sed 's|^\./||')
fi
missing=0
checked=0
while IFS= read -r f; do
  [ -f "$f" ] || continue
  case "$f" in
    tools/fuzz/seeds/*) continue ;;
    *.cpp | *.h | *.sh | *.py | *.cmake | *CMakeLists.txt | *.1 | data/completion/*) ;;
    *) head -c 2 "$f" | grep -q '^#!' || continue ;;
  esac
  checked=$((checked + 1))
  if ! head -n 2 "$f" | grep -q 'SPDX-License-Identifier: GPL-3.0-or-later$'; then
    echo "no licence line: $f"
    missing=$((missing + 1))
  fi
done <<<"$files"
[ -s LICENSE ] && grep -q 'GNU GENERAL PUBLIC LICENSE' LICENSE || { echo "LICENSE missing"; missing=$((missing + 1)); }
echo "$checked source files checked, $missing without the licence line"
[ "$missing" -eq 0 ]
