// Models of the quantisation tables, of quantisation and of the level shift (ITU T.81, A.3.1 and A.3.4).
#ifndef VEK_TESTS_REFERENCE_JPEG_QUANTISATION_H
#define VEK_TESTS_REFERENCE_JPEG_QUANTISATION_H

#include <array>
#include <cstdint>

#include "reference/bits.h"

namespace model {

using RawTable = std::array<uint8_t, 64>;
using QuantTable = std::array<uint16_t, 64>;

uint8_t scaledByQuality(uint8_t entry, int32_t quality);
QuantTable forwardTable(const RawTable& zigzagOrder);
QuantTable inverseTable(const RawTable& zigzagOrder);

inline int16_t quantised(int16_t x, uint16_t t)
{
    const int32_t a = wrap16(x * 8);  // the top bits fall away
    const int32_t b = t / 2;          // 0 .. 32767
    const int32_t c = (a * b) >> 16;
    return static_cast<int16_t>((c + 1) >> 1);  // ties go up
}

inline int16_t dequantised(int16_t x, uint16_t t) { return wrap16(int64_t{x} * t); }

inline int16_t levelShiftedDown(uint8_t sample) { return static_cast<int16_t>(sample - 128); }
inline uint8_t levelShiftedUp(int16_t sample) { return clip8(sample + 128); }

}  // namespace model

#endif
