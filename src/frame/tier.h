#ifndef VEK_FRAME_TIER_H
#define VEK_FRAME_TIER_H

#include <cstdint>

// Index of the processor tier, found when the library is loaded: 1 if the processor has this tier's instructions (AVX2
// and FMA), else 0. A build with one tier has no use for it but to tell.
extern "C" int32_t vekJumpIndex;

namespace q3 {

int32_t ownTierIndex(uint64_t enabledFeatures);

}  // namespace q3

#endif
