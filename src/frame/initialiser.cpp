#include "frame/tier.h"
#include "vekcore.h"

int32_t vekJumpIndex;

namespace q3 {

int32_t ownTierIndex(uint64_t enabledFeatures)
{
    constexpr uint64_t needed = VEK_CPU_AVX2 | VEK_CPU_FMA;
    return (enabledFeatures & needed) == needed ? 1 : 0;
}

namespace {

__attribute__((constructor)) void initialise()
{
    vekGetCpuFeatures(nullptr, nullptr);
    vekJumpIndex = ownTierIndex(vekGetEnabledCpuFeatures());
}

}  // namespace
}  // namespace q3
