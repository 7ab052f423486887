#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "tiff/packets.h"

namespace q3 {
namespace {

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

// Where among 64 bytes and one more two equal ones begin.
uint64_t pairsOf(const uint8_t* p)
{
    const auto half = [p](int i) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(loadU(p + i), loadU(p + i + 1))));
    };
    return half(0) | uint64_t{half(vectorBytes)} << vectorBytes;
}

// Packs while every packet is sure to fit and vectors can be read. The pairs of equal bytes that begin among the next
// 64 tell where packets end, and short ones take no branch: a run, too, begins with its bytes as they are.
Progress packFast(const uint8_t* pSrc, int srcLenBytes, uint8_t* pDst, int dstLenBytes)
{
    constexpr int window = 64;
    static_assert(2 * window <= longestPacket && 2 * (1 + window) <= behindStage);  // 64 bytes become 65 at most
    uint8_t stage[stageBytes + behindStage];
    const int readLimit = srcLenBytes - longestPacket - vectorBytes;
    Progress at{0, 0};
    while (at.read <= readLimit && at.written < dstLenBytes - longestPacket) {
        const int stageLimit = std::min(stageBytes, dstLenBytes - at.written - longestPacket);
        const uint8_t* p = pSrc + at.read;
        const uint8_t* const pEnd = pSrc + readLimit;
        int filled = 0;
        while (p <= pEnd && filled < stageLimit) {
            uint64_t pairs = pairsOf(p);
            int known = window;
            for (;;) {
                const uint64_t isRun = pairs & 1;
                const uint64_t threes = pairs & pairs >> 1;
                const uint64_t ends = threes ^ ((threes ^ ~pairs) & (0 - isRun));  // before a run's last byte
                const int end = std::countr_zero(ends);
                if (end >= known)
                    break;
                uint8_t* const out = stage + filled;
                storeU(out + 1, loadU(p));
                storeU(out + 1 + vectorBytes, loadU(p + vectorBytes));
                const int run = static_cast<int>(isRun);
                const int more = end + run - 1;  // than one byte
                *out = static_cast<uint8_t>((more ^ -run) + run);
                filled += 2 + (more & (run - 1));
                p += more + 1;
                pairs = pairs >> end >> run;
                known -= more + 1;
            }
            if (known < window)
                continue;
            int count = 0;
            if (p[0] == p[1]) {
                count = std::min(window + 1 + std::countr_one(pairsOf(p + window)), longestPacket);
                stage[filled] = static_cast<uint8_t>(1 - count);
                stage[filled + 1] = *p;
                filled += 2;
            } else {
                count = literalLength(p, longestPacket, static_cast<int>(pSrc + srcLenBytes - p));
                stage[filled] = static_cast<uint8_t>(count - 1);
                copyBytes(p, stage + filled + 1, count);
                filled += 1 + count;
            }
            p += count;
        }
        copyLong(stage, pDst + at.written, filled);
        at.written += filled;
        at.read = static_cast<int>(p - pSrc);
    }
    return at;
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
    const Progress fast = packFast(pSrc, srcLenBytes, out, dstLenBytes);
    *pDstCurrPos += fast.written;
    out += fast.written;
    int room = dstLenBytes - fast.written;
    for (int i = fast.read; i < srcLenBytes;) {
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

}  // namespace q3
