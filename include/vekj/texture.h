/** @file
 *  GPU textures: blocks of 4x4 pixels, stored back to back, row of blocks after row of blocks. Images may have any
 *  size: blocks that stick out repeat the last column and row when encoded, and are cut when decoded. No function
 *  shares anything with another call. */
#ifndef VEKJ_TEXTURE_H
#define VEKJ_TEXTURE_H

#include "vekj/types.h"

/** @name DXT encoders
 *  Colours have 5, 6 and 5 bits: the ends of the diagonal of the box around a block's colours, each a sixteenth of the
 *  box inside it, truncated. A pixel takes the nearer of them and of the two colours at a third between them.
 *
 *  @param pSrc     the first pixel
 *  @param srcStep  bytes from row to row
 *  @param roiSize  width and height in pixels
 *  @param pDst     the blocks, ceil(width / 4) by ceil(height / 4) of them
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadStep (srcStep of 0), vekStsBadSize (a
 *          dimension below 1)
 *  @{ */

/** Blocks of 8 bytes without alpha, from R, G, B, A. */
VEK_API VekStatus vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                               uint8_t* pDst);

/** Blocks of 16 bytes with the high four bits of alpha, from R, G, B, A. */
VEK_API VekStatus vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                               uint8_t* pDst);

/** Blocks of 16 bytes with alpha interpolated between two values, from R, G, B, A. */
VEK_API VekStatus vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                               uint8_t* pDst);

/** Blocks of 16 bytes with Y as alpha, Co as red, Cg as green, and by blue what Co and Cg are multiplied by: 0 for 1, 1
 *  for 2, 3 for 4. From Y, Co, Cg of 3 bytes, 128 standing for a chroma of 0. */
VEK_API VekStatus vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                                uint8_t* pDst);
/** @} */

/** @name DXT decoders
 *  To R, G, B, A. Colours between the endpoints are truncated.
 *
 *  @param pSrc     the blocks
 *  @param pDst     the first pixel
 *  @param dstStep  bytes from row to row
 *  @param roiSize  width and height in pixels; nothing outside is written
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadStep (dstStep of 0), vekStsBadSize (a
 *          dimension below 1)
 *  @{ */

/** Alpha is always 255: the fourth colour of a block of three is opaque white. */
VEK_API VekStatus vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                             VekSize roiSize);

/** The four bits of alpha become the high ones of eight; the low ones are 0. */
VEK_API VekStatus vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                             VekSize roiSize);

/** Alpha between its endpoints is rounded to the nearest. */
VEK_API VekStatus vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                             VekSize roiSize);
/** @} */

/** @name BC4 and BC5
 *  One or two channels of 8 bits, each in blocks of 8 bytes that are those of DXT5's alpha. Arguments and results are
 *  those of the DXT functions.
 *  @{ */

/** Blocks of 8 bytes, from one byte a pixel. */
VEK_API VekStatus vekiTextureEncodeBlock_BC4_8u_C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                    uint8_t* pDst);

/** Blocks of 16 bytes, red and then green, from two bytes a pixel. */
VEK_API VekStatus vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                            uint8_t* pDst);

/** To one byte a pixel. */
VEK_API VekStatus vekiTextureDecodeBlock_BC4_8u_C1R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                    VekSize roiSize);

/** To two bytes a pixel, red and green. */
VEK_API VekStatus vekiTextureDecodeBlockToRG_BC5_8u_C1C2R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                          VekSize roiSize);
/** @} */

/** @name BC6H and BC7 decoders
 *  Arguments and results are those of the DXT decoders, with `dstStep` as a signed number: an image may lie bottom up.
 *  @{ */

/** BC6H without signs, to R, G, B as half-precision numbers' bits. Reserved modes give zeros. Sums of an endpoint and a
 *  difference that are negative do not wrap to the endpoint's precision. Of blocks that stick out of the image pixels
 *  are taken from a scratch whose rows overlap: only the first 16 bytes of their first rows are the block's. */
VEK_API VekStatus vekiTextureDecodeBlockToRGB_BC6_16u_C1C3R(const uint8_t* pSrc, uint16_t* pDst, int dstStep,
                                                            VekSize roiSize);

/** BC6H with signs; likewise. Sums that are not negative do not become so by wrapping. */
VEK_API VekStatus vekiTextureDecodeBlockToRGB_BC6_16s_C1C3R(const uint8_t* pSrc, int16_t* pDst, int dstStep,
                                                            VekSize roiSize);

/** BC7, to R, G, B, A of 8 bits. A block whose first byte is 0 gives zeros. */
VEK_API VekStatus vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int dstStep,
                                                            VekSize roiSize);
/** @} */

/** @name BC7 encoder
 *  @{ */

/** Encodes one block of 4x4 pixels in one mode, and tells how well: whoever wants the best block tries the modes that
 *  matter, and keeps the one with the smallest error. A thorough search takes its time: up to a millisecond.
 *  @param pSrc     the first pixel, of R, G, B, A; 16 pixels are read
 *  @param srcStep  bytes from row to row
 *  @param pDst     receives 16 bytes
 *  @param pError   receives the sum of squared differences over all pixels and channels. In modes 0 to 3 alpha counts
 *                  as 255. Where endpoints share p-bits, or channels of an endpoint do, the block may differ a little
 *                  from what was measured.
 *  @param mode     0 to 7
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadStep (srcStep of 0), vekStsBadBlockMode */
VEK_API VekStatus vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, uint8_t* pDst,
                                                                 int* pError, int mode);
/** @} */

#endif
