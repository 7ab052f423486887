// The fast way of a block into a segment: a 64-bit accumulator, right-aligned, that goes out when the next code does
// not fit.
#ifndef VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H
#define VEK_JPEG_ENTROPY_FAST_BLOCK_WRITER_H

#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/huffman_tables.h"
#include "jpeg/entropy/magnitude.h"

namespace q3 {

constexpr int zeroRunLength = 0xF0;  // sixteen zeros
constexpr int endOfBlock = 0;

// The code of an AC symbol. Category 16 borders on the next run's symbols; behind the longest run there is nothing.
inline uint32_t acEntry(const VekEncodeHuffmanSpec& table, int run, int category)
{
    const int symbol = (run << 4) + category;
    return symbol < 256 ? table.codes[symbol] : 0;
}

// Writes from `begin` on, and nothing at or behind `end`. It does not stop at a full destination or at a missing code:
// these are told by full() and missesCode() in the end, and then only bytes behind the beginning have changed. A symbol
// without a code adds no bits.
class FastBlockWriter {
public:
    FastBlockWriter(uint8_t* begin, uint8_t* end, uint32_t pending, int numPending)
        : p_(begin), end_(end), bits_(pending), count_(numPending)
    {
    }

    void encode(const int16_t* pSrc, int diff, const VekEncodeHuffmanSpec& dcTable, const VekEncodeHuffmanSpec& acTable)
    {
        put(dcTable.codes[categoryOf(diff)], diff, categoryOf(diff));
        uint64_t mask = nonZeroInZigzag(pSrc) & ~uint64_t{1};
        int last = 0;
        while (mask != 0) {
            const int k = std::countr_zero(mask);
            mask &= mask - 1;
            int run = k - last - 1;
            last = k;
            for (; run > 15; run -= 16) [[unlikely]] put(acTable.codes[zeroRunLength], 0, 0);
            const int v = pSrc[own_jc_izigzag_index[static_cast<size_t>(k)]];
            const int category = categoryOf(v);
            put(acEntry(acTable, run, category), v, category);
        }
        if (last != 63)
            put(acTable.codes[endOfBlock], 0, 0);
        storeWholeBytes();
    }

    uint8_t* position() const { return p_; }
    uint32_t pending() const { return static_cast<uint32_t>(bits_) & ((1U << count_) - 1); }
    int numPending() const { return count_; }  // at most 7
    bool full() const { return full_; }
    bool missesCode() const { return missesCode_; }

private:
    // A code and the magnitude bits of v behind it: at most 32 bits.
    void put(uint32_t entry, int v, int category)
    {
        const int codeLength = static_cast<int>(entry >> 16);
        missesCode_ |= codeLength == 0;
        const int length = codeLength + category;
        if (count_ + length > 64) [[unlikely]]
            storeWholeBytes();
        const uint64_t magnitude = magnitudeBits(v) & ((1U << category) - 1);
        bits_ = bits_ << length | uint64_t{entry & 0xFFFF} << category | magnitude;
        count_ += length;
    }

    void storeWholeBytes()
    {
        if (count_ < 8)
            return;
        const uint64_t aligned = bits_ << (64 - count_);
        const bool plain = !hasByteFF(aligned);
        if (end_ - p_ < (plain ? 8 : 16)) {  // eight bytes, each of which may want a stuffed one
            full_ = true;
            count_ &= 7;
        } else if (plain) {
            storeBigEndian64(p_, aligned);
            p_ += count_ / 8;
            count_ &= 7;
        } else {
            for (; count_ >= 8; count_ -= 8) {
                const auto byte = static_cast<uint8_t>(bits_ >> (count_ - 8));
                *p_++ = byte;
                if (byte == 0xFF)
                    *p_++ = 0;
            }
        }
    }

    uint8_t* p_;
    uint8_t* end_;
    uint64_t bits_;
    int count_;
    bool full_ = false;
    bool missesCode_ = false;
};

}  // namespace q3

#endif
