#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"

namespace q3 {
namespace {

constexpr int step = 32;  // samples

// The bytes of 32 samples, high ones and low ones apart.
inline void splitSamples(const uint16_t* pSrc, uint8_t* pHigh, uint8_t* pLow)
{
    const __m256i a = loadU(pSrc);
    const __m256i b = loadU(pSrc + 16);
    const __m256i low = _mm256_set1_epi16(0xFF);
    const auto store = [](uint8_t* p, __m256i x, __m256i y) {
        storeU(p, _mm256_permute4x64_epi64(_mm256_packus_epi16(x, y), 0xD8));
    };
    store(pHigh, _mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8));
    store(pLow, _mm256_and_si256(a, low), _mm256_and_si256(b, low));
}

inline void joinSamples(const uint8_t* pHigh, const uint8_t* pLow, uint16_t* pDst)
{
    const __m256i high = _mm256_permute4x64_epi64(loadU(pHigh), 0xD8);
    const __m256i low = _mm256_permute4x64_epi64(loadU(pLow), 0xD8);
    storeU(pDst, _mm256_unpacklo_epi8(low, high));
    storeU(pDst + 16, _mm256_unpackhi_epi8(low, high));
}

}  // namespace

VekStatus vekiSplitRow_TIFF_16u8u_C1(const uint16_t* pSrc, uint8_t** pDst, int len)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(len);
    uint8_t* const high = pDst[0];
    uint8_t* const low = pDst[1];
    int i = 0;
    for (; i <= len - step; i += step) splitSamples(pSrc + i, high + i, low + i);
    for (; i < len; ++i) {
        const auto sample = loadScalar<uint16_t>(pSrc + i);
        high[i] = static_cast<uint8_t>(sample >> 8);
        low[i] = static_cast<uint8_t>(sample);
    }
    return vekStsOk;
}

VekStatus vekiJoinRow_TIFF_8u16u_C1(const uint8_t** pSrc, uint16_t* pDst, int len)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(len);
    const uint8_t* const high = pSrc[0];
    const uint8_t* const low = pSrc[1];
    int i = 0;
    for (; i <= len - step; i += step) joinSamples(high + i, low + i, pDst + i);
    for (; i < len; ++i) storeScalar(pDst + i, static_cast<uint16_t>(high[i] << 8 | low[i]));
    return vekStsOk;
}

}  // namespace q3
