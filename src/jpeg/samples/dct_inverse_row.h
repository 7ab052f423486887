// The row pass of the fixed-point inverse DCT, two rows in one vector.
#ifndef VEK_JPEG_SAMPLES_DCT_INVERSE_ROW_H
#define VEK_JPEG_SAMPLES_DCT_INVERSE_ROW_H

#include "jpeg/samples/dct_tables.h"

namespace q3 {

// Operands for the coefficients (x0 x2) (x4 x6) (x0 x2) (x4 x6) and, in the second operand, with the pairs swapped:
// they give the even part of outputs 0 to 3. Then likewise (x1 x3) (x5 x7) for the odd part.
constexpr RowFactors inverseFactors(const DctFactors& t)
{
    const auto [a, b, c, d, e, f, g] = t;
    return twice({{{a, f, minus(a), minus(f), a, minus(g), a, minus(g)},
                   {a, g, a, g, minus(a), f, a, minus(f)},
                   {b, c, minus(b), minus(d), d, minus(b), c, minus(b)},
                   {d, e, c, minus(e), e, c, e, minus(d)}}});
}
alignas(32) constexpr RowFactors tab_i_04 = inverseFactors(factors04);
alignas(32) constexpr RowFactors tab_i_17 = inverseFactors(factors17);
alignas(32) constexpr RowFactors tab_i_26 = inverseFactors(factors26);
alignas(32) constexpr RowFactors tab_i_35 = inverseFactors(factors35);

// Rounding terms of the rows. That of row 0 holds the rounding of the column pass's final shift as well: row 0 enters
// every output once.
constexpr int32_t round_i_0 = 65536;
constexpr int32_t round_i_1 = 2901;
constexpr int32_t round_i_2 = 2260;
constexpr int32_t round_i_3 = 1704;
constexpr int32_t round_i_4 = 1024;
constexpr int32_t round_i_5 = 455;
constexpr int32_t round_i_6 = 512;
constexpr int32_t round_i_7 = 373;

inline __m256i twoTerms(int32_t low, int32_t high)
{
    return _mm256_setr_epi32(low, low, low, low, high, high, high, high);
}

// (even + round +- odd) >> 11, saturated: outputs 0 to 3, then 7 down to 4; 32-bit sums wrap.
[[gnu::always_inline]] inline __m256i combine(__m256i even, __m256i odd)
{
    const __m256i packed = _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(even, odd), 11),
                                              _mm256_srai_epi32(_mm256_sub_epi32(even, odd), 11));
    return _mm256_shufflehi_epi16(packed, 0x1B);
}

[[gnu::always_inline]] inline __m256i inverseRowPass(__m256i x, const RowFactors& factors, __m256i round)
{
    const __m256i evenOnes =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 0, 1, 4, 5, 8, 9, 12, 13));
    const __m256i oddOnes =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 3, 6, 7, 10, 11, 14, 15, 2, 3, 6, 7, 10, 11, 14, 15));
    const auto products = [&](__m256i pairs, size_t i) {
        const __m256i swapped = _mm256_shuffle_epi32(pairs, 0xB1);
        return _mm256_add_epi32(_mm256_madd_epi16(pairs, loadU(factors[i].data())),
                                _mm256_madd_epi16(swapped, loadU(factors[i + 1].data())));
    };
    const __m256i even = products(_mm256_shuffle_epi8(x, evenOnes), 0);
    const __m256i odd = products(_mm256_shuffle_epi8(x, oddOnes), 2);
    return combine(_mm256_add_epi32(even, round), odd);
}

}  // namespace q3

#endif
