// The inverse DCT to 4x4 and to 2x2 samples.
#include "frame/vec.h"
#include "jpeg/samples/dct_inverse.h"
#include "jpeg/samples/dct_inverse_column.h"

namespace q3 {
namespace {

inline __m128i loadRow(const int16_t* pSrc, const uint16_t* pTable, int row)
{
    return _mm_mullo_epi16(loadU128(pSrc + 8 * row), loadU128(pTable + 8 * row));
}

// Factors of a row, k0 to k10, and what they multiply: s0, s1 = k0 x0 +- (k1 x2 - k2 x6), s2 = k3 x1 + k4 x3 - k5 x5 -
// k6 x7, s3 = k7 x1 - k8 x3 + k9 x5 - k10 x7. As four multiply-add operands for the pairs (x0 x2) (x4 x6) (x1 x3) (x5
// x7); x4 counts for nothing. Outputs: s0 and s1 in the first two sums, s2 and s3 likewise.
using FourFactors = std::array<std::array<int16_t, 8>, 2>;
constexpr FourFactors fourFactors(const std::array<int16_t, 11>& k)
{
    return {{{k[0], k[1], k[0], minus(k[1]), k[3], k[4], k[7], minus(k[8])},
             {0, minus(k[2]), 0, k[2], minus(k[5]), minus(k[6]), k[9], minus(k[10])}}};
}
constexpr FourFactors tab_i4_04 = fourFactors({16384, 15137, 6270, 20995, 7373, 4926, 4176, 8697, 17799, 11893, 1730});
constexpr FourFactors tab_i4_17 =
    fourFactors({22725, 20995, 8697, 29121, 10226, 6833, 5793, 12063, 24688, 16496, 2399});
constexpr FourFactors tab_i4_26 = fourFactors({21407, 19777, 8192, 27432, 9633, 6436, 5457, 11363, 23256, 15539, 2260});
constexpr FourFactors tab_i4_35 = fourFactors({19266, 17799, 7373, 24688, 8669, 5793, 4911, 10226, 20929, 13985, 2034});

// Outputs 0 to 3 of a row in the low half: (s0 + s2, s1 + s3, s1 - s3, s0 - s2) + round, shifted right by 12,
// saturated.
inline __m128i fourOutputs(__m128i x, const FourFactors& factors, int32_t round)
{
    const __m128i byParity = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m128i pairs = _mm_shuffle_epi8(x, byParity);
    const __m128i sums = _mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi32(pairs, 0xA0), loadU128(factors[0].data())),
                                       _mm_madd_epi16(_mm_shuffle_epi32(pairs, 0xF5), loadU128(factors[1].data())));
    const __m128i even = _mm_add_epi32(_mm_shuffle_epi32(sums, 0x14), _mm_set1_epi32(round));  // s0 s1 s1 s0
    const __m128i odd = _mm_shuffle_epi32(sums, 0xBE);                                         // s2 s3 s3 s2
    const __m128i negative = _mm_setr_epi32(0, 0, -1, -1);
    const __m128i signedOdd = _mm_sub_epi32(_mm_xor_si128(odd, negative), negative);
    const __m128i outputs = _mm_srai_epi32(_mm_add_epi32(even, signedOdd), 12);
    return _mm_packs_epi32(outputs, outputs);
}

// Factors m0 to m4: m0 x0 +- (m1 x1 - m2 x3 + m3 x5 - m4 x7). Columns 2, 4 and 6 count for nothing.
constexpr std::array<int16_t, 8> twoFactors(const std::array<int16_t, 5>& m)
{
    return {m[0], m[1], 0, minus(m[2]), 0, m[3], 0, minus(m[4])};
}
constexpr std::array<int16_t, 8> tab_i2_04 = twoFactors({16384, 14846, 5213, 3483, 2953});
constexpr std::array<int16_t, 8> tab_i2_17 = twoFactors({22725, 20592, 7231, 4832, 4096});
constexpr std::array<int16_t, 8> tab_i2_35 = twoFactors({19266, 17457, 6130, 4096, 3472});

