#!/usr/bin/env bash
# The Python package's tests: builds the extension and the command-line tools
# (whose output the Python figures are compared with) in the native build
# folder, then runs pytest under Debian's /usr/bin/python3 with the package
# on PYTHONPATH. The fleet tests start a local Dask cluster of two worker
# processes.
#
#   scripts/test-python.sh [BUILD]      (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES python3-dev pybind11-dev python3-pybind11 \
  python3-numpy python3-pandas python3-dask python3-distributed \
  python3-matplotlib python3-pytest
build=${1:-build}
python=/usr/bin/python3
cmake -S . -B "$build" -DKEZ_BUILD_PYTHON=ON >/dev/null
cmake --build "$build" -j "$(nproc)" --target kez_python kez-eval kez-forecast \
  kez-simulate kez-tune
build=$(cd "$build" && pwd)
export KEZ_BUILD=$build
export PYTHONPATH=$build/python${PYTHONPATH:+:$PYTHONPATH}
# Every test is meant to run: pytest's "no tests collected" (exit status 5)
# is a failure here too.
"$python" -m pytest -q -p no:cacheprovider python/tests
