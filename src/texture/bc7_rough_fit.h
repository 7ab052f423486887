#ifndef VEK_TEXTURE_BC7_ROUGH_FIT_H
#define VEK_TEXTURE_BC7_ROUGH_FIT_H

#include "texture/bc7_block.h"

namespace q3 {

// Fits a line to the pixels of each subset. Stores its ends, and returns the squared error of the block with them.
int32_t RoughMSE(const Bc7Mode& mode, const Bc7Pixels& pixels, size_t partition, uint32_t selection,
                 Bc7Endpoints& endpoints);

}  // namespace q3

#endif
