// Repeatable random test data.
#ifndef VEK_TESTS_SUPPORT_GENERATORS_H
#define VEK_TESTS_SUPPORT_GENERATORS_H

#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

namespace support {

class Random {
public:
    explicit Random(uint64_t seed) : engine_(seed) {}

    // Uniform over low .. high, both included.
    template <typename T>
    T in(T low, T high)
    {
        return static_cast<T>(std::uniform_int_distribution<int64_t>(low, high)(engine_));
    }
    template <typename T>
    T any()
    {
        return static_cast<T>(engine_());
    }
    // Mostly values at and next to the ends of T, zero and powers of two; else uniform.
    template <typename T>
    T extreme()
    {
        const int64_t low = std::numeric_limits<T>::min();
        const int64_t high = std::numeric_limits<T>::max();
        switch (in(0, 5)) {
            case 0:
                return static_cast<T>(low + in(0, 2));
            case 1:
                return static_cast<T>(high - in(0, 2));
            case 2:
                return static_cast<T>(in(-2, 2));
            case 3:
                return static_cast<T>((int64_t{1} << in(0, static_cast<int>(8 * sizeof(T)) - 1)) + in(-1, 1));
            default:
                return any<T>();
        }
    }
    bool chance(int percent) { return in(0, 99) < percent; }
    uint64_t bits() { return engine_(); }

    template <typename Range>
    void fill(Range&& range)
    {
        for (auto& value : range) value = any<std::decay_t<decltype(value)>>();
    }

private:
    std::mt19937_64 engine_;
};

}  // namespace support

#endif
