// Calls of the row and column forms of a wavelet filter, checked against a model of a line.
#ifndef VEK_TESTS_JPEG2K_TRANSFORM_WAVELET_FORMS_H
#define VEK_TESTS_JPEG2K_TRANSFORM_WAVELET_FORMS_H

#include <gtest/gtest.h>

#include <vector>

#include "jpeg2k/transform/sample_plane.h"
#include "reference/jpeg2k/wavelet53.h"
#include "support/generators.h"
#include "support/sanitizers.h"

namespace support {

template <typename T>
using ForwardForm = VekStatus (*)(const T*, int, T*, int, T*, int, VekSize, int);
template <typename T>
using InverseForm = VekStatus (*)(const T*, int, const T*, int, VekSize, T*, int, int);
template <typename T>
using ForwardModel = model::Bands<T> (*)(const T* x, int pairs, int phase);
template <typename T>
using InverseModel = std::vector<T> (*)(const T* low, const T* high, int pairs, int phase);

// Both directions of a form, its models, and how many pairs beyond the ends of a line the filter sees.
template <typename T>
struct WaveletForm {
    const char* name;
    bool columns;
    int reach;
    ForwardForm<T> forward;
    InverseForm<T> inverse;
    ForwardModel<T> forwardModel;
    InverseModel<T> inverseModel;
};
template <typename T>
void PrintTo(const WaveletForm<T>& form, std::ostream* os)
{
    *os << form.name;
}

struct Layout {
    int pairs, lines, phase;
    int gap = 0;
    Guard guard = Guard::Behind;
    size_t misalignment = 0;
};
inline std::ostream& operator<<(std::ostream& os, const Layout& l)
{
    return os << l.pairs << " pairs, " << l.lines << " lines, phase " << l.phase << ", gap " << l.gap << ", "
              << (l.guard == Guard::Behind ? "guarded behind" : "guarded before") << " + " << l.misalignment;
}

// A plane of lines, which lie in rows or in columns, with `before` samples of each line before its sample 0.
template <typename T>
class LinePlane {
public:
    LinePlane(bool columns, int before, int length, const Layout& l)
        : columns_(columns),
          before_(before),
          plane_(columns ? VekSize{l.lines, length} : VekSize{length, l.lines}, l.gap, l.guard, l.misalignment)
    {
    }
    SamplePlane<T>& plane() { return plane_; }
    int step() const { return plane_.step(); }
    // The first sample of the region.
    T* data() { return columns_ ? address(plane_.data(), int64_t{before_} * plane_.step()) : plane_.data() + before_; }
    std::vector<T> line(int number) const
    {
        std::vector<T> samples;
        for (int i = 0; i < (columns_ ? plane_.height() : plane_.width()); ++i)
            samples.push_back(columns_ ? plane_.at(number, i) : plane_.at(i, number));
        return samples;
    }
    void setLine(int number, const std::vector<T>& samples)
    {
        for (int i = 0; i < static_cast<int>(samples.size()); ++i) {
            if (columns_)
                plane_.set(number, i + before_, samples[static_cast<size_t>(i)]);
            else
                plane_.set(i + before_, number, samples[static_cast<size_t>(i)]);
        }
    }

private:
    static T* address(T* p, int64_t bytes) { return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(p) + bytes); }

    bool columns_;
    int before_;
    SamplePlane<T> plane_;
};

// The source holds just the samples that the form may read; the destinations, random at first, just those it writes.
template <typename T>
void checkForward(const WaveletForm<T>& form, const Layout& l, Random& random)
{
    const int before = 2 * form.reach - l.phase;
    LinePlane<T> src(form.columns, before, 2 * (l.pairs - 1) + 4 * form.reach + 1, l);
    LinePlane<T> low(form.columns, 0, l.pairs, l), high(form.columns, 0, l.pairs, l);
    LinePlane<T> expectedLow(form.columns, 0, l.pairs, l), expectedHigh(form.columns, 0, l.pairs, l);
    for (auto* plane : {&src, &low, &high}) plane->plane().fill(random);
    expectedLow.plane().copyFrom(low.plane());
    expectedHigh.plane().copyFrom(high.plane());
    for (int i = 0; i < l.lines; ++i) {
        const std::vector<T> line = src.line(i);
        const auto bands = form.forwardModel(line.data() + before, l.pairs, l.phase);
        expectedLow.setLine(i, bands.low);
        expectedHigh.setLine(i, bands.high);
    }
    const VekSize roi = form.columns ? VekSize{l.lines, l.pairs} : VekSize{l.pairs, l.lines};
    ASSERT_EQ(vekStsOk,
              form.forward(src.data(), src.step(), low.data(), low.step(), high.data(), high.step(), roi, l.phase));
    ASSERT_TRUE(expectedLow.plane() == low.plane()) << l;
    ASSERT_TRUE(expectedHigh.plane() == high.plane()) << l;
}

