// Kernels of the ColLift forms: one vertical lifting step over rows of `width` samples. Rows that overlap without being
// the same are done sample by sample, left to right. Any address will do.
#ifndef VEK_JPEG2K_TRANSFORM_COLLIFT_KERNELS_H
#define VEK_JPEG2K_TRANSFORM_COLLIFT_KERNELS_H

#include <cstdint>

namespace q3 {

void ownj_WTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                         int16_t* pDstLow0, const int16_t* pSrcHigh0, int16_t* pDstHigh1, int width);
void ownj_WTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                         int32_t* pDstLow0, const int32_t* pSrcHigh0, int32_t* pDstHigh1, int width);
void ownj_WTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcLow0, const int16_t* pSrcHigh0, const int16_t* pSrcHigh1,
                                         const int16_t* pSrcEven0, int16_t* pDstOdd0, int16_t* pDstEven1, int width);
void ownj_WTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcLow0, const int32_t* pSrcHigh0, const int32_t* pSrcHigh1,
                                         const int32_t* pSrcEven0, int32_t* pDstOdd0, int32_t* pDstEven1, int width);

void ownj_WTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                         int16_t* pSrcDstLow0, int16_t* pDstLow1, int16_t* pSrcDstHigh0,
                                         int16_t* pSrcDstHigh1, int16_t* pDstHigh2, int width);
void ownj_WTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcLow, const int16_t* pSrcHigh0, const int16_t* pSrcHigh1,
                                         int16_t* pSrcDst0, int16_t* pSrcDst1, int16_t* pSrcDst2, int16_t* pDst3,
                                         int16_t* pDst4, int width);
void ownj_WTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                         int32_t* pSrcDstLow0, int32_t* pDstLow1, int32_t* pSrcDstHigh0,
                                         int32_t* pSrcDstHigh1, int32_t* pDstHigh2, int width);
void ownj_WTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcLow, const int32_t* pSrcHigh0, const int32_t* pSrcHigh1,
                                         int32_t* pSrcDst0, int32_t* pSrcDst1, int32_t* pSrcDst2, int32_t* pDst3,
                                         int32_t* pDst4, int width);
void ownj_WTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrc0, const float* pSrc1, const float* pSrc2, float* pSrcDstLow0,
                                         float* pDstLow1, float* pSrcDstHigh0, float* pSrcDstHigh1, float* pDstHigh2,
                                         int width);
void ownj_WTInvColLift_D97_JPEG2K_32f_C1(const float* pSrcLow, const float* pSrcHigh0, const float* pSrcHigh1,
                                         float* pSrcDst0, float* pSrcDst1, float* pSrcDst2, float* pDst3, float* pDst4,
                                         int width);

}  // namespace q3

#endif
