#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/bit_reader.h"
#include "jpeg/entropy/progressive_band.h"

namespace q3 {

VekStatus vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                     int16_t* pDst, int16_t* pLastDC, int* pMarker, int Al,
                                                     const VekDecodeHuffmanSpec* pDcTable,
                                                     VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK(Al <= largestLow, vekStsBadArgument);
    VEK_CHECK_POINTER(pDcTable);
    VEK_CHECK_POINTER(pDecHuffState);
    int symbol = 0;
    VekStatus status =
        ownjc_DecodeHuffSymbol(pSrc, srcLenBytes, pSrcCurrPos, pMarker, &symbol, pDcTable, pDecHuffState);
    VEK_CHECK(status == vekStsOk, status);
    if (const int size = symbol & 15; size != 0) {
        int value = 0;
        status = ownjc_ReadBits(pSrc, srcLenBytes, pSrcCurrPos, pMarker, size, &value, pDecHuffState);
        VEK_CHECK(status == vekStsOk, status);
        *pLastDC = static_cast<int16_t>(*pLastDC + extendMagnitude(value, size));
    }
    storeScalar(pDst, static_cast<int16_t>(shiftedLeft(*pLastDC, Al)));
    return vekStsOk;
}

VekStatus vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      int16_t* pDst, int* pMarker, int Al,
                                                      VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK(Al <= largestLow, vekStsBadArgument);
    VEK_CHECK_POINTER(pDecHuffState);
    int bit = 0;
    const VekStatus status = ownjc_ReadBits(pSrc, srcLenBytes, pSrcCurrPos, pMarker, 1, &bit, pDecHuffState);
    VEK_CHECK(status == vekStsOk, status);
    if (bit != 0)
        storeScalar(pDst, static_cast<int16_t>(loadScalar<int16_t>(pDst) | shiftedLeft(1, Al)));
    return vekStsOk;
}

}  // namespace q3
