#include <bit>

#include "frame/implementations.h"
#include "texture/bc7_modes.h"
#include "texture/block_bits.h"
#include "texture/image_functions.h"
#include "texture/partitions.h"

namespace q3 {
namespace {

constexpr uint64_t everyByte(uint32_t value) { return uint64_t{value} * 0x0101010101010101; }

// The endpoints' values of one channel, a byte each, brought to 8 bits.
template <int mode, int channel>
uint64_t endpointsOf(const BlockBits& block)
{
    constexpr Bc7Mode m = bc7Modes[mode];
    constexpr Bc7Layout at = bc7LayoutOf(mode);
    constexpr int bits = m.channelBits(channel);
    constexpr int precision = m.precision(channel);
    if constexpr (bits == 0) {
        return everyByte(255);
    } else {
        const auto fields = block.field<at.channels[channel], m.endpoints() * bits>();
        uint64_t values = _pdep_u64(fields, everyByte((1U << bits) - 1));
        if constexpr (m.pBits != PBits::none) {
            const auto p = block.field<at.pBits, m.numPBits()>();
            values = values << 1 |
                     (m.pBits == PBits::ofSubsets ? _pdep_u64(p, 0x00010001) * 0x0101 : _pdep_u64(p, everyByte(1)));
        }
        if constexpr (precision < 8) {
            constexpr uint64_t low = everyByte((1U << (8 - precision)) - 1);
            values = values << (8 - precision) | (values >> (2 * precision - 8) & low);
        }
        return values;
    }
}

// The weights of sixteen pixels, a byte each.
template <int bits>
__m128i weightsOf(uint64_t indices)
{
    constexpr uint64_t mask = everyByte((1U << bits) - 1);
    const __m128i bytes = _mm_set_epi64x(static_cast<int64_t>(_pdep_u64(indices >> (8 * bits), mask)),
                                         static_cast<int64_t>(_pdep_u64(indices, mask)));
    constexpr auto table = [] {
        std::array<uint8_t, 16> t{};
        for (size_t i = 0; i < size_t{1} << bits; ++i)
            t[i] = bits == 2 ? interW2[i] : bits == 3 ? interW3[i] : interW4[i];
        return t;
    }();
    return _mm_shuffle_epi8(loadU128(table.data()), bytes);
}

// (64 - weight, weight) for each pixel: eight pixels in each half.
struct WeightPairs {
    __m128i upper, lower;

