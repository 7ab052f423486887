/** @file
 *  JPEG sample pipeline (ITU T.81): everything between pixels and quantised coefficients. */
#ifndef VEKJ_JPEG_SAMPLES_H
#define VEKJ_JPEG_SAMPLES_H

#include "vekj/types.h"

/** @name Quantisation tables and level shift
 *  A raw table is 64 steps of 8 bits, in the zig-zag order of a DQT segment. The tables made from it are in natural
 *  row-major order: the forward one holds round(32768 / step), 65535 for a step of 0, the inverse one the steps. A
 *  block is 64 contiguous coefficients in natural order. Nothing needs alignment.
 *  @{ */

/** Scales a raw table in place by a quality factor.
 *
 *      scale = qualityFactor < 50 ? 5000 / qualityFactor : 200 - 2 * qualityFactor
 *      entry = (entry * scale + 50) / 100, clamped to 1 .. 255          divisions truncate, 32-bit arithmetic wraps
 *
 *  @param pQuantRawTable  64 entries, in any order
 *  @param qualityFactor   at least 1; 50 leaves the table as it is, from 100 on every entry becomes 1
 *  @return vekStsOk, or with nothing written vekStsNullPointer, vekStsBadArgument (qualityFactor below 1) */
VEK_API VekStatus vekiQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int qualityFactor);

/** Makes the forward table of a raw one: round(32768 / step), and 65535 for a step of 0.
 *  @return vekStsOk; vekStsDivByZero if a step is 0, with the table made all the same; vekStsNullPointer */
VEK_API VekStatus vekiQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable);

/** Makes the inverse table of a raw one: its steps, in natural order.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable);

/** Quantises a block in place by a forward table.
 *
 *      a = 8 * x, cut to 16 bits                      coefficients outside -4096 .. 4095 wrap
 *      x = (((a * (t >> 1)) >> 16) + 1) >> 1          arithmetic shifts; ties go up
 *
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);

/** Dequantises a block in place by an inverse table: x = the low 16 bits of x * t.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

/** Level shift down, 8-bit samples to signed 16-bit (ITU T.81, A.3.1): dst = src - 128.
 *  @param pSrc, pDst        first sample of each region
 *  @param srcStep, dstStep  bytes from one row to the next
 *  @param roiSize           samples in a row, and rows. More than 8192 samples are shared among threads.
 *  @return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrc), vekStsBadStep (srcStep
 *          below 1), vekStsNullPointer (pDst), vekStsBadStep (dstStep below 1), vekStsBadSize (a side below 1) */
VEK_API VekStatus vekiSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep,
                                            VekSize roiSize);

/** Level shift up with clipping: dst = src + 128, clipped to 0 .. 255. Arguments and errors of
 *  vekiSub128_JPEG_8u16s_C1R(). */
VEK_API VekStatus vekiAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int srcStep, uint8_t* pDst, int dstStep,
                                            VekSize roiSize);
/** @} */

/** @name Forward 8x8 DCT with quantisation
 *  The 8-bit members transform in 16-bit fixed point, to the bit the same for every input: columns first, with
 *  saturating sums, then rows with 32-bit sums of products. They quantise by a forward table of
 *  vekiQuantFwdTableInit_JPEG_8u16u():
 *
 *      q = x * t / 32768, rounded to the nearest integer with ties to even, saturated to 16 bits
 *
 *  which is not the rounding of vekiQuantFwd8x8_JPEG_16s_C1I(). Blocks are 64 contiguous coefficients in natural order;
 *  nothing needs alignment.
 *  @{ */

/** Transforms and quantises a block of level-shifted samples. `pDst` may be `pSrc`.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable);

/** vekiDCTQuantFwd8x8_JPEG_16s_C1() in place. */
VEK_API VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);

/** Level shift by 128, transform and quantisation of 8 rows of 8 samples, `srcStep` bytes apart.
 *  @return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrc, pDst), vekStsBadStep
 *          (srcStep below 1), vekStsNullPointer (pQuantFwdTable) */
VEK_API VekStatus vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst,
                                                      const uint16_t* pQuantFwdTable);

/** The same for 12-bit samples, in single precision: level shift by 2048, transform, and multiplication by the 64
 *  factors of `pQuantFwdTable` (1 / step, in natural order), to the nearest integer with ties to even, clipped to 16
 *  bits. A product beyond 32 bits gives -32768. A sample of 32768 or more counts as negative. Errors of
 *  vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(). */
VEK_API VekStatus vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int srcStep, int16_t* pDst,
                                                       const float* pQuantFwdTable);
/** @} */

