#!/usr/bin/env bash
# How many faults does the test suite catch? Applies a fixed, seeded list of
# small faults (mutants) to the core's sources one at a time, builds, runs the
# suite, and prints the kill rate. A mutant is killed when a test fails or the
# suite runs out of time, survives when everything passes, and is not viable
# when it does not compile (those stay out of the rate).
#
#   bash scripts/mutate.sh [--commit REV] [--seed N] [--limit N | --only ID,...]
#                          [--list] [--dir /work/NAME] [--keep]
#
#   --commit REV  the tree to test (default HEAD)
#   --seed N      another draw of mutants (the default gives the reference list)
#   --limit N     the first N of the list; --only ID,... exactly those
#   --list        print the mutants (ID and the mutated line) and stop
#   --dir DIR     the scratch tree (default /work/mut-run); ccache shares
#                 objects only between trees at the same depth under /work
#   --keep        leave the scratch tree and its build for the next run
#
# The working tree is never touched: the commit is checked out into the
# scratch tree with its own build folder (no windows, no benchmarks).
#
# A mutant takes 2 to 60 s on two shared cores: one file is compiled, the
# test programs relinked, and the suite stops at the first failure; a
# survivor costs a whole suite run. The reference list (202 mutants) takes
# about 45 minutes. The suite is measured once without mutants; a mutant that
# keeps it running three times as long (at least 120 s) is killed by time.
# Some mutants cannot be told apart from the original (std::nearbyint of an
# exact power of ten, for one); read the survivors before counting them as gaps.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
# Run from inside the repository; the tool may be a copy kept elsewhere, so
# that editing it does not disturb a long run.
cd "$(git rev-parse --show-toplevel)"

rev=HEAD dir=/work/mut-run keep=0 listing=0 pick=()
while [ $# -gt 0 ]; do
  case "$1" in
    --commit) rev="$2"; shift 2 ;;
    --seed) pick+=(--seed "$2"); shift 2 ;;
    --limit) pick+=(--limit "$2"); shift 2 ;;
    --only) pick+=(--only "$2"); shift 2 ;;
    --dir) dir="$2"; shift 2 ;;
    --keep) keep=1; shift ;;
    --list) listing=1; shift ;;
    *) echo "mutate.sh: unknown option $1 (see the head of the script)" >&2; exit 2 ;;
  esac
done
rev="$(git rev-parse --verify "$rev^{commit}")"

mutants="$(python3 "$here/mutate.py" list --rev "$rev" "${pick[@]}")"
if [ "$listing" -eq 1 ]; then
  printf '%s\n' "$mutants"
  exit 0
fi

if [ -d "$dir" ]; then
  git -C "$dir" checkout --quiet --force --detach "$rev"
else
  git worktree add --quiet --detach "$dir" "$rev"
fi
cleanup() {
  if [ "$keep" -eq 0 ]; then git worktree remove --force "$dir"; fi
}
trap cleanup EXIT

build() { cmake --build "$dir/build" -j2 </dev/null >"$dir/build.log" 2>&1; }
# Tests are found when the suite runs, not after each link, so a mutant that
# breaks a test program still builds and is then killed by the suite.
cmake -S "$dir" -B "$dir/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DLOTWISE_GUI=OFF -DLOTWISE_BENCHMARKS=OFF \
  -DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST >/dev/null
build || { echo "mutate.sh: $rev does not build, see $dir/build.log" >&2; exit 1; }

suite() { timeout -k 10 "$1" ctest --test-dir "$dir/build" -j2 --stop-on-failure </dev/null >"$dir/suite.log" 2>&1; }
start=$SECONDS
suite 1800 || { echo "mutate.sh: the suite fails without mutants, see $dir/suite.log" >&2; exit 1; }
# A mutant that loops forever or slows the suite down a lot is killed by time.
limit=$(((SECONDS - start) * 3))
[ "$limit" -ge 120 ] || limit=120
echo "commit ${rev:0:10}: suite $((SECONDS - start)) s without mutants, $limit s allowed per mutant"

killed=0 survived=0 unviable=0 survivors=()
while IFS=$'\t' read -r id line; do
  file="${id%%:*}"
  start=$SECONDS
  if ! python3 "$here/mutate.py" apply "$dir" "$id" || ! build; then
    outcome="not viable"
    unviable=$((unviable + 1))
  elif suite "$limit"; then
    outcome=survived
    survived=$((survived + 1))
    survivors+=("$id	$line")
  else
    status=$?
    outcome=killed
    [ "$status" -lt 124 ] || outcome="killed (time)"
    killed=$((killed + 1))
  fi
  git -C "$dir" checkout --quiet -- "$file"
  printf '%-52s %-14s %4d s\n' "$id" "$outcome" $((SECONDS - start))
done <<<"$mutants"

total=$((killed + survived))
echo "killed $killed, survived $survived, not viable $unviable"
if [ "$total" -gt 0 ]; then
  awk -v k="$killed" -v t="$total" 'BEGIN { printf "kill rate %.1f %% (%d of %d)\n", 100 * k / t, k, t }'
fi
for survivor in "${survivors[@]}"; do echo "survivor: $survivor"; done
