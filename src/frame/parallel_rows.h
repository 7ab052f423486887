// The rule by which row-wise functions share a region among threads.
#ifndef VEK_FRAME_PARALLEL_ROWS_H
#define VEK_FRAME_PARALLEL_ROWS_H

#include <algorithm>
#include <cstdint>

#include "vekcore.h"
#include "vekj/types.h"

namespace q3 {

constexpr int32_t parallelThreshold = 8192;  // samples; a larger region is shared among threads

// Calls row(y) for every row of the region: on the calling thread if width * height, as a signed 32-bit product that
// wraps, is at most parallelThreshold; else on ownGetNumThreads() threads, and one if there are fewer: one contiguous
// slice of nearly equal size each, top to bottom.
template <typename Row>
inline void forEachRow(VekSize roiSize, const Row& row)
{
    const int numThreads = std::max(ownGetNumThreads(), 1);
    const auto samples =
        static_cast<int32_t>(static_cast<uint32_t>(roiSize.width) * static_cast<uint32_t>(roiSize.height));
    if (samples <= parallelThreshold || numThreads <= 1) {
        for (int y = 0; y < roiSize.height; ++y) row(y);
        return;
    }
#pragma omp parallel for schedule(static) num_threads(numThreads)
    for (int y = 0; y < roiSize.height; ++y) row(y);
}

}  // namespace q3

#endif
