"""kez.fleet.evaluate: one task per log, pooled as kez-eval pools; the same
report in process, on two local worker processes, and with a worker killed
mid-run; unreadable logs are reported and the rest go on."""

import os
import signal
import threading
import time

import pytest

import kez
from conftest import BUNDLED, tool


@pytest.fixture(scope="module")
def fleet(tmp_path_factory):
    """Eight simulated users of three weeks, and the bundled log."""
    table = kez.simulate_fleet(8, tmp_path_factory.mktemp("fleet"), days=21, seed=11)
    return list(table["path"]) + [BUNDLED]


@pytest.fixture(scope="module")
def expected(fleet):
    return tool("kez-eval", "--format", "csv", *fleet)


def test_in_process_pools_as_kez_eval(fleet, expected):
    report = kez.fleet.evaluate(fleet)
    assert report.failures == []
    assert [e.source for e in report.logs] == fleet
    assert report.to_csv() == expected
    assert report.to_json() == tool("kez-eval", "--format", "json", *fleet)
    per_log = report.per_log()
    assert list(per_log.index) == fleet and 24.0 in per_log.columns


def test_two_workers_give_the_same_report(cluster, fleet, expected):
    assert len(cluster.scheduler_info()["workers"]) == 2
    report = kez.fleet.evaluate(fleet, client=cluster)
    assert report.to_csv() == expected
    # Completion order does not matter: reversed input, reversed logs, the
    # same pooled figures (pooling follows the input order).
    reverse = kez.fleet.evaluate(fleet[::-1], client=cluster)
    assert reverse.pooled.levels.equals(
        kez.fleet.evaluate(fleet[::-1]).pooled.levels)


def test_a_worker_killed_mid_run_changes_nothing(cluster, fleet, expected):
    pids = cluster.run(os.getpid)
    outcome = {}

    def run():
        outcome["report"] = kez.fleet.evaluate(fleet * 2, client=cluster)

    thread = threading.Thread(target=run)
    thread.start()
    victim = None
    deadline = time.monotonic() + 60
    while victim is None and time.monotonic() < deadline:
        for address, tasks in cluster.processing().items():
            if tasks and address in pids:
                victim = address
                break
        time.sleep(0.05)
    assert victim is not None, "no task started"
    os.kill(pids[victim], signal.SIGKILL)
    thread.join(300)
    assert not thread.is_alive()
    expected_twice = tool("kez-eval", "--format", "csv", *(fleet * 2))
    assert outcome["report"].to_csv() == expected_twice
    # The nanny starts a new worker; the cluster is whole again.
    cluster.wait_for_workers(2, timeout=60)


def test_unreadable_logs_are_reported_and_the_rest_go_on(cluster, fleet, tmp_path):
    damaged = tmp_path / "damaged.csv"
    damaged.write_text("time_ms,level_percent,charging\n1704067200000,50,maybe\n")
    paths = [fleet[0], str(tmp_path / "missing.csv"), fleet[1], str(damaged)]
    report = kez.fleet.evaluate(paths, client=cluster)
    assert [p for p, _ in report.failures] == paths[1::2]
    assert "missing.csv" in report.failures[0][1]
    assert report.failures[1][1].startswith(str(damaged) + ":2: ")
    assert report.to_csv() == tool("kez-eval", "--format", "csv", fleet[0], fleet[1])


def test_fleet_arguments_are_checked():
    with pytest.raises(ValueError, match="no log"):
        kez.fleet.evaluate([])
    with pytest.raises(ValueError, match="10-minute steps"):
        kez.fleet.evaluate([BUNDLED], horizons_hours=[0.3])
