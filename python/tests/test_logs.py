"""Logs: read as the tools read them, simulated as kez-simulate writes them,
and refused with the reader's message (file and line) when damaged."""

import filecmp
import math
import os

import numpy as np
import pandas as pd
import pytest

import kez
from conftest import BUNDLED, tool


def test_read_log_gives_the_file_values():
    log = kez.read_log(BUNDLED)
    raw = pd.read_csv(BUNDLED, comment="#")
    assert len(log) == len(raw)
    assert log.attrs["source"] == BUNDLED
    for column in ("time_ms", "level_percent", "charging"):
        np.testing.assert_array_equal(log[column].to_numpy(), raw[column].to_numpy())
    assert str(log["time"].dt.tz) == "UTC"
    assert log["time"].iloc[0] == pd.Timestamp(int(raw["time_ms"].iloc[0]), unit="ms", tz="UTC")


def test_bad_logs_raise_with_the_readers_message(tmp_path):
    with pytest.raises(FileNotFoundError) as missing:
        kez.read_log(tmp_path / "missing.csv")
    assert "missing.csv" in str(missing.value)

    damaged = tmp_path / "damaged.csv"
    damaged.write_text("time_ms,level_percent,charging\n"
                       "1704067200000,50,0\n"
                       "1704067500000,fifty,0\n")
    with pytest.raises(kez.LogError) as bad:
        kez.read_log(damaged)
    assert bad.value.line == 3
    assert str(bad.value).startswith(str(damaged) + ":3: ")
    assert isinstance(bad.value, ValueError)

    backwards = tmp_path / "backwards.csv"
    backwards.write_text("time_ms,level_percent,charging\n"
                         "1704067500000,50,0\n1704067200000,50,0\n")
    with pytest.raises(kez.LogError, match=r"backwards.csv:3: .*time"):
        kez.evaluate(backwards)

    with pytest.raises(TypeError, match="a log is a path, a pandas DataFrame"):
        kez.evaluate(12345)


def test_frames_get_the_readers_checks():
    frame = pd.DataFrame({"time_ms": [1704067200000, 1704067500000],
                          "level_percent": [50.0, 120.0], "charging": [0, 0]})
    with pytest.raises(kez.LogError, match="DataFrame:3: "):
        kez.evaluate(frame)
    frame["level_percent"] = [50.0, math.nan]
    with pytest.raises(ValueError, match="'level_percent' holds NaN at row 1"):
        kez.evaluate(frame)
    with pytest.raises(ValueError, match="no column 'time_ms'"):
        kez.evaluate(frame.drop(columns=["time_ms"]))


def test_simulate_writes_what_kez_simulate_writes(tmp_path):
    expected = pd.read_csv(pd.io.common.StringIO(
        tool("kez-simulate", "--days", "9", "--seed", "5", "--profile", "shift",
             "--start", "2024-07-01", "--tz-offset", "2")))
    log = kez.simulate("shift", days=9, seed=5, start="2024-07-01", tz_offset_hours=2)
    pd.testing.assert_frame_equal(log.drop(columns=["time"]), expected,
                                  check_dtype=False)
    with pytest.raises(ValueError, match="unknown profile"):
        kez.simulate("sloth")


def test_fleet_files_are_kez_simulates(tmp_path):
    tool("kez-simulate", "--users", "4", "--days", "10", "--seed", "3", "-o",
         str(tmp_path / "tool"))
    table = kez.simulate_fleet(4, tmp_path / "py", days=10, seed=3)
    names = ["user-%04d.csv" % i for i in range(1, 5)] + ["fleet.csv"]
    match, mismatch, errors = filecmp.cmpfiles(tmp_path / "tool", tmp_path / "py",
                                               names, shallow=False)
    assert match == names, (mismatch, errors)
    assert list(table["name"]) == ["user-0001", "user-0002", "user-0003", "user-0004"]
    # Users differ from each other, and user 2 does not depend on the size
    # of the fleet.
    assert len(set(table["profile"]) | set(table["start"])) > 2
    two = kez.simulate_user(2, days=10, seed=3)
    pd.testing.assert_frame_equal(two.drop(columns=["time"]),
                                  pd.read_csv(table["path"][1]), check_dtype=False)
    assert os.path.getsize(table["path"][0]) > 10000
