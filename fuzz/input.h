// What the fuzz targets make of their input.
#ifndef VEK_FUZZ_INPUT_H
#define VEK_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace fuzz {

inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t next()
    {
        if (size_ == 0)
            return 0;
        --size_;
        return *data_++;
    }
    uint64_t next64()
    {
        uint64_t value = 0;
        for (int i = 0; i < 8; ++i) value = value << 8 | next();
        return value;
    }
    std::vector<uint8_t> rest() { return {data_, data_ + size_}; }

private:
    const uint8_t* data_;
    size_t size_;
};

}  // namespace fuzz

#endif
