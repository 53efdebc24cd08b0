#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the libFuzzer targets with clang (AddressSanitizer + UBSan) and runs
# each for a fixed budget. Not part of CI.
# usage: tools/fuzz.sh [SECONDS_PER_TARGET]   (default 60)
set -euo pipefail
cd "$(dirname "$0")/.."
budget=${1:-60}
command -v clang++ >/dev/null || apt-get install -y -q clang libclang-rt-14-dev >/dev/null
dir=build-fuzz
CC=clang CXX=clang++ cmake -S . -B $dir -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTWINSWEEP_BUILD_UI=OFF -DTWINSWEEP_BUILD_TESTS=OFF -DTWINSWEEP_FUZZ=ON \
  -DTWINSWEEP_SANITIZE=address,undefined \
  -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link -fno-sanitize-recover=all" >/dev/null
cmake --build $dir >/dev/null
for target in $dir/tools/fuzz/fuzz-*; do
  name=$(basename "$target")
  corpus=$dir/corpus/$name
  mkdir -p "$corpus"
  [ -d "tools/fuzz/seeds/$name" ] && cp -n tools/fuzz/seeds/$name/* "$corpus"/ 2>/dev/null || true
  echo "== $name for ${budget}s"
  "$target" -max_total_time="$budget" -print_final_stats=1 "$corpus" 2>&1 | tail -n 12
done
