#include "frame/quantise_vec.h"
#include "frame/vec.h"
#include "jpeg/samples/dct_forward.h"
#include "jpeg/samples/dct_tables.h"

namespace q3 {
namespace {

// Operands of the row pass: for the sums (s0, s1) and (s2, s3) they give outputs 0, 2, 4, 6; for the differences (d0,
// d1) and (d2, d3) outputs 1, 3, 5, 7.
constexpr RowFactors forwardFactors(const DctFactors& t)
{
    const auto [a, b, c, d, e, f, g] = t;
    return twice({{{a, a, f, g, a, minus(a), g, minus(f)},
                   {a, a, minus(g), minus(f), minus(a), a, f, minus(g)},
                   {b, c, c, minus(e), d, minus(b), e, minus(d)},
                   {d, e, minus(b), minus(d), e, c, c, minus(b)}}});
}
alignas(32) constexpr RowFactors tab_f_04 = forwardFactors(factors04);
alignas(32) constexpr RowFactors tab_f_17 = forwardFactors(factors17);
alignas(32) constexpr RowFactors tab_f_26 = forwardFactors(factors26);
alignas(32) constexpr RowFactors tab_f_35 = forwardFactors(factors35);

constexpr int16_t ocos_4_16 = 23170;
constexpr int32_t round_fwd_row = 524288;

inline __m128i plus(__m128i x, __m128i y) { return _mm_adds_epi16(x, y); }
inline __m128i less(__m128i x, __m128i y) { return _mm_subs_epi16(x, y); }

// The eight rows between the passes, in the pairs that share their factors.
struct RowPairs {
    __m256i r04, r17, r26, r35;
};

// Down the columns, all eight at once, 16 bits saturating; left shifts drop the high bits.
inline RowPairs columnPass(const __m128i x[8])
{
    const __m128i s07 = _mm_slli_epi16(plus(x[0], x[7]), 3);
    const __m128i s16 = _mm_slli_epi16(plus(x[1], x[6]), 3);
    const __m128i s25 = _mm_slli_epi16(plus(x[2], x[5]), 3);
    const __m128i s34 = _mm_slli_epi16(plus(x[3], x[4]), 3);
    const __m128i d07 = _mm_slli_epi16(less(x[0], x[7]), 3);
    const __m128i d34 = _mm_slli_epi16(less(x[3], x[4]), 3);
    const __m128i d16 = _mm_slli_epi16(less(x[1], x[6]), 4);  // one more, for the half that ocos_4_16 stands for
    const __m128i d25 = _mm_slli_epi16(less(x[2], x[5]), 4);

    const __m128i a0 = plus(s07, s34);
    const __m128i a3 = less(s07, s34);
    const __m128i a1 = plus(s16, s25);
    const __m128i a2 = less(s16, s25);
    const __m128i m = mulHigh(less(d16, d25), ocos_4_16);
    const __m128i p = orOne(mulHigh(plus(d16, d25), ocos_4_16));
    const __m128i b1 = plus(d34, m);
    const __m128i b2 = less(d34, m);
    const __m128i b0 = plus(d07, p);
    const __m128i b3 = less(d07, p);

    const __m128i row0 = plus(a0, a1);
    const __m128i row4 = less(a0, a1);
    const __m128i row2 = orOne(plus(a3, mulHigh(a2, tg_2_16)));
    const __m128i row6 = orOne(less(mulHigh(a3, tg_2_16), a2));
    const __m128i row1 = orOne(plus(b0, mulHigh(b1, tg_1_16)));
    const __m128i row7 = less(mulHigh(b0, tg_1_16), b1);
    const __m128i row5 = plus(plus(mulHigh(b3, tg_3_16), b3), b2);
    const __m128i row3 = less(b3, plus(mulHigh(b2, tg_3_16), b2));
    return {twoRows(row0, row4), twoRows(row1, row7), twoRows(row2, row6), twoRows(row3, row5)};
}

// Along two rows: exact 32-bit sums of products, which wrap, then (y + 2^19) >> 20 saturated to 16 bits.
inline __m256i rowPass(__m256i x, const RowFactors& factors)
{
    const __m256i reversedHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 14, 15, 12, 13, 10, 11, 8, 9));
    const __m256i low = _mm256_unpacklo_epi64(x, x);            // x0 x1 x2 x3 x0 x1 x2 x3
    const __m256i high = _mm256_shuffle_epi8(x, reversedHigh);  // x7 x6 x5 x4 x7 x6 x5 x4
    const __m256i sums = _mm256_adds_epi16(low, high);
    const __m256i differences = _mm256_subs_epi16(low, high);
    const auto product = [&](__m256i pairs, size_t i) { return _mm256_madd_epi16(pairs, loadU(factors[i].data())); };
    const __m256i even =
        _mm256_add_epi32(product(_mm256_shuffle_epi32(sums, 0x00), 0), product(_mm256_shuffle_epi32(sums, 0x55), 1));
    const __m256i odd = _mm256_add_epi32(product(_mm256_shuffle_epi32(differences, 0x00), 2),
                                         product(_mm256_shuffle_epi32(differences, 0x55), 3));
    const __m256i round = _mm256_set1_epi32(round_fwd_row);
    const __m256i packed =
        _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(even, round), 20),
                           _mm256_srai_epi32(_mm256_add_epi32(odd, round), 20));  // y0 y2 y4 y6 y1 y3 y5 y7
    const __m256i interleave =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
    return _mm256_shuffle_epi8(packed, interleave);
}

