#!/usr/bin/env python3
"""A fleet study with the kez Python package: simulate a fleet of users,
evaluate the forecaster on all of them across a local Dask cluster, tune its
weights on some users and judge the tuned model on users it never saw, then
plot the error against the horizon.

    PYTHONPATH=build/python /usr/bin/python3 examples/fleet_study.py \\
        --users 200 --days 42 --workers 2 --png fleet-study.png

Tuning across 200 users is the slow part; --tune-users, --generations and
--offspring scale it (see docs/TUNING.md for a run and its figures). With
--scheduler ADDRESS the same code runs on a real cluster (docs/PYTHON.md);
the logs must then be on storage every worker sees (--dir).
"""

import argparse
import os
import tempfile
import time

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

import pandas as pd  # noqa: E402

import kez  # noqa: E402

OBJECTIVE_HOURS = [4.0, 8.0, 12.0, 24.0]


def objective(evaluation):
    """kez-tune's objective: the forecaster's mean level error of the free
    forecast, averaged over 4, 8, 12 and 24 hours."""
    return evaluation.table("mae_pp").loc[OBJECTIVE_HOURS, "forecaster"].mean()

METHODS = [("forecaster", "forecaster", "-"), ("persistence", "persistence", ":"),
           ("running_rates", "running rates", "--"), ("yesterday", "yesterday", "-."),
           ("last_week", "last week", (0, (3, 1, 1, 1, 1, 1)))]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--users", type=int, default=200)
    parser.add_argument("--days", type=int, default=42)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--scheduler", help="address of a running scheduler")
    parser.add_argument("--dir", help="folder for the logs (default: a temporary one)")
    parser.add_argument("--tune-users", type=int, default=40,
                        help="users the weights are tuned on (the first ones)")
    parser.add_argument("--heldout-users", type=int, default=0,
                        help="users the tuned model is judged on (default: all "
                             "the others)")
    parser.add_argument("--generations", type=int, default=4)
    parser.add_argument("--offspring", type=int, default=6)
    parser.add_argument("--png", default="fleet-study.png")
    args = parser.parse_args()

    from distributed import Client, LocalCluster
    folder = args.dir or tempfile.mkdtemp(prefix="kez-fleet-")
    started = time.monotonic()
    fleet = kez.simulate_fleet(args.users, folder, days=args.days, seed=args.seed)
    paths = list(fleet["path"])
    print("simulated %d users x %d days into %s (%.1f s)" % (
        len(paths), args.days, folder, time.monotonic() - started))
    print(fleet["profile"].value_counts().to_string())

    if args.scheduler:
        client = Client(args.scheduler)
        cluster = None
    else:
        cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1,
                               processes=True, dashboard_address=None)
        client = Client(cluster)
    try:
        started = time.monotonic()
        report = kez.fleet.evaluate(paths, client=client)
        seconds = time.monotonic() - started
        months = len(report.logs) * args.days / 30.0
        print("evaluated %d logs in %.1f s: %.2f user-months/s" % (
            len(report.logs), seconds, months / seconds))
        for path, reason in report.failures:
            print("not evaluated: %s: %s" % (path, reason))
        print("\npooled level error, free forecast (mean, percentage points):")
        print(report.pooled.table("mae_pp").round(2).to_string())

        tune_paths = paths[:args.tune_users]
        heldout = paths[args.tune_users:]
        if args.heldout_users:
            heldout = heldout[:args.heldout_users]
        tuned = base = None
        if tune_paths and heldout:
            started = time.monotonic()
            result = kez.fleet.tune(tune_paths, client=client,
                                    generations=args.generations,
                                    offspring=args.offspring,
                                    progress=lambda g: print(
                                        "  generation %d: best %.4f" %
                                        (g["generation"], g["best_score"])))
            print("tuned on %d users in %.0f s: objective on their tuning part "
                  "%.4f -> %.4f, on their held-out weeks %.4f -> %.4f" % (
                      len(tune_paths), time.monotonic() - started,
                      result.start_tuning.score, result.best_tuning.score,
                      result.start_heldout.score, result.best_heldout.score))
            model = os.path.join(folder, "tuned.txt")
            result.save(model)
            # Users the search never saw, whole logs after the warm-up, with
            # the tuner's objective (the mean error at 4, 8, 12 and 24 h).
            base = kez.fleet.evaluate(heldout, client=client)
            tuned = kez.fleet.evaluate(heldout, client=client, model=model)
            before, after = objective(base.pooled), objective(tuned.pooled)
            print("held-out users (%d): objective built-in %.4f, tuned %.4f (%+.1f %%)"
                  % (len(heldout), before, after, 100 * (after / before - 1)))
            print(pd.DataFrame({"built-in": base.pooled.table()["forecaster"],
                                "tuned": tuned.pooled.table()["forecaster"]})
                  .round(3).to_string())
    finally:
        client.close()
        if cluster is not None:
            cluster.close()

    table = report.pooled.table("mae_pp")
    fig, ax = plt.subplots(figsize=(7, 4.5))
    for method, label, style in METHODS:
        ax.plot(table.index, table[method], linestyle=style, marker="o",
                markersize=3, label=label)
    if tuned is not None:
        for result, label, style in ((base, "built-in", "--"), (tuned, "tuned", "-")):
            t = result.pooled.table("mae_pp")
            ax.plot(t.index, t["forecaster"], color="black", linestyle=style,
                    marker="s", markersize=3,
                    label="forecaster %s, %d held-out users" % (label, len(heldout)))
    ax.set_xscale("log", base=2)
    ax.set_xticks(list(table.index))
    ax.set_xticklabels(["%g h" % h for h in table.index])
    ax.set_xlabel("horizon")
    ax.set_ylabel("mean absolute level error (percentage points)")
    ax.set_title("%d simulated users, %d days each, pooled" % (len(report.logs), args.days))
    ax.grid(alpha=0.3)
    ax.legend(fontsize=8)
    fig.tight_layout()
    fig.savefig(args.png, dpi=120)
    print("chart written to %s" % args.png)


if __name__ == "__main__":
    main()
