#include "jpeg2k/transform/collift_kernels.h"
#include "jpeg2k/transform/collift_rows.h"
#include "jpeg2k/transform/lifting97_fixed.h"
#include "jpeg2k/transform/lifting97_float.h"

namespace q3 {

namespace {

template <typename Stages, typename T>
void forwardStep(const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pSrcDstLow0, T* pDstLow1, T* pSrcDstHigh0,
                 T* pSrcDstHigh1, T* pDstHigh2, int width)
{
    const bool singly =
        rowsCross<T>({pSrcDstLow0, pDstLow1, pSrcDstHigh0, pSrcDstHigh1, pDstHigh2},
                     {pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1, pSrcDstHigh0, pSrcDstHigh1, pDstHigh2}, width);
    alongRows<T>(width, singly, [=](int i, auto count) {
        const __m256i even = loadLanes(pSrc0 + i, count);
        const __m256i high2 = Stages::forward1(loadLanes(pSrc1 + i, count), even, loadLanes(pSrc2 + i, count));
        const __m256i high1Before = loadLanes(pSrcDstHigh1 + i, count);
        const __m256i low1 = Stages::forward2(even, high1Before, high2);
        const __m256i low0 = loadLanes(pSrcDstLow0 + i, count);
        const __m256i high0 = loadLanes(pSrcDstHigh0 + i, count);
        const __m256i high1 = Stages::forward3(high1Before, low0, low1);
        storeLanes(pDstHigh2 + i, high2, count);
        storeLanes(pDstLow1 + i, low1, count);
        storeLanes(pSrcDstHigh1 + i, high1, count);
        storeLanes(pSrcDstLow0 + i, Stages::forward4(low0, high0, high1), count);
        storeLanes(pSrcDstHigh0 + i, Stages::forward5(high0), count);
    });
}

template <typename Stages, typename T>
void inverseStep(const T* pSrcLow, const T* pSrcHigh0, const T* pSrcHigh1, const T* pSrcDst0, T* pSrcDst1, T* pSrcDst2,
                 T* pDst3, T* pDst4, int width)
{
    const bool singly =
        rowsCross<T>({pSrcDst1, pSrcDst2, pDst3, pDst4},
                     {pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1, pSrcDst2, pDst3, pDst4}, width);
    alongRows<T>(width, singly, [=](int i, auto count) {
        const __m256i high = loadLanes(pSrcHigh0 + i, count);
        const __m256i even0 = loadLanes(pSrcDst0 + i, count);
        const __m256i odd1 = loadLanes(pSrcDst1 + i, count);
        const __m256i even2 = loadLanes(pSrcDst2 + i, count);
        const __m256i even4 = Stages::inverse1(loadLanes(pSrcLow + i, count), high, loadLanes(pSrcHigh1 + i, count));
        const __m256i odd3 = Stages::inverse2(high, even2, even4);
        const __m256i even2Done = Stages::inverse3(even2, odd1, odd3);
        storeLanes(pDst4 + i, even4, count);
        storeLanes(pDst3 + i, odd3, count);
        storeLanes(pSrcDst2 + i, even2Done, count);
        storeLanes(pSrcDst1 + i, Stages::inverse4(odd1, even0, even2Done), count);
    });
}

}  // namespace

void ownj_WTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                         int16_t* pSrcDstLow0, int16_t* pDstLow1, int16_t* pSrcDstHigh0,
                                         int16_t* pSrcDstHigh1, int16_t* pDstHigh2, int width)
{
    forwardStep<Q15Stages>(pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1, pSrcDstHigh0, pSrcDstHigh1, pDstHigh2, width);
}
void ownj_WTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcLow, const int16_t* pSrcHigh0, const int16_t* pSrcHigh1,
                                         int16_t* pSrcDst0, int16_t* pSrcDst1, int16_t* pSrcDst2, int16_t* pDst3,
                                         int16_t* pDst4, int width)
{
    inverseStep<Q15Stages>(pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1, pSrcDst2, pDst3, pDst4, width);
}
void ownj_WTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                         int32_t* pSrcDstLow0, int32_t* pDstLow1, int32_t* pSrcDstHigh0,
                                         int32_t* pSrcDstHigh1, int32_t* pDstHigh2, int width)
{
    forwardStep<Q16Stages>(pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1, pSrcDstHigh0, pSrcDstHigh1, pDstHigh2, width);
}
void ownj_WTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcLow, const int32_t* pSrcHigh0, const int32_t* pSrcHigh1,
                                         int32_t* pSrcDst0, int32_t* pSrcDst1, int32_t* pSrcDst2, int32_t* pDst3,
                                         int32_t* pDst4, int width)
{
    inverseStep<Q16Stages>(pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1, pSrcDst2, pDst3, pDst4, width);
}
void ownj_WTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrc0, const float* pSrc1, const float* pSrc2, float* pSrcDstLow0,
                                         float* pDstLow1, float* pSrcDstHigh0, float* pSrcDstHigh1, float* pDstHigh2,
                                         int width)
{
    forwardStep<FloatStages<SeparateLift>>(pSrc0, pSrc1, pSrc2, pSrcDstLow0, pDstLow1, pSrcDstHigh0, pSrcDstHigh1,
                                           pDstHigh2, width);
}
void ownj_WTInvColLift_D97_JPEG2K_32f_C1(const float* pSrcLow, const float* pSrcHigh0, const float* pSrcHigh1,
                                         float* pSrcDst0, float* pSrcDst1, float* pSrcDst2, float* pDst3, float* pDst4,
                                         int width)
{
    inverseStep<FloatStages<SeparateLift>>(pSrcLow, pSrcHigh0, pSrcHigh1, pSrcDst0, pSrcDst1, pSrcDst2, pDst3, pDst4,
                                           width);
}

}  // namespace q3
