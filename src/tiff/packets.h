// PackBits (TIFF 6.0, section 9). A control byte n from 0 to 127 stands before n + 1 literal bytes, one from -127 to -1
// before a byte that is repeated 1 - n times; -128 stands alone.
#ifndef VEK_TIFF_PACKETS_H
#define VEK_TIFF_PACKETS_H

#include <cstring>

#include "frame/vec.h"

namespace q3 {

constexpr int longestPacket = 128;  // bytes that it stands for
constexpr int vectorBytes = 32;

// Stores `count` bytes, 1 to 128, and not one more: in pieces that overlap, each by store(its type, offset).
template <class Store>
void storePieces(int count, const Store& store)
{
    if (count >= vectorBytes) {
        for (int i = 0; i < count - vectorBytes; i += vectorBytes) store(__m256i{}, i);
        store(__m256i{}, count - vectorBytes);
    } else if (count >= 16) {
        store(__m128i{}, 0);
        store(__m128i{}, count - 16);
    } else if (count >= 8) {
        store(uint64_t{}, 0);
        store(uint64_t{}, count - 8);
    } else if (count >= 4) {
        store(uint32_t{}, 0);
        store(uint32_t{}, count - 4);
    } else {
        for (int i = 0; i < count; ++i) store(uint8_t{}, i);
    }
}

inline void copyBytes(const uint8_t* pSrc, uint8_t* pDst, int count)
{
    storePieces(count, [&](auto piece, int i) { storeScalar(pDst + i, loadScalar<decltype(piece)>(pSrc + i)); });
}

inline void fillBytes(uint8_t value, uint8_t* pDst, int count)
{
    const __m256i all = _mm256_set1_epi8(static_cast<char>(value));
    storePieces(count, [&](auto piece, int i) { std::memcpy(pDst + i, &all, sizeof piece); });
}

// The bytes of the longest literal.
inline void copyLongest(const uint8_t* pSrc, uint8_t* pDst)
{
    const __m256i a = loadU(pSrc);
    const __m256i b = loadU(pSrc + vectorBytes);
    const __m256i c = loadU(pSrc + 2 * vectorBytes);
    const __m256i d = loadU(pSrc + 3 * vectorBytes);
    storeU(pDst, a);
    storeU(pDst + vectorBytes, b);
    storeU(pDst + 2 * vectorBytes, c);
    storeU(pDst + 3 * vectorBytes, d);
}
static_assert(longestPacket == 4 * vectorBytes);

// Any number of bytes, and not one more.
inline void copyLong(const uint8_t* pSrc, uint8_t* pDst, int count)
{
    int i = 0;
    for (; i <= count - longestPacket; i += longestPacket) copyLongest(pSrc + i, pDst + i);
    copyBytes(pSrc + i, pDst + i, count - i);
}

// The fast loops store whole vectors, which go on behind their packets, into a stage of this size. From there what
// counts goes to its destination, where nothing may change behind it.
constexpr int stageBytes = 2048;
constexpr int behindStage = 1 + longestPacket + vectorBytes;

// Of a row, by a fast loop.
struct Progress {
    int read;
    int written;
};

}  // namespace q3

#endif
