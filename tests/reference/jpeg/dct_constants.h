// The constants that the forward and the inverse DCT share, and the words of their 16-bit arithmetic.
#ifndef VEK_TESTS_REFERENCE_JPEG_DCT_CONSTANTS_H
#define VEK_TESTS_REFERENCE_JPEG_DCT_CONSTANTS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "reference/bits.h"

namespace model {

using Block = std::array<int16_t, 64>;
using FloatBlock = std::array<float, 64>;
using Table = std::array<uint16_t, 64>;

inline int16_t plus(int16_t a, int16_t b) { return saturate16(a + b); }
inline int16_t minus(int16_t a, int16_t b) { return saturate16(a - b); }
inline int16_t highHalf(int16_t u, int16_t k) { return static_cast<int16_t>((int32_t{u} * k) >> 16); }

constexpr int16_t tangent1 = 13036;        // tan(pi / 16), Q16
constexpr int16_t tangent2 = 27146;        // tan(2 pi / 16)
constexpr int16_t tangent3Less1 = -21746;  // tan(3 pi / 16) - 1

// Factors of the row pass, for each of the 8 rows.
struct RowFactors {
    int64_t a, b, c, d, e, f, g;
};
inline RowFactors rowFactors(size_t row)
{
    switch (row) {
        case 0:
        case 4:
            return {16384, 22725, 19266, 12873, 4520, 21407, 8867};
        case 1:
        case 7:
            return {22725, 31521, 26722, 17855, 6270, 29692, 12299};
        case 2:
        case 6:
            return {21407, 29692, 25172, 16819, 5906, 27969, 11585};
        default:
            return {19266, 26722, 22654, 15137, 5315, 25172, 10426};
    }
}

// Single precision: cos(pi / 4) and tan(k pi / 16).
constexpr float floatCosine4 = 0x1.6a09e6p-1F;
constexpr float floatTangent1 = 0x1.975f5ep-3F;
constexpr float floatTangent2 = 0x1.a8279ap-2F;
constexpr float floatTangent3 = 0x1.561b82p-1F;

// The single-precision value nearest to s(row) s(column) / 8, with s(0) = s(4) = 1 and s(k) = s(8 - k), which is
// sqrt(2) cos(k pi / 16) for k = 1, 2, 3.
float scale(size_t row, size_t column);

}  // namespace model

#endif
