#include <cstdlib>

#include "reference/jpeg/progressive.h"

namespace model {
namespace {

int bitsIn(int v)
{
    int bits = 0;
    for (; v != 0; v /= 2) ++bits;
    return bits;
}

class BandWriter {
public:
    BandWriter(Output& out, const EncodeTable& table, BandEncoderState& state) : out_(out), table_(table), s_(state) {}

    VekStatus bits(int value, int count)
    {
        if (s_.numBits + count > 63) {
            const VekStatus status = drain();
            if (status != vekStsOk)
                return status;
        }
        for (int i = count - 1; i >= 0; --i) {
            s_.buffer = s_.buffer << 1 | static_cast<uint64_t>(value >> i & 1);
            ++s_.numBits;
        }
        return vekStsOk;
    }

    VekStatus code(int symbol)
    {
        const uint32_t entry = table_[static_cast<size_t>(symbol)];
        if (entry >> 16 == 0)
            return vekStsJpegHuffmanTable;
        return bits(static_cast<int>(entry & 0xFFFF), static_cast<int>(entry >> 16));
    }

    VekStatus codeAndBits(int symbol, int value, int count)
    {
        const VekStatus status = code(symbol);
        return status == vekStsOk && count > 0 ? bits(value, count) : status;
    }

    VekStatus endOfBandRun()
    {
        if (s_.eobRun == 0)
            return vekStsOk;
        if (s_.eobRun > 32767) {
            const VekStatus status = codeAndBits(0xE0, s_.eobRun, 14);
            if (status != vekStsOk)
                return status;
            s_.eobRun -= 32767;
        }
        const int size = bitsIn(s_.eobRun) - 1;
        if (size > 14)
            return vekStsJpegMarkerShort;
        const VekStatus status = codeAndBits(16 * size, s_.eobRun, size);
        if (status == vekStsOk)
            s_.eobRun = 0;
        return status;
    }

    VekStatus corrections(std::vector<uint8_t>& list)
    {
        for (const uint8_t bit : list) {
            const VekStatus status = bits(bit, 1);
            if (status != vekStsOk)
                return status;
        }
        list.clear();
        return vekStsOk;
    }

    // The run and the correction bits that belong to it.
    VekStatus everythingPending()
    {
        const VekStatus status = endOfBandRun();
        return status == vekStsOk ? corrections(s_.corrections) : status;
    }

    VekStatus pad()
    {
        while (s_.numBits % 8 != 0) {
            const VekStatus status = bits(1, 1);
            if (status != vekStsOk)
                return status;
        }
        return drain();
    }

private:
    // All whole bytes. A byte counts as pending until its stuffing is out.
    VekStatus drain()
    {
        const auto room = [&] { return out_.position < static_cast<int>(out_.bytes.size()); };
        while (s_.numBits >= 8) {
            if (!room())
                return vekStsJpegOutOfBuffer;
            const auto byte = static_cast<uint8_t>(s_.buffer >> (s_.numBits - 8) & 0xFF);
            out_.bytes[static_cast<size_t>(out_.position++)] = byte;
            if (byte == 0xFF) {
                if (!room())
                    return vekStsJpegOutOfBuffer;
                out_.bytes[static_cast<size_t>(out_.position++)] = 0;
            }
            s_.numBits -= 8;
        }
        return vekStsOk;
    }

