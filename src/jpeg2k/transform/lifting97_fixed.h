// The stages of the irreversible 9/7 filter (ISO/IEC 15444-1, Annex F) in the fixed-point arithmetics of the row and
// ColLift forms.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING97_FIXED_H
#define VEK_JPEG2K_TRANSFORM_LIFTING97_FIXED_H

#include <algorithm>

#include "jpeg2k/transform/lanes.h"
#include "jpeg2k/transform/lifting97_stages.h"

namespace q3 {

// 16 bits, Q15: m(a, c) = (a c + 16384) >> 15, all sums and differences saturate, in the order of the brackets.
//      forward:  o = o + m(s + s, -25987) with s = e + e2
//                e = e + m(o + o2, -1736)
//                o = o + m(e + e2, 28931)
//                low = (m(o + o2, 23627) >> 1) + m(e, 26637)
//                high = m(o + o, 20155)
//      inverse:  e = m(l + l, 20155) - (m(h + h2, 23627) >> 1)
//                o = m(h, 26637) - m(e + e2, 28931)
//                e = e + m(o + o2, 1736)
//                o = o + m(t + t, 25987) with t = e + e2
struct Q15Stages : PlainInverse {
    static __m256i forward1(__m256i o, __m256i e, __m256i e2)
    {
        const __m256i s = sum(e, e2);
        return sum(o, product(sum(s, s), -25987));
    }
    static __m256i forward2(__m256i e, __m256i o, __m256i o2) { return sum(e, product(sum(o, o2), -1736)); }
    static __m256i forward3(__m256i o, __m256i e, __m256i e2) { return sum(o, product(sum(e, e2), 28931)); }
    static __m256i forward4(__m256i e, __m256i o, __m256i o2)
    {
        return sum(_mm256_srai_epi16(product(sum(o, o2), 23627), 1), product(e, 26637));
    }
    static __m256i forward5(__m256i o) { return product(sum(o, o), 20155); }

