// Contexts of a sample by its flags (ISO/IEC 15444-1, Tables D.1 to D.4). The flags are those of sample_flags.h.
#ifndef VEK_JPEG2K_CODEBLOCK_CONTEXT_TABLES_H
#define VEK_JPEG2K_CODEBLOCK_CONTEXT_TABLES_H

#include <array>
#include <bit>
#include <cstdint>

#include "jpeg2k/codeblock/mq_states.h"

namespace q3 {

using ZeroCodingTable = std::array<uint8_t, 256>;  // by the flags of the eight neighbours' significance

// Table D.1, with d the significant diagonal neighbours; v and h those above and below and beside, or the other way
// round for HL.
constexpr uint32_t zeroLabel(int h, int v, int d)
{
    if (h == 2)
        return 8;
    if (h == 1)
        return v >= 1 ? 7 : d >= 1 ? 6 : 5;
    if (v != 0)
        return v == 2 ? 4 : 3;
    return d >= 2 ? 2 : static_cast<uint32_t>(d);
}
constexpr uint32_t zeroLabelDiagonal(int hv, int d)
{
    if (d >= 3)
        return 8;
    if (d == 2)
        return hv >= 1 ? 7 : 6;
    const int beside = hv >= 2 ? 2 : hv;
    return static_cast<uint32_t>(d == 1 ? 3 + beside : beside);
}

template <typename Label>
constexpr ZeroCodingTable makeZeroCodingTable(Label label)
{
    ZeroCodingTable t{};
    for (uint32_t i = 0; i < t.size(); ++i) {
        const int d = std::popcount(i & 0x0F);
        const int v = std::popcount(i & 0x30);
        const int h = std::popcount(i & 0xC0);
        t[i] = static_cast<uint8_t>(firstZeroContext + label(h, v, d));
    }
    return t;
}
constexpr ZeroCodingTable ZeroCodingLUT_LxHy = makeZeroCodingTable(zeroLabel);
constexpr ZeroCodingTable ZeroCodingLUT_HxLy =
    makeZeroCodingTable([](int h, int v, int d) { return zeroLabel(v, h, d); });
constexpr ZeroCodingTable ZeroCodingLUT_HxHy =
    makeZeroCodingTable([](int h, int v, int d) { return zeroLabelDiagonal(h + v, d); });

// By the flags of the neighbours' significance and of earlier refinement.
constexpr std::array<uint8_t, 512> MagnRefineLUT = [] {
    std::array<uint8_t, 512> t{};
    for (uint32_t i = 0; i < t.size(); ++i) {
        const uint32_t label = (i & 0x100) != 0 ? 2 : (i & 0xFF) != 0 ? 1 : 0;
        t[i] = static_cast<uint8_t>(firstRefinementContext + label);
    }
    return t;
}();

// By flags 4 to 12: the context, and in bit 7 what the decision is to be inverted by. South, north, east and west
// neighbours are significant by bits 0 to 3, and negative by bits 5 to 8. No sample gets to the last entry.
constexpr std::array<uint8_t, 512> SignCodingLUT = [] {
    std::array<uint8_t, 512> t{};
    for (uint32_t i = 0; i + 1 < t.size(); ++i) {
        const auto contribution = [i](uint32_t a, uint32_t b) {
            const auto one = [i](uint32_t n) { return (i >> n & 1) == 0 ? 0 : (i >> (n + 5) & 1) != 0 ? -1 : 1; };
            const int sum = one(a) + one(b);
            return sum < -1 ? -1 : sum > 1 ? 1 : sum;
        };
        const int v = contribution(0, 1);
        const int h = contribution(2, 3);
        const bool inverts = h < 0 || (h == 0 && v < 0);
        const int label = h == 0 ? (v == 0 ? 0 : 1) : 3 + h * v;
        t[i] = static_cast<uint8_t>((inverts ? 0x80U : 0U) | (firstSignContext + static_cast<uint32_t>(label)));
    }
    return t;
}();
static_assert(SignCodingLUT[0] == 11 && SignCodingLUT[1] == 12 && SignCodingLUT[5] == 15 && SignCodingLUT[0x25] == 13 &&
              SignCodingLUT[0x84] == 0x8E);

// 2 is HL, 3 is HH, all others are LL and LH.
constexpr const ZeroCodingTable& zeroCodingTableOf(int subband)
{
    return subband == 2 ? ZeroCodingLUT_HxLy : subband == 3 ? ZeroCodingLUT_HxHy : ZeroCodingLUT_LxHy;
}

}  // namespace q3

#endif
