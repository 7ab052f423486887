/** @file
 *  JPEG entropy coding (ITU T.81): Huffman tables, the sequential, progressive and lossless Huffman coders, lossless
 *  prediction. */
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
 *  Tables are built from the lists of a DHT segment (ITU T.81, Annex C): `pListBits`, 16 bytes with the number of codes
 *  of each length from 1 to 16, and `pListVals`, their symbols by increasing length. A table once built is only read;
 *  any number of streams and threads may share it. Objects live in the caller's memory (GetBufSize, Init; at least
 *  8-byte aligned) or are allocated (InitAlloc, Free). Every null pointer is vekStsNullPointer.
 *  @{ */

/** Stores the size of a decoder table, 1644 bytes. */
VEK_API VekStatus vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);

/** Builds a decoder table. A complete code, whose longest code is all ones, is accepted.
 *  @return vekStsOk, vekStsNullPointer, or vekStsJpegHuffmanTable for more than 256 codes or codes of up to 8 bits that
 *          do not fit their length; the object is then partly built */
VEK_API VekStatus vekiDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                    VekDecodeHuffmanSpec* pDecHuffSpec);

/** Allocates and builds a decoder table. On vekStsJpegHuffmanTable the object is delivered all the same, and to be
 *  freed; if memory is short the result is vekStsNullPointer and the pointer is left alone. */
VEK_API VekStatus vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                         VekDecodeHuffmanSpec** ppDecHuffSpec);

/** Releases a table that vekiDecodeHuffmanSpecInitAlloc_JPEG_8u() gave. */
VEK_API VekStatus vekiDecodeHuffmanSpecFree_JPEG_8u(VekDecodeHuffmanSpec* pDecHuffSpec);

/** Stores the size of an encoder table, 1024 bytes. */
VEK_API VekStatus vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);

/** Builds an encoder table. If a symbol stands twice in the list, its last code counts.
 *  @return vekStsOk, vekStsNullPointer, or vekStsJpegHuffmanTable for more than 256 codes or for a code that uses up
 *          all the space of a length, so that its longest code would be all ones; the object is then partly built */
VEK_API VekStatus vekiEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                    VekEncodeHuffmanSpec* pEncHuffSpec);

/** Allocates and builds an encoder table; failures as of vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(). */
VEK_API VekStatus vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                         VekEncodeHuffmanSpec** ppEncHuffSpec);

/** Releases a table that vekiEncodeHuffmanSpecInitAlloc_JPEG_8u() gave. */
VEK_API VekStatus vekiEncodeHuffmanSpecFree_JPEG_8u(VekEncodeHuffmanSpec* pEncHuffSpec);

/** Derives the lists of an optimal table from how often each symbol occurs (ITU T.81, Annex K.2). No code is longer
 *  than 16 bits or all ones.
 *  @param pStatistics  256 counts; those above 1000000000 get no code
 *  @param pListBits    receives 16 bytes
 *  @param pListVals    receives as many symbols as have a code, at most 256
 *  @return vekStsOk, vekStsNullPointer, or vekStsJpegHuffmanTable with nothing written if a code would be longer than
 *          32 bits before lengths are limited */
VEK_API VekStatus vekiEncodeHuffmanRawTableInit_JPEG_8u(const int* pStatistics, uint8_t* pListBits, uint8_t* pListVals);
/** @} */

/** @name Sequential encoder
 *  Writes quantised blocks as the bits of an entropy-coded segment (ITU T.81, F.1.2), byte stuffing included, but no
 *  marker. A state belongs to one stream: initialise it, encode the blocks of the segment in their order, then flush.
 *  Blocks are 64 coefficients in natural order.
 *  @{ */

/** Stores the size of an encoder state, 1048 bytes. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);

/** Initialises a state: no pending bits. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiEncodeHuffmanStateInit_JPEG_8u(VekEncodeHuffmanState* pEncHuffState);

/** Allocates and initialises a state. vekStsNullPointer for a null pointer, or with the pointer left alone if memory is
 *  short. */
