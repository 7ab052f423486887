// The multiple-component transforms against their models: all widths, any address, steps with gaps, memory that ends at
// unmapped pages.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "jpeg2k/transform/sample_plane.h"
#include "reference/jpeg2k/component_transforms.h"
#include "support/generators.h"
#include "vekj/jpeg2k_transform.h"

namespace {

using model::Components;
using support::Guard;
using support::Random;
using support::SamplePlane;

enum class Shape { ToPlanes, FromPlanes, InPlace };

// What a function is, from its type.
template <typename Function>
struct Signature;
template <typename T>
struct Signature<VekStatus (*)(const T*, int, T* const*, int, VekSize)> {
    using Sample = T;
    static constexpr Shape shape = Shape::ToPlanes;
};
template <typename T>
struct Signature<VekStatus (*)(const T* const*, int, T*, int, VekSize)> {
    using Sample = T;
    static constexpr Shape shape = Shape::FromPlanes;
};
template <typename T>
struct Signature<VekStatus (*)(T* const*, int, VekSize)> {
    using Sample = T;
    static constexpr Shape shape = Shape::InPlace;
};

template <auto function, auto modelOfPixel>
struct Member : Signature<decltype(function)> {
    using T = typename Signature<decltype(function)>::Sample;
    static constexpr Shape shape = Signature<decltype(function)>::shape;

    static Components<T> expected(Components<T> v) { return modelOfPixel(v); }
    static VekStatus call(T* pixels, int pixelStep, T* const* planes, int planeStep, VekSize roi)
    {
        if constexpr (shape == Shape::ToPlanes)
            return function(pixels, pixelStep, planes, planeStep, roi);
        else if constexpr (shape == Shape::FromPlanes)
            return function(planes, planeStep, pixels, pixelStep, roi);
        else
            return function(planes, planeStep, roi);
    }
};

template <typename T>
using Model = Components<T> (*)(Components<T>);
constexpr Model<int16_t> rctForward16 = model::rctForward, rctInverse16 = model::rctInverse;
constexpr Model<int16_t> ictForward16 = model::ictForward, ictInverse16 = model::ictInverse;
constexpr Model<int32_t> rctForward32 = model::rctForward, rctInverse32 = model::rctInverse;
constexpr Model<int32_t> ictForward32 = model::ictForward, ictInverse32 = model::ictInverse;
constexpr Model<float> ictForwardFloat = model::ictForward, ictInverseFloat = model::ictInverse;

using Members = testing::Types<
    Member<vekiRCTFwd_JPEG2K_16s_C3P3R, rctForward16>, Member<vekiRCTFwd_JPEG2K_16s_P3IR, rctForward16>,
    Member<vekiRCTInv_JPEG2K_16s_P3C3R, rctInverse16>, Member<vekiRCTInv_JPEG2K_16s_P3IR, rctInverse16>,
    Member<vekiRCTFwd_JPEG2K_32s_C3P3R, rctForward32>, Member<vekiRCTFwd_JPEG2K_32s_P3IR, rctForward32>,
    Member<vekiRCTInv_JPEG2K_32s_P3C3R, rctInverse32>, Member<vekiRCTInv_JPEG2K_32s_P3IR, rctInverse32>,
    Member<vekiICTFwd_JPEG2K_32f_C3P3R, ictForwardFloat>, Member<vekiICTFwd_JPEG2K_32f_P3IR, ictForwardFloat>,
    Member<vekiICTInv_JPEG2K_32f_P3C3R, ictInverseFloat>, Member<vekiICTInv_JPEG2K_32f_P3IR, ictInverseFloat>,
    Member<vekiICTFwd_JPEG2K_32s_P3IR, ictForward32>, Member<vekiICTInv_JPEG2K_32s_P3IR, ictInverse32>,
    Member<vekiICTFwd_JPEG2K_16s_P3IR, ictForward16>, Member<vekiICTInv_JPEG2K_16s_P3IR, ictInverse16>>;

// The pixels and the planes of one call.
template <typename M>
struct Images {
    using T = typename M::T;

    Images(VekSize size, int gap, Guard guard, size_t misalignment)
        : roi(size),
          pixels({3 * size.width, size.height}, gap, guard, misalignment),
          planes{SamplePlane<T>(size, gap, guard, misalignment), SamplePlane<T>(size, gap, guard, misalignment),
                 SamplePlane<T>(size, gap, guard, misalignment)}
    {
    }

