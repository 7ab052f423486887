#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/bit_writer.h"
#include "jpeg/entropy/encoder_symbols.h"
#include "jpeg/entropy/magnitude.h"
#include "jpeg/entropy/progressive_band.h"

namespace q3 {
namespace {

// The difference that a first DC scan codes. *pLastDC takes the block's value.
int nextDifference(const int16_t* pSrc, int16_t* pLastDC, int low)
{
    const int dc = shiftedRight(loadScalar<int16_t>(pSrc), low);
    const int diff = dc - *pLastDC;
    *pLastDC = static_cast<int16_t>(dc);
    return diff;
}

}  // namespace

VekStatus vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, int16_t* pLastDC, int Al,
                                                     const VekEncodeHuffmanSpec* pDcTable,
                                                     VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_flush_jpeg(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK(Al <= largestLow, vekStsBadArgument);
    VEK_CHECK_POINTER(pDcTable);
    const int diff = nextDifference(pSrc, pLastDC, Al);
    const int category = categoryOf(diff);
    VEK_CHECK(category <= largestProgressiveCategory, vekStsJpegMarkerShort);
    const VekStatus status =
        ownjc_write_code_jpeg(pDcTable->codes[category], pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    if (status != vekStsOk || category == 0)
        return status;
    return ownjc_write_bits_jpeg(magnitudeBits(diff), category, pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
}

VekStatus vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, int Al, VekEncodeHuffmanState* pEncHuffState,
                                                      int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_flush_jpeg(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK(Al <= largestLow, vekStsBadArgument);
    return ownjc_write_bits_jpeg(static_cast<uint32_t>(shiftedRight(loadScalar<int16_t>(pSrc), Al)), 1, pDst,
                                 dstLenBytes, pDstCurrPos, pEncHuffState);
}

VekStatus vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const int16_t* pSrc, int* pDcStatistics, int16_t* pLastDC,
                                                          int Al)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDcStatistics);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK(Al <= largestLow, vekStsBadArgument);
    const int category = categoryOf(nextDifference(pSrc, pLastDC, Al));
    VEK_CHECK(category <= largestProgressiveCategory, vekStsJpegMarkerShort);
    ++pDcStatistics[category];
    return vekStsOk;
}

}  // namespace q3
