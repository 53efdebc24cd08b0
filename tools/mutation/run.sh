#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Mutation check of the test suite: for each deliberate fault in mutants.txt,
# applies it in a scratch worktree of COMMIT, rebuilds, runs the suite (minus
# the slow deep-walk case and the package check) and records whether it fails.
#   tools/mutation/run.sh COMMIT [RESULTS.tsv]
# MUTATION_WORKTREE picks the scratch worktree (reused between runs, so only
# what changed is rebuilt; a worktree already at COMMIT is used as it is, and
# must have no changes of its own); MUTATION_ONLY=id1,id2 runs some mutants;
# MUTATION_EXCLUDE=regex leaves more tests out (a test known to be flaky).
set -uo pipefail
# All in one function, read whole before it runs: editing this file while it
# runs changes nothing.
main() {
  here=$(cd "$(dirname "$0")" && pwd)
  repo=$(git -C "$here" rev-parse --show-toplevel)
  commit=$(git -C "$repo" rev-parse "${1:?usage: run.sh COMMIT [RESULTS.tsv]}")
  out=${2:-$PWD/mutation-${commit:0:8}.tsv}
  scratch=${MUTATION_WORKTREE:-/work/wt/mutation}
  list=$here/mutants.txt
  exclude='Walker\.TwentyThousandLevels|^package$'${MUTATION_EXCLUDE:+|$MUTATION_EXCLUDE}
  per_run=${MUTATION_TIMEOUT:-600}

  if [ -d "$scratch" ]; then
    if [ "$(git -C "$scratch" rev-parse HEAD)" != "$commit" ]; then
      git -C "$scratch" checkout -q --detach "$commit" || exit 1
    fi
  else
    git -C "$repo" worktree add -q --detach "$scratch" "$commit" || exit 1
  fi
  mkdir -p "$scratch/build" && cp "$list" "$scratch/build/.mutants.txt" # the list as given
  cd "$scratch" || exit 1
  export CCACHE_BASEDIR=${CCACHE_BASEDIR:-/work} QT_QPA_PLATFORM=offscreen
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER_LAUNCHER=ccache >/dev/null || exit 1
  # The programs the tests run; benchmarks are left out.
  mapfile -t targets < <(ninja -C build -t targets all | grep -oE '^(twinsweep-cli|[a-z]+_tests):' | tr -d :)
  build() { ninja -C build "${targets[@]}" >build/mutation-build.log 2>&1; }
  suite() {
    (cd build && timeout "$per_run" ctest --stop-on-failure -j2 --timeout 300 -E "$exclude" \
      >mutation-ctest.log 2>&1)
  }
  build || { echo "the unmutated build fails; see $scratch/build/mutation-build.log"; exit 1; }
  suite || { echo "the unmutated suite fails; see $scratch/build/mutation-ctest.log"; exit 1; }

  printf 'mutant\tfile\tresult\tseconds\tfirst failure\n' >"$out"
  while IFS=$'\t' read -r id file expr what; do
    [[ -z $id || $id == \#* ]] && continue
    if [ -n "${MUTATION_ONLY:-}" ] && [[ ",$MUTATION_ONLY," != *",$id,"* ]]; then continue; fi
    start=$(date +%s)
    sed -i "$expr" "$file"
    if [ "$(git diff --numstat -- "$file" | cut -f1)" != 1 ]; then
      result="not-applied"; failure=""
    elif ! build; then
      result="no-build"; failure=""
    elif suite; then
      result="MISSED"; failure=""
    else
      result="caught"
      failure=$(grep -m1 -E '^\s*[0-9]+/[0-9]+ Test +#[0-9]+: .*\*\*\*' build/mutation-ctest.log |
        sed -E 's/.*: ([^ ]+) .*/\1/')
    fi
    cp build/mutation-ctest.log "build/mutation-$id.log" 2>/dev/null
    git checkout -q -- "$file"
    printf '%s\t%s\t%s\t%s\t%s\n' "$id" "$file" "$result" $(($(date +%s) - start)) "$failure" | tee -a "$out"
  done < build/.mutants.txt
  build >/dev/null # leave the scratch build unmutated
  echo "results: $out"
}
main "$@"
exit
