// The bit writer of raw segments (ISO/IEC 15444-1, D.6): the first bit behind a byte of 0xFF is stuffed.
#ifndef VEK_JPEG2K_CODEBLOCK_RAW_WRITER_H
#define VEK_JPEG2K_CODEBLOCK_RAW_WRITER_H

#include <cstdint>

namespace q3 {

class RawWriter {
public:
    // Whether it fills a byte, which goes to `out`.
    bool put(uint32_t bit, uint8_t*& out)
    {
        byte_ |= (bit & 1) << next_;
        if (--next_ >= 0)
            return false;
        *out++ = static_cast<uint8_t>(byte_);
        isBehindFF_ = byte_ == 0xFF;
        next_ = isBehindFF_ ? 6 : 7;
        byte_ = 0;
        return true;
    }

    bool isPending() const { return next_ != (isBehindFF_ ? 6 : 7); }

    // Fills up a pending byte with 0101... and ends the segment. Returns the number of bytes written.
    int flush(uint8_t* out)
    {
        const bool pending = isPending();
        if (pending)
            *out = static_cast<uint8_t>(byte_ | 42U >> (6 - next_));
        *this = {};
        return pending ? 1 : 0;
    }

private:
    uint32_t byte_ = 0;
    int32_t next_ = 7;
    bool isBehindFF_ = false;
};

}  // namespace q3

#endif
