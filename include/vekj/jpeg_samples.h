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

/** @name Colour conversion, YCbCr to RGB
 *  Rows of 8-bit samples; `pSrc` and `pDst` name the planes or the one interleaved image, steps are in bytes, the
 * planes of one image share theirs. clip is to 0..255, u = Cb - 128, v = Cr - 128, shifts round down. The first width &
 * ~3 columns are
 *
 *      R = clip(Y + ((22970 v + 8145) >> 14))
 *      planar, packed and YCCK:  G = clip(Y - ((5638 u + 11700 v + 8082) >> 14)),   B = clip(Y + ((29032 u + 7535) >>
 * 14)) 8-bit pixels:             G = clip(Y + ((-5638 u - 11700 v + 8302) >> 14)),  B = clip(Y + ((29032 u + 8135) >>
 * 14))
 *
 *  and the last width & 3 columns
 *
 *      R = clip(Y + ((91881 v + 32768) >> 16)),   B = clip(Y + ((116130 u + 32768) >> 16))
 *      G = clip(Y + ((-22554 u - 46802 v + 32768) >> 16))
 *
 *  which differ at a few inputs. YCCK to CMYK gives 255 - R, 255 - G, 255 - B and K unchanged. Packed pixels hold the
 * first channel of their name in bits 0 to 4, green in the next 5 or 6, the other in the 5 above; low bits are dropped,
 * bit 15 of a 555 pixel is 0. `aval` fills the fourth byte.
 *
 *  Regions of more than 8192 pixels are shared among threads, but for packed and four-byte RGB pixels.
 *  Results: vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (an array, a plane, an image),
 * vekStsBadStep (a step below 1; not checked by the members with `aval`), vekStsBadSize (a side below 1).
 *  @{ */

/** YCbCr planes to RGB planes. */
VEK_API VekStatus vekiYCbCrToRGB_JPEG_8u_P3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* const pDst[3],
                                             int dstStep, VekSize roiSize);

/** YCCK planes to CMYK planes. */
VEK_API VekStatus vekiYCCKToCMYK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* const pDst[4],
                                             int dstStep, VekSize roiSize);

/** YCCK planes to CMYK 4-byte pixels. */
VEK_API VekStatus vekiYCCKToCMYK_JPEG_8u_P4C4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* pDst, int dstStep,
                                               VekSize roiSize);

/** YCbCr planes to RGB pixels. */
VEK_API VekStatus vekiYCbCrToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                               VekSize roiSize);

/** YCbCr planes to BGR pixels. */
VEK_API VekStatus vekiYCbCrToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                               VekSize roiSize);

/** YCbCr planes to RGB 4-byte pixels. */
VEK_API VekStatus vekiYCbCrToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                               VekSize roiSize, uint8_t aval);

/** YCbCr planes to BGR 4-byte pixels. */
VEK_API VekStatus vekiYCbCrToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                               VekSize roiSize, uint8_t aval);

/** YCbCr planes to RGB555 pixels. */
VEK_API VekStatus vekiYCbCrToRGB555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst,
                                                     int dstStep, VekSize roiSize);

/** YCbCr planes to BGR555 pixels. */
VEK_API VekStatus vekiYCbCrToBGR555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst,
                                                     int dstStep, VekSize roiSize);

/** YCbCr planes to RGB565 pixels. */
VEK_API VekStatus vekiYCbCrToRGB565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst,
                                                     int dstStep, VekSize roiSize);

/** YCbCr planes to BGR565 pixels. */
VEK_API VekStatus vekiYCbCrToBGR565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst,
                                                     int dstStep, VekSize roiSize);
/** @} */

