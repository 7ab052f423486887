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

/** @name Irreversible 9/7 filter
 *  ISO/IEC 15444-1, Annex F, in pieces, shaped as the 5/3 forms are: o are the samples at odd positions, e those at
 *  even ones, o2 and e2 their next neighbours.
 *
 *      forward   1. o += a (e + e2)      2. e += b (o + o2)      3. o += c (e + e2)
 *                4. low = (e + d (o + o2)) / K                   5. high = K o
 *      inverse   1. e = K low - d / K (h + h2)                   2. o = h / K - c (e + e2)
 *                3. e -= b (o + o2)                              4. o -= a (e + e2)
 *
 *  with a = -1.586134342, b = -0.052980118, c = 0.882911076, d = 0.443506852 and K = 1.230174105, in an arithmetic that
 *  depends on the type and on the form, and in some forms on the place in the line:
 *
 *  | name     | arithmetic                                                                                          |
 *  |----------|-----------------------------------------------------------------------------------------------------|
 *  | separate | single precision, t + factor * (x + x2) rounded after each operation, then the scaling              |
 *  | fused    | single precision, fma(factor, x + x2, t), then the scaling                                          |
 *  | Q15      | 16 bits: m(x, c) = (x * c + 16384) >> 15, all sums saturate                                         |
 *  | Q16      | t + ((c (x + x2) + 32768) >> 16) with a 64-bit product; low = (53274 e + 23627 (o + o2) + 32768)    |
 *  |          | >> 16; 32 bits: sums of two samples and results wrap; 16 bits: every stage is clipped               |
 *
 *  | form          | interior | ends                                                                              |
 *  |---------------|----------|-----------------------------------------------------------------------------------|
 *  | row 16s       | Q15      | Q16                                                                               |
 *  | row 32s       | Q16      | Q16                                                                               |
 *  | row, col 32f  | separate | fused                                                                             |
 *  | ColLift       | 16s: Q15, 32s: Q16, 32f: separate                                                            ||
 *
 *  The ends of a line of w pairs, w of 3 or more, are, of all the results that its outputs depend on, the first four
 *  and the last one of stage 1, the first three and the last one of stage 2, the first two and the last one of stage 3,
 *  the first one and the last one of stage 4; in the inverse filter as well. Of high samples, the last two with phase
 *  0, the first and the last one otherwise. Shorter lines are all ends. A row of a single pair is not lifted: the
 *  forward row forms then apply the nine and the seven taps of the filter,
 *
 *      low  = 0.602949 x0 + 0.26686412 x1 - 0.078223266 x2 - 0.01686412 x3 + 0.026748758 x4
 *      high = 1.115087 x0 - 0.59127176 x1 - 0.057543527 x2 + 0.091271766 x3
 *
 *  where x0 is the sample at the band's position and xj the sum of the two that are j away: in 32f by fused
 *  multiply-adds, the last product first; in 16s and 32s with taps in Q16, of which 16s rounds the sum (high is
 *  clipped, low is clipped at 32767 only and cut below) and 32s each product.
 *
 *  No form extends a line at its ends, nothing needs alignment, and `phase` and the size of the region mean what they
 *  mean in the 5/3 forms.
 *
 *  | form          | phase | reads                                         | gives                                   |
 *  |---------------|-------|-----------------------------------------------|-----------------------------------------|
 *  | forward, of w | 0     | x[-4] to x[2w + 2]                            | low[i] from x[2i], high[i] from x[2i+1] |
 *  | forward, of w | other | x[-3] to x[2w + 3]                            | high[i] from x[2i], low[i] from x[2i+1] |
 *  | inverse, of w | 0     | low[-1] to low[w + 1], high[-2] to high[w + 1] | x[2i] from low[i], x[2i+1] from high[i] |
 *  | inverse, of w | other | low[-2] to low[w], high[-2] to high[w + 1]    | x[2i] from high[i], x[2i+1] from low[i] |
 *
 *  The row and column forms return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (one of
 *  three), vekStsBadStep (one of three below 1), vekStsBadSize (a side below 1). Steps are in bytes.
 *  @{ */

/** Filters each row of 16-bit samples into its two bands. */
VEK_API VekStatus vekiWTFwdRow_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDstLow, int dstLowStep,
                                                  int16_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each row of 16-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvRow_D97_JPEG2K_16s_C1R(const int16_t* pSrcLow, int srcLowStep, const int16_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int16_t* pDst, int dstStep,
                                                  int phase);

