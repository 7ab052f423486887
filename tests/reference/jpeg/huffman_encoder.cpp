#include <cstdlib>

#include "reference/jpeg/huffman.h"

namespace model {
namespace {

int categoryOf(int v)
{
    int bits = 0;
    for (int rest = std::abs(v); rest != 0; rest /= 2) ++bits;
    return bits;
}

uint32_t magnitudeOf(int v, int category)
{
    const int bits = v < 0 ? v - 1 : v;
    return static_cast<uint32_t>(bits) & ((1U << category) - 1);
}

}  // namespace

VekStatus writeBits(uint32_t value, int count, Output& out, EncoderState& state)
{
    if (count == 0)
        return vekStsJpegHuffmanTable;
    int total = state.numBits + count;
    uint32_t pending = state.pending | (value & ((1U << count) - 1)) << (24 - total);
    const auto room = [&] { return out.position < static_cast<int>(out.bytes.size()); };
    while (total >= 8) {
        if (!room())
            return vekStsJpegOutOfBuffer;
        const auto byte = static_cast<uint8_t>(pending >> 16 & 0xFF);
        out.bytes[static_cast<size_t>(out.position++)] = byte;
        if (byte == 0xFF) {
            if (!room())
                return vekStsJpegOutOfBuffer;
            out.bytes[static_cast<size_t>(out.position++)] = 0;
        }
        pending = pending << 8 & 0xFFFFFF;
        total -= 8;
    }
    state.pending = pending;
    state.numBits = total;
    return vekStsOk;
}

namespace {

VekStatus writeCode(uint32_t entry, Output& out, EncoderState& state)
{
    return writeBits(entry & 0xFFFF, static_cast<int>(entry >> 16), out, state);
}

// Calls code(table, symbol) and magnitude(bits, count) for what the block is made of, until one of them fails.
template <typename Code, typename Magnitude>
VekStatus walk(const std::array<int16_t, 64>& block, int diff, const Code& code, const Magnitude& magnitude)
{
    const auto value = [&](bool dc, int run, int v) -> VekStatus {
        const int category = categoryOf(v);
        const VekStatus status = code(dc, run * 16 + category);
        if (status != vekStsOk || category == 0)
            return status;
        return magnitude(magnitudeOf(v, category), category);
    };
    VekStatus status = value(true, 0, diff);
    int run = 0;
    for (size_t k = 1; k < 64 && status == vekStsOk; ++k) {
        const int v = block[static_cast<size_t>(zigzag[k])];
        if (v == 0) {
            ++run;
            continue;
        }
        for (; run > 15 && status == vekStsOk; run -= 16) status = code(false, 0xF0);
        if (status == vekStsOk)
            status = value(false, run, v);
        run = 0;
    }
    if (status == vekStsOk && run > 0)
        status = code(false, 0);
    return status;
}

}  // namespace

VekStatus encodeBlock(const std::array<int16_t, 64>& block, Output& out, int16_t& lastDc, const EncodeTable& dc,
                      const EncodeTable& ac, EncoderState& state)
{
    const int diff = block[0] - lastDc;
    lastDc = block[0];
    return walk(
        block, diff,
        [&](bool isDc, int symbol) {
            const uint32_t entry = symbol > 255 ? 0 : (isDc ? dc : ac)[static_cast<size_t>(symbol)];
            return writeCode(entry, out, state);
        },
        [&](uint32_t bits, int count) { return writeBits(bits, count, out, state); });
}

VekStatus flush(Output& out, EncoderState& state)
{
    const VekStatus status = writeBits(0x7F, 7, out, state);
    state = {};
    return status;
}

void encodeDirect(const std::array<int16_t, 64>& block, std::vector<uint8_t>& bytes, int& bitPosition, int16_t& lastDc,
                  const EncodeTable& dc, const EncodeTable& ac)
{
    const int diff = block[0] - lastDc;
    lastDc = block[0];
    auto position = static_cast<size_t>(bitPosition / 8);
    int count = bitPosition % 8;
    uint32_t byte = count == 0 ? 0 : bytes[position] >> (8 - count);
    const auto bit = [&](uint32_t b) {
        byte = byte << 1 | b;
        if (++count < 8)
            return;
        bytes[position++] = static_cast<uint8_t>(byte);
        if ((byte & 0xFF) == 0xFF)
            bytes[position++] = 0;
        byte = 0;
        count = 0;
    };
    const auto bits = [&](uint32_t value, int n) {
        for (int i = n - 1; i >= 0; --i) bit(value >> i & 1);
        return vekStsOk;
    };
    walk(
        block, diff,
        [&](bool isDc, int symbol) {
            const uint32_t entry = symbol > 255 ? 0 : (isDc ? dc : ac)[static_cast<size_t>(symbol)];
            return bits(entry & 0xFFFF, static_cast<int>(entry >> 16));
        },
        bits);
    bytes[position] = static_cast<uint8_t>(byte << (8 - count));
    bitPosition = static_cast<int>(8 * position) + count;
}

VekStatus countSymbols(const std::array<int16_t, 64>& block, std::array<int, 256>& dc, std::array<int, 256>& ac,
                       int16_t& lastDc)
{
    const int diff = block[0] - lastDc;
    lastDc = block[0];
    const int dcCategory = categoryOf(diff);
    if (dcCategory > 15)
        return vekStsJpegMarkerShort;
    ++dc[static_cast<size_t>(dcCategory)];
    int run = 0;
    for (size_t k = 1; k < 64; ++k) {
        const int v = block[static_cast<size_t>(zigzag[k])];
        if (v == 0) {
            ++run;
            continue;
        }
        ac[0xF0] += run / 16;
        run %= 16;
        const int category = categoryOf(v);
        if (category > 14)
            return vekStsJpegMarkerShort;
        ++ac[static_cast<size_t>(16 * run + category)];
        run = 0;
    }
    if (run > 0)
        ++ac[0];
    return vekStsOk;
}

}  // namespace model
