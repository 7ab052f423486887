// Models of the irreversible 9/7 filter (ISO/IEC 15444-1, Annex F) in each of its arithmetics, sample by sample.
#ifndef VEK_TESTS_REFERENCE_JPEG2K_WAVELET97_H
#define VEK_TESTS_REFERENCE_JPEG2K_WAVELET97_H

#include <cstdint>
#include <vector>

#include "reference/jpeg2k/wavelet53.h"

namespace model {

// The stages of an arithmetic. Forward: details from x and its neighbours, averages, details again, the low output, the
// high output. Inverse: averages from the two bands, details, averages, details.
template <typename T>
struct Stages {
    T (*forward1)(T odd, T even, T even2);
    T (*forward2)(T even, T odd, T odd2);
    T (*forward3)(T odd, T even, T even2);
    T (*forward4)(T even, T odd, T odd2);
    T (*forward5)(T odd);
    T (*inverse1)(T low, T high, T high2);
    T (*inverse2)(T high, T even, T even2);
    T (*inverse3)(T even, T odd, T odd2);
    T (*inverse4)(T odd, T even, T even2);
};

extern const Stages<float> separateFloat;  // rounded after the product and after the sum
extern const Stages<float> fusedFloat;     // fused multiply-adds
extern const Stages<int16_t> q15;          // rounding multiplication on 16-bit lanes, saturating sums
extern const Stages<int16_t> q16Clipped;   // 64-bit products, every stage clipped
extern const Stages<int32_t> q16;          // sums that wrap at 32 bits, 64-bit products

// A line in pieces, as the row and column forms take it: `pairs` samples of each band from the line x, whose sample 0
// stands at an even (phase 0) or an odd position. The first four details and the last one, the first three averages and
// the last one, and so on, are computed by `ends`, the rest by `interior`.
template <typename T>
Bands<T> forward97(const T* x, int pairs, int phase, const Stages<T>& ends, const Stages<T>& interior);
template <typename T>
std::vector<T> inverse97(const T* low, const T* high, int pairs, int phase, const Stages<T>& ends,
                         const Stages<T>& interior);

// One pair by the nine taps of the filter; `even` points at the sample of even position, `odd` at the other.
Bands<float> nineTaps(const float* even, const float* odd);
Bands<int16_t> nineTaps(const int16_t* even, const int16_t* odd);
Bands<int32_t> nineTaps(const int32_t* even, const int32_t* odd);

}  // namespace model

#endif