/** Filters each row of 32-bit samples into its two bands. */
VEK_API VekStatus vekiWTFwdRow_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, int32_t* pDstLow, int dstLowStep,
                                                  int32_t* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each row of 32-bit samples together from its two bands. */
VEK_API VekStatus vekiWTInvRow_D97_JPEG2K_32s_C1R(const int32_t* pSrcLow, int srcLowStep, const int32_t* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, int32_t* pDst, int dstStep,
                                                  int phase);

/** Filters each row of floating-point samples into its two bands. */
VEK_API VekStatus vekiWTFwdRow_D97_JPEG2K_32f_C1R(const float* pSrc, int srcStep, float* pDstLow, int dstLowStep,
                                                  float* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each row of floating-point samples together from its two bands. */
VEK_API VekStatus vekiWTInvRow_D97_JPEG2K_32f_C1R(const float* pSrcLow, int srcLowStep, const float* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, float* pDst, int dstStep,
                                                  int phase);

/** Filters each column of floating-point samples into its two bands. */
VEK_API VekStatus vekiWTFwdCol_D97_JPEG2K_32f_C1R(const float* pSrc, int srcStep, float* pDstLow, int dstLowStep,
                                                  float* pDstHigh, int dstHighStep, VekSize dstRoiSize, int phase);

/** Puts each column of floating-point samples together from its two bands. */
VEK_API VekStatus vekiWTInvCol_D97_JPEG2K_32f_C1R(const float* pSrcLow, int srcLowStep, const float* pSrcHigh,
                                                  int srcHighStep, VekSize srcRoiSize, float* pDst, int dstStep,
                                                  int phase);

/** One vertical lifting step over rows of 16-bit samples, in Q15, for callers who feed columns row pair by row pair.
 *
 *      pDstHigh2    = stage 1 of pSrc1, with pSrc0 and pSrc2
 *      pDstLow1     = stage 2 of pSrc0, with pSrcDstHigh1 and pDstHigh2
 *      pSrcDstHigh1 = stage 3 of pSrcDstHigh1, with pSrcDstLow0 and pDstLow1
 *      pSrcDstLow0  = stage 4 of pSrcDstLow0, with pSrcDstHigh0 and pSrcDstHigh1: finished
 *      pSrcDstHigh0 = stage 5 of pSrcDstHigh0: finished
 *
 *  pDstLow1, pSrcDstHigh1 and pDstHigh2 are the next step's pSrcDstLow0, pSrcDstHigh0 and pSrcDstHigh1. A row that is
 *  written may be one that is read.
 *  @param pSrc0, pSrc1, pSrc2  an even row, the odd one below, the even one below that
 *  @param width                samples in each row
 *  @return vekStsOk, or with nothing written vekStsNullPointer (any), vekStsBadSize (width below 1) */
VEK_API VekStatus vekiWTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrc0, const int16_t* pSrc1, const int16_t* pSrc2,
                                                     int16_t* pSrcDstLow0, int16_t* pDstLow1, int16_t* pSrcDstHigh0,
                                                     int16_t* pSrcDstHigh1, int16_t* pDstHigh2, int width);

/** vekiWTFwdColLift_D97_JPEG2K_16s_C1() for 32-bit samples, in Q16. */
VEK_API VekStatus vekiWTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrc0, const int32_t* pSrc1, const int32_t* pSrc2,
                                                     int32_t* pSrcDstLow0, int32_t* pDstLow1, int32_t* pSrcDstHigh0,
                                                     int32_t* pSrcDstHigh1, int32_t* pDstHigh2, int width);

/** vekiWTFwdColLift_D97_JPEG2K_16s_C1() for floating-point samples, rounded separately. */
VEK_API VekStatus vekiWTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrc0, const float* pSrc1, const float* pSrc2,
                                                     float* pSrcDstLow0, float* pDstLow1, float* pSrcDstHigh0,
                                                     float* pSrcDstHigh1, float* pDstHigh2, int width);

/** The inverse of one vertical lifting step over rows of 16-bit samples, in Q15.
 *
 *      pDst4    = inverse stage 1 of pSrcLow, with pSrcHigh0 and pSrcHigh1
 *      pDst3    = inverse stage 2 of pSrcHigh0, with pSrcDst2 and pDst4
 *      pSrcDst2 = inverse stage 3 of pSrcDst2, with pSrcDst1 and pDst3: finished
 *      pSrcDst1 = inverse stage 4 of pSrcDst1, with pSrcDst0 and pSrcDst2: finished
 *
 *  pSrcDst2, pDst3 and pDst4 are the next step's pSrcDst0, pSrcDst1 and pSrcDst2; pSrcDst0 is only read. A row that is
 *  written may be one that is read.
 *  @param pSrcLow, pSrcHigh0, pSrcHigh1  a low row, and the high ones before and behind it
 *  @param width                          samples in each row
 *  @return vekStsOk, or with nothing written vekStsNullPointer (any), vekStsBadSize (width below 1) */
