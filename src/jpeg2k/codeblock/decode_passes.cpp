#include "jpeg2k/codeblock/decode_passes.h"

#include "frame/vec.h"
#include "jpeg2k/codeblock/coding_passes.h"

namespace q3 {
namespace {

// The samples of a block at one plane. What a sample takes: the plane's bit when it becomes significant, or its bit
// when it is refined, and half a unit of the plane below.
class PlaneSamples {
public:
    explicit PlaneSamples(const VekDecodeCBProgrState_JPEG2K& state)
        : dst_(state.pDst), step_(state.dstStep), plane_(static_cast<uint32_t>(state.bitPlane) & 31)
    {
    }

    void stripe(int y) { stripe_ = rowAt(dst_, step_, y); }
    void becomeSignificant(int x, int r, uint32_t isNegative)
    {
        storeScalar(at(x, r), isNegative << 31 | uint32_t{3} << plane_ >> 1);
    }
    void refine(int x, int r, uint32_t bit)
    {
        const uint32_t above = loadScalar<uint32_t>(at(x, r)) & ~uint32_t{1} << plane_;
        storeScalar(at(x, r), above | bit << plane_ | uint32_t{1} << plane_ >> 1);
    }

private:
    int32_t* at(int x, int r) const { return rowAt(stripe_ + x, step_, r); }

    int32_t* dst_;
    int32_t* stripe_ = nullptr;
    int64_t step_;
    uint32_t plane_;
};

struct MqCoder {
    PlaneSamples samples;
    MqDecoder mq;  // a copy, which lies in registers
    const uint8_t* zeroContexts;

    MqCoder(const VekDecodeCBProgrState_JPEG2K& state, const MqDecoder& decoder)
        : samples(state), mq(decoder), zeroContexts(state.pZeroCodingLUT->data())
    {
    }

    void stripe(int y) { samples.stripe(y); }
    [[gnu::always_inline]] bool zero(uint32_t flags, int, int)
    {
        return mq.decode(zeroContexts[static_cast<uint8_t>(flags)]) != 0;
    }
    [[gnu::always_inline]] bool sign(uint32_t flags, int x, int r)
    {
        const uint32_t entry = SignCodingLUT[flags >> 4 & 0x1FF];
        const uint32_t isNegative = mq.decode(entry & 0x7F) ^ entry >> 7;
        samples.becomeSignificant(x, r, isNegative);
        return isNegative != 0;
    }
    [[gnu::always_inline]] void refine(uint32_t flags, int x, int r)
    {
        samples.refine(x, r, mq.decode(MagnRefineLUT[flags & 0x1FF]));
    }
    [[gnu::always_inline]] int runLength(int)
    {
        if (mq.decode(runLengthContext) == 0)
            return 4;
        const uint32_t high = mq.decode(uniformContext);
        return static_cast<int>(high << 1 | mq.decode(uniformContext));
    }
    uint32_t segmentationSymbol()
    {
        uint32_t symbol = 0;
        for (int i = 0; i < 4; ++i) symbol = symbol << 1 | mq.decode(uniformContext);
        return symbol;
    }
};

struct RawCoder {
    PlaneSamples samples;
    RawReader raw;

    RawCoder(const VekDecodeCBProgrState_JPEG2K& state, const RawReader& reader) : samples(state), raw(reader) {}

    void stripe(int y) { samples.stripe(y); }
    bool zero(uint32_t, int, int) { return raw.bit() != 0; }
    bool sign(uint32_t, int x, int r)
    {
        const uint32_t isNegative = raw.bit();
        samples.becomeSignificant(x, r, isNegative);
        return isNegative != 0;
    }
    void refine(uint32_t, int x, int r) { samples.refine(x, r, raw.bit()); }
};

// A good ending makes a pass good, whatever has gone before.
bool endPass(VekDecodeCBProgrState_JPEG2K* pState, const MqDecoder& mq, bool good, bool check)
{
    if (check)
        good = mq.endsPredictably();
    if ((pState->cbStyle & styleReset) != 0)
        pState->contexts = initialContexts;
    return good;
}

template <bool causal>
void runSignificance(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq)
{
    MqCoder coder(*pState, mq);
    significancePass<causal>(pState->flags, coder);
    mq = coder.mq;
}

template <bool causal>
bool runCleanup(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq)
{
    MqCoder coder(*pState, mq);
    cleanupPass<causal>(pState->flags, coder);
    const bool good = (pState->cbStyle & styleSegmentation) == 0 || coder.segmentationSymbol() == 10;
    mq = coder.mq;
    return good;
}

bool isCausal(const VekDecodeCBProgrState_JPEG2K* pState) { return (pState->cbStyle & styleCausal) != 0; }

}  // namespace

bool decodeSignificance(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check)
{
    isCausal(pState) ? runSignificance<true>(pState, mq) : runSignificance<false>(pState, mq);
    return endPass(pState, mq, true, check);
}

bool decodeRefinement(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check)
{
    MqCoder coder(*pState, mq);
    refinementPass<true>(pState->flags, coder);
    mq = coder.mq;
    return endPass(pState, mq, true, check);
}

bool decodeCleanup(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check)
{
    const bool good = isCausal(pState) ? runCleanup<true>(pState, mq) : runCleanup<false>(pState, mq);
    return endPass(pState, mq, good, check);
}

bool decodeRawSignificance(VekDecodeCBProgrState_JPEG2K* pState, RawReader& raw, bool check)
{
    RawCoder coder(*pState, raw);
    if (isCausal(pState))
        significancePass<true>(pState->flags, coder);
    else
        significancePass<false>(pState->flags, coder);
    raw = coder.raw;
    return !check || raw.endsPredictably();
}

bool decodeRawRefinement(VekDecodeCBProgrState_JPEG2K* pState, RawReader& raw)
{
    RawCoder coder(*pState, raw);
    refinementPass<false>(pState->flags, coder);
    raw = coder.raw;
    return raw.endsPredictably();
}

}  // namespace q3
