// Where coded bytes go.
#ifndef VEKPIX_IO_BYTE_SINK_H
#define VEKPIX_IO_BYTE_SINK_H

#include <cstdint>
#include <span>
#include <vector>

namespace vekpix {

class ByteSink {
public:
    virtual ~ByteSink() = default;
    virtual void write(std::span<const uint8_t> bytes) = 0;
};

class MemorySink : public ByteSink {
public:
    void write(std::span<const uint8_t> bytes) override { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    std::vector<uint8_t>& bytes() { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

}  // namespace vekpix

#endif
