// Pixels of Y, Cb, Cr to MCUs: chroma is averaged.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_encode.h"

namespace q3 {

VekStatus vekiSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s444, EncodeSamples, LoadYCbCr>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s422, EncodeSamples, LoadYCbCr>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s411, EncodeSamples, LoadYCbCr>(pSrc, srcStep, pDstMCU);
}

}  // namespace q3