/** @name Colour conversion, RGB to YCbCr
 *  Rows of 8-bit samples, or of packed 16-bit pixels whose fields are widened by a shift alone. Interleaved 8-bit
 * sources, on whole groups of 8 columns, and luma alone on all columns:
 *
 *      Y = clip((9798 R + 19235 G + 3736 B + 16266) >> 15)
 *      Cb = clip((-5529 R - 10855 G + 16384 B + 4210688) >> 15),   Cr = clip((16384 R - 13720 G - 2664 B + 4210704) >>
 * 15)
 *
 *  Their last width & 7 columns, and all columns of packed sources:
 *
 *      Y = clip((4899 R + 9617 G + 1868 B + 8192) >> 14)
 *      Cb = clip((-2764 R - 5428 G + 8192 B + 2105344) >> 14),   Cr = clip((8192 R - 6860 G - 1332 B + 2105344) >> 14)
 *
 *  Planar sources and CMYK (R = 255 - C and so on, K unchanged), on the first width & ~3 columns:
 *
 *      Y = (19595 R + 38470 G + 7471 B + 32768) >> 16
 *      Cb = clip(((B - Y) * 18491 + 4210688) >> 15),   Cr = clip(((R - Y) * 23373 + 4210688) >> 15)
 *
 *  and on the last width & 3 that Y and
 *
 *      Cb = (-11059 R - 21709 G + 32768 B + 8421375) >> 16,   Cr = (32768 R - 27439 G - 5329 B + 8421375) >> 16
 *
 *  Luma of planar sources: ((R * 0.299) + (G * 0.587)) + (B * 0.114) in single precision, every operation rounded, to
 * the nearest integer with ties to even; the last width & 3 columns by the Q16 form.
 *
 *  Regions of more than 8192 pixels are shared among threads, but for packed and four-byte RGB pixels.
 *  Results: vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (an array, a plane, an image),
 * vekStsBadStep (a step below 1; not checked by the members with four-byte pixels), vekStsBadSize (a side below 1).
 *  @{ */

/** RGB planes to YCbCr planes. */
VEK_API VekStatus vekiRGBToYCbCr_JPEG_8u_P3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* const pDst[3],
                                             int dstStep, VekSize roiSize);

/** CMYK planes to YCCK planes. */
VEK_API VekStatus vekiCMYKToYCCK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* const pDst[4],
                                             int dstStep, VekSize roiSize);

/** CMYK 4-byte pixels to YCCK planes. */
VEK_API VekStatus vekiCMYKToYCCK_JPEG_8u_C4P4R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[4], int dstStep,
                                               VekSize roiSize);

/** RGB pixels to YCbCr planes. */
VEK_API VekStatus vekiRGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                               VekSize roiSize);

/** BGR pixels to YCbCr planes. */
VEK_API VekStatus vekiBGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                               VekSize roiSize);

/** RGB 4-byte pixels to YCbCr planes. */
VEK_API VekStatus vekiRGBToYCbCr_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                               VekSize roiSize);

/** BGR 4-byte pixels to YCbCr planes. */
VEK_API VekStatus vekiBGRToYCbCr_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                               VekSize roiSize);

/** RGB555 pixels to YCbCr planes. */
VEK_API VekStatus vekiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                     int dstStep, VekSize roiSize);

/** BGR555 pixels to YCbCr planes. */
VEK_API VekStatus vekiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                     int dstStep, VekSize roiSize);

/** RGB565 pixels to YCbCr planes. */
VEK_API VekStatus vekiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                     int dstStep, VekSize roiSize);

/** BGR565 pixels to YCbCr planes. */
VEK_API VekStatus vekiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                     int dstStep, VekSize roiSize);

/** RGB planes to Y one plane. */
VEK_API VekStatus vekiRGBToY_JPEG_8u_P3C1R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                           VekSize roiSize);

/** RGB pixels to Y one plane. */
VEK_API VekStatus vekiRGBToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep,
                                           VekSize roiSize);

/** BGR pixels to Y one plane. */
VEK_API VekStatus vekiBGRToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep,
                                           VekSize roiSize);
/** @} */

