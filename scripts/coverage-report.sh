#!/usr/bin/env bash
# Line and branch coverage of the library, per folder, from the gcov data of
# a build made with --coverage (scripts/test-sanitize.sh makes one and runs
# the tests). Usage: scripts/coverage-report.sh BUILD_DIR
#
# Prints one row per library folder (the JNI bridge on a row of its own, run
# by the JVM tests and not held to the minimum) and fails when the search,
# predictor or interface code is covered to less than KEZ_COVERAGE_MIN
# percent of lines (95 by default). Test files are not counted. The full per-file report is
# left in BUILD_DIR/coverage/ (coverage.txt, and summary.json for scripts).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?usage: scripts/coverage-report.sh BUILD_DIR}
minimum=${KEZ_COVERAGE_MIN:-95}
out="$build/coverage"
mkdir -p "$out"

filters=(-r . "$build" --filter '(foundation|search|predictor|interface|table)/'
         --exclude '.*_test\.cc$' --exclude '.*/testing/.*'
         --exclude-throw-branches --exclude-unreachable-branches)
gcovr "${filters[@]}" --json-summary-pretty -o "$out/summary.json"
gcovr "${filters[@]}" -o "$out/coverage.txt"

python3 - "$out/summary.json" "$minimum" <<'PY'
import json, sys
summary = json.load(open(sys.argv[1]))
minimum = float(sys.argv[2])
folders = {}
for f in summary["files"]:
    folder = f["filename"].split("/")[0]
    # The JNI bridge on its own row: its lines not run are the answers to
    # a VM that cannot pin an array or copy a string, which no test can make.
    if f["filename"].startswith("interface/jni/"):
        folder = "interface/jni"
    t = folders.setdefault(folder, [0, 0, 0, 0])
    t[0] += f["line_covered"]; t[1] += f["line_total"]
    t[2] += f["branch_covered"]; t[3] += f["branch_total"]
def pct(a, b):
    return 100.0 * a / b if b else 100.0
print(f"{'folder':<14}{'lines':>16}{'':>8}{'branches':>16}")
failed = []
for folder in ["foundation", "search", "predictor", "interface", "interface/jni", "table"]:
    if folder not in folders:
        continue
    lc, lt, bc, bt = folders[folder]
    print(f"{folder:<14}{lc:>8}/{lt:<7}{pct(lc, lt):6.1f} %{bc:>8}/{bt:<7}{pct(bc, bt):6.1f} %")
    if folder in ("search", "predictor", "interface") and pct(lc, lt) < minimum:
        failed.append(folder)
if failed:
    print(f"coverage: below {minimum:g} % of lines: {', '.join(failed)} "
          "(see coverage.txt for the lines not run)")
    sys.exit(1)
PY
