// The two-channel stream Y, Cb, Y, Cr to MCUs of Y, Cb, Cr, 4:2:2: each byte minus 128.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_encode.h"

namespace q3 {

static void ownSplit422MCU(const uint8_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const __m256i bias = _mm256_set1_epi16(128);
    const __m256i lowByte = _mm256_set1_epi16(255);
    const __m256i evenByte = _mm256_set1_epi32(255);
    for (int y = 0; y < 8; y += 2) {  // a row in each half
        const uint8_t* pUpper = rowAt(pSrc, srcStep, y);
        const uint8_t* pLower = rowAt(pSrc, srcStep, y + 1);
        const __m256i left = loadLanes(pUpper, pLower);
        const __m256i right = loadLanes(pUpper + 16, pLower + 16);
        storeU(pDstMCU[0] + 8 * y, _mm256_sub_epi16(_mm256_and_si256(left, lowByte), bias));
        storeU(pDstMCU[0] + 64 + 8 * y, _mm256_sub_epi16(_mm256_and_si256(right, lowByte), bias));
        const __m256i cb = _mm256_packus_epi32(_mm256_and_si256(_mm256_srli_epi32(left, 8), evenByte),
                                               _mm256_and_si256(_mm256_srli_epi32(right, 8), evenByte));
        const __m256i cr = _mm256_packus_epi32(_mm256_srli_epi32(left, 24), _mm256_srli_epi32(right, 24));
        storeU(pDstMCU[1] + 8 * y, _mm256_sub_epi16(cb, bias));
        storeU(pDstMCU[2] + 8 * y, _mm256_sub_epi16(cr, bias));
    }
}

VekStatus vekiSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    const VekStatus status = checkEncodeMCU<3>(pSrc, srcStep, pDstMCU);
    if (status == vekStsOk)
        ownSplit422MCU(pSrc, srcStep, pDstMCU);
    return status;
}

}  // namespace q3
