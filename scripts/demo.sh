#!/usr/bin/env bash
# Builds the library and the tools, then forecasts the next day of the bundled
# example log with kez-forecast. Extra arguments go to kez-forecast.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
cmake -S . -B build -DKEZ_BUILD_TESTS=OFF -DKEZ_BUILD_BENCHMARKS=OFF -DKEZ_BUILD_JAVA=OFF >/dev/null
cmake --build build --target kez-forecast -j "$(nproc)" >/dev/null
exec build/tools/kez-forecast examples/routine-35d.csv "$@"
