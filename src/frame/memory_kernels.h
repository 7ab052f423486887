// Memory kernels that the families share; not exported. Those named veks... and veki... check their arguments like
// exported functions; those named own... check nothing.
#ifndef VEK_FRAME_MEMORY_KERNELS_H
#define VEK_FRAME_MEMORY_KERNELS_H

#include <cstdint>

#include "vekj/types.h"

namespace q3 {

VekStatus veksCopy_8u(const uint8_t* pSrc, uint8_t* pDst, int len);
uint8_t* ownsCopy_8u(const uint8_t* pSrc, uint8_t* pDst, int len);
VekStatus veksZero_8u(uint8_t* pDst, int len);
VekStatus veksZero_16s(int16_t* pDst, int len);
VekStatus veksZero_32f(float* pDst, int len);
uint8_t* ownsZero_8u(uint8_t* pDst, int64_t len);
VekStatus veksSet_8u(uint8_t value, uint8_t* pDst, int len);
void ownsSet_8u(uint8_t value, uint8_t* pDst, int64_t len);
void ownsSet_32s(int32_t value, int32_t* pDst, int len);

// Steps of the copies are not tested.
VekStatus vekiCopy_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize);
VekStatus vekiCopy_32f_C1R(const float* pSrc, int srcStep, float* pDst, int dstStep, VekSize roiSize);

// Widening with zeros
VekStatus vekiConvert_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize);
VekStatus vekiConvert_8u16u_C1R(const uint8_t* pSrc, int srcStep, uint16_t* pDst, int dstStep, VekSize roiSize);

// dst = src AND value
VekStatus vekiAndC_32s_C1R(const int32_t* pSrc, int srcStep, int32_t value, int32_t* pDst, int dstStep,
                           VekSize roiSize);
VekStatus vekiAndC_32s_C1IR(int32_t value, int32_t* pSrcDst, int srcDstStep, VekSize roiSize);

// dst[natural position of zig-zag index i] = src[i] (ITU T.81, Figure A.6)
VekStatus vekiZigzagInv8x8_16s_C1(const int16_t* pSrc, int16_t* pDst);

}  // namespace q3

#endif
