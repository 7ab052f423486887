// Kernels of the multiple-component transforms: one row each. Rows that share bytes with one another are done pixel by
// pixel, left to right; otherwise vectors of pixels are. Any address will do.
#ifndef VEK_JPEG2K_TRANSFORM_COMPONENT_KERNELS_H
#define VEK_JPEG2K_TRANSFORM_COMPONENT_KERNELS_H

#include <cstdint>

namespace q3 {

void ownjc_RCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int16_t* const pDst[3], int width);
void ownjc_RCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int32_t* const pDst[3], int width);
void ownjc_ICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, float* const pDst[3], int width);

void ownjc_RCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int16_t* pDst, int width);
void ownjc_RCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int32_t* pDst, int width);
void ownjc_ICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], float* pDst, int width);

void ownjc_RCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width);
void ownjc_RCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width);
void ownjc_RCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width);
void ownjc_RCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width);
void my_ICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width);
void my_ICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width);
void ownjc_ICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width);
void ownjc_ICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width);
void ownjc_ICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int width);
void ownjc_ICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int width);

}  // namespace q3

#endif
