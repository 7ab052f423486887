#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"

namespace q3 {
namespace {

constexpr int fastPathBytes = 24;  // that lie ahead when the fast path is taken
constexpr int refillBytes = 8;

struct Tables {
    const VekDecodeHuffmanSpec& dc;
    const VekDecodeHuffmanSpec& ac;
};

inline void clearBlock(int16_t* pDst)
{
    for (int i = 0; i < 64; i += 16) storeU(pDst + i, _mm256_setzero_si256());
}

inline int16_t wrappedSum(int16_t a, int b)
{
    return static_cast<int16_t>(static_cast<uint16_t>(a) + static_cast<unsigned>(b));
}

VekStatus decodeCarefully(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst, int16_t* pLastDC,
                          int* pMarker, const Tables& tables, VekDecodeHuffmanState* pState)
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

// The same block by way of a 64-bit accumulator whose oldest bit is bit 63. It gives up, with nothing changed but the
// block, at a marker, a missing code, a run beyond the block, or fewer than eight bytes ahead of a refill.
class FastReader {
public:
    FastReader(const uint8_t* pSrc, const uint8_t* end, const VekDecodeHuffmanState& state)
        : p_(pSrc),
          end_(end),
          count_(state.numBits),
          bits_(state.numBits == 0 ? 0 : static_cast<uint64_t>(state.bitBuffer) << (64 - state.numBits))
    {
    }

    // False to give up.
    bool symbol(const VekDecodeHuffmanSpec& table, int& symbol)
    {
        if (count_ < 8) [[unlikely]]
            if (!refill())
                return false;
        const uint32_t entry = table.lookup[bits_ >> 56];
        if (entry == 0) [[unlikely]]
            return longSymbol(table, symbol);
        drop(static_cast<int>(entry >> 16));
        symbol = static_cast<int>(entry & 0xFFFF);
        return true;
    }

    // A value of 1 to 15 bits.
    bool value(int size, int& v)
    {
        if (count_ < size) [[unlikely]]
            if (!refill())
                return false;
        // A clear top bit makes the mask all ones: v + 1 - 2^size.
        const auto negative = static_cast<int32_t>(~static_cast<int64_t>(bits_) >> 63);
        v = static_cast<int>(bits_ >> (64 - size)) + (negative & (1 - (1 << size)));
        drop(size);
        return true;
    }

    // Gives the newest whole bytes above 32 bits back to the stream.
    const uint8_t* finish(VekDecodeHuffmanState* pState)
    {
        if (count_ >= 32) {
            const int surplus = ((count_ + 7) & ~7) - 32;
            p_ -= surplus / 8;
            count_ -= surplus;
        }
        pState->numBits = count_;
        pState->bitBuffer = count_ == 0 ? 0 : bits_ >> (64 - count_);
        return p_;
    }

private:
    void drop(int n)
    {
        bits_ <<= n;
        count_ -= n;
    }

    bool refill()
    {
        if (end_ - p_ < refillBytes)
            return false;
        const uint64_t next = loadBigEndian64(p_);
        if (!hasByteFF(next)) [[likely]] {
            const int bytes = (64 - ((count_ + 7) & ~7)) / 8;
            const uint64_t taken = bytes == 8 ? next : next & ~(~uint64_t{0} >> (8 * bytes));
            bits_ |= taken >> count_;
            count_ += 8 * bytes;
            p_ += bytes;
            return true;
        }
        while (count_ <= 24) {
            const uint64_t byte = *p_++;
            if (byte == 0xFF && *p_++ != 0)
                return false;
            bits_ |= byte << (56 - count_);
            count_ += 8;
        }
        return true;
    }

    bool longSymbol(const VekDecodeHuffmanSpec& table, int& symbol)
    {
        if (count_ < 16)
            if (!refill())
                return false;
        for (int length = 9; length <= 16; ++length) {
            const int code = static_cast<int>(bits_ >> (64 - length));
            if (code <= lastCode(table, length)) {
                drop(length);
                symbol = symbolOf(table, length, code);
                return true;
            }
        }
        return false;
    }

    const uint8_t* p_;
    const uint8_t* end_;
    int count_;
    uint64_t bits_;
};

bool decodeFast(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst, int16_t* pLastDC,
                const Tables& tables, VekDecodeHuffmanState* pState)
{
    FastReader reader(pSrc + *pSrcCurrPos, pSrc + srcLenBytes, *pState);
    int symbol = 0;
    int v = 0;
    if (!reader.symbol(tables.dc, symbol))
        return false;
    int16_t dc = *pLastDC;
    if ((symbol & 15) != 0) {
        if (!reader.value(symbol & 15, v))
            return false;
        dc = wrappedSum(dc, v);
    }
    storeScalar(pDst, dc);
    int k = 1;
    while (k < 64) {
        if (!reader.symbol(tables.ac, symbol))
            return false;
        const int size = symbol & 15;
        if (size == 0) {
            if (symbol != 0xF0)
                break;
            k += 16;
            continue;
        }
        k += symbol >> 4;
        if (k > 63 || !reader.value(size, v))
            return false;
        storeScalar(pDst + own_jc_izigzag_index[static_cast<size_t>(k)], static_cast<int16_t>(v));
        ++k;
    }
    *pSrcCurrPos = static_cast<int>(reader.finish(pState) - pSrc);
    *pLastDC = dc;
    pState->endOfBlockPos = k;
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
    const Tables tables = {*pDcTable, *pAcTable};
    clearBlock(pDst);
    const bool ample = int64_t{srcLenBytes} - *pSrcCurrPos >= fastPathBytes;
    if (*pMarker == 0 && ample && pDecHuffState->numBits >= 0 && pDecHuffState->numBits <= 32) {
        if (decodeFast(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, tables, pDecHuffState))
            return vekStsOk;
        clearBlock(pDst);
    }
    return decodeCarefully(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, tables, pDecHuffState);
}

}  // namespace q3
