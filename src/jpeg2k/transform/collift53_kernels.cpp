#include "jpeg2k/transform/collift_kernels.h"
#include "jpeg2k/transform/collift_rows.h"
#include "jpeg2k/transform/lifting53.h"

namespace q3 {

namespace {

template <typename T>
void forwardStep(const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pDstLow0, const T* pSrcHigh0, T* pDstHigh1,
                 int width)
{
    const bool singly =
        rowsCross<T>({pDstLow0, pDstHigh1}, {pSrc0, pSrc1, pSrc2, pSrcHigh0, pDstLow0, pDstHigh1}, width);
    alongRows<T>(width, singly, [=](int i, auto count) {
        const __m256i even = loadLanes(pSrc0 + i, count);
        const __m256i before = loadLanes(pSrcHigh0 + i, count);
        const __m256i high = Lifting53<T>::detail(loadLanes(pSrc1 + i, count), even, loadLanes(pSrc2 + i, count));
        storeLanes(pDstHigh1 + i, high, count);
        storeLanes(pDstLow0 + i, Lifting53<T>::smooth(even, before, high), count);
    });
}

template <typename T>
void inverseStep(const T* pSrcLow0, const T* pSrcHigh0, const T* pSrcHigh1, const T* pSrcEven0, T* pDstOdd0,
                 T* pDstEven1, int width)
{
    const bool singly =
        rowsCross<T>({pDstOdd0, pDstEven1}, {pSrcLow0, pSrcHigh0, pSrcHigh1, pSrcEven0, pDstOdd0, pDstEven1}, width);
    alongRows<T>(width, singly, [=](int i, auto count) {
        const __m256i high = loadLanes(pSrcHigh0 + i, count);
        const __m256i evenBefore = loadLanes(pSrcEven0 + i, count);
        const __m256i even =
            Lifting53<T>::undoSmooth(loadLanes(pSrcLow0 + i, count), high, loadLanes(pSrcHigh1 + i, count));
        storeLanes(pDstEven1 + i, even, count);
        storeLanes(pDstOdd0 + i, Lifting53<T>::undoDetail(high, even, evenBefore), count);
    });
}

}  // namespace

void ownj_WTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                         int16_t* pDstLow0, const int16_t* pSrcHigh0, int16_t* pDstHigh1, int width)
{
    forwardStep(pSrc0, pSrc1, pSrc2, pDstLow0, pSrcHigh0, pDstHigh1, width);
}
void ownj_WTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                         int32_t* pDstLow0, const int32_t* pSrcHigh0, int32_t* pDstHigh1, int width)
{
    forwardStep(pSrc0, pSrc1, pSrc2, pDstLow0, pSrcHigh0, pDstHigh1, width);
}
void ownj_WTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcLow0, const int16_t* pSrcHigh0, const int16_t* pSrcHigh1,
                                         const int16_t* pSrcEven0, int16_t* pDstOdd0, int16_t* pDstEven1, int width)
{
    inverseStep(pSrcLow0, pSrcHigh0, pSrcHigh1, pSrcEven0, pDstOdd0, pDstEven1, width);
}
void ownj_WTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcLow0, const int32_t* pSrcHigh0, const int32_t* pSrcHigh1,
                                         const int32_t* pSrcEven0, int32_t* pDstOdd0, int32_t* pDstEven1, int width)
{
    inverseStep(pSrcLow0, pSrcHigh0, pSrcHigh1, pSrcEven0, pDstOdd0, pDstEven1, width);
}

}  // namespace q3
