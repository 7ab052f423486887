#include <cstddef>
#include <utility>

#include "reference/texture/bptc.h"
#include "reference/texture/bptc_tables.h"

namespace model {
namespace {

struct Mode {
    int subsets, partition, rotation, selection, colour, alpha, pBitsOfEndpoints, pBitsOfSubsets, index, index2;
};
constexpr Mode modes[8] = {{3, 4, 0, 0, 4, 0, 1, 0, 3, 0}, {2, 6, 0, 0, 6, 0, 0, 1, 3, 0},
                           {3, 6, 0, 0, 5, 0, 0, 0, 2, 0}, {2, 6, 0, 0, 7, 0, 1, 0, 2, 0},
                           {1, 0, 2, 1, 5, 6, 0, 0, 2, 3}, {1, 0, 2, 0, 7, 8, 0, 0, 2, 2},
                           {1, 0, 0, 0, 7, 7, 1, 0, 4, 0}, {2, 6, 0, 0, 5, 5, 1, 0, 2, 0}};

int expand(int v, int bits) { return bits == 8 ? v : v << (8 - bits) | v >> (2 * bits - 8); }

}  // namespace

Bc7Block decodeBc7(const uint8_t* block)
{
    Bc7Block pixels{};
    int number = 0;
    while (number < 8 && (block[0] >> number & 1) == 0) ++number;
    if (number == 8)
        return pixels;
    const Mode& m = modes[number];
    BlockReader bits(block);
    bits.take(number + 1);
    const int partition = bits.take(m.partition);
    const int rotation = bits.take(m.rotation);
    const int selection = bits.take(m.selection);
    int ends[6][4] = {};
    for (int c = 0; c < 4; ++c)
        for (int e = 0; e < 2 * m.subsets; ++e) ends[e][c] = bits.take(c < 3 ? m.colour : m.alpha);
    int pBits[6] = {};
    if (m.pBitsOfEndpoints != 0)
        for (int e = 0; e < 2 * m.subsets; ++e) pBits[e] = bits.take(1);
    if (m.pBitsOfSubsets != 0)
        for (int s = 0; s < m.subsets; ++s) pBits[2 * s] = pBits[2 * s + 1] = bits.take(1);
    const int extra = m.pBitsOfEndpoints + m.pBitsOfSubsets;
    for (int e = 0; e < 2 * m.subsets; ++e)
        for (int c = 0; c < 4; ++c) {
            const int width = c < 3 ? m.colour : m.alpha;
            if (width == 0)
                ends[e][c] = 255;
            else
                ends[e][c] = expand(extra == 0 ? ends[e][c] : ends[e][c] * 2 + pBits[e], width + extra);
        }
    int first[16] = {}, second[16] = {};
    for (int i = 0; i < 16; ++i) first[i] = bits.take(m.index - (isAnchor(m.subsets, partition, i) ? 1 : 0));
    if (m.index2 != 0)
        for (int i = 0; i < 16; ++i) second[i] = bits.take(m.index2 - (i == 0 ? 1 : 0));
    for (int i = 0; i < 16; ++i) {
        const int subset = subsetOf(m.subsets, partition, i);
        int colourWeight = weightOf(m.index, first[i]);
        int alphaWeight = colourWeight;
        if (m.index2 != 0)
            alphaWeight = weightOf(m.index2, second[i]);
        if (selection != 0)
            std::swap(colourWeight, alphaWeight);
        auto& pixel = pixels[static_cast<size_t>(i)];
        for (int c = 0; c < 4; ++c) {
            const int w = c < 3 ? colourWeight : alphaWeight;
            pixel[static_cast<size_t>(c)] =
                static_cast<uint8_t>(((64 - w) * ends[2 * subset][c] + w * ends[2 * subset + 1][c] + 32) >> 6);
        }
        if (rotation != 0)
            std::swap(pixel[static_cast<size_t>(rotation - 1)], pixel[3]);
    }
    return pixels;
}

}  // namespace model
