"""kez.Forecaster: one forecaster instance, fed and asked as an app does."""

import math

import numpy as np
import pandas as pd

from . import _native
from ._logs import as_native_log

STEP_MS = 10 * 60 * 1000

# The forecasting methods. "adaptive" (the default) weighs the library's
# forecaster and simple methods per user and horizon by their own scored
# errors (what libkez.so answers through kez_adaptive_predict); "raw" is the
# library's memory-based forecaster alone (kez_predict).
METHODS = ("adaptive", "raw")

VARIANTS = ("free", "nocharge", "charge")


def _times_ms(time):
    """Unix milliseconds from ints, datetimes, Timestamps or arrays of them."""
    if isinstance(time, (pd.Timestamp, np.datetime64)) or hasattr(time, "tzinfo"):
        return int(pd.Timestamp(time).value // 10**6)
    array = np.asarray(time)
    if np.issubdtype(array.dtype, np.datetime64):
        return array.astype("datetime64[ms]").astype(np.int64)
    if isinstance(time, pd.Series) and isinstance(time.dtype, pd.DatetimeTZDtype):
        return time.astype("int64").to_numpy() // 10**6
    if array.dtype == object:
        return np.array([_times_ms(t) for t in array], dtype=np.int64)
    if np.issubdtype(array.dtype, np.floating):
        if not np.all(np.isfinite(array)):
            raise ValueError("a time is NaN or infinite")
        if np.any(array != np.floor(array)):
            raise ValueError("times are whole Unix milliseconds")
    elif not np.issubdtype(array.dtype, np.integer):
        raise TypeError("times are Unix milliseconds or datetimes, not %s"
                        % array.dtype)
    return array.astype(np.int64) if array.ndim else int(array)


class Forecaster:
    """A forecaster instance (the library's, through its C interface).

    Report the phone's status at least every 10 minutes, also when nothing
    changed, with report() (one sample or arrays at once) or replay() (a
    whole log, filled between samples as the tools replay it); then
    forecast(). Use it as a context manager, or close() it.

    model: a parameter file (as kez-tune writes it) instead of the built-in
    model. method: "adaptive" (the default: the adaptive forecaster, which
    weighs the library's forecaster and simple methods by their errors on
    this user's own reports) or "raw" (the library's forecaster alone).
    """

    def __init__(self, model=None, method="adaptive"):
        if method not in METHODS:
            raise ValueError("method is one of %s, not %r" % (METHODS, method))
        self.method = method
        self._native = _native.RawForecaster("" if model is None else str(model),
                                             method == "adaptive")

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
        return False

    def close(self):
        self._native.close()

    @property
    def closed(self):
        return self._native.closed

    def report(self, time, level_percent, charging, aux1=0.0, aux2=0.0,
               aux3=0.0, countA=0.0, countB1=0.0, countB2=0.0):
        """Reports one sample (scalars) or many (arrays of one length, in
        time order; checked before the first is reported). time: Unix ms or
        datetimes; level_percent 0..100; charging 0 or 1."""
        if isinstance(time, (int, np.integer)) and not isinstance(time, bool):
            t = int(time)  # the common case, kept short
        else:
            t = _times_ms(time)
        if np.ndim(t) == 0:
            try:
                values = (float(level_percent), float(charging), float(aux1),
                          float(aux2), float(aux3), float(countA), float(countB1),
                          float(countB2))
            except (TypeError, ValueError):
                raise TypeError("sample values are numbers") from None
            for v in values:
                if not math.isfinite(v):
                    raise ValueError("a sample value is NaN or infinite")
            self._native.report(t, *values)
            return
        n = len(t)
        arrays = []
        for v in (level_percent, charging, aux1, aux2, aux3, countA, countB1,
                  countB2):
            a = np.asarray(v, dtype=np.float64)
            arrays.append(np.full(n, float(a)) if a.ndim == 0 else a)
        for name, a in zip(("level_percent", "charging"), arrays[:2]):
            if a.shape != (n,):
                raise ValueError("%s has %s values for %d times" % (name, a.shape, n))
            bad = np.flatnonzero(~np.isfinite(a))
            if bad.size:
                raise ValueError("%s is NaN or infinite at index %d" % (name, bad[0]))
        self._native.report_many(np.ascontiguousarray(t), arrays[0], arrays[1],
                                 arrays[2:])

    def replay(self, log, interval_minutes=5, max_silence_hours=12,
               as_logged=False, status_lines=False):
        """Reports a whole log (path or DataFrame) as kez-forecast replays
        it: a report every `interval_minutes` between logged samples at most
        `max_silence_hours` apart, repeating the last logged state
        (as_logged: the logged samples alone)."""
        self._native.replay(as_native_log(log, status_lines),
                            float(interval_minutes), float(max_silence_hours),
                            bool(as_logged))

    @property
    def last_time_ms(self):
        """Time of the last report (Unix ms), or -1 before any."""
        return self._native.last_ms

    def forecast_arrays(self, steps=144, variant="free"):
        """(times_ms, level_percent, charging_chance, distance) of `steps`
        10-minute steps after the last report. variant: "free", "nocharge"
        (not charged during the next day) or "charge" (plugged in now)."""
        if self.last_time_ms < 0:
            raise RuntimeError("nothing reported yet")
        level, charging, distance = self._native.forecast(int(steps), variant)
        times = self.last_time_ms + STEP_MS * np.arange(1, int(steps) + 1, dtype=np.int64)
        return times, level, charging, distance

    def weights(self, steps=144, variant="free", what="level"):
        """The adaptive forecaster's weights as a DataFrame, one row per step
        and one column per method (each row sums to 1): for the level of
        `variant`, or (what="charging") the chance of charging of the free
        forecast. Only with method="adaptive"."""
        w = self._native.weights(int(steps), variant, what)
        return pd.DataFrame(w, columns=_native.RawForecaster.method_names())

    def forecast(self, steps=144, variant="free"):
        """The forecast as a DataFrame: time (UTC), time_ms, level_percent,
        charging_chance, one row per step; attrs: variant, distance (100:
        nothing similar found, the running rates extrapolated) and learned."""
        variants = VARIANTS if variant == "all" else (variant,)
        columns = {}
        distance = None
        for v in variants:
            times, level, charging, d = self.forecast_arrays(steps, v)
            if distance is None:
                distance = d
                columns["time"] = pd.DatetimeIndex(
                    times.astype("datetime64[ms]")).tz_localize("UTC")
                columns["time_ms"] = times
            suffix = "" if len(variants) == 1 else "_" + v
            columns["level_percent" + suffix] = level
            columns["charging_chance" + suffix] = charging
        frame = pd.DataFrame(columns)
        frame.attrs.update(variant=variant, distance=distance,
                           learned=distance != 100.0, method=self.method)
        return frame
