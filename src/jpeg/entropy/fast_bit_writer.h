// The bit writer of the sequential coders' fast ways into a segment: a 64-bit accumulator, right-aligned, that goes out
// when the next code does not fit.
#ifndef VEK_JPEG_ENTROPY_FAST_BIT_WRITER_H
#define VEK_JPEG_ENTROPY_FAST_BIT_WRITER_H

#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/magnitude.h"

namespace q3 {

// Writes from `begin` on, and nothing at or behind `end`. It does not stop at a full destination or at a missing code:
// these are told by full() and missesCode() in the end, and then only bytes behind the beginning have changed. A symbol
// without a code adds no bits.
class FastBitWriter {
public:
    FastBitWriter(uint8_t* begin, uint8_t* end, uint32_t pending, int numPending)
        : p_(begin), end_(end), bits_(pending), count_(static_cast<uint32_t>(numPending))
    {
    }
    // Goes on with the bits that a state holds.
    FastBitWriter(uint8_t* begin, uint8_t* end, const VekEncodeHuffmanState& state)
        : FastBitWriter(begin, end, (static_cast<uint32_t>(state.bitBuffer) & 0xFFFFFF) >> (24 - state.numBits),
                        state.numBits)
    {
    }

    // A code and the magnitude bits behind it: at most 32 bits.
    [[gnu::always_inline]] void put(uint32_t entry, Magnitude magnitude)
    {
        borrows_ |= entry - 1;
        const uint32_t length = (entry >> 16) + magnitude.category;
        if (count_ + length > 64) [[unlikely]]
            storeWholeBytes();
        bits_ = bits_ << length | uint64_t{entry & 0xFFFF} << magnitude.category | magnitude.bits;
        count_ += length;
    }

    // Leaves at most 7 bits.
    [[gnu::always_inline]] void settle()
    {
        if (count_ >= 8)
            storeWholeBytes();
    }

    // What is left once it has settled.
    uint32_t pending() const { return static_cast<uint32_t>(bits_) & ((1U << count_) - 1); }
    int numPending() const { return static_cast<int>(count_); }
    void keep(VekEncodeHuffmanState* pState) const
    {
        pState->bitBuffer = pending() << (24 - numPending());
        pState->numBits = numPending();
    }

    uint8_t* position() const { return p_; }
    bool full() const { return full_; }
    bool missesCode() const { return (borrows_ >> 31) != 0; }

private:
    // At least one.
    [[gnu::always_inline]] void storeWholeBytes()
    {
        const uint64_t aligned = bits_ << (64 - count_);
        const bool plain = !hasByteFF(aligned);
        if (end_ - p_ < (plain ? 8 : 16)) [[unlikely]] {  // eight bytes, each of which may want a stuffed one
            full_ = true;
        } else if (plain) [[likely]] {
            storeBigEndian64(p_, aligned);
            p_ += count_ / 8;
        } else {
            p_ = storeStuffed(p_, aligned, count_ / 8);
        }
        count_ &= 7;
    }

    // The first bytes of `aligned`, with a zero byte behind each 0xFF. Returns where they end.
    [[gnu::noinline]] static uint8_t* storeStuffed(uint8_t* p, uint64_t aligned, uint32_t bytes)
    {
        for (; bytes > 0; --bytes, aligned <<= 8) {
            const auto byte = static_cast<uint8_t>(aligned >> 56);
            *p++ = byte;
            if (byte == 0xFF)
                *p++ = 0;
        }
        return p;
    }

    uint8_t* p_;
    uint8_t* end_;
    uint64_t bits_;
    uint32_t count_;
    bool full_ = false;
    uint32_t borrows_ = 0;  // bit 31 is set by an entry of 0
};

}  // namespace q3

#endif