VEK_API VekStatus vekiEncodeHuffmanStateInitAlloc_JPEG_8u(VekEncodeHuffmanState** ppEncHuffState);

/** Releases a state that vekiEncodeHuffmanStateInitAlloc_JPEG_8u() gave. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiEncodeHuffmanStateFree_JPEG_8u(VekEncodeHuffmanState* pEncHuffState);

/** Encodes one block, or with `bFlushState` pads the pending bits with 1 bits to a byte, writes it and resets the
 *  state.
 *  @param pSrc         the block; not looked at by a flush, like the tables and `pLastDC`
 *  @param pDst         the segment; bytes behind the position may be written, none at or behind `dstLenBytes`
 *  @param dstLenBytes  bytes that the segment has room for
 *  @param pDstCurrPos  byte position, which advances
 *  @param pLastDC      DC coefficient of the component's last block; takes this block's, also if the call fails later
 *  @param pDcTable, pAcTable  tables of the component
 *  @param pEncHuffState       0 to 7 bits that are pending between calls
 *  @param bFlushState  not 0 to flush
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pDst), vekStsBadSize (dstLenBytes below 1),
 *          vekStsNullPointer (pDstCurrPos, pEncHuffState; and if it is no flush pSrc, pLastDC, pDcTable, pAcTable);
 *          vekStsJpegHuffmanTable for a symbol without a code, vekStsJpegOutOfBuffer for a full destination: the bytes
 *          written so far stay, the block cannot be resumed */
VEK_API VekStatus vekiEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, int16_t* pLastDC,
                                                     const VekEncodeHuffmanSpec* pDcTable,
                                                     const VekEncodeHuffmanSpec* pAcTable,
                                                     VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Encodes one block at a bit position, without a state and without a limit: the caller guarantees the room. Symbols
 *  without a code are left out.
 *  @param pDstBitsLen  bits in `pDst` so far, stuffed bytes included; advances. The bits of the last byte below it
 *                      become zero, and if it ends on a byte, so does the byte behind it.
 *  @return vekStsOk, or vekStsNullPointer with nothing written */
VEK_API VekStatus vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int* pDstBitsLen,
                                                            int16_t* pLastDC, const VekEncodeHuffmanSpec* pDcTable,
                                                            const VekEncodeHuffmanSpec* pAcTable);

/** Counts the symbols that vekiEncodeHuffman8x8_JPEG_16s1u_C1() would write.
 *  @param pDcStatistics, pAcStatistics  256 counters each, which are added to
 *  @param pLastDC                       as for the encoder
 *  @return vekStsOk; vekStsNullPointer; vekStsJpegMarkerShort for a DC category above 15 or an AC category above 14,
 *          what is counted until then staying counted */
VEK_API VekStatus vekiGetHuffmanStatistics8x8_JPEG_16s_C1(const int16_t* pSrc, int* pDcStatistics, int* pAcStatistics,
                                                          int16_t* pLastDC);
/** @} */

/** @name Sequential decoder
 *  Reads blocks from an entropy-coded segment (ITU T.81, F.2.2). Stuffing is removed; at a marker the reader stops, and
 *  hands its code to the caller. Blocks are 64 coefficients in natural order, at any address.
 *  @{ */

/** Stores the size of a decoder state, 24 bytes. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);

/** Initialises a state, at the beginning of a scan and after each restart marker. A null pointer is vekStsNullPointer.
 *  */
VEK_API VekStatus vekiDecodeHuffmanStateInit_JPEG_8u(VekDecodeHuffmanState* pDecHuffState);

/** Allocates and initialises a state. vekStsNullPointer for a null pointer, or with the pointer left alone if memory is
 *  short. */
VEK_API VekStatus vekiDecodeHuffmanStateInitAlloc_JPEG_8u(VekDecodeHuffmanState** ppDecHuffState);

/** Releases a state that vekiDecodeHuffmanStateInitAlloc_JPEG_8u() gave. A null pointer is vekStsNullPointer. */
VEK_API VekStatus vekiDecodeHuffmanStateFree_JPEG_8u(VekDecodeHuffmanState* pDecHuffState);

