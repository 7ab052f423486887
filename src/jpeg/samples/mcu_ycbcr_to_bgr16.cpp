// MCUs of Y, Cb, Cr to packed 16-bit pixels.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_decode.h"

namespace q3 {

VekStatus vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s444, DecodeFormB, StoreBGR16<Fields::F555>>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s422, DecodeFormB, StoreBGR16<Fields::F555>>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s411, DecodeFormB, StoreBGR16<Fields::F555>>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s444, DecodeFormB, StoreBGR16<Fields::F565>>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s422, DecodeFormB, StoreBGR16<Fields::F565>>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return decodeMCU<McuLayout::s411, DecodeFormB, StoreBGR16<Fields::F565>>(pSrcMCU, pDst, dstStep);
}

}  // namespace q3
