// The MQ encoder (ISO/IEC 15444-1, Annex C.2), and the queue between it and the caller's buffer.
#ifndef VEK_JPEG2K_CODEBLOCK_MQ_ENCODER_H
#define VEK_JPEG2K_CODEBLOCK_MQ_ENCODER_H

#include <immintrin.h>

#include "jpeg2k/codeblock/mq_states.h"

namespace q3 {

// A decision and its context in one byte.
constexpr uint8_t mqSymbol(uint32_t decision, uint32_t context)
{
    return static_cast<uint8_t>(context << 1 | decision);
}

// How a segment ends.
enum Termination : int32_t {
    fullFlush = 0,  // as any other value
    nearShortest = 1,
    bitFlush = 2,
};

// The registers of Annex C: the interval's width and lower bound, the shifts left before a byte goes out, and the byte
// that a carry may still reach. Before the first one goes out that is an empty one.
class MqEncoder {
public:
    // Bytes go to `out`, three at most.
    [[gnu::always_inline]] void encode(uint8_t symbol, MqContexts& contexts, uint8_t*& out)
    {
        uint32_t& context = contexts[symbol >> 1];
        const uint32_t state = context;
        const uint32_t q = state >> 16;
        const uint32_t isMps = ((state ^ symbol) & 1) - 1;
        width_ -= q;
        if ((isMps & width_ & 0x8000) != 0) [[likely]] {
            low_ += q;
            return;
        }
        // By masks, as nobody can predict which way this goes.
        const uint32_t isUpper = isMps ^ static_cast<uint32_t>(static_cast<int32_t>(width_ - q) >> 31);
        low_ += q & isUpper;
        width_ = q ^ ((width_ ^ q) & isUpper);
        context = stateAfter(state, isMps);
        int n = static_cast<int>(_lzcnt_u32(width_)) - 16;
        width_ <<= n;
        while (n >= shiftsLeft_) [[unlikely]]
            {
                low_ <<= shiftsLeft_;
                n -= shiftsLeft_;
                byteOut(out);
            }
        low_ <<= n;
        shiftsLeft_ -= n;
    }

    // Brings out what is still in the registers, eight bytes at most, so that the decoder finds the interval.
    void flush(int mode, uint8_t*& out)
    {
        if (mode == nearShortest)
            flushNearShortest(out);
        else if (mode == bitFlush)
            flushBits(out);
        else
            flushFully(out);
    }

    // How many bytes a decoder wants beyond those that have gone out; not too few.
    int paddingBytes() const
    {
        const int sent = bytesOut_ != 0 ? 1 : 0;
        const int carries = held_ < 254 ? 1 : 0;
        return sent + (27 - shiftsLeft_ > carries + 22 ? 4 : 3);
    }

private:
    void send(uint8_t*& out)
    {
        *out++ = static_cast<uint8_t>(held_);
        ++bytesOut_;
    }

    [[gnu::always_inline]] void byteOut(uint8_t*& out)
    {
        if (held_ != 0xFF) {
            held_ = (held_ + (low_ >> 27)) & 0xFF;
            if (held_ != 0xFF) {
                send(out);
                held_ = low_ >> 19 & 0xFF;
                low_ &= 0x7FFFF;
                shiftsLeft_ = 8;
                return;
            }
            low_ &= 0x7FFFFFF;
        }
        send(out);
        held_ = low_ >> 20 & 0xFF;
        low_ &= 0xFFFFF;
        shiftsLeft_ = 7;
    }

    void shiftOut(uint8_t*& out)
    {
        low_ <<= shiftsLeft_;
        byteOut(out);
    }

    // The standard's FLUSH. A last 0xFF stays behind.
    void flushFully(uint8_t*& out)
    {
        const uint32_t upper = low_ + width_;
        low_ |= 0xFFFF;
        if (low_ >= upper)
            low_ -= 0x8000;
        shiftOut(out);
        low_ |= 0x7FFF;
        shiftOut(out);
        low_ |= 0x7FFF;
        if (held_ != 0xFF)
            shiftOut(out);
    }

    void flushBits(uint8_t*& out)
    {
        for (int n = 12 - shiftsLeft_; n > 0; n -= shiftsLeft_) shiftOut(out);
        if (held_ != 0xFF)
            shiftOut(out);
    }

    // As few bytes as tell of the interval from `lower` to `upper`, whose next byte lies between `lo` and `hi`. A byte
    // of 0xFF is followed by seven bits.
    void flushNearShortest(uint8_t*& out)
    {
        uint32_t lower = low_ << shiftsLeft_;
        uint32_t upper = (low_ + width_) << shiftsLeft_;
        const bool lowerCarries = (lower & 0x8000000) != 0;
        const bool upperCarries = (upper & 0x8000000) != 0;
        auto lo = static_cast<int32_t>(held_);
        int32_t hi = lo;
        bool isStuffed = false;
        if (!lowerCarries) {
            hi += upperCarries ? 1 : 0;
        } else if (held_ == 0xFF) {
            isStuffed = true;
            lo = static_cast<int32_t>(lower) >> 20;
            hi = static_cast<int32_t>(upper) >> 20;
            upper = (upper & 0xFFFFF) << 7;
            lower <<= 7;
        } else {
            lo += 1;
            hi += upperCarries ? 1 : 0;
        }

        bool replacesHeld = true;
        const auto put = [&](int32_t byte) {
            if (!replacesHeld)
                send(out);
            else
                ++bytesOut_;
            replacesHeld = false;
            held_ = static_cast<uint32_t>(byte);
        };
        const auto next = [&](int bits) {
            const uint32_t mask = (1U << bits) - 1;
            hi = (hi - lo) << bits | static_cast<int32_t>(upper >> (27 - bits) & mask);
            lo = static_cast<int32_t>(lower >> (27 - bits) & mask);
            upper <<= bits;
            lower <<= bits;
        };
        for (;;) {
            const int32_t largest = isStuffed ? 127 : 255;
            if (lo <= largest && hi > largest)
                break;
            if (isStuffed)
                put(0xFF);
            isStuffed = lo >= 255;
            if (isStuffed) {
                next(7);
            } else {
                put(lo);
                next(8);
            }
        }
        if (!replacesHeld && bytesOut_ >= 1) {
            send(out);
            held_ = 0xFF;
        }
    }

    uint32_t width_ = 0x8000;
    uint32_t low_ = 0;
    int32_t shiftsLeft_ = 12;
    uint32_t held_ = 0;
    int32_t bytesOut_ = 0;
};

}  // namespace q3

#endif
