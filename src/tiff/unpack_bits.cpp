#include <algorithm>
#include <cstdlib>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "tiff/packets.h"

namespace q3 {
namespace {

// Unpacks while every packet is sure to be whole and to fit. Long literals go straight to their destination, until
// another packet comes; on the stage a short packet takes no branch.
Progress unpackFast(const uint8_t* pSrc, int begin, int srcLenBytes, uint8_t* pDst, int dstLenBytes)
{
    uint8_t stage[stageBytes + behindStage];
    const uint8_t* p = pSrc + begin;
    const uint8_t* const pEnd = pSrc + std::max(0, srcLenBytes - longestPacket);
    int written = 0;
    while (p < pEnd && written <= dstLenBytes - longestPacket) {
        if (const int control = static_cast<int8_t>(*p); control >= vectorBytes) {
            if (control == longestPacket - 1)
                copyLongest(p + 1, pDst + written);
            else
                copyBytes(p + 1, pDst + written, 1 + control);
            written += 1 + control;
            p += 2 + control;
            continue;
        }
        const int stageLimit = std::min(stageBytes, dstLenBytes - written - longestPacket);
        int filled = 0;
        while (p < pEnd && filled <= stageLimit) {
            const int64_t control = static_cast<int8_t>(*p);
            const __m256i isRun = _mm256_set1_epi8(static_cast<char>(*p));  // by its sign
            const __m256i repeated = _mm256_set1_epi8(static_cast<char>(p[1]));
            const auto store = [&](int i) {
                storeU(stage + filled + i, _mm256_blendv_epi8(loadU(p + 1 + i), repeated, isRun));
            };
            const int count = 1 + std::abs(static_cast<int>(control));
            store(0);
            if (count > vectorBytes) {
                if (control == -128) {
                    ++p;
                    continue;
                }
                store(vectorBytes);
                store(2 * vectorBytes);
                store(3 * vectorBytes);
            }
            filled += count;
            p += 2 + std::max(control, int64_t{0});
        }
        copyLong(stage, pDst + written, filled);
        written += filled;
    }
    return {static_cast<int>(p - pSrc), written};
}

}  // namespace

VekStatus vekiUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int* pSrcCurrPos, int srcLenBytes, uint8_t* pDst,
                                       int dstLenBytes)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_LENGTH(dstLenBytes);
    const Progress fast = unpackFast(pSrc, *pSrcCurrPos, srcLenBytes, pDst, dstLenBytes);
    int i = fast.read;
    int stored = fast.written;
    while (stored != dstLenBytes && i < srcLenBytes) {
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
    }
    *pSrcCurrPos = i;
    return stored == dstLenBytes ? vekStsOk : vekStsTiffRowFormat;
}

}  // namespace q3