    void fill(Random& random)
    {
        pixels.fill(random);
        for (auto& plane : planes) plane.fill(random);
    }
    Components<T> pixel(int x, int y) const
    {
        return {pixels.at(3 * x, y), pixels.at(3 * x + 1, y), pixels.at(3 * x + 2, y)};
    }
    Components<T> sample(int x, int y) const { return {planes[0].at(x, y), planes[1].at(x, y), planes[2].at(x, y)}; }
    void store(int x, int y, Components<T> v)
    {
        for (int c = 0; c < 3; ++c) {
            if (M::shape == Shape::FromPlanes)
                pixels.set(3 * x + c, y, v[static_cast<size_t>(c)]);
            else
                planes[static_cast<size_t>(c)].set(x, y, v[static_cast<size_t>(c)]);
        }
    }
    VekStatus call()
    {
        T* const pointers[3] = {planes[0].data(), planes[1].data(), planes[2].data()};
        return M::call(pixels.data(), pixels.step(), pointers, planes[0].step(), roi);
    }
    bool operator==(const Images& other) const { return pixels == other.pixels && planes == other.planes; }

    VekSize roi;
    SamplePlane<T> pixels;
    std::array<SamplePlane<T>, 3> planes;
};

template <typename M>
class ComponentTransforms : public testing::Test {
};
TYPED_TEST_SUITE(ComponentTransforms, Members);

template <typename M>
void compareWithModel(VekSize roi, int gap, Guard guard, size_t misalignment, Random& random)
{
    Images<M> images(roi, gap, guard, misalignment);
    images.fill(random);
    Images<M> expected(roi, gap, guard, misalignment);
    expected.pixels.copyFrom(images.pixels);
    for (size_t c = 0; c < 3; ++c) expected.planes[c].copyFrom(images.planes[c]);
    for (int y = 0; y < roi.height; ++y)
        for (int x = 0; x < roi.width; ++x)
            expected.store(x, y,
                           M::expected(M::shape == Shape::ToPlanes ? expected.pixel(x, y) : expected.sample(x, y)));
    ASSERT_EQ(vekStsOk, images.call());
    ASSERT_TRUE(expected == images) << roi.width << " x " << roi.height << ", gap " << gap;
}

TYPED_TEST(ComponentTransforms, EqualTheirModelAtEveryWidth)
{
    Random random(41);
    for (int width = 1; width <= 70; ++width)
        for (const Guard guard : {Guard::Behind, Guard::Before})
            compareWithModel<TypeParam>({width, 1 + width % 3}, 0, guard, 0, random);
}

TYPED_TEST(ComponentTransforms, EqualTheirModelAtEveryAddressAndStep)
{
    Random random(42);
    for (int offset = 0; offset < 33; ++offset)
        for (const int width : {15, 16, 33})
            compareWithModel<TypeParam>({width, 3}, offset, Guard::Before, static_cast<size_t>(offset), random);
}

TYPED_TEST(ComponentTransforms, EqualTheirModelOnMuchData)
{
    Random random(43);
    compareWithModel<TypeParam>({997, 100}, 6, Guard::Behind, 0, random);
}

TYPED_TEST(ComponentTransforms, CheckTheirArgumentsInOrder)
{
    using M = TypeParam;
    using T = typename M::T;
    Random random(44);
    Images<M> images({4, 2}, 0, Guard::Behind, 0);
    images.fill(random);
    Images<M> before({4, 2}, 0, Guard::Behind, 0);
    before.pixels.copyFrom(images.pixels);
    for (size_t c = 0; c < 3; ++c) before.planes[c].copyFrom(images.planes[c]);

    T* const all[3] = {images.planes[0].data(), images.planes[1].data(), images.planes[2].data()};
    T* const pixels = images.pixels.data();
    if (M::shape != Shape::InPlace) {
        EXPECT_EQ(vekStsNullPointer, M::call(nullptr, 0, all, 0, {0, 0}));
    }
    EXPECT_EQ(vekStsNullPointer, M::call(pixels, 0, nullptr, 0, {0, 0}));
    for (int missing = 0; missing < 3; ++missing) {
        T* planes[3] = {all[0], all[1], all[2]};
        planes[missing] = nullptr;
        EXPECT_EQ(vekStsNullPointer, M::call(pixels, 0, planes, 0, {0, 0})) << missing;
    }
    for (const int step : {0, -1, -64}) {
        EXPECT_EQ(vekStsBadStep, M::call(pixels, 64, all, step, {0, 0})) << step;
        if (M::shape != Shape::InPlace) {
            EXPECT_EQ(vekStsBadStep, M::call(pixels, step, all, 64, {0, 0})) << step;
        }
    }
    EXPECT_EQ(vekStsBadSize, M::call(pixels, 64, all, 64, {0, 2}));
    EXPECT_EQ(vekStsBadSize, M::call(pixels, 64, all, 64, {4, 0}));
    EXPECT_EQ(vekStsBadSize, M::call(pixels, 64, all, 64, {-1, 2}));
    EXPECT_EQ(vekStsBadSize, M::call(pixels, 64, all, 64, {4, -1}));
    EXPECT_TRUE(before == images);

    EXPECT_EQ(vekStsOk, M::call(pixels, images.pixels.step(), all, 1, {1, 1}));  // a short step is no error
}

// One pixel, in place.
template <auto function, typename T>
Components<T> onePixel(Components<T> v)
{
    T* const planes[3] = {&v[0], &v[1], &v[2]};
    EXPECT_EQ(vekStsOk, function(planes, static_cast<int>(sizeof(T)), {1, 1}));
    return v;
}
using Pixel16 = Components<int16_t>;
using Pixel32 = Components<int32_t>;

TEST(Rct, GreyHasNoChroma)
{
    for (int v = -32768; v <= 32767; ++v) {
        const auto grey = static_cast<int16_t>(v);
        ASSERT_EQ((Pixel16{grey, 0, 0}), (onePixel<vekiRCTFwd_JPEG2K_16s_P3IR>(Pixel16{grey, grey, grey})));
    }
    EXPECT_EQ((Pixel32{123456, 0, 0}), (onePixel<vekiRCTFwd_JPEG2K_32s_P3IR>(Pixel32{123456, 123456, 123456})));
}

TEST(Rct, ShiftsRoundDown)
{
    EXPECT_EQ((Pixel16{-1, 0, -1}), (onePixel<vekiRCTFwd_JPEG2K_16s_P3IR>(Pixel16{-1, 0, 0})));
    EXPECT_EQ((Pixel16{1, 1, 0}), (onePixel<vekiRCTInv_JPEG2K_16s_P3IR>(Pixel16{0, -1, 0})));
}

TEST(Rct, SixteenBitSumsAreExactAndThirtyTwoBitSumsWrap)
{
    EXPECT_EQ((Pixel16{32767, 0, 0}), (onePixel<vekiRCTFwd_JPEG2K_16s_P3IR>(Pixel16{32767, 32767, 32767})));
    EXPECT_EQ((Pixel16{-1, -1, -1}), (onePixel<vekiRCTFwd_JPEG2K_16s_P3IR>(Pixel16{32767, -32768, 32767})));
    constexpr int32_t most = 2147483647;
    EXPECT_EQ((Pixel32{-1, 0, 0}), (onePixel<vekiRCTFwd_JPEG2K_32s_P3IR>(Pixel32{most, most, most})));
}

TEST(Rct, IsUndoneExactly)
{
    Random random(45);
    for (int i = 0; i < 20000; ++i) {
        Pixel16 narrow;
        for (auto& v : narrow) v = random.in<int16_t>(-16384, 16383);
        const Pixel16 planes = onePixel<vekiRCTFwd_JPEG2K_16s_P3IR>(narrow);
        ASSERT_EQ(narrow, (onePixel<vekiRCTInv_JPEG2K_16s_P3IR>(planes)));
        Pixel32 wide;
        for (auto& v : wide) v = random.in<int32_t>(-(1 << 28), 1 << 28);
        ASSERT_EQ(wide, (onePixel<vekiRCTInv_JPEG2K_32s_P3IR>(onePixel<vekiRCTFwd_JPEG2K_32s_P3IR>(wide))));
    }
}

TEST(Ict, WhiteOfSixteenBitsHasNoChroma)
{
    EXPECT_EQ((Pixel16{32767, 0, 0}), (onePixel<vekiICTFwd_JPEG2K_16s_P3IR>(Pixel16{32767, 32767, 32767})));
    EXPECT_EQ((Pixel16{-32768, 0, 0}), (onePixel<vekiICTFwd_JPEG2K_16s_P3IR>(Pixel16{-32768, -32768, -32768})));
}

TEST(Ict, SixteenBitInverseClips)
{
    EXPECT_EQ(32767, (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{32767, 0, 20000}))[0]);
    EXPECT_EQ(-32768, (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{-32768, 0, -32768}))[0]);
    EXPECT_EQ(32767, (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{32767, -32768, -32768}))[1]);
    EXPECT_EQ(-32768, (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{-32768, 32767, 32767}))[1]);
    EXPECT_EQ(32767, (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{32767, 32767, 0}))[2]);
}

