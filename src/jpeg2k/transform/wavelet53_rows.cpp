#include "frame/implementations.h"
#include "jpeg2k/transform/line_filters.h"
#include "jpeg2k/transform/wavelet_rows.h"

namespace q3 {

void ownjc_WTFwd_B53_16s(const int16_t* x, int16_t* low, int16_t* high, int width, int phase, bool pastCache)
{
    forwardRow(LineFilter53<int16_t>{}, x, low, high, width, phase, pastCache);
}
void ownjc_WTFwd_B53_32s(const int32_t* x, int32_t* low, int32_t* high, int width, int phase, bool pastCache)
{
    forwardRow(LineFilter53<int32_t>{}, x, low, high, width, phase, pastCache);
}
void ownjc_WTInv_B53_16s(const int16_t* low, const int16_t* high, int16_t* x, int width, int phase, bool pastCache)
{
    inverseRow(LineFilter53<int16_t>{}, low, high, x, width, phase, pastCache);
}
void ownjc_WTInv_B53_32s(const int32_t* low, const int32_t* high, int32_t* x, int width, int phase, bool pastCache)
{
    inverseRow(LineFilter53<int32_t>{}, low, high, x, width, phase, pastCache);
}

VekStatus vekiWTFwdRow_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                          int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forwardRows<int16_t, ownjc_WTFwd_B53_16s>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep},
                                                     dstRoiSize, phase);
}
VekStatus vekiWTInvRow_B53_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep, int phase)
{
    return inverseRows<int16_t, ownjc_WTInv_B53_16s>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep},
                                                     srcRoiSize, phase);
}
VekStatus vekiWTFwdRow_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                          int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forwardRows<int32_t, ownjc_WTFwd_B53_32s>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep},
                                                     dstRoiSize, phase);
}
VekStatus vekiWTInvRow_B53_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep, int phase)
{
    return inverseRows<int32_t, ownjc_WTInv_B53_32s>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep},
                                                     srcRoiSize, phase);
}

}  // namespace q3