/** Decodes one block.
 *  @param pSrc         the segment
 *  @param srcLenBytes  its length, at least 0
 *  @param pSrcCurrPos  byte position, which advances: it stands behind the bytes whose bits the state holds
 *  @param pDst         receives the block, cleared first
 *  @param pLastDC      DC coefficient of the component's last block; takes this block's
 *  @param pMarker      0, or the code of the marker that has stopped the reader; it reads on when the caller has set it
 *                      to 0 again
 *  @param pDcTable, pAcTable  tables of the component
 *  @param pDecHuffState       bits read ahead
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc), vekStsBadArgument (srcLenBytes below 0),
 *          vekStsNullPointer (the others, in their order); vekStsJpegOutOfBuffer if the source ends before the bits
 *          asked for, or right behind a 0xFF; vekStsJpegMarkerShort if a marker comes before them, or if no code
 *          matches; vekStsJpegCoefOverrun if a run leads far beyond the block. Coefficients decoded until then stay,
 *          and so does `pLastDC`. */
VEK_API VekStatus vekiDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                     int16_t* pDst, int16_t* pLastDC, int* pMarker,
                                                     const VekDecodeHuffmanSpec* pDcTable,
                                                     const VekDecodeHuffmanSpec* pAcTable,
                                                     VekDecodeHuffmanState* pDecHuffState);

/** Decodes one block at a bit position, with the bits read ahead in the caller's hands. The source has no length: the
 *  caller guarantees that a marker ends it. Bits that a marker cuts off end the block quietly.
 *  @param pSrcBitsLen              position in bits, a multiple of 8, behind the bits read ahead
 *  @param pPrefetchedBits          the bits read ahead, the newest in bit 0
 *  @param pNumValidPrefetchedBits  how many there are
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc, pSrcBitsLen), vekStsBadArgument (*pSrcBitsLen
 *          below 0), vekStsNullPointer (pDst, pLastDC, pMarker, pPrefetchedBits, pNumValidPrefetchedBits),
 *          vekStsBadArgument (*pNumValidPrefetchedBits below 0), vekStsNullPointer (pDcTable, pAcTable);
 *          vekStsJpegOutOfBuffer if a marker leaves no bit for a magnitude, vekStsJpegMarkerShort if no code matches,
 *          vekStsJpegCoefOverrun if a run leads far beyond the block */
VEK_API VekStatus vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int* pSrcBitsLen, int16_t* pDst,
                                                            int16_t* pLastDC, int* pMarker, uint32_t* pPrefetchedBits,
                                                            int* pNumValidPrefetchedBits,
                                                            const VekDecodeHuffmanSpec* pDcTable,
                                                            const VekDecodeHuffmanSpec* pAcTable);
/** @} */

/** @name Progressive decoders
 *  Each reads one block of one scan (ITU T.81, G.2) into a block that holds what earlier scans have brought: the caller
 *  clears the blocks before the first scan. Blocks are 64 coefficients in natural order, at any address. A scan covers
 *  zig-zag positions `Ss` to `Se`, down to bit `Al`. A state serves one scan, up to the next restart marker. `pMarker`
 *  works as in vekiDecodeHuffman8x8_JPEG_1u16s_C1(). A failure leaves coefficients, position and state as far as they
 *  have come.
 *  @{ */

/** Adds the next difference to `pLastDC`, and stores that, times 2^Al, as DC coefficient.
 *  @param pLastDC  DC value of the component's last block; takes this block's
 *  @param Al       at most 13
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc), vekStsBadSize (srcLenBytes below 1),
 *          vekStsNullPointer (pSrcCurrPos, pDst, pLastDC, pMarker), vekStsBadArgument (Al), vekStsNullPointer
 *          (pDcTable, pDecHuffState); then the failures of vekiDecodeHuffman8x8_JPEG_1u16s_C1() */
VEK_API VekStatus vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                             int16_t* pDst, int16_t* pLastDC, int* pMarker, int Al,
                                                             const VekDecodeHuffmanSpec* pDcTable,
                                                             VekDecodeHuffmanState* pDecHuffState);

