/** @file
 *  JPEG 2000 code-blocks (ISO/IEC 15444-1, Annexes C and D): the coding passes with the MQ coder and raw segments.
 *
 *  Samples are 32-bit words of sign and magnitude: bit 31 is the sign, 1 for negative, bits 0 to 30 the magnitude.
 *  Blocks may lie at any address, with any step of at least 1 byte. An object serves one block at a time; distinct ones
 *  may serve different threads. */
#ifndef VEKJ_JPEG2K_CODEBLOCK_H
#define VEKJ_JPEG2K_CODEBLOCK_H

#include "vekj/types.h"

/** State of a code-block decoder; opaque. */
typedef struct VekDecodeCBProgrState_JPEG2K VekDecodeCBProgrState_JPEG2K;
/** State of a code-block encoder; opaque. */
typedef struct VekEncodeState_JPEG2K VekEncodeState_JPEG2K;

/** @name Code-block decoder
 *  A block is decoded segment by segment, so that it can be refined as data arrive, or in one call.
 *
 *  After plane p a sample that is significant carries the plane's bit and, as midpoint of what is not known yet, the
 *  bit below it. `subband` is 2 for HL, 3 for HH; all others are LL and LH. `sfBits` is the number of magnitude planes,
 *  0 to 31. `cbStyle` is a sum of
 *  - 0x1 vertically causal contexts; 0x2 raw segments below the fourth plane; 0x4 a segment for each pass; 0x8 contexts
 *    reset after each arithmetic-coded pass; 0x10 segmentation symbols
 *  - 0x10000 a damaged block falls back to what is known above the current plane
 *  - 0x20000 the block is zero already; 0x80000 the state's flags are
 *  - 0x40000 midpoints below the current plane are kept
 *  - 0x100000 arithmetic-coded segments end predictably, and are tested for it
 *
 *  Behind the end of a segment there are only bytes of 0xFF. Damage shows by a bad end or a bad segmentation symbol; a
 *  good end makes a pass good in spite of its symbol.
 *  @{ */

/** Stores the size of a state for blocks up to a size: 472 + R H bytes, R being 4 width + 8 rounded up to 32, H being
 *  (height + 1) / 2 + 2.
 *  @return vekStsOk, or the first that applies: vekStsBadSize (a dimension below 1), vekStsNullPointer */
VEK_API VekStatus vekiDecodeCBProgrGetStateSize_JPEG2K(VekSize codeBlockMaxSize, int* pStateSize);

/** The same as vekiDecodeCBProgrGetStateSize_JPEG2K(). */
VEK_API VekStatus vekiDecodeGetBufSize_JPEG2K(VekSize codeBlockMaxSize, int* pSize);

/** Makes a state of memory at any multiple of 8. It is not attached to a block yet. A null pointer is
 *  vekStsNullPointer. */
VEK_API VekStatus vekiDecodeCBProgrInit_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState);

/** Allocates and initialises a state.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadSize (a dimension below 1), vekStsNoMemory
 *          with a null pointer stored */
VEK_API VekStatus vekiDecodeCBProgrInitAlloc_JPEG2K(VekDecodeCBProgrState_JPEG2K** ppState, VekSize codeBlockMaxSize);

/** Releases a state that vekiDecodeCBProgrInitAlloc_JPEG2K() gave. vekStsNullPointer, or vekStsContextMismatch if it is
 *  none. */
VEK_API VekStatus vekiDecodeCBProgrFree_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState);

/** Begins a block, no larger than the state is made for: clears it, and sets the state to its top plane with no passes.
 *  @param pDst     the block
 *  @param dstStep  bytes from row to row
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pState), vekStsContextMismatch, vekStsNullPointer
 *          (pDst), vekStsBadStep (dstStep below 1), vekStsBadSize (a dimension below 1) */
VEK_API VekStatus vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(int32_t* pDst, int dstStep, VekSize codeBlockSize,
                                                         VekDecodeCBProgrState_JPEG2K* pState, int subband, int sfBits,
                                                         int cbStyle);

/** Tells how many passes the block has. vekStsNullPointer, vekStsContextMismatch. */
VEK_API VekStatus vekiDecodeCBProgrSetPassCounter_JPEG2K(int nPasses, VekDecodeCBProgrState_JPEG2K* pState);

/** Stores how many passes are left. vekStsNullPointer, vekStsContextMismatch. */
VEK_API VekStatus vekiDecodeCBProgrGetPassCounter_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState, int* pNOfResidualPasses);

/** Stores the plane that the decoder is at, negative behind the last.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pState), vekStsContextMismatch, vekStsNullPointer */
VEK_API VekStatus vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState, int* pBitPlane);

/** Decodes the next segment; nothing if no passes or planes are left.
 *  @param pSrc    the segment
 *  @param srcLen  its length, which may be 0
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsContextMismatch, vekStsJpeg2KNotAttached;
 *          vekStsJpeg2KCorruptCodeBlock for damaged data, with the segment decoded all the same */
VEK_API VekStatus vekiDecodeCBProgrStep_JPEG2K(const uint8_t* pSrc, int srcLen, VekDecodeCBProgrState_JPEG2K* pState);

