// The bit reader of the sequential decoders' fast paths.
#ifndef VEK_JPEG_ENTROPY_FAST_READER_H
#define VEK_JPEG_ENTROPY_FAST_READER_H

#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"

namespace q3 {

// Parts of a lookup entry.
inline int codeLength(uint32_t entry) { return static_cast<int>(entry >> 16); }
inline int runOf(uint32_t entry) { return static_cast<int>(entry >> 4 & 15); }
inline int sizeOf(uint32_t entry) { return static_cast<int>(entry & 15); }

// `count` bits read ahead, the oldest at bit 63. Behind them may already lie some of those that come next, so that the
// refill that brings them ORs what is there.
struct Accumulator {
    uint64_t bits;
    int count;
};

// What a block leaves for the next: `count` bits, the newest being bit 0, that are ahead of the bytes at `position`.
struct ReadAhead {
    uint64_t bits;
    int count;
    const uint8_t* position;
};

// Bytes one by one, without their stuffing, until there are more than 24 bits. False at a marker.
inline bool refillBytewise(const uint8_t*& p, Accumulator& held)
{
    while (held.count <= 24) {
        const uint64_t byte = *p++;
        if (byte == 0xFF && *p++ != 0)
            return false;
        held.bits |= byte << (56 - held.count);
        held.count += 8;
    }
    return true;
}

// The refill of a source that ends at `end`: as many bytes as fit if none of the next eight is 0xFF. False also where
// fewer than eight are left.
struct RefillToEnd {
    static constexpr int beforeLongCode = 16;  // bits that are there before a code of 9 bits or more is searched
    const uint8_t* end;

    bool operator()(const uint8_t*& p, Accumulator& held) const
    {
        if (end - p < 8)
            return false;
        const uint64_t next = loadBigEndian64(p);
        if (hasByteFF(next)) [[unlikely]]
            return refillBytewise(p, held);
        const int taken = 64 - ((held.count + 7) & ~7);
        held.bits |= next >> held.count;
        held.count += taken;
        p += taken / 8;
        return true;
    }
};

// The refill of a source that a marker ends, of 14 bits at most to 25 to 32. As long as the marker is ahead two bytes
// are there, and if neither of them is 0xFF two more.
struct RefillToMarker {
    static constexpr int beforeLongCode = 9;

    bool operator()(const uint8_t*& p, Accumulator& held) const
    {
        const uint32_t first = loadBigEndian16(p);
        if (hasByteFF(first)) [[unlikely]]
            return refillBytewise(p, held);
        const uint32_t next = first << 16 | loadBigEndian16(p + 2);
        if (hasByteFF(next)) [[unlikely]]
            return refillBytewise(p, held);
        const int taken = (32 - held.count) & ~7;
        held.bits |= uint64_t{next} << 32 >> held.count;
        held.count += taken;
        p += taken / 8;
        return true;
    }
};

// Gives up, by returning false, where its refill does and at a missing code.
template <typename Refill>
class FastReader {
public:
    // `numBits` bits of the buffer, at most 32, are ahead of the bytes at p.
    FastReader(const uint8_t* p, Refill refill, uint64_t bitBuffer, int numBits)
        : p_(p), refill_(refill), held_{numBits == 0 ? 0 : bitBuffer << (64 - numBits), numBits}
    {
    }

    FastReader(const uint8_t* p, Refill refill, Accumulator held) : p_(p), refill_(refill), held_(held) {}

    // The entry of the next symbol, also of one with a longer code than entries are stored for.
    bool symbol(const VekDecodeHuffmanSpec& table, uint32_t& entry)
    {
        if (held_.count < 8 && !refill_(p_, held_)) [[unlikely]]
            return false;
        entry = table.lookup[held_.bits >> 56];
        // Size 0 is the rarer kind: one test on the usual way.
        return sizeOf(entry) != 0 || entry != 0 || longSymbol(table, entry);
    }

    // A value of 1 to 15 bits.
    bool value(int size, int& v)
    {
        if (held_.count < size && !refill_(p_, held_)) [[unlikely]]
            return false;
        // A clear top bit stands for a negative value.
        const int64_t positive = static_cast<int64_t>(held_.bits) >> 63;
        v = static_cast<int>(held_.bits >> (64 - size)) +
            static_cast<int>(~positive & own_jc_lowest_coef[static_cast<size_t>(size)]);
        drop(size);
        return true;
    }

    void drop(int n)
    {
        held_.bits <<= n;
        held_.count -= n;
    }

    // Behind a block: the newest whole bytes above 32 bits go back to the stream.
    ReadAhead readAhead() const
    {
        const int surplus = held_.count < 32 ? 0 : ((held_.count + 7) & ~7) - 32;
        const int count = held_.count - surplus;
        return {count == 0 ? 0 : held_.bits >> (64 - count), count, p_ - surplus / 8};
    }

private:
    bool longSymbol(const VekDecodeHuffmanSpec& table, uint32_t& entry)
    {
        if (held_.count < Refill::beforeLongCode && !refill_(p_, held_))
            return false;
        for (int length = 9; length <= 16; ++length) {
            if (length > held_.count && !refillAsIfEmpty())
                return false;
            const int code = static_cast<int>(held_.bits >> (64 - length));
            if (code <= lastCode(table, length)) {
                entry = static_cast<uint32_t>(length << 16 | symbolOf(table, length, code));
                return true;
            }
        }
        return false;
    }

    bool refillAsIfEmpty()
    {
        Accumulator more = {0, 0};
        if (!refill_(p_, more))
            return false;
        held_.bits |= more.bits >> held_.count;
        held_.count += more.count;
        return true;
    }

    const uint8_t* p_;
    Refill refill_;
    Accumulator held_;
};

}  // namespace q3

#endif