/** Sets bit `Al` of the DC coefficient if the next bit is 1.
 *  @return as vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(), without pLastDC and pDcTable */
VEK_API VekStatus vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                              int16_t* pDst, int* pMarker, int Al,
                                                              VekDecodeHuffmanState* pDecHuffState);

/** Stores the band's coefficients that are not zero, times 2^Al. A block inside an end-of-band run costs no bits.
 *
 *  AC scans read up to 8 bytes ahead, and never give them back: at the end of a scan `pSrcCurrPos` may stand that far
 *  behind the last bit used, but never behind a marker that has been met.
 *  @param Ss, Se  1 to 63, Ss not above Se
 *  @param Al      at most 13
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc), vekStsBadSize (srcLenBytes below 1),
 *          vekStsNullPointer (pSrcCurrPos, pDst, pMarker), vekStsBadArgument (Ss, Se, Al), vekStsNullPointer (pAcTable,
 *          pDecHuffState); vekStsJpegOutOfBuffer if the source ends before the bits asked for, or right behind a 0xFF,
 *          or if a marker comes up before them; vekStsJpegMarkerShort if it has come up before, or if no code matches.
 *          A run that leads beyond the block ends on its last coefficient. */
VEK_API VekStatus vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                             int16_t* pDst, int* pMarker, int Ss, int Se, int Al,
                                                             const VekDecodeHuffmanSpec* pAcTable,
                                                             VekDecodeHuffmanState* pDecHuffState);

/** Moves coefficients that are not zero by 2^Al away from zero where a correction bit says so, and sets those that
 *  become significant to 2^Al or -2^Al.
 *  @return as vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1() */
VEK_API VekStatus vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                              int16_t* pDst, int* pMarker, int Ss, int Se, int Al,
                                                              const VekDecodeHuffmanSpec* pAcTable,
                                                              VekDecodeHuffmanState* pDecHuffState);
/** @} */

/** @name Progressive encoders and their statistics
 *  Each codes one block for one scan (ITU T.81, G.1). Blocks, `Ss`, `Se` and `Al` are those of the decoders. A state
 *  serves one scan, up to the next restart marker; a call with `bFlushState` set ends it, and looks at no block. The
 *  statistics functions go through the same blocks beforehand, with a state of their own, and count the symbols that
 *  the encoders will write.
 *  @{ */

/** Writes the difference of the DC coefficient, divided by 2^Al with rounding down, from `pLastDC`.
 *  @param pLastDC      takes this block's value, also on failure
 *  @param bFlushState  not 0: pads with 1 bits to a byte and resets the state
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pDst), vekStsBadSize (dstLenBytes below 1),
 *          vekStsNullPointer (pDstCurrPos, pEncHuffState); without bFlushState also vekStsNullPointer (pSrc, pLastDC),
 *          vekStsBadArgument (Al above 13), vekStsNullPointer (pDcTable), vekStsJpegMarkerShort for a category above
 *          11, vekStsJpegHuffmanTable for one without a code; vekStsJpegOutOfBuffer if the bytes do not fit */
VEK_API VekStatus vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                             int* pDstCurrPos, int16_t* pLastDC, int Al,
                                                             const VekEncodeHuffmanSpec* pDcTable,
                                                             VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Writes bit `Al` of the DC coefficient.
 *  @return as vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(), without pLastDC and pDcTable */
VEK_API VekStatus vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                              int* pDstCurrPos, int Al,
                                                              VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Writes the band's coefficients whose magnitude divided by 2^Al is not zero. Blocks that end in zeros join an
 *  end-of-band run, which goes out before the next coefficient, at 32767 blocks, or when the scan is flushed.
 *
 *  Up to 63 bits stay in the state before bytes are written.
 *  @param bFlushState  not 0: writes the run and all bits, padded with 1 bits to a byte, and clears the state
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pDst), vekStsBadSize (dstLenBytes below 1),
 *          vekStsNullPointer (pDstCurrPos, pAcTable, pEncHuffState); without bFlushState also vekStsNullPointer (pSrc),
 *          vekStsBadArgument (Ss, Se, Al), vekStsJpegMarkerShort for a category above 11; vekStsJpegHuffmanTable for a
 *          symbol without a code; vekStsJpegOutOfBuffer if the bytes do not fit. A failure keeps what is written. */
