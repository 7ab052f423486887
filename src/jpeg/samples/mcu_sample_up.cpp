// MCUs of Y, Cb, Cr to pixels of Y, Cb, Cr: chroma is replicated. Every alignment has the same numbers.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_decode.h"

namespace q3 {

VekStatus vekiSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s444, DecodeSamples, StoreYCbCr>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s422, DecodeSamples, StoreYCbCr>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s411, DecodeSamples, StoreYCbCr>(pSrcMCU, pDst, dstStep);
}

}  // namespace q3
