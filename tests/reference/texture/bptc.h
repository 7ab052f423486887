// BC6H and BC7 blocks, bit by bit.
#ifndef VEK_TESTS_REFERENCE_TEXTURE_BPTC_H
#define VEK_TESTS_REFERENCE_TEXTURE_BPTC_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace model {

using Bc7Block = std::array<std::array<uint8_t, 4>, 16>;    // R, G, B, A of each pixel
using Bc6hBlock = std::array<std::array<uint16_t, 3>, 16>;  // R, G, B

Bc7Block decodeBc7(const uint8_t* block);
Bc6hBlock decodeBc6h(const uint8_t* block, bool isSigned);

// Whether no sum of an endpoint and a difference, in modes that have differences, is negative or too large, and else no
// endpoint the lowest of its bits: of such blocks there is one reading only.
bool bc6hNeedsNoWrapping(const uint8_t* block, bool isSigned);

}  // namespace model

#endif
