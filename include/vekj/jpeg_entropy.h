/** @file
 *  JPEG entropy coding (ITU T.81): Huffman tables and the sequential Huffman coder. */
#ifndef VEKJ_JPEG_ENTROPY_H
#define VEKJ_JPEG_ENTROPY_H

#include "vekj/types.h"

/** Huffman table of a decoder; opaque. */
typedef struct VekDecodeHuffmanSpec VekDecodeHuffmanSpec;
/** Huffman table of an encoder; opaque. */
typedef struct VekEncodeHuffmanSpec VekEncodeHuffmanSpec;
/** State of one entropy-coded stream that is being written; opaque. */
typedef struct VekEncodeHuffmanState VekEncodeHuffmanState;
/** State of one entropy-coded stream that is being read; opaque. */
typedef struct VekDecodeHuffmanState VekDecodeHuffmanState;

/** @name Huffman tables
 *  @{ */
VEK_API VekStatus vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
VEK_API VekStatus vekiDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                    VekDecodeHuffmanSpec* pDecHuffSpec);
VEK_API VekStatus vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                         VekDecodeHuffmanSpec** ppDecHuffSpec);
VEK_API VekStatus vekiDecodeHuffmanSpecFree_JPEG_8u(VekDecodeHuffmanSpec* pDecHuffSpec);
VEK_API VekStatus vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
VEK_API VekStatus vekiEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                    VekEncodeHuffmanSpec* pEncHuffSpec);
VEK_API VekStatus vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                         VekEncodeHuffmanSpec** ppEncHuffSpec);
VEK_API VekStatus vekiEncodeHuffmanSpecFree_JPEG_8u(VekEncodeHuffmanSpec* pEncHuffSpec);
VEK_API VekStatus vekiEncodeHuffmanRawTableInit_JPEG_8u(const int* pStatistics, uint8_t* pListBits, uint8_t* pListVals);
/** @} */

/** @name Sequential encoder
 *  @{ */
VEK_API VekStatus vekiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
VEK_API VekStatus vekiEncodeHuffmanStateInit_JPEG_8u(VekEncodeHuffmanState* pEncHuffState);
VEK_API VekStatus vekiEncodeHuffmanStateInitAlloc_JPEG_8u(VekEncodeHuffmanState** ppEncHuffState);
VEK_API VekStatus vekiEncodeHuffmanStateFree_JPEG_8u(VekEncodeHuffmanState* pEncHuffState);
VEK_API VekStatus vekiEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, int16_t* pLastDC,
                                                     const VekEncodeHuffmanSpec* pDcTable,
                                                     const VekEncodeHuffmanSpec* pAcTable,
                                                     VekEncodeHuffmanState* pEncHuffState, int bFlushState);
VEK_API VekStatus vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int* pDstBitsLen,
                                                            int16_t* pLastDC, const VekEncodeHuffmanSpec* pDcTable,
                                                            const VekEncodeHuffmanSpec* pAcTable);
VEK_API VekStatus vekiGetHuffmanStatistics8x8_JPEG_16s_C1(const int16_t* pSrc, int* pDcStatistics, int* pAcStatistics,
                                                          int16_t* pLastDC);
/** @} */

/** @name Sequential decoder
 *  @{ */
VEK_API VekStatus vekiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
VEK_API VekStatus vekiDecodeHuffmanStateInit_JPEG_8u(VekDecodeHuffmanState* pDecHuffState);
VEK_API VekStatus vekiDecodeHuffmanStateInitAlloc_JPEG_8u(VekDecodeHuffmanState** ppDecHuffState);
VEK_API VekStatus vekiDecodeHuffmanStateFree_JPEG_8u(VekDecodeHuffmanState* pDecHuffState);
VEK_API VekStatus vekiDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                     int16_t* pDst, int16_t* pLastDC, int* pMarker,
                                                     const VekDecodeHuffmanSpec* pDcTable,
                                                     const VekDecodeHuffmanSpec* pAcTable,
                                                     VekDecodeHuffmanState* pDecHuffState);
VEK_API VekStatus vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int* pSrcBitsLen, int16_t* pDst,
                                                            int16_t* pLastDC, int* pMarker, uint32_t* pPrefetchedBits,
                                                            int* pNumValidPrefetchedBits,
                                                            const VekDecodeHuffmanSpec* pDcTable,
                                                            const VekDecodeHuffmanSpec* pAcTable);
/** @} */

#endif
