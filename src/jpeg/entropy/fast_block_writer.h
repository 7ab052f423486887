// The fast way of a block into a segment.
#ifndef VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H
#define VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H

#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/encoder_symbols.h"
#include "jpeg/entropy/fast_bit_writer.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {

// The code of an AC symbol. Category 16 borders on the next run's symbols; behind the longest run there is nothing.
constexpr uint32_t noCode = 0;
inline const uint32_t& acEntry(const VekEncodeHuffmanSpec& table, size_t symbol)
{
    return symbol < 256 ? table.codes[symbol] : noCode;
}

enum class MissingCode : uint8_t { Stops, AddsNothing };

// A symbol's code and the magnitude bits behind it. False if there is no code, and that stops.
template <MissingCode missing>
[[gnu::always_inline]] inline bool putEntry(FastBitWriter& writer, const uint32_t& entry, Magnitude magnitude)
{
    const auto* const halves = reinterpret_cast<const uint8_t*>(&entry);  // code, length: two loads beat shift and mask
    const uint32_t length = loadScalar<uint16_t>(halves + 2);
    if (missing == MissingCode::Stops && length == 0) [[unlikely]]
        return false;
    writer.put(loadScalar<uint16_t>(halves), length, magnitude);
    return true;
}

// Whether no AC coefficient's magnitude is above largestSmall.
inline bool hasSmallCoefficients(const BlockVectors& block)
{
    static_assert(std::has_single_bit(static_cast<unsigned>(largestSmall) + 1));
    const __m256i ac = _mm256_setr_epi16(0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m256i upper =
        _mm256_or_si256(_mm256_and_si256(_mm256_abs_epi16(block.rows[0]), ac), _mm256_abs_epi16(block.rows[1]));
    const __m256i lower = _mm256_or_si256(_mm256_abs_epi16(block.rows[2]), _mm256_abs_epi16(block.rows[3]));
    return _mm256_testz_si256(_mm256_or_si256(upper, lower), _mm256_set1_epi16(~largestSmall)) != 0;
}

// The coefficients at the zig-zag positions of a mask, then the end of the block.
template <MissingCode missing, bool small>
[[gnu::always_inline]] inline bool putCoefficients(FastBitWriter& writer, const int16_t* pSrc, uint64_t mask,
                                                   const VekEncodeHuffmanSpec& table)
{
    uint64_t last = 0;
    while (mask != 0) {
        const auto k = static_cast<uint64_t>(std::countr_zero(mask));
        mask &= mask - 1;
        uint64_t distance = k - last;
        last = k;
        for (; distance > 16; distance -= 16)
            [[unlikely]] if (!putEntry<missing>(writer, table.codes[zeroRunLength], {})) return false;
        const auto v = loadScalar<int16_t>(pSrc + zigzagPositions[k]);
        const Magnitude magnitude = small ? smallMagnitudeOf(v) : magnitudeOf(v);
        const size_t symbol = 16 * distance - 16 + magnitude.category;
        if (!putEntry<missing>(writer, small ? table.codes[symbol] : acEntry(table, symbol), magnitude))
            return false;
    }
    return last == 63 || putEntry<missing>(writer, table.codes[endOfBlock], {});
}

template <MissingCode missing>
[[gnu::always_inline]] inline bool putBlock(FastBitWriter& writer, const int16_t* pSrc, int diff,
                                            const VekEncodeHuffmanSpec& dcTable, const VekEncodeHuffmanSpec& acTable)
{
    // First of all what the branches go by: the sooner it is known, the less a wrong guess costs.
    const BlockVectors block = loadBlock(pSrc);
    const uint64_t mask = nonZeroInZigzag(block) & ~uint64_t{1};
    const bool small = hasSmallCoefficients(block);
    const Magnitude magnitude = magnitudeOf(diff);
    if (!putEntry<missing>(writer, dcTable.codes[magnitude.category], magnitude))
        return false;
    const bool complete = small ? putCoefficients<missing, true>(writer, pSrc, mask, acTable)
                                : putCoefficients<missing, false>(writer, pSrc, mask, acTable);
    if (complete)
        writer.settle();
    return complete;
}

}  // namespace q3

#endif
