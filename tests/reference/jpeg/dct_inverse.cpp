#include "reference/jpeg/dct_inverse.h"

#include <cmath>

namespace model {
namespace {

using Eight = std::array<int16_t, 8>;
using EightFloats = std::array<float, 8>;

constexpr int16_t cosine4Less1 = -19195;  // cos(pi / 4) - 1, Q16

Block dequantise(const Block& coefficients, const Table& table)
{
    Block product;
    for (size_t i = 0; i < 64; ++i) product[i] = wrap16(int64_t{coefficients[i]} * table[i]);
    return product;
}

int16_t toWord(int64_t sum, int shift) { return saturate16(wrap32(sum) >> shift); }

Eight fullRow(const Eight& r, size_t row)
{
    static constexpr std::array<int64_t, 8> rounding = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
    const RowFactors k = rowFactors(row);
    std::array<int64_t, 8> x;
    for (size_t i = 0; i < 8; ++i) x[i] = r[i];
    const std::array<int64_t, 4> even = {
        k.a * x[0] + k.f * x[2] + k.a * x[4] + k.g * x[6],
        k.a * x[0] + k.g * x[2] - k.a * x[4] - k.f * x[6],
        k.a * x[0] - k.g * x[2] - k.a * x[4] + k.f * x[6],
        k.a * x[0] - k.f * x[2] + k.a * x[4] - k.g * x[6],
    };
    const std::array<int64_t, 4> odd = {
        k.b * x[1] + k.c * x[3] + k.d * x[5] + k.e * x[7],
        k.c * x[1] - k.e * x[3] - k.b * x[5] - k.d * x[7],
        k.d * x[1] - k.b * x[3] + k.e * x[5] + k.c * x[7],
        k.e * x[1] - k.d * x[3] + k.c * x[5] - k.b * x[7],
    };
    Eight y;
    for (size_t i = 0; i < 4; ++i) {
        y[i] = toWord(even[i] + rounding[row] + odd[i], 11);
        y[7 - i] = toWord(even[i] + rounding[row] - odd[i], 11);
    }
    return y;
}

// The odd and even halves of the column pass, named as the results of its first steps.
struct ColumnParts {
    int16_t t, v, b9, b8, c4, c5, e7, e6;

