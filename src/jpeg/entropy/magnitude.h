// Category and magnitude bits of a value (ITU T.81, F.1.2).
#ifndef VEK_JPEG_ENTROPY_MAGNITUDE_H
#define VEK_JPEG_ENTROPY_MAGNITUDE_H

#include <bit>
#include <cstdint>
#include <cstdlib>

namespace q3 {

// Number of bits of |v|: 0 for 0, up to 16 for any difference of two 16-bit values.
inline int categoryOf(int v) { return static_cast<int>(std::bit_width(static_cast<unsigned>(std::abs(v)))); }

// The bits to write, of which the low ones count: v, or v - 1 for a negative v.
inline uint32_t magnitudeBits(int v) { return static_cast<uint32_t>(v + (v >> 31)); }

}  // namespace q3

#endif
