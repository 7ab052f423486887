#include "reference/bits.h"
#include "reference/jpeg/progressive.h"

namespace model {
namespace {

// A run past the end of the block lands on its last coefficient.
int16_t& coefficient(std::array<int16_t, 64>& block, int k)
{
    return block[static_cast<size_t>(k > 63 ? 63 : zigzag[static_cast<size_t>(k)])];
}

class BandReader {
public:
    BandReader(Input& in, BandDecoderState& state) : in_(in), s_(state) {}

    VekStatus bits(int count, int& v)
    {
        v = 0;
        if (s_.numBits < count) {
            const VekStatus status = refill(count);
            if (status != vekStsOk)
                return status;
        }
        for (int i = 0; i < count; ++i) v = 2 * v + take();
        return vekStsOk;
    }

    VekStatus value(int count, int& v)
    {
        const VekStatus status = bits(count, v);
        if (status == vekStsOk && v < 1 << (count - 1))
            v += 1 - (1 << count);
        return status;
    }

    VekStatus symbol(const DecodeTable& table, int& symbol)
    {
        size_t length = 9;
        if (s_.numBits < 8) {
            const VekStatus status = refill(0);
            if (status != vekStsOk)
                return status;
            if (s_.numBits < 8)
                length = 1;
        }
        if (length == 9) {
            const uint32_t entry = table.lookup[static_cast<size_t>(s_.buffer >> (s_.numBits - 8) & 0xFF)];
            if (entry >> 16 != 0) {
                s_.numBits -= static_cast<int>(entry >> 16);
                symbol = static_cast<int>(entry & 0xFFFF);
                return vekStsOk;
            }
        }
        int code = 0;
        VekStatus status = bits(static_cast<int>(length), code);
        if (status != vekStsOk)
            return status;
        for (; length <= 16; ++length) {
            if (table.maxCode[length] != 0xFFFF && code <= table.maxCode[length]) {
                symbol = table.symbols[static_cast<size_t>(table.valPtr[length] + code - table.minCode[length]) & 0xFF];
                return vekStsOk;
            }
            int bit = 0;
            status = bits(1, bit);
            if (status != vekStsOk)
                return status;
            code = 2 * code + bit;
        }
        return vekStsJpegMarkerShort;  // with a 17th bit taken
    }

private:
    int take() { return static_cast<int>(s_.buffer >> --s_.numBits & 1); }

    void push(int byte)
    {
        s_.buffer = s_.buffer << 8 | static_cast<uint64_t>(byte);
        s_.numBits += 8;
    }

    VekStatus refill(int needed)
    {
        if (in_.marker != 0)
            return needed > s_.numBits ? vekStsJpegMarkerShort : vekStsOk;
        if (in_.length - in_.position >= 8) {
            bool plain = true;
            for (int i = 0; i < 8; ++i) plain = plain && in_.bytes[in_.position + i] != 0xFF;
            if (plain) {
                const int bytes = (64 - (s_.numBits + 7) / 8 * 8) / 8;
                for (int i = 0; i < bytes; ++i) push(in_.bytes[in_.position++]);
                return vekStsOk;
            }
        }
        while (s_.numBits <= 24) {
            if (in_.position >= in_.length)
                return needed > s_.numBits ? vekStsJpegOutOfBuffer : vekStsOk;
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
                    return needed > s_.numBits ? vekStsJpegOutOfBuffer : vekStsOk;
                }
            }
            push(byte);
        }
        return vekStsOk;
    }

    Input& in_;
    BandDecoderState& s_;
};

// The length of an end-of-band run: 2^r and r bits more.
VekStatus readRun(BandReader& reader, int r, BandDecoderState& state)
{
    state.eobRun = 1 << r;
    int more = 0;
    const VekStatus status = r == 0 ? vekStsOk : reader.bits(r, more);
    state.eobRun += more;
    return status;
}

