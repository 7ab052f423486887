#include <cpuid.h>
#include <gtest/gtest.h>
#include <omp.h>
#include <sched.h>

#include <cstdint>
#include <cstring>

#include "vekcore.h"

namespace {

TEST(CoreFeatures, AgreeWithTheCompilersOwnDetection)
{
    __builtin_cpu_init();
    const uint64_t features = vekGetEnabledCpuFeatures();
    const auto has = [&](uint64_t bit) { return (features & bit) != 0; };
    EXPECT_EQ(__builtin_cpu_supports("sse2") != 0, has(VEK_CPU_SSE2));
    EXPECT_EQ(__builtin_cpu_supports("sse3") != 0, has(VEK_CPU_SSE3));
    EXPECT_EQ(__builtin_cpu_supports("ssse3") != 0, has(VEK_CPU_SSSE3));
    EXPECT_EQ(__builtin_cpu_supports("sse4.1") != 0, has(VEK_CPU_SSE41));
    EXPECT_EQ(__builtin_cpu_supports("sse4.2") != 0, has(VEK_CPU_SSE42));
    EXPECT_EQ(__builtin_cpu_supports("popcnt") != 0, has(VEK_CPU_POPCNT));
    EXPECT_EQ(__builtin_cpu_supports("avx") != 0, has(VEK_CPU_AVX));
    EXPECT_EQ(__builtin_cpu_supports("fma") != 0, has(VEK_CPU_FMA));
    EXPECT_EQ(__builtin_cpu_supports("avx2") != 0, has(VEK_CPU_AVX2));
    EXPECT_EQ(__builtin_cpu_supports("bmi") != 0, has(VEK_CPU_BMI1));
    EXPECT_EQ(__builtin_cpu_supports("bmi2") != 0, has(VEK_CPU_BMI2));
    EXPECT_EQ(__builtin_cpu_supports("avx512f") != 0, has(VEK_CPU_AVX512F));
    EXPECT_EQ(__builtin_cpu_supports("avx512bw") != 0, has(VEK_CPU_AVX512BW));
}

TEST(CoreFeatures, Bits0x10And0x20AreAvx2AndFma)
{
    EXPECT_EQ(0x10u, VEK_CPU_AVX2);
    EXPECT_EQ(0x20u, VEK_CPU_FMA);
}

TEST(CoreFeatures, AreStoredWhereAskedFor)
{
    uint64_t features = 0;
    uint32_t info[4] = {};
    EXPECT_EQ(0, vekGetCpuFeatures(nullptr, nullptr));
    EXPECT_EQ(0, vekGetCpuFeatures(&features, nullptr));
    EXPECT_EQ(vekGetEnabledCpuFeatures(), features);
    EXPECT_EQ(0, vekGetCpuFeatures(nullptr, info));
    uint32_t eax, ebx, ecx, edx;  // ebx tells which processor of the machine answered
    ASSERT_TRUE(__get_cpuid(1, &eax, &ebx, &ecx, &edx));
    EXPECT_EQ(eax, info[0]);
    EXPECT_EQ(ecx, info[2]);
    EXPECT_EQ(edx, info[3]);
}

TEST(CoreMemory, LengthBelowOneGivesNull)
{
    EXPECT_EQ(nullptr, vekMalloc(0));
    EXPECT_EQ(nullptr, vekMalloc(-1));
    EXPECT_EQ(nullptr, vekMalloc(INT32_MIN));
}

TEST(CoreMemory, BlocksHaveTheirLengthAndBeginAtCacheLines)
{
    for (const int32_t length : {1, 7, 63, 64, 65, 1644, 4096, 1 << 20}) {
        void* block = vekMalloc(length);
        ASSERT_NE(nullptr, block) << length;
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(block) % 64) << length;
        std::memset(block, 0xA5, static_cast<size_t>(length));
        vekFree(block);
    }
}

TEST(CoreMemory, FreeAcceptsNull) { vekFree(nullptr); }

TEST(CoreCache, NullIsRefused) { EXPECT_EQ(-1, vekGetMaxCacheSizeB(nullptr)); }

TEST(CoreCache, StoresAPlausibleSizeOrNothing)
{
    int32_t size = -77;
    if (vekGetMaxCacheSizeB(&size) == 0) {
        EXPECT_GE(size, 16 << 10);
    } else {
        EXPECT_EQ(-77, size);
    }
}

// Puts the thread's affinity and OpenMP's thread count back as they were.
class CoreThreads : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, sched_getaffinity(0, sizeof affinity_, &affinity_));
        maxThreads_ = omp_get_max_threads();
    }
    void TearDown() override
    {
        sched_setaffinity(0, sizeof affinity_, &affinity_);
        omp_set_num_threads(maxThreads_);
    }
    int processors() const { return CPU_COUNT(&affinity_); }
    void pinToOneProcessor() const
    {
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int i = 0; i < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++i)
            if (CPU_ISSET(i, &affinity_))
                CPU_SET(i, &one);
        ASSERT_EQ(0, sched_setaffinity(0, sizeof one, &one));
    }

private:
    cpu_set_t affinity_;
    int maxThreads_;
};

TEST_F(CoreThreads, FollowTheOpenMpRuntime)
{
    for (int threads = 1; threads <= processors(); ++threads) {
        omp_set_num_threads(threads);
        EXPECT_EQ(threads, ownGetNumThreads());
    }
}

TEST_F(CoreThreads, AreNoMoreThanTheProcessorsOfTheProcess)
{
    omp_set_num_threads(1000);
    EXPECT_EQ(processors(), ownGetNumThreads());
    pinToOneProcessor();
    EXPECT_EQ(1, ownGetNumThreads());
}

}  // namespace