/** Decodes a block. Bits below the plane reached are cleared in the end.
 *  @param pSrc            the segments, one behind the other
 *  @param nPasses         passes of the block
 *  @param pTermPassLen    lengths of the segments
 *  @param nTermPasses     number of the segments; none below 1
 *  @param pErrorBitPlane  if not null, receives the plane where damaged data have ended the decoding
 *  @param pState          memory of vekiDecodeGetBufSize_JPEG2K() bytes
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc, pState), vekStsBadSize (a dimension below 1),
 *          vekStsNullPointer (pTermPassLen, pDst), vekStsBadStep (dstStep below 1); vekStsJpeg2KCorruptCodeBlock for
 *          damaged data: the segments behind them are left out */
VEK_API VekStatus vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(const uint8_t* pSrc, int32_t* pDst, int dstStep,
                                                       VekSize codeBlockSize, int subband, int sfBits, int nPasses,
                                                       const int* pTermPassLen, int nTermPasses, int cbStyle,
                                                       int* pErrorBitPlane, VekDecodeCBProgrState_JPEG2K* pState);
/** @} */

/** @name Code-block encoder
 *  A block is loaded, which runs all its passes, and then stored, in pieces of any size. What a pass costs and brings
 *  can be asked for afterwards.
 *  @{ */

/** Allocates a state for blocks up to a size.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadSize (a dimension below 1), vekStsNoMemory
 *          with a null pointer stored */
VEK_API VekStatus vekiEncodeInitAlloc_JPEG2K(VekEncodeState_JPEG2K** ppState, VekSize codeBlockMaxSize);

/** Releases a state that vekiEncodeInitAlloc_JPEG2K() gave. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiEncodeFree_JPEG2K(VekEncodeState_JPEG2K* pState);

/** Loads a block, no larger than the state is made for, and runs its passes from the highest plane with a bit set down
 *  to plane 31 - magnBits.
 *  @param pSrc            the block
 *  @param srcStep         bytes from row to row
 *  @param subband         2 for HL, 3 for HH; all others are LL and LH
 *  @param magnBits        0 to 31: magnitude bits that count, from bit 30 down
 *  @param mqTermType      how arithmetic-coded segments end: 1 near-shortest, 2 with the bits that are left, else with
 *                         the standard's FLUSH
 *  @param mqRateEstimate  not used
 *  @param cbStyle         a sum of 0x1 to 0x10, as of the decoder, and 0x20: distortions of the lowest plane are those
 *                         of a decoder without loss
 *  @param pSfBits         receives the planes from 0 to the highest with a bit set, 0 for a block of zeros
 *  @param pNOfPasses      receives the number of passes
 *  @param pNOfTermPasses  receives the number of segments
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pState), vekStsContextMismatch, vekStsNullPointer
 *          (pSfBits, pNOfPasses, pNOfTermPasses), vekStsBadSize (a dimension below 1), vekStsNullPointer (pSrc),
 *          vekStsBadStep (srcStep below 1) */
VEK_API VekStatus vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, VekSize codeBlockSize,
                                                         VekEncodeState_JPEG2K* pState, int subband, int magnBits,
                                                         int mqTermType, int mqRateEstimate, int cbStyle, int* pSfBits,
                                                         int* pNOfPasses, int* pNOfTermPasses);

/** Stores the next bytes of the block.
 *  @param pDst          receives them; nothing is written behind the last
 *  @param pLen          room on entry, at least 1; bytes stored on return
 *  @param pIsNotFinish  receives 1 if passes are left to store, else 0
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pState), vekStsContextMismatch, vekStsNullPointer
 *          (the others), vekStsBadSize (room below 1) */
VEK_API VekStatus vekiEncodeStoreBits_JPEG2K_1u(uint8_t* pDst, int* pLen, VekEncodeState_JPEG2K* pState,
                                                int* pIsNotFinish);

/** Stores the length in bytes of a segment.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pState), vekStsContextMismatch, vekStsNullPointer,
 *          vekStsJpeg2KBadPassNumber if there is no such segment */
VEK_API VekStatus vekiEncodeGetTermPassLen_JPEG2K(VekEncodeState_JPEG2K* pState, int nTermPass, int* pLen);

/** Stores how many bytes of the stored block a decoder wants for the passes up to one of them; no fewer than it does,
 *  and exactly as many where a segment ends. The pass must have been stored.
 *  @return as vekiEncodeGetTermPassLen_JPEG2K(), for a pass */
VEK_API VekStatus vekiEncodeGetRate_JPEG2K(VekEncodeState_JPEG2K* pState, int nPass, int* pRate);

/** Stores by how much the passes up to one of them reduce the sum of squared errors, in squared units of plane
 *  31 - magnBits.
 *  @return as vekiEncodeGetTermPassLen_JPEG2K(), for a pass */
VEK_API VekStatus vekiEncodeGetDist_JPEG2K(VekEncodeState_JPEG2K* pState, int nPass, double* pDist);
/** @} */

#endif
