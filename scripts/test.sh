#!/usr/bin/env bash
# Builds everything and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES
jobs=$(nproc)
cmake -S . -B build
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"
