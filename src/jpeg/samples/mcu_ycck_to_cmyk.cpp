// MCUs of Y, Cb, Cr, K to CMYK pixels. The alignment of the planes chooses the arithmetic.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_decode.h"

namespace q3 {

VekStatus vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s444, DecodeFormB, StoreCMYK>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s422, DecodeFormB, StoreCMYK>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s411, DecodeFormB, StoreCMYK>(pSrcMCU, pDst, dstStep);
}

}  // namespace q3