/** @name Inverse 8x8 DCT with dequantisation
 *  Coefficients are multiplied by the steps of an inverse table of vekiQuantInvTableInit_JPEG_8u16u(), the products cut
 *  to 16 bits, and transformed in 16-bit fixed point, rows first; to the bit the same for every input. The `LS` members
 *  add 128 and clip to 0 .. 255. Which of them a block wants is the caller's decision: none looks at the coefficients.
 *  Nothing needs alignment.
 *
 *  The `LS` members return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrc, pDst),
 *  vekStsBadStep (dstStep below 1), vekStsNullPointer (pQuantInvTable).
 *  @{ */

/** Dequantises and transforms a block; no level shift. `pDst` may be `pSrc`.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable);

/** vekiDCTQuantInv8x8_JPEG_16s_C1() in place. */
VEK_API VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

/** A block to 8x8 samples, rows `dstStep` bytes apart. */
VEK_API VekStatus vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                      const uint16_t* pQuantInvTable);

/** A block to 8x8 12-bit samples in single precision: `pQuantInvTable` holds 64 steps in natural order; 2048 is added,
 *  the sum truncated towards zero and clipped to 0 .. 4095. */
VEK_API VekStatus vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int dstStep,
                                                       const float* pQuantInvTable);

/** A block of which only the 4x4 coefficients at the top left count, and are read, to 8x8 samples: the results of the
 *  full form. */
VEK_API VekStatus vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);

/** A block of which only the 2x2 coefficients at the top left count, and are read, to 8x8 samples. The column pass adds
 *  a correction of one of its own before the final shift. */
VEK_API VekStatus vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);

/** A block of which only the DC coefficient counts, and is read: 8x8 samples of clip(((DC * step) >> 3) + 128), cut to
 *  16 bits before the clip. The shift does not round, unlike the full form. */
VEK_API VekStatus vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                          const uint16_t* pQuantInvTable);

/** A block to 4x4 samples. Coefficient row 4 and column 4 count for nothing. */
VEK_API VekStatus vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                           const uint16_t* pQuantInvTable);

/** A block to 2x2 samples. Coefficient rows and columns 2, 4 and 6 count for nothing. */
VEK_API VekStatus vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                           const uint16_t* pQuantInvTable);
/** @} */

/** @name MCU conversions
 *  One minimum coded unit between interleaved pixels and planes of 8x8 blocks of level-shifted 16-bit samples, in the
 *  order Y, Cb, Cr, K.
 *
 *  | name | pixels | Y plane, K plane                                         | Cb, Cr planes                |
 *  |------|--------|----------------------------------------------------------|------------------------------|
 *  | 444  | 8x8    | 1 block                                                  | 1 block each                 |
 *  | 422  | 16x8   | 2 blocks: left, right                                    | 1 block each, for 2 columns  |
 *  | 411  | 16x16  | 4 blocks: top left, top right, bottom left, bottom right | 1 block each, for 2x2 pixels |
 *
 *  Pixels are 3 bytes, 4 bytes (CMYK), or 16-bit words with blue in the low bits; steps are in bytes. The alignment of
 *  the planes chooses the arithmetic of the members that have two forms: "aligned" means a multiple of 16. Pixels need
 *  no alignment, and no plane needs it for its own sake. Shifts are arithmetic; clip is to 0 .. 255.
 *
 *  To pixels, offsets t of a pixel's chroma, and the sums with Y wrapping at 16 bits:
 *
 *      444 to RGB and BGR, planes aligned; t saturated to 16 bits:
 *          R = clip(Y + ((22970 Cr + 2105344) >> 14)),  G = clip(Y + ((-5638 Cb - 11700 Cr + 2105344) >> 14)),
 *          B = clip(Y + ((29032 Cb + 2105344) >> 14))
 *      other members, planes aligned, and packed pixels always; t cut to 16 bits:
 *          R = clip(Y + ((11485 Cr + 1052672) >> 13)),  G = clip(Y - ((5638 Cb + 11700 Cr - 2088960) >> 14)),
 *          B = clip(Y + ((14516 Cb + 1052672) >> 13))
 *      a plane not aligned; products wrap at 32 bits, sums do not wrap:
 *          R = clip(Y + ((91881 Cr) >> 16) + 128),  G = clip(Y + ((-22554 Cb - 46802 Cr) >> 16) + 128),
 *          B = clip(Y + ((116130 Cb) >> 16) + 128)
 *
 *  Chroma is replicated. CMYK pixels are 255 - R, 255 - G, 255 - B and clip(K + 128), or with a plane not aligned the
 *  low byte of K + 128. Packed pixels drop the low bits.
 *
 *  From pixels, with R, G, B of chroma the sums over the n = 1, 2 or 4 pixels that share a sample:
 *
 *      Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14
 *      Cb = (-2764 R - 5428 G + 8192 B + 8192 n) >> (14 + log2 n),  Cr = (8192 R - 6860 G - 1332 B + 8192 n) >> (14 +
 *      log2 n)
 *      411 from RGB and BGR with a Y plane not aligned; CMYK with a plane not aligned (444: any, else Y or K):
 *          Y = ((19595 R + 38470 G + 7471 B) >> 16) - 128
 *          Cb = (-11059 R - 21709 G + 32768 B) >> (16 + log2 n),  Cr = (32768 R - 27439 G - 5329 B) >> (16 + log2 n)
 *
 *  CMYK gives R = 255 - C and so on, and K - 128; its 444 member rounds chroma with 8133 instead of 8192. Fields of
 *  packed pixels are widened by a shift alone.
 *
 *  Results to pixels: vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrcMCU, pDst, a
 *  plane), vekStsBadStep (dstStep below 1). Results from pixels: vekStsNullPointer (pSrc, pDstMCU), vekStsBadStep
 *  (srcStep below 1), vekStsNullPointer (a plane).
 *  @{ */

