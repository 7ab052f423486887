#include "reference/jpeg2k/code_block_decoder.h"

namespace model {
namespace {

struct Segment {
    const uint8_t* p;
    int length;
    uint32_t at(int i) const { return i < length ? p[i] : 0xFF; }
};

struct MqDecoder {
    Segment data;
    MqContextStates& contexts;
    int pos = 0;
    uint32_t a = 0x8000, c = 0, ct = 0;
    bool markerHit = false;

    MqDecoder(const Segment& segment, MqContextStates& states) : data(segment), contexts(states)
    {
        c = (data.at(0) ^ 0xFF) << 16;
        byteIn();
        c <<= 7;
        ct -= 7;
    }
    void byteIn()
    {
        if (markerHit) {
            ct = 8;
            return;
        }
        const uint32_t b = data.at(pos), b1 = data.at(pos + 1);
        if (b != 0xFF) {
            ++pos;
            c += 0xFF00 - (b1 << 8);
            ct = 8;
        } else if (b1 > 0x8F) {
            markerHit = true;
            ct = 8;
        } else {
            ++pos;
            c += 0xFE00 - (b1 << 9);
            ct = 7;
        }
    }
    int decode(int ctx)
    {
        int& index = contexts.index[ctx];
        int& mps = contexts.mps[ctx];
        const uint32_t qe = mqQe[index];
        a -= qe;
        int d = mps;
        bool isMps = true;
        if (a > c >> 16) {
            if ((a & 0x8000) != 0)
                return d;
            isMps = a >= qe;
        } else {
            c -= a << 16;
            isMps = a < qe;
            a = qe;
        }
        if (isMps) {
            index = mqNextMps[index];
        } else {
            d = 1 - mps;
            if (mqSwitches(index))
                mps = d;
            index = mqNextLps[index];
        }
        do {
            if (ct == 0)
                byteIn();
            a <<= 1;
            c <<= 1;
            --ct;
        } while ((a & 0x8000) == 0);
        return d;
    }
    // Whether the predictable termination was not there.
    bool isCorrupt() const
    {
        uint32_t bits = ct;
        if (data.at(pos) < 0xFF && !markerHit)
            return true;
        if (bits != 0) {
            if (!markerHit)
                return true;
            if (bits == 1)
                return false;
        } else {
            if (!markerHit && data.at(pos + 1) < 0x90)
                return true;
            bits = 8;
        }
        const uint32_t q = 0x8000U >> (bits - 1);
        return a - q > c >> 16;
    }
};

struct RawReader {
    Segment data;
    int pos = 0, bitIndex = -1;
    uint32_t curByte = 0;

    int bit()
    {
        if (bitIndex < 0)
            fetch();
        return static_cast<int>(curByte >> bitIndex-- & 1);
    }
    void fetch()
    {
        bitIndex = curByte < 0xFF ? 7 : 6;
        curByte = data.at(pos++);
    }
    // As it goes, step by step.
    bool isCorrupt() const
    {
        RawReader r = *this;
        bool fetched = false;
        if (r.bitIndex < 0 && r.curByte == 0xFF) {
            if (r.pos > r.data.length)
                return false;
            r.curByte = r.data.at(r.pos++);
            r.bitIndex = 6;
            fetched = true;
        }
        if (r.bitIndex >= 0 && !fetched) {
            const uint32_t low = r.curByte & ((1U << (r.bitIndex + 1)) - 1);
            if (low != 0x55U >> (7 - r.bitIndex))
                return true;
        }
        if (r.pos > r.data.length)
            return false;
        const uint32_t n = r.data.at(r.pos++);
        if (r.curByte < 0xFF || r.bitIndex != 0)
            return false;
        return n >= 0x80 || r.data.length < r.pos;
    }
};

// What decoding does at a sample, with arithmetic-coded or raw decisions.
struct Coder {
    CodeBlockDecoder& decoder;
    BlockSamples& block;
    MqDecoder* mq;
    RawReader* raw;

