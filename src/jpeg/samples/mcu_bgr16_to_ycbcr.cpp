// Packed 16-bit pixels to MCUs of Y, Cb, Cr.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_encode.h"

namespace q3 {

VekStatus vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s444, EncodeBlockForm<>, LoadBGR16<Fields::F555>>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s422, EncodeBlockForm<>, LoadBGR16<Fields::F555>>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s411, EncodeBlockForm<>, LoadBGR16<Fields::F555>>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s444, EncodeBlockForm<>, LoadBGR16<Fields::F565>>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s422, EncodeBlockForm<>, LoadBGR16<Fields::F565>>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return encodeMCU<McuLayout::s411, EncodeBlockForm<>, LoadBGR16<Fields::F565>>(pSrc, srcStep, pDstMCU);
}

}  // namespace q3
