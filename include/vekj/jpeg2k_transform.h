/** @file
 *  JPEG 2000 transforms (ISO/IEC 15444-1): of components, and of samples into sub-bands. */
#ifndef VEKJ_JPEG2K_TRANSFORM_H
#define VEKJ_JPEG2K_TRANSFORM_H

#include "vekj/types.h"

/** @name Multiple-component transforms
 *  ISO/IEC 15444-1, Annex G: between interleaved R, G, B pixels (`C3`) and three planes (`P3`), or in place over
 *  planes. The planes of the reversible transform (RCT) hold Y, B - G and R - G, in this order, those of the
 *  irreversible one (ICT) Y, Cb, Cr. Nothing needs alignment, and one step serves all three planes. Where planes share
 *  bytes with one another or with the pixels, the result is that of row after row, pixel after pixel.
 *
 *  @param pSrc, pDst, pSrcDst           first pixel, or the first sample of each plane
 *  @param srcStep, dstStep, srcDstStep  bytes from one row to the next
 *  @param roiSize                       pixels in a row, and rows
 *  @return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (an argument, or a plane),
 *          vekStsBadStep (a step below 1), vekStsBadSize (a side below 1)
 *  @{ */

/** Forward RCT, each result cut to 16 bits; exactly undone where the values fit.
 *
 *      Y = (R + 2 G + B) >> 2        Y1 = B - G        Y2 = R - G                  (arithmetic shift, exact sums) */
VEK_API VekStatus vekiRCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int srcStep, int16_t* const pDst[3], int dstStep,
                                              VekSize roiSize);

/** vekiRCTFwd_JPEG2K_16s_C3P3R() in place. */
VEK_API VekStatus vekiRCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Inverse RCT, each result cut to 16 bits.
 *
 *      G = Y - ((Y1 + Y2) >> 2)      R = Y2 + G        B = Y1 + G                  (arithmetic shift, exact sums) */
VEK_API VekStatus vekiRCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int srcStep, int16_t* pDst, int dstStep,
                                              VekSize roiSize);

/** vekiRCTInv_JPEG2K_16s_P3C3R() in place. */
VEK_API VekStatus vekiRCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Forward RCT of 32-bit samples. Every sum wraps at 32 bits, also the one that is shifted. */
VEK_API VekStatus vekiRCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int srcStep, int32_t* const pDst[3], int dstStep,
                                              VekSize roiSize);

/** vekiRCTFwd_JPEG2K_32s_C3P3R() in place. */
VEK_API VekStatus vekiRCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Inverse RCT of 32-bit samples. Every sum wraps at 32 bits, also the one that is shifted. */
VEK_API VekStatus vekiRCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int srcStep, int32_t* pDst, int dstStep,
                                              VekSize roiSize);

/** vekiRCTInv_JPEG2K_32s_P3C3R() in place. */
VEK_API VekStatus vekiRCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Forward ICT in single precision. Each product and each sum is rounded, in the order written.
 *
 *      Y  = (R *  0.299   + G *  0.587  ) + B *  0.114
 *      Cb = (R * -0.16875 + G * -0.33126) + B *  0.5
 *      Cr = (R *  0.5     + G * -0.41869) + B * -0.08131 */
VEK_API VekStatus vekiICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, int srcStep, float* const pDst[3], int dstStep,
                                              VekSize roiSize);

/** vekiICTFwd_JPEG2K_32f_C3P3R() in place. */
VEK_API VekStatus vekiICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Inverse ICT in single precision. Each product and each sum is rounded, in the order written.
 *
 *      R = Cr * 1.402 + Y
 *      G = (Cb * -0.34413 + Cr * -0.71414) + Y
 *      B = Cb * 1.772 + Y */
VEK_API VekStatus vekiICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], int srcStep, float* pDst, int dstStep,
                                              VekSize roiSize);

/** vekiICTInv_JPEG2K_32f_P3C3R() in place. */
VEK_API VekStatus vekiICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Forward ICT of 32-bit samples, in Q14. All arithmetic wraps at 32 bits; nothing is clipped.
 *
 *      Y  = ( 4899 R + 9617 G + 1868 B + 8192) >> 14
 *      Cb = (-2765 R - 5427 G + 8192 B + 8192) >> 14
 *      Cr = ( 8192 R - 6860 G - 1332 B + 8192) >> 14 */
VEK_API VekStatus vekiICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Inverse ICT of 32-bit samples, in Q14. All arithmetic wraps at 32 bits; nothing is clipped.
 *
 *      R = Y + ((22970 Cr + 8192) >> 14)
 *      G = Y + ((-11700 Cr - 5638 Cb + 8192) >> 14)
 *      B = Y + ((29032 Cb + 8192) >> 14) */
VEK_API VekStatus vekiICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Forward ICT of 16-bit samples, in Q14. The chroma is a scaled difference from the luma, so that it may differ by its
 *  rounding from vekiICTFwd_JPEG2K_32s_P3IR(). With T = 4899 R + 9617 G + 1868 B:
 *
 *      Y  = clip((T + 8192) >> 14)
 *      Cb = clip((9246 d + 8192) >> 14)      d = the low 16 bits, signed, of ((B << 14) - T + 8192) >> 14
 *      Cr = clip((11686 d + 8192) >> 14)     d = the low 16 bits, signed, of ((R << 14) - T + 8192) >> 14 */
VEK_API VekStatus vekiICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);

/** Inverse ICT of 16-bit samples, in Q14. In G the sign stands outside the rounding, unlike in
 *  vekiICTInv_JPEG2K_32s_P3IR(), so that the two can differ by one.
 *
 *      R = clip(Y + ((22970 Cr + 8192) >> 14))
 *      G = clip(Y - ((5638 Cb + 11700 Cr + 8192) >> 14))
 *      B = clip(Y + ((29032 Cb + 8192) >> 14)) */
VEK_API VekStatus vekiICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize);
/** @} */

#endif
