// Category and magnitude bits of a value (ITU T.81, F.1.2).
#ifndef VEK_JPEG_ENTROPY_MAGNITUDE_H
#define VEK_JPEG_ENTROPY_MAGNITUDE_H

#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>

namespace q3 {

// Number of bits of |v|: 0 for 0, up to 16 for any difference of two 16-bit values.
inline int categoryOf(int v) { return 32 - static_cast<int>(_lzcnt_u32(static_cast<unsigned>(std::abs(v)))); }

// The bits to write, of which the low ones count: v, or v - 1 for a negative v.
inline uint32_t magnitudeBits(int v) { return static_cast<uint32_t>(v + (v >> 31)); }

struct Magnitude {
    uint32_t category = 0;
    uint32_t bits = 0;  // no more than the category tells
};

inline Magnitude magnitudeOf(int v)
{
    const auto category = static_cast<uint32_t>(categoryOf(v));
    return {category, magnitudeBits(v) & ((1U << category) - 1)};
}

// Those of the values of 8-bit pictures, from a table by v + largestSmall.
constexpr int largestSmall = 1023;
struct SmallMagnitude {
    uint16_t category, bits;
};
constexpr std::array<SmallMagnitude, 2 * largestSmall + 1> smallMagnitudes = [] {
    std::array<SmallMagnitude, 2 * largestSmall + 1> t{};
    for (int v = -largestSmall; v <= largestSmall; ++v) {
        const int category = std::bit_width(static_cast<unsigned>(v < 0 ? -v : v));
        const int bits = (v < 0 ? v - 1 : v) & ((1 << category) - 1);
        t[static_cast<size_t>(v + largestSmall)] = {static_cast<uint16_t>(category), static_cast<uint16_t>(bits)};
    }
    return t;
}();
static_assert(smallMagnitudes[largestSmall - 1].category == 1 && smallMagnitudes[largestSmall - 1].bits == 0 &&
              smallMagnitudes[largestSmall + 1].category == 1 && smallMagnitudes[largestSmall + 1].bits == 1 &&
              smallMagnitudes[0].category == 10 && smallMagnitudes[0].bits == 0 &&
              smallMagnitudes[2 * largestSmall].category == 10 && smallMagnitudes[2 * largestSmall].bits == 0x3FF);

inline Magnitude smallMagnitudeOf(int64_t v)
{
    const SmallMagnitude* const ofZero = smallMagnitudes.data() + largestSmall;
    return {ofZero[v].category, ofZero[v].bits};
}

}  // namespace q3

#endif
