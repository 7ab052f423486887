#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/fast_block_reader.h"

namespace q3 {
namespace {

constexpr int fastPathBytes = 24;  // that lie ahead when the fast path is taken

VekStatus decodeCarefully(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst, int16_t* pLastDC,
                          int* pMarker, const DecodeTables& tables, VekDecodeHuffmanState* pState)
{
    const auto symbolBy = [&](const VekDecodeHuffmanSpec& table, int& symbol) {
        return ownjc_DecodeHuffSymbol(pSrc, srcLenBytes, pSrcCurrPos, pMarker, &symbol, &table, pState);
    };
    const auto value = [&](int size, int& v) {
        const VekStatus status = ownjc_ReadBits(pSrc, srcLenBytes, pSrcCurrPos, pMarker, size, &v, pState);
        v = extendMagnitude(v, size);
        return status;
    };
    int symbol = 0;
    int v = 0;
    VekStatus status = symbolBy(tables.dc, symbol);
    if (status == vekStsOk && (symbol & 15) != 0)
        status = value(symbol & 15, v);
    if (status != vekStsOk) {
        pState->endOfBlockPos = 0;
        return status;
    }
    *pLastDC = wrappedSum(*pLastDC, v);
    storeScalar(pDst, *pLastDC);

    int k = 1;
    while (k < 64) {
        status = symbolBy(tables.ac, symbol);
        if (status != vekStsOk)
            break;
        const int run = symbol >> 4;
        const int size = symbol & 15;
        if (size == 0) {
            if (run < 15)
                break;
            k += 16;
            continue;
        }
        status = value(size, v);
        if (status != vekStsOk) {
            k += run + 1;
            break;
        }
        k += run;
        if (static_cast<size_t>(k) >= own_jc_izigzag_index.size())
            return vekStsJpegCoefOverrun;
        storeScalar(pDst + own_jc_izigzag_index[static_cast<size_t>(k)], static_cast<int16_t>(v));
        ++k;
    }
    pState->endOfBlockPos = k;
    return status;
}

// False, with nothing changed but the block, if the fast path gives up. It may then have got further than the careful
// path does, which fails at a 0xFF at the end of the source even with bits in hand.
bool decodeFast(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst, int16_t* pLastDC,
                const DecodeTables& tables, VekDecodeHuffmanState* pState)
{
    FastReader reader(pSrc + *pSrcCurrPos, RefillToEnd{pSrc + srcLenBytes}, pState->bitBuffer, pState->numBits);
    int16_t dc = *pLastDC;
    const int reached = decodeFast(reader, pDst, dc, tables);
    if (reached == 0)
        return false;
    reader.giveBackSurplus();
    *pSrcCurrPos = static_cast<int>(reader.position() - pSrc);
    *pLastDC = dc;
    pState->bitBuffer = reader.bitBuffer();
    pState->numBits = reader.numBits();
    pState->endOfBlockPos = reached;
    return true;
}

}  // namespace

VekStatus vekiDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst,
                                             int16_t* pLastDC, int* pMarker, const VekDecodeHuffmanSpec* pDcTable,
                                             const VekDecodeHuffmanSpec* pAcTable, VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK(srcLenBytes >= 0, vekStsBadArgument);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK_POINTER(pDcTable);
    VEK_CHECK_POINTER(pAcTable);
    VEK_CHECK_POINTER(pDecHuffState);
    const DecodeTables tables = {*pDcTable, *pAcTable};
    clearBlock(pDst);
    const bool ample = int64_t{srcLenBytes} - *pSrcCurrPos >= fastPathBytes;
    if (*pMarker == 0 && ample && pDecHuffState->numBits >= 0 && pDecHuffState->numBits <= mostBitsBetweenBlocks) {
        if (decodeFast(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, tables, pDecHuffState))
            return vekStsOk;
        clearBlock(pDst);
    }
    return decodeCarefully(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, tables, pDecHuffState);
}

}  // namespace q3
