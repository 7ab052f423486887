// The inverse DCT to 4x4 and to 2x2 samples. Rows are taken as they lie, two in one vector: 0 and 1, 2 and 3, 4 and 5,
// 6 and 7.
#include "frame/vec.h"
#include "jpeg/samples/dct_inverse.h"
#include "jpeg/samples/dct_inverse_column.h"

namespace q3 {
namespace {

[[gnu::always_inline]] inline __m256i loadTwoRows(const int16_t* pSrc, const uint16_t* pTable, int row)
{
    return _mm256_mullo_epi16(loadU(pSrc + 8 * row), loadU(pTable + 8 * row));
}

// Factors of a row, k0 to k10, and what they multiply: s0, s1 = k0 x0 +- (k1 x2 - k2 x6), s2 = k3 x1 + k4 x3 - k5 x5 -
// k6 x7, s3 = k7 x1 - k8 x3 + k9 x5 - k10 x7. As operands for the pairs (x0 x2) (x4 x6) (x1 x3) (x5 x7) and for (x4 x6)
// (x0 x2) (x5 x7) (x1 x3), which give s0, s1, s2, s3; x4 counts for nothing.
constexpr Operands<2> fourOperands(const std::array<int16_t, 11>& k)
{
    return {{{k[0], k[1], 0, k[2], k[3], k[4], k[9], minus(k[10])},
             {0, minus(k[2]), k[0], minus(k[1]), minus(k[5]), minus(k[6]), k[7], minus(k[8])}}};
}
constexpr auto factorsTo4Of0 = fourOperands({16384, 15137, 6270, 20995, 7373, 4926, 4176, 8697, 17799, 11893, 1730});
constexpr auto factorsTo4Of17 = fourOperands({22725, 20995, 8697, 29121, 10226, 6833, 5793, 12063, 24688, 16496, 2399});
constexpr auto factorsTo4Of26 = fourOperands({21407, 19777, 8192, 27432, 9633, 6436, 5457, 11363, 23256, 15539, 2260});
constexpr auto factorsTo4Of35 = fourOperands({19266, 17799, 7373, 24688, 8669, 5793, 4911, 10226, 20929, 13985, 2034});
alignas(32) constexpr auto tab_i4_01 = sideBySide(factorsTo4Of0, factorsTo4Of17);
alignas(32) constexpr auto tab_i4_23 = sideBySide(factorsTo4Of26, factorsTo4Of35);
alignas(32) constexpr auto tab_i4_45 = sideBySide(Operands<2>{}, factorsTo4Of35);  // row 4 counts for nothing
alignas(32) constexpr auto tab_i4_67 = sideBySide(factorsTo4Of26, factorsTo4Of17);

// Rounding terms of the rows in the places of s0 and s1 of two vectors: rows a and a + 1 in the first, b and b + 1 in
// the second.
[[gnu::always_inline]] inline __m256i roundingTerms(int32_t a, int32_t a1, int32_t b, int32_t b1)
{
    return _mm256_setr_epi32(a, a, b, b, a1, a1, b1, b1);
}

// s0, s1, s2, s3 of two rows
[[gnu::always_inline]] inline __m256i fourSums(__m256i x, const RowOperands<2>& factors)
{
    const __m256i byParity =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15));
    const __m256i pairs = _mm256_shuffle_epi8(x, byParity);
    const __m256i swapped = _mm256_shuffle_epi32(pairs, 0xB1);
    return _mm256_add_epi32(_mm256_madd_epi16(pairs, loadU(factors[0].data())),
                            _mm256_madd_epi16(swapped, loadU(factors[1].data())));
}

