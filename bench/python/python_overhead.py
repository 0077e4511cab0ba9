#!/usr/bin/env python3
"""What a call from Python costs beside the same call in C: reports one at a
time and as arrays, and forecasts of 144 steps as the native binding's arrays
and as a DataFrame, on an instance whose memory holds the bundled log
(35 days replayed with a report every 5 minutes).

    PYTHONPATH=build/python /usr/bin/python3 bench/python/python_overhead.py
"""

import os
import time

import numpy as np

import kez

REPO = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
LOG = os.path.join(REPO, "examples", "routine-35d.csv")


def per_call(function, repeats):
    best = float("inf")
    for _ in range(5):
        start = time.perf_counter()
        for _ in range(repeats):
            function()
        best = min(best, (time.perf_counter() - start) / repeats)
    return best


def main():
    f = kez.Forecaster()
    f.replay(LOG)
    t = f.last_time_ms
    n = 20000
    times = t + 300000 * np.arange(1, n + 1, dtype=np.int64)
    levels = 50 + 30 * np.sin(np.arange(n) / 100.0)
    # Reports: one C call per sample inside the binding's loop, then one
    # Python call per sample (the public class and the bare binding).
    start = time.perf_counter()
    f.report(times, levels, 0)
    array_each = (time.perf_counter() - start) / n
    more = times[-1] + 300000 * np.arange(1, n + 1, dtype=np.int64)
    it = iter(zip(more.tolist(), levels.tolist()))
    one_each = per_call(lambda: f.report(*next(it), 0), n // 5)
    raw = f._native
    more2 = more[-1] + 300000 * np.arange(1, n + 1, dtype=np.int64)
    it2 = iter(zip(more2.tolist(), levels.tolist()))
    bare_each = per_call(lambda: raw.report(*next(it2), 0), n // 5)

    # Forecasts, interleaved so that the machine's load weighs on each alike.
    c_predict = bare_predict = arrays_predict = frame_predict = float("inf")
    for _ in range(7):
        c_predict = min(c_predict, raw.time_predict(144, 100))
        bare_predict = min(bare_predict, per_call(lambda: raw.forecast(144, "free"), 20))
        arrays_predict = min(arrays_predict, per_call(lambda: f.forecast_arrays(144), 20))
        frame_predict = min(frame_predict, per_call(lambda: f.forecast(144), 20))
    f.close()

    print("| call | time per call | over the C call |")
    print("|---|---|---|")
    print("| `kez_addStatusValue`, from C++ (the arrays' loop) | %.3f µs | |" % (array_each * 1e6))
    print("| `report()` one sample, bare binding | %.3f µs | +%.2f µs |" % (
        bare_each * 1e6, (bare_each - array_each) * 1e6))
    print("| `Forecaster.report()` one sample | %.3f µs | +%.2f µs |" % (
        one_each * 1e6, (one_each - array_each) * 1e6))
    print("| `kez_predict(144)`, from C++ | %.1f µs | |" % (c_predict * 1e6))
    print("| `forecast(144)`, bare binding (numpy arrays) | %.1f µs | +%.1f µs |" % (
        bare_predict * 1e6, (bare_predict - c_predict) * 1e6))
    print("| `Forecaster.forecast_arrays(144)` | %.1f µs | +%.1f µs |" % (
        arrays_predict * 1e6, (arrays_predict - c_predict) * 1e6))
    print("| `Forecaster.forecast(144)` (DataFrame) | %.1f µs | +%.1f µs |" % (
        frame_predict * 1e6, (frame_predict - c_predict) * 1e6))
    print("load average: %.1f %.1f %.1f" % os.getloadavg())


if __name__ == "__main__":
    main()
