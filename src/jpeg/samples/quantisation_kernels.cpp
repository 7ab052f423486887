#include "jpeg/samples/quantisation_kernels.h"

namespace q3 {

void ownjc_QuantFwd_8x8_Sfs15_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    for (int i = 0; i < 64; i += 16) {
        // a is a multiple of 8, so both shifts join in the rounding multiply of a / 4.
        const __m256i quarterA = _mm256_srai_epi16(_mm256_slli_epi16(loadU(pSrc + i), 3), 2);
        storeU(pDst + i, _mm256_mulhrs_epi16(quarterA, _mm256_srli_epi16(loadU(pQuantFwdTable + i), 1)));
    }
}

void ownjc_QuantInv_8x8_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable)
{
    for (int i = 0; i < 64; i += 16) storeU(pDst + i, _mm256_mullo_epi16(loadU(pSrc + i), loadU(pQuantInvTable + i)));
}

void ownjc_QuantInv_8x8_16s_I(int16_t* pSrcDst, const uint16_t* pQuantInvTable)
{
    ownjc_QuantInv_8x8_16s(pSrcDst, pSrcDst, pQuantInvTable);
}

}  // namespace q3
