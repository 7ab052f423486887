// The bit reader of the sequential decoder where no 0xFF is near: it takes no branch on how many bits are in hand.
#ifndef VEK_JPEG_ENTROPY_STRETCH_READER_H
#define VEK_JPEG_ENTROPY_STRETCH_READER_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/vec.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/fast_reader.h"

namespace q3 {

// Bytes from p on up to the first 0xFF, at most bytesLookedAt.
constexpr int bytesLookedAt = 64;
inline uint64_t bytesBeforeFF(const uint8_t* p)
{
    const __m256i ff = _mm256_set1_epi8(-1);
    const auto low = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(loadU(p), ff)));
    const auto high = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(loadU(p + 32), ff)));
    return _tzcnt_u64(uint64_t{high} << 32 | low);
}

// What the reader looks up, so as not to branch, in one object, so that one register points to it all.
constexpr uint64_t mostTabledBits = 8;
struct StretchTables {
    std::array<uint8_t, 64 + 1> refilled;  // by offset before a symbol: that after the refill, if it needs one
    std::array<uint32_t, mostTabledBits + 1> powers;  // of 2
    std::array<int16_t, 2 << mostTabledBits> values;  // by the bits of a value behind a 1
    std::array<uint8_t, 16 * 80> positions;           // by 16 k: place of coefficient k; 64 beyond the block
};
alignas(64) constexpr StretchTables stretchTables = [] {
    StretchTables t{};
    for (size_t i = 0; i < t.refilled.size(); ++i) t.refilled[i] = static_cast<uint8_t>(i > 56 ? i % 8 : i);
    for (size_t i = 0; i < t.powers.size(); ++i) t.powers[i] = 1U << i;
    for (size_t i = 2; i < t.values.size(); ++i) {
        const int size = static_cast<int>(std::bit_width(i)) - 1;
        t.values[i] = static_cast<int16_t>(extendMagnitude(static_cast<int>(i) - (1 << size), size));
    }
    for (size_t k = 0; k < 80; ++k) t.positions[16 * k] = k < 64 ? zigzagPositions[k] : 64;
    return t;
}();
static_assert(stretchTables.values[0b10] == -1 && stretchTables.values[0b11] == 1 &&
              stretchTables.values[0b100000000] == -255 && stretchTables.values[0b101111111] == -128 &&
              stretchTables.values[0b110000000] == 128);

// Bits are addressed by 8 times the address of their byte plus their place in it. What counts as read ahead, and is
// left for the next block, goes by the fast path's refills: each opens a window of 64 bits at a byte's first bit; one
// comes before a symbol if fewer than 8 bits of the window are left, and before a value if fewer than its own are. All
// that is kept of it is the place in the window. The bits themselves are loaded before every symbol.
class StretchReader {
public:
    static constexpr uint64_t mostBytesTouched = 16;  // ahead, by the loads that a symbol and its value need
    static constexpr int fewestBits = 8;

    // numBits bits of the buffer, fewestBits to 32, are ahead of p. Of the bytes from p on, as many as told hold no
    // 0xFF, more than mostBytesTouched.
    StretchReader(const uint8_t* p, uint64_t bytesWithoutFF, uint64_t bitBuffer, int numBits)
        : bits_(bitBuffer << (64 - numBits)),
          offset_(64 - static_cast<uint64_t>(numBits)),
          toLoad_(reinterpret_cast<uint64_t>(p) * 8),
          at_(toLoad_ - static_cast<uint64_t>(numBits)),
          last_(toLoad_ + 8 * (bytesWithoutFF - mostBytesTouched))
    {
    }

    // Whether another symbol and its value may be read.
    bool lasts() const { return at_ <= last_; }

    struct Symbol {
        uint64_t length;  // of its code
        uint64_t symbol;
    };
    // Length 0 if the code has more than 8 bits.
    [[gnu::always_inline]] Symbol symbol(const VekDecodeHuffmanSpec& table)
    {
        const auto* const lookup = reinterpret_cast<const uint8_t*>(table.lookup);
        const uint64_t index = bits_ >> 56;  // there before the load
        bits_ |= loadBigEndian64(bytes(toLoad_)) >> (toLoad_ - at_);
        toLoad_ = (at_ + 63) & ~uint64_t{7};
        offset_ = stretchTables.refilled[offset_];
        // Loads of their own: the next symbol waits for the length.
        return {loadScalar<uint16_t>(lookup + 4 * index + 2), lookup[4 * index]};
    }
    // The same of a longer code. Length 17 if there is none.
    Symbol longSymbol(const VekDecodeHuffmanSpec& table)
    {
        refillFor(16);
        for (int length = 9; length <= 16; ++length) {
            const auto code = static_cast<int>(bits_ >> (64 - length));
            if (code <= lastCode(table, length))
                return {static_cast<uint64_t>(length), static_cast<uint8_t>(symbolOf(table, length, code))};
        }
        return {17, 0};
    }

    void drop(uint64_t n)
    {
        bits_ <<= n;
        at_ += n;
        offset_ += n;
    }

    // A value of 0 to 15 bits.
    int value(uint64_t size)
    {
        refillFor(size);
        const int64_t positive = static_cast<int64_t>(bits_) >> 63;
        const auto v = static_cast<int>(bits_ >> 1 >> (63 - size));
        drop(size);
        return v + static_cast<int>(~positive & own_jc_lowest_coef[size]);
    }

    // A value of 1 to mostTabledBits bits behind a code.
    [[gnu::always_inline]] int16_t valueBehind(uint64_t length, uint64_t size)
    {
        const uint64_t bits = bits_ << length;
        bits_ = bits << size;
        at_ += length + size;
        offset_ += length + size;
        if (offset_ > 64) [[unlikely]]  // refilled behind the code
            offset_ = (offset_ - size) % 8 + size;
        return stretchTables.values[(bits >> (64 - size)) + stretchTables.powers[size]];
    }

    // Where coefficient k lies in the block, by 16 k; 64 beyond its end.
    static uint64_t place(uint64_t k16) { return stretchTables.positions[k16]; }

    // What is read ahead within a block, and where in the stream that ends.
    Accumulator held() const
    {
        return {bits_ | loadBigEndian64(bytes(toLoad_)) >> (toLoad_ - at_), static_cast<int>(64 - offset_)};
    }
    const uint8_t* position() const { return bytes(at_ + 64 - offset_); }

    // Behind a block: the newest whole bytes above 32 bits go back to the stream.
    ReadAhead readAhead() const
    {
        const uint64_t count = std::min(64 - offset_, 32 - offset_ % 8);
        return {bits_ >> 1 >> (63 - count), static_cast<int>(count), bytes(at_ + count)};
    }

private:
    static const uint8_t* bytes(uint64_t address) { return reinterpret_cast<const uint8_t*>(address / 8); }

    void refillFor(uint64_t n)
    {
        if (offset_ + n > 64) [[unlikely]]
            offset_ %= 8;
    }

    uint64_t bits_;    // the next is bit 63; all 64 of them after a load
    uint64_t offset_;  // of the next bit in the window
    uint64_t toLoad_;  // address of the first byte of the next load
    uint64_t at_;      // address of the next bit
    uint64_t last_;    // where a symbol may begin at most
};

}  // namespace q3

#endif