/** YCbCr planes of a 444 MCU to RGB pixels. */
VEK_API VekStatus vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 422 MCU to RGB pixels. */
VEK_API VekStatus vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 411 MCU to RGB pixels. */
VEK_API VekStatus vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 444 MCU to BGR pixels. */
VEK_API VekStatus vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 422 MCU to BGR pixels. */
VEK_API VekStatus vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 411 MCU to BGR pixels. */
VEK_API VekStatus vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** YCbCr planes of a 444 MCU to BGR555 pixels. */
VEK_API VekStatus vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCbCr planes of a 422 MCU to BGR555 pixels. */
VEK_API VekStatus vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCbCr planes of a 411 MCU to BGR555 pixels. */
VEK_API VekStatus vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCbCr planes of a 444 MCU to BGR565 pixels. */
VEK_API VekStatus vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCbCr planes of a 422 MCU to BGR565 pixels. */
VEK_API VekStatus vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCbCr planes of a 411 MCU to BGR565 pixels. */
VEK_API VekStatus vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep);

/** YCCK planes of a 444 MCU to CMYK pixels. */
VEK_API VekStatus vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);

/** YCCK planes of a 422 MCU to CMYK pixels. */
VEK_API VekStatus vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);

/** YCCK planes of a 411 MCU to CMYK pixels. */
VEK_API VekStatus vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep);

/** Y, Cb, Cr planes of a 444 MCU to interleaved samples: clip(x + 128), chroma replicated. */
VEK_API VekStatus vekiSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** Y, Cb, Cr planes of a 422 MCU to interleaved samples: clip(x + 128), chroma replicated. */
VEK_API VekStatus vekiSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** Y, Cb, Cr planes of a 411 MCU to interleaved samples: clip(x + 128), chroma replicated. */
VEK_API VekStatus vekiSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** Planes of a 422 MCU to the stream Y0 Cb0 Y1 Cr0 Y2 Cb1 ...: clip(x + 128). */
VEK_API VekStatus vekiJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep);

/** RGB pixels to the YCbCr planes of a 444 MCU. */
VEK_API VekStatus vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** RGB pixels to the YCbCr planes of a 422 MCU. */
VEK_API VekStatus vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** RGB pixels to the YCbCr planes of a 411 MCU. */
VEK_API VekStatus vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR pixels to the YCbCr planes of a 444 MCU. */
VEK_API VekStatus vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR pixels to the YCbCr planes of a 422 MCU. */
VEK_API VekStatus vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR pixels to the YCbCr planes of a 411 MCU. */
VEK_API VekStatus vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR555 pixels to the YCbCr planes of a 444 MCU. */
VEK_API VekStatus vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR555 pixels to the YCbCr planes of a 422 MCU. */
VEK_API VekStatus vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR555 pixels to the YCbCr planes of a 411 MCU. */
VEK_API VekStatus vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR565 pixels to the YCbCr planes of a 444 MCU. */
VEK_API VekStatus vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR565 pixels to the YCbCr planes of a 422 MCU. */
VEK_API VekStatus vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** BGR565 pixels to the YCbCr planes of a 411 MCU. */
VEK_API VekStatus vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** CMYK pixels to the YCCK planes of a 444 MCU. */
VEK_API VekStatus vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);

/** CMYK pixels to the YCCK planes of a 422 MCU. */
VEK_API VekStatus vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);

/** CMYK pixels to the YCCK planes of a 411 MCU. */
VEK_API VekStatus vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4]);

/** Interleaved Y, Cb, Cr samples to the planes of a 444 MCU: x - 128. */
VEK_API VekStatus vekiSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** Interleaved Y, Cb, Cr samples to the planes of a 422 MCU: Y - 128, and of two chroma samples (a + b - 256) >> 1. */
VEK_API VekStatus vekiSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** Interleaved Y, Cb, Cr samples to the planes of a 411 MCU: Y - 128, and of four chroma samples (a + b + c + d - 512)
 *  >> 2. */