TEST(Ict, GreenOfBothWidthsRoundsOnItsOwnSideOfTheSign)
{
    int differences = 0;
    for (int16_t cb = -64; cb < 64; ++cb)
        for (int16_t cr = -4096; cr < 4096; cr += 64) {
            const int narrow = (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{0, cb, cr}))[1];
            const int wide = (onePixel<vekiICTInv_JPEG2K_32s_P3IR>(Pixel32{0, cb, cr}))[1];
            const int sum = 5638 * cb + 11700 * cr;
            const bool tie = ((sum + 8192) & 16383) == 0;
            ASSERT_EQ(tie ? wide - 1 : wide, narrow) << cb << ", " << cr;
            differences += tie;
        }
    EXPECT_EQ(differences, 2);
    // 11700 * 2048 + 8192 = 1463 << 14
    EXPECT_EQ((Pixel16{2871, -1463, 0}), (onePixel<vekiICTInv_JPEG2K_16s_P3IR>(Pixel16{0, 0, 2048})));
    EXPECT_EQ((Pixel32{2871, -1462, 0}), (onePixel<vekiICTInv_JPEG2K_32s_P3IR>(Pixel32{0, 0, 2048})));
}

TEST(Ict, ChromaOfBothWidthsCanDiffer)
{
    EXPECT_EQ((Pixel16{0, 1, 0}), (onePixel<vekiICTFwd_JPEG2K_16s_P3IR>(Pixel16{0, 0, 1})));
    EXPECT_EQ((Pixel32{0, 1, 0}), (onePixel<vekiICTFwd_JPEG2K_32s_P3IR>(Pixel32{0, 0, 1})));
    int differences = 0;
    for (int16_t b = 0; b < 256; ++b)
        differences += (onePixel<vekiICTFwd_JPEG2K_16s_P3IR>(Pixel16{0, 0, b}))[1] !=
                       (onePixel<vekiICTFwd_JPEG2K_32s_P3IR>(Pixel32{0, 0, b}))[1];
    EXPECT_GT(differences, 0);
}

