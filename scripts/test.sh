#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The one test command: installs what the project needs, builds, runs every
# test, then the sanitizer stage (scripts/test-sanitizers.sh; skip it locally
# with TWINSWEEP_SKIP_SANITIZERS=1). Ends with the test runner's summary line.
set -uo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --test || exit 1
# Tests on even where a run-only build configured this folder without them.
bash scripts/build.sh -DTWINSWEEP_BUILD_TESTS=ON -DTWINSWEEP_BUILD_BENCH=ON || exit 1
export QT_QPA_PLATFORM=offscreen
log=$(mktemp)
(cd "${BUILD_DIR:-build}" && ctest --output-on-failure --parallel "$(nproc)" --timeout 600) 2>&1 | tee "$log"
main_rc=${PIPESTATUS[0]}
san_rc=0
if [ "${TWINSWEEP_SKIP_SANITIZERS:-0}" != 1 ]; then
  bash scripts/test-sanitizers.sh
  san_rc=$?
  [ $san_rc -eq 0 ] && echo "sanitizer stage: passed" || echo "sanitizer stage: FAILED"
fi
summary=$(grep -E 'tests passed' "$log" | tail -n 1)
rm -f "$log"
echo "${summary:-ctest printed no summary}"
[ $main_rc -eq 0 ] && [ $san_rc -eq 0 ]
