#!/usr/bin/env bash
# Builds the library and kez-forecast, then forecasts the next day of the
# bundled example log. Extra arguments go to kez-forecast (try --help, or
# --svg forecast.svg for a chart).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
cmake -S . -B build >/dev/null
cmake --build build --target kez-forecast -j "$(nproc)" >/dev/null
exec build/tools/kez-forecast/kez-forecast examples/routine-35d.csv "$@"
