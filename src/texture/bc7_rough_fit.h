#ifndef VEK_TEXTURE_BC7_ROUGH_FIT_H
#define VEK_TEXTURE_BC7_ROUGH_FIT_H

#include "texture/bc7_block.h"

namespace q3 {

// Fits a line to the pixels of each subset of a partition. Stores its ends in the partition's place, and returns the
// squared error of the block with them. Those of the partitions before it must be there: some have subsets in common.
int32_t RoughMSE(const Bc7Mode& mode, const Bc7Pixels& pixels, size_t partition, uint32_t selection,
                 std::array<Bc7Endpoints, 64>& endpoints);

}  // namespace q3

#endif
