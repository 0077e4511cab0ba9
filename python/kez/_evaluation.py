"""kez.evaluate: the accuracy figures of kez-eval, as DataFrames."""

import json
import math

import pandas as pd

from . import _native
from ._logs import as_native_log

DEFAULT_HORIZONS = (1, 2, 4, 8, 12, 24)


def options_dict(warmup_days=7, every_hours=1, horizons_hours=DEFAULT_HORIZONS,
                 start=None, end=None, low_percent=20, model=None,
                 interval_minutes=5, max_silence_hours=12, as_logged=False):
    """kez-eval's options under their Python names (checked by the native
    layer as kez-eval checks its command line)."""
    if isinstance(horizons_hours, (int, float)):
        horizons_hours = (horizons_hours,)
    for name, value in (("warmup_days", warmup_days), ("every_hours", every_hours),
                        ("low_percent", low_percent),
                        ("interval_minutes", interval_minutes),
                        ("max_silence_hours", max_silence_hours)):
        if isinstance(value, bool) or not isinstance(value, (int, float)):
            raise TypeError("%s is a number, not %s" % (name, type(value).__name__))
        if math.isnan(value):
            raise ValueError("%s is NaN" % name)
    for value, name in ((start, "start"), (end, "end")):
        if value is not None and not isinstance(value, (int, str)):
            if isinstance(value, pd.Timestamp) or hasattr(value, "tzinfo"):
                continue
            raise TypeError("%s is Unix ms, a time text or a datetime" % name)

    def moment(value):
        if value is None or isinstance(value, (int, str)):
            return value
        stamp = pd.Timestamp(value)
        if stamp.tzinfo is None:
            stamp = stamp.tz_localize("UTC")
        return int(stamp.value // 10**6)

    return {
        "warmup_days": float(warmup_days), "every_hours": float(every_hours),
        "horizons_hours": [float(h) for h in horizons_hours],
        "start": moment(start), "end": moment(end),
        "low_percent": float(low_percent),
        "model": None if model is None else str(model),
        "interval_minutes": float(interval_minutes),
        "max_silence_hours": float(max_silence_hours),
        "as_logged": bool(as_logged),
    }


class Evaluation:
    """One log's evaluation (or several pooled), as kez-eval computes it.

    levels     per horizon, condition ("free", "nocharge") and method
               ("forecaster", "persistence", "running_rates", "yesterday",
               "last_week"): pairs, mae_pp, p90_pp, brier (free only)
    horizons   per horizon: pairs, learned share, what was left out
    low_level  per condition and method: time to reach the low level
    summary    counts (samples, replay, forecast points), score, notes
    Statistics without any pair are NaN.
    """

    def __init__(self, native, options):
        self._native = native
        self.options = options
        self.levels = pd.DataFrame(native.level_rows())
        self.horizons = pd.DataFrame(native.horizon_rows())
        self.low_level = pd.DataFrame(native.low_rows())
        self.summary = native.summary()

    @property
    def source(self):
        return self.summary["source"]

    @property
    def score(self):
        """The single figure kez-tune minimises: the forecaster's mean
        absolute level error of the free forecast over the horizons."""
        return self.summary["score"]

    @property
    def notes(self):
        return self.summary["notes"]

    def table(self, metric="mae_pp", condition="free"):
        """One metric as a horizon x method table (kez-eval's text tables)."""
        rows = self.levels[self.levels["condition"] == condition]
        return rows.pivot(index="horizon_h", columns="method", values=metric)[
            ["forecaster", "persistence", "running_rates", "yesterday", "last_week"]]

    def to_csv(self):
        """kez-eval --format csv of this result alone."""
        return _native.report_csv([self._native], None)

    def to_json(self):
        """kez-eval --format json of this result alone."""
        return _native.report_json([self._native], None, self.options)

    def to_bytes(self):
        """The exact result as bytes (for moving it between processes)."""
        return self._native.to_bytes()

    @classmethod
    def from_bytes(cls, data, options):
        return cls(_native.Evaluation.from_bytes(data), options)

    @classmethod
    def combine(cls, evaluations):
        """Pools results as kez-eval pools several logs (in this order)."""
        evaluations = list(evaluations)
        if not evaluations:
            raise ValueError("nothing to pool")
        return cls(_native.Evaluation.combine([e._native for e in evaluations]),
                   evaluations[0].options)

    def __repr__(self):
        return "<kez.Evaluation %s: %d forecasts, score %.4g>" % (
            self.source, self.summary["points_made"], self.score)


class Report:
    """Several logs' evaluations and their pooled result, as kez-eval
    reports several logs. failures: (path, reason) of logs not evaluated."""

    def __init__(self, logs, pooled, failures, options):
        self.logs = logs
        self.pooled = pooled
        self.failures = failures
        self.options = options

    def to_csv(self):
        """kez-eval --format csv of the same logs."""
        return _native.report_csv([e._native for e in self.logs],
                                  self._pooled_native())

    def to_json(self):
        """kez-eval --format json of the same logs."""
        return _native.report_json([e._native for e in self.logs],
                                   self._pooled_native(), self.options)

    def _pooled_native(self):
        return self.pooled._native if len(self.logs) > 1 else None

    def per_log(self, metric="mae_pp", condition="free", method="forecaster"):
        """One metric per log (rows) and horizon (columns)."""
        frames = []
        for e in self.logs:
            rows = e.levels[(e.levels["condition"] == condition)
                            & (e.levels["method"] == method)]
            frames.append(rows.set_index("horizon_h")[metric].rename(e.source))
        return pd.DataFrame(frames)

    def __repr__(self):
        return "<kez.Report %d logs, %d failed, pooled score %.4g>" % (
            len(self.logs), len(self.failures),
            self.pooled.score if self.pooled else float("nan"))


def evaluate(log, *, status_lines=False, **options):
    """Evaluates one log (path, DataFrame or kez log) as kez-eval does with
    the same options: warmup_days (7), every_hours (1), horizons_hours
    (1, 2, 4, 8, 12, 24), start / end (forecast points from / up to; Unix ms,
    a time text or a datetime), low_percent (20), model (a parameter file),
    interval_minutes (5), max_silence_hours (12), as_logged (False). For many
    logs, see kez.fleet.evaluate."""
    opts = options_dict(**options)
    native_log = as_native_log(log, status_lines)
    return Evaluation(_native.evaluate(native_log, opts), opts)
