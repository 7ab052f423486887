#include "reference/jpeg/dct_forward.h"

#include <cmath>

namespace model {
namespace {

using Eight = std::array<int16_t, 8>;
using EightFloats = std::array<float, 8>;

int16_t shiftLeft(int16_t v, int places) { return wrap16(int64_t{v} * (int64_t{1} << places)); }
int16_t orOne(int16_t v) { return static_cast<int16_t>(v | 1); }

Eight column(const Eight& x)
{
    const int16_t s07 = shiftLeft(plus(x[0], x[7]), 3);
    const int16_t s16 = shiftLeft(plus(x[1], x[6]), 3);
    const int16_t s25 = shiftLeft(plus(x[2], x[5]), 3);
    const int16_t s34 = shiftLeft(plus(x[3], x[4]), 3);
    const int16_t d07 = shiftLeft(minus(x[0], x[7]), 3);
    const int16_t d34 = shiftLeft(minus(x[3], x[4]), 3);
    const int16_t d16 = shiftLeft(minus(x[1], x[6]), 4);
    const int16_t d25 = shiftLeft(minus(x[2], x[5]), 4);

    const int16_t a0 = plus(s07, s34);
    const int16_t a3 = minus(s07, s34);
    const int16_t a1 = plus(s16, s25);
    const int16_t a2 = minus(s16, s25);

    const int16_t m = highHalf(minus(d16, d25), 23170);
    const int16_t p = orOne(highHalf(plus(d16, d25), 23170));

    const int16_t b1 = plus(d34, m);
    const int16_t b2 = minus(d34, m);
    const int16_t b0 = plus(d07, p);
    const int16_t b3 = minus(d07, p);

    Eight y;
    y[0] = plus(a0, a1);
    y[4] = minus(a0, a1);
    y[2] = orOne(plus(a3, highHalf(a2, tangent2)));
    y[6] = orOne(minus(highHalf(a3, tangent2), a2));
    y[1] = orOne(plus(b0, highHalf(b1, tangent1)));
    y[7] = minus(highHalf(b0, tangent1), b1);
    y[5] = plus(plus(highHalf(b3, tangent3Less1), b3), b2);
    y[3] = minus(b3, plus(highHalf(b2, tangent3Less1), b2));
    return y;
}

Eight row(const Eight& x, const RowFactors& k)
{
    std::array<int64_t, 4> s;
    std::array<int64_t, 4> d;
    for (size_t i = 0; i < 4; ++i) {
        s[i] = plus(x[i], x[7 - i]);
        d[i] = minus(x[i], x[7 - i]);
    }
    const std::array<int64_t, 8> sums = {
        k.a * s[0] + k.a * s[1] + k.a * s[2] + k.a * s[3], k.b * d[0] + k.c * d[1] + k.d * d[2] + k.e * d[3],
        k.f * s[0] + k.g * s[1] - k.g * s[2] - k.f * s[3], k.c * d[0] - k.e * d[1] - k.b * d[2] - k.d * d[3],
        k.a * s[0] - k.a * s[1] - k.a * s[2] + k.a * s[3], k.d * d[0] - k.b * d[1] + k.e * d[2] + k.c * d[3],
        k.g * s[0] - k.f * s[1] + k.f * s[2] - k.g * s[3], k.e * d[0] - k.d * d[1] + k.c * d[2] - k.b * d[3],
    };
    Eight y;
    for (size_t i = 0; i < 8; ++i) y[i] = saturate16(wrap32(sums[i] + 524288) >> 20);
    return y;
}

// x t / 32768 to the nearest integer, ties to even
int16_t quantise(int16_t x, uint16_t t)
{
    const int64_t product = int64_t{x} * t;
    const int64_t below = product >> 15;
    const int64_t rest = product - below * 32768;
    const bool up = rest > 16384 || (rest == 16384 && below % 2 != 0);
    return saturate16(below + (up ? 1 : 0));
}

EightFloats pass(const EightFloats& x)
{
    const float s07 = x[0] + x[7];
    const float d07 = x[0] - x[7];
    const float s16 = x[1] + x[6];
    const float d16 = x[1] - x[6];
    const float s25 = x[2] + x[5];
    const float d25 = x[2] - x[5];
    const float s34 = x[3] + x[4];
    const float d34 = x[3] - x[4];

    const float a0 = s07 + s34;
    const float a3 = s07 - s34;
    const float a1 = s16 + s25;
    const float a2 = s16 - s25;
    const float p = d16 + d25;
    const float q = d16 - d25;

    const float b0 = std::fma(p, floatCosine4, d07);
    const float b3 = std::fma(-p, floatCosine4, d07);
    const float b1 = std::fma(q, floatCosine4, d34);
    const float b2 = std::fma(-q, floatCosine4, d34);

    return {
        a0 + a1, std::fma(b1, floatTangent1, b0), std::fma(a2, floatTangent2, a3),  std::fma(-b2, floatTangent3, b3),
        a0 - a1, std::fma(b3, floatTangent3, b2), std::fma(a3, floatTangent2, -a2), std::fma(b0, floatTangent1, -b1)};
}

// Ties to even; what does not fit in 32 bits becomes the most negative value.
int16_t roundToWord(float v)
{
    const double wide = v;
    if (!(wide >= -2147483648.0 && wide < 2147483648.0))
        return -32768;
    return saturate16(static_cast<int64_t>(std::nearbyint(wide)));
}

}  // namespace

Block forwardDct(const Block& samples)
{
    Block halfway;
    for (size_t x = 0; x < 8; ++x) {
        Eight in;
        for (size_t y = 0; y < 8; ++y) in[y] = samples[8 * y + x];
        const Eight out = column(in);
        for (size_t y = 0; y < 8; ++y) halfway[8 * y + x] = out[y];
    }
    Block coefficients;
    for (size_t y = 0; y < 8; ++y) {
        Eight in;
        for (size_t x = 0; x < 8; ++x) in[x] = halfway[8 * y + x];
        const Eight out = row(in, rowFactors(y));
        for (size_t x = 0; x < 8; ++x) coefficients[8 * y + x] = out[x];
    }
    return coefficients;
}

Block forwardDctQuant(const Block& samples, const Table& table)
{
    Block coefficients = forwardDct(samples);
    for (size_t i = 0; i < 64; ++i) coefficients[i] = quantise(coefficients[i], table[i]);
    return coefficients;
}

FloatBlock forwardDct(const FloatBlock& samples)
{
    FloatBlock halfway;
    for (size_t y = 0; y < 8; ++y) {
        EightFloats in;
        for (size_t x = 0; x < 8; ++x) in[x] = samples[8 * y + x];
        const EightFloats out = pass(in);
        for (size_t x = 0; x < 8; ++x) halfway[8 * y + x] = out[x];
    }
    FloatBlock coefficients;
    for (size_t x = 0; x < 8; ++x) {
        EightFloats in;
        for (size_t y = 0; y < 8; ++y) in[y] = halfway[8 * y + x];
        const EightFloats out = pass(in);
        for (size_t y = 0; y < 8; ++y) coefficients[8 * y + x] = out[y] * scale(y, x);
    }
    return coefficients;
}

Block forwardDctQuant(const std::array<uint16_t, 64>& samples, const FloatBlock& factors)
{
    FloatBlock shifted;
    for (size_t i = 0; i < 64; ++i) {
        const float sample = static_cast<int16_t>(samples[i]);
        shifted[i] = sample - 2048.0F;
    }
    const FloatBlock coefficients = forwardDct(shifted);
    Block quantised;
    for (size_t i = 0; i < 64; ++i) {
        const float product = coefficients[i] * factors[i];
        quantised[i] = roundToWord(product);
    }
    return quantised;
}

}  // namespace model
