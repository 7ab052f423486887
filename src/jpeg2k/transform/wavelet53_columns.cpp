#include "frame/implementations.h"
#include "jpeg2k/transform/wavelet_columns.h"

namespace q3 {

namespace {

template <typename T>
VekStatus forward(Region<const T> src, Region<T> low, Region<T> high, VekSize roiSize, int phase)
{
    const VekStatus status = checkRegions(src, low, high, roiSize);
    if (status == vekStsOk)
        withStoresFor<T>({low, high}, roiSize, [&](auto pastCache, int head) {
            forwardColumnsOf(ColumnFilter53<T, pastCache>{}, src, low, high, roiSize, phase != 0, head);
        });
    return status;
}
template <typename T>
VekStatus inverse(Region<const T> low, Region<const T> high, Region<T> dst, VekSize roiSize, int phase)
{
    const VekStatus status = checkRegions(low, high, dst, roiSize);
    if (status == vekStsOk)
        withStoresFor<T>({dst}, roiSize, [&](auto pastCache, int head) {
            inverseColumnsOf(ColumnFilter53<T, pastCache>{}, low, high, dst, roiSize, phase != 0, head);
        });
    return status;
}

}  // namespace

VekStatus vekiWTFwdCol_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                          int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forward<int16_t>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep}, dstRoiSize, phase);
}
VekStatus vekiWTInvCol_B53_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep, int phase)
{
    return inverse<int16_t>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep}, srcRoiSize, phase);
}
VekStatus vekiWTFwdCol_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                          int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase)
{
    return forward<int32_t>({pSrc, srcStep}, {pDstLow, dstLowStep}, {pDstHigh, dstHighStep}, dstRoiSize, phase);
}
VekStatus vekiWTInvCol_B53_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                          int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep, int phase)
{
    return inverse<int32_t>({pSrcLow, srcLowStep}, {pSrcHigh, srcHighStep}, {pDst, dstStep}, srcRoiSize, phase);
}

}  // namespace q3
