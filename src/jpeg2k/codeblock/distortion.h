// By how much a pass reduces the squared error of a sample, in units of 2^-13 of the square of the plane's bit.
#ifndef VEK_JPEG2K_CODEBLOCK_DISTORTION_H
#define VEK_JPEG2K_CODEBLOCK_DISTORTION_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace q3 {

// By the six bits below the plane's: a sample becomes significant. It is rebuilt at the middle of its interval, or
// without an error.
constexpr std::array<int32_t, 64> FsLossy_LUT = [] {
    std::array<int32_t, 64> t{};
    for (int i = 0; i < 64; ++i) t[static_cast<size_t>(i)] = 6144 + 384 * i;
    return t;
}();
constexpr std::array<int32_t, 64> FsLossless_LUT = [] {
    std::array<int32_t, 64> t{};
    for (int i = 0; i < 64; ++i) t[static_cast<size_t>(i)] = 2 * (64 + i) * (64 + i);
    return t;
}();
// By the plane's bit and the six below it: a sample is refined.
constexpr std::array<int32_t, 128> FmLossy_LUT = [] {
    std::array<int32_t, 128> t{};
    for (int i = 0; i < 128; ++i) t[static_cast<size_t>(i)] = i < 64 ? 6144 - 128 * i : 128 * i - 10240;
    return t;
}();
constexpr std::array<int32_t, 128> FmLossless_LUT = [] {
    std::array<int32_t, 128> t{};
    for (int i = 0; i < 128; ++i) t[static_cast<size_t>(i)] = 2 * (64 - i) * (64 - i);
    return t;
}();

// Adds up what a pass over a plane brings.
class PassDistortion {
public:
    PassDistortion(int plane, bool isLossless)
        : significance_(isLossless ? FsLossless_LUT.data() : FsLossy_LUT.data()),
          refinement_(isLossless ? FmLossless_LUT.data() : FmLossy_LUT.data()),
          right_(plane > 6 ? plane - 6 : 0),
          left_(plane < 6 ? 6 - plane : 0)
    {
    }

    void becomesSignificant(uint32_t sample) { sum_ += static_cast<uint32_t>(significance_[index(sample) & 63]); }
    void isRefined(uint32_t sample) { sum_ += static_cast<uint32_t>(refinement_[index(sample) & 127]); }
    int32_t sum() const { return static_cast<int32_t>(sum_); }

private:
    uint32_t index(uint32_t sample) const { return sample >> right_ << left_; }

    const int32_t* significance_;
    const int32_t* refinement_;
    int right_, left_;
    uint32_t sum_ = 0;
};

}  // namespace q3

#endif
