#include "reference/jpeg2k/wavelet_tile.h"

#include <cmath>
#include <limits>

#include "reference/bits.h"
#include "reference/jpeg2k/wavelet53.h"

namespace model {

namespace {

// Line with whole-sample symmetric extension: the ends themselves are not repeated.
template <typename T>
class Extended {
public:
    explicit Extended(const std::vector<T>& line) : line_(line) {}

    T operator[](int i) const
    {
        const int n = static_cast<int>(line_.size());
        while (i < 0 || i >= n) i = i < 0 ? -i : 2 * (n - 1) - i;
        return line_[static_cast<size_t>(i)];
    }

private:
    const std::vector<T>& line_;
};

// A sequence over the positions from -margin to n - 1 + margin.
template <typename T>
class Sequence {
public:
    template <typename Value>
    Sequence(int n, const Value& value) : samples_(static_cast<size_t>(n + 2 * margin))
    {
        for (int i = -margin; i < n + margin; ++i) (*this)[i] = value(i);
    }
    T& operator[](int i) { return samples_[static_cast<size_t>(i + margin)]; }

    static constexpr int margin = 4;

private:
    std::vector<T> samples_;
};

bool isOdd(int i, int phase) { return ((i + phase) & 1) != 0; }

// Where sample i of a line of n goes: low-pass samples first.
int place(int i, int n, int phase)
{
    const int lowCount = phase == 0 ? (n + 1) / 2 : n / 2;
    return isOdd(i, phase) ? lowCount + i / 2 : i / 2;
}

template <typename T>
std::vector<T> inPlaces(Sequence<T>& s, int n, int phase)
{
    std::vector<T> line(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) line[static_cast<size_t>(place(i, n, phase))] = s[i];
    return line;
}

template <typename T>
std::vector<T> interleaved(const std::vector<T>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    std::vector<T> result;
    for (int i = 0; i < n; ++i) result.push_back(line[static_cast<size_t>(place(i, n, phase))]);
    return result;
}

// Applies a step to the samples of one parity; it sees both neighbours.
template <typename T, typename Step>
void lift(Sequence<T>& s, int n, int phase, bool odd, int reach, const Step& step)
{
    for (int i = -reach; i < n + reach; ++i)
        if (isOdd(i, phase) == odd)
            s[i] = step(s[i], s[i - 1], s[i + 1]);
}

int16_t cut(int16_t, int64_t v) { return wrap16(v); }
int32_t cut(int32_t, int64_t v) { return wrap32(v); }

template <typename T>
std::vector<T> scaledSingle(T sample, int phase, bool forward)
{
    return {forward ? cut(sample, int64_t{sample} * (phase + 1)) : static_cast<T>(sample / (phase + 1))};
}

template <typename T>
std::vector<T> forward53Line(const std::vector<T>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    if (n == 2) {
        const T even = line[static_cast<size_t>(phase)];
        const T odd = line[static_cast<size_t>(1 - phase)];
        const T high = cut(even, int64_t{odd} - even);
        const auto half = static_cast<T>(sizeof(T) == 2 ? (high + int64_t{1}) >> 1 : cut(high, high + int64_t{1}) >> 1);
        return {cut(even, int64_t{even} + half), high};
    }
    const Extended<T> extended(line);
    Sequence<T> s(n, [&](int i) { return extended[i]; });
    lift(s, n, phase, true, 1, [](T x, T a, T b) { return minusHalf(x, a, b); });
    lift(s, n, phase, false, 0, [](T x, T a, T b) { return plusQuarter(x, a, b); });
    return inPlaces(s, n, phase);
}

template <typename T>
std::vector<T> inverse53Line(const std::vector<T>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    if (n == 2) {
        const T low = line[0], high = line[1];
        const auto half = static_cast<T>(sizeof(T) == 2 ? (high + int64_t{1}) >> 1 : cut(high, high + int64_t{1}) >> 1);
        const T even = cut(low, int64_t{low} - half);
        const T odd = cut(high, int64_t{high} + even);
        return phase == 0 ? std::vector<T>{even, odd} : std::vector<T>{odd, even};
    }
    const std::vector<T> natural = interleaved(line, phase);
    const Extended<T> extended(natural);
    Sequence<T> s(n, [&](int i) { return extended[i]; });
    lift(s, n, phase, false, 1, [](T x, T a, T b) { return minusQuarter(x, a, b); });
    lift(s, n, phase, true, 0, [](T x, T a, T b) { return plusHalf(x, a, b); });
    std::vector<T> result;
    for (int i = 0; i < n; ++i) result.push_back(s[i]);
    return result;
}

// 16 bits, Q14: plain arithmetic, what is stored is cut.
int32_t rounded14(int32_t v) { return (v + 8192) >> 14; }
template <int factor>
int16_t plus14(int16_t t, int16_t a, int16_t b)
{
    return wrap16(t + rounded14((a + b) * factor));
}
template <int factor>
int16_t minus14(int16_t t, int16_t a, int16_t b)
{
    return wrap16(t - rounded14((a + b) * factor));
}

std::vector<int16_t> forward97Line(const std::vector<int16_t>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    const Extended<int16_t> extended(line);
    Sequence<int16_t> s(n, [&](int i) { return extended[i]; });
    lift(s, n, phase, true, 3, plus14<-25987>);
    lift(s, n, phase, false, 2, plus14<-868>);
    lift(s, n, phase, true, 1, plus14<14466>);
    lift(s, n, phase, false, 0, [](int16_t e, int16_t o, int16_t o2) {
        const int32_t lifted = e + rounded14((o + o2) * 7266);
        return wrap16(rounded14(lifted * 13318));
    });
    lift(s, n, phase, true, 0, [](int16_t o, int16_t, int16_t) { return wrap16(rounded14(o * 20155)); });
    return inPlaces(s, n, phase);
}

std::vector<int16_t> inverse97Line(const std::vector<int16_t>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    const std::vector<int16_t> natural = interleaved(line, phase);
    const Extended<int16_t> extended(natural);
    Sequence<int16_t> s(n, [&](int i) { return wrap16(rounded14(extended[i] * (isOdd(i, phase) ? 13318 : 20155))); });
    lift(s, n, phase, false, 3, minus14<7266>);
    lift(s, n, phase, true, 2, minus14<14466>);
    lift(s, n, phase, false, 1, minus14<-868>);
    lift(s, n, phase, true, 0, minus14<-25987>);
    std::vector<int16_t> result;
    for (int i = 0; i < n; ++i) result.push_back(s[i]);
    return result;
}

// 32 bits: the first step adds integers, which wraps; from there on fused multiply-adds in single precision.
int32_t clipped(float v)
{
    if (v > 2147483648.0F)
        return std::numeric_limits<int32_t>::max();
    if (v < -2147483648.0F || v == 2147483648.0F)  // what the conversion makes of 2^31
        return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(v);
}
float sumOf(int32_t a, int32_t b) { return static_cast<float>(wrap32(int64_t{a} + b)); }

std::vector<int32_t> converted(Sequence<float>& s, int n)
{
    std::vector<int32_t> result;
    for (int i = 0; i < n; ++i) result.push_back(clipped(s[i]));
    return result;
}
template <typename Factor>
auto fusedStep(Factor factor)
{
    return [=](float t, float a, float b) { return std::fma(factor, a + b, t); };
}

std::vector<int32_t> forward97Line(const std::vector<int32_t>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    const Extended<int32_t> x(line);
    Sequence<float> s(n, [&](int i) {
        const auto own = static_cast<float>(x[i]);
        return isOdd(i, phase) ? std::fma(-1.5861343F, sumOf(x[i - 1], x[i + 1]), own) : own;
    });
    lift(s, n, phase, false, 2, fusedStep(-0.052980117F));
    lift(s, n, phase, true, 1, fusedStep(0.8829111F));
    lift(s, n, phase, false, 0, fusedStep(0.44350687F));
    lift(s, n, phase, false, 0, [](float e, float, float) { return e * 0.8128931F; });
    lift(s, n, phase, true, 0, [](float o, float, float) { return o * 1.2301741F; });
    Sequence<int32_t> results(n, [&](int i) { return clipped(s[i]); });
    return inPlaces(results, n, phase);
}

std::vector<int32_t> inverse97Line(const std::vector<int32_t>& line, int phase)
{
    const int n = static_cast<int>(line.size());
    const std::vector<int32_t> natural = interleaved(line, phase);
    const Extended<int32_t> x(natural);
    Sequence<float> s(n, [&](int i) {
        const auto own = static_cast<float>(x[i]);
        return isOdd(i, phase) ? own * 0.8128931F : std::fma(-0.36052364F, sumOf(x[i - 1], x[i + 1]), own * 1.2301741F);
    });
    lift(s, n, phase, true, 2, fusedStep(-0.8829111F));
    lift(s, n, phase, false, 1, fusedStep(0.052980117F));
    lift(s, n, phase, true, 0, fusedStep(1.5861343F));
    return converted(s, n);
}

template <typename T>
std::vector<T> forward(Filter filter, const std::vector<T>& line, int phase)
{
    if (line.size() == 1)
        return scaledSingle(line[0], phase, true);
    return filter == Filter::Reversible53 ? forward53Line(line, phase) : forward97Line(line, phase);
}
template <typename T>
std::vector<T> inverse(Filter filter, const std::vector<T>& line, int phase)
{
    if (line.size() == 1)
        return scaledSingle(line[0], phase, false);
    return filter == Filter::Reversible53 ? inverse53Line(line, phase) : inverse97Line(line, phase);
}

template <typename T, typename Line>
void overColumns(Block<T>& block, const Line& line)
{
    for (int x = 0; x < block.width; ++x) {
        std::vector<T> column;
        for (int y = 0; y < block.height; ++y) column.push_back(block.at(x, y));
        column = line(column);
        for (int y = 0; y < block.height; ++y) block.at(x, y) = column[static_cast<size_t>(y)];
    }
}
template <typename T, typename Line>
void overRows(Block<T>& block, const Line& line)
{
    for (int y = 0; y < block.height; ++y) {
        std::vector<T> row;
        for (int x = 0; x < block.width; ++x) row.push_back(block.at(x, y));
        row = line(row);
        for (int x = 0; x < block.width; ++x) block.at(x, y) = row[static_cast<size_t>(x)];
    }
}

}  // namespace

std::vector<int16_t> forwardLine(Filter filter, const std::vector<int16_t>& line, int phase)
{
    return forward(filter, line, phase);
}
std::vector<int32_t> forwardLine(Filter filter, const std::vector<int32_t>& line, int phase)
{
    return forward(filter, line, phase);
}
std::vector<int16_t> inverseLine(Filter filter, const std::vector<int16_t>& line, int phase)
{
    return inverse(filter, line, phase);
}
std::vector<int32_t> inverseLine(Filter filter, const std::vector<int32_t>& line, int phase)
{
    return inverse(filter, line, phase);
}

template <typename T>
void forwardTile(Filter filter, Block<T>& block, int phaseX, int phaseY)
{
    overColumns(block, [=](const std::vector<T>& line) { return forward(filter, line, phaseY); });
    overRows(block, [=](const std::vector<T>& line) { return forward(filter, line, phaseX); });
}
template <typename T>
void inverseTile(Filter filter, Block<T>& block, int phaseX, int phaseY)
{
    overRows(block, [=](const std::vector<T>& line) { return inverse(filter, line, phaseX); });
    overColumns(block, [=](const std::vector<T>& line) { return inverse(filter, line, phaseY); });
}
template void forwardTile(Filter, Block<int16_t>&, int, int);
template void forwardTile(Filter, Block<int32_t>&, int, int);
template void inverseTile(Filter, Block<int16_t>&, int, int);
template void inverseTile(Filter, Block<int32_t>&, int, int);

}  // namespace model