VEK_API VekStatus vekiSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);

/** The stream Y0 Cb0 Y1 Cr0 Y2 Cb1 ... to the planes of a 422 MCU: x - 128. */
VEK_API VekStatus vekiSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3]);
/** @} */

/** @name Chroma sampling
 *  Halving and doubling of 8-bit planes. The whole-plane functions have no rule for the edges: they read the samples
 * around the region that their formulas name, which must be readable. The row functions treat the ends of a row
 * themselves. The families round differently. Sums are exact; shifts round down.
 *
 *  The whole-plane functions work on `dstRoiSize` alone; `srcRoiSize` is only checked. They return vekStsOk, or the
 * first that applies, with nothing written: vekStsNullPointer (pSrc), vekStsBadStep (srcStep), vekStsBadSize
 * (srcRoiSize), vekStsNullPointer (pDst), vekStsBadStep (dstStep), vekStsBadSize (dstRoiSize). Steps are in bytes.
 *
 *  The row functions return vekStsOk; vekStsNullPointer for any null pointer; vekStsBadSize if `srcWidth` is below 1.
 *  @{ */

/** Halves the width: dst(i, j) = (s(i, 2j) + s(i, 2j + 1) + 1) >> 1. More than 8192 results are shared among threads.
 */
VEK_API VekStatus vekiSampleDownH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                                 int dstStep, VekSize dstRoiSize);

/** Halves both sides: dst(i, j) = (the sum of the 2x2 samples at (2i, 2j) + 3) >> 2. More than 8192 results are shared
 * among threads. */
VEK_API VekStatus vekiSampleDownH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                                 int dstStep, VekSize dstRoiSize);

/** Doubles the width with a triangle filter:
 *
 *      dst(2i) = (3 s(i) + s(i - 1) + 1) >> 2,   dst(2i + 1) = (3 s(i) + s(i + 1) + 2) >> 2
 *
 *  Reads s(-1) to s(width / 2) of each row, width being that of `dstRoiSize`; of an odd width the last result is of the
 * first kind. Runs on the calling thread. */
VEK_API VekStatus vekiSampleUpH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                               int dstStep, VekSize dstRoiSize);

/** Doubles both sides with a triangle filter. For row k, with a the source row k / 2, b the source row below it if k is
 * odd, above it if k is even, and t(i) = 3 a(i) + b(i):
 *
 *      dst(2i) = (3 t(i) + t(i - 1) + 8) >> 4,   dst(2i + 1) = (3 t(i) + t(i + 1) + 7) >> 4
 *
 *  Reads samples -1 to width / 2 of the source rows -1 to height / 2. More than 8192 results are shared among threads.
 */
VEK_API VekStatus vekiSampleUpH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                               int dstStep, VekSize dstRoiSize);

/** Halves a row: dst(j) = (s(2j) + s(2j + 1) + bias(j)) >> 1 for the `srcWidth` / 2 pairs; an odd last sample is
 * ignored.
 *
 *  From 16 samples on, bias(j) is 0 for even j and 1 for odd j; below, it is 0 for the last result and alternates from
 * there. With k the bytes from `pDst` to the next multiple of 16, a row of 16 or more samples, but no more than 2k,
 * gets only
 *  (`srcWidth` - k) / 2 results. */
VEK_API VekStatus vekiSampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst);

/** Halves two rows to one: dst(j) = (a(2j) + a(2j + 1) + b(2j) + b(2j + 1) + bias(j)) >> 2 for the `srcWidth` / 2 pairs
 * of columns, bias(j) being 1 for even j and 2 for odd j; an odd last column is ignored. */
VEK_API VekStatus vekiSampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth,
                                                       uint8_t* pDst);

/** Doubles a row to 2 * `srcWidth` samples with a triangle filter:
 *
 *      dst(2i) = (3 s(i) + s(i - 1) + 1) >> 2,   dst(2i + 1) = (3 s(i) + s(i + 1) + 2) >> 2
 *
 *  but the first and the last result are the first and the last sample. */
VEK_API VekStatus vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst);

/** One of the two result rows of a source row a = `pSrc1` whose nearer neighbour is b = `pSrc2`, 2 * `srcWidth`
 * samples. With t(i) = 3 a(i) + b(i):
 *
 *      dst(2i) = (3 t(i) + t(i - 1) + 8) >> 4,   dst(2i + 1) = (3 t(i) + t(i + 1) + 7) >> 4
 *
 *  but the first result is (4 t(0) + 8) >> 4, and the last (4 t(`srcWidth` - 1) + 7) >> 4. */
VEK_API VekStatus vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth,
                                                          uint8_t* pDst);
/** @} */

#endif
