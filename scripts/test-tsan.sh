#!/usr/bin/env bash
# Stage of scripts/test.sh: the library and the threads test alone, built
# with ThreadSanitizer: several instances driven from several threads at
# once, while others are created and stopped, must race on nothing and
# forecast exactly as the same logs run one after another.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
build=${KEZ_TSAN_BUILD:-build-tsan}
flags=-fsanitize=thread

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKEZ_BUILD_TOOLS=OFF -DKEZ_BUILD_JAVA=OFF -DKEZ_BUILD_BENCHMARKS=OFF \
  "-DCMAKE_C_FLAGS=$flags" "-DCMAKE_CXX_FLAGS=$flags" \
  "-DCMAKE_EXE_LINKER_FLAGS=$flags" "-DCMAKE_SHARED_LINKER_FLAGS=$flags"
cmake --build "$build" -j "$(nproc)" --target InstanceThreads_test
TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:second_deadlock_stack=1} \
  ctest --no-tests=error --test-dir "$build" -R '^InstanceThreads_test$' --output-on-failure
