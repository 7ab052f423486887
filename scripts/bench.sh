#!/usr/bin/env bash
# Times every function and its peer in one run, as shipped. Installs what it needs on Debian 12.
#   scripts/bench.sh [--filter REGEX] [--min-time SECONDS] [--readme]
# Leaves build/bench/run.json, table.md and plot.png. --readme puts the ratios that we promise into README.md.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
filter=. min_time=0.2 readme=no
while [[ $# -gt 0 ]]; do
  case $1 in
    --filter) filter=${2:?--filter wants a regular expression}; shift ;;
    --min-time) min_time=${2:?--min-time wants seconds}; shift ;;
    --readme) readme=yes ;;
    *) sed -n '2,4s/^# *//p' "$0" >&2; exit 2 ;;
  esac
  shift
done
install_packages "${packages_build[@]}" "${packages_bench[@]}"
mkdir -p build/bench
cmake -S . -B build/bench-build -G Ninja -DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ -DVEK_BUILD_TESTS=OFF \
  -DVEK_BUILD_BENCH=ON -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache >build/bench-build.log ||
  { cat build/bench-build.log; exit 1; }
ninja -C build/bench-build --quiet vekjp_bench
# The chosen functions bring their peers with them.
peers=$(awk -v filter="$filter" '!/^#/ && NF && ("BM_" $1 "/") ~ filter {print $2}' bench/pairs.txt |
  sort -u | paste -sd '|')
[[ -z $peers ]] || filter="$filter|^BM_($peers)(/|\$)"
# Three interleaved rounds, of which the median counts: neighbours on the machine disturb all alike.
OMP_NUM_THREADS=1 build/bench-build/bench/vekjp_bench --benchmark_filter="$filter" --benchmark_min_time="$min_time" \
  --benchmark_repetitions=3 --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
  --benchmark_out=build/bench/run.json --benchmark_out_format=json >build/bench/run.log 2>&1 ||
  { cat build/bench/run.log; exit 1; }
# The system's Python is the one that has the packaged matplotlib.
/usr/bin/python3 bench/table.py build/bench/run.json --table build/bench/table.md --plot build/bench/plot.png
if [[ $readme == yes ]]; then
  /usr/bin/python3 bench/table.py build/bench/run.json --into README.md
fi
cat build/bench/table.md
