#include "reference/jpeg2k/code_block_encoder.h"

#include <cmath>

namespace model {
namespace {

constexpr int causalStyle = 1, bypassStyle = 2, terminateStyle = 4, resetStyle = 8, symbolStyle = 16,
              losslessStyle = 32;

// 8192 times the reduction of a sample's squared error, x being its value in units of the plane's bit.
int32_t reduction(bool isRefinement, bool isLossless, int i)
{
    const double x = isRefinement ? i / 64.0 : 1 + i / 64.0;
    double gain = 0;
    if (isLossless)
        gain = isRefinement ? (1 - x) * (1 - x) : x * x;
    else if (isRefinement)
        gain = x < 1 ? 0.75 - x : x - 1.25;
    else
        gain = 3 * x - 2.25;
    return static_cast<int32_t>(std::lround(gain * 8192));
}

// What coding does at a sample.
struct Coder {
    BlockSamples& block;
    const std::vector<uint32_t>& samples;
    int plane;
    bool isRaw, isLossless;
    CodedPass& pass;

    uint32_t sample(int x, int y) const { return samples[static_cast<size_t>(y * block.width + x)]; }
    int bit(int x, int y) const { return static_cast<int>(sample(x, y) >> plane & 1); }
    void add(int decision, int context) { pass.symbols.push_back({decision, isRaw ? -1 : context}); }
    void addDistortion(int x, int y, bool isRefinement)
    {
        int64_t v = static_cast<int32_t>(sample(x, y));
        v = plane > 6 ? v >> (plane - 6) : v * (1 << (6 - plane));
        pass.distortion =
            static_cast<int32_t>(static_cast<uint32_t>(pass.distortion) +
                                 static_cast<uint32_t>(reduction(isRefinement, isLossless,
                                                                 static_cast<int>(v & (isRefinement ? 127 : 63)))));
    }
    bool zero(int x, int y)
    {
        add(bit(x, y), block.zeroContext(x, y));
        return bit(x, y) != 0;
    }
    bool sign(int x, int y)
    {
        addDistortion(x, y, false);
        const int negative = static_cast<int>(sample(x, y) >> 31);
        int context = 0, inversion = 0;
        block.signContext(x, y, context, inversion);
        add(isRaw ? negative : negative ^ inversion, context);
        return negative != 0;
    }
    void refine(int x, int y)
    {
        add(bit(x, y), block.refinementContext(x, y));
        addDistortion(x, y, true);
    }
    int runLength(int x, int y)
    {
        int r = 0;
        while (r < 4 && bit(x, y + r) == 0) ++r;
        add(r < 4 ? 1 : 0, 1);
        if (r < 4) {
            add(r >> 1, 0);
            add(r & 1, 0);
        }
        return r;
    }
};

}  // namespace

void MqEncoder::reset()
{
    a_ = 0x8000;
    c_ = 0;
    ct_ = 12;
    b_ = 0;
    bytesOut_ = 0;
    queue.clear();
    skipFirst = true;
}

void MqEncoder::queueByte()
{
    queue.push_back(static_cast<uint8_t>(b_));
    ++bytesOut_;
}

void MqEncoder::byteOut()
{
    if (b_ != 0xFF) {
        if (c_ < 0x8000000) {
            queueByte();
            b_ = c_ >> 19 & 0xFF;
            c_ &= 0x7FFFF;
            ct_ = 8;
            return;
        }
        b_ = (b_ + 1) & 0xFF;
        if (b_ < 0xFF) {
            queueByte();
            b_ = c_ >> 19 & 0xFF;
            c_ &= 0x7FFFF;
            ct_ = 8;
            return;
        }
        c_ &= 0x7FFFFFF;
    }
    queueByte();
    b_ = c_ >> 20 & 0xFF;
    c_ &= 0xFFFFF;
    ct_ = 7;
}

void MqEncoder::code(const CodedSymbol& symbol)
{
    int& index = contexts.index[symbol.context];
    int& mps = contexts.mps[symbol.context];
    const uint32_t qe = mqQe[index];
    a_ -= qe;
    if (symbol.decision == mps) {
        if ((a_ & 0x8000) != 0) {
            c_ += qe;
            return;
        }
        if (a_ >= qe)
            c_ += qe;
        else
            a_ = qe;
        index = mqNextMps[index];
    } else {
        if (a_ < qe)
            c_ += qe;
        else
            a_ = qe;
        if (mqSwitches(index))
            mps = 1 - mps;
        index = mqNextLps[index];
    }
    do {
        a_ <<= 1;
        c_ <<= 1;
        if (--ct_ == 0)
            byteOut();
    } while ((a_ & 0x8000) == 0);
}

void MqEncoder::shiftOut()
{
    c_ <<= ct_;
    byteOut();
}

void MqEncoder::flush(int termMode)
{
    if (termMode == 1) {
        nearShortest();
    } else if (termMode == 2) {
        int n = 12 - static_cast<int>(ct_);
        while (n > 0) {
            shiftOut();
            n -= static_cast<int>(ct_);
        }
        if (b_ != 0xFF)
            shiftOut();
    } else {
        const uint32_t t = c_ + a_;
        c_ |= 0xFFFF;
        if (c_ >= t)
            c_ -= 0x8000;
        shiftOut();
        c_ |= 0x7FFF;
        shiftOut();
        c_ |= 0x7FFF;
        if (b_ != 0xFF)
            shiftOut();
    }
}

void MqEncoder::nearShortest()
{
    uint32_t l = c_ << ct_, u = (c_ + a_) << ct_;
    const auto bit27 = [](uint32_t v) { return (v >> 27 & 1) != 0; };
    int64_t lo = b_, hi = b_;
    bool stuffed = false, first = true;
    if (!bit27(l)) {
        if (bit27(u))
            hi = b_ + 1;
    } else if (b_ == 0xFF) {
        stuffed = true;
        lo = static_cast<int32_t>(l) >> 20;
        hi = static_cast<int32_t>(u) >> 20;
        u = (u & 0xFFFFF) << 7;
        l <<= 7;
    } else {
        lo = b_ + 1;
        hi = bit27(u) ? b_ + 1 : b_;
    }
    for (;;) {
        if (stuffed) {
            if (lo < 128 && hi > 127)
                break;
            if (first) {
                b_ = 0xFF;
                first = false;
            } else {
                queue.push_back(static_cast<uint8_t>(b_));
                b_ = 0xFF;
            }
            ++bytesOut_;
            stuffed = false;
        } else if (lo < 256 && hi > 255) {
            break;
        }
        if (lo >= 255) {
            stuffed = true;
            hi = (hi - lo) << 7 | (u >> 20 & 0x7F);
            lo = l >> 20 & 0x7F;
            u <<= 7;
            l <<= 7;
        } else {
            if (first) {
                b_ = static_cast<uint32_t>(lo);
                first = false;
            } else {
                queue.push_back(static_cast<uint8_t>(b_));
                b_ = static_cast<uint32_t>(lo);
            }
            hi = (hi - lo) << 8 | (u >> 19 & 0xFF);
            ++bytesOut_;
            lo = l >> 19 & 0xFF;
            u <<= 8;
            l <<= 8;
        }
    }
    if (!first && bytesOut_ >= 1) {
        queue.push_back(static_cast<uint8_t>(b_));
        b_ = 0xFF;
    }
}

int MqEncoder::paddingBytes() const
{
    const int g = bytesOut_ != 0 ? 1 : 0, t = b_ < 254 ? 1 : 0;
    return 27 - static_cast<int>(ct_) > t + 22 ? g + 4 : g + 3;
}

CodeBlockEncoder::CodeBlockEncoder(const std::vector<uint32_t>& samples, int width, int height, int subband,
                                   int magnBits, int termMode, int style)
    : style_(style), termMode_(termMode)
{
    uint32_t greatest = 0;
    for (const uint32_t v : samples) greatest = std::max(greatest, v & 0x7FFFFFFF);
    while (greatest >> sfBits != 0) ++sfBits;
    const int lowest = 31 - magnBits, top = sfBits - 1, bypassFrom = sfBits - 4;
    BlockSamples block(width, height, subband, (style & causalStyle) != 0);
    int exponent = 2 * (top - lowest) - 13;
    for (int plane = top; plane >= lowest; --plane) {
        const bool isLossless = (style & losslessStyle) != 0 && plane == lowest;
        const bool isRaw = (style & bypassStyle) != 0 && plane < bypassFrom;
        const auto run = [&](bool raw, const auto& pass) {
            passes.push_back({raw, {}, 0, exponent});
            Coder coder = {block, samples, plane, raw, isLossless, passes.back()};
            pass(coder);
        };
        if (plane != top) {
            run(isRaw, [&](Coder& coder) { significancePass(block, coder); });
            run(isRaw, [&](Coder& coder) { refinementPass(block, coder, !isRaw); });
        }
        run(false, [&](Coder& coder) {
            cleanupPass(block, coder);
            if ((style & symbolStyle) != 0)
                for (const int d : {1, 0, 1, 0}) coder.add(d, 0);
        });
        exponent -= 2;
    }
    mq_.reset();
}

bool CodeBlockEncoder::endsSegment(size_t pass) const
{
    return (style_ & terminateStyle) != 0 || pass + 1 == passes.size() || passes[pass].isRaw != passes[pass + 1].isRaw;
}

int CodeBlockEncoder::segments() const
{
    if ((style_ & terminateStyle) != 0)
        return static_cast<int>(passes.size());
    int n = 1;
    for (size_t i = 0; i + 1 < passes.size(); ++i) n += passes[i].isRaw != passes[i + 1].isRaw ? 1 : 0;
    return n;
}

int CodeBlockEncoder::segmentLength(int n) const
{
    int length = 0, segment = 0;
    for (size_t i = 0; i < passes.size(); ++i) {
        if (segment == n)
            length += passes[i].length;
        if (endsSegment(i))
            ++segment;
    }
    return length;
}

double CodeBlockEncoder::distortion(int pass) const
{
    double sum = 0;
    for (int k = 0; k <= pass; ++k) {
        const CodedPass& p = passes[static_cast<size_t>(k)];
        const auto shifted = [](int n) { return static_cast<double>(static_cast<int32_t>(1U << (n & 31))); };
        sum += p.distortion * (p.exponent > 0 ? shifted(p.exponent) : 1.0 / shifted(-p.exponent));
    }
    return sum;
}

void CodeBlockEncoder::deliver(std::vector<uint8_t>& out, int& left)
{
    if (mq_.skipFirst && !mq_.queue.empty()) {
        mq_.queue.pop_front();
        mq_.skipFirst = false;
    }
    while (left > 0 && !mq_.queue.empty()) {
        out.push_back(mq_.queue.front());
        mq_.queue.pop_front();
        --left;
        ++passBytes_;
    }
}

bool CodeBlockEncoder::encodeMq(std::vector<uint8_t>& out, int& left)
{
    deliver(out, left);
    const auto& symbols = passes[current_].symbols;
    while (left > 0 && symbol_ < symbols.size()) {
        mq_.code(symbols[symbol_++]);
        mqCoded_ = true;
        deliver(out, left);
    }
    return symbol_ == symbols.size();
}

bool CodeBlockEncoder::terminateMq(std::vector<uint8_t>& out, int& left)
{
    if (left == 0)
        return false;
    const int before = left;
    deliver(out, left);
    int first = before - left;
    if (mqCoded_)
        mq_.flush(termMode_);
    mqCoded_ = false;
    const int given = first;
    deliver(out, first);
    left -= given - first;
    if (!mq_.queue.empty())
        return false;
    mq_.reset();
    return true;
}

bool CodeBlockEncoder::encodeRaw(std::vector<uint8_t>& out, int& left)
{
    const auto& symbols = passes[current_].symbols;
    while (left > 0 && symbol_ < symbols.size()) {
        rawByte_ |= symbols[symbol_++].decision << rawBit_;
        if (rawBit_-- == 0) {
            out.push_back(static_cast<uint8_t>(rawByte_));
            --left;
            ++passBytes_;
            rawPrevFF_ = rawByte_ == 0xFF;
            rawBit_ = rawPrevFF_ ? 6 : 7;
            rawByte_ = 0;
        }
    }
    return symbol_ == symbols.size();
}

bool CodeBlockEncoder::terminateRaw(std::vector<uint8_t>& out, int& left)
{
    if (left == 0)
        return false;
    if (rawBit_ != (rawPrevFF_ ? 6 : 7)) {
        out.push_back(static_cast<uint8_t>(rawByte_ | 42 >> (6 - rawBit_)));
        --left;
        ++passBytes_;
    }
    rawByte_ = 0;
    rawBit_ = 7;
    rawPrevFF_ = false;
    return true;
}

void CodeBlockEncoder::endPass()
{
    bytesTotal_ += passBytes_;
    int padding = 0;
    if (passes[current_].isRaw)
        padding = rawBit_ != (rawPrevFF_ ? 6 : 7) ? 1 : 0;
    else if (mqCoded_)
        padding = mq_.paddingBytes();
    passes[current_].rate = bytesTotal_ + padding;
    if (padding == 0)
        for (size_t k = current_; k >= 1; --k) {
            if (passes[k].rate >= passes[k - 1].rate)
                break;
            passes[k - 1].rate = passes[k].rate;
        }
    passes[current_].length = passBytes_;
    ++current_;
    symbol_ = 0;
    passBytes_ = 0;
    if ((style_ & resetStyle) != 0)
        mq_.contexts.reset();
}

CodeBlockEncoder::Stored CodeBlockEncoder::store(int room)
{
    Stored stored{{}, 0};
    int left = room;
    while (current_ < passes.size() && left != 0) {
        const bool isRaw = passes[current_].isRaw;
        bool done = isRaw ? encodeRaw(stored.bytes, left) : encodeMq(stored.bytes, left);
        if (done && endsSegment(current_))
            done = isRaw ? terminateRaw(stored.bytes, left) : terminateMq(stored.bytes, left);
        if (done)
            endPass();
    }
    const int total = bytesTotal_ + passBytes_;
    const auto written = static_cast<int>(stored.bytes.size());
    for (size_t i = 0; i < current_; ++i) {
        int& rate = passes[i].rate;
        if (rate > total - written && rate <= total &&
            stored.bytes[static_cast<size_t>(written - total + rate - 1)] == 0xFF)
            --rate;
    }
    stored.isNotFinished = current_ != passes.size() ? 1 : 0;
    return stored;
}

}  // namespace model
