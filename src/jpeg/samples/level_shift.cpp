#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/samples/level_shift_kernels.h"

namespace q3 {

VekStatus vekiSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(roiSize);
    ownjc_Sub128_JPEG_8u16s_C1R(pSrc, srcStep, pDst, dstStep, roiSize);
    return vekStsOk;
}

VekStatus vekiAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(roiSize);
    ownjc_Add128_JPEG_16s8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize);
    return vekStsOk;
}

}  // namespace q3
