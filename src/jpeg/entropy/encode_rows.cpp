#include <algorithm>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/bit_writer.h"
#include "jpeg/entropy/fast_bit_writer.h"
#include "jpeg/entropy/lossless_symbols.h"

namespace q3 {
namespace {

// One value by the careful writer.
VekStatus encodeOne(int v, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos, const VekEncodeHuffmanSpec& table,
                    VekEncodeHuffmanState* pState)
{
    const int category = categoryOf(v);
    const VekStatus status = ownjc_write_code_jpeg(table.codes[category], pDst, dstLenBytes, pDstCurrPos, pState);
    if (status != vekStsOk || category == 0 || category == largestLosslessCategory)
        return status;
    return ownjc_write_bits_jpeg(magnitudeBits(v), category, pDst, dstLenBytes, pDstCurrPos, pState);
}

// Columns `begin` to `end` of rows whose codes surely fit. False before the first value without a code.
template <int rows>
bool encodeColumns(const int16_t** pSrc, int begin, int end, const VekEncodeHuffmanSpec** pTables,
                   FastBitWriter& writer)
{
    for (int i = begin; i < end; ++i) {
        for (int c = 0; c < rows; ++c) {
            const int v = loadScalar<int16_t>(pSrc[c] + i);
            Magnitude magnitude = magnitudeOf(v);
            const uint32_t entry = pTables[c]->codes[magnitude.category];
            if (entry >> 16 == 0) [[unlikely]]
                return false;
            if (magnitude.category == largestLosslessCategory) [[unlikely]]
                magnitude = {};
            writer.put(entry, magnitude);
        }
    }
    return true;
}

// A value takes at most 31 bits, every byte of which may want a stuffed one. What the writer holds, and wants to have
// free, comes on top.
constexpr int longestValue = 2 * 4;
constexpr int fastPathReserve = 32;

// As many columns as surely fit. Returns the column that comes next, or a negative number for a missing code.
template <int rows>
int encodeFast(const int16_t** pSrc, int nSrcLen, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
               const VekEncodeHuffmanSpec** pTables, VekEncodeHuffmanState* pState)
{
    int i = 0;
    bool complete = true;
    FastBitWriter writer(pDst + *pDstCurrPos, pDst + dstLenBytes, *pState);
    while (complete && i < nSrcLen) {
        const int64_t room = pDst + dstLenBytes - writer.position() - fastPathReserve;
        const int64_t columns = std::min<int64_t>(nSrcLen - i, room / (longestValue * rows));
        if (columns < 1)
            break;
        complete = encodeColumns<rows>(pSrc, i, i + static_cast<int>(columns), pTables, writer);
        i += static_cast<int>(columns);
    }
    writer.settle();
    *pDstCurrPos = static_cast<int>(writer.position() - pDst);
    writer.keep(pState);
    return complete ? i : -1;
}

using EncodeFast = int (*)(const int16_t** pSrc, int nSrcLen, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                           const VekEncodeHuffmanSpec** pTables, VekEncodeHuffmanState* pState);
constexpr EncodeFast encodeFastOf[mostRows] = {encodeFast<1>, encodeFast<2>, encodeFast<3>, encodeFast<4>};

}  // namespace

VekStatus vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(const int16_t** pSrc, int nSrcLen, int nSrcRows, uint8_t* pDst,
                                               int dstLenBytes, int* pDstCurrPos,
                                               const VekEncodeHuffmanSpec** pEncHuffTable,
                                               VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_flush_jpeg(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK(nSrcLen >= 1 && nSrcRows >= 1, vekStsBadArgument);
    VEK_CHECK_POINTER(pEncHuffTable);
    const int rows = std::min(nSrcRows, mostRows);
    VEK_CHECK_PLANES(pSrc, rows);
    VEK_CHECK_PLANES(pEncHuffTable, rows);

    int begin = 0;
    if (holdsNoWholeByte(*pEncHuffState))
        begin = encodeFastOf[rows - 1](pSrc, nSrcLen, pDst, dstLenBytes, pDstCurrPos, pEncHuffTable, pEncHuffState);
    VEK_CHECK(begin >= 0, vekStsJpegHuffmanTable);
    for (int i = begin; i < nSrcLen; ++i) {
        for (int c = 0; c < rows; ++c) {
            const VekStatus status = encodeOne(loadScalar<int16_t>(pSrc[c] + i), pDst, dstLenBytes, pDstCurrPos,
                                               *pEncHuffTable[c], pEncHuffState);
            VEK_CHECK(status == vekStsOk, status);
        }
    }
    return vekStsOk;
}

VekStatus vekiEncodeHuffmanOne_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                             const VekEncodeHuffmanSpec* pEncHuffTable,
                                             VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_flush_jpeg(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pEncHuffTable);
    return encodeOne(loadScalar<int16_t>(pSrc), pDst, dstLenBytes, pDstCurrPos, *pEncHuffTable, pEncHuffState);
}

VekStatus vekiGetHuffmanStatisticsOne_JPEG_16s_C1(const int16_t* pSrc, int* pStatistics)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pStatistics);
    ++pStatistics[categoryOf(loadScalar<int16_t>(pSrc))];  // no value has a category above 16
    return vekStsOk;
}

}  // namespace q3
