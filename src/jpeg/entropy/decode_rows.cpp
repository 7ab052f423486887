#include <algorithm>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"
#include "jpeg/entropy/lossless_symbols.h"

namespace q3 {
namespace {

constexpr int16_t loneDifference = -32768;

struct Source {
    const uint8_t* p;
    int length;
    int* position;
    int* marker;
};

// One value by the careful reader.
[[gnu::noinline]] VekStatus decodeOne(const Source& src, int16_t* pDst, const VekDecodeHuffmanSpec& table,
                                      VekDecodeHuffmanState* pState)
{
    int symbol = 0;
    VekStatus status = ownjc_DecodeHuffSymbol(src.p, src.length, src.position, src.marker, &symbol, &table, pState);
    VEK_CHECK(status == vekStsOk, status);
    int value = 0;
    if (symbol >= largestLosslessCategory) {
        value = loneDifference;
    } else if (symbol != 0) {
        status = ownjc_ReadBits(src.p, src.length, src.position, src.marker, symbol, &value, pState);
        VEK_CHECK(status == vekStsOk, status);
        value = extendMagnitude(value, symbol);
    }
    storeScalar(pDst, static_cast<int16_t>(value));
    return vekStsOk;
}

// The careful reader's buffer in registers: it reads ahead at the same moments and as far, so that either may go on
// where the other stops.
class RowReader {
public:
    RowReader(const Source& src, const VekDecodeHuffmanState& state)
        : p_(src.p + *src.position),
          end_(*src.marker == 0 ? src.p + src.length : p_),
          bits_(static_cast<uint32_t>(state.bitBuffer)),
          count_(state.numBits)
    {
    }

    void keep(const Source& src, VekDecodeHuffmanState* pState) const
    {
        *src.position = static_cast<int>(p_ - src.p);
        pState->bitBuffer = bits_;
        pState->numBits = count_;
    }

    // The next value, or false without any effect if it wants the careful reader: for a code of more than 8 bits, a
    // lone difference, a 0xFF, a pending marker, or the last bytes of the source.
    [[gnu::always_inline]] bool take(const VekDecodeHuffmanSpec& table, int16_t* pDst)
    {
        const RowReader before = *this;
        if (count_ < 8 || count_ > 32) [[unlikely]] {
            if (count_ < 0 || count_ > 32 || !refill())
                return false;
        }
        const uint32_t entry = table.lookup[static_cast<uint8_t>(bits_ >> (count_ - 8))];
        const auto symbol = static_cast<int>(entry & 0xFFFF);
        if (entry >> 16 == 0 || symbol >= largestLosslessCategory) [[unlikely]] {
            *this = before;
            return false;
        }
        count_ -= static_cast<int>(entry >> 16);
        if (count_ < symbol && !refill()) [[unlikely]] {
            *this = before;
            return false;
        }
        count_ -= symbol;
        const uint32_t magnitude =
            _bzhi_u32(static_cast<uint32_t>(uint64_t{bits_} >> count_), static_cast<uint32_t>(symbol));
        // A clear top bit stands for a negative value.
        const uint32_t isNegative = ~(magnitude << 1 >> symbol) & 1;
        const uint32_t lowest = (isNegative << symbol) - isNegative;
        storeScalar(pDst, static_cast<int16_t>(magnitude - lowest));
        return true;
    }

private:
    bool refill()
    {
        if (end_ - p_ < 4)
            return false;
        const uint32_t next = loadBigEndian32(p_);
        if (hasByteFF(next)) [[unlikely]]
            return false;
        const int bytes = (32 - count_) >> 3;  // up to 25 bits and more
        bits_ = static_cast<uint32_t>(uint64_t{bits_} << (8 * bytes) | next >> (32 - 8 * bytes));
        count_ += 8 * bytes;
        p_ += bytes;
        return true;
    }

    const uint8_t* p_;
    const uint8_t* end_;
    uint32_t bits_;  // the newest in bit 0
    int count_;
};

template <int rows>
VekStatus decodeRows(const Source& src, int16_t** pDst, int nDstLen, const VekDecodeHuffmanSpec** pTables,
                     VekDecodeHuffmanState* pState)
{
    RowReader reader(src, *pState);
    for (int i = 0; i < nDstLen; ++i) {
        for (int c = 0; c < rows; ++c) {
            if (reader.take(*pTables[c], pDst[c] + i)) [[likely]]
                continue;
            reader.keep(src, pState);
            const VekStatus status = decodeOne(src, pDst[c] + i, *pTables[c], pState);
            VEK_CHECK(status == vekStsOk, status);
            reader = RowReader(src, *pState);
        }
    }
    reader.keep(src, pState);
    return vekStsOk;
}

using DecodeRows = VekStatus (*)(const Source& src, int16_t** pDst, int nDstLen, const VekDecodeHuffmanSpec** pTables,
                                 VekDecodeHuffmanState* pState);
constexpr DecodeRows decodeRowsOf[mostRows] = {decodeRows<1>, decodeRows<2>, decodeRows<3>, decodeRows<4>};

}  // namespace

VekStatus vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t** pDst,
                                               int nDstLen, int nDstRows, int* pMarker,
                                               const VekDecodeHuffmanSpec** pDecHuffTable,
                                               VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK(nDstLen >= 1 && nDstRows >= 1, vekStsBadArgument);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK_POINTER(pDecHuffTable);
    VEK_CHECK_POINTER(pDecHuffState);
    const int rows = std::min(nDstRows, mostRows);
    VEK_CHECK_PLANES(pDst, rows);
    VEK_CHECK_PLANES(pDecHuffTable, rows);
    const Source src = {pSrc, srcLenBytes, pSrcCurrPos, pMarker};
    return decodeRowsOf[rows - 1](src, pDst, nDstLen, pDecHuffTable, pDecHuffState);
}

VekStatus vekiDecodeHuffmanOne_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst,
                                             int* pMarker, const VekDecodeHuffmanSpec* pDecHuffTable,
                                             VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK_POINTER(pDecHuffTable);
    VEK_CHECK_POINTER(pDecHuffState);
    return decodeOne({pSrc, srcLenBytes, pSrcCurrPos, pMarker}, pDst, *pDecHuffTable, pDecHuffState);
}

}  // namespace q3
