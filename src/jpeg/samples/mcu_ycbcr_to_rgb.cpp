// MCUs of Y, Cb, Cr to RGB and BGR pixels. The alignment of the planes chooses the arithmetic.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_decode.h"

namespace q3 {

VekStatus vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s444, DecodeFormA, StoreRGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s422, DecodeFormB, StoreRGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s411, DecodeFormB, StoreRGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s444, DecodeFormA, StoreBGR>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s422, DecodeFormB, StoreBGR>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return decodeMCUByAlignment<McuLayout::s411, DecodeFormB, StoreBGR>(pSrcMCU, pDst, dstStep);
}

}  // namespace q3
