#!/usr/bin/env bash
# Builds everything and runs every test: the native build (C++ unit tests and
# the JVM tests of the Java binding), then the library and its unit tests
# cross-built for arm64 and run under qemu, with the check that arm64
# forecasts of the bundled log are bit-identical to the native ones.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
# The Java binding's tests (a JDK and JUnit 4) and the arm64 cross build.
kez_require default-jdk-headless junit4 g++-aarch64-linux-gnu qemu-user
jobs=$(nproc)
cmake -S . -B build
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

# arm64: only the library, its unit tests and the bit-identity program.
cmake -S . -B build-arm64 \
  -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64-linux-gnu.cmake \
  -DKEZ_BUILD_TOOLS=OFF -DKEZ_BUILD_BENCHMARKS=OFF -DKEZ_BUILD_JAVA=OFF \
  -DKEZ_NATIVE_FORECAST_DUMP="$PWD/build/tests/portability/kez-forecast-dump"
cmake --build build-arm64 -j "$jobs"
ctest --test-dir build-arm64 --output-on-failure -j "$jobs"
