#include "frame/vec.h"
#include "jpeg/samples/dct_forward.h"
#include "jpeg/samples/dct_tables.h"

namespace q3 {
namespace {

// Operands of the row pass, for sums that lie as (s0 s1) (s2 s3) (s0 s1) (s2 s3) and, in the second operand, with the
// pairs swapped: they give outputs 0, 2, 4, 6. Then likewise for the differences, which give outputs 1, 3, 5, 7.
constexpr RowFactors forwardFactors(const DctFactors& t)
{
    const auto [a, b, c, d, e, f, g] = t;
    return twice({{{a, a, minus(g), minus(f), a, minus(a), f, minus(g)},
                   {a, a, f, g, minus(a), a, g, minus(f)},
                   {b, c, minus(b), minus(d), d, minus(b), c, minus(b)},
                   {d, e, c, minus(e), e, c, e, minus(d)}}});
}
alignas(32) constexpr RowFactors tab_f_04 = forwardFactors(factors04);
alignas(32) constexpr RowFactors tab_f_17 = forwardFactors(factors17);
alignas(32) constexpr RowFactors tab_f_26 = forwardFactors(factors26);
alignas(32) constexpr RowFactors tab_f_35 = forwardFactors(factors35);

constexpr int16_t ocos_4_16 = 23170;
constexpr int32_t round_fwd_row = 524288;
static_assert(round_fwd_row % 65536 == 0);  // the row pass adds it to high halves

[[gnu::always_inline]] inline __m128i plus(__m128i x, __m128i y) { return _mm_adds_epi16(x, y); }
[[gnu::always_inline]] inline __m128i less(__m128i x, __m128i y) { return _mm_subs_epi16(x, y); }

// Sums and differences of the rows that mirror each other, shifted left by 3; d16 and d25 by 4, for the half that
// ocos_4_16 stands for.
struct Mirrored {
    __m128i s07, s16, s25, s34;
    __m128i d07, d16, d25, d34;
};

// The eight rows between the passes and after them, in the pairs that share their factors.
struct RowPairs {
    __m256i r04, r17, r26, r35;
};

// Sums saturate before the shifts, which drop the high bits.
[[gnu::always_inline]] inline Mirrored mirrored(const int16_t* pSrc)
{
    const auto row = [&](int i) { return loadU128(pSrc + 8 * i); };
    const auto sum = [&](int i) { return _mm_slli_epi16(plus(row(i), row(7 - i)), 3); };
    const auto difference = [&](int i, int shift) { return _mm_slli_epi16(less(row(i), row(7 - i)), shift); };
    return {sum(0), sum(1), sum(2), sum(3), difference(0, 3), difference(1, 4), difference(2, 4), difference(3, 3)};
}

// Of bytes, without their level shift: nothing saturates, and it would leave the differences as they are.
[[gnu::always_inline]] inline Mirrored mirrored(const uint8_t* pSrc, int srcStep)
{
    const auto row = [&](int i) { return loadLow64(rowAt(pSrc, srcStep, i)); };
    const auto pair = [&](int i) { return _mm_unpacklo_epi8(row(i), row(7 - i)); };
    const __m128i x07 = pair(0);
    const __m128i x16 = pair(1);
    const __m128i x25 = pair(2);
    const __m128i x34 = pair(3);
    const __m128i sum8 = _mm_set1_epi16(0x0808);          // (8, 8)
    const __m128i difference8 = _mm_set1_epi16(-0x7F8);   // (8, -8)
    const __m128i difference16 = _mm_set1_epi16(-0xFF0);  // (16, -16)
    return {_mm_maddubs_epi16(x07, sum8),         _mm_maddubs_epi16(x16, sum8),
            _mm_maddubs_epi16(x25, sum8),         _mm_maddubs_epi16(x34, sum8),
            _mm_maddubs_epi16(x07, difference8),  _mm_maddubs_epi16(x16, difference16),
            _mm_maddubs_epi16(x25, difference16), _mm_maddubs_epi16(x34, difference8)};
}

// Down the columns, all eight at once, 16 bits saturating. `level` is added to row 0: the level shift of eight samples.
[[gnu::always_inline]] inline RowPairs columnPass(const Mirrored& x, int16_t level)
{
    const __m128i a0 = plus(x.s07, x.s34);
    const __m128i a3 = less(x.s07, x.s34);
    const __m128i a1 = plus(x.s16, x.s25);
    const __m128i a2 = less(x.s16, x.s25);
    const __m128i m = mulHigh(less(x.d16, x.d25), ocos_4_16);
    const __m128i p = orOne(mulHigh(plus(x.d16, x.d25), ocos_4_16));
    const __m128i b1 = plus(x.d34, m);
    const __m128i b2 = less(x.d34, m);
    const __m128i b0 = plus(x.d07, p);
    const __m128i b3 = less(x.d07, p);

    const __m128i row0 = plus(plus(a0, a1), _mm_set1_epi16(level));
    const __m128i row4 = less(a0, a1);
    const __m128i row2 = plus(a3, mulHigh(a2, tg_2_16));
    const __m128i row6 = less(mulHigh(a3, tg_2_16), a2);
    const __m128i row1 = orOne(plus(b0, mulHigh(b1, tg_1_16)));
    const __m128i row7 = less(mulHigh(b0, tg_1_16), b1);
    const __m128i row5 = plus(plus(mulHigh(b3, tg_3_16), b3), b2);
    const __m128i row3 = less(b3, plus(mulHigh(b2, tg_3_16), b2));
    return {twoRows(row0, row4), twoRows(row1, row7), _mm256_or_si256(twoRows(row2, row6), _mm256_set1_epi16(1)),
            twoRows(row3, row5)};
}

// Along two rows: sums of products in 32 bits, which wrap, then (y + 2^19) >> 20. Their high halves of 16 bits tell all
// of that, so that the results lie in -2048 .. 2047 and need no saturation.
[[gnu::always_inline]] inline __m256i rowPass(__m256i x, const RowFactors& factors)
{
    const __m256i reversedHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 14, 15, 12, 13, 10, 11, 8, 9));
    const __m256i low = _mm256_unpacklo_epi64(x, x);            // x0 x1 x2 x3 x0 x1 x2 x3
    const __m256i high = _mm256_shuffle_epi8(x, reversedHigh);  // x7 x6 x5 x4 x7 x6 x5 x4
    const auto products = [&](__m256i pairs, size_t i) {
        const __m256i swapped = _mm256_shuffle_epi32(pairs, 0xB1);
        return _mm256_add_epi32(_mm256_madd_epi16(pairs, loadU(factors[i].data())),
                                _mm256_madd_epi16(swapped, loadU(factors[i + 1].data())));
    };
    const __m256i even = products(_mm256_adds_epi16(low, high), 0);
    const __m256i odd = products(_mm256_subs_epi16(low, high), 2);
    const __m256i highHalves = _mm256_blend_epi16(_mm256_srli_epi32(even, 16), odd, 0xAA);  // y0 y1 y2 ... y7
    return _mm256_srai_epi16(_mm256_add_epi16(highHalves, _mm256_set1_epi16(round_fwd_row >> 16)), 4);
}

