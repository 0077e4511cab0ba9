"""kez.evaluate against kez-eval: the same figures, to the printed digit
(the reports are kez-eval's own writers, so the text is compared whole), on
the bundled log and a recorded log, and with options."""

import json
import math

import pytest

import kez
from conftest import BUNDLED, TUNED, tool, tool_json


def six(value):
    return None if value is None or math.isnan(value) else float("%.6g" % value)


def check_against_json(result, expected):
    """The DataFrames hold what kez-eval's JSON prints."""
    log = expected["logs"][0]
    assert result.summary["samples"] == log["samples"]
    assert result.summary["points_made"] == log["forecast_points"]["made"]
    assert six(result.score) == log["score"]
    assert result.notes == log["notes"]
    for h in log["horizons"]:
        for condition in ("free", "nocharge"):
            for method, figures in h[condition].items():
                row = result.levels[(result.levels["horizon_h"] == h["hours"])
                                    & (result.levels["condition"] == condition)
                                    & (result.levels["method"] == method)].iloc[0]
                assert row["pairs"] == figures["pairs"]
                assert six(row["mae_pp"]) == figures["mae_pp"]
                assert six(row["p90_pp"]) == figures["p90_pp"]
                if condition == "free":
                    assert six(row["brier"]) == figures["brier"]
    for condition in ("free", "nocharge"):
        for method, figures in log["low_level"][condition].items():
            row = result.low_level[(result.low_level["condition"] == condition)
                                   & (result.low_level["method"] == method)].iloc[0]
            assert six(row["mae_min"]) == figures["mae_min"]
            assert row["misses"] == figures["misses"]


def test_bundled_log_figures_are_kez_evals():
    result = kez.evaluate(BUNDLED)
    expected = tool("kez-eval", "--format", "json", BUNDLED)
    check_against_json(result, json.loads(expected))
    assert result.to_json() == expected
    assert result.to_csv() == tool("kez-eval", "--format", "csv", BUNDLED)
    # The forecaster beats persistence at a day on this log.
    table = result.table("mae_pp")
    assert table.loc[24.0, "forecaster"] < table.loc[24.0, "persistence"]


def test_recorded_log_figures_are_kez_evals(recorded):
    expected = tool("kez-eval", "--format", "json", recorded)
    result = kez.evaluate(recorded)
    check_against_json(result, json.loads(expected))
    assert result.to_json() == expected


def test_options_mean_what_kez_evals_options_mean():
    args = ["--horizons", "1,3,24", "--every", "2", "--warmup", "5", "--from",
            "2024-03-20", "--to", "2024-04-03T12:00", "--as-logged", "--level", "30",
            "--params", TUNED]
    result = kez.evaluate(BUNDLED, horizons_hours=[24, 1, 3], every_hours=2,
                          warmup_days=5, start="2024-03-20", end="2024-04-03T12:00",
                          as_logged=True, low_percent=30, model=TUNED)
    assert result.to_json() == tool("kez-eval", "--format", "json", *args, BUNDLED)
    assert list(result.horizons["horizon_h"]) == [1.0, 3.0, 24.0]


def test_bad_options_raise():
    with pytest.raises(ValueError, match="10-minute steps"):
        kez.evaluate(BUNDLED, horizons_hours=[0.25])
    with pytest.raises(ValueError, match="every_hours"):
        kez.evaluate(BUNDLED, every_hours=0)
    with pytest.raises(ValueError, match="NaN"):
        kez.evaluate(BUNDLED, warmup_days=math.nan)
    with pytest.raises(TypeError, match="every_hours is a number"):
        kez.evaluate(BUNDLED, every_hours="1")
    with pytest.raises(TypeError):
        kez.evaluate(BUNDLED, horizon=3)


def test_results_move_as_bytes_exactly():
    result = kez.evaluate(BUNDLED, horizons_hours=[2, 8])
    back = kez.Evaluation.from_bytes(result.to_bytes(), result.options)
    assert back.to_json() == result.to_json()
    assert back.levels.equals(result.levels)
    with pytest.raises(ValueError, match="damaged"):
        kez.Evaluation.from_bytes(result.to_bytes()[:-3], result.options)


def test_status_line_logs_are_evaluated_as_kez_eval_does(tmp_path):
    log = tmp_path / "status.txt"
    tool("kez-simulate", "--days", "10", "--seed", "4", "--format", "status", "-o", str(log))
    result = kez.evaluate(log, status_lines=True, warmup_days=5)
    assert result.to_json() == tool("kez-eval", "--format", "json", "--status-lines",
                                    "--warmup", "5", str(log))
    assert result.summary["points_made"] > 0
    # Read as CSV, the same file is not a log.
    with pytest.raises(kez.LogError):
        kez.evaluate(log)
