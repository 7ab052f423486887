#!/usr/bin/env bash
# Installs what the tests need on Debian 12, builds every way that we promise, and runs every test. See usage below.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh

all_steps=(format release docs clang asan tsan fuzz bench)

usage() {
  cat <<END
usage: scripts/test.sh [--quick] [--fuzz-seconds N] [--no-install] [STEP...]

  --quick           only the steps format, release and docs
  --fuzz-seconds N  time for each fuzz target (60)
  --no-install      install no packages

Steps, all of them if none is named, in build folders under build/:
  format   clang-format has nothing to change, and no line is longer than 120 columns
  release  g++, as shipped: library, application, benchmarks, all tests
  docs     Doxygen has nothing to complain of
  clang    clang++, as shipped: all tests
  asan     clang++ with AddressSanitizer and UndefinedBehaviorSanitizer: all tests
  tsan     clang++ with ThreadSanitizer, LLVM's OpenMP runtime and its Archer tool: all tests
  fuzz     asan's build with libFuzzer: every fuzz target for a while
  bench    every benchmark once, briefly; while the fuzz targets run, if they do
END
}

steps=()
fuzz_seconds=60
install=yes
while [[ $# -gt 0 ]]; do
  case $1 in
    --quick) steps+=(format release docs) ;;
    --fuzz-seconds) fuzz_seconds=${2:?--fuzz-seconds wants a number}; shift ;;
    --no-install) install=no ;;
    -h | --help) usage; exit ;;
    *)
      if [[ " ${all_steps[*]} " != *" $1 "* ]]; then
        usage >&2
        exit 2
      fi
      steps+=("$1")
      ;;
  esac
  shift
done
[[ ${#steps[@]} -gt 0 ]] || steps=("${all_steps[@]}")

jobs=$(nproc)
export CCACHE_SLOPPINESS=pch_defines,time_macros  # the tests have a precompiled header
gnu=(-DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++)
llvm=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++)

# configure KIND OPTION...: makes build/KIND.
configure() {
  local kind=$1
  shift
  cmake -S . -B "build/$kind" -G Ninja -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache "$@" \
    >"build/$kind.log" || { cat "build/$kind.log"; return 1; }
}

# build_all KIND [TARGET...]
build_all() {
  local kind=$1
  shift
  ninja -C "build/$kind" -j "$jobs" --quiet "$@"
}

# run_tests KIND: prints what failed, and the closing lines.
run_tests() {
  ctest --test-dir "build/$1" -j "$jobs" --output-on-failure --no-tests=error |
    grep -vE '^ *(Start +[0-9]+:|[0-9]+/[0-9]+ Test +#.* Passed )'
}

step_format() {
  git ls-files -z '*.h' '*.c' '*.cpp' | xargs -0 clang-format --dry-run --Werror
  local long
  long=$(git grep -InE '^.{121,}' -- . ':!fuzz/seeds') || true
  if [[ -n $long ]]; then
    printf 'lines longer than 120 columns:\n%s\n' "$long" >&2
    return 1
  fi
}

step_release() {
  configure release "${gnu[@]}" -DVEK_BUILD_BENCH=ON
  build_all release
  run_tests release
}

step_docs() {
  configure release "${gnu[@]}" -DVEK_BUILD_BENCH=ON
  build_all release docs
}

step_clang() {
  configure clang "${llvm[@]}" -DVEK_BUILD_BENCH=ON
  build_all clang
  run_tests clang
}

# One build for the tests and the fuzz targets.
configure_asan() { configure asan "${llvm[@]}" -DVEK_SANITIZE=address,undefined -DVEK_BUILD_FUZZ=ON; }

step_asan() {
  configure_asan
  build_all asan
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_init_order=1 UBSAN_OPTIONS=print_stacktrace=1 \
    LSAN_OPTIONS=suppressions=$PWD/scripts/leaks.supp:print_suppressions=0 run_tests asan
}

step_tsan() {
  configure tsan "${llvm[@]}" -DVEK_SANITIZE=thread
  build_all tsan
  # Archer tells ThreadSanitizer what the OpenMP runtime, which is not instrumented, orders.
  local archer
  archer=$(find -L /usr/lib/llvm-*/lib -name libarcher.so | sort -V | tail -n 1)
  [[ -n $archer ]] || { echo "libarcher.so is missing" >&2; return 1; }
  OMP_TOOL_LIBRARIES=$archer TSAN_OPTIONS=ignore_noninstrumented_modules=1 run_tests tsan
}

step_fuzz() {
  configure_asan
  build_all asan fuzz/all
  local fuzzers=(build/asan/fuzzers/*)
  [[ -x ${fuzzers[0]} ]] || { echo "there are no fuzz targets" >&2; return 1; }
  printf '%s\n' "${fuzzers[@]}" | xargs -P "$jobs" -n 1 scripts/fuzz.sh --seconds "$fuzz_seconds"
}

step_bench() {
  configure release "${gnu[@]}" -DVEK_BUILD_BENCH=ON
  build_all release vekjp_bench
  build/release/bench/vekjp_bench --benchmark_min_time=0.001 --benchmark_out=build/bench.json \
    --benchmark_out_format=json >build/bench.log 2>&1 || { cat build/bench.log; return 1; }
  python3 bench/table.py build/bench.json --table build/bench.md
  echo "$(grep -c '^BM_' build/bench.log) benchmarks ran"
}

bench_pid=
summary=()
step=packages
began=$SECONDS
finish() {
  local status=$?
  [[ -z $bench_pid ]] || kill "$bench_pid" 2>/dev/null || true
  [[ $status -eq 0 ]] || summary+=("$(printf '%-8s FAILED after %4d s' "$step" $((SECONDS - began)))")
  printf '\n%s\n' "---- summary ----"
  printf '%s\n' "${summary[@]}"
  if [[ $status -eq 0 ]]; then
    echo "All steps passed in $SECONDS s."
  else
    echo "FAILED in step $step."
  fi
}
trap finish EXIT

mkdir -p build
if [[ $install == yes ]]; then
  install_packages "${packages_build[@]}" "${packages_test[@]}"
fi
for step in "${steps[@]}"; do
  printf '\n---- %s ----\n' "$step"
  began=$SECONDS
  if [[ $step == fuzz && " ${steps[*]} " == *" fuzz "*"bench "* ]]; then  # the benchmarks come later
    step_bench >build/bench-step.log 2>&1 &
    bench_pid=$!
  fi
  if [[ $step == bench && -n $bench_pid ]]; then
    wait "$bench_pid" || { cat build/bench-step.log; exit 1; }
    bench_pid=
    cat build/bench-step.log
  else
    "step_$step"
  fi
  summary+=("$(printf '%-8s passed in %4d s' "$step" $((SECONDS - began)))")
done