// Outputs 0 and 1 of a row in the low lanes, shifted right by 12, saturated.
inline __m128i twoOutputs(__m128i x, const std::array<int16_t, 8>& factors, int32_t round)
{
    const __m128i evenOnly = _mm_set1_epi32(0xFFFF);
    const __m128i f = loadU128(factors.data());
    const __m128i evenPart = _mm_add_epi32(_mm_madd_epi16(_mm_and_si128(x, evenOnly), f), _mm_cvtsi32_si128(round));
    const __m128i products = _mm_madd_epi16(_mm_andnot_si128(evenOnly, x), f);
    const __m128i halves = _mm_add_epi32(products, _mm_shuffle_epi32(products, 0x4E));
    const __m128i q = _mm_add_epi32(halves, _mm_shuffle_epi32(halves, 0xB1));
    const __m128i p = _mm_shuffle_epi32(evenPart, 0x00);
    const __m128i outputs = _mm_srai_epi32(_mm_unpacklo_epi32(_mm_add_epi32(p, q), _mm_sub_epi32(p, q)), 12);
    return _mm_packs_epi32(outputs, outputs);
}

inline __m128i levelShifted(__m128i x) { return _mm_xor_si128(_mm_packs_epi16(x, x), _mm_set1_epi8(-128)); }

}  // namespace

void dct_quant_inv8x8To4x4_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const auto row = [&](int r, const FourFactors& factors, int32_t round) {
        return fourOutputs(loadRow(pSrc, pQuantInvTable, r), factors, round);
    };
    const __m128i r0 = row(0, tab_i4_04, 66560);
    const __m128i r1 = row(1, tab_i4_17, 5802);
    const __m128i r2 = row(2, tab_i4_26, 4520);
    const __m128i r3 = row(3, tab_i4_35, 3408);
    const __m128i r5 = row(5, tab_i4_35, 910);
    const __m128i r6 = row(6, tab_i4_26, 1024);
    const __m128i r7 = row(7, tab_i4_17, 746);

    const OddPart odd = oddPart(r1, r3, r5, r7);
    const __m128i e7 = plus(r2, mulHigh(r6, tg_2_16));
    const __m128i e6 = less(mulHigh(r2, tg_2_16), r6);
    const __m128i e = plus(e7, e6);
    const __m128i d = plus(r0, r0);
    const __m128i a = plus(d, e);
    const __m128i b = less(d, e);
    const __m128i c = plus(odd.c4, odd.b9);
    const __m128i f = plus(odd.b8, odd.c5);
    const auto store = [&](int y, __m128i v) {
        storeScalar(rowAt(pDst, dstStep, y), _mm_cvtsi128_si32(levelShifted(_mm_srai_epi16(v, 6))));
    };
    store(0, plus(a, c));
    store(1, plus(b, f));
    store(2, less(b, f));
    store(3, less(a, c));
}

void dct_quant_inv8x8To2x2_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const auto row = [&](int r, const std::array<int16_t, 8>& factors, int32_t round) {
        return twoOutputs(loadRow(pSrc, pQuantInvTable, r), factors, round);
    };
    const __m128i r0 = row(0, tab_i2_04, 67072);
    const __m128i r1 = row(1, tab_i2_17, 5802);
    const __m128i r3 = row(3, tab_i2_35, 3408);
    const __m128i r5 = row(5, tab_i2_35, 910);
    const __m128i r7 = row(7, tab_i2_17, 746);

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
    const auto store = [&](int y, __m128i x) {
        storeScalar(rowAt(pDst, dstStep, y),
                    static_cast<int16_t>(_mm_cvtsi128_si32(levelShifted(_mm_srai_epi16(x, 7)))));
    };
    store(0, plus(d, e));
    store(1, less(d, e));
}

}  // namespace q3
