// Sizes of the functions that work on whole regions.
#ifndef VEK_BENCH_SUPPORT_REGIONS_H
#define VEK_BENCH_SUPPORT_REGIONS_H

#include <benchmark/benchmark.h>
#include <omp.h>

#include "vekj.h"

namespace support {

// In the first-level cache, and beyond the second; one thread.
inline void regions(benchmark::internal::Benchmark* b) { b->ArgNames({"w", "h"})->Args({256, 16})->Args({4096, 3072}); }

// From twice the size above which a region is shared by threads, to one that leaves every cache; one thread and two.
inline void sharedRegions(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"w", "h", "threads"})->UseRealTime();
    for (const int side : {128, 512, 2048, 8192})
        for (const int threads : {1, 2}) b->Args({side, side, threads});
}

// The region of a benchmark of either kind, once its number of threads is set.
inline VekSize startRegion(const benchmark::State& state, bool shared)
{
    omp_set_num_threads(shared ? static_cast<int>(state.range(2)) : 1);
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

inline void countPixels(benchmark::State& state, VekSize size)
{
    state.SetItemsProcessed(state.iterations() * size.width * size.height);
}

}  // namespace support

#endif
