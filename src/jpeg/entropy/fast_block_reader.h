// What the two sequential decoders do alike: clearing a block, and the fast way through one.
#ifndef VEK_JPEG_ENTROPY_FAST_BLOCK_READER_H
#define VEK_JPEG_ENTROPY_FAST_BLOCK_READER_H

#include "frame/vec.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/fast_reader.h"

namespace q3 {

constexpr int mostBitsBetweenBlocks = 32;

struct DecodeTables {
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

// Decodes the coefficients from k on. Returns as decodeFast does.
template <typename Refill>
[[gnu::always_inline]] inline int decodeFastAc(FastReader<Refill>& reader, int k, int16_t* pDst,
                                               const VekDecodeHuffmanSpec& table)
{
    uint32_t entry = 0;
    int v = 0;
    do {
        if (!reader.symbol(table, entry))
            return 0;
        reader.drop(codeLength(entry));
        if (sizeOf(entry) == 0) [[unlikely]] {
            if (runOf(entry) != 15)
                break;
            k += 16;
            continue;
        }
        k += runOf(entry);
        if (k > 63 || !reader.value(sizeOf(entry), v)) [[unlikely]]
            return 0;
        storeScalar(pDst + zigzagPositions[static_cast<size_t>(k)], static_cast<int16_t>(v));
        ++k;
    } while (k < 64);
    return k;
}

// Decodes into a cleared block and adds to `dc`. Returns the zig-zag position reached, or 0 where the reader gives up
// and at a run beyond the block: the block is then unfinished, and to be decoded anew by the careful path.
template <typename Refill>
[[gnu::always_inline]] inline int decodeFast(FastReader<Refill>& reader, int16_t* pDst, int16_t& dc,
                                             const DecodeTables& tables)
{
    uint32_t entry = 0;
    int v = 0;
    if (!reader.symbol(tables.dc, entry))
        return 0;
    reader.drop(codeLength(entry));
    if (sizeOf(entry) != 0) {
        if (!reader.value(sizeOf(entry), v))
            return 0;
        dc = wrappedSum(dc, v);
    }
    storeScalar(pDst, dc);
    return decodeFastAc(reader, 1, pDst, tables.ac);
}

}  // namespace q3

#endif
