#include "reference/jpeg2k/wavelet97.h"

#include <cmath>
#include <map>

#include "reference/bits.h"

namespace model {

namespace {

// Single precision. a, b, c, d, then K, 1 / K and d / K.
constexpr float a = -1.5861343F, b = -0.052980117F, c = 0.8829111F, d = 0.44350687F;
constexpr float k = 1.2301741F, oneByK = 0.8128931F, dByK = 0.36052364F;

float separate(float t, float factor, float x, float x2)
{
    const float sum = x + x2;
    const float product = factor * sum;
    return t + product;
}
float fused(float t, float factor, float x, float x2)
{
    const float sum = x + x2;
    return std::fma(factor, sum, t);
}

template <float (*lift)(float, float, float, float)>
constexpr Stages<float> floatStages = {
    [](float o, float e, float e2) { return lift(o, a, e, e2); },
    [](float e, float o, float o2) { return lift(e, b, o, o2); },
    [](float o, float e, float e2) { return lift(o, c, e, e2); },
    [](float e, float o, float o2) { return lift(e, d, o, o2) * oneByK; },
    [](float o) { return o * k; },
    [](float l, float h, float h2) { return lift(k * l, -dByK, h, h2); },
    [](float h, float e, float e2) { return lift(oneByK * h, -c, e, e2); },
    [](float e, float o, float o2) { return lift(e, -b, o, o2); },
    [](float o, float e, float e2) { return lift(o, -a, e, e2); },
};

// 16-bit lanes.
int16_t sat(int32_t v) { return saturate16(v); }
int16_t sadd(int16_t x, int16_t y) { return sat(x + y); }
int16_t m(int16_t x, int32_t factor) { return static_cast<int16_t>((x * factor + 16384) >> 15); }

// Q16 with 64-bit products.
int64_t rounded16(int64_t v) { return (v + 32768) >> 16; }
int16_t clippedLift(int16_t t, int64_t factor, int16_t x, int16_t x2)
{
    return saturate16(t + rounded16(factor * (x + x2)));
}
int32_t wrappedSum(int32_t x, int32_t x2) { return wrap32(int64_t{x} + x2); }
int32_t wrappedLift(int32_t t, int64_t factor, int32_t x, int32_t x2)
{
    return wrap32(t + rounded16(factor * wrappedSum(x, x2)));
}

}  // namespace

const Stages<float> separateFloat = floatStages<separate>;
const Stages<float> fusedFloat = floatStages<fused>;

const Stages<int16_t> q15 = {
    [](int16_t o, int16_t e, int16_t e2) {
        const int16_t s = sadd(e, e2);
        return sadd(o, m(sadd(s, s), -25987));
    },
    [](int16_t e, int16_t o, int16_t o2) { return sadd(e, m(sadd(o, o2), -1736)); },
    [](int16_t o, int16_t e, int16_t e2) { return sadd(o, m(sadd(e, e2), 28931)); },
    [](int16_t e, int16_t o, int16_t o2) {
        const auto half = static_cast<int16_t>(m(sadd(o, o2), 23627) >> 1);
        return sadd(half, m(e, 26637));
    },
    [](int16_t o) { return m(sadd(o, o), 20155); },
    [](int16_t l, int16_t h, int16_t h2) { return sat(m(sadd(l, l), 20155) - (m(sadd(h, h2), 23627) >> 1)); },
    [](int16_t h, int16_t e, int16_t e2) { return sat(m(h, 26637) - m(sadd(e, e2), 28931)); },
    [](int16_t e, int16_t o, int16_t o2) { return sadd(e, m(sadd(o, o2), 1736)); },
    [](int16_t o, int16_t e, int16_t e2) {
        const int16_t t = sadd(e, e2);
        return sadd(o, m(sadd(t, t), 25987));
    },
};

const Stages<int16_t> q16Clipped = {
    [](int16_t o, int16_t e, int16_t e2) { return clippedLift(o, -103949, e, e2); },
    [](int16_t e, int16_t o, int16_t o2) { return clippedLift(e, -3472, o, o2); },
    [](int16_t o, int16_t e, int16_t e2) { return clippedLift(o, 57862, e, e2); },
    [](int16_t e, int16_t o, int16_t o2) {
        return saturate16(rounded16(int64_t{e} * 53274 + int64_t{23627} * (o + o2)));
    },
    [](int16_t o) { return saturate16(rounded16(int64_t{o} * 80621)); },
    [](int16_t l, int16_t h, int16_t h2) {
        return saturate16(rounded16(int64_t{l} * 80621 - int64_t{23627} * (h + h2)));
    },
    [](int16_t h, int16_t e, int16_t e2) {
        return saturate16(rounded16(int64_t{h} * 53274 - int64_t{57862} * (e + e2)));
    },
    [](int16_t e, int16_t o, int16_t o2) { return saturate16(e - rounded16(int64_t{-3472} * (o + o2))); },
    [](int16_t o, int16_t e, int16_t e2) { return saturate16(o - rounded16(int64_t{-103949} * (e + e2))); },
};

const Stages<int32_t> q16 = {
    [](int32_t o, int32_t e, int32_t e2) { return wrappedLift(o, -103949, e, e2); },
    [](int32_t e, int32_t o, int32_t o2) { return wrappedLift(e, -3472, o, o2); },
    [](int32_t o, int32_t e, int32_t e2) { return wrappedLift(o, 57862, e, e2); },
    [](int32_t e, int32_t o, int32_t o2) {
        return wrap32(rounded16(int64_t{e} * 53274 + int64_t{23627} * wrappedSum(o, o2)));
    },
    [](int32_t o) { return wrap32(rounded16(int64_t{o} * 80621)); },
    [](int32_t l, int32_t h, int32_t h2) {
        return wrap32(rounded16(int64_t{l} * 80621 + int64_t{-23627} * wrappedSum(h, h2)));
    },
    [](int32_t h, int32_t e, int32_t e2) {
        return wrap32(rounded16(int64_t{h} * 53274 + int64_t{-57862} * wrappedSum(e, e2)));
    },
    [](int32_t e, int32_t o, int32_t o2) { return wrap32(e - rounded16(int64_t{-3472} * wrappedSum(o, o2))); },
    [](int32_t o, int32_t e, int32_t e2) { return wrap32(o - rounded16(int64_t{-103949} * wrappedSum(e, e2))); },
};

// Positions: even(i) and odd(i) follow one another, even(0) is the first even sample at or behind x[0]; so with phase 1
// the odd sample x[0] is odd(-1).
template <typename T>
Bands<T> forward97(const T* x, int pairs, int phase, const Stages<T>& ends, const Stages<T>& interior)
{
    const int w = pairs;
    std::map<int, T> even, odd;
    Bands<T> bands;
    for (int i = -2; i <= w + 1; ++i) even[i] = x[2 * i + phase];
    for (int i = -2; i <= w; ++i) odd[i] = x[2 * i + 1 + phase];
    const auto by = [&](int i, int first, int last) -> const Stages<T>& {
        return i >= first && i <= last ? interior : ends;
    };
    for (int i = -2; i <= w; ++i) odd[i] = by(i, 2, w - 1).forward1(odd[i], even[i], even[i + 1]);
    for (int i = -1; i <= w; ++i) even[i] = by(i, 2, w - 1).forward2(even[i], odd[i - 1], odd[i]);
    for (int i = -1; i <= w - 1; ++i) odd[i] = by(i, 1, w - 2).forward3(odd[i], even[i], even[i + 1]);
    for (int i = 0; i <= w - 1; ++i) bands.low.push_back(by(i, 1, w - 2).forward4(even[i], odd[i - 1], odd[i]));
    for (int i = -phase; i <= w - 1 - phase; ++i) bands.high.push_back(by(i, 0, w - 3).forward5(odd[i]));
    return bands;
}

// even(i) and odd(i) follow one another; with phase 0 the output begins with even(0), with phase 1 with odd(0).
template <typename T>
std::vector<T> inverse97(const T* low, const T* high, int pairs, int phase, const Stages<T>& ends,
                         const Stages<T>& interior)
{
    const int w = pairs;
    std::map<int, T> even, odd;
    const auto by = [&](int i, int first, int last) -> const Stages<T>& {
        return i >= first && i <= last ? interior : ends;
    };
    for (int i = -1; i <= w + 1; ++i) even[i] = by(i, 3, w).inverse1(low[i - phase], high[i - 1], high[i]);
    for (int i = -1; i <= w; ++i) odd[i] = by(i, 2, w - 1).inverse2(high[i], even[i], even[i + 1]);
    for (int i = 0; i <= w; ++i) even[i] = by(i, 2, w - 1).inverse3(even[i], odd[i - 1], odd[i]);
    for (int i = 0; i <= w - 1; ++i) odd[i] = by(i, 1, w - 2).inverse4(odd[i], even[i], even[i + 1]);
    std::vector<T> line;
    for (int i = 0; i < w; ++i) {
        line.push_back(phase == 0 ? even[i] : odd[i]);
        line.push_back(phase == 0 ? odd[i] : even[i + 1]);
    }
    return line;
}

template Bands<float> forward97(const float*, int, int, const Stages<float>&, const Stages<float>&);
template Bands<int16_t> forward97(const int16_t*, int, int, const Stages<int16_t>&, const Stages<int16_t>&);
template Bands<int32_t> forward97(const int32_t*, int, int, const Stages<int32_t>&, const Stages<int32_t>&);
template std::vector<float> inverse97(const float*, const float*, int, int, const Stages<float>&, const Stages<float>&);
template std::vector<int16_t> inverse97(const int16_t*, const int16_t*, int, int, const Stages<int16_t>&,
                                        const Stages<int16_t>&);
template std::vector<int32_t> inverse97(const int32_t*, const int32_t*, int, int, const Stages<int32_t>&,
                                        const Stages<int32_t>&);

Bands<float> nineTaps(const float* even, const float* odd)
{
    float low = 0.026748758F * (even[-4] + even[4]);
    low = std::fma(-0.01686412F, even[-3] + even[3], low);
    low = std::fma(-0.078223266F, even[-2] + even[2], low);
    low = std::fma(0.26686412F, even[-1] + even[1], low);
    low = std::fma(0.602949F, even[0], low);
    float high = 0.091271766F * (odd[-3] + odd[3]);
    high = std::fma(-0.057543527F, odd[-2] + odd[2], high);
    high = std::fma(-0.59127176F, odd[-1] + odd[1], high);
    high = std::fma(1.115087F, odd[0], high);
    return {{low}, {high}};
}

Bands<int16_t> nineTaps(const int16_t* even, const int16_t* odd)
{
    const int64_t low = int64_t{39515} * even[0] + int64_t{17489} * (even[-1] + even[1]) -
                        int64_t{5126} * (even[-2] + even[2]) - int64_t{1105} * (even[-3] + even[3]) +
                        int64_t{1753} * (even[-4] + even[4]);
    const int64_t high = int64_t{73078} * odd[0] - int64_t{38749} * (odd[-1] + odd[1]) -
                         int64_t{3771} * (odd[-2] + odd[2]) + int64_t{5982} * (odd[-3] + odd[3]);
    return {{wrap16(std::min<int64_t>(rounded16(low), 32767))}, {saturate16(rounded16(high))}};
}

Bands<int32_t> nineTaps(const int32_t* even, const int32_t* odd)
{
    const auto term = [](int64_t tap, int32_t sum) { return rounded16(tap * sum); };
    const int64_t low = term(39515, even[0]) + term(17489, wrappedSum(even[-1], even[1])) +
                        term(-5126, wrappedSum(even[-2], even[2])) + term(-1105, wrappedSum(even[-3], even[3])) +
                        term(1753, wrappedSum(even[-4], even[4]));
    const int64_t high = term(73078, odd[0]) + term(-38749, wrappedSum(odd[-1], odd[1])) +
                         term(-3771, wrappedSum(odd[-2], odd[2])) + term(5982, wrappedSum(odd[-3], odd[3]));
    return {{wrap32(low)}, {wrap32(high)}};
}

}  // namespace model