/** @name Colour conversion with subsampled chroma
 *  422: one Cb and one Cr for two columns; 411: one for two columns of two rows. Only whole groups are converted: an
 * odd last column, or row (411), is left as it was, and the result is the warning vekStsOddSize. Each plane has its own
 * step; no step is checked.
 *
 *  To pixels, in 16-bit arithmetic with high(a, k) = (a * k) >> 16, chroma replicated:
 *
 *      sample = clip(((Y << 4) + off) >> 4),   offR = high(Cr << 7, 11485) - 2863,   offB = high(Cb << 7, 14516) -
 * 3621, offG = 2175 - (high(Cb << 7, 2819) + high(Cr << 7, 5850))
 *
 *  The stream Y0 Cb Y1 Cr follows this on its first width & ~7 columns, and the rounded Q16 form of YCbCr to RGB on the
 * rest; regions of more than 8192 pixels of it are shared among threads.
 *
 *  From pixels, with Rs, Gs, Bs the sums over a group of n samples, on the first width & ~15 columns:
 *
 *      Y = (high(R << 8, 4899) + high(G << 8, 9617) + high(B << 8, 1868) + 32) >> 6
 *      422:  Cb = clip((high(Bs << 6, 8192) - (high(Rs << 6, 2765) + high(Gs << 6, 5427)) + 4112) >> 5)
 *            Cr = clip((high(Rs << 6, 8192) - (high(Gs << 6, 6860) + high(Bs << 6, 1332)) + 4112) >> 5)
 *      411:  Cb = min(T, 255) with T = (8192 Bs - 5427 Gs - 2765 Rs + 8421376) >> 16
 *            Cr = min(T, 255) with T = (8192 Rs - 6860 Gs - 1332 Bs + 8421376) >> 16
 *
 *  and on the rest Y = (4899 R + 9617 G + 1868 B + 8192) >> 14 with the low byte of such a T, in 422 for half the sums:
 * there pure blue and pure red wrap to 0.
 *
 *  Results: vekStsOk, vekStsOddSize, or the first error that applies, with nothing written: vekStsNullPointer (an
 * array, a plane, an image), vekStsBadSize (width below 2, height below 1, or below 2 for 411).
 *  @{ */

/** YCbCr422 planes to RGB pixels. */
VEK_API VekStatus vekiYCbCr422ToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize);

/** YCbCr422 planes to BGR pixels. */
VEK_API VekStatus vekiYCbCr422ToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize);

/** YCbCr411 planes to RGB pixels. */
VEK_API VekStatus vekiYCbCr411ToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize);

/** YCbCr411 planes to BGR pixels. */
VEK_API VekStatus vekiYCbCr411ToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize);

/** YCbCr422 planes to RGB 4-byte pixels. */
VEK_API VekStatus vekiYCbCr422ToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize, uint8_t aval);

/** YCbCr422 planes to BGR 4-byte pixels. */
VEK_API VekStatus vekiYCbCr422ToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize, uint8_t aval);

/** YCbCr411 planes to RGB 4-byte pixels. */
VEK_API VekStatus vekiYCbCr411ToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize, uint8_t aval);

/** YCbCr411 planes to BGR 4-byte pixels. */
VEK_API VekStatus vekiYCbCr411ToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                                  int dstStep, VekSize roiSize, uint8_t aval);

/** RGB pixels to YCbCr422 planes. */
VEK_API VekStatus vekiRGBToYCbCr422_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** BGR pixels to YCbCr422 planes. */
VEK_API VekStatus vekiBGRToYCbCr422_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** RGB 4-byte pixels to YCbCr422 planes. */
VEK_API VekStatus vekiRGBToYCbCr422_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** BGR 4-byte pixels to YCbCr422 planes. */
VEK_API VekStatus vekiBGRToYCbCr422_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** RGB pixels to YCbCr411 planes. */
VEK_API VekStatus vekiRGBToYCbCr411_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** BGR pixels to YCbCr411 planes. */
VEK_API VekStatus vekiBGRToYCbCr411_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** RGB 4-byte pixels to YCbCr411 planes. */
VEK_API VekStatus vekiRGBToYCbCr411_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** BGR 4-byte pixels to YCbCr411 planes. */
VEK_API VekStatus vekiBGRToYCbCr411_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                                  const int dstStep[3], VekSize roiSize);

/** YCbCr422 a Y0 Cb Y1 Cr stream to RGB pixels. */
VEK_API VekStatus vekiYCbCr422ToRGB_JPEG_8u_C2C3R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep,
                                                  VekSize roiSize);
/** @} */

#endif
