#!/usr/bin/env bash
# Stage of scripts/test.sh: the library, the tools and the whole C++ test
# suite built with AddressSanitizer + UndefinedBehaviorSanitizer and gcov
# coverage, in one build (Debug, so that coverage maps to lines). Every test
# must pass without a sanitizer report: the library's, the tools' (reader,
# replay, evaluation, tuning, table tool, each run as a person runs it) and
# the JVM tests, with the sanitized libkez.so loaded into the JVM and the
# AddressSanitizer runtime preloaded (java/CMakeLists.txt), so that the JNI
# bridge is checked as well. Then the line and branch coverage of each
# library folder is printed and the search, predictor and interface code
# must reach 95 % of lines (scripts/coverage-report.sh). The soak runs 60
# days here (past the 30-day ring); the native build runs the full year.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES gcovr default-jdk-headless junit4
build=${KEZ_SANITIZE_BUILD:-build-sanitize}
jobs=$(nproc)
flags="--coverage -fprofile-update=atomic"

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DKEZ_SANITIZE=ON \
  -DKEZ_BUILD_TOOLS=ON -DKEZ_BUILD_JAVA=ON -DKEZ_BUILD_BENCHMARKS=OFF \
  "-DCMAKE_C_FLAGS=$flags" "-DCMAKE_CXX_FLAGS=$flags" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage
cmake --build "$build" -j "$jobs"

# Counts from an earlier run would blur the report.
find "$build" -name '*.gcda' -delete
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
KEZ_SOAK_DAYS=60 ctest --no-tests=error --test-dir "$build" --output-on-failure -j "$jobs"
scripts/coverage-report.sh "$build"