// Outputs of the row pass (s0 + s2, s1 + s3, s1 - s3, s0 - s2, with the rounding term, shifted right by 12, saturated)
// of the rows whose sums are `a` and `b`. In each lane: 0 and 1 of a, 0 and 1 of b, 3 and 2 of a, 3 and 2 of b.
[[gnu::always_inline]] inline __m256i fourOutputs(__m256i a, __m256i b, __m256i round)
{
    const __m256i even = _mm256_add_epi32(_mm256_unpacklo_epi64(a, b), round);
    const __m256i odd = _mm256_unpackhi_epi64(a, b);
    return _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(even, odd), 12),
                              _mm256_srai_epi32(_mm256_sub_epi32(even, odd), 12));
}

// Factors m0 to m4: m0 x0 +- q with q = m1 x1 - m2 x3 + m3 x5 - m4 x7. As operands for the pairs (x1 x3) (x5 x7) (x0 0)
// 0; columns 2, 4 and 6 count for nothing.
constexpr Operands<1> twoOperands(const std::array<int16_t, 5>& m)
{
    return {{{m[1], minus(m[2]), m[3], minus(m[4]), m[0], 0, 0, 0}}};
}
constexpr auto factorsTo2Of0 = twoOperands({16384, 14846, 5213, 3483, 2953});
constexpr auto factorsTo2Of17 = twoOperands({22725, 20592, 7231, 4832, 4096});
constexpr auto factorsTo2Of35 = twoOperands({19266, 17457, 6130, 4096, 3472});
constexpr Operands<1> noFactors = {};  // rows 2, 4 and 6 count for nothing
alignas(32) constexpr auto tab_i2_01 = sideBySide(factorsTo2Of0, factorsTo2Of17);
alignas(32) constexpr auto tab_i2_23 = sideBySide(noFactors, factorsTo2Of35);
alignas(32) constexpr auto tab_i2_45 = sideBySide(noFactors, factorsTo2Of35);
alignas(32) constexpr auto tab_i2_67 = sideBySide(noFactors, factorsTo2Of17);

// Halves of q, and m0 x0, of two rows
[[gnu::always_inline]] inline __m256i twoProducts(__m256i x, const RowOperands<1>& factors)
{
    const __m256i order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 3, 6, 7, 10, 11, 14, 15, 0, 1, -1, -1, -1, -1, -1, -1));
    return _mm256_madd_epi16(_mm256_shuffle_epi8(x, order), loadU(factors[0].data()));
}

// Outputs of the row pass, m0 x0 + q and m0 x0 - q with the rounding term, shifted right by 12, of the rows whose
// products are `a` and `b`: in each lane both of a, both of b.
[[gnu::always_inline]] inline __m256i twoOutputs(__m256i a, __m256i b, __m256i round)
{
    const __m256i sums = _mm256_hadd_epi32(a, b);  // q and m0 x0 of a, then of b
    const __m256i swapped = _mm256_shuffle_epi32(sums, 0xB1);
    const __m256i outputs = _mm256_blend_epi32(_mm256_add_epi32(sums, swapped), _mm256_sub_epi32(sums, swapped), 0xAA);
    return _mm256_srai_epi32(_mm256_add_epi32(outputs, round), 12);
}

}  // namespace