template <typename T>
void checkInverse(const WaveletForm<T>& form, const Layout& l, Random& random)
{
    const int lowBefore = form.reach - 1 + l.phase;
    const int highBefore = form.reach;
    LinePlane<T> low(form.columns, lowBefore, l.pairs + 2 * form.reach - 1, l);
    LinePlane<T> high(form.columns, highBefore, l.pairs + 2 * form.reach, l);
    LinePlane<T> dst(form.columns, 0, 2 * l.pairs, l), expected(form.columns, 0, 2 * l.pairs, l);
    for (auto* plane : {&low, &high, &dst}) plane->plane().fill(random);
    expected.plane().copyFrom(dst.plane());
    for (int i = 0; i < l.lines; ++i) {
        const std::vector<T> lowLine = low.line(i), highLine = high.line(i);
        expected.setLine(i,
                         form.inverseModel(lowLine.data() + lowBefore, highLine.data() + highBefore, l.pairs, l.phase));
    }
    const VekSize roi = form.columns ? VekSize{l.lines, l.pairs} : VekSize{l.pairs, l.lines};
    ASSERT_EQ(vekStsOk,
              form.inverse(low.data(), low.step(), high.data(), high.step(), roi, dst.data(), dst.step(), l.phase));
    ASSERT_TRUE(expected.plane() == dst.plane()) << l;
}

// Lines of all lengths, addresses, steps and phases; many lines; lines longer than any scratch.
template <typename T>
void checkEverywhere(const WaveletForm<T>& form, uint64_t seed)
{
    Random random(seed);
    const int stride = underSanitizer ? 7 : 1;
    std::vector<Layout> layouts;
    for (const int phase : {0, 1}) {
        for (int size = 1; size <= 70; size += stride)
            for (const Guard guard : {Guard::Behind, Guard::Before}) {
                layouts.push_back({size, 1 + size % 5, phase, 0, guard});
                layouts.push_back({1 + size % 5, size, phase, 0, guard});
            }
        for (int offset = 1; offset < 34; offset += stride)
            for (const int size : {3, 16, 37})
                layouts.push_back({size, 20, phase, offset, Guard::Before, static_cast<size_t>(offset)});
        for (const int size : {2047, 2048, 2049, 4097, 5000}) layouts.push_back({size, 2, phase, 2});
        for (const int lines : {255, 256, 257, 511, 513, 1100}) layouts.push_back({9, lines, phase, 6});
        for (const int lines : {4095, 4097, 8193}) layouts.push_back({4, lines, phase, 2});
    }
    for (const Layout& layout : layouts) {
        ASSERT_NO_FATAL_FAILURE(checkForward(form, layout, random));
        ASSERT_NO_FATAL_FAILURE(checkInverse(form, layout, random));
    }
}

// A plane too large for guards and models, with a margin around the region that is filtered.
template <typename T>
class LargePlane {
public:
    LargePlane(VekSize size, int gap, size_t misalignment)
        : step_((size.width + 2 * margin) * static_cast<int>(sizeof(T)) + gap),
          bytes_(static_cast<size_t>(step_) * static_cast<size_t>(size.height + 2 * margin) + 64)
    {
        const size_t first = (-reinterpret_cast<uintptr_t>(bytes_.data()) & 31) + misalignment;
        begin_ = first + static_cast<size_t>(step_) * margin + margin * sizeof(T);
    }
    void fill(Random& random)
    {
        std::vector<T> some(1009);
        for (T& v : some) v = static_cast<T>(static_cast<int16_t>(random.bits()));
        const size_t period = some.size() * sizeof(T);
        for (size_t i = 0; i < bytes_.size(); i += period)
            std::memcpy(&bytes_[i], some.data(), std::min(period, bytes_.size() - i));
    }
    T* at(int x, int y)
    {
        return reinterpret_cast<T*>(&bytes_[begin_] + int64_t{step_} * y + int64_t{x} * int64_t{sizeof(T)});
    }
    int step() const { return step_; }
    bool operator==(const LargePlane& other) const { return bytes_ == other.bytes_; }

private:
    static constexpr int margin = 8;
    int step_;
    size_t begin_;
    std::vector<uint8_t> bytes_;
};

