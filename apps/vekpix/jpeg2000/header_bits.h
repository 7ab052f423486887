// The bits of packet headers, with a zero bit stuffed behind each byte of 0xFF (ISO/IEC 15444-1, B.10.1).
#ifndef VEKPIX_JPEG2000_HEADER_BITS_H
#define VEKPIX_JPEG2000_HEADER_BITS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "error.h"

namespace vekpix::jpeg2000 {

class HeaderBitReader {
public:
    explicit HeaderBitReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    int bit()
    {
        if (left_ == 0) {
            left_ = byte_ == 0xFF ? 7 : 8;
            byte_ = next();
        }
        return byte_ >> --left_ & 1;
    }
    int bits(int count)
    {
        int value = 0;
        while (count-- > 0) value = value << 1 | bit();
        return value;
    }
    // Passes over what is left of the last byte, and over the byte that a last 0xFF has behind it. Returns the bytes
    // read.
    size_t finish()
    {
        if (byte_ == 0xFF)
            next();
        left_ = 0;
        byte_ = 0;
        return position_;
    }

private:
    uint8_t next()
    {
        if (position_ == bytes_.size())
            throw Error("a packet header ends early");
        return bytes_[position_++];
    }

    std::span<const uint8_t> bytes_;
    size_t position_ = 0;
    uint8_t byte_ = 0;
    int left_ = 0;
};

class HeaderBitWriter {
public:
    explicit HeaderBitWriter(std::vector<uint8_t>& bytes) : bytes_(bytes) {}

    void bit(int value)
    {
        byte_ = byte_ << 1 | (value & 1);
        if (--free_ == 0)
            flush();
    }
    void bits(int value, int count)
    {
        while (count-- > 0) bit(value >> count);
    }
    // Fills the last byte; none may be 0xFF.
    void finish()
    {
        while (free_ != capacity_) bit(0);
        if (capacity_ == 7)
            bytes_.push_back(0);
    }

private:
    void flush()
    {
        bytes_.push_back(static_cast<uint8_t>(byte_));
        capacity_ = byte_ == 0xFF ? 7 : 8;
        free_ = capacity_;
        byte_ = 0;
    }

    std::vector<uint8_t>& bytes_;
    int byte_ = 0;
    int capacity_ = 8;
    int free_ = 8;
};

}  // namespace vekpix::jpeg2000

#endif
