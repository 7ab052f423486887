#include "frame/implementations.h"
#include "jpeg2k/transform/lifting97_float.h"
#include "jpeg2k/transform/wavelet_columns.h"

namespace q3 {

namespace {

template <bool pastCache>
using Filter = ColumnFilter97<float, FloatStages<SeparateLift>, FloatStages<FusedLift>, pastCache>;

}  // namespace

VekStatus vekiWTFwdCol_D97_JPEG2K_32f_C1R(const float* pSrc, int srcStep, float* pDstLow, int dstLowStep,
                                          float* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    const Region<const float> src = {pSrc, srcStep};
    const Region<float> low = {pDstLow, dstLowStep};
    const Region<float> high = {pDstHigh, dstHighStep};
    const VekStatus status = checkRegions(src, low, high, dstRoiSize);
    if (status == vekStsOk)
        withStoresFor<float>({low, high}, dstRoiSize, [&](auto pastCache, int head) {
            forwardColumnsOf(Filter<pastCache>{dstRoiSize.height}, src, low, high, dstRoiSize, phase != 0, head);
        });
    return status;
}

VekStatus vekiWTInvCol_D97_JPEG2K_32f_C1R(const float* pSrcLow, int srcLowStep, const float* pSrcHigh, int srcHighStep,
                                          VekSize srcRoiSize, float* pDst, int dstStep, int phase)
{
    const Region<const float> low = {pSrcLow, srcLowStep};
    const Region<const float> high = {pSrcHigh, srcHighStep};
    const Region<float> dst = {pDst, dstStep};
    const VekStatus status = checkRegions(low, high, dst, srcRoiSize);
    if (status == vekStsOk)
        withStoresFor<float>({dst}, srcRoiSize, [&](auto pastCache, int head) {
            inverseColumnsOf(Filter<pastCache>{srcRoiSize.height}, low, high, dst, srcRoiSize, phase != 0, head);
        });
    return status;
}

}  // namespace q3
