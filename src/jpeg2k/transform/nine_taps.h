// One pair of the forward 9/7 filter by its nine and seven taps (ISO/IEC 15444-1, Annex F) instead of by lifting.
// `even` points at the sample of the even position, `odd` at the other; samples may lie at any address.
#ifndef VEK_JPEG2K_TRANSFORM_NINE_TAPS_H
#define VEK_JPEG2K_TRANSFORM_NINE_TAPS_H

#include <algorithm>
#include <cmath>

#include "frame/vec.h"

namespace q3 {

template <typename T>
struct TapResults {
    T low, high;
};

// Single precision: fused multiply-adds from the outermost tap inwards; the sums of two samples are rounded.
inline TapResults<float> nineTaps(const float* even, const float* odd)
{
    const auto sum = [](const float* p, int i) { return loadScalar<float>(p - i) + loadScalar<float>(p + i); };
    float low = 0.026748758F * sum(even, 4);
    low = std::fma(-0.01686412F, sum(even, 3), low);
    low = std::fma(-0.078223266F, sum(even, 2), low);
    low = std::fma(0.26686412F, sum(even, 1), low);
    low = std::fma(0.602949F, loadScalar<float>(even), low);
    float high = 0.091271766F * sum(odd, 3);
    high = std::fma(-0.057543527F, sum(odd, 2), high);
    high = std::fma(-0.59127176F, sum(odd, 1), high);
    high = std::fma(1.115087F, loadScalar<float>(odd), high);
    return {low, high};
}

// 16 bits, Q16: one exact sum, + 32768, >> 16. The high result is clipped; the low one is clipped at 32767, and cut to
// 16 bits below: this one-sidedness is deliberate.
inline TapResults<int16_t> nineTaps(const int16_t* even, const int16_t* odd)
{
    const auto at = [](const int16_t* p) { return int64_t{loadScalar<int16_t>(p)}; };
    const auto sum = [at](const int16_t* p, int i) { return at(p - i) + at(p + i); };
    const int64_t low = (39515 * at(even) + 17489 * sum(even, 1) - 5126 * sum(even, 2) - 1105 * sum(even, 3) +
                         1753 * sum(even, 4) + 32768) >>
                        16;
    const int64_t high =
        (73078 * at(odd) - 38749 * sum(odd, 1) - 3771 * sum(odd, 2) + 5982 * sum(odd, 3) + 32768) >> 16;
    return {static_cast<int16_t>(static_cast<uint16_t>(std::min<int64_t>(low, 32767))),
            static_cast<int16_t>(std::clamp<int64_t>(high, -32768, 32767))};
}

// 32 bits, Q16: the sums of two samples wrap, each product is rounded on its own, (sum * tap + 32768) >> 16 in 64 bits,
// and the sum of the products wraps.
inline TapResults<int32_t> nineTaps(const int32_t* even, const int32_t* odd)
{
    const auto at = [](const int32_t* p) { return loadScalar<int32_t>(p); };
    const auto sum = [at](const int32_t* p, int i) {
        return static_cast<int32_t>(static_cast<uint32_t>(at(p - i)) + static_cast<uint32_t>(at(p + i)));
    };
    const auto term = [](int64_t tap, int32_t v) { return (tap * v + 32768) >> 16; };
    const int64_t low = term(39515, at(even)) + term(17489, sum(even, 1)) + term(-5126, sum(even, 2)) +
                        term(-1105, sum(even, 3)) + term(1753, sum(even, 4));
    const int64_t high =
        term(73078, at(odd)) + term(-38749, sum(odd, 1)) + term(-3771, sum(odd, 2)) + term(5982, sum(odd, 3));
    return {static_cast<int32_t>(static_cast<uint32_t>(low)), static_cast<int32_t>(static_cast<uint32_t>(high))};
}

}  // namespace q3

#endif
