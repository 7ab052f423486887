// Halved sums and differences of signed 16-bit samples without the loss of their 17th bit. The unsigned rounding
// average, on samples biased by 0x8000, is the only 17-bit arithmetic that 16-bit lanes have:
//
//      (a - c) >> 1 = average(a', ~c') - 0x8000      with x' = x + 0x8000 as an unsigned word
//      (a + b) >> 1 = 0x7FFF - average(~a', ~b')
#ifndef VEK_JPEG_ENTROPY_PREDICTION_HALVES_H
#define VEK_JPEG_ENTROPY_PREDICTION_HALVES_H

#include <immintrin.h>

namespace q3 {

inline __m256i biased(__m256i x) { return _mm256_xor_si256(x, _mm256_set1_epi16(-0x8000)); }
inline __m256i complementBiased(__m256i x) { return _mm256_xor_si256(x, _mm256_set1_epi16(0x7FFF)); }

// (a - c) >> 1, rounding down
inline __m256i halfDifference(__m256i a, __m256i c) { return biased(_mm256_avg_epu16(biased(a), complementBiased(c))); }

// (a + b) >> 1, rounding down
inline __m256i halfSum(__m256i a, __m256i b)
{
    return complementBiased(_mm256_avg_epu16(complementBiased(a), complementBiased(b)));
}

}  // namespace q3

#endif
