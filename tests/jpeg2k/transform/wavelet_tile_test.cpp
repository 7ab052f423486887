// One level of the wavelet transform of whole tiles: sizes up to 70 at all four parities of the origin, in place and
// with planes, the scratch exactly as large as its size function says and between unmapped pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "jpeg2k/transform/sample_plane.h"
#include "reference/jpeg2k/wavelet_tile.h"
#include "support/generators.h"
#include "support/sanitizers.h"
#include "vekj/jpeg2k_transform.h"

namespace {

using model::Block;
using model::Filter;
using support::Guard;
using support::GuardedBytes;
using support::Random;
using support::SamplePlane;
using support::underSanitizer;

template <typename T>
struct Member {
    using Sample = T;
    Filter filter;
    VekStatus (*sizeInPlace)(const VekRect*, int*);
    VekStatus (*forwardInPlace)(T*, int, const VekRect*, uint8_t*);
    VekStatus (*inverseInPlace)(T*, int, const VekRect*, uint8_t*);
    VekStatus (*sizeWithPlanes)(const VekRect*, int*);
    VekStatus (*forwardToPlanes)(const T*, int, const VekRect*, T* const*, const int*, uint8_t*);
    VekStatus (*inverseFromPlanes)(const T* const*, const int*, T*, int, const VekRect*, uint8_t*);
};

struct B53Of16s {
    static constexpr Member<int16_t> member = {
        Filter::Reversible53,          vekiWTGetBufSize_B53_JPEG2K_16s_C1IR, vekiWTFwd_B53_JPEG2K_16s_C1IR,
        vekiWTInv_B53_JPEG2K_16s_C1IR, vekiWTGetBufSize_B53_JPEG2K_16s_C1R,  vekiWTFwd_B53_JPEG2K_16s_C1R,
        vekiWTInv_B53_JPEG2K_16s_C1R};
};
struct B53Of32s {
    static constexpr Member<int32_t> member = {
        Filter::Reversible53,          vekiWTGetBufSize_B53_JPEG2K_32s_C1IR, vekiWTFwd_B53_JPEG2K_32s_C1IR,
        vekiWTInv_B53_JPEG2K_32s_C1IR, vekiWTGetBufSize_B53_JPEG2K_32s_C1R,  vekiWTFwd_B53_JPEG2K_32s_C1R,
        vekiWTInv_B53_JPEG2K_32s_C1R};
};
struct D97Of16s {
    static constexpr Member<int16_t> member = {
        Filter::Irreversible97,        vekiWTGetBufSize_D97_JPEG2K_16s_C1IR, vekiWTFwd_D97_JPEG2K_16s_C1IR,
        vekiWTInv_D97_JPEG2K_16s_C1IR, vekiWTGetBufSize_D97_JPEG2K_16s_C1R,  vekiWTFwd_D97_JPEG2K_16s_C1R,
        vekiWTInv_D97_JPEG2K_16s_C1R};
};
struct D97Of32s {
    static constexpr Member<int32_t> member = {
        Filter::Irreversible97,        vekiWTGetBufSize_D97_JPEG2K_32s_C1IR, vekiWTFwd_D97_JPEG2K_32s_C1IR,
        vekiWTInv_D97_JPEG2K_32s_C1IR, vekiWTGetBufSize_D97_JPEG2K_32s_C1R,  vekiWTFwd_D97_JPEG2K_32s_C1R,
        vekiWTInv_D97_JPEG2K_32s_C1R};
};

template <typename M>
class WaveletTile : public testing::Test {
};
using Members = testing::Types<B53Of16s, B53Of32s, D97Of16s, D97Of32s>;
TYPED_TEST_SUITE(WaveletTile, Members);

// Scratch of the size that is told, full of noise.
class Scratch {
public:
    Scratch(VekStatus (*sizeOf)(const VekRect*, int*), const VekRect& tile, Random& random, size_t misalignment = 0)
    {
        int size = -1;
        EXPECT_EQ(vekStsOk, sizeOf(&tile, &size));
        bytes_ = std::make_unique<GuardedBytes>(static_cast<size_t>(size), Guard::Behind, misalignment);
        for (int i = 0; i < size; ++i) bytes_->data()[i] = random.any<uint8_t>();
    }
    uint8_t* data() { return bytes_->data(); }

private:
    std::unique_ptr<GuardedBytes> bytes_;
};

template <typename T>
Block<T> blockOf(const SamplePlane<T>& plane)
{
    Block<T> block = {plane.width(), plane.height(), {}};
    for (int y = 0; y < plane.height(); ++y)
        for (int x = 0; x < plane.width(); ++x) block.samples.push_back(plane.at(x, y));
    return block;
}

struct Layout {
    int gap = 0;
    Guard guard = Guard::Behind;
    size_t misalignment = 0;
};

template <typename T>
void checkInPlace(const Member<T>& m, const VekRect& tile, const Layout& layout, Random& random)
{
    const VekSize size = {tile.width, tile.height};
    for (const bool forward : {true, false}) {
        SamplePlane<T> plane(size, layout.gap, layout.guard, layout.misalignment);
        plane.fill(random);
        SamplePlane<T> expected(size, layout.gap, layout.guard, layout.misalignment);
        expected.copyFrom(plane);
        Block<T> block = blockOf(plane);
        (forward ? model::forwardTile<T> : model::inverseTile<T>)(m.filter, block, tile.x & 1, tile.y & 1);
        for (int y = 0; y < tile.height; ++y)
            for (int x = 0; x < tile.width; ++x) expected.set(x, y, block.at(x, y));
        Scratch scratch(m.sizeInPlace, tile, random, layout.misalignment);
        ASSERT_EQ(vekStsOk,
                  (forward ? m.forwardInPlace : m.inverseInPlace)(plane.data(), plane.step(), &tile, scratch.data()));
        ASSERT_TRUE(expected == plane) << (forward ? "forward " : "inverse ") << tile.width << " x " << tile.height
                                       << " at " << tile.x << ", " << tile.y;
    }
}

// Where the planes lie in the transformed block.
struct Quadrant {
    int x, y, width, height;
};
std::array<Quadrant, 4> quadrants(const VekRect& t)
{
    const int left = (t.width + 1) / 2, top = (t.height + 1) / 2;
    return {{{0, 0, left, top},
             {0, top, left, t.height / 2},
             {left, 0, t.width / 2, top},
             {left, top, t.width / 2, t.height / 2}}};
}

template <typename T>
struct Planes {
    Planes(const VekRect& tile, const Layout& layout)
    {
        for (const Quadrant& q : quadrants(tile)) {  // an empty plane is not touched
            planes.emplace_back(VekSize{std::max(q.width, 1), std::max(q.height, 1)}, layout.gap, layout.guard,
                                layout.misalignment);
            pointers[planes.size() - 1] = planes.back().data();
            steps[planes.size() - 1] = planes.back().step();
        }
    }
    std::vector<SamplePlane<T>> planes;
    std::array<T*, 4> pointers;
    std::array<int, 4> steps;
};

template <typename T>
void checkPlanes(const Member<T>& m, const VekRect& tile, const Layout& layout, Random& random)
{
    const VekSize size = {tile.width, tile.height};
    const auto parts = quadrants(tile);
    {
        SamplePlane<T> src(size, layout.gap, layout.guard, layout.misalignment);
        src.fill(random);
        Block<T> block = blockOf(src);
        model::forwardTile(m.filter, block, tile.x & 1, tile.y & 1);
        Planes<T> dst(tile, layout), expected(tile, layout);
        for (size_t i = 0; i < 4; ++i) {
            dst.planes[i].fill(random);
            expected.planes[i].copyFrom(dst.planes[i]);
            for (int y = 0; y < parts[i].height; ++y)
                for (int x = 0; x < parts[i].width; ++x)
                    expected.planes[i].set(x, y, block.at(parts[i].x + x, parts[i].y + y));
        }
        Scratch scratch(m.sizeWithPlanes, tile, random, layout.misalignment);
        ASSERT_EQ(vekStsOk, m.forwardToPlanes(src.data(), src.step(), &tile, dst.pointers.data(), dst.steps.data(),
                                              scratch.data()));
        for (size_t i = 0; i < 4; ++i)
            ASSERT_TRUE(expected.planes[i] == dst.planes[i])
                << "plane " << i << " of " << tile.width << " x " << tile.height << " at " << tile.x << ", " << tile.y;
    }
    {
        Planes<T> src(tile, layout);
        Block<T> block = {tile.width, tile.height, std::vector<T>(static_cast<size_t>(tile.width * tile.height))};
        for (size_t i = 0; i < 4; ++i) {
            src.planes[i].fill(random);
            for (int y = 0; y < parts[i].height; ++y)
                for (int x = 0; x < parts[i].width; ++x)
                    block.at(parts[i].x + x, parts[i].y + y) = src.planes[i].at(x, y);
        }
        model::inverseTile(m.filter, block, tile.x & 1, tile.y & 1);
        SamplePlane<T> dst(size, layout.gap, layout.guard, layout.misalignment);
        dst.fill(random);
        SamplePlane<T> expected(size, layout.gap, layout.guard, layout.misalignment);
        expected.copyFrom(dst);
        for (int y = 0; y < tile.height; ++y)
            for (int x = 0; x < tile.width; ++x) expected.set(x, y, block.at(x, y));
        Scratch scratch(m.sizeWithPlanes, tile, random, layout.misalignment);
        ASSERT_EQ(vekStsOk, m.inverseFromPlanes(src.pointers.data(), src.steps.data(), dst.data(), dst.step(), &tile,
                                                scratch.data()));
        ASSERT_TRUE(expected == dst) << tile.width << " x " << tile.height << " at " << tile.x << ", " << tile.y;
    }
}

TYPED_TEST(WaveletTile, EqualsTheModelAtEverySmallSizeAndParity)
{
    Random random(91);
    const int stride = underSanitizer ? 5 : 1;
    for (int width = 1; width <= 10; ++width)
        for (int height = 1; height <= 10; ++height)
            for (const int y : {0, 1})
                for (const int x : {0, 1}) {
                    const VekRect tile = {x, y, width, height};
                    ASSERT_NO_FATAL_FAILURE(checkInPlace(TypeParam::member, tile, {}, random));
                    ASSERT_NO_FATAL_FAILURE(checkPlanes(TypeParam::member, tile, {}, random));
                }
    for (int size = 11; size <= 70; size += stride)
        for (const int other : {1, 2, 3, 37})
            for (const int y : {-7, 6}) {
                for (const VekRect tile : {VekRect{y + 1, y, size, other}, VekRect{y, -y, other, size}}) {
                    ASSERT_NO_FATAL_FAILURE(checkInPlace(TypeParam::member, tile, {0, Guard::Before, 0}, random));
                    ASSERT_NO_FATAL_FAILURE(checkPlanes(TypeParam::member, tile, {0, Guard::Before, 0}, random));
                }
            }
}

TYPED_TEST(WaveletTile, EqualsTheModelAtEveryAddressAndStep)
{
    Random random(92);
    for (int offset = 1; offset < 34; offset += underSanitizer ? 5 : 1) {
        const VekRect tile = {offset & 1, (offset >> 1) & 1, 33 + offset % 3, 9};
        const Layout layout = {offset, Guard::Before, static_cast<size_t>(offset)};
        ASSERT_NO_FATAL_FAILURE(checkInPlace(TypeParam::member, tile, layout, random));
        ASSERT_NO_FATAL_FAILURE(checkPlanes(TypeParam::member, tile, layout, random));
    }
}

// Lines longer than a row's piece, strips narrower than a vector, columns that only the caller's buffer holds.
TYPED_TEST(WaveletTile, EqualsTheModelOnLongLines)
{
    Random random(93);
    for (const int phase : {0, 1})
        for (const VekRect tile : {VekRect{phase, 0, 4096, 3}, VekRect{phase, 0, 4097, 3}, VekRect{phase, 1, 4099, 2},
                                   VekRect{phase, 1, 9001, 4}, VekRect{0, phase, 40, 1500}, VekRect{1, phase, 33, 4097},
                                   VekRect{1, phase, 7, 20001}, VekRect{1, phase, 3, 40000},
                                   VekRect{0, phase, 2, 70001}, VekRect{1, phase, 1100, 5}}) {
            ASSERT_NO_FATAL_FAILURE(checkInPlace(TypeParam::member, tile, {6, Guard::Behind, 0}, random));
            ASSERT_NO_FATAL_FAILURE(checkPlanes(TypeParam::member, tile, {2, Guard::Behind, 0}, random));
        }
}

template <typename T>
std::vector<T> transformed(VekStatus (*function)(T*, int, const VekRect*, uint8_t*), VekRect tile, std::vector<T> block)
{
    std::vector<uint8_t> scratch(1000);
    const int step = std::max(tile.width, 1) * static_cast<int>(sizeof(T));
    EXPECT_EQ(vekStsOk, function(block.data(), step, &tile, scratch.data()));
    return block;
}

TYPED_TEST(WaveletTile, ASingleSampleDoublesForEachOddCoordinate)
{
    using T = typename decltype(TypeParam::member)::Sample;
    const auto forward = TypeParam::member.forwardInPlace;
    const auto inverse = TypeParam::member.inverseInPlace;
    EXPECT_EQ(std::vector<T>{77}, transformed<T>(forward, {0, 0, 1, 1}, {77}));
    EXPECT_EQ(std::vector<T>{154}, transformed<T>(forward, {1, 0, 1, 1}, {77}));
    EXPECT_EQ(std::vector<T>{154}, transformed<T>(forward, {0, 1, 1, 1}, {77}));
    EXPECT_EQ(std::vector<T>{308}, transformed<T>(forward, {1, 1, 1, 1}, {77}));
    EXPECT_EQ(std::vector<T>{77}, transformed<T>(inverse, {1, 1, 1, 1}, {308}));
    EXPECT_EQ(std::vector<T>{0}, transformed<T>(inverse, {1, 0, 1, 1}, {-1}));
    EXPECT_EQ(std::vector<T>{-1}, transformed<T>(inverse, {1, 0, 1, 1}, {-3}));
    const T least = std::numeric_limits<T>::min();
    EXPECT_EQ(std::vector<T>{0}, transformed<T>(forward, {1, 0, 1, 1}, {least}));  // wraps
    EXPECT_EQ(std::vector<T>{static_cast<T>(least / 2)}, transformed<T>(inverse, {1, 0, 1, 1}, {least}));
}

TYPED_TEST(WaveletTile, OneRowIsLeftAloneOrDoubledByTheColumns)
{
    using T = typename decltype(TypeParam::member)::Sample;
    Random random(94);
    for (const int width : {1, 17, 40}) {
        std::vector<T> row(static_cast<size_t>(width));
        for (T& v : row) v = random.in<T>(-1000, 1000);
        std::vector<T> twice = row;
        for (T& v : twice) v = static_cast<T>(2 * v);
        const auto rowsOf = [&](const std::vector<T>& line) {
            return model::forwardLine(TypeParam::member.filter, line, 0);
        };
        EXPECT_EQ(rowsOf(row), transformed<T>(TypeParam::member.forwardInPlace, {0, 0, width, 1}, row));
        EXPECT_EQ(rowsOf(twice), transformed<T>(TypeParam::member.forwardInPlace, {0, 1, width, 1}, row));
        std::vector<T> back = model::inverseLine(TypeParam::member.filter, row, 0);
        EXPECT_EQ(back, transformed<T>(TypeParam::member.inverseInPlace, {0, 0, width, 1}, row));
        for (T& v : back) v = static_cast<T>(v / 2);  // towards zero
        EXPECT_EQ(back, transformed<T>(TypeParam::member.inverseInPlace, {0, 1, width, 1}, row));
    }
}

// A height below 1 is a height of 1 for the columns and of 0 for the rows; the caller's row is doubled all the same.
TYPED_TEST(WaveletTile, NoRowsCountAsOneForTheColumns)
{
    using T = typename decltype(TypeParam::member)::Sample;
    const std::vector<T> row = {5, -7, 9, 11, 13};
    for (const int height : {0, -1, -1000}) {
        for (const bool forward : {true, false}) {
            const auto function = forward ? TypeParam::member.forwardInPlace : TypeParam::member.inverseInPlace;
            EXPECT_EQ(row, transformed<T>(function, {0, 0, 5, height}, row));
            const std::vector<T> expected =
                forward ? std::vector<T>{10, -14, 18, 22, 26} : std::vector<T>{2, -3, 4, 5, 6};
            EXPECT_EQ(expected, transformed<T>(function, {0, 1, 5, height}, row));
        }
    }
    for (const int width : {0, -3})
        EXPECT_EQ(row, transformed<T>(TypeParam::member.forwardInPlace, {1, 1, width, 4}, row));
}

TEST(WaveletTile53, TwoSamplesStandLowFirstAtEitherPhase)
{
    for (const int phase : {0, 1}) {
        const int16_t even = 10, odd = 25;
        const std::vector<int16_t> row = phase == 0 ? std::vector<int16_t>{even, odd} : std::vector<int16_t>{odd, even};
        const std::vector<int16_t> bands = {18, 15};  // H = O - E, L = E + ((H + 1) >> 1)
        EXPECT_EQ(bands, transformed<int16_t>(vekiWTFwd_B53_JPEG2K_16s_C1IR, {phase, 0, 2, 1}, row));
        EXPECT_EQ(row, transformed<int16_t>(vekiWTInv_B53_JPEG2K_16s_C1IR, {phase, 0, 2, 1}, bands));
        const std::vector<int32_t> wide(row.begin(), row.end()), wideBands(bands.begin(), bands.end());
        EXPECT_EQ(wideBands, transformed<int32_t>(vekiWTFwd_B53_JPEG2K_32s_C1IR, {0, phase, 1, 2}, wide));
        EXPECT_EQ(wide, transformed<int32_t>(vekiWTInv_B53_JPEG2K_32s_C1IR, {0, phase, 1, 2}, wideBands));
    }
}

TEST(WaveletTile53, IsUndoneExactlyWhereSumsFit)
{
    Random random(95);
    for (int repeat = 0; repeat < 50; ++repeat) {
        const VekRect tile = {random.in(0, 1), random.in(0, 1), random.in(1, 60), random.in(1, 60)};
        std::vector<int16_t> block(static_cast<size_t>(tile.width * tile.height));
        for (auto& v : block) v = random.in<int16_t>(-8000, 8000);
        const auto bands = transformed<int16_t>(vekiWTFwd_B53_JPEG2K_16s_C1IR, tile, block);
        ASSERT_EQ(block, transformed<int16_t>(vekiWTInv_B53_JPEG2K_16s_C1IR, tile, bands));
    }
}

TEST(WaveletTile97, IsUndoneButForRounding)
{
    Random random(96);
    for (int repeat = 0; repeat < 50; ++repeat) {
        const VekRect tile = {random.in(0, 1), random.in(0, 1), random.in(2, 60), random.in(2, 60)};
        std::vector<int32_t> block(static_cast<size_t>(tile.width * tile.height));
        for (auto& v : block) v = random.in(-8000, 8000);
        const auto bands = transformed<int32_t>(vekiWTFwd_D97_JPEG2K_32s_C1IR, tile, block);
        const auto back = transformed<int32_t>(vekiWTInv_D97_JPEG2K_32s_C1IR, tile, bands);
        for (size_t i = 0; i < block.size(); ++i) ASSERT_NEAR(block[i], back[i], 8) << i;
    }
}

// Lines of 4 are mirrored more than once, lines of 5 once; the low results of a constant line are that constant, less
// what truncation takes.
TEST(WaveletTile97, ShortLinesAreMirroredAsOftenAsItTakes)
{
    for (const int width : {2, 3, 4, 5, 6})
        for (const int phase : {0, 1}) {
            const std::vector<int32_t> line(static_cast<size_t>(width), 1000);
            const auto bands = transformed<int32_t>(vekiWTFwd_D97_JPEG2K_32s_C1IR, {phase, 0, width, 1}, line);
            const int lowCount = phase == 0 ? (width + 1) / 2 : width / 2;
            for (int i = 0; i < width; ++i)
                EXPECT_NEAR(i < lowCount ? 1000 : 0, bands[static_cast<size_t>(i)], 1) << width << ", " << phase;
        }
}

TEST(WaveletTile97, ResultsBeyondThirtyTwoBitsAreClipped)
{
    constexpr int32_t most = 2147483647;
    constexpr int32_t least = -2147483647 - 1;
    const auto highOf = [](int32_t even, int32_t odd) {
        const std::vector<int32_t> line = {even, odd, even, odd, even, odd};
        const auto bands = transformed<int32_t>(vekiWTFwd_D97_JPEG2K_32s_C1IR, {0, 0, 6, 1}, line);
        EXPECT_EQ(model::forwardLine(Filter::Irreversible97, line, 0), bands);
        return bands[4];
    };
    EXPECT_EQ(most, highOf(-1073741824, most));  // about 1.5 times 2^31
    EXPECT_EQ(least, highOf(1073741823, least));
}

// The low sample becomes 2^31 as a float, and the constant line that it stands for is 2^31 to the bit: not above the
// limit, so it is converted.
TEST(WaveletTile97, TwoToTheThirtyFirstIsConvertedAndNotClipped)
{
    constexpr int32_t most = 2147483647;
    constexpr int32_t least = -2147483647 - 1;
    const auto inverse = [](int32_t low) {
        return transformed<int32_t>(vekiWTInv_D97_JPEG2K_32s_C1IR, {0, 0, 2, 1}, {low, 0})[0];
    };
    EXPECT_EQ(least, inverse(most));
    EXPECT_EQ(least, inverse(least));
    EXPECT_GT(inverse(most - 1000), most - 2000);
}

TEST(WaveletTileSizes, AreThoseOfALineAndAnImage)
{
    const auto size = [](VekStatus (*function)(const VekRect*, int*), int width, int height) {
        const VekRect tile = {1, 1, width, height};
        int result = -1;
        EXPECT_EQ(vekStsOk, function(&tile, &result));
        return result;
    };
    EXPECT_EQ(0, size(vekiWTGetBufSize_B53_JPEG2K_16s_C1IR, 2, 2));
    EXPECT_EQ(0, size(vekiWTGetBufSize_B53_JPEG2K_32s_C1IR, 2, 2));
    EXPECT_EQ(20, size(vekiWTGetBufSize_D97_JPEG2K_16s_C1IR, 2, 2));
    EXPECT_EQ(40, size(vekiWTGetBufSize_D97_JPEG2K_32s_C1IR, 2, 2));
    EXPECT_EQ(0, size(vekiWTGetBufSize_D97_JPEG2K_16s_C1IR, 1, 1));
    EXPECT_EQ(0, size(vekiWTGetBufSize_D97_JPEG2K_32s_C1IR, 1, 1));
    EXPECT_EQ(2 * 3 + 8, size(vekiWTGetBufSize_B53_JPEG2K_16s_C1IR, 1, 3));
    EXPECT_EQ(2 * 100 + 8, size(vekiWTGetBufSize_B53_JPEG2K_16s_C1IR, 100, 50));
    EXPECT_EQ(4 * 100 + 16, size(vekiWTGetBufSize_B53_JPEG2K_32s_C1IR, 50, 100));
    EXPECT_EQ(2 * 100 + 16, size(vekiWTGetBufSize_D97_JPEG2K_16s_C1IR, 100, 50));
    EXPECT_EQ(4 * 100 + 32, size(vekiWTGetBufSize_D97_JPEG2K_32s_C1IR, 50, 100));
    EXPECT_EQ(2 * 32, size(vekiWTGetBufSize_B53_JPEG2K_16s_C1R, 2, 2));
    EXPECT_EQ(2 * 100 + 8 + 224 * 50, size(vekiWTGetBufSize_B53_JPEG2K_16s_C1R, 100, 50));
    EXPECT_EQ(4 * 100 + 16 + 224 * 100, size(vekiWTGetBufSize_B53_JPEG2K_32s_C1R, 50, 100));
    EXPECT_EQ(2 * 100 + 16 + 224 * 50, size(vekiWTGetBufSize_D97_JPEG2K_16s_C1R, 100, 50));
    EXPECT_EQ(4 * 100 + 32 + 224 * 100, size(vekiWTGetBufSize_D97_JPEG2K_32s_C1R, 50, 100));
}

TYPED_TEST(WaveletTile, SizesCheckTheirArguments)
{
    const VekRect tile = {0, 0, 8, 8};
    int size = -5;
    for (const auto function : {TypeParam::member.sizeInPlace, TypeParam::member.sizeWithPlanes}) {
        EXPECT_EQ(vekStsNullPointer, function(nullptr, &size));
        EXPECT_EQ(vekStsNullPointer, function(&tile, nullptr));
    }
    EXPECT_EQ(-5, size);
}

TYPED_TEST(WaveletTile, FormsInPlaceCheckTheirArgumentsInOrder)
{
    using T = typename decltype(TypeParam::member)::Sample;
    const VekRect tile = {0, 0, 3, 1};
    std::vector<T> block = {1, 2, 3};
    uint8_t scratch[64] = {};
    for (const auto function : {TypeParam::member.forwardInPlace, TypeParam::member.inverseInPlace}) {
        EXPECT_EQ(vekStsNullPointer, function(nullptr, 0, nullptr, nullptr));
        for (const int step : {0, -1, -100}) EXPECT_EQ(vekStsBadStep, function(block.data(), step, nullptr, nullptr));
        EXPECT_EQ(vekStsNullPointer, function(block.data(), 1, nullptr, scratch));
        EXPECT_EQ(vekStsNullPointer, function(block.data(), 1, &tile, nullptr));
    }
    EXPECT_EQ((std::vector<T>{1, 2, 3}), block);
}

TYPED_TEST(WaveletTile, FormsWithPlanesCheckTheirArgumentsInOrder)
{
    using T = typename decltype(TypeParam::member)::Sample;
    const auto& m = TypeParam::member;
    const VekRect good = {0, 0, 3, 1}, none = {0, 0, 0, 1}, flat = {0, 0, 3, -1};
    std::vector<T> image = {1, 2, 3}, bands(16, T{9});
    T* const planes[4] = {&bands[0], &bands[4], &bands[8], &bands[12]};
    const int steps[4] = {8, 8, 8, 8};
    uint8_t scratch[256] = {};
    const auto forward = [&](T* p, int step, const VekRect* r, T* const* q, const int* s, uint8_t* b) {
        return m.forwardToPlanes(p, step, r, q, s, b);
    };
    const auto inverse = [&](T* p, int step, const VekRect* r, T* const* q, const int* s, uint8_t* b) {
        return m.inverseFromPlanes(q, s, p, step, r, b);
    };
    const auto check = [&](const auto& call) {
        T* const p = image.data();
        EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, &none, planes, steps, scratch));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, nullptr, planes, steps, scratch));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, &none, nullptr, steps, scratch));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, &none, planes, nullptr, scratch));
        EXPECT_EQ(vekStsNullPointer, call(p, 0, &none, planes, steps, nullptr));
        for (int i = 0; i < 4; ++i) {
            T* incomplete[4] = {planes[0], planes[1], planes[2], planes[3]};
            incomplete[i] = nullptr;
            const int zeroSteps[4] = {0, 0, 0, 0};
            EXPECT_EQ(vekStsBadStep, call(p, 0, &none, incomplete, zeroSteps, scratch)) << i;
            EXPECT_EQ(vekStsNullPointer, call(p, 1, &none, incomplete, zeroSteps, scratch)) << i;
            int bad[4] = {8, 8, 8, 8};
            bad[i] = -i;
            EXPECT_EQ(vekStsBadStep, call(p, 1, &none, planes, bad, scratch)) << i;
        }
        EXPECT_EQ(vekStsBadSize, call(p, 1, &none, planes, steps, scratch));
        EXPECT_EQ(vekStsBadSize, call(p, 1, &flat, planes, steps, scratch));
    };
    check(forward);
    check(inverse);
    EXPECT_EQ((std::vector<T>{1, 2, 3}), image);
    EXPECT_EQ(std::vector<T>(16, T{9}), bands);
    EXPECT_EQ(vekStsOk, forward(image.data(), 12, &good, planes, steps, scratch));
}

}  // namespace
