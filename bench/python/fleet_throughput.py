#!/usr/bin/env python3
"""Fleet throughput of kez.fleet.evaluate: user-months of logs evaluated per
second (kez-eval's default options), in this process and on local Dask
clusters of 1 and 2 worker processes (one thread each). The cluster's start
is not timed; each figure is the best of a few runs.

    PYTHONPATH=build/python /usr/bin/python3 bench/python/fleet_throughput.py \\
        [--users 24] [--days 30]
"""

import argparse
import os
import tempfile
import time

import kez


def best_time(run, repeats):
    best = float("inf")
    for _ in range(repeats):
        start = time.perf_counter()
        run()
        best = min(best, time.perf_counter() - start)
    return best


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--users", type=int, default=24)
    parser.add_argument("--days", type=int, default=30)
    parser.add_argument("--repeats", type=int, default=2)
    args = parser.parse_args()
    from distributed import Client, LocalCluster
    folder = tempfile.mkdtemp(prefix="kez-throughput-")
    paths = list(kez.simulate_fleet(args.users, folder, days=args.days, seed=7)["path"])
    months = args.users * args.days / 30.0
    cpu = time.process_time()
    reference = kez.fleet.evaluate(paths).to_csv()
    cpu = time.process_time() - cpu
    rows = [("in process", best_time(lambda: kez.fleet.evaluate(paths), args.repeats))]
    for workers in (1, 2):
        with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                          dashboard_address=None) as cluster, Client(cluster) as client:
            assert kez.fleet.evaluate(paths, client=client).to_csv() == reference
            rows.append(("%d local worker%s" % (workers, "s" if workers > 1 else ""),
                         best_time(lambda: kez.fleet.evaluate(paths, client=client),
                                   args.repeats)))
    print("%d users x %d days = %.0f user-months" % (args.users, args.days, months))
    print("| where | seconds | user-months/s |")
    print("|---|---|---|")
    for name, seconds in rows:
        print("| %s | %.2f | %.2f |" % (name, seconds, months / seconds))
    print("CPU time in process: %.2f s, %.3f s per user-month" % (cpu, cpu / months))
    print("load average: %.1f %.1f %.1f" % os.getloadavg())


if __name__ == "__main__":
    main()
