// A region of samples in guarded memory, at any address, with gaps between its rows.
#ifndef VEK_TESTS_JPEG2K_TRANSFORM_SAMPLE_PLANE_H
#define VEK_TESTS_JPEG2K_TRANSFORM_SAMPLE_PLANE_H

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/types.h"

namespace support {

template <typename T>
class SamplePlane {
public:
    SamplePlane(VekSize size, int gap, Guard guard, size_t misalignment)
        : size_(size),
          step_(size.width * static_cast<int>(sizeof(T)) + gap),
          bytes_(std::make_unique<GuardedBytes>(extent(), guard, misalignment))
    {
    }

    T* data() { return reinterpret_cast<T*>(bytes_->data()); }
    int step() const { return step_; }
    int width() const { return size_.width; }
    int height() const { return size_.height; }

    T at(int x, int y) const
    {
        T value;
        std::memcpy(&value, address(x, y), sizeof value);
        return value;
    }
    void set(int x, int y, T value) { std::memcpy(address(x, y), &value, sizeof value); }

    // Any bytes in the gaps; samples from the whole range, at times mostly its ends; floats of the size that images
    // have, at times with much smaller ones among them.
    void fill(Random& random)
    {
        for (size_t i = 0; i < extent(); i += sizeof(uint64_t)) {
            const uint64_t bits = random.bits();
            std::memcpy(bytes_->data() + i, &bits, std::min(sizeof bits, extent() - i));
        }
        const bool extremes = random.chance(30);
        for (int y = 0; y < size_.height; ++y)
            for (int x = 0; x < size_.width; ++x) set(x, y, sample(random, extremes));
    }
    void copyFrom(const SamplePlane& other) { std::memcpy(bytes_->data(), other.bytes_->data(), extent()); }
    bool operator==(const SamplePlane& other) const
    {
        return extent() == other.extent() && std::memcmp(bytes_->data(), other.bytes_->data(), extent()) == 0;
    }

private:
    size_t extent() const
    {
        return static_cast<size_t>(step_) * static_cast<size_t>(size_.height - 1) +
               static_cast<size_t>(size_.width) * sizeof(T);
    }
    uint8_t* address(int x, int y) const
    {
        return bytes_->data() + int64_t{step_} * y + int64_t{x} * int64_t{sizeof(T)};
    }
    static T sample(Random& random, bool extremes)
    {
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(random.in(-1000000, 1000000)) * (extremes && random.chance(50) ? 1e-9F : 0.0037F);
        else
            return extremes ? random.extreme<T>() : random.any<T>();
    }

    VekSize size_;
    int step_;
    std::unique_ptr<GuardedBytes> bytes_;
};

}  // namespace support

#endif