    uint32_t& sample(int x, int y) { return decoder.samples[static_cast<size_t>(y * block.width + x)]; }
    uint32_t plane() const { return static_cast<uint32_t>(decoder.bitPlane); }
    bool zero(int x, int y) { return (raw != nullptr ? raw->bit() : mq->decode(block.zeroContext(x, y))) != 0; }
    bool sign(int x, int y)
    {
        int context = 0, inversion = 0;
        block.signContext(x, y, context, inversion);
        const int negative = raw != nullptr ? raw->bit() : mq->decode(context) ^ inversion;
        sample(x, y) = static_cast<uint32_t>(negative) << 31 | (3U << plane()) >> 1;
        return negative != 0;
    }
    void refine(int x, int y)
    {
        const auto bit = static_cast<uint32_t>(raw != nullptr ? raw->bit() : mq->decode(block.refinementContext(x, y)));
        const uint32_t keep = plane() == 31 ? 0 : ~0U << (plane() + 1);
        sample(x, y) = (sample(x, y) & keep) | bit << plane() | (1U << plane()) >> 1;
    }
    int runLength(int, int)
    {
        if (mq->decode(1) == 0)
            return 4;
        const int high = mq->decode(0);
        return 2 * high + mq->decode(0);
    }
};

constexpr int causalStyle = 1, bypassStyle = 2, terminateStyle = 4, resetStyle = 8, symbolStyle = 16;
constexpr int rollBackStyle = 0x10000, keepStyle = 0x40000, predictableStyle = 0x100000;

}  // namespace

CodeBlockDecoder::CodeBlockDecoder(int width, int height, int subband, int sfBits, int style, int passes)
    : samples(static_cast<size_t>(width * height)),
      passesLeft(passes),
      bitPlane(sfBits - 1),
      style_(style),
      bypassPlane_((style & bypassStyle) != 0 ? std::max(sfBits - 4, 0) : 0),
      block_(width, height, subband, (style & causalStyle) != 0)
{
}

VekStatus CodeBlockDecoder::step(const uint8_t* segment, int length)
{
    if (passesLeft < 1 || bitPlane < 0)
        return vekStsOk;
    const Segment data = {segment, length};
    MqDecoder mq(data, contexts_);
    RawReader raw = {data};
    Coder arithmetic = {*this, block_, &mq, nullptr};
    Coder bits = {*this, block_, nullptr, &raw};
    bool isCorrupt = false;
    const auto end = [&](bool result, bool check) {
        if (check)
            result = mq.isCorrupt();
        if (has(resetStyle))
            contexts_.reset();
        isCorrupt = isCorrupt || result;
    };
    const auto cleanup = [&](bool check) {
        cleanupPass(block_, arithmetic);
        bool result = false;
        if (has(symbolStyle)) {
            int symbol = 0;
            for (int i = 0; i < 4; ++i) symbol = 2 * symbol + mq.decode(0);
            result = symbol != 10;
        }
        end(result, check);
    };
    const auto significance = [&](bool check) {
        significancePass(block_, arithmetic);
        end(false, check);
    };
    const auto refinement = [&](bool check) {
        refinementPass(block_, arithmetic, true);
        end(false, check);
    };
    const auto rawSignificance = [&](bool check) {
        significancePass(block_, bits);
        isCorrupt = isCorrupt || (check && raw.isCorrupt());
    };
    const auto rawRefinement = [&] {
        refinementPass(block_, bits, false);
        isCorrupt = isCorrupt || raw.isCorrupt();
    };
    const bool check = has(predictableStyle);
    if (has(terminateStyle)) {
        switch (passKind_) {
            case 0:
                cleanup(check);
                --bitPlane;
                passKind_ = bitPlane < bypassPlane_ ? 5 : 2;
                break;
            case 2:
                significance(check);
                passKind_ = 1;
                break;
            case 1:
                refinement(check);
                passKind_ = 0;
                break;
            case 3:
                cleanup(check);
                --bitPlane;
                passKind_ = 5;
                break;
            case 5:
                rawSignificance(true);
                passKind_ = 4;
                break;
            default:
                rawRefinement();
                passKind_ = 3;
        }
        --passesLeft;
    } else if (passKind_ == 3) {
        cleanup(check);
        --passesLeft;
        if (passesLeft > 0) {
            --bitPlane;
            passKind_ = 5;
        }
    } else if (passKind_ == 5) {
        rawSignificance(false);
        --passesLeft;
        if (passesLeft > 0) {
            rawRefinement();
            --passesLeft;
            passKind_ = 3;
        }
    } else {
        int passes = passesLeft;
        while (passes > 0) {
            cleanup(check && bitPlane == bypassPlane_);
            if (--passes == 0)
                break;
            const int p = bitPlane;
            --bitPlane;
            if (!(p > bypassPlane_)) {
                passKind_ = 5;
                break;
            }
            significance(false);
            if (--passes == 0)
                break;
            refinement(false);
            --passes;
        }
        passesLeft = passes;
    }
    return isCorrupt ? vekStsJpeg2KCorruptCodeBlock : vekStsOk;
}

void CodeBlockDecoder::rollBack()
{
    if (bitPlane < 0)
        return;
    for (uint32_t& x : samples) {
        const uint32_t m = x >> bitPlane << bitPlane;
        x = (m & 0x7FFFFFFF) == 0 ? 0 : m | 1U << bitPlane;
    }
}

void CodeBlockDecoder::maskBelowPlane()
{
    if (bitPlane >= 1)
        for (uint32_t& x : samples) x = x >> bitPlane << bitPlane;
}

DecodedBlock decodeCodeBlock(const std::vector<uint8_t>& bytes, int width, int height, int subband, int sfBits,
                             int passes, const std::vector<int>& lengths, int style)
{
    CodeBlockDecoder decoder(width, height, subband, sfBits, style, passes);
    DecodedBlock result{vekStsOk, {}, 0, 0, -1000};
    size_t position = 0;
    for (const int length : lengths) {
        result.status = decoder.step(bytes.data() + position, length);
        position += static_cast<size_t>(length);
        if (result.status != vekStsOk)
            break;
    }
    if (result.status == vekStsJpeg2KCorruptCodeBlock) {
        result.errorBitPlane = decoder.bitPlane;
        if ((style & rollBackStyle) != 0)
            decoder.rollBack();
    }
    if ((style & keepStyle) == 0)
        decoder.maskBelowPlane();
    result.samples = decoder.samples;
    result.passesLeft = decoder.passesLeft;
    result.bitPlane = decoder.bitPlane;
    return result;
}

}  // namespace model
