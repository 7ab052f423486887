#include "frame/implementations.h"
#include "jpeg2k/transform/collift_kernels.h"
#include "jpeg2k/transform/lift_rows.h"

namespace q3 {

VekStatus vekiWTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                             int16_t* pDstLow0, const int16_t* pSrcHigh0, int16_t* pDstHigh1, int width)
{
    return liftRows<ownj_WTFwdColLift_B53_JPEG2K_16s_C1>(width, pSrc0, pSrc1, pSrc2, pDstLow0, pSrcHigh0, pDstHigh1);
}
VekStatus vekiWTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcLow0, const int16_t* pSrcHigh0,
                                             const int16_t* pSrcHigh1, const int16_t* pSrcEven0, int16_t* pDstOdd0,
                                             int16_t* pDstEven1, int width)
{
    return liftRows<ownj_WTInvColLift_B53_JPEG2K_16s_C1>(width, pSrcLow0, pSrcHigh0, pSrcHigh1, pSrcEven0, pDstOdd0,
                                                         pDstEven1);
}
VekStatus vekiWTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                             int32_t* pDstLow0, const int32_t* pSrcHigh0, int32_t* pDstHigh1, int width)
{
    return liftRows<ownj_WTFwdColLift_B53_JPEG2K_32s_C1>(width, pSrc0, pSrc1, pSrc2, pDstLow0, pSrcHigh0, pDstHigh1);
}
VekStatus vekiWTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcLow0, const int32_t* pSrcHigh0,
                                             const int32_t* pSrcHigh1, const int32_t* pSrcEven0, int32_t* pDstOdd0,
                                             int32_t* pDstEven1, int width)
{
    return liftRows<ownj_WTInvColLift_B53_JPEG2K_32s_C1>(width, pSrcLow0, pSrcHigh0, pSrcHigh1, pSrcEven0, pDstOdd0,
                                                         pDstEven1);
}

}  // namespace q3
