// The colour half of S3TC blocks: two 5-6-5 endpoints and sixteen indices of two bits into a palette of four.
#ifndef VEK_TEXTURE_COLOUR_BLOCK_H
#define VEK_TEXTURE_COLOUR_BLOCK_H

#include "frame/vec.h"
#include "texture/division.h"

namespace q3 {

// The pixels of a block, four bytes each, as vectors of rows 0 and 2 and of rows 1 and 3.
struct BlockPixels {
    __m256i evenRows, oddRows;
};

inline BlockPixels combineRows(__m128i row0, __m128i row1, __m128i row2, __m128i row3)
{
    return {_mm256_set_m128i(row2, row0), _mm256_set_m128i(row3, row1)};
}

struct Extremes {
    __m128i lowest, highest;  // of the sixteen pixels, by channel, in the low four bytes
};

inline Extremes extremesOf(const BlockPixels& block)
{
    const __m256i low = _mm256_min_epu8(block.evenRows, block.oddRows);
    const __m256i high = _mm256_max_epu8(block.evenRows, block.oddRows);
    __m128i l = _mm_min_epu8(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1));
    __m128i h = _mm_max_epu8(_mm256_castsi256_si128(high), _mm256_extracti128_si256(high, 1));
    l = _mm_min_epu8(l, _mm_shuffle_epi32(l, 0x4E));
    h = _mm_max_epu8(h, _mm_shuffle_epi32(h, 0x4E));
    return {_mm_min_epu8(l, _mm_shuffle_epi32(l, 0xB1)), _mm_max_epu8(h, _mm_shuffle_epi32(h, 0xB1))};
}

// The colour between two that is nearer to one of them. 16-bit lanes.
inline __m128i betweenColours(__m128i near, __m128i far)
{
    return thirdOf(_mm_add_epi16(_mm_add_epi16(near, near), far));
}

// The sixteen indices, two bits each, of the colours next to the pixels by sums of absolute differences over the first
// three channels; the fourth is zero in pixels and endpoints. Endpoints are 16-bit lanes of 8-bit values. Ties go as
// the two conditions have it.
inline uint32_t colourIndices(const BlockPixels& block, __m128i first, __m128i second)
{
    const auto distances = [&block](__m128i colour) {
        const __m256i c = _mm256_broadcastd_epi32(_mm_packus_epi16(colour, colour));
        const auto ofRows = [c](__m256i rows) {
            const __m256i d = _mm256_or_si256(_mm256_subs_epu8(rows, c), _mm256_subs_epu8(c, rows));
            return _mm256_maddubs_epi16(d, _mm256_set1_epi8(1));
        };
        return _mm256_hadd_epi16(ofRows(block.evenRows), ofRows(block.oddRows));  // of all pixels in their order
    };
    const __m256i d0 = distances(first);
    const __m256i d1 = distances(second);
    const __m256i d2 = distances(betweenColours(first, second));
    const __m256i d3 = distances(betweenColours(second, first));
    const __m256i d0d3 = _mm256_cmpgt_epi16(d0, d3);
    const __m256i low = _mm256_and_si256(d0d3, _mm256_cmpgt_epi16(d2, d3));
    const __m256i high = _mm256_or_si256(_mm256_and_si256(_mm256_cmpgt_epi16(d1, d2), _mm256_cmpgt_epi16(d0, d2)),
                                         _mm256_and_si256(d0d3, _mm256_cmpgt_epi16(d1, d3)));
    const __m256i bits = _mm256_permute4x64_epi64(_mm256_packs_epi16(low, high), 0xD8);
    const auto mask = static_cast<uint32_t>(_mm256_movemask_epi8(bits));
    return _pdep_u32(mask, 0x55555555) | _pdep_u32(mask >> 16, 0xAAAAAAAA);
}

// A 5-6-5 word of three 8-bit values, truncated.
constexpr uint32_t word565(uint32_t r, uint32_t g, uint32_t b) { return r >> 3 << 11 | g >> 2 << 5 | b >> 3; }

inline void storeColourBlock(uint8_t* block, uint32_t colour0, uint32_t colour1, uint32_t indices)
{
    storeScalar(block, colour0 | colour1 << 16);
    storeScalar(block + 4, indices);
}

}  // namespace q3

#endif
