// CMYK pixels to MCUs of Y, Cb, Cr, K. The alignment of the planes chooses the arithmetic.
#include "frame/implementations.h"
#include "jpeg/samples/mcu_encode.h"

namespace q3 {

namespace {
constexpr unsigned allPlanes = 0b1111;
constexpr unsigned planesYAndK = 0b1001;
}  // namespace

// The rounding term of this one member is 8133, 59 less than a half.
VekStatus vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return encodeMCUByAlignment<McuLayout::s444, EncodeBlockForm<8133>, LoadCMYK, allPlanes>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return encodeMCUByAlignment<McuLayout::s422, EncodeBlockForm<>, LoadCMYK, planesYAndK>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return encodeMCUByAlignment<McuLayout::s411, EncodeBlockForm<>, LoadCMYK, planesYAndK>(pSrc, srcStep, pDstMCU);
}

}  // namespace q3
