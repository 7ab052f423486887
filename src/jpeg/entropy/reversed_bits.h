// Bits the other way round: what a stream tells first, its reader has last in a word.
#ifndef VEK_JPEG_ENTROPY_REVERSED_BITS_H
#define VEK_JPEG_ENTROPY_REVERSED_BITS_H

#include <cstdint>

namespace q3 {

constexpr uint64_t reversedBits(uint64_t v)
{
    v = (v >> 1 & 0x5555555555555555) | (v & 0x5555555555555555) << 1;
    v = (v >> 2 & 0x3333333333333333) | (v & 0x3333333333333333) << 2;
    v = (v >> 4 & 0x0F0F0F0F0F0F0F0F) | (v & 0x0F0F0F0F0F0F0F0F) << 4;
    return __builtin_bswap64(v);
}
static_assert(reversedBits(0x8000000000000006) == 0x6000000000000001);

}  // namespace q3

#endif
