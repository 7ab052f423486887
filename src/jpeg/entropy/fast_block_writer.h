// The fast way of a block into a segment.
#ifndef VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H
#define VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H

#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/encoder_symbols.h"
#include "jpeg/entropy/fast_bit_writer.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {

// The code of an AC symbol. Category 16 borders on the next run's symbols; behind the longest run there is nothing.
inline uint32_t acEntry(const VekEncodeHuffmanSpec& table, int run, int category)
{
    const int symbol = (run << 4) + category;
    return symbol < 256 ? table.codes[symbol] : 0;
}

[[gnu::always_inline]] inline void putBlock(FastBitWriter& writer, const int16_t* pSrc, int diff,
                                            const VekEncodeHuffmanSpec& dcTable, const VekEncodeHuffmanSpec& acTable)
{
    writer.put(dcTable.codes[categoryOf(diff)], magnitudeOf(diff));
    uint64_t mask = nonZeroInZigzag(pSrc) & ~uint64_t{1};
    uint32_t next = 1;  // behind the last coefficient written
    while (mask != 0) {
        const auto k = static_cast<uint32_t>(std::countr_zero(mask));
        mask &= mask - 1;
        uint32_t run = k - next;
        next = k + 1;
        for (; run > 15; run -= 16) [[unlikely]] writer.put(acTable.codes[zeroRunLength], {});
        const int v = loadScalar<int16_t>(pSrc + zigzagPositions[k]);
        if (isSmall(v)) [[likely]] {
            const Magnitude magnitude = smallMagnitudeOf(v);
            writer.put(acTable.codes[(run << 4) + magnitude.category], magnitude);
        } else {
            const Magnitude magnitude = magnitudeOf(v);
            writer.put(acEntry(acTable, static_cast<int>(run), static_cast<int>(magnitude.category)), magnitude);
        }
    }
    if (next != 64)
        writer.put(acTable.codes[endOfBlock], {});
    writer.settle();
}

}  // namespace q3

#endif
