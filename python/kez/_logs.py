"""Battery logs as pandas DataFrames: read, simulated, and handed to the
native layer."""

import datetime
import os

import numpy as np
import pandas as pd

from . import _native
from ._errors import LogError, read_native_log

# The columns of a log, as the tools read and write them.
COLUMNS = ("time_ms", "level_percent", "charging", "aux1", "aux2", "aux3",
           "countA", "countB1", "countB2")


def _frame(native_log):
    columns = native_log.columns()
    frame = pd.DataFrame({name: columns[name] for name in COLUMNS})
    frame.insert(0, "time", pd.to_datetime(frame["time_ms"], unit="ms", utc=True))
    frame.attrs["source"] = native_log.source
    return frame


def read_log(path, status_lines=False):
    """Reads a battery log (CSV with time_ms, level_percent, charging and
    optionally aux1..aux3, countA, countB1, countB2; or, with status_lines,
    the host's status lines) as kez-eval reads it. Returns a DataFrame with a
    UTC `time` column first and the log's columns; attrs["source"] is the
    path. Raises FileNotFoundError, or LogError with the file and line of the
    first problem."""
    return _frame(read_native_log(path, status_lines))


def as_native_log(log, status_lines=False):
    """A path, a DataFrame (with time_ms or time, level_percent, charging)
    or a native log, as a native log."""
    if isinstance(log, _native.Log):
        return log
    if isinstance(log, (str, os.PathLike)):
        return read_native_log(log, status_lines)
    if isinstance(log, pd.DataFrame):
        columns = {}
        if "time_ms" in log.columns:
            times = log["time_ms"]
        elif "time" in log.columns:
            times = pd.to_datetime(log["time"], utc=True).astype("int64") // 10**6
        else:
            raise ValueError("the log has no column 'time_ms' (or 'time')")
        if times.isna().any():
            raise ValueError("column 'time_ms' holds NaN at row %d"
                             % int(np.flatnonzero(times.isna().to_numpy())[0]))
        columns["time_ms"] = np.asarray(times, dtype=np.int64)
        for name in COLUMNS[1:]:
            if name in log.columns:
                columns[name] = np.asarray(log[name], dtype=np.float64)
        source = log.attrs.get("source", "DataFrame")
        try:
            return _native.log_from_arrays(source, columns)
        except _native.LogError as e:
            raise LogError(str(e)) from None
    raise TypeError("a log is a path, a pandas DataFrame or a kez log, not %s"
                    % type(log).__name__)


def _start_day(start):
    if isinstance(start, str):
        start = datetime.date.fromisoformat(start)
    if isinstance(start, datetime.datetime):
        start = start.date()
    if not isinstance(start, datetime.date):
        raise TypeError("start is a date or 'YYYY-MM-DD'")
    return (start - datetime.date(1970, 1, 1)).days


def simulate(profile="regular", days=35, seed=1, start="2024-03-04",
             tz_offset_hours=0, interval_minutes=5):
    """A synthetic log of one user, as kez-simulate writes it with the same
    options (--profile, --days, --seed, --start, --tz-offset, --interval)."""
    if not isinstance(profile, str):
        raise TypeError("profile is a name: %s" % ", ".join(n for n, _ in profiles()))
    native = _native.simulate(profile, int(days), int(seed), _start_day(start),
                              float(tz_offset_hours), int(interval_minutes))
    return _frame(native)


def profiles():
    """The built-in routines: a list of (name, description)."""
    return _native.profiles()


def simulate_user(index, days=35, seed=1):
    """User `index` (from 1) of the simulated fleet `seed`: the log that
    kez-simulate --users N --seed SEED writes as user-NNNN.csv."""
    name, native, _ = _native.fleet_user(int(seed), int(index), int(days))
    return _frame(native)


def simulate_fleet(users, directory, days=35, seed=1):
    """Writes users 1..`users` of the simulated fleet `seed` into
    `directory` as kez-simulate --users does (user-0001.csv ... and
    fleet.csv, one line per user). Returns fleet.csv as a DataFrame with a
    `path` column."""
    if int(users) < 1:
        raise ValueError("users is at least 1")
    os.makedirs(directory, exist_ok=True)
    lines = [_native.fleet_header()]
    for i in range(1, int(users) + 1):
        name, native, line = _native.fleet_user(int(seed), i, int(days))
        _native.write_csv(native, os.path.join(directory, name + ".csv"))
        lines.append(line)
    with open(os.path.join(directory, "fleet.csv"), "w") as f:
        f.write("\n".join(lines) + "\n")
    table = pd.read_csv(os.path.join(directory, "fleet.csv"))
    table["path"] = [os.path.join(directory, n + ".csv") for n in table["name"]]
    return table
