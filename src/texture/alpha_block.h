// Blocks of one channel: two 8-bit endpoints and sixteen indices of three bits into a table of eight.
#ifndef VEK_TEXTURE_ALPHA_BLOCK_H
#define VEK_TEXTURE_ALPHA_BLOCK_H

#include "frame/vec.h"
#include "texture/division.h"

namespace q3 {

// The endpoints and indices of sixteen values, by thresholds halfway between the table's entries, their sevenths
// truncated and their sums modulo 256. a0 is not below a1.
inline uint64_t encodeAlphaBlock(__m128i values, uint32_t a0, uint32_t a1)
{
    const __m128i first = _mm_set1_epi16(static_cast<int16_t>(a0));
    const __m128i second = _mm_set1_epi16(static_cast<int16_t>(a1));
    const __m128i middle = _mm_set1_epi16(static_cast<int16_t>((a0 - a1) / 14));
    const __m128i sums = _mm_add_epi16(_mm_mullo_epi16(first, _mm_setr_epi16(0, 6, 5, 4, 3, 2, 1, 0)),
                                       _mm_mullo_epi16(second, _mm_setr_epi16(7, 1, 2, 3, 4, 5, 6, 0)));
    const __m128i wide = _mm_and_si128(_mm_add_epi16(seventhOf(sums), middle), _mm_set1_epi16(0xFF));
    const __m128i thresholds = _mm_packus_epi16(wide, wide);
    __m128i count = _mm_setzero_si128();  // of the thresholds that a value is not above
    const auto compare = [&](int k) {
        const __m128i t = _mm_shuffle_epi8(thresholds, _mm_set1_epi8(static_cast<char>(k)));
        count = _mm_sub_epi8(count, _mm_cmpeq_epi8(_mm_min_epu8(values, t), values));
    };
    for (int k = 0; k < 7; ++k) compare(k);
    const __m128i indices = _mm_shuffle_epi8(_mm_setr_epi8(0, 2, 3, 4, 5, 6, 7, 1, 0, 0, 0, 0, 0, 0, 0, 0), count);
    const uint64_t low = _pext_u64(static_cast<uint64_t>(_mm_cvtsi128_si64(indices)), 0x0707070707070707);
    const uint64_t high = _pext_u64(static_cast<uint64_t>(_mm_extract_epi64(indices, 1)), 0x0707070707070707);
    return a0 | a1 << 8 | low << 16 | high << 40;
}

// Endpoints a sixteenth of the range inside the extremes.
inline uint64_t encodeInsetAlphaBlock(__m128i values)
{
    const auto smallest = [](__m128i v) {
        const __m128i pairs = _mm_min_epu8(v, _mm_srli_epi16(v, 8));
        return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_minpos_epu16(_mm_and_si128(pairs, _mm_set1_epi16(0xFF))))) &
               0xFF;
    };
    const uint32_t low = smallest(values);
    const uint32_t high = 255 - smallest(_mm_xor_si128(values, _mm_set1_epi8(-1)));
    const uint32_t inset = (high - low) >> 4;
    return encodeAlphaBlock(values, high - inset, low + inset);
}

// The sixteen values of a block. Between the endpoints there are six more if the first is above the second, else four,
// 0 and 255; all are rounded.
inline __m128i decodeAlphaBlock(uint64_t block)
{
    const auto a0 = static_cast<uint32_t>(block & 0xFF);
    const auto a1 = static_cast<uint32_t>(block >> 8 & 0xFF);
    const __m128i first = _mm_set1_epi16(static_cast<int16_t>(a0));
    const __m128i second = _mm_set1_epi16(static_cast<int16_t>(a1));
    __m128i entries;
    if (a0 > a1) {
        const __m128i sums = _mm_add_epi16(_mm_mullo_epi16(first, _mm_setr_epi16(7, 0, 6, 5, 4, 3, 2, 1)),
                                           _mm_mullo_epi16(second, _mm_setr_epi16(0, 7, 1, 2, 3, 4, 5, 6)));
        entries = seventhOf(_mm_add_epi16(sums, _mm_set1_epi16(3)));
    } else {
        const __m128i sums = _mm_add_epi16(_mm_mullo_epi16(first, _mm_setr_epi16(5, 0, 4, 3, 2, 1, 0, 0)),
                                           _mm_mullo_epi16(second, _mm_setr_epi16(0, 5, 1, 2, 3, 4, 0, 0)));
        entries =
            _mm_or_si128(fifthOf(_mm_add_epi16(sums, _mm_set1_epi16(2))), _mm_setr_epi16(0, 0, 0, 0, 0, 0, 0, 255));
    }
    const uint64_t low = _pdep_u64(block >> 16, 0x0707070707070707);
    const uint64_t high = _pdep_u64(block >> 40, 0x0707070707070707);
    const __m128i indices = _mm_set_epi64x(static_cast<int64_t>(high), static_cast<int64_t>(low));
    return _mm_shuffle_epi8(_mm_packus_epi16(entries, entries), indices);
}

}  // namespace q3

#endif
