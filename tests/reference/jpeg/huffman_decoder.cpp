#include "reference/bits.h"
#include "reference/jpeg/huffman.h"

namespace model {
namespace {

// `count` bits below bit `numBits` of the buffer; bits that are not there are 0.
int bitsOf(uint64_t buffer, int numBits, int count)
{
    int v = 0;
    for (int i = 1; i <= count; ++i) {
        const int at = numBits - i;
        v = v * 2 + (at >= 0 && at < 64 ? static_cast<int>(buffer >> at & 1) : 0);
    }
    return v;
}

int extend(int v, int count) { return v < 1 << (count - 1) ? v - (1 << count) + 1 : v; }

}  // namespace

VekStatus refill(Input& in, DecoderState& s, int needed)
{
    if (in.marker != 0)
        return needed > s.numBits ? vekStsJpegMarkerShort : vekStsOk;
    while (s.numBits < 25) {
        if (in.position >= in.length)
            return needed > s.numBits ? vekStsJpegOutOfBuffer : vekStsOk;
        int c = in.bytes[in.position++];
        if (c == 0xFF) {
            int next = 0xFF;
            while (next == 0xFF) {
                if (in.position >= in.length)
                    return vekStsJpegOutOfBuffer;
                next = in.bytes[in.position++];
            }
            if (next != 0) {
                in.marker = next;
                return vekStsOk;
            }
        }
        s.buffer = (s.buffer << 8 | static_cast<uint64_t>(c)) & 0xFFFFFFFF;
        s.numBits += 8;
    }
    return vekStsOk;
}

VekStatus decodeSymbol(Input& in, DecoderState& s, const DecodeTable& table, int& symbol)
{
    int length = 9;
    if (s.numBits < 8) {
        const VekStatus status = refill(in, s, 0);
        if (status != vekStsOk)
            return status;
        if (s.numBits < 8)
            length = 1;
    }
    if (length == 9) {
        const uint32_t entry = table.lookup[static_cast<size_t>(bitsOf(s.buffer, s.numBits, 8))];
        if (entry >> 16 != 0) {
            s.numBits -= static_cast<int>(entry >> 16);
            symbol = static_cast<int>(entry & 0xFFFF);
            return vekStsOk;
        }
    }
    if (s.numBits < length) {
        const VekStatus status = refill(in, s, length);
        if (status != vekStsOk)
            return status;
    }
    int code = bitsOf(s.buffer, s.numBits, length);
    s.numBits -= length;
    for (; length <= 16; ++length) {
        const auto l = static_cast<size_t>(length);
        const int last = table.maxCode[l] == 0xFFFF ? -1 : table.maxCode[l];
        if (s.numBits >= 0 && code <= last) {
            symbol = table.symbols[static_cast<size_t>(table.valPtr[l] - table.minCode[l] + code) & 0xFF];
            return vekStsOk;
        }
        if (s.numBits < 1) {
            const VekStatus status = refill(in, s, 1);
            if (status != vekStsOk)
                return status;
            if (s.numBits < 1)
                return vekStsJpegMarkerShort;
        }
        code = code * 2 + bitsOf(s.buffer, s.numBits, 1);
        --s.numBits;
    }
    return vekStsJpegMarkerShort;
}

VekStatus readValue(Input& in, DecoderState& s, int count, int& v)
{
    if (s.numBits < count) {
        const VekStatus status = refill(in, s, count);
        if (status != vekStsOk)
            return status;
    }
    v = extend(bitsOf(s.buffer, s.numBits, count), count);
    s.numBits -= count;
    return vekStsOk;
}

namespace {

VekStatus decodeCarefully(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                          const DecodeTable& ac, DecoderState& s)
{
    block.fill(0);
    int symbol = 0;
    int v = 0;
    VekStatus status = decodeSymbol(in, s, dc, symbol);
    if (status == vekStsOk && symbol % 16 != 0) {
        status = readValue(in, s, symbol % 16, v);
        if (status == vekStsOk)
            lastDc = wrap16(lastDc + v);
    }
    if (status != vekStsOk) {
        s.endOfBlockPos = 0;
        return status;
    }
    block[0] = lastDc;
    int left = 63;
    int k = 1;
    while (left > 0) {
        status = decodeSymbol(in, s, ac, symbol);
        if (status != vekStsOk)
            break;
        const int r = symbol / 16;
        const int size = symbol % 16;
        if (size == 0) {
            if (r < 15)
                break;
            left -= 16;
            k += 16;
            continue;
        }
        left -= r + 1;
        k += r;
        status = readValue(in, s, size, v);
        if (status != vekStsOk)
            break;
        if (k >= 72)
            return vekStsJpegCoefOverrun;
        block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])] = static_cast<int16_t>(v);
        ++k;
    }
    s.endOfBlockPos = 64 - left;
    return status;
}

