#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/fast_block_reader.h"

namespace q3 {
namespace {

constexpr int noBitsLeft = -256;
constexpr int noCode = -1;

// The reader whose bits the caller holds. It knows no end of the data: a marker ends them.
struct DirectReader {
    const uint8_t* src;
    int position;  // in bytes, behind the bits in hand
    int marker;
    uint32_t bits;  // the newest is bit 0
    int count;      // below 0 if a marker left a value short of bits

    void refill()
    {
        if (marker != 0)
            return;
        while (count < 25) {
            const uint32_t byte = src[position++];
            if (byte == 0xFF) {
                uint8_t code = 0xFF;
                while (code == 0xFF) code = src[position++];  // fill bytes
                if (code != 0) {
                    marker = code;
                    return;
                }
            }
            bits = bits << 8 | byte;
            count += 8;
        }
    }
};

// The symbol whose code has at least minBits bits, noBitsLeft if a marker cuts it, or noCode.
int ownjc_DecodeLongBits(int minBits, const VekDecodeHuffmanSpec* pTable, DirectReader* pReader)
{
    if (pReader->count < minBits)
        pReader->refill();
    if (pReader->count < minBits)
        return noBitsLeft;
    int code = bitsOf(pReader->bits, pReader->count, minBits);
    pReader->count -= minBits;
    for (int length = minBits; length <= 16; ++length) {
        if (code <= lastCode(*pTable, length))
            return symbolOf(*pTable, length, code);
        if (length == 16)
            break;
        if (pReader->count < 1)
            pReader->refill();
        if (pReader->count < 1)
            return noBitsLeft;
        code = code << 1 | bitsOf(pReader->bits, pReader->count, 1);
        --pReader->count;
    }
    return noCode;
}

int decodeSymbol(const VekDecodeHuffmanSpec& table, DirectReader& reader)
{
    if (reader.count < 8)
        reader.refill();
    if (reader.count < 1)
        return noBitsLeft;
    const uint32_t entry = table.lookup[bitsOf(reader.bits, reader.count, 8)];
    if (entry >> 16 == 0)
        return ownjc_DecodeLongBits(9, &table, &reader);
    reader.count -= static_cast<int>(entry >> 16);
    return static_cast<int>(entry & 0xFFFF);
}

// False if a marker left no bit at all.
bool decodeValue(int size, DirectReader& reader, int& v)
{
    if (reader.count < size)
        reader.refill();
    if (reader.count < 1)
        return false;
    v = extendMagnitude(bitsOf(reader.bits, reader.count, size), size);
    reader.count -= size;
    return true;
}

VekStatus decodeAc(int16_t* pDst, const VekDecodeHuffmanSpec& table, DirectReader& reader)
{
    int k = 1;
    while (k < 64) {
        const int symbol = decodeSymbol(table, reader);
        if (symbol == noBitsLeft) {
            reader.count = 0;
            return vekStsOk;
        }
        if (symbol == noCode)
            return vekStsJpegMarkerShort;
        const int run = symbol >> 4;
        const int size = symbol & 15;
        if (size == 0) {
            if (run < 15)
                break;
            k += 16;
            continue;
        }
        int v = 0;
        if (!decodeValue(size, reader, v))
            return vekStsJpegOutOfBuffer;
        k += run;
        if (static_cast<size_t>(k) >= own_jc_izigzag_index.size())
            return vekStsJpegCoefOverrun;
        storeScalar(pDst + own_jc_izigzag_index[static_cast<size_t>(k)], static_cast<int16_t>(v));
        ++k;
    }
    return vekStsOk;
}

// The block cleared and the reader's place not stored where no bit is left at all.
[[gnu::noinline]] VekStatus decodeCarefully(const uint8_t* pSrc, int* pSrcBitsLen, int16_t* pDst, int16_t* pLastDC,
                                            int* pMarker, uint32_t* pPrefetchedBits, int* pNumValidPrefetchedBits,
                                            const DecodeTables& tables)
{
    DirectReader reader = {pSrc, *pSrcBitsLen >> 3, *pMarker, *pPrefetchedBits, *pNumValidPrefetchedBits};
    VekStatus status = vekStsOk;
    const int symbol = decodeSymbol(tables.dc, reader);
    *pMarker = reader.marker;
    if (symbol == noBitsLeft)
        return vekStsOk;
    if (symbol == noCode) {
        status = vekStsJpegMarkerShort;
    } else {
        const int size = symbol & 15;
        int diff = 0;
        if (size != 0 && !decodeValue(size, reader, diff)) {
            status = vekStsJpegOutOfBuffer;
        } else {
            *pLastDC = wrappedSum(*pLastDC, diff);
            storeScalar(pDst, *pLastDC);
            status = decodeAc(pDst, tables.ac, reader);
        }
    }
    *pMarker = reader.marker;
    *pSrcBitsLen = reader.position * 8;
    *pNumValidPrefetchedBits = std::max(reader.count, 0);
    *pPrefetchedBits = reader.count < 32 ? reader.bits & ((1U << *pNumValidPrefetchedBits) - 1) : reader.bits;
    return status;
}

// False, with nothing changed but coefficients that the careful path decodes as well, if the fast path gives up. It
// refills when and as far as the careful path does, so that nobody can tell by the bits prefetched which was taken.
bool decodeFast(const uint8_t* pSrc, int* pSrcBitsLen, int16_t* pDst, int16_t* pLastDC, uint32_t* pPrefetchedBits,
                int* pNumValidPrefetchedBits, const DecodeTables& tables)
{
    FastReader reader(pSrc + (*pSrcBitsLen >> 3), RefillToMarker{}, *pPrefetchedBits, *pNumValidPrefetchedBits);
    int16_t dc = *pLastDC;
    if (decodeFast(reader, pDst, dc, tables) == 0)
        return false;
    const ReadAhead ahead = reader.readAhead();
    *pSrcBitsLen = static_cast<int>((ahead.position - pSrc) * 8);
    *pLastDC = dc;
    *pPrefetchedBits = static_cast<uint32_t>(ahead.bits);
    *pNumValidPrefetchedBits = ahead.count;
    return true;
}

}  // namespace

VekStatus vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int* pSrcBitsLen, int16_t* pDst,
                                                    int16_t* pLastDC, int* pMarker, uint32_t* pPrefetchedBits,
                                                    int* pNumValidPrefetchedBits, const VekDecodeHuffmanSpec* pDcTable,
                                                    const VekDecodeHuffmanSpec* pAcTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pSrcBitsLen);
    VEK_CHECK(*pSrcBitsLen >= 0, vekStsBadArgument);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK_POINTER(pPrefetchedBits);
    VEK_CHECK_POINTER(pNumValidPrefetchedBits);
    VEK_CHECK(*pNumValidPrefetchedBits >= 0, vekStsBadArgument);
    VEK_CHECK_POINTER(pDcTable);
    VEK_CHECK_POINTER(pAcTable);

    const DecodeTables tables = {*pDcTable, *pAcTable};
    clearBlock(pDst);
    if (*pMarker == 0 && *pNumValidPrefetchedBits <= mostBitsBetweenBlocks) {
        if (decodeFast(pSrc, pSrcBitsLen, pDst, pLastDC, pPrefetchedBits, pNumValidPrefetchedBits, tables))
            return vekStsOk;
    }
    return decodeCarefully(pSrc, pSrcBitsLen, pDst, pLastDC, pMarker, pPrefetchedBits, pNumValidPrefetchedBits, tables);
}

}  // namespace q3
