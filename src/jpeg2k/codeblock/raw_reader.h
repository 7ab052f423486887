// The bits of raw segments (ISO/IEC 15444-1, D.6): the first bit behind a byte of 0xFF is stuffed.
#ifndef VEK_JPEG2K_CODEBLOCK_RAW_READER_H
#define VEK_JPEG2K_CODEBLOCK_RAW_READER_H

#include "jpeg2k/codeblock/mq_decoder.h"

namespace q3 {

class RawReader {
public:
    RawReader(const uint8_t* pSrc, int length) : source_{pSrc, length, 0} {}

    [[gnu::always_inline]] uint32_t bit()
    {
        if (index_ < 0) [[unlikely]]
            fetch();
        return byte_ >> index_-- & 1;
    }

    // Whether the bits that are left of the byte in hand are the alternating fill.
    bool endsPredictably() const { return index_ < 0 || (byte_ & ((2U << index_) - 1)) == 0x55U >> (7 - index_); }

private:
    void fetch()
    {
        index_ = byte_ < 0xFF ? 7 : 6;
        byte_ = source_.at(source_.position++);
    }

    SegmentReader source_;
    uint32_t byte_ = 0;
    int index_ = -1;
};

}  // namespace q3

#endif
