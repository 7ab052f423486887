#!/usr/bin/env bash
# Runs one fuzz target for a while: scripts/fuzz.sh [--seconds N] PROGRAM. What it learns stays in build/corpus/NAME; an
# input that breaks it is left in build/crashes/NAME.
set -euo pipefail
seconds=60
if [[ ${1:-} == --seconds ]]; then
  seconds=$2
  shift 2
fi
program=$(realpath "$1")
cd "$(dirname "$0")/.."
name=$(basename "$program")
mkdir -p "build/corpus/$name" "build/crashes/$name"
options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
  -artifact_prefix="build/crashes/$name/")
[[ -f fuzz/$name.dict ]] && options+=(-dict="fuzz/$name.dict")
seeds=()
[[ -d fuzz/seeds/$name ]] && seeds+=("fuzz/seeds/$name")
log=build/$name.log
if ! "$program" "${options[@]}" "build/corpus/$name" "${seeds[@]}" >"$log" 2>&1; then
  tail -n 60 "$log"
  echo "$name: FAILED, see $log" >&2
  exit 1
fi
echo "$name: $(awk '/number_of_executed_units/ {print $2}' "$log") inputs in $seconds s," \
  "$(find "build/corpus/$name" -type f | wc -l) kept"