// Regions so large that their results go past the cache: a whole one like its parts, two small ones.
template <typename T>
void checkLargeRegions(const WaveletForm<T>& form, uint64_t seed)
{
    Random random(seed);
    struct Place {
        int gap;
        size_t first, second;  // misalignments of the planes of results
    };
    constexpr int sampleBytes = static_cast<int>(sizeof(T));
    constexpr int pairs = 1043, lines = (16 << 20) / (2 * pairs * sampleBytes) + 5, half = lines / 2 + 3;
    const int width = form.columns ? lines : pairs;
    const int height = form.columns ? pairs : lines;
    const auto toWholeVectors = [](int columns) { return 64 - (columns + 16) * sampleBytes % 64; };
    const auto part = [&](int from, int to) {
        return form.columns ? VekSize{to - from, height} : VekSize{width, to - from};
    };
    const auto x = [&](int line) { return form.columns ? line : 0; };
    const auto y = [&](int line) { return form.columns ? 0 : line; };
    for (const Place& place : {Place{0, 0, 0}, Place{0, 20, 20}, Place{0, 4, 12}, Place{6, 2, 8}, Place{0, 1, 3}})
        for (const int phase : {0, 1}) {
            const int bandGap = toWholeVectors(width) + place.gap;
            const VekSize naturalSize = form.columns ? VekSize{width, 2 * height} : VekSize{2 * width, height};
            const VekSize bandSize = {width, height};
            LargePlane<T> src(naturalSize, 0, 0), low(bandSize, bandGap, place.first),
                high(bandSize, bandGap, place.second);
            LargePlane<T> dst(naturalSize, toWholeVectors(naturalSize.width) + place.gap, place.first);
            src.fill(random);
            LargePlane<T> lowParts = low, highParts = high, dstParts = dst;
            const auto forward = [&](LargePlane<T>& l, LargePlane<T>& h, int from, int to) {
                ASSERT_EQ(vekStsOk, form.forward(src.at(x(from), y(from)), src.step(), l.at(x(from), y(from)), l.step(),
                                                 h.at(x(from), y(from)), h.step(), part(from, to), phase));
            };
            forward(low, high, 0, lines);
            forward(lowParts, highParts, 0, half);
            forward(lowParts, highParts, half, lines);
            ASSERT_TRUE(low == lowParts && high == highParts) << place.first << ' ' << place.second << ' ' << phase;
            low.fill(random);
            high.fill(random);
            const auto inverse = [&](LargePlane<T>& d, int from, int to) {
                ASSERT_EQ(vekStsOk, form.inverse(low.at(x(from), y(from)), low.step(), high.at(x(from), y(from)),
                                                 high.step(), part(from, to), d.at(x(from), y(from)), d.step(), phase));
            };
            inverse(dst, 0, lines);
            inverse(dstParts, 0, half);
            inverse(dstParts, half, lines);
            ASSERT_TRUE(dst == dstParts) << place.first << ' ' << phase;
        }
}

// Every argument check, in order, with nothing written.
template <typename T>
void checkArguments(const WaveletForm<T>& form)
{
    std::vector<T> a(400, T{7}), b(400, T{8}), c(400, T{9});
    const auto before = std::make_tuple(a, b, c);
    T* const p = &a[200];
    T* const q = &b[200];
    T* const r = &c[200];
    constexpr int step = 64;
    const auto forward = [&](T* x, int xStep, T* y, int yStep, T* z, int zStep, VekSize roi) {
        return form.forward(x, xStep, y, yStep, z, zStep, roi, 0);
    };
    const auto inverse = [&](T* x, int xStep, T* y, int yStep, T* z, int zStep, VekSize roi) {
        return form.inverse(x, xStep, y, yStep, roi, z, zStep, 0);
    };
    const auto check = [&](const auto& call) {
        EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, q, 0, r, 0, VekSize{0, 0}));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, nullptr, 0, r, 0, VekSize{0, 0}));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, q, 0, nullptr, 0, VekSize{0, 0}));
        for (const int bad : {0, -1, -step}) {
            EXPECT_EQ(vekStsBadStep, call(p, bad, q, step, r, step, VekSize{0, 0}));
            EXPECT_EQ(vekStsBadStep, call(p, step, q, bad, r, step, VekSize{0, 0}));
            EXPECT_EQ(vekStsBadStep, call(p, step, q, step, r, bad, VekSize{0, 0}));
            EXPECT_EQ(vekStsBadSize, call(p, step, q, step, r, step, VekSize{bad, 1}));
            EXPECT_EQ(vekStsBadSize, call(p, step, q, step, r, step, VekSize{1, bad}));
        }
    };
    check(forward);
    check(inverse);
    EXPECT_EQ(before, std::make_tuple(a, b, c));
}

}  // namespace support

#endif
