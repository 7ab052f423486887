/** @file
 *  JPEG sample pipeline (ITU T.81): everything between pixels and quantised coefficients. */
#ifndef VEKJ_JPEG_SAMPLES_H
#define VEKJ_JPEG_SAMPLES_H

#include "vekj/types.h"

/** @name Quantisation tables and level shift
 *  @{ */
VEK_API VekStatus vekiQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int qualityFactor);
VEK_API VekStatus vekiQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable);
VEK_API VekStatus vekiQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable);
VEK_API VekStatus vekiQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);
VEK_API VekStatus vekiQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep,
                                            VekSize roiSize);
VEK_API VekStatus vekiAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int srcStep, uint8_t* pDst, int dstStep,
                                            VekSize roiSize);
/** @} */

/** @name Forward 8x8 DCT with quantisation
 *  @{ */
VEK_API VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable);
VEK_API VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);
VEK_API VekStatus vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst,
                                                      const uint16_t* pQuantFwdTable);
VEK_API VekStatus vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int srcStep, int16_t* pDst,
                                                       const float* pQuantFwdTable);
/** @} */

/** @name Inverse 8x8 DCT with dequantisation
 *  @{ */
VEK_API VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                      const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int dstStep,
                                                       const float* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                           const uint16_t* pQuantInvTable);
VEK_API VekStatus vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                           const uint16_t* pQuantInvTable);
/** @} */

/** @name MCU conversions
 *  @{ */
VEK_API VekStatus vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);
VEK_API VekStatus vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);
VEK_API VekStatus vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);
VEK_API VekStatus vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);
VEK_API VekStatus vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);
VEK_API VekStatus vekiSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
VEK_API VekStatus vekiSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
/** @} */

#endif
