"""Shared fixtures: the repository, the build's command-line tools (whose
output the Python figures must equal), the logs, and one local Dask cluster
of two worker processes for the fleet tests.

Run through scripts/test-python.sh, which builds the package and sets
KEZ_BUILD (the build folder) and PYTHONPATH (its python/ folder)."""

import glob
import json
import os
import subprocess

import pytest

REPO = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
BUILD = os.path.abspath(os.environ.get("KEZ_BUILD", os.path.join(REPO, "build")))
BUNDLED = os.path.join(REPO, "examples", "routine-35d.csv")
TUNED = os.path.join(REPO, "examples", "tuned-simulated-4x60d.txt")
RECORDED = sorted(glob.glob(os.path.join(REPO, "..", "shared", "data", "*.csv")))


def tool(name, *args, cwd=None, check=True):
    """Runs a command-line tool of the build; its standard output."""
    done = subprocess.run([os.path.join(BUILD, "tools", name, name), *args],
                          cwd=cwd, capture_output=True, text=True)
    if check and done.returncode != 0:
        raise AssertionError("%s failed (%d): %s" % (name, done.returncode, done.stderr))
    return done.stdout


def tool_json(name, *args):
    return json.loads(tool(name, *args))


@pytest.fixture(scope="session")
def recorded():
    """One recorded log (the smallest), or skip when none is present."""
    if not RECORDED:
        pytest.skip("no recorded log in ../shared/data")
    return min(RECORDED, key=os.path.getsize)


@pytest.fixture(scope="session")
def cluster():
    """A dask.distributed client on a local cluster of two worker processes
    (one thread each)."""
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1,
                                  processes=True, dashboard_address=None) as c:
        with distributed.Client(c) as client:
            yield client
