// Models of the reversible 5/3 filter (ISO/IEC 15444-1, Annex F), sample by sample.
#ifndef VEK_TESTS_REFERENCE_JPEG2K_WAVELET53_H
#define VEK_TESTS_REFERENCE_JPEG2K_WAVELET53_H

#include <cstdint>
#include <vector>

#include "reference/bits.h"

namespace model {

template <typename T>
struct Bands {
    std::vector<T> low, high;
};

// x - ((a + b) >> 1) and its like. Of 16-bit samples the sums are exact and the result is cut, of 32-bit samples every
// sum wraps.
inline int16_t minusHalf(int16_t x, int16_t a, int16_t b) { return wrap16(x - ((a + b) >> 1)); }
inline int16_t plusHalf(int16_t x, int16_t a, int16_t b) { return wrap16(x + ((a + b) >> 1)); }
inline int16_t minusQuarter(int16_t x, int16_t a, int16_t b) { return wrap16(x - ((a + b + 2) >> 2)); }
inline int16_t plusQuarter(int16_t x, int16_t a, int16_t b) { return wrap16(x + ((a + b + 2) >> 2)); }
inline int32_t minusHalf(int32_t x, int32_t a, int32_t b) { return wrap32(int64_t{x} - (wrap32(int64_t{a} + b) >> 1)); }
inline int32_t plusHalf(int32_t x, int32_t a, int32_t b) { return wrap32(int64_t{x} + (wrap32(int64_t{a} + b) >> 1)); }
inline int32_t minusQuarter(int32_t x, int32_t a, int32_t b)
{
    return wrap32(int64_t{x} - (wrap32(int64_t{a} + b + 2) >> 2));
}
inline int32_t plusQuarter(int32_t x, int32_t a, int32_t b)
{
    return wrap32(int64_t{x} + (wrap32(int64_t{a} + b + 2) >> 2));
}

// `pairs` samples of each band from the line x, whose sample 0 stands at an even (phase 0) or an odd position; x can be
// read from -2 to 2 * pairs, or from -1 to 2 * pairs + 1.
template <typename T>
Bands<T> forward53(const T* x, int pairs, int phase)
{
    Bands<T> bands;
    const auto detail = [&](int odd) { return minusHalf(x[odd], x[odd - 1], x[odd + 1]); };
    for (int i = 0; i < pairs; ++i) {
        if (phase == 0) {
            bands.high.push_back(detail(2 * i + 1));
            bands.low.push_back(plusQuarter(x[2 * i], detail(2 * i - 1), detail(2 * i + 1)));
        } else {
            bands.high.push_back(detail(2 * i));
            bands.low.push_back(plusQuarter(x[2 * i + 1], detail(2 * i), detail(2 * i + 2)));
        }
    }
    return bands;
}

// The line of 2 * pairs samples. low can be read from 0 to pairs (phase 0) or from -1 to pairs - 1, high from -1 to
// pairs.
template <typename T>
std::vector<T> inverse53(const T* low, const T* high, int pairs, int phase)
{
    std::vector<T> line;
    for (int i = 0; i < pairs; ++i) {
        if (phase == 0) {
            const auto even = [&](int k) { return minusQuarter(low[k], high[k - 1], high[k]); };
            line.push_back(even(i));
            line.push_back(plusHalf(high[i], even(i), even(i + 1)));
        } else {
            const auto even = [&](int k) { return minusQuarter(low[k], high[k], high[k + 1]); };
            line.push_back(plusHalf(high[i], even(i - 1), even(i)));
            line.push_back(even(i));
        }
    }
    return line;
}

}  // namespace model

#endif
