#include "frame/implementations.h"
#include "jpeg2k/transform/lifting97_fixed.h"
#include "jpeg2k/transform/lifting97_float.h"
#include "jpeg2k/transform/nine_taps.h"
#include "jpeg2k/transform/wavelet_rows.h"

namespace q3 {

namespace {

// A single pair goes through the taps of the filter, which lifting would not give to the bit.
template <typename Filter, typename T>
void forwardByTapsOrLifting(const T* x, T* low, T* high, int width, int phase, bool pastCache)
{
    if (width == 1) {
        const TapResults<T> results = nineTaps(x + phase, x + 1 - phase);
        storeScalar(low, results.low);
        storeScalar(high, results.high);
    } else {
        forwardRow(Filter{width}, x, low, high, width, phase, pastCache);
    }
}

using RowFilter16 = LineFilter97<int16_t, Q15Stages, ClippedQ16Stages>;
using RowFilter32 = LineFilter97<int32_t, Q16Stages>;
using RowFilterFloat = LineFilter97<float, FloatStages<SeparateLift>, FloatStages<FusedLift>>;

}  // namespace

void ownjc_WTFwdRow_D97_16s(const int16_t* x, int16_t* low, int16_t* high, int width, int phase, bool pastCache)
{
    forwardByTapsOrLifting<RowFilter16>(x, low, high, width, phase, pastCache);
}
void ownjc_WTInvRow_D97_16s_(const int16_t* low, const int16_t* high, int16_t* x, int width, int phase, bool pastCache)
{
    inverseRow(RowFilter16{width}, low, high, x, width, phase, pastCache);
}
void ownjc_WTFwdRow_D97_32s(const int32_t* x, int32_t* low, int32_t* high, int width, int phase, bool pastCache)
{
    forwardByTapsOrLifting<RowFilter32>(x, low, high, width, phase, pastCache);
}
void ownjc_WTInvRow_D97_32s(const int32_t* low, const int32_t* high, int32_t* x, int width, int phase, bool pastCache)
{
    inverseRow(RowFilter32{width}, low, high, x, width, phase, pastCache);
}
void ownjc_WTFwd_D97_32f(const float* x, float* low, float* high, int width, int phase, bool pastCache)
{
    forwardByTapsOrLifting<RowFilterFloat>(x, low, high, width, phase, pastCache);
}
void ownjc_WTInv_D97_32f_(const float* low, const float* high, float* x, int width, int phase, bool pastCache)
{
    inverseRow(RowFilterFloat{width}, low, high, x, width, phase, pastCache);
}

VekStatus vekiWTFwdRow_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                          int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forwardRows<int16_t, ownjc_WTFwdRow_D97_16s>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep},
                                                        dstRoiSize, phase);
}
VekStatus vekiWTInvRow_D97_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep, int phase)
{
    return inverseRows<int16_t, ownjc_WTInvRow_D97_16s_>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep},
                                                         {pDst, dstStep}, srcRoiSize, phase);
}
VekStatus vekiWTFwdRow_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                          int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forwardRows<int32_t, ownjc_WTFwdRow_D97_32s>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep},
                                                        dstRoiSize, phase);
}
VekStatus vekiWTInvRow_D97_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep, int phase)
{
    return inverseRows<int32_t, ownjc_WTInvRow_D97_32s>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep},
                                                        srcRoiSize, phase);
}
VekStatus vekiWTFwdRow_D97_JPEG2K_32f_C1R(const float* pSrc, int srcStep, float* pDstLow, int dstLowStep,
                                          float* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forwardRows<float, ownjc_WTFwd_D97_32f>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep},
                                                   dstRoiSize, phase);
}
VekStatus vekiWTInvRow_D97_JPEG2K_32f_C1R(const float* pSrcLow, int srcLowStep, const float* pSrcHigh, int srcHighStep,
                                          VekSize srcRoiSize, float* pDst, int dstStep, int phase)
{
    return inverseRows<float, ownjc_WTInv_D97_32f_>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep},
                                                    srcRoiSize, phase);
}

}  // namespace q3
