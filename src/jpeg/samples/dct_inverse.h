#ifndef VEK_JPEG_SAMPLES_DCT_INVERSE_H
#define VEK_JPEG_SAMPLES_DCT_INVERSE_H

#include <cstdint>

namespace q3 {

// The fixed-point transform without dequantisation; source and destination may be the same block.
void dct_8x8_inv_16s(const int16_t* pSrc, int16_t* pDst);

// Dequantisation and transform; source and destination may be the same block.
void dct_quant_inv8x8_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable);

// Dequantisation, transform, level shift and clipping. The first takes all coefficients; the next three only the top
// left 4x4, 2x2 or DC; the last two make 4x4 or 2x2 samples.
void dct_quant_inv8x8_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);
void dct_quant_inv8x8_4x4_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);
void dct_quant_inv8x8_2x2_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);
void dct_quant_inv8x8_1x1_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);
void dct_quant_inv8x8To4x4_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);
void dct_quant_inv8x8To2x2_ls(const int16_t* pSrc, uint8_t* pDst, int dstStep, const uint16_t* pQuantInvTable);

// Single precision: the transform alone, and with dequantisation, level shift by 2048, truncation and clipping to 0 ..
// 4095.
void dct_8x8_inv_32f(const float* pSrc, float* pDst);
void dct_qnt_inv_8x8_ls(const int16_t* pSrc, uint16_t* pDst, int dstStep, const float* pQuantInvTable);

}  // namespace q3

#endif