[[gnu::always_inline]] inline RowPairs transform(const Mirrored& x, int16_t level)
{
    const RowPairs r = columnPass(x, level);
    return {rowPass(r.r04, tab_f_04), rowPass(r.r17, tab_f_17), rowPass(r.r26, tab_f_26), rowPass(r.r35, tab_f_35)};
}

// x * t / 32768, to the nearest integer with ties to even: what ownsMul_16u16s_PosSfs gives, for x in -2048 .. 2047, so
// that nothing saturates. t is taken as 32768 + u.
//   r = x + mulhrs(x, u)      rounds ties up
//   a tie clears the lowest bit: ties that went to an even number have it clear
[[gnu::always_inline]] inline __m256i quantised(__m256i x, __m256i t)
{
    const __m256i top = _mm256_set1_epi16(-32768);
    const __m256i u = _mm256_xor_si256(t, top);
    const __m256i r = _mm256_add_epi16(x, _mm256_mulhrs_epi16(x, u));
    const __m256i fraction = _mm256_slli_epi16(_mm256_mullo_epi16(x, t), 1);
    const __m256i tie = _mm256_srli_epi16(_mm256_cmpeq_epi16(fraction, top), 15);
    return _mm256_andnot_si256(tie, r);
}

[[gnu::always_inline]] inline void storeTwoRows(int16_t* pDst, int low, int high, __m256i rows)
{
    storeU128(pDst + 8 * low, _mm256_castsi256_si128(rows));
    storeU128(pDst + 8 * high, _mm256_extracti128_si256(rows, 1));
}

[[gnu::always_inline]] inline void storeBlock(int16_t* pDst, const RowPairs& r)
{
    storeTwoRows(pDst, 0, 4, r.r04);
    storeTwoRows(pDst, 1, 7, r.r17);
    storeTwoRows(pDst, 2, 6, r.r26);
    storeTwoRows(pDst, 3, 5, r.r35);
}

[[gnu::always_inline]] inline RowPairs quantised(const RowPairs& r, const uint16_t* pTable)
{
    const auto steps = [&](int low, int high) {
        return twoRows(loadU128(pTable + 8 * low), loadU128(pTable + 8 * high));
    };
    return {quantised(r.r04, steps(0, 4)), quantised(r.r17, steps(1, 7)), quantised(r.r26, steps(2, 6)),
            quantised(r.r35, steps(3, 5))};
}

}  // namespace

void dct_8x8_fwd_16s(const int16_t* pSrc, int16_t* pDst) { storeBlock(pDst, transform(mirrored(pSrc), 0)); }

void ownDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    storeBlock(pDst, quantised(transform(mirrored(pSrc), 0), pQuantFwdTable));
}

void ownDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    constexpr int16_t level = -128 * 8 * 8;  // eight samples, shifted left by 3
    storeBlock(pDst, quantised(transform(mirrored(pSrc, srcStep), level), pQuantFwdTable));
}

}  // namespace q3
