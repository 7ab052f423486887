#include <algorithm>

#include "reference/jpeg/lossless_rows.h"

namespace model {
namespace {

// The number of bits of |value|: 0 to 16.
int category(int16_t value)
{
    const int magnitude = value < 0 ? -value : value;
    int s = 0;
    while (magnitude >= 1 << s) ++s;
    return s;
}

// Bits that wait for their byte to be full, oldest first.
std::vector<bool> waiting(const EncoderState& state)
{
    std::vector<bool> bits;
    for (int i = 0; i < state.numBits; ++i) bits.push_back(state.pending >> (23 - i) & 1);
    return bits;
}

void keep(const std::vector<bool>& bits, EncoderState& state)
{
    state.numBits = static_cast<int>(bits.size());
    state.pending = 0;
    for (int i = 0; i < state.numBits; ++i)
        if (bits[static_cast<size_t>(i)])
            state.pending |= uint32_t{1} << (23 - i);
}

bool store(int byte, Output& out)
{
    if (out.position >= static_cast<int>(out.bytes.size()))
        return false;
    out.bytes[static_cast<size_t>(out.position++)] = static_cast<uint8_t>(byte);
    return true;
}

// The lowest `count` bits of `value`. Should the room end, the bytes stored before stay, and so does the old state.
VekStatus write(int value, int count, Output& out, EncoderState& state)
{
    if (count == 0)
        return vekStsJpegHuffmanTable;
    std::vector<bool> bits = waiting(state);
    for (int i = count - 1; i >= 0; --i) bits.push_back(value >> i & 1);
    while (bits.size() >= 8) {
        int byte = 0;
        for (size_t i = 0; i < 8; ++i) byte = 2 * byte + bits[i];
        bits.erase(bits.begin(), bits.begin() + 8);
        if (!store(byte, out) || (byte == 0xFF && !store(0, out)))
            return vekStsJpegOutOfBuffer;
    }
    keep(bits, state);
    return vekStsOk;
}

}  // namespace

VekStatus encodeValue(int16_t value, Output& out, const EncodeTable& table, EncoderState& state)
{
    const int s = category(value);
    const uint32_t entry = table[static_cast<size_t>(s)];
    const VekStatus status = write(static_cast<int>(entry & 0xFFFF), static_cast<int>(entry >> 16), out, state);
    if (status != vekStsOk || s == 0 || s == 16)
        return status;
    return write(value < 0 ? value - 1 : value, s, out, state);
}

VekStatus encodeRows(const Rows& rows, Output& out, const std::vector<const EncodeTable*>& tables, EncoderState& state)
{
    for (size_t i = 0; i < rows[0].size(); ++i)
        for (size_t c = 0; c < std::min<size_t>(rows.size(), 4); ++c) {
            const VekStatus status = encodeValue(rows[c][i], out, *tables[c], state);
            if (status != vekStsOk)
                return status;
        }
    return vekStsOk;
}

void countValue(int16_t value, std::array<int, 256>& counts) { ++counts[static_cast<size_t>(category(value))]; }

}  // namespace model
