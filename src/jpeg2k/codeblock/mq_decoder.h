// The MQ decoder (ISO/IEC 15444-1, Annex C, in the software conventions of Annex J).
#ifndef VEK_JPEG2K_CODEBLOCK_MQ_DECODER_H
#define VEK_JPEG2K_CODEBLOCK_MQ_DECODER_H

#include <immintrin.h>

#include <algorithm>

#include "frame/vec.h"
#include "jpeg2k/codeblock/mq_states.h"

namespace q3 {

// The bytes of a codeword segment; behind its end there are only 0xFF.
struct SegmentReader {
    const uint8_t* p;
    int length;
    int position;

    uint32_t at(int i) const { return i < length ? p[i] : 0xFF; }
};

// Decodes one segment. Contexts live on from segment to segment, in the caller's hands.
//
// The interval's width stands in the high half of a word whose low half is zero; what is held is by how much it exceeds
// `floor_`, the least width that leaves a more probable symbol without further work: it has its top bit and is above
// the code. The code stands in the high half of `code_`; the low half is what bytes read ahead will bring.
class MqDecoder {
public:
    MqDecoder(const uint8_t* pSrc, int length, MqContexts& contexts)
        : states_(contexts.data()), source_{pSrc, length, 0}
    {
        const Fed fed = feed(source_, uint64_t{source_.at(0) ^ 0xFF} << 48);
        source_.position = fed.advance;
        atMarker_ = fed.advance == 0;
        bitsLeft_ = fed.bits - 7;
        setInterval(uint32_t{1} << 31, fed.code << 7);
    }

    [[gnu::always_inline]] uint32_t decode(uint32_t context)
    {
        const uint32_t state = states_[context];
        const uint32_t q = probabilityOf(state);
        excess_ -= q;
        if (excess_ >= 0) [[likely]]
            return symbolOf(state);
        // By masks, as nobody can predict which way this goes. The larger part of the interval is always the more
        // probable symbol's.
        const uint32_t upper = width();
        const uint32_t isUpper = maskOfLess(highHalf(code_), upper);
        const uint32_t isMps = isUpper ^ maskOfLess(upper, q);
        states_[context] = stateAfter(state, isMps);
        renormalise(q ^ ((upper ^ q) & isUpper), code_ - (uint64_t{upper & ~isUpper} << 32));
        return symbolOf(state ^ ~isMps);
    }

    // Whether the encoder has ended the segment as a predictable termination tells (Annex D.4.2).
    bool endsPredictably() const
    {
        int bits = bitsLeft_ % 8;
        const int position = source_.position - bitsLeft_ / 8;
        if (source_.at(position) < 0xFF && !atMarker_)
            return false;
        if (bits != 0) {
            if (!atMarker_)
                return false;
            if (bits == 1)
                return true;
        } else {
            if (!atMarker_ && source_.at(position + 1) < 0x90)
                return false;
            bits = 8;
        }
        const uint32_t q = 0x80000000 >> (bits - 1);
        return width() - q <= highHalf(code_);
    }

private:
    // What a byte brings, or four of which none is 0xFF; at a marker or behind the end nothing any more.
    struct Fed {
        uint64_t code;
        int bits;
        int advance;  // none only at a marker
    };
    [[gnu::noinline]] static Fed feed(SegmentReader source, uint64_t code)
    {
        if (source.length - source.position > 4) {
            const uint8_t* const p = source.p + source.position;
            const auto bytes = loadScalar<uint32_t>(p);
            if ((bytes & (~bytes - 0x01010101) & 0x80808080) == 0)
                return {code + (uint64_t{~__builtin_bswap32(loadScalar<uint32_t>(p + 1))} << 16), 32, 4};
        }
        const uint32_t byte = source.at(source.position);
        const uint32_t next = source.at(source.position + 1);
        if (byte != 0xFF)
            return {code + (uint64_t{0xFF - next} << 40), 8, 1};
        if (next > 0x8F)
            return {code, 8, 0};
        return {code + (uint64_t{0x7F} << 41) - (uint64_t{next} << 41), 7, 1};
    }

    static uint32_t highHalf(uint64_t code) { return static_cast<uint32_t>(code >> 32); }
    static uint32_t maskOfLess(uint32_t a, uint32_t b)
    {
        return static_cast<uint32_t>((int64_t{a} - int64_t{b}) >> 63);
    }

    uint32_t width() const { return static_cast<uint32_t>(floor_ + excess_); }

    [[gnu::always_inline]] void setInterval(uint32_t width, uint64_t code)
    {
        code_ = code;
        floor_ = std::max(int64_t{highHalf(code)} + 1, int64_t{1} << 31);
        excess_ = width - floor_;
    }

    [[gnu::always_inline]] void renormalise(uint32_t width, uint64_t code)
    {
        int n = static_cast<int>(_lzcnt_u32(width));
        width <<= n;
        while (n > bitsLeft_) [[unlikely]]
            {
                n -= bitsLeft_;
                const Fed fed = feed(source_, code << bitsLeft_);
                source_.position += fed.advance;
                atMarker_ = fed.advance == 0;
                code = fed.code;
                bitsLeft_ = fed.bits;
            }
        bitsLeft_ -= n;
        setInterval(width, code << n);
    }

    uint32_t* states_;
    SegmentReader source_;
    int64_t excess_;
    int64_t floor_;
    uint64_t code_;
    int bitsLeft_;
    bool atMarker_;
};

}  // namespace q3

#endif
