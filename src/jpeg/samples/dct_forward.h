#ifndef VEK_JPEG_SAMPLES_DCT_FORWARD_H
#define VEK_JPEG_SAMPLES_DCT_FORWARD_H

#include <cstdint>

namespace q3 {

// The fixed-point transform without quantisation; source and destination may be the same block.
void dct_8x8_fwd_16s(const int16_t* pSrc, int16_t* pDst);

// Transform and quantisation; source and destination may be the same block.
void ownDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable);

// Level shift, transform and quantisation of 8 rows of 8 samples.
void ownDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst,
                                        const uint16_t* pQuantFwdTable);

// The single-precision transform; source and destination may be the same block.
void dct_8x8_fwd_32f(const float* pSrc, float* pDst);

// The 16-bit sample path: level shift by 2048, transform, multiplication by the table, rounding.
void dct_qnt_fwd_8x8_ls(const uint16_t* pSrc, int srcStep, int16_t* pDst, const float* pQuantFwdTable);

}  // namespace q3

#endif
