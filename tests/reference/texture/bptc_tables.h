// Facts of the published BC6H and BC7 formats, for the models.
#ifndef VEK_TESTS_REFERENCE_TEXTURE_BPTC_TABLES_H
#define VEK_TESTS_REFERENCE_TEXTURE_BPTC_TABLES_H

#include <cstdint>

namespace model {

// The subset of each pixel, a bit or two each, the first pixel lowest.
constexpr uint32_t twoSubsets[64] = {
    0xCCCC, 0x8888, 0xEEEE, 0xECC8, 0xC880, 0xFEEC, 0xFEC8, 0xEC80, 0xC800, 0xFFEC, 0xFE80, 0xE800, 0xFFE8,
    0xFF00, 0xFFF0, 0xF000, 0xF710, 0x008E, 0x7100, 0x08CE, 0x008C, 0x7310, 0x3100, 0x8CCE, 0x088C, 0x3110,
    0x6666, 0x366C, 0x17E8, 0x0FF0, 0x718E, 0x399C, 0xAAAA, 0xF0F0, 0x5A5A, 0x33CC, 0x3C3C, 0x55AA, 0x9696,
    0xA55A, 0x73CE, 0x13C8, 0x324C, 0x3BDC, 0x6996, 0xC33C, 0x9966, 0x0660, 0x0272, 0x04E4, 0x4E40, 0x2720,
    0xC936, 0x936C, 0x39C6, 0x639C, 0x9336, 0x9CC6, 0x817E, 0xE718, 0xCCF0, 0x0FCC, 0x7744, 0xEE22};
constexpr uint32_t threeSubsets[64] = {
    0xAA685050, 0x6A5A5040, 0x5A5A4200, 0x5450A0A8, 0xA5A50000, 0xA0A05050, 0x5555A0A0, 0x5A5A5050,
    0xAA550000, 0xAA555500, 0xAAAA5500, 0x90909090, 0x94949494, 0xA4A4A4A4, 0xA9A59450, 0x2A0A4250,
    0xA5945040, 0x0A425054, 0xA5A5A500, 0x55A0A0A0, 0xA8A85454, 0x6A6A4040, 0xA4A45000, 0x1A1A0500,
    0x0050A4A4, 0xAAA59090, 0x14696914, 0x69691400, 0xA08585A0, 0xAA821414, 0x50A4A450, 0x6A5A0200,
    0xA9A58000, 0x5090A0A8, 0xA8A09050, 0x24242424, 0x00AA5500, 0x24924924, 0x24499224, 0x50A50A50,
    0x500AA550, 0xAAAA4444, 0x66660000, 0xA5A0A5A0, 0x50A050A0, 0x69286928, 0x44AAAA44, 0x66666600,
    0xAA444444, 0x54A854A8, 0x95809580, 0x96969600, 0xA85454A8, 0x80959580, 0xAA141414, 0x96960000,
    0xAAAA1414, 0xA05050A0, 0xA0A5A5A0, 0x96000000, 0x40804080, 0xA9A8A9A8, 0xAAAAAA44, 0x2A4A5254};

// Anchor classes, and the pixels which they stand for.
constexpr int twoSubsetClass[64] = {3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 0, 2, 0, 0, 2,
                                    2, 3, 0, 2, 0, 0, 2, 2, 0, 0, 3, 3, 1, 2, 0, 2, 3, 3, 0, 2, 0, 0,
                                    0, 3, 3, 1, 1, 0, 1, 2, 3, 3, 0, 0, 3, 3, 3, 3, 3, 0, 0, 3};
constexpr int twoSubsetAnchor[4] = {2, 6, 8, 15};
constexpr int threeSubsetClass[64] = {2, 1, 10, 2,  10, 2, 2,  10, 10, 10, 7,  7,  7, 4,  2,  1,  2, 1,  10, 2, 2,  1,
                                      7, 9, 0,  10, 5,  6, 10, 4,  11, 10, 10, 2,  2, 3,  6,  9,  8, 11, 7,  2, 10, 4,
                                      2, 7, 7,  10, 2,  2, 4,  4,  4,  10, 4,  11, 4, 11, 10, 13, 2, 12, 2,  1};
constexpr int threeSubsetAnchors[14][2] = {{3, 5},  {3, 8}, {3, 15}, {5, 10}, {5, 15},  {6, 8},   {6, 10},
                                           {6, 15}, {8, 9}, {8, 10}, {8, 15}, {10, 15}, {12, 15}, {13, 15}};

constexpr int weights2[4] = {0, 21, 43, 64};
constexpr int weights3[8] = {0, 9, 18, 27, 37, 46, 55, 64};
constexpr int weights4[16] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};

inline int weightOf(int bits, int index)
{
    return bits == 2 ? weights2[index] : bits == 3 ? weights3[index] : weights4[index];
}

inline int subsetOf(int subsets, int partition, int pixel)
{
    if (subsets == 1)
        return 0;
    return static_cast<int>(subsets == 2 ? twoSubsets[partition] >> pixel & 1
                                         : threeSubsets[partition] >> (2 * pixel) & 3);
}

inline bool isAnchor(int subsets, int partition, int pixel)
{
    if (pixel == 0 || subsets == 1)
        return pixel == 0;
    if (subsets == 2)
        return pixel == twoSubsetAnchor[twoSubsetClass[partition]];
    const int* pair = threeSubsetAnchors[threeSubsetClass[partition]];
    return pixel == pair[0] || pixel == pair[1];
}

// The bits of a block, from the lowest of its first byte on.
class BlockReader {
public:
    explicit BlockReader(const uint8_t* block) : block_(block) {}
    int take(int count)
    {
        int v = 0;
        for (int i = 0; i < count; ++i, ++position_) v |= (block_[position_ / 8] >> (position_ % 8) & 1) << i;
        return v;
    }
    int position() const { return position_; }

private:
    const uint8_t* block_;
    int position_ = 0;
};

}  // namespace model

#endif
