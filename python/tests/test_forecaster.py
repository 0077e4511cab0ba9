"""kez.Forecaster against kez-forecast: the same replay gives the same
forecast, to the printed digit; samples one by one or as arrays are the same
reports; bad input is refused before anything is reported."""

import math

import numpy as np
import pandas as pd
import pytest

import kez
from conftest import BUNDLED, TUNED, tool_json


def printed(value, digits=3):
    return "%.*f" % (digits, value)


@pytest.mark.parametrize("model", [None, TUNED])
def test_replay_forecasts_as_kez_forecast(model):
    args = ["--format", "json", "--steps", "144", "--variant", "all"]
    if model:
        args += ["--params", model]
    expected = tool_json("kez-forecast", *args, BUNDLED)
    with kez.Forecaster(model=model) as f:
        f.replay(BUNDLED)
        assert f.last_time_ms == expected["now"]["time_ms"]
        frame = f.forecast(steps=144, variant="all")
    assert len(frame) == len(expected["steps"]) == 144
    assert frame.attrs["learned"] == expected["learned"]
    assert "%g" % frame.attrs["distance"] == "%g" % expected["distance"]
    for row, step in zip(frame.itertuples(), expected["steps"]):
        assert row.time_ms == step["time_ms"]
        for v in ("free", "nocharge", "charge"):
            # The tool prints the level with three decimals.
            assert printed(getattr(row, "level_percent_" + v)) == \
                printed(step[v]["level_percent"])
            assert printed(getattr(row, "charging_chance_" + v), 4) == \
                printed(step[v]["charging"], 4)


def test_arrays_report_as_single_samples():
    log = kez.read_log(BUNDLED)
    head = log.iloc[:3000]
    with kez.Forecaster() as one, kez.Forecaster() as many:
        for r in head.itertuples():
            one.report(r.time_ms, r.level_percent, r.charging, r.aux1, r.aux2,
                       r.aux3, r.countA, r.countB1, r.countB2)
        many.report(head["time"], head["level_percent"], head["charging"],
                    head["aux1"], head["aux2"], head["aux3"], head["countA"],
                    head["countB1"], head["countB2"])
        a = one.forecast(48)
        b = many.forecast(48)
    pd.testing.assert_frame_equal(a, b)
    assert a["time"].iloc[0] == pd.Timestamp(int(head["time_ms"].iloc[-1]) + 600000,
                                             unit="ms", tz="UTC")


def test_a_steady_discharge_goes_on():
    with kez.Forecaster(method="raw") as f:
        t0 = 1704067200000
        f.report(t0, 80, 0)
        # One report: nothing to compare with, the running rates answer.
        assert f.forecast(6).attrs["distance"] == 100.0
        # 1 % an hour down, reported every 5 minutes for six hours: the
        # forecast goes on at 1/6 % per 10-minute step from 74 %.
        times = t0 + 300000 * np.arange(1, 73)
        f.report(times, 80 - np.arange(1, 73) / 12.0, 0)
        frame = f.forecast(6)
    expected = 74 - np.arange(1, 7) / 6.0
    np.testing.assert_allclose(frame["level_percent"], expected, atol=0.01)
    assert (frame["charging_chance"] < 0.05).all()


def test_bad_input_is_refused_and_reports_nothing():
    with kez.Forecaster() as f:
        with pytest.raises(ValueError, match="level_percent is NaN or infinite at index 2"):
            f.report([1, 2, 3], [50, 50, math.nan], [0, 0, 0])
        with pytest.raises(ValueError, match="level_percent at index 1 is 120"):
            f.report([1, 2], [50, 120], [0, 0])
        with pytest.raises(ValueError, match="earlier than the sample before"):
            f.report([5, 4], [50, 50], [0, 0])
        with pytest.raises(ValueError, match="NaN"):
            f.report(1, math.nan, 0)
        with pytest.raises(TypeError):
            f.report(1, "full", 0)
        with pytest.raises(TypeError):
            f.replay(42)
        with pytest.raises(ValueError, match="variant"):
            f.report(1000, 50, 0)
            f.forecast(6, variant="sunny")
        assert f.last_time_ms == 1000
    assert f.closed
    with pytest.raises(RuntimeError, match="closed"):
        f.report(2000, 50, 0)


def test_raw_is_kez_forecast_raw_and_adaptive_says_how_it_weighed():
    raw = tool_json("kez-forecast", "--format", "json", "--steps", "36", "--raw",
                    BUNDLED)
    with kez.Forecaster(method="raw") as f:
        f.replay(BUNDLED)
        frame = f.forecast(steps=36)
        with pytest.raises(ValueError, match="adaptive"):
            f.weights(36)
    for row, step in zip(frame.itertuples(), raw["steps"]):
        assert printed(row.level_percent) == printed(step["free"]["level_percent"])
    with kez.Forecaster() as f:
        assert f.method == "adaptive"
        f.replay(BUNDLED)
        weights = f.weights(36)
        assert list(weights.columns)[0] == "instance"
        np.testing.assert_allclose(weights.sum(axis=1), 1.0, rtol=1e-12)
        assert ((weights >= 0) & (weights <= 1)).all().all()
        charging = f.weights(36, what="charging")
        np.testing.assert_allclose(charging.sum(axis=1), 1.0, rtol=1e-12)


def test_methods():
    with pytest.raises(ValueError, match="method"):
        kez.Forecaster(method="magic")
    with pytest.raises(ValueError, match="nonexistent"):
        kez.Forecaster(model="/nonexistent/model.txt")
