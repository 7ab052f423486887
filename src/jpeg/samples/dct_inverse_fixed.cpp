#include "frame/vec.h"
#include "jpeg/samples/dct_inverse.h"
#include "jpeg/samples/dct_inverse_column.h"
#include "jpeg/samples/dct_inverse_row.h"

namespace q3 {
namespace {

// Two rows of coefficients; `table` null: as they are.
inline __m256i loadRows(const int16_t* pSrc, const uint16_t* pTable, int low, int high)
{
    const __m256i x = twoRows(loadU128(pSrc + 8 * low), loadU128(pSrc + 8 * high));
    if (pTable == nullptr)
        return x;
    return _mm256_mullo_epi16(x, twoRows(loadU128(pTable + 8 * low), loadU128(pTable + 8 * high)));
}

inline __m128i lowRow(__m256i x) { return _mm256_castsi256_si128(x); }
inline __m128i highRow(__m256i x) { return _mm256_extracti128_si256(x, 1); }

// The rows of results, each shifted right by 6.
struct Rows {
    __m128i y[8];
};

[[gnu::always_inline]] inline Rows results(__m128i q0, __m128i q1, __m128i q2, __m128i q3, const OddPart& o)
{
    const auto down = [](__m128i x) { return _mm_srai_epi16(x, 6); };
    return {{down(plus(q3, o.b9)), down(plus(q2, o.c4)), down(plus(q0, o.c5)), down(plus(q1, o.b8)),
             down(less(q1, o.b8)), down(less(q0, o.c5)), down(less(q2, o.c4)), down(less(q3, o.b9))}};
}

[[gnu::always_inline]] inline Rows columnPass(__m256i r04, __m256i r17, __m256i r26, __m256i r35)
{
    const OddPart odd = oddPart(lowRow(r17), lowRow(r35), highRow(r35), highRow(r17));
    const __m128i e7 = plus(lowRow(r26), mulHigh(highRow(r26), tg_2_16));
    const __m128i e6 = less(mulHigh(lowRow(r26), tg_2_16), highRow(r26));
    const __m128i p0 = plus(lowRow(r04), highRow(r04));
    const __m128i p1 = less(lowRow(r04), highRow(r04));
    return results(less(p1, e6), less(p0, e7), plus(p1, e6), plus(p0, e7), odd);
}

[[gnu::always_inline]] inline Rows transform(const int16_t* pSrc, const uint16_t* pTable)
{
    const __m256i r04 = inverseRowPass(loadRows(pSrc, pTable, 0, 4), tab_i_04, twoTerms(round_i_0, round_i_4));
    const __m256i r17 = inverseRowPass(loadRows(pSrc, pTable, 1, 7), tab_i_17, twoTerms(round_i_1, round_i_7));
    const __m256i r26 = inverseRowPass(loadRows(pSrc, pTable, 2, 6), tab_i_26, twoTerms(round_i_2, round_i_6));
    const __m256i r35 = inverseRowPass(loadRows(pSrc, pTable, 3, 5), tab_i_35, twoTerms(round_i_3, round_i_5));
    return columnPass(r04, r17, r26, r35);
}

[[gnu::always_inline]] inline void storeBlock(int16_t* pDst, const Rows& rows)
{
    forEightRows([&](int i) { storeU128(pDst + 8 * i, rows.y[i]); });
}

// clip(v + 128): saturated to a signed byte, then the sign bit turned
[[gnu::always_inline]] inline void storeSamples(uint8_t* pDst, int dstStep, const Rows& rows)
{
    const auto storePair = [&](int i) {
        const __m128i samples = _mm_xor_si128(_mm_packs_epi16(rows.y[i], rows.y[i + 1]), _mm_set1_epi8(-128));
        storeLow64(rowAt(pDst, dstStep, i), samples);
        storeHigh64(rowAt(pDst, dstStep, i + 1), samples);
    };
    storePair(0);
    storePair(2);
    storePair(4);
    storePair(6);
}

// Two rows of which only the four coefficients at the left are read, dequantised, as (x0 x2) (x1 x3) 0 0.
[[gnu::always_inline]] inline __m256i loadFours(const int16_t* pSrc, const uint16_t* pTable, int low, int high)
{
    const __m256i x = twoRows(loadLow64(pSrc + 8 * low), loadLow64(pSrc + 8 * high));
    const __m256i t = twoRows(loadLow64(pTable + 8 * low), loadLow64(pTable + 8 * high));
    return _mm256_shufflelo_epi16(_mm256_mullo_epi16(x, t), 0xD8);
}

// Operands for the coefficients x0 to x3 alone: (x0 x2), which gives the even part of outputs 0 to 3, and (x1 x3).
constexpr Operands<2> operandsOfFour(const DctFactors& t)
{
    const auto [a, b, c, d, e, f, g] = t;
    return {{{a, f, a, g, a, minus(g), a, minus(f)}, {b, c, c, minus(e), d, minus(b), e, minus(d)}}};
}
alignas(32) constexpr auto tab_i4_01 = sideBySide(operandsOfFour(factors04), operandsOfFour(factors17));
alignas(32) constexpr auto tab_i4_23 = sideBySide(operandsOfFour(factors26), operandsOfFour(factors35));

[[gnu::always_inline]] inline __m256i rowPassOfFour(__m256i x, const RowOperands<2>& factors, __m256i round)
{
    const __m256i even = _mm256_madd_epi16(_mm256_shuffle_epi32(x, 0x00), loadU(factors[0].data()));
    const __m256i odd = _mm256_madd_epi16(_mm256_shuffle_epi32(x, 0x55), loadU(factors[1].data()));
    return combine(_mm256_add_epi32(even, round), odd);
}

}  // namespace

void dct_8x8_inv_16s(const int16_t* pSrc, int16_t* pDst) { storeBlock(pDst, transform(pSrc, nullptr)); }

void dct_quant_inv8x8_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable)
{
    storeBlock(pDst, transform(pSrc, pQuantInvTable));
}