VEK_API VekStatus vekiWTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcLow, const int16_t* pSrcHigh0,
                                                     const int16_t* pSrcHigh1, int16_t* pSrcDst0, int16_t* pSrcDst1,
                                                     int16_t* pSrcDst2, int16_t* pDst3, int16_t* pDst4, int width);

/** vekiWTInvColLift_D97_JPEG2K_16s_C1() for 32-bit samples, in Q16. */
VEK_API VekStatus vekiWTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcLow, const int32_t* pSrcHigh0,
                                                     const int32_t* pSrcHigh1, int32_t* pSrcDst0, int32_t* pSrcDst1,
                                                     int32_t* pSrcDst2, int32_t* pDst3, int32_t* pDst4, int width);

/** vekiWTInvColLift_D97_JPEG2K_16s_C1() for floating-point samples, rounded separately. */
VEK_API VekStatus vekiWTInvColLift_D97_JPEG2K_32f_C1(const float* pSrcLow, const float* pSrcHigh0,
                                                     const float* pSrcHigh1, float* pSrcDst0, float* pSrcDst1,
                                                     float* pSrcDst2, float* pDst3, float* pDst4, int width);
/** @} */

/** @name Whole tiles
 *  One level of the two-dimensional wavelet transform of a tile-component (ISO/IEC 15444-1, Annex F), by the
 *  reversible 5/3 filter (B53) or the irreversible 9/7 filter (D97): forward all columns, then all rows, inverse all
 *  rows, then all columns. Lines are extended at their ends by whole-sample symmetry.
 *
 *  `pTileRect` gives the size of the tile and, in the lowest bits of `x` and `y`, the parity of its first sample's
 *  position. In a line of n samples those at even positions are low-pass: (n + 1) / 2 of them if the first one is
 *  even, else n / 2. In place (`C1IR`) a transformed line holds its low-pass samples first.
 *
 *  With `C1R`, the four planes are LL, LH (horizontally low, vertically high), HL and HH. Their sizes are those of an
 *  even origin whatever x and y are: (w + 1) / 2 by (h + 1) / 2, (w + 1) / 2 by h / 2, w / 2 by (h + 1) / 2 and w / 2
 *  by h / 2. So with an odd origin and an odd size the boundary between planes is one sample off that between bands:
 *  use the forms in place there.
 *
 *  A line of one sample is doubled, wrapping, if its position is odd, and halved again, towards zero. The 5/3 filter
 *  is that of the row forms; a line of two has H = O - E and L = E + ((H + 1) >> 1). The stages of the 9/7 filter, as
 *  the row forms have them, are here
 *
 *  - of 16-bit samples in Q14, with r(v) = (v + 8192) >> 14 and results cut to 16 bits: o += r(-25987 (e + e2)), e +=
 *    r(-868 (o + o2)), o += r(14466 (e + e2)), low = r(13318 (e + r(7266 (o + o2)))), high = r(20155 o); inverse e =
 *    r(20155 low) and o = r(13318 high), from which the steps are subtracted in reverse order;
 *  - of 32-bit samples in single precision by fused multiply-adds, where the first sum of two stored samples is formed
 *    in wrapping integers, and 1 / K = 0.8128931, K = 1.2301741, d / K = 0.36052364; results are truncated towards
 *    zero, above 2^31 clipped to 0x7FFFFFFF, below -2^31 to 0x80000000, and 2^31 gives 0x80000000.
 *
 *  `pBuffer` is scratch of the size that vekiWTGetBufSize...() tells for the same form and rectangle; it is never read
 *  before it is written. Nothing needs alignment. Steps are in bytes.
 *
 *  The forms in place return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrcDst),
 *  vekStsBadStep (srcDstStep below 1), vekStsNullPointer (pTileRect, pBuffer). Sizes are not checked: a height below 1
 *  counts as one row for the columns and as none for the rows. The forms with planes return vekStsOk, or the first
 *  that applies, with nothing written: vekStsNullPointer (any argument), vekStsBadStep (the image's step below 1),
 *  vekStsNullPointer (a plane), vekStsBadStep (a plane's step below 1), vekStsBadSize (a side below 1).
 *  @{ */

