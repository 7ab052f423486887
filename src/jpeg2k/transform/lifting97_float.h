// The stages of the irreversible 9/7 filter (ISO/IEC 15444-1, Annex F) in single precision, for a float or a vector of
// eight. The constants are the floats nearest to those of the standard.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING97_FLOAT_H
#define VEK_JPEG2K_TRANSFORM_LIFTING97_FLOAT_H

#include <cmath>

#include "jpeg2k/transform/lanes.h"
#include "jpeg2k/transform/lifting97_stages.h"

namespace q3 {

namespace float97 {

constexpr float alpha = -1.5861343F;
constexpr float beta = -0.052980117F;
constexpr float gamma = 0.8829111F;
constexpr float delta = 0.44350687F;
constexpr float gain = 1.2301741F;
constexpr float oneByGain = 0.8128931F;
constexpr float deltaByGain = 0.36052364F;

inline float add(float a, float b) { return a + b; }
inline float scale(float a, float factor) { return a * factor; }
inline float multiplyAdd(float a, float factor, float t) { return std::fma(factor, a, t); }
inline __m256i add(__m256i a, __m256i b)
{
    return _mm256_castps_si256(_mm256_add_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b)));
}
inline __m256i scale(__m256i a, float factor)
{
    return _mm256_castps_si256(_mm256_mul_ps(_mm256_castsi256_ps(a), _mm256_set1_ps(factor)));
}
inline __m256i multiplyAdd(__m256i a, float factor, __m256i t)
{
    return _mm256_castps_si256(_mm256_fmadd_ps(_mm256_set1_ps(factor), _mm256_castsi256_ps(a), _mm256_castsi256_ps(t)));
}

}  // namespace float97

// t + factor * (a + b), rounded after each operation.
struct SeparateLift {
    template <typename V>
    static V lift(V t, float factor, V a, V b)
    {
        return float97::add(t, float97::scale(float97::add(a, b), factor));
    }
};
// The same with a fused multiply-add: rounded after the sum and at the end.
struct FusedLift {
    template <typename V>
    static V lift(V t, float factor, V a, V b)
    {
        return float97::multiplyAdd(float97::add(a, b), factor, t);
    }
};

//      forward:  o += alpha (e + e2),  e += beta (o + o2),  o += gamma (e + e2),
//                low = (e + delta (o + o2)) * 0.8128931,  high = o * 1.2301741
//      inverse:  e = 1.2301741 low - 0.36052364 (h + h2),  o = 0.8128931 h - gamma (e + e2),
//                e -= beta (o + o2),  o -= alpha (e + e2)
template <typename Lift>
struct FloatStages : PlainInverse {
    template <typename V>
    static V forward1(V o, V e, V e2)
    {
        return Lift::lift(o, float97::alpha, e, e2);
    }
    template <typename V>
    static V forward2(V e, V o, V o2)
    {
        return Lift::lift(e, float97::beta, o, o2);
    }
    template <typename V>
    static V forward3(V o, V e, V e2)
    {
        return Lift::lift(o, float97::gamma, e, e2);
    }
    template <typename V>
    static V forward4(V e, V o, V o2)
    {
        return float97::scale(Lift::lift(e, float97::delta, o, o2), float97::oneByGain);
    }
    template <typename V>
    static V forward5(V o)
    {
        return float97::scale(o, float97::gain);
    }
    template <typename V>
    static V inverse1(V l, V h, V h2)
    {
        return Lift::lift(float97::scale(l, float97::gain), -float97::deltaByGain, h, h2);
    }
    template <typename V>
    static V inverse2(V h, V e, V e2)
    {
        return Lift::lift(float97::scale(h, float97::oneByGain), -float97::gamma, e, e2);
    }
    template <typename V>
    static V inverse3(V e, V o, V o2)
    {
        return Lift::lift(e, -float97::beta, o, o2);
    }
    template <typename V>
    static V inverse4(V o, V e, V e2)
    {
        return Lift::lift(o, -float97::alpha, e, e2);
    }
};

}  // namespace q3

#endif
