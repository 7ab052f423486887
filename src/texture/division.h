// Truncated quotients of 16-bit lanes, for all weighted sums of 8-bit endpoints.
#ifndef VEK_TEXTURE_DIVISION_H
#define VEK_TEXTURE_DIVISION_H

#include <immintrin.h>

#include <cstdint>

namespace q3 {

constexpr uint16_t thirdFactor = 0x5556;
constexpr uint16_t fifthFactor = 0x3334;
constexpr uint16_t seventhFactor = 0x2493;

inline __m128i thirdOf(__m128i v) { return _mm_mulhi_epu16(v, _mm_set1_epi16(thirdFactor)); }
inline __m128i fifthOf(__m128i v) { return _mm_mulhi_epu16(v, _mm_set1_epi16(fifthFactor)); }
inline __m128i seventhOf(__m128i v) { return _mm_mulhi_epu16(v, _mm_set1_epi16(seventhFactor)); }

constexpr bool dividesExactly(uint32_t divisor, uint32_t factor, uint32_t largest)
{
    for (uint32_t v = 0; v <= largest; ++v)
        if (v * factor >> 16 != v / divisor)
            return false;
    return true;
}
static_assert(dividesExactly(3, thirdFactor, 3 * 255) && dividesExactly(5, fifthFactor, 5 * 255 + 2) &&
              dividesExactly(7, seventhFactor, 7 * 255 + 3));

}  // namespace q3

#endif
