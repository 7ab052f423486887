#ifndef VEK_FRAME_QUANTISE_VEC_H
#define VEK_FRAME_QUANTISE_VEC_H

#include <immintrin.h>

namespace q3 {

// x * t / 32768, to the nearest integer with ties to even, saturated; x signed, t unsigned, 16 lanes.
//   r = mulhrs(x, t as signed) rounds ties up: a tie that went to an odd number goes back by one
//   t >= 32768 reads as t - 65536: 2 x is missing, an even number, which leaves the ties as they are
inline __m256i mulQ15TiesToEven(__m256i x, __m256i t)
{
    const __m256i lowProduct = _mm256_and_si256(_mm256_mullo_epi16(x, t), _mm256_set1_epi16(0x7FFF));
    const __m256i tie = _mm256_cmpeq_epi16(lowProduct, _mm256_set1_epi16(0x4000));
    const __m256i up = _mm256_mulhrs_epi16(x, t);
    const __m256i odd = _mm256_and_si256(up, _mm256_set1_epi16(1));
    const __m256i even = _mm256_sub_epi16(up, _mm256_and_si256(tie, odd));
    const __m256i missing = _mm256_and_si256(x, _mm256_srai_epi16(t, 15));
    return _mm256_adds_epi16(_mm256_adds_epi16(even, missing), missing);
}

}  // namespace q3

#endif
