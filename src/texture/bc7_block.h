// What the BC7 encoder knows of a block.
#ifndef VEK_TEXTURE_BC7_BLOCK_H
#define VEK_TEXTURE_BC7_BLOCK_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "texture/bc7_modes.h"
#include "texture/partitions.h"

namespace q3 {

// Sixteen pixels, channel by channel: R, G, B, A.
struct alignas(32) Bc7Pixels {
    std::array<std::array<uint16_t, 16>, 4> channels;
};

using Bc7Colour = std::array<uint8_t, 4>;

struct Bc7EndpointPair {
    Bc7Colour a, b;
};
using Bc7Endpoints = std::array<Bc7EndpointPair, 3>;  // of the subsets

using Bc7Indices = std::array<uint8_t, 16>;

// One way of coding a block in a mode.
struct Bc7Choice {
    size_t partition;
    uint32_t rotation;
    uint32_t selection;  // of the index sets, if there are two: 1 exchanges their widths
};

constexpr Partition oneSubset{};

inline const Partition& subsetsOf(const Bc7Mode& mode, size_t partition)
{
    return mode.subsets == 1   ? oneSubset
           : mode.subsets == 2 ? subset_index_two_subsets[partition]
                               : subset_index_three_subsets[partition];
}

inline std::array<uint32_t, 3> anchorsOf(const Bc7Mode& mode, size_t partition)
{
    return mode.subsets == 1   ? anchorsOf<1>(partition)
           : mode.subsets == 2 ? anchorsOf<2>(partition)
                               : anchorsOf<3>(partition);
}

inline bool hasAlphaSet(const Bc7Mode& mode) { return mode.index2Bits != 0; }

// Bits of colour indices, and of alpha indices where they are apart.
inline int colourIndexBits(const Bc7Mode& mode, uint32_t selection)
{
    return selection == 0 ? mode.indexBits : mode.index2Bits;
}
inline int alphaIndexBits(const Bc7Mode& mode, uint32_t selection)
{
    return selection == 0 ? mode.index2Bits : mode.indexBits;
}

inline const uint8_t* weightsOf(int indexBits)
{
    return indexBits == 2 ? interW2.data() : indexBits == 3 ? interW3.data() : interW4.data();
}

}  // namespace q3

#endif
