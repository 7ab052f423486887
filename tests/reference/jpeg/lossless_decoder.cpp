#include <algorithm>
#include <deque>

#include "reference/jpeg/lossless_rows.h"

namespace model {
namespace {

// The bits in hand, oldest first. Bits that were taken though they had not come are owed: what comes next pays them.
class Reader {
public:
    Reader(Input& in, DecoderState& state) : in_(in), state_(state)
    {
        for (int i = state.numBits - 1; i >= 0; --i) bits_.push_back(state.buffer >> i & 1);
        owed_ = std::max(0, -state.numBits);
    }
    ~Reader()
    {
        state_.numBits = count();
        state_.buffer = 0;
        for (const bool bit : bits_) state_.buffer = 2 * state_.buffer + bit;
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    int count() const { return static_cast<int>(bits_.size()) - owed_; }

    int peek8() const
    {
        int v = 0;
        for (size_t i = 0; i < 8; ++i) v = 2 * v + bits_[i];
        return v;
    }
    int take(int n)
    {
        int v = 0;
        for (; n > 0; --n) {
            v *= 2;
            if (bits_.empty()) {
                ++owed_;
            } else {
                v += bits_.front();
                bits_.pop_front();
            }
        }
        return v;
    }

    // Tops up to at least 25 bits, if the source and its markers let it.
    VekStatus refill(int needed)
    {
        if (in_.marker != 0)
            return needed > count() ? vekStsJpegMarkerShort : vekStsOk;
        while (count() < 25) {
            if (in_.position >= in_.length)
                return needed > count() ? vekStsJpegOutOfBuffer : vekStsOk;
            const int byte = in_.bytes[in_.position++];
            if (byte == 0xFF) {
                int next = 0xFF;
                while (next == 0xFF) {
                    if (in_.position >= in_.length)
                        return vekStsJpegOutOfBuffer;
                    next = in_.bytes[in_.position++];
                }
                if (next != 0) {
                    in_.marker = next;
                    return vekStsOk;
                }
            }
            for (int i = 7; i >= 0; --i) push(byte >> i & 1);
        }
        return vekStsOk;
    }

private:
    void push(bool bit)
    {
        if (owed_ > 0)
            --owed_;
        else
            bits_.push_back(bit);
    }

    Input& in_;
    DecoderState& state_;
    std::deque<bool> bits_;
    int owed_;
};

VekStatus readSymbol(Reader& reader, const DecodeTable& table, int& symbol)
{
    size_t length = 1;
    if (reader.count() < 8) {
        const VekStatus status = reader.refill(0);
        if (status != vekStsOk)
            return status;
    }
    if (reader.count() >= 8) {
        const uint32_t entry = table.lookup[static_cast<size_t>(reader.peek8())];
        if (entry >= 0x10000) {
            reader.take(static_cast<int>(entry >> 16));
            symbol = static_cast<int>(entry & 0xFFFF);
            return vekStsOk;
        }
        length = 9;
    }
    if (reader.count() < static_cast<int>(length)) {
        const VekStatus status = reader.refill(static_cast<int>(length));
        if (status != vekStsOk)
            return status;
    }
    int code = reader.take(static_cast<int>(length));
    for (; length <= 16; ++length) {
        const bool whole = reader.count() >= 0;
        if (whole && table.maxCode[length] != 0xFFFF && code <= table.maxCode[length]) {
            symbol = table.symbols[static_cast<size_t>(table.valPtr[length] - table.minCode[length] + code) % 256];
            return vekStsOk;
        }
        if (reader.count() < 1) {
            const VekStatus status = reader.refill(1);
            if (status != vekStsOk)
                return status;
            if (reader.count() < 1)
                return vekStsJpegMarkerShort;
        }
        code = 2 * code + reader.take(1);
    }
    return vekStsJpegMarkerShort;
}

VekStatus readValue(Reader& reader, const DecodeTable& table, int16_t& value)
{
    int t = 0;
    VekStatus status = readSymbol(reader, table, t);
    if (status != vekStsOk)
        return status;
    if (t == 0) {
        value = 0;
        return vekStsOk;
    }
    if (t >= 16) {
        value = -32768;
        return vekStsOk;
    }
    if (reader.count() < t)
        status = reader.refill(t);
    if (status != vekStsOk)
        return status;
    int v = reader.take(t);
    if (v < 1 << (t - 1))
        v += 1 - (1 << t);
    value = static_cast<int16_t>(v);
    return vekStsOk;
}

}  // namespace

VekStatus decodeValue(Input& in, int16_t& value, const DecodeTable& table, DecoderState& state)
{
    Reader reader(in, state);
    return readValue(reader, table, value);
}

VekStatus decodeRows(Input& in, Rows& rows, const std::vector<const DecodeTable*>& tables, DecoderState& state)
{
    Reader reader(in, state);
    for (size_t i = 0; i < rows[0].size(); ++i)
        for (size_t c = 0; c < std::min<size_t>(rows.size(), 4); ++c) {
            const VekStatus status = readValue(reader, *tables[c], rows[c][i]);
            if (status != vekStsOk)
                return status;
        }
    return vekStsOk;
}

}  // namespace model
