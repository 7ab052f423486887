#ifndef VEK_TEXTURE_BC7_EMIT_H
#define VEK_TEXTURE_BC7_EMIT_H

#include "texture/bc7_block.h"
#include "texture/block_bits.h"

namespace q3 {

// What a block holds: endpoints without their p-bits, and the index sets in the order of the block.
struct Bc7Fields {
    Bc7Choice choice;
    Bc7Endpoints endpoints;
    std::array<uint32_t, 6> pBits;
    Bc7Indices indices, indices2;
};

// `mode` is 0 to 7. Indices of anchor pixels lack their highest bit, which is 0.
BlockBits emit_block_bc7(size_t mode, const Bc7Fields& fields);

}  // namespace q3

#endif
