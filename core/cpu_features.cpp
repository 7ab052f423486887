#include "vekcore.h"

#include "cpuid.h"

namespace {

using core::cpuid;
using core::Registers;

// Register state that the operating system saves (XCR0).
uint64_t savedState()
{
    unsigned low = 0;
    unsigned high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return uint64_t{high} << 32 | low;
}

uint64_t detect()
{
    constexpr uint64_t avxState = 0x6;      // xmm and ymm
    constexpr uint64_t avx512State = 0xE6;  // and the mask registers, the high halves and the high 16 of zmm
    const Registers basic = cpuid(1);
    const Registers extended = cpuid(7);
    const Registers amd = cpuid(0x80000001);
    const uint64_t state = (basic.ecx & bit_OSXSAVE) != 0 ? savedState() : 0;
    const bool avx = (state & avxState) == avxState && (basic.ecx & bit_AVX) != 0;
    const bool avx512 = (state & avx512State) == avx512State && avx;

    const struct {
        uint64_t feature;
        bool present;
    } list[] = {
        {VEK_CPU_SSE2, (basic.edx & bit_SSE2) != 0},
        {VEK_CPU_SSE3, (basic.ecx & bit_SSE3) != 0},
        {VEK_CPU_SSSE3, (basic.ecx & bit_SSSE3) != 0},
        {VEK_CPU_SSE41, (basic.ecx & bit_SSE4_1) != 0},
        {VEK_CPU_SSE42, (basic.ecx & bit_SSE4_2) != 0},
        {VEK_CPU_POPCNT, (basic.ecx & bit_POPCNT) != 0},
        {VEK_CPU_MOVBE, (basic.ecx & bit_MOVBE) != 0},
        {VEK_CPU_AVX, avx},
        {VEK_CPU_FMA, avx && (basic.ecx & bit_FMA) != 0},
        {VEK_CPU_F16C, avx && (basic.ecx & bit_F16C) != 0},
        {VEK_CPU_AVX2, avx && (extended.ebx & bit_AVX2) != 0},
        {VEK_CPU_BMI1, (extended.ebx & bit_BMI) != 0},
        {VEK_CPU_BMI2, (extended.ebx & bit_BMI2) != 0},
        {VEK_CPU_LZCNT, (amd.ecx & bit_LZCNT) != 0},
        {VEK_CPU_AVX512F, avx512 && (extended.ebx & bit_AVX512F) != 0},
        {VEK_CPU_AVX512BW, avx512 && (extended.ebx & bit_AVX512BW) != 0},
    };
    uint64_t features = 0;
    for (const auto& entry : list)
        if (entry.present)
            features |= entry.feature;
    return features;
}

uint64_t detectedFeatures()
{
    static const uint64_t features = detect();
    return features;
}

}  // namespace

int32_t vekGetCpuFeatures(uint64_t* pFeatures, uint32_t pCpuInfo[4])
{
    const uint64_t features = detectedFeatures();
    if (pFeatures != nullptr)
        *pFeatures = features;
    if (pCpuInfo != nullptr) {
        const Registers r = cpuid(1);
        pCpuInfo[0] = r.eax;
        pCpuInfo[1] = r.ebx;
        pCpuInfo[2] = r.ecx;
        pCpuInfo[3] = r.edx;
    }
    return 0;
}

uint64_t vekGetEnabledCpuFeatures() { return detectedFeatures(); }
