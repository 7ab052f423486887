// MCUs of Y, Cb, Cr, 4:2:2, to the two-channel stream Y, Cb, Y, Cr.
//   byte = clip(x + 128)      the sum saturated; every alignment has the same numbers
#include "frame/implementations.h"
#include "jpeg/samples/mcu_decode.h"

namespace q3 {

static void ownJoin422MCU(const int16_t* const* pSrcMCU, uint8_t* pDst, int dstStep)
{
    const __m256i bias = _mm256_set1_epi16(128);
    const auto shifted = [=](const int16_t* p) { return _mm256_adds_epi16(loadU(p), bias); };
    for (int y = 0; y < 8; y += 2) {  // a row in each half
        const int16_t* pLuma = pSrcMCU[0] + 8 * y;
        const __m256i luma = _mm256_packus_epi16(shifted(pLuma), shifted(pLuma + 64));
        const __m256i cb = shifted(pSrcMCU[1] + 8 * y);
        const __m256i cr = shifted(pSrcMCU[2] + 8 * y);
        const __m256i chroma = _mm256_packus_epi16(_mm256_unpacklo_epi16(cb, cr), _mm256_unpackhi_epi16(cb, cr));
        uint8_t* pUpper = rowAt(pDst, dstStep, y);
        uint8_t* pLower = rowAt(pDst, dstStep, y + 1);
        storeLanes(pUpper, pLower, _mm256_unpacklo_epi8(luma, chroma));
        storeLanes(pUpper + 16, pLower + 16, _mm256_unpackhi_epi8(luma, chroma));
    }
}

VekStatus vekiJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    const VekStatus status = checkDecodeMCU<3>(pSrcMCU, pDst, dstStep);
    if (status == vekStsOk)
        ownJoin422MCU(pSrcMCU, pDst, dstStep);
    return status;
}

}  // namespace q3
