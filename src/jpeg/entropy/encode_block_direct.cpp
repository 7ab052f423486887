#include <array>
#include <cstring>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/fast_block_writer.h"

namespace q3 {
namespace {

// The longest block: 64 codes of 16 bits with as many magnitude bits, every byte stuffed, and what the writer wants to
// have free.
constexpr size_t longestBlock = 2 * (64 * 32 / 8 + 1) + 16;

}  // namespace

VekStatus vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int* pDstBitsLen,
                                                    int16_t* pLastDC, const VekEncodeHuffmanSpec* pDcTable,
                                                    const VekEncodeHuffmanSpec* pAcTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pDstBitsLen);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK_POINTER(pDcTable);
    VEK_CHECK_POINTER(pAcTable);
    const auto dc = loadScalar<int16_t>(pSrc);
    const int diff = dc - *pLastDC;
    *pLastDC = dc;

    uint8_t* const begin = pDst + (*pDstBitsLen >> 3);
    const int numPending = *pDstBitsLen & 7;
    const uint32_t pending = numPending == 0 ? 0 : uint32_t{*begin} >> (8 - numPending);

    // By way of a buffer: the caller owes no room behind the stream's last byte.
    std::array<uint8_t, longestBlock> bytes;
    FastBitWriter writer(bytes.data(), bytes.data() + bytes.size(), pending, numPending);
    putBlock<MissingCode::AddsNothing>(writer, pSrc, diff, *pDcTable, *pAcTable);
    *writer.position() = static_cast<uint8_t>(writer.pending() << (8 - writer.numPending()));
    const auto length = static_cast<size_t>(writer.position() - bytes.data());
    std::memcpy(begin, bytes.data(), length + 1);
    *pDstBitsLen += static_cast<int>(8 * length) - numPending + writer.numPending();
    return vekStsOk;
}

}  // namespace q3
