// PackBits (TIFF 6.0, section 9). A control byte n from 0 to 127 stands before n + 1 literal bytes, one from -127 to -1
// before a byte that is repeated 1 - n times; -128 stands alone.
#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"

namespace q3 {
namespace {

constexpr int longestPacket = 128;  // bytes that it stands for
constexpr int vectorBytes = 32;

// How many bytes from p on, of at most `limit`, equal the first. `readable` bytes lie there.
int runLength(const uint8_t* p, int limit, int readable)
{
    const __m256i first = _mm256_set1_epi8(static_cast<char>(*p));
    int i = 1;
    for (; i < limit && i <= readable - vectorBytes; i += vectorBytes) {
        const auto equal = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(loadU(p + i), first)));
        if (equal != 0xFFFFFFFF)
            return std::min(i + std::countr_one(equal), limit);
    }
    while (i < limit && p[i] == *p) ++i;
    return std::min(i, limit);
}

// How many bytes from p on, of at most `limit`, lie before three equal ones. `readable` bytes lie there.
int literalLength(const uint8_t* p, int limit, int readable)
{
    int i = 1;
    for (; i < limit && i <= readable - vectorBytes - 2; i += vectorBytes) {
        const __m256i second = loadU(p + i + 1);
        const __m256i equal =
            _mm256_and_si256(_mm256_cmpeq_epi8(loadU(p + i), second), _mm256_cmpeq_epi8(second, loadU(p + i + 2)));
        const auto mask = static_cast<uint32_t>(_mm256_movemask_epi8(equal));
        if (mask != 0)
            return std::min(i + std::countr_zero(mask), limit);
    }
    while (i < limit && !(i < readable - 2 && p[i] == p[i + 1] && p[i] == p[i + 2])) ++i;
    return std::min(i, limit);
}

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

void copyBytes(const uint8_t* pSrc, uint8_t* pDst, int count)
{
    storePieces(count, [&](auto piece, int i) { storeScalar(pDst + i, loadScalar<decltype(piece)>(pSrc + i)); });
}

void fillBytes(uint8_t value, uint8_t* pDst, int count)
{
    const __m256i all = _mm256_set1_epi8(static_cast<char>(value));
    storePieces(count, [&](auto piece, int i) { std::memcpy(pDst + i, &all, sizeof piece); });
}

}  // namespace

VekStatus vekiPackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int srcLenBytes, uint8_t* pDst, int* pDstCurrPos,
                                     int dstLenBytes)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_LENGTH(dstLenBytes);
    uint8_t* out = pDst + *pDstCurrPos;
    int room = dstLenBytes;
    for (int i = 0; i < srcLenBytes;) {
        const uint8_t* const p = pSrc + i;
        const int left = srcLenBytes - i;
        const int limit = std::min(left, longestPacket);
        const bool isRun = left > 1 && p[0] == p[1];
        const int count = isRun ? runLength(p, limit, left) : literalLength(p, limit, left);
        const int size = isRun ? 2 : 1 + count;
        *out = static_cast<uint8_t>(isRun ? 1 - count : count - 1);  // there is room for one byte
        if (size > room) {
            if (room > 1)
                std::memcpy(out + 1, p, static_cast<size_t>(room - 1));
            return vekStsTiffRowFormat;
        }
        if (isRun)
            out[1] = *p;
        else
            copyBytes(p, out + 1, count);
        out += size;
        room -= size;
        *pDstCurrPos += size;
        i += count;
        if (room == 0 && i < srcLenBytes)
            return vekStsTiffRowFormat;
    }
    return vekStsOk;
}

VekStatus vekiUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int* pSrcCurrPos, int srcLenBytes, uint8_t* pDst,
                                       int dstLenBytes)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_LENGTH(dstLenBytes);
    int i = *pSrcCurrPos;
    int stored = 0;
    VekStatus status = vekStsTiffRowFormat;
    while (i < srcLenBytes) {
        const auto control = static_cast<int8_t>(pSrc[i++]);
        const int room = dstLenBytes - stored;
        if (control >= 0) {
            const int count = control + 1;
            if (count > srcLenBytes - i || count > room)
                break;
            copyBytes(pSrc + i, pDst + stored, count);
            i += count;
            stored += count;
        } else if (control != -128) {
            const int count = 1 - control;
            if (count > room)
                break;
            fillBytes(pSrc[i++], pDst + stored, count);  // the byte may lie right behind the source
            stored += count;
        }
        if (stored == dstLenBytes) {
            status = vekStsOk;
            break;
        }
    }
    *pSrcCurrPos = i;
    return status;
}

}  // namespace q3