// The fast path on plain bits: `bits` holds them oldest first. Its refills decide how far the position runs ahead.
class FastPath {
public:
    FastPath(const Input& in, const DecoderState& s) : in_(in), position_(in.position)
    {
        for (int i = s.numBits - 1; i >= 0; --i) bits_.push_back(s.buffer >> i & 1);
    }

    bool symbol(const DecodeTable& table, int& symbol)
    {
        if (available() < 8 && !refill())
            return false;
        const uint32_t entry = table.lookup[static_cast<size_t>(peek(8))];
        if (entry != 0) {
            taken_ += entry >> 16;
            symbol = static_cast<int>(entry & 0xFFFF);
            return true;
        }
        if (available() < 16 && !refill())
            return false;
        for (size_t l = 9; l <= 16; ++l) {
            const int code = peek(static_cast<int>(l));
            if (table.maxCode[l] != 0xFFFF && code <= table.maxCode[l]) {
                taken_ += l;
                symbol = table.symbols[static_cast<size_t>(table.valPtr[l] - table.minCode[l] + code) & 0xFF];
                return true;
            }
        }
        return false;
    }
    bool value(int count, int& v)
    {
        if (available() < count && !refill())
            return false;
        v = extend(peek(count), count);
        taken_ += static_cast<size_t>(count);
        return true;
    }
    void finish(Input& in, DecoderState& s)
    {
        int count = available();
        if (count >= 32) {
            const int surplus = (count + 7) / 8 * 8 - 32;
            position_ -= surplus / 8;
            count -= surplus;
        }
        in.position = position_;
        s.numBits = count;
        s.buffer = 0;
        for (int i = 0; i < count; ++i) s.buffer = s.buffer << 1 | bits_[taken_ + static_cast<size_t>(i)];
    }

private:
    int available() const { return static_cast<int>(bits_.size() - taken_); }
    int peek(int count) const
    {
        int v = 0;
        for (int i = 0; i < count; ++i) v = v * 2 + bits_[taken_ + static_cast<size_t>(i)];
        return v;
    }
    void push(int byte)
    {
        for (int i = 7; i >= 0; --i) bits_.push_back(byte >> i & 1);
    }
    bool refill()
    {
        if (in_.length - position_ < 8)
            return false;
        bool stuffed = false;
        for (int i = 0; i < 8; ++i) stuffed = stuffed || in_.bytes[position_ + i] == 0xFF;
        if (!stuffed) {
            const int bytes = (64 - (available() + 7) / 8 * 8) / 8;
            for (int i = 0; i < bytes; ++i) push(in_.bytes[position_++]);
            return true;
        }
        while (available() <= 24) {
            const int byte = in_.bytes[position_++];
            if (byte == 0xFF && in_.bytes[position_++] != 0)
                return false;
            push(byte);
        }
        return true;
    }

    const Input& in_;
    int position_;
    std::vector<uint8_t> bits_;
    size_t taken_ = 0;
};

bool decodeFast(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                const DecodeTable& ac, DecoderState& s)
{
    if (in.marker != 0 || in.length - in.position < 24)
        return false;
    FastPath path(in, s);
    block.fill(0);
    int symbol = 0;
    int v = 0;
    if (!path.symbol(dc, symbol))
        return false;
    if (symbol % 16 != 0 && !path.value(symbol % 16, v))
        return false;
    const int16_t newDc = wrap16(lastDc + v);
    block[0] = newDc;
    int k = 1;
    while (k < 64) {
        if (!path.symbol(ac, symbol))
            return false;
        if (symbol % 16 == 0) {
            if (symbol < 0xF0)
                break;
            k += 16;
            continue;
        }
        k += symbol / 16;
        if (k > 63)
            return false;
        if (!path.value(symbol % 16, v))
            return false;
        block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])] = static_cast<int16_t>(v);
        ++k;
    }
    lastDc = newDc;
    path.finish(in, s);
    s.endOfBlockPos = k;
    return true;
}

}  // namespace

VekStatus decodeBlock(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                      const DecodeTable& ac, DecoderState& state)
{
    if (decodeFast(in, block, lastDc, dc, ac, state))
        return vekStsOk;
    return decodeCarefully(in, block, lastDc, dc, ac, state);
}

}  // namespace model