    explicit ColumnParts(const Eight& r)
    {
        t = plus(r[1], highHalf(r[7], tangent1));
        const int16_t u = minus(highHalf(r[1], tangent1), r[7]);
        v = plus(plus(highHalf(r[5], tangent3Less1), r[5]), r[3]);
        const int16_t w = minus(r[5], plus(highHalf(r[3], tangent3Less1), r[3]));
        b9 = plus(t, v);
        const int16_t b10 = minus(t, v);
        const int16_t b12 = minus(u, w);
        b8 = plus(u, w);
        const int16_t p = minus(b10, b12);
        const int16_t q = plus(b10, b12);
        c5 = plus(highHalf(p, cosine4Less1), p);
        c4 = plus(highHalf(q, cosine4Less1), q);
        e7 = plus(r[2], highHalf(r[6], tangent2));
        e6 = minus(highHalf(r[2], tangent2), r[6]);
    }
};

Eight fullColumn(const Eight& r)
{
    const ColumnParts c(r);
    const int16_t p0 = plus(r[0], r[4]);
    const int16_t p1 = minus(r[0], r[4]);
    const int16_t q3 = plus(p0, c.e7);
    const int16_t q1 = minus(p0, c.e7);
    const int16_t q2 = plus(p1, c.e6);
    const int16_t q0 = minus(p1, c.e6);
    Eight y = {plus(q3, c.b9),  plus(q2, c.c4),  plus(q0, c.c5),  plus(q1, c.b8),
               minus(q1, c.b8), minus(q0, c.c5), minus(q2, c.c4), minus(q3, c.b9)};
    for (int16_t& value : y) value = static_cast<int16_t>(value >> 6);
    return y;
}

Eight rowOf(const Block& block, size_t y)
{
    Eight r;
    for (size_t x = 0; x < 8; ++x) r[x] = block[8 * y + x];
    return r;
}
Eight columnOf(const Block& block, size_t x)
{
    Eight c;
    for (size_t y = 0; y < 8; ++y) c[y] = block[8 * y + x];
    return c;
}

std::vector<uint8_t> levelShifted(const Block& values)
{
    std::vector<uint8_t> bytes;
    for (const int16_t v : values) bytes.push_back(clip8(v + 128));
    return bytes;
}

// Only the coefficients of the top left corner, `size` by `size`.
Block corner(const Block& coefficients, size_t size)
{
    Block kept{};
    for (size_t y = 0; y < size; ++y)
        for (size_t x = 0; x < size; ++x) kept[8 * y + x] = coefficients[8 * y + x];
    return kept;
}

}  // namespace

Block inverseDct(const Block& coefficients)
{
    Block halfway;
    for (size_t y = 0; y < 8; ++y) {
        const Eight out = fullRow(rowOf(coefficients, y), y);
        for (size_t x = 0; x < 8; ++x) halfway[8 * y + x] = out[x];
    }
    Block samples;
    for (size_t x = 0; x < 8; ++x) {
        const Eight out = fullColumn(columnOf(halfway, x));
        for (size_t y = 0; y < 8; ++y) samples[8 * y + x] = out[y];
    }
    return samples;
}

Block inverseDctQuant(const Block& coefficients, const Table& table)
{
    return inverseDct(dequantise(coefficients, table));
}

std::vector<uint8_t> inverseDctToBytes(const Block& coefficients, const Table& table)
{
    return levelShifted(inverseDctQuant(coefficients, table));
}

std::vector<uint8_t> inverseDctOf4x4ToBytes(const Block& coefficients, const Table& table)
{
    return levelShifted(inverseDctQuant(corner(coefficients, 4), table));
}

std::vector<uint8_t> inverseDctOf2x2ToBytes(const Block& coefficients, const Table& table)
{
    const Block kept = corner(dequantise(coefficients, table), 2);
    const Eight row0 = fullRow(rowOf(kept, 0), 0);
    const Eight row1 = fullRow(rowOf(kept, 1), 1);
    Block samples;
    for (size_t x = 0; x < 8; ++x) {
        const int16_t r0 = row0[x];
        const int16_t r1 = row1[x];
        const int16_t h = highHalf(r1, tangent1);
        const int16_t p = minus(r1, h);
        const int16_t q = plus(r1, h);
        const int16_t c5 = plus(highHalf(p, cosine4Less1), p);
        const int16_t c4 = plus(highHalf(q, cosine4Less1), q);
        const Eight column = {plus(plus(r0, 1), r1),  plus(r0, c4),  plus(r0, c5),  plus(minus(r0, 1), h),
                              minus(minus(r0, 1), h), minus(r0, c5), minus(r0, c4), minus(plus(r0, 1), r1)};
        for (size_t y = 0; y < 8; ++y) samples[8 * y + x] = static_cast<int16_t>(column[y] >> 6);
    }
    return levelShifted(samples);
}

std::vector<uint8_t> inverseDctOf1x1ToBytes(const Block& coefficients, const Table& table)
{
    const int32_t product = wrap32(int64_t{coefficients[0]} * table[0]);
    return std::vector<uint8_t>(64, clip8(wrap16((product >> 3) + 128)));
}

std::vector<uint8_t> inverseDctTo4x4Bytes(const Block& coefficients, const Table& table)
{
    struct Row {
        size_t row;
        std::array<int64_t, 11> k;
        int64_t rounding;
    };
    constexpr std::array<int64_t, 11> k0 = {16384, 15137, 6270, 20995, 7373, 4926, 4176, 8697, 17799, 11893, 1730};
    constexpr std::array<int64_t, 11> k17 = {22725, 20995, 8697, 29121, 10226, 6833, 5793, 12063, 24688, 16496, 2399};
    constexpr std::array<int64_t, 11> k26 = {21407, 19777, 8192, 27432, 9633, 6436, 5457, 11363, 23256, 15539, 2260};
    constexpr std::array<int64_t, 11> k35 = {19266, 17799, 7373, 24688, 8669, 5793, 4911, 10226, 20929, 13985, 2034};
    static constexpr std::array<Row, 7> rows = {
        {{0, k0, 66560}, {1, k17, 5802}, {2, k26, 4520}, {3, k35, 3408}, {5, k35, 910}, {6, k26, 1024}, {7, k17, 746}}};
    const Block block = dequantise(coefficients, table);
    std::array<Eight, 4> columns{};
    for (const Row& row : rows) {
        const Eight r = rowOf(block, row.row);
        const auto x = [&](size_t i) { return int64_t{r[i]}; };
        const auto& k = row.k;
        const int64_t s0 = k[0] * x(0) + k[1] * x(2) - k[2] * x(6);
        const int64_t s1 = k[0] * x(0) - k[1] * x(2) + k[2] * x(6);
        const int64_t s2 = k[3] * x(1) + k[4] * x(3) - k[5] * x(5) - k[6] * x(7);
        const int64_t s3 = k[7] * x(1) - k[8] * x(3) + k[9] * x(5) - k[10] * x(7);
        columns[0][row.row] = toWord(s0 + s2 + row.rounding, 12);
        columns[1][row.row] = toWord(s1 + s3 + row.rounding, 12);
        columns[2][row.row] = toWord(s1 - s3 + row.rounding, 12);
        columns[3][row.row] = toWord(s0 - s2 + row.rounding, 12);
    }
    std::vector<uint8_t> bytes(16);
    for (size_t i = 0; i < 4; ++i) {
        const ColumnParts parts(columns[i]);
        const int16_t e = plus(parts.e7, parts.e6);
        const int16_t d = plus(columns[i][0], columns[i][0]);
        const int16_t a = plus(d, e);
        const int16_t b = minus(d, e);
        const int16_t c = plus(parts.c4, parts.b9);
        const int16_t f = plus(parts.b8, parts.c5);
        const std::array<int16_t, 4> results = {plus(a, c), plus(b, f), minus(b, f), minus(a, c)};
        for (size_t y = 0; y < 4; ++y) bytes[4 * y + i] = clip8((results[y] >> 6) + 128);
    }
    return bytes;
}

std::vector<uint8_t> inverseDctTo2x2Bytes(const Block& coefficients, const Table& table)
{
    struct Row {
        size_t row;
        std::array<int64_t, 5> m;
        int64_t rounding;
    };
    static constexpr std::array<Row, 5> rows = {{{0, {16384, 14846, 5213, 3483, 2953}, 67072},
                                                 {1, {22725, 20592, 7231, 4832, 4096}, 5802},
                                                 {7, {22725, 20592, 7231, 4832, 4096}, 746},
                                                 {3, {19266, 17457, 6130, 4096, 3472}, 3408},
                                                 {5, {19266, 17457, 6130, 4096, 3472}, 910}}};
    const Block block = dequantise(coefficients, table);
    std::array<Eight, 2> columns{};
    for (const Row& row : rows) {
        const Eight r = rowOf(block, row.row);
        const auto x = [&](size_t i) { return int64_t{r[i]}; };
        const int64_t q = row.m[1] * x(1) - row.m[2] * x(3) + row.m[3] * x(5) - row.m[4] * x(7);
        columns[0][row.row] = toWord(row.m[0] * x(0) + q + row.rounding, 12);
        columns[1][row.row] = toWord(row.m[0] * x(0) - q + row.rounding, 12);
    }
    std::vector<uint8_t> bytes(4);
    for (size_t i = 0; i < 2; ++i) {
        const ColumnParts parts(columns[i]);
        const int16_t p = minus(parts.t, parts.v);
        const int16_t m = plus(highHalf(p, cosine4Less1), p);
        const int16_t e = plus(plus(parts.b8, parts.b9), plus(m, m));
        const int16_t twice = plus(columns[i][0], columns[i][0]);
        const int16_t d = plus(twice, twice);
        bytes[i] = clip8((plus(d, e) >> 7) + 128);
        bytes[2 + i] = clip8((minus(d, e) >> 7) + 128);
    }
    return bytes;
}

// One pass of the single-precision transform, from f0 and f1 and the inputs but x0 and x4.
static EightFloats floatPass(const EightFloats& x, float f0, float f1)
{
    const float p = std::fma(x[7], floatTangent1, x[1]);
    const float q = std::fma(x[1], floatTangent1, -x[7]);
    const float r = std::fma(x[5], floatTangent3, x[3]);
    const float s = std::fma(-x[3], floatTangent3, x[5]);
    const float e1 = p + r;
    const float e2 = q + s;
    const float e3 = q - s;
    const float e4 = p - r;
    const float g = std::fma(x[6], floatTangent2, x[2]);
    const float h = std::fma(x[2], floatTangent2, -x[6]);
    const float a = f0 + g;
    const float b = f1 + h;
    const float c = f1 - h;
    const float d = f0 - g;
    const float u = e4 + e3;
    const float v = e4 - e3;
    return {a + e1, std::fma(u, floatCosine4, b),  std::fma(v, floatCosine4, c),  d + e2,
            d - e2, std::fma(-v, floatCosine4, c), std::fma(-u, floatCosine4, b), a - e1};
}

FloatBlock inverseDct(const FloatBlock& coefficients)
{
    FloatBlock halfway;
    for (size_t y = 0; y < 8; ++y) {
        EightFloats scaled;
        for (size_t x = 0; x < 8; ++x) scaled[x] = coefficients[8 * y + x] * scale(y, x);
        const float f0 = std::fma(coefficients[8 * y], scale(y, 0), scaled[4]);
        const float f1 = std::fma(coefficients[8 * y], scale(y, 0), -scaled[4]);
        const EightFloats out = floatPass(scaled, f0, f1);
        for (size_t x = 0; x < 8; ++x) halfway[8 * y + x] = out[x];
    }
    FloatBlock samples;
    for (size_t x = 0; x < 8; ++x) {
        EightFloats in;
        for (size_t y = 0; y < 8; ++y) in[y] = halfway[8 * y + x];
        const EightFloats out = floatPass(in, in[0] + in[4], in[0] - in[4]);
        for (size_t y = 0; y < 8; ++y) samples[8 * y + x] = out[y];
    }
    return samples;
}

std::array<uint16_t, 64> inverseDctToWords(const Block& coefficients, const FloatBlock& steps)
{
    FloatBlock dequantised;
    for (size_t i = 0; i < 64; ++i) dequantised[i] = static_cast<float>(coefficients[i]) * steps[i];
    const FloatBlock samples = inverseDct(dequantised);
    std::array<uint16_t, 64> words;
    for (size_t i = 0; i < 64; ++i) {
        const float sum = samples[i] + 2048.0F;
        const bool fits = sum >= -2147483648.0F && sum < 2147483648.0F;
        const int64_t truncated = fits ? static_cast<int64_t>(sum) : -2147483648;  // what does not fit is most negative
        words[i] = static_cast<uint16_t>(std::clamp<int64_t>(saturate16(truncated), 0, 4095));
    }
    return words;
}

}  // namespace model
