// The steps of the reversible 5/3 filter (ISO/IEC 15444-1, Annex F), on vectors of samples; all shifts are arithmetic.
//      detail(o, e, e2) = o - ((e + e2) >> 1)             undoDetail adds
//      smooth(e, h, h2) = e + ((h + h2 + 2) >> 2)         undoSmooth subtracts
//      halfRoundedUp(h) = (h + 1) >> 1
// Of 16-bit samples the sums are exact, and the result is cut to 16 bits; of 32-bit samples every sum wraps at 32 bits.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING53_H
#define VEK_JPEG2K_TRANSFORM_LIFTING53_H

#include "jpeg2k/transform/lanes.h"

namespace q3 {

template <typename T>
struct Lifting53;

// pavgw rounds the half of an unsigned sum up: with the bits below the sign turned, it rounds the half of a signed sum
// down. What it gives for complements is the complement of the floor.
template <>
struct Lifting53<int16_t> {
    static __m256i detail(__m256i o, __m256i e, __m256i e2) { return _mm256_sub_epi16(o, half(e, e2)); }
    static __m256i undoDetail(__m256i h, __m256i e, __m256i e2) { return _mm256_add_epi16(h, half(e, e2)); }
    static __m256i smooth(__m256i e, __m256i h, __m256i h2) { return _mm256_add_epi16(e, quarter(h, h2)); }
    static __m256i undoSmooth(__m256i l, __m256i h, __m256i h2) { return _mm256_sub_epi16(l, quarter(h, h2)); }

    static __m256i difference(__m256i a, __m256i b) { return _mm256_sub_epi16(a, b); }
    static __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi16(a, b); }
    static __m256i halfRoundedUp(__m256i h) { return quarter(h, h); }

private:
    static __m256i complementOfHalf(__m256i a, __m256i b)  // as an unsigned number above -32768
    {
        const __m256i turn = _mm256_set1_epi16(0x7FFF);
        return _mm256_avg_epu16(_mm256_xor_si256(a, turn), _mm256_xor_si256(b, turn));
    }
    static __m256i half(__m256i a, __m256i b)
    {
        return _mm256_xor_si256(complementOfHalf(a, b), _mm256_set1_epi16(0x7FFF));
    }
    // (((a + b) >> 1) + 1) >> 1: floors of halves nest.
    static __m256i quarter(__m256i a, __m256i b)
    {
        const __m256i sign = _mm256_set1_epi16(static_cast<int16_t>(0x8000));
        return _mm256_xor_si256(_mm256_avg_epu16(_mm256_xor_si256(half(a, b), sign), sign), sign);
    }
};

template <>
struct Lifting53<int32_t> {
    static __m256i detail(__m256i o, __m256i e, __m256i e2) { return _mm256_sub_epi32(o, half(e, e2)); }
    static __m256i undoDetail(__m256i h, __m256i e, __m256i e2) { return _mm256_add_epi32(h, half(e, e2)); }
    static __m256i smooth(__m256i e, __m256i h, __m256i h2) { return _mm256_add_epi32(e, quarter(h, h2)); }
    static __m256i undoSmooth(__m256i l, __m256i h, __m256i h2) { return _mm256_sub_epi32(l, quarter(h, h2)); }

    static __m256i difference(__m256i a, __m256i b) { return _mm256_sub_epi32(a, b); }
    static __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi32(a, b); }
    static __m256i halfRoundedUp(__m256i h) { return _mm256_srai_epi32(_mm256_add_epi32(h, _mm256_set1_epi32(1)), 1); }

private:
    static __m256i half(__m256i a, __m256i b) { return _mm256_srai_epi32(_mm256_add_epi32(a, b), 1); }
    static __m256i quarter(__m256i a, __m256i b)
    {
        return _mm256_srai_epi32(_mm256_add_epi32(_mm256_add_epi32(a, b), _mm256_set1_epi32(2)), 2);
    }
};

}  // namespace q3

#endif