    Output& out_;
    const EncodeTable& table_;
    BandEncoderState& s_;
};

}  // namespace

VekStatus encodeDcFirst(const std::array<int16_t, 64>& block, Output& out, int16_t& lastDc, int al,
                        const EncodeTable& table, EncoderState& state)
{
    const int v = block[0] >> al;
    const int diff = v - lastDc;
    lastDc = static_cast<int16_t>(v);
    const int category = bitsIn(std::abs(diff));
    if (category > 11)
        return vekStsJpegMarkerShort;
    const uint32_t entry = table[static_cast<size_t>(category)];
    const VekStatus status = writeBits(entry & 0xFFFF, static_cast<int>(entry >> 16), out, state);
    if (status != vekStsOk || category == 0)
        return status;
    return writeBits(static_cast<uint32_t>(diff < 0 ? diff - 1 : diff), category, out, state);
}

VekStatus encodeDcRefine(const std::array<int16_t, 64>& block, Output& out, int al, EncoderState& state)
{
    return writeBits(static_cast<uint32_t>(block[0] >> al), 1, out, state);
}

VekStatus encodeAcFirst(const std::array<int16_t, 64>& block, Output& out, const Band& band, const EncodeTable& table,
                        BandEncoderState& state)
{
    BandWriter writer(out, table, state);
    int r = 0;
    for (int k = band.ss; k <= band.se; ++k) {
        const int c = block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])];
        const int t = std::abs(c) >> band.al;
        if (t == 0) {
            ++r;
            continue;
        }
        VekStatus status = writer.endOfBandRun();
        for (; status == vekStsOk && r > 15; r -= 16) status = writer.code(0xF0);
        if (status != vekStsOk)
            return status;
        const int size = bitsIn(t);
        if (size > 11)
            return vekStsJpegMarkerShort;
        status = writer.codeAndBits(16 * r + size, c < 0 ? ~t : t, size);
        if (status != vekStsOk)
            return status;
        r = 0;
    }
    if (r > 0) {
        ++state.eobRun;
        if (state.eobRun >= 32767)
            return writer.endOfBandRun();
    }
    return vekStsOk;
}

VekStatus encodeAcRefine(const std::array<int16_t, 64>& block, Output& out, const Band& band, const EncodeTable& table,
                         BandEncoderState& state)
{
    BandWriter writer(out, table, state);
    std::array<int, 64> t{};
    int lastNew = band.ss - 1;
    for (int k = band.ss; k <= band.se; ++k) {
        t[static_cast<size_t>(k)] =
            std::abs(static_cast<int>(block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])])) >> band.al;
        if (t[static_cast<size_t>(k)] == 1)
            lastNew = k;
    }
    int r = 0;
    std::vector<uint8_t> ours;  // correction bits of this block
    for (int k = band.ss; k <= band.se; ++k) {
        const int magnitude = t[static_cast<size_t>(k)];
        if (magnitude == 0) {
            ++r;
            continue;
        }
        while (r > 15 && k <= lastNew) {
            VekStatus status = writer.everythingPending();
            if (status == vekStsOk)
                status = writer.code(0xF0);
            if (status == vekStsOk) {
                r -= 16;
                status = writer.corrections(ours);
            }
            if (status != vekStsOk)
                return status;
        }
        if (magnitude > 1) {
            ours.push_back(static_cast<uint8_t>(magnitude & 1));
            continue;
        }
        VekStatus status = writer.everythingPending();
        const bool positive = block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])] > 0;
        if (status == vekStsOk)
            status = writer.codeAndBits(16 * r + 1, positive ? 1 : 0, 1);
        if (status == vekStsOk)
            status = writer.corrections(ours);
        if (status != vekStsOk)
            return status;
        r = 0;
    }
    if (r > 0 || !ours.empty()) {
        ++state.eobRun;
        state.corrections.insert(state.corrections.end(), ours.begin(), ours.end());
        if (state.corrections.size() > 937 || state.eobRun == 32767)
            return writer.everythingPending();
    }
    return vekStsOk;
}

VekStatus flushBand(Output& out, const EncodeTable& table, BandEncoderState& state)
{
    BandWriter writer(out, table, state);
    const VekStatus ofRun = writer.endOfBandRun();
    VekStatus status = ofRun;
    if (status != vekStsJpegOutOfBuffer)
        status = writer.corrections(state.corrections);
    if (status == vekStsOk)
        status = writer.pad();
    state.buffer = 0;
    state.numBits = 0;
    state.corrections.clear();
    return status != vekStsOk ? status : ofRun;
}

}  // namespace model
