// The column pass of the fixed-point inverse DCT: eight columns at once, 16 bits, sums saturating.
#ifndef VEK_JPEG_SAMPLES_DCT_INVERSE_COLUMN_H
#define VEK_JPEG_SAMPLES_DCT_INVERSE_COLUMN_H

#include "jpeg/samples/dct_tables.h"

namespace q3 {

constexpr int16_t cos_4_16 = -19195;  // cos(pi / 4) less one, in the scale of the high halves, doubled

inline __m128i plus(__m128i x, __m128i y) { return _mm_adds_epi16(x, y); }
inline __m128i less(__m128i x, __m128i y) { return _mm_subs_epi16(x, y); }
inline __m128i plusMulHigh(__m128i x, int16_t factor) { return plus(mulHigh(x, factor), x); }

// What rows 1, 3, 5 and 7 add to the results: b9 to the first and the last, then c4, c5 and b8.
struct OddPart {
    __m128i b9, c4, c5, b8;
};

[[gnu::always_inline]] inline OddPart oddPartOf(__m128i t, __m128i u, __m128i v, __m128i w)
{
    const __m128i b10 = less(t, v);
    const __m128i b12 = less(u, w);
    return {plus(t, v), plusMulHigh(plus(b10, b12), cos_4_16), plusMulHigh(less(b10, b12), cos_4_16), plus(u, w)};
}

[[gnu::always_inline]] inline OddPart oddPart(__m128i r1, __m128i r3, __m128i r5, __m128i r7)
{
    const __m128i t = plus(r1, mulHigh(r7, tg_1_16));
    const __m128i u = less(mulHigh(r1, tg_1_16), r7);
    const __m128i v = plus(plusMulHigh(r5, tg_3_16), r3);
    const __m128i w = less(r5, plusMulHigh(r3, tg_3_16));
    return oddPartOf(t, u, v, w);
}

}  // namespace q3

#endif
