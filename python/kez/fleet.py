"""Fleet scale: evaluation and tuning over many logs, one task per log (and
per candidate model), on a dask.distributed client or in this process.

Each task evaluates one log with the native layer and returns the exact
result as bytes; the results are put back in the order of `paths` and pooled
by the tools' own Combine, so the figures are those of kez-eval given the
same logs, whatever the number of workers, their order of completion, or a
worker lost mid-run (Dask runs its tasks again elsewhere). Workers read the
logs themselves: on a real cluster the paths must name the same files on
every machine (shared storage). See docs/PYTHON.md.
"""

import functools
import os

from . import _native
from ._errors import LogError, read_native_log
from ._evaluation import Evaluation, Report, options_dict
from ._tuning import plan_dicts, run_tune


def _evaluate_task(path, status_lines, options):
    """One log: ("ok", bytes) or ("error", reason). Runs on a worker."""
    try:
        native = read_native_log(path, status_lines)
        return ("ok", _native.evaluate(native, options).to_bytes())
    except (OSError, LogError, RuntimeError) as e:
        return ("error", str(e))


def _run(client, function, arguments, name):
    """function(*a) for each a in `arguments`, in order: on the client's
    workers (one task each), or here without a client."""
    if client is None:
        return [function(*a) for a in arguments]
    futures = [client.submit(function, *a, key="%s-%d-%s" % (name, i, _token(a)),
                             pure=False)
               for i, a in enumerate(arguments)]
    return client.gather(futures)


def _token(arguments):
    import dask.base
    return dask.base.tokenize(*arguments)


def evaluate(paths, client=None, *, status_lines=False, **options):
    """Evaluates every log of `paths` (kez-eval's options, see
    kez.evaluate) and pools them. Returns a kez.Report: .logs (one
    Evaluation per readable log, in the order of `paths`), .pooled, and
    .failures ((path, reason) for each log that could not be read; the rest
    go on). client: a dask.distributed Client, or None for this process."""
    paths = [os.fspath(p) for p in paths]
    if not paths:
        raise ValueError("no log given")
    opts = options_dict(**options)
    _native.check_options(opts)
    outcomes = _run(client, _evaluate_task,
                    [(p, bool(status_lines), opts) for p in paths], "kez-eval")
    logs, failures = [], []
    for path, (status, value) in zip(paths, outcomes):
        if status == "ok":
            logs.append(Evaluation.from_bytes(value, opts))
        else:
            failures.append((path, value))
    pooled = Evaluation.combine(logs) if logs else None
    return Report(logs, pooled, failures, opts)


@functools.lru_cache(maxsize=64)
def _cached_log(path, status_lines):
    return read_native_log(path, status_lines)


def _pair_task(path, status_lines, plan, job):
    """One candidate model on one log, as the tuner evaluates it (bytes).
    Runs on a worker; the log is read once per worker process."""
    return _native.evaluate_pair(_cached_log(path, status_lines), plan, job)


def tune(paths, client=None, *, start_model=None, progress=None,
         status_lines=False, **plan):
    """Tunes the weights on the logs of `paths` with kez-tune's search
    (kez.tune's options), evaluating each generation's candidates as one
    task per (candidate, log) on the client's workers. The search itself runs
    here, in the tuner's code; the result equals kez.tune's (and kez-tune's)
    with the same seed. Returns a kez.TuneResult."""
    paths = [os.fspath(p) for p in paths]
    if not paths:
        raise ValueError("no log given")
    plan_dict, search = plan_dicts(**plan)
    native_logs = [read_native_log(p, status_lines) for p in paths]
    evaluator = None
    if client is not None:
        def evaluator(jobs):
            arguments = [(p, bool(status_lines), plan_dict, job)
                         for job in jobs for p in paths]
            return _run(client, _pair_task, arguments, "kez-tune")
    return run_tune(native_logs, plan_dict, search, start_model, progress,
                    evaluator)