void dct_quant_inv8x8To4x4_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const auto sums = [&](int row, const RowOperands<2>& factors) {
        return fourSums(loadTwoRows(pSrc, pQuantInvTable, row), factors);
    };
    const __m256i r0123 = fourOutputs(sums(0, tab_i4_01), sums(2, tab_i4_23), roundingTerms(66560, 5802, 4520, 3408));
    const __m256i r4567 = fourOutputs(sums(4, tab_i4_45), sums(6, tab_i4_67), roundingTerms(0, 910, 1024, 746));
    const auto second = [](__m128i x) { return _mm_srli_si128(x, 4); };  // words 0, 1, 4 and 5 count
    const __m128i r0 = _mm256_castsi256_si128(r0123);
    const __m128i r1 = _mm256_extracti128_si256(r0123, 1);
    const __m128i r2 = second(r0);
    const __m128i r3 = second(r1);
    const __m128i r5 = _mm256_extracti128_si256(r4567, 1);
    const __m128i r6 = second(_mm256_castsi256_si128(r4567));
    const __m128i r7 = second(r5);

    const OddPart odd = oddPart(r1, r3, r5, r7);
    const __m128i e7 = plus(r2, mulHigh(r6, tg_2_16));
    const __m128i e6 = less(mulHigh(r2, tg_2_16), r6);
    const __m128i e = plus(e7, e6);
    const __m128i d = plus(r0, r0);
    const __m128i a = plus(d, e);
    const __m128i b = less(d, e);
    const __m128i c = plus(odd.c4, odd.b9);
    const __m128i f = plus(odd.b8, odd.c5);
    const auto join = [](__m128i upper, __m128i lower) {
        return _mm_srai_epi16(_mm_blend_epi16(upper, _mm_slli_si128(lower, 4), 0xCC), 6);
    };
    const __m128i words01 = join(plus(a, c), plus(b, f));
    const __m128i words23 = join(less(b, f), less(a, c));
    const __m128i rowOrder = _mm_setr_epi8(0, 1, 5, 4, 2, 3, 7, 6, 8, 9, 13, 12, 10, 11, 15, 14);
    const __m128i bytes = _mm_shuffle_epi8(_mm_packs_epi16(words01, words23), rowOrder);
    const __m128i samples = _mm_xor_si128(bytes, _mm_set1_epi8(-128));
    storeScalar(rowAt(pDst, dstStep, 0), _mm_cvtsi128_si32(samples));
    storeScalar(rowAt(pDst, dstStep, 1), _mm_extract_epi32(samples, 1));
    storeScalar(rowAt(pDst, dstStep, 2), _mm_extract_epi32(samples, 2));
    storeScalar(rowAt(pDst, dstStep, 3), _mm_extract_epi32(samples, 3));
}

void dct_quant_inv8x8To2x2_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const auto products = [&](int row, const RowOperands<1>& factors) {
        return twoProducts(loadTwoRows(pSrc, pQuantInvTable, row), factors);
    };
    const __m256i r0123 = twoOutputs(products(0, tab_i2_01), products(2, tab_i2_23),
                                     _mm256_setr_epi32(67072, 67072, 0, 0, 5802, 5802, 3408, 3408));
    const __m256i r4567 =
        twoOutputs(products(4, tab_i2_45), products(6, tab_i2_67), _mm256_setr_epi32(0, 0, 0, 0, 910, 910, 746, 746));
    const __m256i rows = _mm256_packs_epi32(r0123, r4567);  // rows 0 2 4 6 1 3 5 7, two words each
    const __m128i r0 = _mm256_castsi256_si128(rows);
    const __m128i r1 = _mm256_extracti128_si256(rows, 1);
    const __m128i r3 = _mm_srli_si128(r1, 4);
    const __m128i r5 = _mm_srli_si128(r1, 8);
    const __m128i r7 = _mm_srli_si128(r1, 12);

    const __m128i t = plus(r1, mulHigh(r7, tg_1_16));
    const __m128i u = less(mulHigh(r1, tg_1_16), r7);
    const __m128i v = plus(plusMulHigh(r5, tg_3_16), r3);
    const __m128i w = less(r5, plusMulHigh(r3, tg_3_16));
    const __m128i b9 = plus(t, v);
    const __m128i b8 = plus(u, w);
    const __m128i m = plusMulHigh(less(t, v), cos_4_16);
    const __m128i e = plus(plus(b8, b9), plus(m, m));
    const __m128i twiceR0 = plus(r0, r0);
    const __m128i d = plus(twiceR0, twiceR0);
    const __m128i words = _mm_srai_epi16(_mm_unpacklo_epi32(plus(d, e), less(d, e)), 7);
    const int samples = _mm_cvtsi128_si32(_mm_xor_si128(_mm_packs_epi16(words, words), _mm_set1_epi8(-128)));
    storeScalar(pDst, static_cast<uint16_t>(samples));
    storeScalar(rowAt(pDst, dstStep, 1), static_cast<uint16_t>(samples >> 16));
}

}  // namespace q3
