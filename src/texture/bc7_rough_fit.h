#ifndef VEK_TEXTURE_BC7_ROUGH_FIT_H
#define VEK_TEXTURE_BC7_ROUGH_FIT_H

#include "texture/bc7_block.h"

namespace q3 {

// Fits a line to the pixels of each subset of the first `partitions` partitions. Stores their ends, and the squared
// error of the block with each partition.
void RoughMSE(const Bc7Mode& mode, const Bc7Pixels& pixels, size_t partitions, uint32_t selection,
              Bc7Endpoints* endpoints, int32_t* errors);

}  // namespace q3

#endif