inline RowPairs transform(const __m128i x[8])
{
    const RowPairs r = columnPass(x);
    return {rowPass(r.r04, tab_f_04), rowPass(r.r17, tab_f_17), rowPass(r.r26, tab_f_26), rowPass(r.r35, tab_f_35)};
}

inline void loadRows(const int16_t* pSrc, __m128i x[8])
{
    for (int i = 0; i < 8; ++i) x[i] = loadU128(pSrc + 8 * i);
}

inline void storeTwoRows(int16_t* pDst, int low, int high, __m256i rows)
{
    storeU128(pDst + 8 * low, _mm256_castsi256_si128(rows));
    storeU128(pDst + 8 * high, _mm256_extracti128_si256(rows, 1));
}

inline void storeBlock(int16_t* pDst, const RowPairs& r)
{
    storeTwoRows(pDst, 0, 4, r.r04);
    storeTwoRows(pDst, 1, 7, r.r17);
    storeTwoRows(pDst, 2, 6, r.r26);
    storeTwoRows(pDst, 3, 5, r.r35);
}

inline void storeQuantised(int16_t* pDst, const RowPairs& r, const uint16_t* pTable)
{
    const auto quantised = [&](__m256i rows, int low, int high) {
        return mulQ15TiesToEven(rows, twoRows(loadU128(pTable + 8 * low), loadU128(pTable + 8 * high)));
    };
    storeBlock(pDst, {quantised(r.r04, 0, 4), quantised(r.r17, 1, 7), quantised(r.r26, 2, 6), quantised(r.r35, 3, 5)});
}

}  // namespace

void dct_8x8_fwd_16s(const int16_t* pSrc, int16_t* pDst)
{
    __m128i x[8];
    loadRows(pSrc, x);
    storeBlock(pDst, transform(x));
}

void ownDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    __m128i x[8];
    loadRows(pSrc, x);
    storeQuantised(pDst, transform(x), pQuantFwdTable);
}

void ownDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    __m128i x[8];
    for (int i = 0; i < 8; ++i)
        x[i] = _mm_sub_epi16(_mm_cvtepu8_epi16(loadLow64(rowAt(pSrc, srcStep, i))), _mm_set1_epi16(128));
    storeQuantised(pDst, transform(x), pQuantFwdTable);
}

}  // namespace q3
