#!/usr/bin/env bash
# Writes what every command-line tool prints and saves, for a fixed set of
# runs on the bundled log and the recorded logs, into one folder: a file per
# run (standard output, standard error, exit status, files written).
# Comparing two such folders shows whether a change of the tools' code
# changed any output:
#
#   scripts/tool-outputs.sh build-before out-before
#   scripts/tool-outputs.sh build-after out-after
#   diff -r out-before out-after && echo identical
#
# BUILD is a build folder of this tree; the recorded logs are read from
# ../shared/data when present.
set -uo pipefail
[ $# -eq 2 ] || { echo "usage: $0 BUILD OUT" >&2; exit 2; }
cd "$(dirname "$0")/.."
build=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
tools=$build/tools
log=examples/routine-35d.csv
recorded=()
for f in ../shared/data/*.csv; do [ -f "$f" ] && recorded+=("$f"); done
work=$(mktemp -d)
fleet=$(mktemp -d)
trap 'rm -rf "$work" "$fleet"' EXIT

# run NAME TOOL ARGS...: stdout, stderr and the exit status of one run, and
# any file it wrote into the work folder.
run() {
  local name=$1 tool=$2
  shift 2
  rm -rf "$work"/*
  (cd "$work" && "$tools/$tool/$tool" "$@" >"$out/$name.out" 2>"$out/$name.err")
  echo $? >"$out/$name.rc"
  local f
  for f in "$work"/*; do
    [ -f "$f" ] && cp "$f" "$out/$name.file.$(basename "$f")"
  done
}

top=$PWD
L=$top/$log
run forecast kez-forecast "$L"
run forecast-csv kez-forecast --format csv --variant all "$L"
run forecast-json kez-forecast --format json --steps 48 "$L"
run forecast-at kez-forecast --at 2024-04-01T18:00 --every 6 --when 23:00 --svg chart.svg "$L"
run forecast-logged kez-forecast --as-logged --interval 10 --level 30 "$L"
run forecast-params kez-forecast --params "$top/examples/tuned-simulated-4x60d.txt" --format json "$L"
run forecast-bad kez-forecast /nonexistent.csv
run simulate kez-simulate --days 3 --seed 5 --profile shift
run simulate-status kez-simulate --days 2 --seed 2 --format status -o sim.txt
run simulate-profiles kez-simulate --list-profiles
for p in regular shift heavy light; do
  "$tools/kez-simulate/kez-simulate" --days 40 --seed 11 --profile $p -o "$fleet/$p.csv" 2>/dev/null
done
run eval kez-eval --svg error.svg "$L"
run eval-json kez-eval --format json "$L"
run eval-csv kez-eval --format csv --horizons 1,3,24 "$L"
run eval-split kez-eval --from 2024-03-25 --to 2024-04-05 --as-logged "$L"
(cd "$fleet" && "$tools/kez-eval/kez-eval" regular.csv shift.csv heavy.csv light.csv \
  >"$out/eval-fleet.out" 2>"$out/eval-fleet.err"; echo $? >"$out/eval-fleet.rc")
i=0
for r in "${recorded[@]}"; do
  i=$((i + 1))
  rr=$top/$r
  run recorded$i-forecast kez-forecast --format json "$rr"
  run recorded$i-eval kez-eval --format json "$rr"
  run recorded$i-eval-text kez-eval "$rr"
  run recorded$i-table kez-table --keep-labels "$rr"
done
[ ${#recorded[@]} -gt 0 ] && run recorded-eval-pooled kez-eval "${recorded[@]/#/$top/}"
run tune kez-tune --quiet --generations 2 --offspring 4 --parents 2 --every 6 --out tuned.txt "$L"
run tune-features kez-tune --features --quiet --generations 1 --every 12 --out genome.txt "$L"
run table kez-table --keep-labels --line-step 3 --smooth Observation kernel --diff level_percent -o t.csv "$L"
run table-spline kez-table --smooth Observation spline --upsample 2 --relabel -o t2.csv "$L"
for t in kez-forecast kez-simulate kez-eval kez-tune kez-table; do
  run help-$t $t --help
  run noargs-$t $t
done
# Timings are not outputs.
sed -i -E 's/[0-9]+(\.[0-9]+)? s(econds)?\b/T s/g' "$out"/tune*.out "$out"/tune*.err 2>/dev/null
echo "$(ls "$out" | wc -l) files in $out"
