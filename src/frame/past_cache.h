// Stores past the cache, for results too large for it. Whoever is done with them calls _mm_sfence().
#ifndef VEK_FRAME_PAST_CACHE_H
#define VEK_FRAME_PAST_CACHE_H

#include <algorithm>

#include "frame/vec.h"

namespace q3 {

// At a multiple of 32 bytes.
inline void streamAligned(void* p, __m256i v) { _mm256_stream_si256(static_cast<__m256i*>(p), v); }

// From `p` to the next multiple of 32 bytes.
inline int64_t bytesToAligned(const void* p) { return static_cast<int64_t>(-reinterpret_cast<uintptr_t>(p) & 31); }

// Pieces that follow one another fill lines of the cache in turn: only bytes that no such store can reach, less than 4
// at either end, are stored in the ordinary way, which would cost a line that is begun past the cache a second trip.
inline void copyPastCache(void* pDst, const void* pSrc, int64_t len)
{
    auto* dst = static_cast<uint8_t*>(pDst);
    const auto* src = static_cast<const uint8_t*>(pSrc);
    const uint8_t* const end = src + len;
    const auto isNext = [&](int64_t bytes) { return (bytesToAligned(dst) & bytes) != 0 && end - src >= bytes; };
    const auto advance = [&](int64_t bytes) {
        dst += bytes;
        src += bytes;
    };
    const auto store4 = [&] {
        _mm_stream_si32(reinterpret_cast<int*>(dst), loadScalar<int>(src));
        advance(4);
    };
    const auto store8 = [&] {
        _mm_stream_si64(reinterpret_cast<long long*>(dst), loadScalar<long long>(src));
        advance(8);
    };
    const auto store16 = [&] {
        _mm_stream_si128(reinterpret_cast<__m128i*>(dst), loadU128(src));
        advance(16);
    };
    const int64_t head = std::min(bytesToAligned(dst) & 3, len);
    std::memcpy(dst, src, static_cast<size_t>(head));
    advance(head);
    if (isNext(4))
        store4();
    if (isNext(8))
        store8();
    if (isNext(16))
        store16();
    while (end - src >= 32) {
        streamAligned(dst, loadU(src));
        advance(32);
    }
    if (end - src >= 16)
        store16();
    if (end - src >= 8)
        store8();
    if (end - src >= 4)
        store4();
    std::memcpy(dst, src, static_cast<size_t>(end - src));
}

}  // namespace q3

#endif
