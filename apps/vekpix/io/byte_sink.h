// Where coded bytes go.
#ifndef VEKPIX_IO_BYTE_SINK_H
#define VEKPIX_IO_BYTE_SINK_H

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace vekpix {

class ByteSink {
public:
    virtual ~ByteSink() = default;
    virtual void write(std::span<const uint8_t> bytes) = 0;
};

// For formats that tell at the front what is only known at the end.
class ChangeableSink : public ByteSink {
public:
    // Writes over bytes that have been written, from `place` on.
    virtual void change(uint64_t place, std::span<const uint8_t> bytes) = 0;
};

class MemorySink : public ChangeableSink {
public:
    void write(std::span<const uint8_t> bytes) override { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    void change(uint64_t place, std::span<const uint8_t> bytes) override
    {
        std::ranges::copy(bytes, bytes_.begin() + static_cast<ptrdiff_t>(place));
    }
    std::vector<uint8_t>& bytes() { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

}  // namespace vekpix

#endif
