// The bytes of one strip, in order.
#ifndef VEKPIX_TIFF_STRIP_READER_H
#define VEKPIX_TIFF_STRIP_READER_H

#include <span>
#include <vector>

#include "tiff/tags.h"

namespace vekpix::tiff {

class StripReader {
public:
    StripReader() = default;
    StripReader(std::span<const uint8_t> strip, Compression compression) : left_(strip), compression_(compression) {}

    // The next bytes; an Error if there are fewer.
    void read(std::span<uint8_t> bytes);

private:
    struct Packets {
        size_t packed;    // bytes in the strip
        size_t unpacked;  // bytes that they stand for
    };

    std::span<const uint8_t> take(size_t count);
    void unpack(std::span<uint8_t> bytes);
    Packets packetsFor(size_t least) const;
    void unpackWhole(const Packets& packets, std::span<uint8_t> bytes);

    std::span<const uint8_t> left_;
    Compression compression_ = Compression::None;
    std::vector<uint8_t> rest_;  // of a packet that went on behind the bytes asked for
};

}  // namespace vekpix::tiff

#endif
