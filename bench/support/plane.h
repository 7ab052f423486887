// Image data to time functions on.
#ifndef VEK_BENCH_SUPPORT_PLANE_H
#define VEK_BENCH_SUPPORT_PLANE_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace support {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};

// `count` elements at a 64-byte boundary, filled with noise of the given seed, which repeats itself after 65536.
template <typename T>
class AlignedArray {
public:
    explicit AlignedArray(size_t count, uint64_t seed = 1)
        : data_(static_cast<T*>(std::aligned_alloc(64, (count * sizeof(T) + 63) / 64 * 64))), count_(count)
    {
        constexpr size_t period = 65536;
        uint64_t state = seed;
        for (size_t i = 0; i < std::min(count, period); ++i) data_.get()[i] = static_cast<T>(next(state));
        for (size_t i = period; i < count; i += period)
            std::copy_n(data_.get(), std::min(period, count - i), data_.get() + i);
    }

    T* data() { return data_.get(); }
    T& operator[](size_t i) { return data_.get()[i]; }
    size_t size() const { return count_; }

private:
    // SplitMix64
    static uint64_t next(uint64_t& state)
    {
        uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }

    std::unique_ptr<T, FreeDeleter> data_;
    size_t count_;
};

// A region of `width` x `height` elements whose rows begin at 64-byte boundaries.
template <typename T>
class Plane {
public:
    Plane(int width, int height, uint64_t seed = 1)
        : step_((width * static_cast<int>(sizeof(T)) + 63) / 64 * 64),
          elements_(static_cast<size_t>(step_) / sizeof(T) * static_cast<size_t>(height), seed)
    {
    }

    T* data() { return elements_.data(); }
    int step() const { return step_; }  // bytes

private:
    int step_;
    AlignedArray<T> elements_;
};

}  // namespace support

#endif
