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

/** @name Reversible 5/3 filter
 *  ISO/IEC 15444-1, Annex F, in pieces: rows, columns, or one vertical lifting step at a time. With H the high-pass and
 *  L the low-pass samples, E and O the samples at even and at odd positions, x the line and all shifts arithmetic:
 *
 *      forward   H(i) = x[2i + 1] - ((x[2i] + x[2i + 2]) >> 1)        L(i) = x[2i] + ((H(i - 1) + H(i) + 2) >> 2)
 *      inverse   E(i) = L(i) - ((H(i - 1) + H(i) + 2) >> 2)           O(i) = H(i) + ((E(i) + E(i + 1)) >> 1)
 *
 *  Of 16-bit samples the sums are exact and each H, L, E and O is cut to 16 bits; of 32-bit samples every sum wraps at
 *  32 bits. Nothing saturates, and the inverse undoes the forward filter for every input whose sums do not wrap.
 *
 *  No form extends a line at its ends: the caller lays out the extended samples around it. Nothing needs alignment.
 *  `phase` is the parity of the first sample: 0 if `pSrc` of a forward form, or the first output of an inverse one,
 *  stands at an even position; otherwise it stands at an odd one. The size of the region counts samples of one band, of
 *  which there are as many low-pass as high-pass ones: in a row for a row form, in a column for a column form.
 *
 *  | form          | phase | reads                                    | gives                                   |
 *  |---------------|-------|------------------------------------------|-----------------------------------------|
 *  | forward, of w | 0     | x[-2] to x[2w]                           | low[i] from x[2i], high[i] from x[2i+1] |
 *  | forward, of w | other | x[-1] to x[2w + 1]                       | high[i] from x[2i], low[i] from x[2i+1] |
 *  | inverse, of w | 0     | low[0] to low[w], high[-1] to high[w]    | x[2i] from low[i], x[2i+1] from high[i] |
 *  | inverse, of w | other | low[-1] to low[w-1], high[-1] to high[w] | x[2i] from high[i], x[2i+1] from low[i] |
 *
 *  The row and column forms return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (one of
 *  three), vekStsBadStep (one of three below 1), vekStsBadSize (a side below 1). Steps are in bytes.
 *  @{ */

/** Filters each row of 16-bit samples into its two bands. */
VEK_API VekStatus vekiWTFwdRow_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                                  int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Filters each row of 32-bit samples into its two bands. */
VEK_API VekStatus vekiWTFwdRow_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                                  int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each row of 16-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvRow_B53_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep,
                                                  int phase);

/** Puts each row of 32-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvRow_B53_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep,
                                                  int phase);

/** Filters each column of 16-bit samples into its two bands; the table holds with rows in place of samples. */
VEK_API VekStatus vekiWTFwdCol_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                                  int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Filters each column of 32-bit samples into its two bands. */
VEK_API VekStatus vekiWTFwdCol_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                                  int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each column of 16-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvCol_B53_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep,
                                                  int phase);

/** Puts each column of 32-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvCol_B53_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep,
                                                  int phase);

/** One vertical lifting step over rows of 16-bit samples, for callers who feed a column form row pair by row pair.
 *
 *      pDstHigh1[i] = pSrc1[i] - ((pSrc0[i] + pSrc2[i]) >> 1)
 *      pDstLow0[i]  = pSrc0[i] + ((pSrcHigh0[i] + pDstHigh1[i] + 2) >> 2)
 *
 *  A row that is written may be one that is read.
 *  @param pSrc0, pSrc1, pSrc2  an even row, the odd one below, the even one below that
 *  @param pSrcHigh0            the high row before, as the last step left it or as the caller prepared it at the top
 *  @param width                samples in each row
 *  @return vekStsOk, or with nothing written vekStsNullPointer (any), vekStsBadSize (width below 1) */
VEK_API VekStatus vekiWTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                                     int16_t* pDstLow0, const int16_t* pSrcHigh0, int16_t* pDstHigh1,
                                                     int width);

/** vekiWTFwdColLift_B53_JPEG2K_16s_C1() for 32-bit samples. */
VEK_API VekStatus vekiWTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                                     int32_t* pDstLow0, const int32_t* pSrcHigh0, int32_t* pDstHigh1,
                                                     int width);

/** The inverse of one vertical lifting step over rows of 16-bit samples.
 *
 *      pDstEven1[i] = pSrcLow0[i] - ((pSrcHigh0[i] + pSrcHigh1[i] + 2) >> 2)
 *      pDstOdd0[i]  = pSrcHigh0[i] + ((pDstEven1[i] + pSrcEven0[i]) >> 1)
 *
 *  A row that is written may be one that is read.
 *  @param pSrcLow0              the low row
 *  @param pSrcHigh0, pSrcHigh1  the high rows before and behind it
 *  @param pSrcEven0             the even row that the step before gave
 *  @param width                 samples in each row
 *  @return vekStsOk, or with nothing written vekStsNullPointer (any), vekStsBadSize (width below 1) */
VEK_API VekStatus vekiWTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcLow0, const int16_t* pSrcHigh0,
                                                     const int16_t* pSrcHigh1, const int16_t* pSrcEven0,
                                                     int16_t* pDstOdd0, int16_t* pDstEven1, int width);

/** vekiWTInvColLift_B53_JPEG2K_16s_C1() for 32-bit samples. */
VEK_API VekStatus vekiWTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcLow0, const int32_t* pSrcHigh0,
                                                     const int32_t* pSrcHigh1, const int32_t* pSrcEven0,
                                                     int32_t* pDstOdd0, int32_t* pDstEven1, int width);
/** @} */

#endif
