#!/usr/bin/env bash
# Stage of scripts/test.sh: every fuzz target (fuzz/) built with clang's
# libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer, and run as a
# CTest test for a fixed number of inputs from a fixed seed (KEZ_FUZZ_RUNS,
# 20000 by default), starting from the seed corpus in fuzz/corpus/. To fuzz
# for longer, see docs/RELIABILITY.md.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES clang-14 libclang-rt-14-dev
build=${KEZ_FUZZ_BUILD:-build-fuzz}
jobs=$(nproc)

CC=clang-14 CXX=clang++-14 cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKEZ_BUILD_FUZZ=ON -DKEZ_SANITIZE=ON -DKEZ_BUILD_TESTS=OFF -DKEZ_BUILD_TOOLS=ON \
  -DKEZ_BUILD_JAVA=OFF -DKEZ_BUILD_BENCHMARKS=OFF \
  ${KEZ_FUZZ_RUNS:+-DKEZ_FUZZ_RUNS=$KEZ_FUZZ_RUNS}
cmake --build "$build" -j "$jobs" --target kez_fuzzers
ctest --no-tests=error --test-dir "$build" -L fuzz --output-on-failure -j "$jobs"