VEK_API VekStatus vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                             int* pDstCurrPos, int Ss, int Se, int Al,
                                                             const VekEncodeHuffmanSpec* pAcTable,
                                                             VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Writes bit `Al` of the band's coefficients: those that become significant with their sign, and a correction bit for
 *  each that was significant before. An end-of-band run goes out with its correction bits, also when more than 937 of
 *  them wait.
 *  @return as vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(), without the test of categories */
VEK_API VekStatus vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                              int* pDstCurrPos, int Ss, int Se, int Al,
                                                              const VekEncodeHuffmanSpec* pAcTable,
                                                              VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Counts the category that vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1() would write.
 *  @param pDcStatistics  256 counters, which are added to
 *  @return vekStsOk, or the first that applies: vekStsNullPointer, vekStsBadArgument (Al above 13),
 *          vekStsJpegMarkerShort for a category above 11, with `pLastDC` taken over */
VEK_API VekStatus vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const int16_t* pSrc, int* pDcStatistics,
                                                                  int16_t* pLastDC, int Al);

/** Counts the symbols that vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1() would write.
 *  @param pAcStatistics  256 counters, which are added to
 *  @param bFlushState    not 0: counts the pending end-of-band run and resets the state
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pAcStatistics, pEncHuffState); without bFlushState
 *          also vekStsNullPointer (pSrc), vekStsBadArgument (Ss, Se, Al), vekStsJpegMarkerShort for a category above
 *          10, one below the encoder's bound, what is counted until then staying counted */
VEK_API VekStatus vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const int16_t* pSrc, int* pAcStatistics, int Ss,
                                                                  int Se, int Al, VekEncodeHuffmanState* pEncHuffState,
                                                                  int bFlushState);

/** Counts the symbols that vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1() would write.
 *  @return as vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(), without the test of categories */
VEK_API VekStatus vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const int16_t* pSrc, int* pAcStatistics, int Ss,
                                                                   int Se, int Al, VekEncodeHuffmanState* pEncHuffState,
                                                                   int bFlushState);
/** @} */

/** @name Lossless prediction (ITU T.81, Annex H)
 *  Rows of 16-bit samples; all sums and differences wrap modulo 65536, halvings round down.
 *
 *  The first row of an image is predicted from the left: its first sample from 2^(P - Pt - 1), the count taken modulo
 * 32, every other from its left neighbour. Of the other rows the first sample is predicted from above, and every other,
 * with a the sample to the left, b the one above and c the one above to the left, by
 *
 *  | `predictor` | prediction         |
 *  |-------------|--------------------|
 *  | 1           | a                  |
 *  | 2           | b                  |
 *  | 3           | c                  |
 *  | 4           | a + b - c          |
 *  | 5           | a + ((b - c) >> 1) |
 *  | 6           | b + ((a - c) >> 1) |
 *  | 7           | (a + b) >> 1       |
 *
 *  `width` counts samples. `pDst` may be `pSrc`.
 *  @{ */

/** Differences of a first row: the samples minus their predictions.
 *  @param P   sample precision in bits, 2 to 16
 *  @param Pt  point transform, at least 0
 *  @return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrc, pDst), vekStsBadSize
 * (width below 1), vekStsBadArgument (P, Pt) */
VEK_API VekStatus vekiDiffPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int width, int P, int Pt);

/** Differences of another row: the samples minus their predictions from `pSrc` itself and `pPrevRow`.
 *  @return vekStsOk, or the first that applies, with nothing written: vekStsNullPointer (pSrc, pPrevRow, pDst),
 * vekStsBadSize (width below 1), vekStsBadArgument (predictor outside 1 to 7) */
VEK_API VekStatus vekiDiffPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width,
                                              int predictor);

