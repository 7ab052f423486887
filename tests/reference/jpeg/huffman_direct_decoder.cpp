#include <deque>

#include "reference/bits.h"
#include "reference/jpeg/huffman.h"

namespace model {
namespace {

enum class Found { symbol, nothingLeft, noCode };

int signedValue(int magnitude, int size)
{
    return size > 0 && magnitude < 1 << (size - 1) ? magnitude - (1 << size) + 1 : magnitude;
}

// Bits in the order of the stream. Those that are asked for beyond the last count as 0, and make `count` negative.
class Bits {
public:
    explicit Bits(const DirectInput& in)
        : bytes(in.bytes), position(static_cast<size_t>(in.bitPosition / 8)), marker(in.marker)
    {
        for (int i = in.numPrefetched - 1; i >= 0; --i) held_.push_back(i < 32 ? in.prefetched >> i & 1 : 0);
    }
    int count() const { return static_cast<int>(held_.size()) - missing_; }
    int peek(int n) const
    {
        int v = 0;
        for (size_t i = 0; i < static_cast<size_t>(n); ++i) v = 2 * v + (i < held_.size() ? held_[i] : 0);
        return v;
    }
    int take(int n)
    {
        const int v = peek(n);
        for (; n > 0; --n) {
            if (held_.empty())
                ++missing_;
            else
                held_.pop_front();
        }
        return v;
    }
    void push(int byte)
    {
        for (int i = 7; i >= 0; --i) held_.push_back(byte >> i & 1);
    }
    void clear() { held_.clear(); }
    // As the caller gets to see it.
    void store(DirectInput& in) const
    {
        in.bitPosition = static_cast<int>(8 * position);
        in.numPrefetched = static_cast<int>(held_.size());
        in.prefetched = 0;
        for (const int bit : held_) in.prefetched = in.prefetched << 1 | static_cast<uint32_t>(bit);
    }

    const uint8_t* bytes;
    size_t position;
    int marker;

private:
    std::deque<int> held_;
    int missing_ = 0;
};

class BlockReader {
public:
    explicit BlockReader(const DirectInput& in) : bits_(in) {}

    VekStatus decode(DirectInput& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                     const DecodeTable& ac)
    {
        block.fill(0);
        const Found found = symbol(dc);
        in.marker = bits_.marker;
        if (found == Found::nothingLeft)
            return vekStsOk;
        const VekStatus status = found == Found::noCode ? VekStatus{vekStsJpegMarkerShort} : rest(block, lastDc, ac);
        in.marker = bits_.marker;
        bits_.store(in);
        return status;
    }

private:
    VekStatus rest(std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& ac)
    {
        int v = 0;
        if (!value(symbol_ & 15, v))
            return vekStsJpegOutOfBuffer;
        lastDc = wrap16(lastDc + v);
        block[0] = lastDc;
        for (int k = 1; k < 64;) {
            const Found found = symbol(ac);
            if (found == Found::nothingLeft) {
                bits_.clear();
                return vekStsOk;
            }
            if (found == Found::noCode)
                return vekStsJpegMarkerShort;
            const int run = symbol_ / 16;
            const int size = symbol_ % 16;
            if (size == 0 && run < 15)
                return vekStsOk;
            if (size == 0) {
                k += 16;
                continue;
            }
            if (!value(size, v))
                return vekStsJpegOutOfBuffer;
            k += run;
            if (k > 71)
                return vekStsJpegCoefOverrun;
            block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])] = static_cast<int16_t>(v);
            ++k;
        }
        return vekStsOk;
    }
    void refill()
    {
        while (bits_.marker == 0 && bits_.count() < 25) {
            const int byte = bits_.bytes[bits_.position++];
            if (byte != 0xFF) {
                bits_.push(byte);
                continue;
            }
            int next = bits_.bytes[bits_.position++];
            while (next == 0xFF) next = bits_.bytes[bits_.position++];
            if (next == 0)
                bits_.push(0xFF);
            else
                bits_.marker = next;
        }
    }
    Found symbol(const DecodeTable& table)
    {
        if (bits_.count() < 8)
            refill();
        if (bits_.count() <= 0)
            return Found::nothingLeft;
        const uint32_t entry = table.lookup[static_cast<size_t>(bits_.peek(8))];
        if (entry >> 16 > 0) {
            bits_.take(static_cast<int>(entry >> 16));
            symbol_ = static_cast<int>(entry & 0xFFFF);
            return Found::symbol;
        }
        if (bits_.count() < 9)
            refill();
        if (bits_.count() < 9)
            return Found::nothingLeft;
        int code = bits_.take(9);
        for (size_t length = 9;; ++length) {
            if (table.maxCode[length] != 0xFFFF && code <= table.maxCode[length]) {
                const int index = table.valPtr[length] + code - table.minCode[length];
                symbol_ = table.symbols[static_cast<size_t>(index) % 256];
                return Found::symbol;
            }
            if (length == 16)
                return Found::noCode;
            if (bits_.count() < 1)
                refill();
            if (bits_.count() < 1)
                return Found::nothingLeft;
            code = 2 * code + bits_.take(1);
        }
    }
    // False if a marker left no bit for it.
    bool value(int size, int& v)
    {
        v = 0;
        if (size == 0)
            return true;
        if (bits_.count() < size)
            refill();
        if (bits_.count() < 1)
            return false;
        v = signedValue(bits_.take(size), size);
        return true;
    }

    Bits bits_;
    int symbol_ = 0;
};

}  // namespace

VekStatus decodeDirect(DirectInput& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                       const DecodeTable& ac)
{
    return BlockReader(in).decode(in, block, lastDc, dc, ac);
}

}  // namespace model
