#ifndef VEK_TEXTURE_BC7_REFINE_H
#define VEK_TEXTURE_BC7_REFINE_H

#include "texture/bc7_block.h"
#include "texture/block_bits.h"

namespace q3 {

// Quantises endpoints, improves them by local searches, and codes the block with the better ones. Returns the squared
// error before p-bits are settled, which may overrule the lowest bits of endpoints.
int32_t Refine(size_t mode, const Bc7Pixels& pixels, const Bc7Choice& choice, const Bc7Endpoints& rough,
               BlockBits& block);

}  // namespace q3

#endif
