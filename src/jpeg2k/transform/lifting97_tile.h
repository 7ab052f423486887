// The stages of the irreversible 9/7 filter (ISO/IEC 15444-1, Annex F) in the two arithmetics of whole tiles.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING97_TILE_H
#define VEK_JPEG2K_TRANSFORM_LIFTING97_TILE_H

#include "jpeg2k/transform/lifting97_float.h"

namespace q3 {

// 16 bits, Q14: r(v) = (v + 8192) >> 14 of a 32-bit product; what is stored is cut to 16 bits, nothing saturates.
//      forward:  o += r(-25987 (e + e2)),  e += r(-868 (o + o2)),  o += r(14466 (e + e2)),
//                low = r(13318 (e + r(7266 (o + o2)))), the inner sum not cut,  high = r(20155 o)
//      inverse:  l = r(20155 l), h = r(13318 h), then
//                e = l - r(7266 (h + h2)),  o = h - r(14466 (e + e2)),  e -= r(-868 (o + o2)),  o -= r(-25987 (e + e2))
struct Q14Stages {
    static constexpr bool bandsAsStored = false;
    static constexpr bool samplesAsStored = true;

    static __m256i forward1(__m256i o, __m256i e, __m256i e2) { return _mm256_add_epi16(o, rounded(e, e2, -25987)); }
    static __m256i forward2(__m256i e, __m256i o, __m256i o2) { return _mm256_add_epi16(e, rounded(o, o2, -868)); }
    static __m256i forward3(__m256i o, __m256i e, __m256i e2) { return _mm256_add_epi16(o, rounded(e, e2, 14466)); }
    static __m256i forward4(__m256i e, __m256i o, __m256i o2)
    {
        return rounded(e, rounded(o, o2, 7266), 13318);  // 65536 * 7266 >> 14 fits into 16 bits
    }
    static __m256i forward5(__m256i o) { return scaled(o, 20155); }

    static __m256i low(__m256i l) { return scaled(l, 20155); }
    static __m256i high(__m256i h) { return scaled(h, 13318); }
    static __m256i inverse1(__m256i l, __m256i h, __m256i h2) { return _mm256_sub_epi16(l, rounded(h, h2, 7266)); }
    static __m256i inverse2(__m256i h, __m256i e, __m256i e2) { return _mm256_sub_epi16(h, rounded(e, e2, 14466)); }
    static __m256i inverse3(__m256i e, __m256i o, __m256i o2) { return _mm256_sub_epi16(e, rounded(o, o2, -868)); }
    static __m256i inverse4(__m256i o, __m256i e, __m256i e2) { return _mm256_sub_epi16(o, rounded(e, e2, -25987)); }

private:
    // The low 16 bits of r(c (a + b)): the sums of products lie within 32 bits, the result in bits 14 .. 29.
    static __m256i rounded(__m256i a, __m256i b, int16_t c)
    {
        const __m256i factor = _mm256_set1_epi16(c);
        return _mm256_packs_epi32(cut(_mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), factor)),
                                  cut(_mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), factor)));
    }
    static __m256i scaled(__m256i a, int16_t c) { return rounded(a, _mm256_setzero_si256(), c); }
    static __m256i cut(__m256i product)
    {
        const __m256i sum = _mm256_add_epi32(product, _mm256_set1_epi32(8192));
        return _mm256_srai_epi32(_mm256_slli_epi32(sum, 2), 16);
    }
};

// 32 bits: sums of two stored samples are formed in integers, wrapping, and converted; from there on the stages are
// those of FusedLift in single precision. Results are truncated towards zero and clipped: above 2^31 to 0x7FFFFFFF,
// below -2^31 to 0x80000000; 2^31 itself is not above, and is converted to 0x80000000.
struct MixedStages {
    static constexpr bool bandsAsStored = true;
    static constexpr bool samplesAsStored = false;
    using Float = FloatStages<FusedLift>;

    static __m256i forward1(__m256i o, __m256i e, __m256i e2)
    {
        return float97::multiplyAdd(sum(e, e2), float97::alpha, number(o));
    }
    static __m256i forward2(__m256i e, __m256i o, __m256i o2) { return Float::forward2(number(e), o, o2); }
    static __m256i forward3(__m256i o, __m256i e, __m256i e2) { return Float::forward3(o, e, e2); }
    static __m256i forward4(__m256i e, __m256i o, __m256i o2) { return sample(Float::forward4(e, o, o2)); }
    static __m256i forward5(__m256i o) { return sample(Float::forward5(o)); }

    static __m256i inverse1(__m256i l, __m256i h, __m256i h2)
    {
        return float97::multiplyAdd(sum(h, h2), -float97::deltaByGain, float97::scale(number(l), float97::gain));
    }
    static __m256i inverse2(__m256i h, __m256i e, __m256i e2) { return Float::inverse2(number(h), e, e2); }
    static __m256i inverse3(__m256i e, __m256i o, __m256i o2) { return Float::inverse3(e, o, o2); }
    static __m256i inverse4(__m256i o, __m256i e, __m256i e2) { return Float::inverse4(o, e, e2); }
    static __m256i sample(__m256i v)
    {
        const __m256 value = _mm256_castsi256_ps(v);
        const __m256 above = _mm256_cmp_ps(value, _mm256_set1_ps(2147483648.0F), _CMP_GT_OQ);
        return _mm256_blendv_epi8(_mm256_cvttps_epi32(value), _mm256_set1_epi32(0x7FFFFFFF),
                                  _mm256_castps_si256(above));
    }

private:
    static __m256i number(__m256i v) { return _mm256_castps_si256(_mm256_cvtepi32_ps(v)); }
    static __m256i sum(__m256i a, __m256i b) { return number(_mm256_add_epi32(a, b)); }
};

}  // namespace q3

#endif
