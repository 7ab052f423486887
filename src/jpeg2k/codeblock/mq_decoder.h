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

// Decodes one segment. Contexts live on from segment to segment, in the caller's hands. The interval's width is held
// in the high half of `width_`, whose low half is zero.
class MqDecoder {
public:
    MqDecoder(const uint8_t* pSrc, int length, MqContexts& contexts)
        : states_(contexts.data()), source_{pSrc, length, 0}, code_((source_.at(0) ^ 0xFF) << 16)
    {
        const Fed fed = feed(source_, code_);
        source_.position = fed.position;
        atMarker_ = fed.atMarker;
        code_ = fed.code << 7;
        bitsLeft_ = fed.bits - 7;
    }

    [[gnu::always_inline]] uint32_t decode(uint32_t context)
    {
        const uint32_t state = states_[context];
        const uint32_t q = probabilityOf(state);
        width_ -= q;
        // The usual way: the more probable symbol, and the width still has its top bit.
        if (width_ > std::max(code_, uint32_t{0x7FFFFFFF})) [[likely]]
            return symbolOf(state);
        const bool isUpper = width_ > code_;
        const bool isMps =
            isUpper != (width_ < q);  // the larger part of the interval is always the more probable one's
        code_ -= isUpper ? 0 : width_;
        width_ = isUpper ? width_ : q;
        states_[context] = isMps ? afterMps(state) : afterLps(state);
        renormalise();
        return symbolOf(state) ^ static_cast<uint32_t>(!isMps);
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
        return width_ - q <= code_;
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

    [[gnu::always_inline]] void renormalise()
    {
        int n = static_cast<int>(_lzcnt_u32(width_));
        while (n > bitsLeft_) [[unlikely]]
            {
                width_ <<= bitsLeft_;
                code_ <<= bitsLeft_;
                n -= bitsLeft_;
                const Fed fed = feed(source_, code_);
                source_.position = fed.position;
                atMarker_ = fed.atMarker;
                code_ = fed.code;
                bitsLeft_ = fed.bits;
            }
        width_ <<= n;
        code_ <<= n;
        bitsLeft_ -= n;
    }

    uint32_t* states_;
    SegmentReader source_;
    uint32_t width_ = 0x80000000;
    uint32_t code_;
    int bitsLeft_;
    bool atMarker_;
};

}  // namespace q3

#endif
