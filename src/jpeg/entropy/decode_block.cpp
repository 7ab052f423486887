#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/fast_block_reader.h"
#include "jpeg/entropy/stretch_reader.h"

namespace q3 {
namespace {

constexpr int fastPathBytes = 24;  // that lie ahead when the fast path is taken

// The arguments, checked.
struct Call {
    const uint8_t* pSrc;
    int srcLenBytes;
    int* pSrcCurrPos;
    int16_t* pDst;
    int16_t* pLastDC;
    int* pMarker;
    DecodeTables tables;
    VekDecodeHuffmanState* pState;
};

[[gnu::noinline]] VekStatus decodeCarefully(const Call& call)
{
    const auto symbolBy = [&](const VekDecodeHuffmanSpec& table, int& symbol) {
        return ownjc_DecodeHuffSymbol(call.pSrc, call.srcLenBytes, call.pSrcCurrPos, call.pMarker, &symbol, &table,
                                      call.pState);
    };
    const auto value = [&](int size, int& v) {
        const VekStatus status =
            ownjc_ReadBits(call.pSrc, call.srcLenBytes, call.pSrcCurrPos, call.pMarker, size, &v, call.pState);
        v = extendMagnitude(v, size);
        return status;
    };
    int symbol = 0;
    int v = 0;
    VekStatus status = symbolBy(call.tables.dc, symbol);
    if (status == vekStsOk && (symbol & 15) != 0)
        status = value(symbol & 15, v);
    if (status != vekStsOk) {
        call.pState->endOfBlockPos = 0;
        return status;
    }
    *call.pLastDC = wrappedSum(*call.pLastDC, v);
    storeScalar(call.pDst, *call.pLastDC);

    int k = 1;
    while (k < 64) {
        status = symbolBy(call.tables.ac, symbol);
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
        storeScalar(call.pDst + own_jc_izigzag_index[static_cast<size_t>(k)], static_cast<int16_t>(v));
        ++k;
    }
    call.pState->endOfBlockPos = k;
    return status;
}

// What the fast path does at a block's end.
inline void store(const Call& call, const ReadAhead& ahead, int16_t dc, int reached)
{
    *call.pSrcCurrPos = static_cast<int>(ahead.position - call.pSrc);
    *call.pLastDC = dc;
    call.pState->bitBuffer = ahead.bits;
    call.pState->numBits = ahead.count;
    call.pState->endOfBlockPos = reached;
}

inline bool storeIfReached(const Call& call, const FastReader<RefillToEnd>& reader, int16_t dc, int reached)
{
    if (reached != 0)
        store(call, reader.readAhead(), dc, reached);
    return reached != 0;
}

// The fast path, from its start and from coefficient k on. False, with nothing changed but the block, if it gives up.
// It may then have got further than the careful path does, which fails at a 0xFF at the end of the source even with
// bits in hand.
[[gnu::noinline]] bool decodeFast(const Call& call)
{
    FastReader reader(call.pSrc + *call.pSrcCurrPos, RefillToEnd{call.pSrc + call.srcLenBytes}, call.pState->bitBuffer,
                      call.pState->numBits);
    int16_t dc = *call.pLastDC;
    const int reached = decodeFast(reader, call.pDst, dc, call.tables);
    return storeIfReached(call, reader, dc, reached);
}
[[gnu::noinline]] bool decodeFastFrom(int k, const StretchReader& stretch, int16_t dc, const Call& call)
{
    FastReader reader(stretch.position(), RefillToEnd{call.pSrc + call.srcLenBytes}, stretch.held());
    const int reached = decodeFastAc(reader, k, call.pDst, call.tables.ac);
    return storeIfReached(call, reader, dc, reached);
}

enum class Stretch { blockEnds, ends, givenUp };

// Decodes coefficients from k16 / 16 on as long as a stretch without 0xFF lasts; k16 tells then how far that was.
[[gnu::always_inline]] inline Stretch decodeAc(StretchReader& reader, uint64_t& k16, int16_t* pDst,
                                               const VekDecodeHuffmanSpec& table)
{
    while (reader.lasts()) {
        auto [length, symbol] = reader.symbol(table);
        if (length == 0) [[unlikely]] {
            const StretchReader::Symbol found = reader.longSymbol(table);
            if (found.length > 16)
                return Stretch::givenUp;
            length = found.length;
            symbol = found.symbol;
        }
        const uint64_t size = symbol & 15;
        int16_t v = 0;
        if (size - 1 < mostTabledBits) {
            v = reader.valueBehind(length, size);
        } else {
            reader.drop(length);
            if (size == 0) {
                if (symbol != 0xF0)
                    return Stretch::blockEnds;
                k16 += 16 * 16;
                if (k16 >= 16 * 64)
                    return Stretch::blockEnds;
                continue;
            }
            v = static_cast<int16_t>(reader.value(size));
        }
        k16 += symbol - size;
        const uint64_t place = reader.place(k16);
        k16 += 16;
        if (place >= 63) [[unlikely]] {
            if (place > 63)
                return Stretch::givenUp;
            storeScalar(pDst + place, v);
            return Stretch::blockEnds;
        }
        storeScalar(pDst + place, v);
    }
    return Stretch::ends;
}

// The fast path from a place behind which no 0xFF comes for a while.
[[gnu::always_inline]] inline bool decodeStretch(StretchReader reader, const Call& call)
{
    const auto [length, category] = reader.symbol(call.tables.dc);
    if (length == 0)
        return decodeFast(call);
    reader.drop(length);
    const int16_t dc = wrappedSum(*call.pLastDC, reader.value(category & 15));
    storeScalar(call.pDst, dc);
    uint64_t k16 = 16;
    switch (decodeAc(reader, k16, call.pDst, call.tables.ac)) {
        case Stretch::blockEnds:
            store(call, reader.readAhead(), dc, static_cast<int>(k16 / 16));
            return true;
        case Stretch::ends:
            // A copy: the reader itself has no address and stays in registers.
            return decodeFastFrom(static_cast<int>(k16 / 16), StretchReader(reader), dc, call);
        default:
            return false;
    }
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
    const Call call = {pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, {*pDcTable, *pAcTable}, pDecHuffState};
    clearBlock(pDst);
    const int64_t bytesAhead = int64_t{srcLenBytes} - *pSrcCurrPos;
    const int numBits = pDecHuffState->numBits;
    if (*pMarker != 0 || bytesAhead < fastPathBytes || numBits < 0 || numBits > mostBitsBetweenBlocks)
        return decodeCarefully(call);

    const uint8_t* const p = pSrc + *pSrcCurrPos;
    const uint64_t bytesWithoutFF =
        bytesAhead >= bytesLookedAt && numBits >= StretchReader::fewestBits ? bytesBeforeFF(p) : 0;
    const bool done = bytesWithoutFF > StretchReader::mostBytesTouched
                          ? decodeStretch({p, bytesWithoutFF, pDecHuffState->bitBuffer, numBits}, call)
                          : decodeFast(call);
    if (done)
        return vekStsOk;
    clearBlock(pDst);
    return decodeCarefully(call);
}

}  // namespace q3
