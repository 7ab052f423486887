// Models of the shared arithmetic kernels, one entry at a time.
#ifndef VEK_TESTS_REFERENCE_FRAME_ARITHMETIC_H
#define VEK_TESTS_REFERENCE_FRAME_ARITHMETIC_H

#include <cstdint>

#include "reference/bits.h"

namespace model {

// x * t / 2^scaleFactor to the nearest integer, ties to even, saturated.
inline int16_t mulPosSfs(int16_t x, uint16_t t, int scaleFactor)
{
    const int64_t product = int64_t{x} * t;
    if (scaleFactor > 40)  // the quotient is far below one half
        return 0;
    const int64_t unit = int64_t{1} << scaleFactor;
    const int64_t down = product >> scaleFactor;
    const int64_t rest = product - down * unit;  // 0 .. unit - 1
    const bool up = 2 * rest > unit || (2 * rest == unit && (down & 1) != 0);
    return saturate16(up ? down + 1 : down);
}

// value / divisor to the nearest integer, ties to even, for a value other than 0.
inline uint16_t reversedQuotient(uint16_t value, uint16_t divisor)
{
    if (divisor == 0)
        return 65535;
    const uint32_t down = uint32_t{value} / divisor;
    const uint32_t rest = uint32_t{value} % divisor;
    const bool up = 2 * rest > divisor || (2 * rest == divisor && down % 2 == 1);
    return static_cast<uint16_t>(up ? down + 1 : down);
}

}  // namespace model

#endif
