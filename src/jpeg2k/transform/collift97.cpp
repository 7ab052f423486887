#include "frame/implementations.h"
#include "jpeg2k/transform/collift_kernels.h"
#include "jpeg2k/transform/lift_rows.h"

namespace q3 {

VekStatus vekiWTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                             int16_t* pSrcDstLow0, int16_t* pDstLow1, int16_t* pSrcDstHigh0,
                                             int16_t* pSrcDstHigh1, int16_t* pDstHigh2, int width)
{
    return liftRows<ownj_WTFwdColLift_D97_JPEG2K_16s_C1>(width, pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1,
                                                         pSrcDstHigh0, pSrcDstHigh1, pDstHigh2);
}
VekStatus vekiWTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcLow, const int16_t* pSrcHigh0, const int16_t* pSrcHigh1,
                                             int16_t* pSrcDst0, int16_t* pSrcDst1, int16_t* pSrcDst2, int16_t* pDst3,
                                             int16_t* pDst4, int width)
{
    return liftRows<ownj_WTInvColLift_D97_JPEG2K_16s_C1>(width, pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1,
                                                         pSrcDst2, pDst3, pDst4);
}
VekStatus vekiWTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                             int32_t* pSrcDstLow0, int32_t* pDstLow1, int32_t* pSrcDstHigh0,
                                             int32_t* pSrcDstHigh1, int32_t* pDstHigh2, int width)
{
    return liftRows<ownj_WTFwdColLift_D97_JPEG2K_32s_C1>(width, pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1,
                                                         pSrcDstHigh0, pSrcDstHigh1, pDstHigh2);
}
VekStatus vekiWTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcLow, const int32_t* pSrcHigh0, const int32_t* pSrcHigh1,
                                             int32_t* pSrcDst0, int32_t* pSrcDst1, int32_t* pSrcDst2, int32_t* pDst3,
                                             int32_t* pDst4, int width)
{
    return liftRows<ownj_WTInvColLift_D97_JPEG2K_32s_C1>(width, pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1,
                                                         pSrcDst2, pDst3, pDst4);
}
VekStatus vekiWTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrc0, const float* pSrc1, const float* pSrc2,
                                             float* pSrcDstLow0, float* pDstLow1, float* pSrcDstHigh0,
                                             float* pSrcDstHigh1, float* pDstHigh2, int width)
{
    return liftRows<ownj_WTFwdColLift_D97_JPEG2K_32f_C1>(width, pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1,
                                                         pSrcDstHigh0, pSrcDstHigh1, pDstHigh2);
}
VekStatus vekiWTInvColLift_D97_JPEG2K_32f_C1(const float* pSrcLow, const float* pSrcHigh0, const float* pSrcHigh1,
                                             float* pSrcDst0, float* pSrcDst1, float* pSrcDst2, float* pDst3,
                                             float* pDst4, int width)
{
    return liftRows<ownj_WTInvColLift_D97_JPEG2K_32f_C1>(width, pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1,
                                                         pSrcDst2, pDst3, pDst4);
}

}  // namespace q3
