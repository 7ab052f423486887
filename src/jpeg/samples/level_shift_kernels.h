// Level shift of rows and regions.
#ifndef VEK_JPEG_SAMPLES_LEVEL_SHIFT_KERNELS_H
#define VEK_JPEG_SAMPLES_LEVEL_SHIFT_KERNELS_H

#include <cstdint>

#include "vekj/types.h"

namespace q3 {

// dst = src - 128
void ownjc_Sub128_JPEG_8u16s_C1(const uint8_t* pSrc, int16_t* pDst, int len);
void ownjc_Sub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize);

// dst = src + 128, clipped to 0 .. 255
void ownjc_Add128_JPEG_16s8u_C1(const int16_t* pSrc, uint8_t* pDst, int len);
void ownjc_Add128_JPEG_16s8u_C1R(const int16_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize);

}  // namespace q3

#endif