/** Bytes of scratch for the B53 forms in place on 16s samples: 0 if both sides are below 3, else 2 for each sample of
 *  the longer side and 8 more.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_B53_JPEG2K_16s_C1IR(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 16s samples by B53 in place. */
VEK_API VekStatus vekiWTFwd_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Undoes vekiWTFwd_B53_JPEG2K_16s_C1IR(). */
VEK_API VekStatus vekiWTInv_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Bytes of scratch for the B53 forms with planes of 16s samples: those of vekiWTGetBufSize_B53_JPEG2K_16s_C1IR() and
 *  an image whose rows are rounded up to 32 bytes.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_B53_JPEG2K_16s_C1R(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 16s samples by B53 into four planes. */
VEK_API VekStatus vekiWTFwd_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, const VekRect* pTileRect,
                                               int16_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer);

/** Puts a tile of 16s samples together from four planes by B53. */
VEK_API VekStatus vekiWTInv_B53_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int srcStep[4], int16_t* pDst,
                                               int dstStep, const VekRect* pTileRect, uint8_t* pBuffer);

/** Bytes of scratch for the B53 forms in place on 32s samples: 0 if both sides are below 3, else 4 for each sample of
 *  the longer side and 16 more.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_B53_JPEG2K_32s_C1IR(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 32s samples by B53 in place. */
VEK_API VekStatus vekiWTFwd_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Undoes vekiWTFwd_B53_JPEG2K_32s_C1IR(). */
VEK_API VekStatus vekiWTInv_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Bytes of scratch for the B53 forms with planes of 32s samples: those of vekiWTGetBufSize_B53_JPEG2K_32s_C1IR() and
 *  an image whose rows are rounded up to 32 bytes.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_B53_JPEG2K_32s_C1R(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 32s samples by B53 into four planes. */
VEK_API VekStatus vekiWTFwd_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, const VekRect* pTileRect,
                                               int32_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer);

/** Puts a tile of 32s samples together from four planes by B53. */
VEK_API VekStatus vekiWTInv_B53_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int srcStep[4], int32_t* pDst,
                                               int dstStep, const VekRect* pTileRect, uint8_t* pBuffer);

/** Bytes of scratch for the D97 forms in place on 16s samples: 0 if both sides are below 2, else 2 for each sample of
 *  the longer side and 16 more.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_D97_JPEG2K_16s_C1IR(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 16s samples by D97 in place. */
VEK_API VekStatus vekiWTFwd_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Undoes vekiWTFwd_D97_JPEG2K_16s_C1IR() but for rounding. */
VEK_API VekStatus vekiWTInv_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Bytes of scratch for the D97 forms with planes of 16s samples: those of vekiWTGetBufSize_D97_JPEG2K_16s_C1IR() and
 *  an image whose rows are rounded up to 32 bytes.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_D97_JPEG2K_16s_C1R(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 16s samples by D97 into four planes. */
VEK_API VekStatus vekiWTFwd_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, const VekRect* pTileRect,
                                               int16_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer);

/** Puts a tile of 16s samples together from four planes by D97. */
VEK_API VekStatus vekiWTInv_D97_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int srcStep[4], int16_t* pDst,
                                               int dstStep, const VekRect* pTileRect, uint8_t* pBuffer);

/** Bytes of scratch for the D97 forms in place on 32s samples: 0 if both sides are below 2, else 4 for each sample of
 *  the longer side and 32 more.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_D97_JPEG2K_32s_C1IR(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 32s samples by D97 in place. */
VEK_API VekStatus vekiWTFwd_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Undoes vekiWTFwd_D97_JPEG2K_32s_C1IR() but for rounding. */
VEK_API VekStatus vekiWTInv_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect,
                                                uint8_t* pBuffer);

/** Bytes of scratch for the D97 forms with planes of 32s samples: those of vekiWTGetBufSize_D97_JPEG2K_32s_C1IR() and
 *  an image whose rows are rounded up to 32 bytes.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiWTGetBufSize_D97_JPEG2K_32s_C1R(const VekRect* pTileRect, int* pSize);

/** Transforms a tile of 32s samples by D97 into four planes. */
VEK_API VekStatus vekiWTFwd_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, const VekRect* pTileRect,
                                               int32_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer);

/** Puts a tile of 32s samples together from four planes by D97. */
VEK_API VekStatus vekiWTInv_D97_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int srcStep[4], int32_t* pDst,
                                               int dstStep, const VekRect* pTileRect, uint8_t* pBuffer);
/** @} */

#endif