    static __m256i inverse1(__m256i l, __m256i h, __m256i h2)
    {
        return difference(product(sum(l, l), 20155), _mm256_srai_epi16(product(sum(h, h2), 23627), 1));
    }
    static __m256i inverse2(__m256i h, __m256i e, __m256i e2)
    {
        return difference(product(h, 26637), product(sum(e, e2), 28931));
    }
    static __m256i inverse3(__m256i e, __m256i o, __m256i o2) { return sum(e, product(sum(o, o2), 1736)); }
    static __m256i inverse4(__m256i o, __m256i e, __m256i e2)
    {
        const __m256i t = sum(e, e2);
        return sum(o, product(sum(t, t), 25987));
    }

private:
    static __m256i sum(__m256i a, __m256i b) { return _mm256_adds_epi16(a, b); }
    static __m256i difference(__m256i a, __m256i b) { return _mm256_subs_epi16(a, b); }
    static __m256i product(__m256i a, int16_t c) { return _mm256_mulhrs_epi16(a, _mm256_set1_epi16(c)); }
};

// Q16, 64-bit products: r(v) = (v + 32768) >> 16.
//      forward:  o + r(-103949 (e + e2)),  e + r(-3472 (o + o2)),  o + r(57862 (e + e2)),
//                low = r(53274 e + 23627 (o + o2)),  high = r(80621 o)
//      inverse:  r(80621 l - 23627 (h + h2)),  r(53274 h - 57862 (e + e2)),  e - r(-3472 (o + o2)),
//                o - r(-103949 (e + e2))
// Of 16-bit samples, one at a time, every stage is clipped.
struct ClippedQ16Stages {
    static int16_t forward1(int16_t o, int16_t e, int16_t e2) { return clip(o + rounded(-103949, e + e2)); }
    static int16_t forward2(int16_t e, int16_t o, int16_t o2) { return clip(e + rounded(-3472, o + o2)); }
    static int16_t forward3(int16_t o, int16_t e, int16_t e2) { return clip(o + rounded(57862, e + e2)); }
    static int16_t forward4(int16_t e, int16_t o, int16_t o2) { return clip(rounded(53274, e, 23627, o + o2)); }
    static int16_t forward5(int16_t o) { return clip(rounded(80621, o)); }
    static int16_t inverse1(int16_t l, int16_t h, int16_t h2) { return clip(rounded(80621, l, -23627, h + h2)); }
    static int16_t inverse2(int16_t h, int16_t e, int16_t e2) { return clip(rounded(53274, h, -57862, e + e2)); }
    static int16_t inverse3(int16_t e, int16_t o, int16_t o2) { return clip(e - rounded(-3472, o + o2)); }
    static int16_t inverse4(int16_t o, int16_t e, int16_t e2) { return clip(o - rounded(-103949, e + e2)); }

private:
    static int64_t rounded(int64_t c, int64_t a, int64_t c2 = 0, int64_t a2 = 0)
    {
        return (c * a + c2 * a2 + 32768) >> 16;
    }
    static int16_t clip(int64_t v) { return static_cast<int16_t>(std::clamp<int64_t>(v, -32768, 32767)); }
};

// Of 32-bit samples the sums in brackets and the results wrap at 32 bits.
struct Q16Stages : PlainInverse {
    static __m256i forward1(__m256i o, __m256i e, __m256i e2)
    {
        return _mm256_add_epi32(o, rounded(sum(e, e2), -103949));
    }
    static __m256i forward2(__m256i e, __m256i o, __m256i o2)
    {
        return _mm256_add_epi32(e, rounded(sum(o, o2), -3472));
    }
    static __m256i forward3(__m256i o, __m256i e, __m256i e2)
    {
        return _mm256_add_epi32(o, rounded(sum(e, e2), 57862));
    }
    static __m256i forward4(__m256i e, __m256i o, __m256i o2) { return rounded(e, 53274, sum(o, o2), 23627); }
    static __m256i forward5(__m256i o) { return rounded(o, 80621); }
    static __m256i inverse1(__m256i l, __m256i h, __m256i h2) { return rounded(l, 80621, sum(h, h2), -23627); }
    static __m256i inverse2(__m256i h, __m256i e, __m256i e2) { return rounded(h, 53274, sum(e, e2), -57862); }
    static __m256i inverse3(__m256i e, __m256i o, __m256i o2)
    {
        return _mm256_sub_epi32(e, rounded(sum(o, o2), -3472));
    }
    static __m256i inverse4(__m256i o, __m256i e, __m256i e2)
    {
        return _mm256_sub_epi32(o, rounded(sum(e, e2), -103949));
    }

private:
    static __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi32(a, b); }
    // Bits 16 .. 47 of the 64-bit sums over even lanes and over odd lanes.
    static __m256i joined(__m256i even, __m256i odd)
    {
        return _mm256_blend_epi32(_mm256_srli_epi64(even, 16), _mm256_slli_epi64(odd, 16), 0xAA);
    }
    static __m256i rounded(__m256i a, int c)
    {
        const __m256i factor = _mm256_set1_epi32(c);
        const __m256i half = _mm256_set1_epi64x(32768);
        return joined(_mm256_add_epi64(_mm256_mul_epi32(a, factor), half),
                      _mm256_add_epi64(_mm256_mul_epi32(_mm256_srli_epi64(a, 32), factor), half));
    }
    static __m256i rounded(__m256i a, int c, __m256i a2, int c2)
    {
        const __m256i factor = _mm256_set1_epi32(c);
        const __m256i factor2 = _mm256_set1_epi32(c2);
        const __m256i half = _mm256_set1_epi64x(32768);
        const __m256i even = _mm256_add_epi64(_mm256_mul_epi32(a, factor), _mm256_mul_epi32(a2, factor2));
        const __m256i odd = _mm256_add_epi64(_mm256_mul_epi32(_mm256_srli_epi64(a, 32), factor),
                                             _mm256_mul_epi32(_mm256_srli_epi64(a2, 32), factor2));
        return joined(_mm256_add_epi64(even, half), _mm256_add_epi64(odd, half));
    }
};

}  // namespace q3

#endif
