// Bytes of an entropy-coded segment, several at once.
#ifndef VEK_JPEG_ENTROPY_BIG_ENDIAN_H
#define VEK_JPEG_ENTROPY_BIG_ENDIAN_H

#include <cstdint>

#include "frame/vec.h"

namespace q3 {

inline uint32_t loadBigEndian16(const uint8_t* p) { return __builtin_bswap16(loadScalar<uint16_t>(p)); }
inline uint32_t loadBigEndian32(const uint8_t* p) { return __builtin_bswap32(loadScalar<uint32_t>(p)); }
inline uint64_t loadBigEndian64(const uint8_t* p) { return __builtin_bswap64(loadScalar<uint64_t>(p)); }
inline void storeBigEndian64(uint8_t* p, uint64_t v) { storeScalar(p, __builtin_bswap64(v)); }

// Whether one of the eight bytes is 0xFF, that is, one of the complement's is zero.
constexpr bool hasByteFF(uint64_t bytes)
{
    constexpr uint64_t ones = 0x0101010101010101;
    return ((~bytes - ones) & bytes & (ones << 7)) != 0;
}
static_assert(hasByteFF(0x00000000FF000000) && hasByteFF(0xFF01) && hasByteFF(~uint64_t{0}) && !hasByteFF(0) &&
              !hasByteFF(0xFEFE01007F80FE00) && !hasByteFF(0xFE80808080808080));

}  // namespace q3

#endif
