#!/usr/bin/env bash
# Builds everything and runs every test: the native build (C++ unit tests,
# the JVM tests of the Java binding, the year-long soak and valgrind over the
# command-line demo), then the library and its unit tests cross-built for
# arm64 and run under qemu, with the check that arm64 forecasts of the
# bundled log are bit-identical to the native ones, the install check, the
# Python package's tests (pytest, with a local Dask cluster), and last the reliability
# stages of docs/RELIABILITY.md: sanitizers with coverage, fuzzing and
# ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
# The Java binding's tests (a JDK and JUnit 4), the arm64 cross build, and
# valgrind for the memcheck test of the native build.
kez_require default-jdk-headless junit4 g++-aarch64-linux-gnu qemu-user valgrind
jobs=$(nproc)

# Prints how long each stage took.
stage() {
  local name=$1 start=$SECONDS
  shift
  echo "==== kez: $name" >&2
  "$@"
  echo "==== kez: $name took $((SECONDS - start)) s" >&2
}

native() {
  cmake -S . -B build
  cmake --build build -j "$jobs"
  ctest --no-tests=error --test-dir build --output-on-failure -j "$jobs"
}

# arm64: only the library, its unit tests and the bit-identity program.
arm64() {
  cmake -S . -B build-arm64 \
    -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64-linux-gnu.cmake \
    -DKEZ_BUILD_TOOLS=OFF -DKEZ_BUILD_BENCHMARKS=OFF -DKEZ_BUILD_JAVA=OFF \
    -DKEZ_NATIVE_FORECAST_DUMP="$PWD/build/tests/portability/kez-forecast-dump"
  cmake --build build-arm64 -j "$jobs"
  ctest --no-tests=error --test-dir build-arm64 --output-on-failure -j "$jobs"
}

stage "native build and tests" native
stage "arm64 build and tests" arm64
stage "install and packages" scripts/test-install.sh
stage "Python package" scripts/test-python.sh
stage "sanitizers and coverage" scripts/test-sanitize.sh
stage "fuzzing" scripts/test-fuzz.sh
stage "ThreadSanitizer" scripts/test-tsan.sh
