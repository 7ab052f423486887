// How the library calls the core services.
#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

#include "frame/allocation.h"
#include "frame/parallel_rows.h"
#include "frame/recorded_core.h"
#include "frame/tier.h"
#include "vekj.h"

namespace {

TEST(Initialiser, AsksForDetectionWithTwoNullPointersThenForTheMaskOnce)
{
    EXPECT_EQ(recorded::Call::CpuFeatures, recorded::callsAtLoad[0]);
    EXPECT_EQ(recorded::Call::EnabledFeatures, recorded::callsAtLoad[1]);
    EXPECT_EQ(recorded::Call::None, recorded::callsAtLoad[2]);
}

TEST(Initialiser, OneBitOfTwoGivesTierIndexZeroAndTheSameImplementations)
{
    EXPECT_EQ(0, vekJumpIndex);
    EXPECT_STREQ("7.1.1 (r37466)", vekjGetLibVersion()->versionText);
}

TEST(Malloc8u, LengthBelowOneDoesNotReachTheCoreServices)
{
    recorded::mallocCalls = 0;
    EXPECT_EQ(nullptr, q3::veksMalloc_8u(0));
    EXPECT_EQ(nullptr, q3::veksMalloc_8u(-1));
    EXPECT_EQ(nullptr, q3::veksMalloc_8u(INT32_MIN));
    EXPECT_EQ(0, recorded::mallocCalls);
}

TEST(Malloc8u, PassesItsLengthOn)
{
    recorded::mallocCalls = 0;
    uint8_t* block = q3::veksMalloc_8u(1644);
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(1, recorded::mallocCalls);
    EXPECT_EQ(1644, recorded::lastMallocLength);
    recorded::freeCalls = 0;
    q3::veksFree(block);
    EXPECT_EQ(1, recorded::freeCalls);
    EXPECT_EQ(block, recorded::lastFreed);
}

TEST(Free, PassesNullOn)
{
    recorded::freeCalls = 0;
    q3::veksFree(nullptr);
    EXPECT_EQ(1, recorded::freeCalls);
    EXPECT_EQ(nullptr, recorded::lastFreed);
}

struct Report {
    std::vector<int> threadOfRow;
    std::vector<int> turnOfRow;  // how many rows its thread had done before
    bool parallel = false;
    int threads = 1;
    int asked = 0;
};

// Hands the rows of a region to forEachRow with `numThreads` threads allowed, and tells who did what.
Report runRows(VekSize roiSize, int numThreads)
{
    Report result;
    result.threadOfRow.assign(static_cast<size_t>(roiSize.height), -1);
    result.turnOfRow.assign(static_cast<size_t>(roiSize.height), -1);
    std::vector<int> done(64 * 16, 0);  // a cache line for each thread
    recorded::numThreads = numThreads;
    recorded::numThreadsCalls = 0;
    q3::forEachRow(roiSize, [&](int y) {
        const int thread = omp_get_thread_num();
        result.threadOfRow[static_cast<size_t>(y)] = thread;
        result.turnOfRow[static_cast<size_t>(y)] = done[static_cast<size_t>(thread) * 16]++;
        if (y == 0) {
            result.parallel = omp_in_parallel() != 0;
            result.threads = omp_get_num_threads();
        }
    });
    result.asked = recorded::numThreadsCalls;
    return result;
}

TEST(ParallelRule, Exactly8192SamplesRunOnTheCallingThread)
{
    const Report whole = runRows({128, 64}, 4);
    EXPECT_FALSE(whole.parallel);
    EXPECT_EQ(std::vector<int>(64, 0), whole.threadOfRow);
}

TEST(ParallelRule, One8193rdSampleOpensARegion)
{
    const Report shared = runRows({2731, 3}, 3);
    EXPECT_TRUE(shared.parallel);
    EXPECT_EQ(3, shared.threads);
    EXPECT_EQ((std::vector<int>{0, 1, 2}), shared.threadOfRow);
}

TEST(ParallelRule, TheThreadCountIsReadOnce)
{
    EXPECT_EQ(1, runRows({2731, 3}, 3).asked);
    EXPECT_EQ(1, runRows({128, 64}, 3).asked);
}

TEST(ParallelRule, NoThreadOrFewerCountAsOne)
{
    for (const int none : {0, -1, INT32_MIN}) {
        const Report whole = runRows({8193, 3}, none);
        EXPECT_EQ(1, whole.threads);
        EXPECT_EQ((std::vector<int>{0, 0, 0}), whole.threadOfRow);
        EXPECT_EQ((std::vector<int>{0, 1, 2}), whole.turnOfRow);
    }
}

TEST(ParallelRule, ThreadsTakeContiguousSlicesOfNearlyEqualSizeTopToBottom)
{
    for (const int threads : {1, 2, 3, 7}) {
        for (const int rows : {1, 2, 3, 20, 23, 70}) {
            const Report shared = runRows({8193, rows}, threads);
            std::vector<int> count(static_cast<size_t>(threads), 0);
            for (int y = 0; y < rows; ++y) {
                const int thread = shared.threadOfRow[static_cast<size_t>(y)];
                ASSERT_GE(thread, 0);
                ASSERT_LT(thread, threads);
                if (y > 0) {
                    ASSERT_GE(thread, shared.threadOfRow[static_cast<size_t>(y) - 1]);
                }
                ASSERT_EQ(count[static_cast<size_t>(thread)]++, shared.turnOfRow[static_cast<size_t>(y)]);
            }
            for (const int c : count) {
                EXPECT_GE(c, rows / threads) << rows << " rows, " << threads << " threads";
                EXPECT_LE(c, (rows + threads - 1) / threads) << rows << " rows, " << threads << " threads";
            }
        }
    }
}

TEST(ParallelRule, TheProductWrapsAt32Bits)
{
    EXPECT_FALSE(runRows({65536, 65536}, 3).parallel);   // 0
    EXPECT_FALSE(runRows({65536, 32768}, 3).parallel);   // -2147483648
    EXPECT_TRUE(runRows({65536, 32767}, 3).parallel);    // 2147418112
    EXPECT_FALSE(runRows({2147483647, 2}, 3).parallel);  // -2
    EXPECT_TRUE(runRows({2147483647, 3}, 3).parallel);   // 2147483645
}

TEST(ParallelRule, RunsOnTheCallingThreadWhereTheRuntimeRefusesToFork)
{
    const int levels = omp_get_max_active_levels();
    omp_set_max_active_levels(0);
    const Report refused = runRows({8193, 10}, 4);
    omp_set_max_active_levels(levels);
    EXPECT_EQ(1, refused.threads);
    EXPECT_EQ(std::vector<int>(10, 0), refused.threadOfRow);
}

}  // namespace
