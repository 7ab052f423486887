// The eight modes of BC7 blocks: what they hold, in the order of the block from bit 0 up. The mode comes first, as a
// one behind as many zeros.
#ifndef VEK_TEXTURE_BC7_MODES_H
#define VEK_TEXTURE_BC7_MODES_H

#include <array>
#include <cstddef>

namespace q3 {

enum class PBits { none, ofEndpoints, ofSubsets };

struct Bc7Mode {
    int subsets;
    int partitionBits;
    int rotationBits;
    int selectionBits;
    int colourBits;  // of each of red, green and blue, of each endpoint
    int alphaBits;   // 0: alpha is 255
    PBits pBits;
    int indexBits;
    int index2Bits;  // of a set for alpha, or of none

    constexpr int endpoints() const { return 2 * subsets; }
    constexpr int numPBits() const
    {
        return pBits == PBits::none ? 0 : pBits == PBits::ofEndpoints ? endpoints() : subsets;
    }
    constexpr int channelBits(int channel) const { return channel < 3 ? colourBits : alphaBits; }
    // With the p-bit, which is the lowest one.
    constexpr int precision(int channel) const
    {
        const int bits = channelBits(channel);
        return bits == 0 || pBits == PBits::none ? bits : bits + 1;
    }
};

constexpr std::array<Bc7Mode, 8> bc7Modes = {{
    {3, 4, 0, 0, 4, 0, PBits::ofEndpoints, 3, 0},
    {2, 6, 0, 0, 6, 0, PBits::ofSubsets, 3, 0},
    {3, 6, 0, 0, 5, 0, PBits::none, 2, 0},
    {2, 6, 0, 0, 7, 0, PBits::ofEndpoints, 2, 0},
    {1, 0, 2, 1, 5, 6, PBits::none, 2, 3},
    {1, 0, 2, 0, 7, 8, PBits::none, 2, 2},
    {1, 0, 0, 0, 7, 7, PBits::ofEndpoints, 4, 0},
    {2, 6, 0, 0, 5, 5, PBits::ofEndpoints, 2, 0},
}};

// The first bits of a mode's fields.
struct Bc7Layout {
    int partition, rotation, selection;
    std::array<int, 4> channels;
    int pBits, index, index2, end;
};
constexpr Bc7Layout bc7LayoutOf(int mode)
{
    const Bc7Mode& m = bc7Modes[static_cast<size_t>(mode)];
    Bc7Layout at{};
    at.partition = mode + 1;
    at.rotation = at.partition + m.partitionBits;
    at.selection = at.rotation + m.rotationBits;
    int next = at.selection + m.selectionBits;
    for (int c = 0; c < 4; ++c) {
        at.channels[static_cast<size_t>(c)] = next;
        next += m.endpoints() * m.channelBits(c);
    }
    at.pBits = next;
    at.index = at.pBits + m.numPBits();
    at.index2 = at.index + 16 * m.indexBits - m.subsets;
    at.end = at.index2 + (m.index2Bits == 0 ? 0 : 16 * m.index2Bits - 1);
    return at;
}
static_assert([] {
    for (int mode = 0; mode < 8; ++mode)
        if (bc7LayoutOf(mode).end != 128)
            return false;
    return true;
}());

}  // namespace q3

#endif
