// The arithmetics of the multiple-component transforms (ISO/IEC 15444-1, Annex G), on vectors of pixels. The planes of
// the reversible transform (RCT) hold Y, B - G and R - G, those of the irreversible one (ICT) Y, Cb, Cr.
#ifndef VEK_JPEG2K_TRANSFORM_COMPONENT_ARITHMETIC_H
#define VEK_JPEG2K_TRANSFORM_COMPONENT_ARITHMETIC_H

#include "jpeg2k/transform/pixel_layouts.h"

namespace q3 {

// (a + b) >> 1 of signed 16-bit lanes, the sum exact. With the signs turned, pavgw rounds the complements up, hence the
// operands down.
inline __m256i floorHalfSum16(__m256i a, __m256i b)
{
    const __m256i turn = _mm256_set1_epi16(0x7FFF);
    return _mm256_xor_si256(_mm256_avg_epu16(_mm256_xor_si256(a, turn), _mm256_xor_si256(b, turn)), turn);
}

// RCT, 16 bits:  Y = (R + 2 G + B) >> 2, Y1 = B - G, Y2 = R - G
// The sums are exact, each result is cut to 16 bits. Halving R + B first loses nothing: floors of halves nest.
struct RctForward16 {
    static Triple of(const Triple& t)
    {
        return {{floorHalfSum16(floorHalfSum16(t.v[0], t.v[2]), t.v[1]), _mm256_sub_epi16(t.v[2], t.v[1]),
                 _mm256_sub_epi16(t.v[0], t.v[1])}};
    }
};
// G = Y - ((Y1 + Y2) >> 2), R = Y2 + G, B = Y1 + G
struct RctInverse16 {
    static Triple of(const Triple& t)
    {
        const __m256i quarter = _mm256_srai_epi16(floorHalfSum16(t.v[1], t.v[2]), 1);
        const __m256i g = _mm256_sub_epi16(t.v[0], quarter);
        return {{_mm256_add_epi16(t.v[2], g), g, _mm256_add_epi16(t.v[1], g)}};
    }
};

// RCT, 32 bits: the same formulas; every sum wraps at 32 bits before it is shifted.
struct RctForward32 {
    static Triple of(const Triple& t)
    {
        const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(t.v[0], t.v[2]), _mm256_slli_epi32(t.v[1], 1));
        return {{_mm256_srai_epi32(sum, 2), _mm256_sub_epi32(t.v[2], t.v[1]), _mm256_sub_epi32(t.v[0], t.v[1])}};
    }
};
struct RctInverse32 {
    static Triple of(const Triple& t)
    {
        const __m256i g = _mm256_sub_epi32(t.v[0], _mm256_srai_epi32(_mm256_add_epi32(t.v[1], t.v[2]), 2));
        return {{_mm256_add_epi32(t.v[2], g), g, _mm256_add_epi32(t.v[1], g)}};
    }
};

// ICT, single precision: each product and each sum is rounded, the sums taken in the order written.
//      Y  = (R *  0.299   + G *  0.587  ) + B *  0.114
//      Cb = (R * -0.16875 + G * -0.33126) + B *  0.5
//      Cr = (R *  0.5     + G * -0.41869) + B * -0.08131
inline __m256 product(__m256i v, float factor) { return _mm256_mul_ps(_mm256_castsi256_ps(v), _mm256_set1_ps(factor)); }
struct IctForwardFloat {
    static Triple of(const Triple& t)
    {
        return {
            {row(t, 0.299F, 0.587F, 0.114F), row(t, -0.16875F, -0.33126F, 0.5F), row(t, 0.5F, -0.41869F, -0.08131F)}};
    }

private:
    static __m256i row(const Triple& t, float r, float g, float b)
    {
        const __m256 first = _mm256_add_ps(product(t.v[0], r), product(t.v[1], g));
        return _mm256_castps_si256(_mm256_add_ps(first, product(t.v[2], b)));
    }
};
//      R = Cr * 1.402 + Y        G = (Cb * -0.34413 + Cr * -0.71414) + Y        B = Cb * 1.772 + Y
struct IctInverseFloat {
    static Triple of(const Triple& t)
    {
        const __m256 y = _mm256_castsi256_ps(t.v[0]);
        const __m256 green = _mm256_add_ps(product(t.v[1], -0.34413F), product(t.v[2], -0.71414F));
        return {{_mm256_castps_si256(_mm256_add_ps(product(t.v[2], 1.402F), y)),
                 _mm256_castps_si256(_mm256_add_ps(green, y)),
                 _mm256_castps_si256(_mm256_add_ps(product(t.v[1], 1.772F), y))}};
    }
};

