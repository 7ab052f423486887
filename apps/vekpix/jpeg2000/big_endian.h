// Numbers with their highest byte first, as code-streams and boxes have them.
#ifndef VEKPIX_JPEG2000_BIG_ENDIAN_H
#define VEKPIX_JPEG2000_BIG_ENDIAN_H

#include <cstdint>
#include <span>
#include <vector>

#include "error.h"

namespace vekpix::jpeg2000 {

// Reads from front to back.
class Fields {
public:
    explicit Fields(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    uint32_t u8() { return take(1); }
    uint32_t u16() { return take(2); }
    uint32_t u32() { return take(4); }
    size_t left() const { return bytes_.size(); }
    std::span<const uint8_t> rest() const { return bytes_; }
    std::span<const uint8_t> bytes(size_t count)
    {
        if (bytes_.size() < count)
            throw Error("the file's headers end early");
        const auto result = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return result;
    }

private:
    uint32_t take(size_t count)
    {
        uint32_t value = 0;
        for (const uint8_t byte : bytes(count)) value = value << 8 | byte;
        return value;
    }

    std::span<const uint8_t> bytes_;
};

inline void put8(std::vector<uint8_t>& out, uint32_t value) { out.push_back(static_cast<uint8_t>(value)); }
inline void put16(std::vector<uint8_t>& out, uint32_t value)
{
    put8(out, value >> 8);
    put8(out, value);
}
inline void put32(std::vector<uint8_t>& out, uint32_t value)
{
    put16(out, value >> 16);
    put16(out, value);
}

}  // namespace vekpix::jpeg2000

#endif