TEST(Ict, DifferencesBeyondSixteenBitsAreCut)
{
    // (14516 * 65535 + 8192) >> 14 = 58063, cut to -7473.
    EXPECT_EQ((9246 * -7473 + 8192) >> 14, (onePixel<vekiICTFwd_JPEG2K_16s_P3IR>(Pixel16{-32768, -32768, 32767}))[1]);
}

TEST(Ict, FloatsAreRoundedAfterEachProductAndSum)
{
    const Components<float> v = {3.3333333F, 7.7777777F, 1.1111111F};
    volatile float y = 3.3333333F * 0.299F;
    y = y + 7.7777777F * 0.587F;
    y = y + 1.1111111F * 0.114F;
    EXPECT_EQ(y, (onePixel<vekiICTFwd_JPEG2K_32f_P3IR>(v))[0]);
}

// Rows that share bytes: the result of pixel after pixel.
TEST(RctOfOverlappingPlanes, IsThatOfPixelAfterPixel)
{
    Random random(46);
    for (int shift = 1; shift < 20; ++shift) {
        constexpr int width = 50;
        std::vector<int16_t> memory(3 * 64 + 100);
        random.fill(memory);
        std::vector<int16_t> expected = memory;
        const size_t second = static_cast<size_t>(shift), third = 2 * second;
        for (size_t i = 0; i < width; ++i) {
            const Pixel16 out = model::rctForward(Pixel16{expected[i], expected[second + i], expected[third + i]});
            expected[i] = out[0];
            expected[second + i] = out[1];
            expected[third + i] = out[2];
        }
        int16_t* const planes[3] = {&memory[0], &memory[second], &memory[third]};
        ASSERT_EQ(vekStsOk, vekiRCTFwd_JPEG2K_16s_P3IR(planes, 2 * width, {width, 1}));
        ASSERT_EQ(expected, memory) << shift;
    }
}

TEST(RctOfOverlappingPlanes, MayLieInThePixels)
{
    Random random(47);
    std::vector<int16_t> memory(300);
    random.fill(memory);
    std::vector<int16_t> expected = memory;
    constexpr size_t width = 60;
    for (size_t i = 0; i < width; ++i) {
        const Pixel16 out = model::rctForward(Pixel16{expected[3 * i], expected[3 * i + 1], expected[3 * i + 2]});
        expected[i] = out[0];
        expected[180 + i] = out[1];
        expected[240 + i] = out[2];
    }
    int16_t* const planes[3] = {&memory[0], &memory[180], &memory[240]};
    ASSERT_EQ(vekStsOk, vekiRCTFwd_JPEG2K_16s_C3P3R(memory.data(), 400, planes, 120, {width, 1}));
    EXPECT_EQ(expected, memory);
}

}  // namespace
