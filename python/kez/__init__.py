"""kez: battery forecasts, and their evaluation and tuning on battery logs.

A thin Python layer over the kez library and the evaluation layer of its
command-line tools (the native module kez._native): the forecasts, the
replay of logs, the accuracy figures and the tuner are the ones kez-forecast,
kez-eval and kez-tune compute, to the last digit. See docs/PYTHON.md.

    import kez
    log = kez.read_log("examples/routine-35d.csv")
    with kez.Forecaster() as f:
        f.replay(log)
        print(f.forecast(steps=36))
    result = kez.evaluate(log)
    print(result.table("mae_pp"))

Fleet scale (one task per log on a dask.distributed client): kez.fleet.
"""

from . import _native
from ._errors import LogError
from ._logs import read_log, simulate, simulate_user, simulate_fleet, profiles
from ._forecaster import Forecaster
from ._evaluation import Evaluation, Report, evaluate
from ._tuning import TuneResult, tune
from . import fleet

__version__ = _native.library_version()

__all__ = [
    "Evaluation", "Forecaster", "LogError", "Report", "TuneResult", "evaluate",
    "fleet", "profiles", "read_log", "simulate", "simulate_fleet",
    "simulate_user", "tune",
]
