// The bit writer of the sequential coders' fast ways into a segment: a 64-bit accumulator, right-aligned, that goes out
// when the next code fills it.
#ifndef VEK_JPEG_ENTROPY_FAST_BIT_WRITER_H
#define VEK_JPEG_ENTROPY_FAST_BIT_WRITER_H

#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/magnitude.h"

namespace q3 {

// Writes from `begin` on, and nothing at or behind `end`. It does not stop at a full destination: this is told by
// full() in the end, and then only bytes behind the beginning have changed.
class FastBitWriter {
public:
    FastBitWriter(uint8_t* begin, uint8_t* end, uint32_t pending, int numPending)
        : p_(begin), end_(end), bits_(pending), free_(64 - numPending)
    {
    }
    // Goes on with the bits that a state holds.
    FastBitWriter(uint8_t* begin, uint8_t* end, const VekEncodeHuffmanState& state)
        : FastBitWriter(begin, end, (static_cast<uint32_t>(state.bitBuffer) & 0xFFFFFF) >> (24 - state.numBits),
                        state.numBits)
    {
    }

    // A code, of a table's entry, and the magnitude bits behind it: at most 32 bits. Of the code only its length's
    // lowest bits count, so an entry of 0 adds none.
    [[gnu::always_inline]] void put(uint32_t entry, Magnitude magnitude)
    {
        put(_bzhi_u32(entry, entry >> 16), entry >> 16, magnitude);
    }
    [[gnu::always_inline]] void put(uint32_t code, uint32_t codeLength, Magnitude magnitude)
    {
        const uint64_t value = uint64_t{code} << magnitude.category | magnitude.bits;
        const uint32_t length = codeLength + magnitude.category;
        free_ -= static_cast<int>(length);
        if (free_ < 0) [[unlikely]] {
            store(bits_ << (length + static_cast<uint32_t>(free_)) | value >> -free_, 8);
            free_ += 64;
            bits_ = value;  // the bits above the pending ones count for nothing
        } else {
            bits_ = bits_ << length | value;
        }
    }

    // Leaves at most 7 bits.
    [[gnu::always_inline]] void settle()
    {
        const uint32_t count = 64 - static_cast<uint32_t>(free_);
        store(bits_ << (static_cast<uint32_t>(free_) & 63), count / 8);
        free_ = 64 - static_cast<int>(count & 7);
    }

    // What is left once it has settled.
    uint32_t pending() const { return static_cast<uint32_t>(bits_) & ((1U << numPending()) - 1); }
    int numPending() const { return 64 - free_; }
    void keep(VekEncodeHuffmanState* pState) const
    {
        pState->bitBuffer = pending() << (24 - numPending());
        pState->numBits = numPending();
    }

    uint8_t* position() const { return p_; }
    bool full() const { return full_; }

private:
    // The first bytes of `aligned`.
    [[gnu::always_inline]] void store(uint64_t aligned, uint32_t bytes)
    {
        const bool plain = !hasByteFF(aligned);
        if (end_ - p_ < (plain ? 8 : 16)) [[unlikely]] {  // eight bytes, each of which may want a stuffed one
            full_ = true;
        } else if (plain) [[likely]] {
            storeBigEndian64(p_, aligned);
            p_ += bytes;
        } else {
            p_ = storeStuffed(p_, aligned, bytes);
        }
    }

    // Puts a zero byte behind each 0xFF. Returns where the bytes end.
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
    int free_;  // bits_ has room for so many more
    bool full_ = false;
};

}  // namespace q3

#endif
