#include <benchmark/benchmark.h>

#include "vekj.h"

// The cost of a call: one jump through a slot.
static void BM_vekjGetLibVersion(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(vekjGetLibVersion());
}
BENCHMARK(BM_vekjGetLibVersion);
