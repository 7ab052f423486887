// RGB and BGR pixels to MCUs of Y, Cb, Cr.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_encode.h"

namespace q3 {

namespace {
constexpr unsigned planeY = 0b001;
}  // namespace

VekStatus vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s444, EncodeBlockForm<>, LoadRGB>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s422, EncodeBlockForm<>, LoadRGB>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCUByAlignment<McuLayout::s411, EncodeBlockForm<>, LoadRGB, planeY>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s444, EncodeBlockForm<>, LoadBGR>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s422, EncodeBlockForm<>, LoadBGR>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCUByAlignment<McuLayout::s411, EncodeBlockForm<>, LoadBGR, planeY>(pSrc, srcStep, pDstMCU);
}

}  // namespace q3
