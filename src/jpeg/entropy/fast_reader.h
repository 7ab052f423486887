// The bit reader of the sequential decoder's fast path.
#ifndef VEK_JPEG_ENTROPY_FAST_READER_H
#define VEK_JPEG_ENTROPY_FAST_READER_H

#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"

namespace q3 {

// Parts of a lookup entry.
inline int codeLength(uint32_t entry) { return static_cast<int>(entry >> 16); }
inline int runOf(uint32_t entry) { return static_cast<int>(entry >> 4 & 15); }
inline int sizeOf(uint32_t entry) { return static_cast<int>(entry & 15); }

// A 64-bit accumulator whose oldest bit is bit 63; zeros follow its `count_` bits. It gives up, by returning false,
// at a marker, a missing code, or fewer than eight bytes ahead of a refill.
class FastReader {
public:
    FastReader(const uint8_t* p, const uint8_t* end, const VekDecodeHuffmanState& state)
        : p_(p),
          end_(end),
          count_(state.numBits),
          bits_(state.numBits == 0 ? 0 : static_cast<uint64_t>(state.bitBuffer) << (64 - state.numBits))
    {
    }

    // The entry of the next symbol, also of one with a longer code than entries are stored for.
    bool symbol(const VekDecodeHuffmanSpec& table, uint32_t& entry)
    {
        if (count_ < 8 && !refill()) [[unlikely]]
            return false;
        entry = table.lookup[bits_ >> 56];
        // Size 0 is the rarer kind: one test on the usual way.
        return sizeOf(entry) != 0 || entry != 0 || longSymbol(table, entry);
    }

    // A value of 1 to 15 bits.
    bool value(int size, int& v)
    {
        if (count_ < size && !refill()) [[unlikely]]
            return false;
        // A clear top bit stands for a negative value.
        const int64_t positive = static_cast<int64_t>(bits_) >> 63;
        v = static_cast<int>(bits_ >> (64 - size)) +
            static_cast<int>(~positive & own_jc_lowest_coef[static_cast<size_t>(size)]);
        drop(size);
        return true;
    }

    void drop(int n)
    {
        bits_ <<= n;
        count_ -= n;
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
    static constexpr int refillBytes = 8;

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

    bool longSymbol(const VekDecodeHuffmanSpec& table, uint32_t& entry)
    {
        if (count_ < 16 && !refill())
            return false;
        for (int length = 9; length <= 16; ++length) {
            const int code = static_cast<int>(bits_ >> (64 - length));
            if (code <= lastCode(table, length)) {
                entry = static_cast<uint32_t>(length << 16 | symbolOf(table, length, code));
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

}  // namespace q3

#endif