// ICT, 32 bits, Q14: (c0 v0 + c1 v1 + c2 v2 + 8192) >> 14, all of it wrapping at 32 bits.
inline __m256i product(__m256i v, int factor)
{
    return factor == 8192 ? _mm256_slli_epi32(v, 13) : _mm256_mullo_epi32(v, _mm256_set1_epi32(factor));
}
struct IctForward32 {
    static Triple of(const Triple& t)
    {
        return {{row(t, 4899, 9617, 1868), row(t, -2765, -5427, 8192), row(t, 8192, -6860, -1332)}};
    }

private:
    static __m256i row(const Triple& t, int r, int g, int b)
    {
        const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(product(t.v[0], r), product(t.v[1], g)),
                                             _mm256_add_epi32(product(t.v[2], b), _mm256_set1_epi32(8192)));
        return _mm256_srai_epi32(sum, 14);
    }
};
//      R = Y + ((22970 Cr + 8192) >> 14)
//      G = Y + ((-11700 Cr - 5638 Cb + 8192) >> 14)
//      B = Y + ((29032 Cb + 8192) >> 14)
struct IctInverse32 {
    static Triple of(const Triple& t)
    {
        const __m256i green = _mm256_add_epi32(product(t.v[2], -11700), product(t.v[1], -5638));
        return {{add(t.v[0], product(t.v[2], 22970)), add(t.v[0], green), add(t.v[0], product(t.v[1], 29032))}};
    }

private:
    static __m256i add(__m256i y, __m256i difference)
    {
        const __m256i rounded = _mm256_add_epi32(difference, _mm256_set1_epi32(8192));
        return _mm256_add_epi32(y, _mm256_srai_epi32(rounded, 14));
    }
};

// Interleaved pairs of two vectors of 16-bit lanes, or 32-bit sums of their products; both in two halves.
struct Pairs {
    __m256i low, high;

    static Pairs of(__m256i a, __m256i b) { return {_mm256_unpacklo_epi16(a, b), _mm256_unpackhi_epi16(a, b)}; }
    static Pairs withOne(__m256i a) { return of(a, _mm256_set1_epi16(1)); }

    // a * ca + b * cb
    Pairs times(int ca, int cb) const
    {
        const __m256i factors = _mm256_set1_epi32(static_cast<int>(static_cast<uint32_t>(cb) << 16 | (ca & 0xFFFF)));
        return {_mm256_madd_epi16(low, factors), _mm256_madd_epi16(high, factors)};
    }
    Pairs plus(const Pairs& other) const
    {
        return {_mm256_add_epi32(low, other.low), _mm256_add_epi32(high, other.high)};
    }
    Pairs shifted14() const { return {_mm256_srai_epi32(low, 14), _mm256_srai_epi32(high, 14)}; }
    Pairs negated() const
    {
        const __m256i zero = _mm256_setzero_si256();
        return {_mm256_sub_epi32(zero, low), _mm256_sub_epi32(zero, high)};
    }
    // The low 16 bits of each sum, paired with a one.
    Pairs cutWithOne() const
    {
        const __m256i one = _mm256_set1_epi32(0x10000);
        return {_mm256_blend_epi16(low, one, 0xAA), _mm256_blend_epi16(high, one, 0xAA)};
    }
    __m256i saturated() const { return _mm256_packs_epi32(low, high); }
};

// ICT, 16 bits, Q14, with T = 4899 R + 9617 G + 1868 B (32 bits): the chroma is a scaled difference from the luma.
//      Y  = clip((T + 8192) >> 14)
//      Cb = clip((9246 d + 8192) >> 14),  d = the low 16 bits of ((B << 14) - T + 8192) >> 14
//      Cr = clip((11686 d + 8192) >> 14), d = the low 16 bits of ((R << 14) - T + 8192) >> 14
struct IctForward16 {
    static Triple of(const Triple& t)
    {
        const Pairs rg = Pairs::of(t.v[0], t.v[1]);
        const Pairs b1 = Pairs::withOne(t.v[2]);
        const Pairs y = rg.times(4899, 9617).plus(b1.times(1868, 8192)).shifted14();
        const Pairs db = rg.times(-4899, -9617).plus(b1.times(16384 - 1868, 8192)).shifted14();
        const Pairs dr = rg.times(16384 - 4899, -9617).plus(b1.times(-1868, 8192)).shifted14();
        return {{y.saturated(), db.cutWithOne().times(9246, 8192).shifted14().saturated(),
                 dr.cutWithOne().times(11686, 8192).shifted14().saturated()}};
    }
};
//      R = clip(Y + ((22970 Cr + 8192) >> 14))
//      G = clip(Y - ((5638 Cb + 11700 Cr + 8192) >> 14))      the sign stands outside the rounding
//      B = clip(Y + ((29032 Cb + 8192) >> 14))
// Y joins under the shift as a multiple of 1 << 14; no sum leaves 32 bits.
struct IctInverse16 {
    static Triple of(const Triple& t)
    {
        const __m256i y = t.v[0], cb = t.v[1], cr = t.v[2];
        const Pairs half = Pairs::withOne(_mm256_setzero_si256()).times(0, 8192);
        const Pairs r = Pairs::of(y, cr).times(16384, 22970).plus(half).shifted14();
        const Pairs b = Pairs::of(y, cb).times(16384, 29032).plus(half).shifted14();
        const Pairs g = Pairs::of(cb, cr).times(5638, 11700).plus(Pairs::withOne(y).times(-16384, 8192)).shifted14();
        return {{r.saturated(), g.negated().saturated(), b.saturated()}};
    }
};

}  // namespace q3

#endif