VekStatus correct(BandReader& reader, int16_t& c, int p1)
{
    int bit = 0;
    const VekStatus status = reader.bits(1, bit);
    if (status == vekStsOk && bit == 1 && (c & p1) == 0)
        c = wrap16(c > 0 ? c + p1 : c - p1);
    return status;
}

}  // namespace

VekStatus decodeDcFirst(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, int al, const DecodeTable& table,
                        DecoderState& state)
{
    int symbol = 0;
    VekStatus status = decodeSymbol(in, state, table, symbol);
    if (status != vekStsOk)
        return status;
    if (symbol % 16 != 0) {
        int v = 0;
        status = readValue(in, state, symbol % 16, v);
        if (status != vekStsOk)
            return status;
        lastDc = wrap16(lastDc + v);
    }
    block[0] = wrap16(lastDc * (1 << al));
    return vekStsOk;
}

VekStatus decodeDcRefine(Input& in, std::array<int16_t, 64>& block, int al, DecoderState& state)
{
    if (state.numBits < 1) {
        const VekStatus status = refill(in, state, 1);
        if (status != vekStsOk)
            return status;
    }
    --state.numBits;
    const bool bit = state.numBits >= 0 && (state.buffer >> state.numBits & 1) != 0;  // 0 if a marker left none
    if (bit)
        block[0] = static_cast<int16_t>(block[0] | 1 << al);
    return vekStsOk;
}

VekStatus decodeAcFirst(Input& in, std::array<int16_t, 64>& block, const Band& band, const DecodeTable& table,
                        BandDecoderState& state)
{
    if (state.eobRun > 0) {
        --state.eobRun;
        return vekStsOk;
    }
    BandReader reader(in, state);
    for (int k = band.ss; k <= band.se; ++k) {
        int symbol = 0;
        VekStatus status = reader.symbol(table, symbol);
        if (status != vekStsOk)
            return status;
        const int r = symbol / 16;
        const int s = symbol % 16;
        if (s != 0) {
            k += r;
            int v = 0;
            status = reader.value(s, v);
            if (status != vekStsOk)
                return status;
            coefficient(block, k) = wrap16(v * (1 << band.al));
        } else if (r == 15) {
            k += 15;
        } else {
            status = readRun(reader, r, state);
            if (status == vekStsOk)
                --state.eobRun;
            return status;
        }
    }
    return vekStsOk;
}

VekStatus decodeAcRefine(Input& in, std::array<int16_t, 64>& block, const Band& band, const DecodeTable& table,
                         BandDecoderState& state)
{
    const int p1 = 1 << band.al;
    BandReader reader(in, state);
    int k = band.ss;
    if (state.eobRun == 0) {
        while (k <= band.se) {
            int symbol = 0;
            VekStatus status = reader.symbol(table, symbol);
            if (status != vekStsOk)
                return status;
            int r = symbol / 16;
            const int s = symbol % 16;
            if (s == 0 && r < 15) {
                status = readRun(reader, r, state);
                if (status != vekStsOk)
                    return status;
                break;
            }
            int newValue = 0;
            if (s != 0) {
                int bit = 0;
                status = reader.bits(1, bit);
                if (status != vekStsOk)
                    return status;
                newValue = bit == 1 ? p1 : -p1;
            }
            for (; k <= band.se; ++k) {
                int16_t& c = coefficient(block, k);
                if (c != 0) {
                    status = correct(reader, c, p1);
                    if (status != vekStsOk)
                        return status;
                } else if (--r < 0) {
                    break;
                }
            }
            if (newValue != 0)
                coefficient(block, k) = wrap16(newValue);
            ++k;
        }
    }
    if (state.eobRun > 0) {
        for (; k <= band.se; ++k) {
            int16_t& c = coefficient(block, k);
            if (c == 0)
                continue;
            const VekStatus status = correct(reader, c, p1);
            if (status != vekStsOk)
                return status;
        }
        --state.eobRun;
    }
    return vekStsOk;
}

}  // namespace model
