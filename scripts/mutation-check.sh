#!/usr/bin/env bash
# Mutation check, to run before a release: plants each fault listed in
# scripts/mutation-faults.txt, one at a time, in a copy of the tree, builds
# it and runs the native test suite, and reports which tests caught the
# fault. Every fault must be caught by at least one test; the script fails
# when one is missed, when its pattern no longer matches the code (the list
# must follow the code), or when the planted fault does not build.
#
# Usage: scripts/mutation-check.sh [NAME_REGEX]
#   NAME_REGEX  only the faults whose name matches (grep -E)
# Environment:
#   KEZ_MUTATION_DIR  work directory to use and keep (the copy and its
#                     build), so that a second run rebuilds only what a
#                     fault touches; default: a fresh temporary directory,
#                     removed at the end
#   KEZ_MUTATION_CTEST_ARGS  arguments for every ctest run (default: the
#                     whole native suite but the year-long soak and
#                     valgrind, which catch nothing the others miss and
#                     take longest)
#
# The copy holds the working tree as it is (tracked and untracked files,
# without ignored ones), so uncommitted changes are checked too. The tree
# itself is never touched. See docs/RELIABILITY.md for how to add a fault.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES default-jdk-headless junit4
only=${1:-}
jobs=$(nproc)
ctest_args=${KEZ_MUTATION_CTEST_ARGS:--LE soak|valgrind}

if [ -n "${KEZ_MUTATION_DIR:-}" ]; then
  work=$KEZ_MUTATION_DIR
  mkdir -p "$work"
else
  work=$(mktemp -d "${TMPDIR:-/tmp}/kez-mutation-XXXXXX")
  trap 'rm -rf "$work"' EXIT
fi
src=$work/src
build=$work/build
log=$work/log
mkdir -p "$log"

# The copy: every file git would see, as it is in the working tree, made
# afresh (no file the tree no longer has); tar keeps the files' times, so a
# kept build rebuilds only what changed since.
rm -rf "$src"
mkdir -p "$src"
git ls-files -z --cached --others --exclude-standard |
  tar --null -T - -cf - | tar -xf - -C "$src"

cmake -S "$src" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKEZ_BUILD_BENCHMARKS=OFF >"$log/configure.txt" 2>&1 ||
  { echo "mutation-check: configure failed (see $log/configure.txt)" >&2; exit 1; }

# Builds and runs the suite; prints the names of the failed tests, one a line.
# Returns 2 when the build fails.
run_suite() {
  local tag=$1
  if ! cmake --build "$build" -j "$jobs" >"$log/build-$tag.txt" 2>&1; then
    return 2
  fi
  rm -f "$build/Testing/Temporary/LastTestsFailed.log"
  # shellcheck disable=SC2086
  ctest --test-dir "$build" --no-tests=error -j "$jobs" $ctest_args \
    >"$log/test-$tag.txt" 2>&1 || true
  if [ -f "$build/Testing/Temporary/LastTestsFailed.log" ]; then
    cut -d: -f2- "$build/Testing/Temporary/LastTestsFailed.log"
  fi
}

echo "mutation-check: work directory $work" >&2
echo "mutation-check: unchanged tree first" >&2
set +e
baseline=$(run_suite baseline)
status=$?
set -e
if [ $status -eq 2 ]; then
  echo "mutation-check: the unchanged tree does not build (see $log/build-baseline.txt)" >&2
  exit 1
fi
if [ -n "$baseline" ]; then
  echo "mutation-check: the unchanged tree fails these tests already:" >&2
  echo "$baseline" >&2
  exit 1
fi

caught=0
missed=0
broken=0
printf '%-44s %s\n' "FAULT" "RESULT"
while IFS= read -r line; do
  case $line in '' | '#'*) continue ;; esac
  name=$(printf '%s' "$line" | awk -F' [|] ' '{print $1}')
  file=$(printf '%s' "$line" | awk -F' [|] ' '{print $2}')
  expr=$(printf '%s' "$line" | awk -F' [|] ' '{print $3}')
  if [ -n "$only" ] && ! printf '%s' "$name" | grep -Eq -- "$only"; then continue; fi
  if [ ! -f "$src/$file" ]; then
    printf '%-44s %s\n' "$name" "STALE: no file $file"
    broken=$((broken + 1))
    continue
  fi
  cp "$root/$file" "$src/$file"
  sed -i -e "$expr" "$src/$file"
  if cmp -s "$root/$file" "$src/$file"; then
    printf '%-44s %s\n' "$name" "STALE: the expression changes nothing in $file"
    broken=$((broken + 1))
    continue
  fi
  set +e
  failed=$(run_suite "$name")
  status=$?
  set -e
  cp "$root/$file" "$src/$file"  # back to the original (a newer time: rebuilt)
  if [ $status -eq 2 ]; then
    printf '%-44s %s\n' "$name" "BROKEN: does not build (see $log/build-$name.txt)"
    broken=$((broken + 1))
  elif [ -n "$failed" ]; then
    printf '%-44s %s\n' "$name" "caught by $(echo "$failed" | paste -sd, - | sed 's/,/, /g')"
    caught=$((caught + 1))
  else
    printf '%-44s %s\n' "$name" "MISSED"
    missed=$((missed + 1))
  fi
done <scripts/mutation-faults.txt

# Leave the copy's build as the tree is, for the next run.
cmake --build "$build" -j "$jobs" >"$log/build-restored.txt" 2>&1 || true

echo "mutation-check: $caught caught, $missed missed, $broken stale or broken"
[ $missed -eq 0 ] && [ $broken -eq 0 ]
