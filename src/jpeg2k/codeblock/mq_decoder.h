// The MQ decoder (ISO/IEC 15444-1, Annex C, in the software conventions of Annex J).
#ifndef VEK_JPEG2K_CODEBLOCK_MQ_DECODER_H
#define VEK_JPEG2K_CODEBLOCK_MQ_DECODER_H

#include <immintrin.h>

#include <algorithm>

#include "jpeg2k/codeblock/mq_states.h"

namespace q3 {

// The bytes of a codeword segment; behind its end there are only 0xFF.
struct SegmentReader {
    const uint8_t* p;
    int length;
    int position;

    uint32_t at(int i) const { return i < length ? p[i] : 0xFF; }
};

// Decodes one segment. Contexts live on from segment to segment, in the caller's hands. The interval's width stands in
// the high half of a word whose low half is zero; what is held is by how much it exceeds `floor_`, the least width that
// leaves a more probable symbol without any further work: one that has its top bit and is above the code.
class MqDecoder {
public:
    MqDecoder(const uint8_t* pSrc, int length, MqContexts& contexts)
        : states_(contexts.data()), source_{pSrc, length, 0}, code_((source_.at(0) ^ 0xFF) << 16)
    {
        const Fed fed = feed(source_, code_);
        source_.position = fed.position;
        atMarker_ = fed.atMarker;
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
        const uint32_t isUpper = maskOfLess(code_, upper);
        const uint32_t isMps = isUpper ^ maskOfLess(upper, q);
        states_[context] = stateAfter(state, isMps);
        renormalise(q ^ ((upper ^ q) & isUpper), code_ - (upper & ~isUpper));
        return symbolOf(state ^ ~isMps);
    }

    // Whether the encoder has ended the segment as a predictable termination tells (Annex D.4.2).
    bool endsPredictably() const
    {
        int bits = bitsLeft_;
        if (source_.at(source_.position) < 0xFF && !atMarker_)
            return false;
        if (bits != 0) {
            if (!atMarker_)
                return false;
            if (bits == 1)
                return true;
        } else {
            if (!atMarker_ && source_.at(source_.position + 1) < 0x90)
                return false;
            bits = 8;
        }
        const uint32_t q = 0x80000000 >> (bits - 1);
        return width() - q <= code_;
    }

private:
    // What a byte brings; at a marker or behind the end nothing any more.
    struct Fed {
        uint32_t code;
        int bits;
        int position;
        bool atMarker;
    };
    [[gnu::noinline]] static Fed feed(SegmentReader source, uint32_t code)
    {
        const uint32_t byte = source.at(source.position);
        const uint32_t next = source.at(source.position + 1);
        if (byte != 0xFF)
            return {code + 0xFF00 - (next << 8), 8, source.position + 1, false};
        if (next > 0x8F)
            return {code, 8, source.position, true};
        return {code + 0xFE00 - (next << 9), 7, source.position + 1, false};
    }

    static uint32_t maskOfLess(uint32_t a, uint32_t b)
    {
        return static_cast<uint32_t>((int64_t{a} - int64_t{b}) >> 63);
    }

    uint32_t width() const { return floor_ + static_cast<uint32_t>(excess_); }

    // The code can lie above the interval, but is never more than 0xFFFFFF00.
    [[gnu::always_inline]] void setInterval(uint32_t width, uint32_t code)
    {
        code_ = code;
        floor_ = std::max(code + 1, uint32_t{1} << 31);
        excess_ = int64_t{width} - int64_t{floor_};
    }

    [[gnu::always_inline]] void renormalise(uint32_t width, uint32_t code)
    {
        int n = static_cast<int>(_lzcnt_u32(width));
        width <<= n;
        while (n > bitsLeft_) [[unlikely]]
            {
                n -= bitsLeft_;
                const Fed fed = feed(source_, code << bitsLeft_);
                source_.position = fed.position;
                atMarker_ = fed.atMarker;
                code = fed.code;
                bitsLeft_ = fed.bits;
            }
        bitsLeft_ -= n;
        setInterval(width, code << n);
    }

    uint32_t* states_;
    SegmentReader source_;
    int64_t excess_;
    uint32_t floor_;
    uint32_t code_;
    int bitsLeft_;
    bool atMarker_;
};

}  // namespace q3

#endif
