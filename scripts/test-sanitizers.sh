#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Second test stage: the core, selection and command-line tests built
# with AddressSanitizer + UndefinedBehaviorSanitizer, and again with
# ThreadSanitizer. Any report fails the stage.
set -euo pipefail
cd "$(dirname "$0")/.."
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
for kind in asan tsan; do
  case $kind in
    asan) san="address,undefined" ;;
    tsan) san="thread" ;;
  esac
  dir=build-$kind
  BUILD_DIR=$dir bash scripts/build.sh -DTWINSWEEP_BUILD_UI=OFF -DTWINSWEEP_SANITIZE=$san \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="-O1 -fno-sanitize-recover=all" >/dev/null
  echo "== tests under $san =="
  (cd "$dir" && ctest --output-on-failure --parallel "$(nproc)" --timeout 900 -E '^ui')
done