    explicit WeightPairs(__m128i weights)
    {
        const __m128i others = _mm_sub_epi8(_mm_set1_epi8(64), weights);
        upper = _mm_unpacklo_epi8(others, weights);
        lower = _mm_unpackhi_epi8(others, weights);
    }
    // Those of four pixels, for each of four channels.
    template <int row>
    __m256i ofRow() const
    {
        constexpr char a = row % 2 * 8;
        const __m256i order = _mm256_setr_epi8(a, a + 1, a, a + 1, a, a + 1, a, a + 1, a + 2, a + 3, a + 2, a + 3,
                                               a + 2, a + 3, a + 2, a + 3, a + 4, a + 5, a + 4, a + 5, a + 4, a + 5,
                                               a + 4, a + 5, a + 6, a + 7, a + 6, a + 7, a + 6, a + 7, a + 6, a + 7);
        return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(row < 2 ? upper : lower), order);
    }
};

// Pixels of R, G, B, A: (64 - w) a + w b + 32, divided by 64, of their subset's endpoints a and b.
template <int mode>
void decodeMode(const BlockBits& block, uint8_t* pDst, int64_t step)
{
    constexpr Bc7Mode m = bc7Modes[mode];
    constexpr Bc7Layout at = bc7LayoutOf(mode);
    const auto lane = [](uint64_t v) { return _mm_cvtsi64_si128(static_cast<int64_t>(v)); };
    const __m128i redGreen = _mm_unpacklo_epi16(lane(endpointsOf<mode, 0>(block)), lane(endpointsOf<mode, 1>(block)));
    const __m128i blueAlpha = _mm_unpacklo_epi16(lane(endpointsOf<mode, 2>(block)), lane(endpointsOf<mode, 3>(block)));
    // (a, b) of the four channels, for each subset.
    const __m256i endpoints =
        _mm256_set_m128i(_mm_unpackhi_epi32(redGreen, blueAlpha), _mm_unpacklo_epi32(redGreen, blueAlpha));

    const auto partition = static_cast<size_t>(block.field<at.partition, m.partitionBits>());
    const auto indices =
        _pdep_u64(block.field<at.index, 16 * m.indexBits - m.subsets>(), indexMasks<m.subsets, m.indexBits>[partition]);
    const WeightPairs weights(weightsOf<m.indexBits>(indices));

    // The second set, and what colour and alpha take; the channel that changes places with alpha.
    constexpr bool hasAlphaSet = m.index2Bits != 0;
    WeightPairs colour = weights, alpha = weights;
    __m256i order = _mm256_setzero_si256();
    if constexpr (hasAlphaSet) {
        const auto indices2 =
            _pdep_u64(block.field<at.index2, 16 * m.index2Bits - 1>(), indexMasks<1, m.index2Bits>[0]);
        const WeightPairs weights2(weightsOf<m.index2Bits>(indices2));
        const bool isSwapped = block.field<at.selection, m.selectionBits>() != 0;
        colour = isSwapped ? weights2 : weights;
        alpha = isSwapped ? weights : weights2;
        constexpr std::array<uint32_t, 4> orders = {0x03020100, 0x00020103, 0x01020300, 0x02030100};
        const uint32_t pixel = orders[block.field<at.rotation, m.rotationBits>()];
        order = _mm256_add_epi8(
            _mm256_set1_epi32(static_cast<int>(pixel)),
            _mm256_setr_epi32(0, 0x04040404, 0x08080808, 0x0C0C0C0C, 0, 0x04040404, 0x08080808, 0x0C0C0C0C));
    }

    const auto row = [&]<int y>() {
        __m256i pairs = colour.ofRow<y>();
        if constexpr (hasAlphaSet)
            pairs = _mm256_blend_epi16(pairs, alpha.ofRow<y>(), 0x88);
        __m256i ends;
        if constexpr (m.subsets == 1) {
            ends = _mm256_permute4x64_epi64(endpoints, 0);
        } else {
            const Partition& subsets =
                m.subsets == 2 ? subset_index_two_subsets[partition] : subset_index_three_subsets[partition];
            const __m256i subset = _mm256_cvtepu8_epi64(_mm_cvtsi32_si128(loadScalar<int32_t>(subsets.data() + 4 * y)));
            const __m256i twice = _mm256_slli_epi64(subset, 1);
            const __m256i control = _mm256_add_epi32(_mm256_or_si256(twice, _mm256_slli_epi64(twice, 32)),
                                                     _mm256_set1_epi64x(int64_t{1} << 32));
            ends = _mm256_permutevar8x32_epi32(endpoints, control);
        }
        return _mm256_srli_epi16(_mm256_add_epi16(_mm256_maddubs_epi16(ends, pairs), _mm256_set1_epi16(32)), 6);
    };
    const auto storeRows = [&](int y, __m256i upper, __m256i lower) {
        __m256i rows = _mm256_permute4x64_epi64(_mm256_packus_epi16(upper, lower), 0xD8);
        if constexpr (hasAlphaSet)
            rows = _mm256_shuffle_epi8(rows, order);
        storeU128(rowAt(pDst, step, y), _mm256_castsi256_si128(rows));
        storeU128(rowAt(pDst, step, y + 1), _mm256_extracti128_si256(rows, 1));
    };
    storeRows(0, row.template operator()<0>(), row.template operator()<1>());
    storeRows(2, row.template operator()<2>(), row.template operator()<3>());
}

// A first byte of 0 is reserved: it stands for zeros.
void decode_block_bc7_rgba(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    const BlockBits bits = BlockBits::load(block);
    switch (std::countr_zero(block[0])) {
        case 0:
            return decodeMode<0>(bits, pDst, step);
        case 1:
            return decodeMode<1>(bits, pDst, step);
        case 2:
            return decodeMode<2>(bits, pDst, step);
        case 3:
            return decodeMode<3>(bits, pDst, step);
        case 4:
            return decodeMode<4>(bits, pDst, step);
        case 5:
            return decodeMode<5>(bits, pDst, step);
        case 6:
            return decodeMode<6>(bits, pDst, step);
        case 7:
            return decodeMode<7>(bits, pDst, step);
        default:
            for (int y = 0; y < 4; ++y) storeU128(rowAt(pDst, step, y), _mm_setzero_si128());
    }
}

}  // namespace

VekStatus vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    return decodeImage<4, 16, decode_block_bc7_rgba>(pSrc, pDst, dstStep, roiSize);
}

}  // namespace q3