void dct_quant_inv8x8_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    storeSamples(pDst, dstStep, transform(pSrc, pQuantInvTable));
}

// Rows 4 to 7 of zeros would become zero: their rounding terms vanish in the shift.
void dct_quant_inv8x8_4x4_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    static_assert(round_i_4 >> 11 == 0 && round_i_5 >> 11 == 0 && round_i_6 >> 11 == 0 && round_i_7 >> 11 == 0);
    const auto rows = [&](int low, const RowOperands<2>& factors, __m256i round) {
        return rowPassOfFour(loadFours(pSrc, pQuantInvTable, low, low + 1), factors, round);
    };
    const __m256i r01 = rows(0, tab_i4_01, twoTerms(round_i_0, round_i_1));
    const __m256i r23 = rows(2, tab_i4_23, twoTerms(round_i_2, round_i_3));
    const __m128i r0 = lowRow(r01);
    const __m128i r1 = highRow(r01);
    const __m128i r2 = lowRow(r23);
    const __m128i r3 = highRow(r23);

    const __m128i w = less(_mm_setzero_si128(), plusMulHigh(r3, tg_3_16));
    const OddPart odd = oddPartOf(r1, mulHigh(r1, tg_1_16), r3, w);
    const __m128i e6 = mulHigh(r2, tg_2_16);
    storeSamples(pDst, dstStep, results(less(r0, e6), less(r0, r2), plus(r0, e6), plus(r0, r2), odd));
}

// Only rows 0 and 1 are left. The results of rows 0, 3, 4 and 7 have a correction of one before the shift.
void dct_quant_inv8x8_2x2_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const auto pair = [&](int r) {
        return _mm_mullo_epi16(_mm_cvtsi32_si128(loadScalar<int32_t>(pSrc + 8 * r)),
                               _mm_cvtsi32_si128(loadScalar<int32_t>(pQuantInvTable + 8 * r)));
    };
    const __m256i x = _mm256_shufflelo_epi16(twoRows(pair(0), pair(1)), 0xD8);  // (x0 0) (x1 0), for x2 and x3 are zero
    const __m256i rows = rowPassOfFour(x, tab_i4_01, twoTerms(round_i_0, round_i_1));
    const __m128i r0 = lowRow(rows);
    const __m128i r1 = highRow(rows);

    const __m128i one_corr = _mm_set1_epi16(1);
    const __m128i h = mulHigh(r1, tg_1_16);
    const __m128i c5 = plusMulHigh(less(r1, h), cos_4_16);
    const __m128i c4 = plusMulHigh(plus(r1, h), cos_4_16);
    storeSamples(pDst, dstStep, results(r0, less(r0, one_corr), r0, plus(r0, one_corr), {r1, c4, c5, h}));
}

// The product is shifted without rounding, and cut to 16 bits after 128 is added.
void dct_quant_inv8x8_1x1_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable)
{
    const int32_t p = loadScalar<int16_t>(pSrc) * int32_t{loadScalar<uint16_t>(pQuantInvTable)};
    const __m128i v = _mm_set1_epi16(static_cast<int16_t>((p >> 3) + 128));
    const __m128i samples = _mm_packus_epi16(v, v);
    forEightRows([&](int i) { storeLow64(rowAt(pDst, dstStep, i), samples); });
}

}  // namespace q3
