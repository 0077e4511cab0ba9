"""kez.tune: kez-tune's weight search, on logs held by Python."""

import math

from . import _native
from ._evaluation import Evaluation
from ._logs import as_native_log


def plan_dicts(warmup_days=7, split=0.7, every_hours=3, final_every_hours=1,
               horizons_hours=(4, 8, 12, 24),
               report_horizons_hours=(1, 2, 4, 8, 12, 24), seed=1,
               generations=30, seconds=0, threads=2, offspring=8, parents=4,
               step=0.5, share=0.5, interval_minutes=5, max_silence_hours=12,
               as_logged=False):
    """kez-tune's options (its defaults) under their Python names: the plan
    and the search options, checked as kez-tune checks them."""
    for name, value in list(locals().items()):
        if name in ("horizons_hours", "report_horizons_hours", "as_logged"):
            continue
        if isinstance(value, bool) or not isinstance(value, (int, float)):
            raise TypeError("%s is a number, not %s" % (name, type(value).__name__))
        if math.isnan(value):
            raise ValueError("%s is NaN" % name)
    plan = {
        "warmup_days": float(warmup_days), "split": float(split),
        "every_hours": float(every_hours),
        "final_every_hours": float(final_every_hours),
        "horizons_hours": [float(h) for h in horizons_hours],
        "report_horizons_hours": [float(h) for h in report_horizons_hours],
        "seed": int(seed), "generations": float(generations),
        "seconds": float(seconds), "threads": float(threads),
        "interval_minutes": float(interval_minutes),
        "max_silence_hours": float(max_silence_hours),
        "as_logged": bool(as_logged),
    }
    search = {"offspring": float(offspring), "parents": float(parents),
              "step": float(step), "share": float(share)}
    _native.check_plan(plan, search)
    return plan, search


class TuneResult:
    """The outcome of a weight search, as kez-tune reports it.

    report          kez-tune's report text
    start_weights, best_weights
    start_search_score, best_search_score, start_kept, generations,
    evaluations, seconds
    start_tuning, best_tuning, start_heldout, best_heldout: pooled
                    Evaluations (fine grid) of the start and the result on the
                    tuning part and the held-out part; their .score is the
                    objective. per_log[name]: the same per log.
    """

    def __init__(self, raw, options):
        self._raw = raw
        self.report = raw["report"]
        for key in ("start_weights", "best_weights", "start_search_score",
                    "best_search_score", "start_kept", "generations",
                    "evaluations", "seconds"):
            setattr(self, key, raw[key])
        self.per_log = {}
        for key in ("start_tuning", "best_tuning", "start_heldout", "best_heldout"):
            part = raw[key]
            setattr(self, key, Evaluation.from_bytes(part["pooled"], options))
            self.per_log[key] = [Evaluation.from_bytes(b, options) for b in part["logs"]]

    def save(self, path):
        """Writes the tuned model as kez-tune --out does."""
        _native.save_model(self._raw["model"], str(path))

    def __repr__(self):
        return ("<kez.TuneResult objective tuning %.4f -> %.4f, held out "
                "%.4f -> %.4f>" % (self.start_tuning.score, self.best_tuning.score,
                                   self.start_heldout.score, self.best_heldout.score))


def _options_for_evaluations(plan):
    return {"warmup_days": plan["warmup_days"], "every_hours": plan["final_every_hours"],
            "horizons_hours": sorted(set(plan["horizons_hours"]) |
                                     set(plan["report_horizons_hours"])),
            "start": None, "end": None, "low_percent": 20.0, "model": None,
            "interval_minutes": plan["interval_minutes"],
            "max_silence_hours": plan["max_silence_hours"],
            "as_logged": plan["as_logged"]}


def run_tune(native_logs, plan, search, start_model, progress, evaluator):
    raw = _native.tune_weights(native_logs, plan, search,
                               "" if start_model is None else str(start_model),
                               progress, evaluator)
    return TuneResult(raw, _options_for_evaluations(plan))


def tune(logs, *, start_model=None, progress=None, status_lines=False, **plan):
    """Tunes the forecaster's weights on `logs` (paths or DataFrames) with
    kez-tune's search and plan (same options, same defaults: split 0.7,
    every_hours 3, horizons_hours 4,8,12,24, generations 30, offspring 8,
    parents 4, seed 1, threads 2, ...). The same seed gives kez-tune's
    result. progress(dict) is called after each generation."""
    if isinstance(logs, (str, bytes)) or not hasattr(logs, "__iter__"):
        logs = [logs]
    native_logs = [as_native_log(l, status_lines) for l in logs]
    plan_dict, search = plan_dicts(**plan)
    return run_tune(native_logs, plan_dict, search, start_model, progress, None)