/** Samples of a first row from its differences; arguments and errors of vekiDiffPredFirstRow_JPEG_16s_C1(). */
VEK_API VekStatus vekiReconstructPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int width, int P, int Pt);

/** Samples of another row from its differences and the reconstructed row above; errors of
 * vekiDiffPredRow_JPEG_16s_C1(). */
VEK_API VekStatus vekiReconstructPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst,
                                                     int width, int predictor);
/** @} */

/** @name Lossless Huffman coding
 *  Differences of lossless prediction as category and magnitude bits (ITU T.81, H.1.2.2), of one value or of up to four
 *  interleaved rows: first the rows' first values, then their second ones, and so on. The state, the positions and
 *  `pMarker` are those of the sequential coders.
 *  @{ */

/** Writes rows of values. -32768, which stands for 32768 modulo 65536, has category 16 and no magnitude bits.
 *  @param pSrc           the rows
 *  @param nSrcLen        values in each
 *  @param nSrcRows       rows; of more than 4 only the first 4 count
 *  @param pEncHuffTable  a table for each row
 *  @param bFlushState    not 0: pads with 1 bits to a byte and resets the state; nothing else is looked at
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pDst), vekStsBadSize (dstLenBytes below 1),
 *          vekStsNullPointer (pDstCurrPos, pEncHuffState); without bFlushState also vekStsNullPointer (pSrc),
 *          vekStsBadArgument (nSrcLen or nSrcRows below 1), vekStsNullPointer (pEncHuffTable, a row, its table),
 *          vekStsJpegHuffmanTable for a category without a code; vekStsJpegOutOfBuffer if the bytes do not fit. A
 *          failure keeps the values written before. */
VEK_API VekStatus vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(const int16_t** pSrc, int nSrcLen, int nSrcRows, uint8_t* pDst,
                                                       int dstLenBytes, int* pDstCurrPos,
                                                       const VekEncodeHuffmanSpec** pEncHuffTable,
                                                       VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Reads rows of values.
 *  @param pDst           the rows
 *  @param nDstLen        values in each
 *  @param nDstRows       rows; of more than 4 only the first 4 count
 *  @param pDecHuffTable  a table for each row
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc), vekStsBadSize (srcLenBytes below 1),
 *          vekStsNullPointer (pSrcCurrPos, pDst), vekStsBadArgument (nDstLen or nDstRows below 1), vekStsNullPointer
 *          (pMarker, pDecHuffTable, pDecHuffState, a row, its table); then the failures of
 *          vekiDecodeHuffman8x8_JPEG_1u16s_C1(), with the values before stored */
VEK_API VekStatus vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                       int16_t** pDst, int nDstLen, int nDstRows, int* pMarker,
                                                       const VekDecodeHuffmanSpec** pDecHuffTable,
                                                       VekDecodeHuffmanState* pDecHuffState);

/** Writes one value.
 *  @return as vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(), without the rows */
VEK_API VekStatus vekiEncodeHuffmanOne_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, const VekEncodeHuffmanSpec* pEncHuffTable,
                                                     VekEncodeHuffmanState* pEncHuffState, int bFlushState);

/** Reads one value. A failure leaves `pDst` alone.
 *  @return vekStsOk, or the first that applies: vekStsNullPointer (pSrc), vekStsBadSize (srcLenBytes below 1),
 *          vekStsNullPointer (the others); then the failures of vekiDecodeHuffman8x8_JPEG_1u16s_C1() */
VEK_API VekStatus vekiDecodeHuffmanOne_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                     int16_t* pDst, int* pMarker,
                                                     const VekDecodeHuffmanSpec* pDecHuffTable,
                                                     VekDecodeHuffmanState* pDecHuffState);

/** Counts the category of a value.
 *  @param pStatistics  256 counters, one of which is added to
 *  @return vekStsOk, or vekStsNullPointer */
VEK_API VekStatus vekiGetHuffmanStatisticsOne_JPEG_16s_C1(const int16_t* pSrc, int* pStatistics);
/** @} */

#endif
