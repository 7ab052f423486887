/** @file
 *  TIFF rows (TIFF 6.0): PackBits, and samples of 16 bits as planes of bytes. */
#ifndef VEKJ_TIFF_H
#define VEKJ_TIFF_H

#include "vekj/types.h"

/** @name PackBits
 *  A packet is a control byte n and, for n from 0 to 127, n + 1 bytes as they are; for n from -127 to -1, one byte that
 *  is repeated 1 - n times; for n = -128, nothing.
 *  @{ */

/** Packs a row. Two equal bytes at the beginning of a packet make it a run; bytes as they are end before three equal
 *  ones.
 *  @param pDst         the packets
 *  @param pDstCurrPos  where in `pDst` to begin; advances packet by packet
 *  @param dstLenBytes  room from there on
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadSize (a length below 1);
 *          vekStsTiffRowFormat if the next packet does not fit, with what fits of it stored behind the others */
VEK_API VekStatus vekiPackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int srcLenBytes, uint8_t* pDst, int* pDstCurrPos,
                                             int dstLenBytes);

/** Unpacks a row of `dstLenBytes` bytes.
 *  @param pSrc         the packets
 *  @param pSrcCurrPos  where in `pSrc` to begin; advances
 *  @param srcLenBytes  length of `pSrc`. The repeated byte of a packet that the end cuts off is read all the same,
 *                      right behind it.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadSize (a length below 1);
 *          vekStsTiffRowFormat if the packets end before the row does, or if one does not fit, with the position behind
 *          its control byte */
VEK_API VekStatus vekiUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int* pSrcCurrPos, int srcLenBytes, uint8_t* pDst,
                                               int dstLenBytes);
/** @} */

/** @name Planes of bytes
 *  @{ */

/** Stores the high bytes of samples in the first plane, and their low bytes in the second.
 *  @param len  samples
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc, pDst), vekStsBadStep (len below 1) */
VEK_API VekStatus vekiSplitRow_TIFF_16u8u_C1(const uint16_t* pSrc, uint8_t** pDst, int len);

/** Puts samples together from a plane of high bytes and one of low bytes.
 *  @return as vekiSplitRow_TIFF_16u8u_C1() */
VEK_API VekStatus vekiJoinRow_TIFF_8u16u_C1(const uint8_t** pSrc, uint16_t* pDst, int len);
/** @} */

#endif
