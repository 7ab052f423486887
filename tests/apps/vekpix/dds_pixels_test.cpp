// What happens to pixels before blocks are made of them, and behind them.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "dds/float_map.h"
#include "dds/half_size.h"
#include "dds/texel_rows.h"
#include "dds/ycocg.h"
#include "dds_support.h"
#include "error.h"
#include "support/generators.h"

using support::Bytes;
using support::Random;
using namespace vekpix::dds;

namespace {

struct Image {
    int width;
    int height;
    int channels;
    Bytes pixels;

    int at(int x, int y, int c) const { return pixels[static_cast<size_t>((y * width + x) * channels + c)]; }
};

Image halved(const Image& image)
{
    HalfSize half(image.width, image.height, image.channels);
    Image result = {half.width(), half.height(), image.channels, {}};
    const auto step = static_cast<size_t>(half.width() * image.channels);
    result.pixels.resize(step * static_cast<size_t>(half.height()));
    int rows = 0;
    for (int y = 0; y < image.height; ++y) {
        Bytes row(step);
        if (half.takeRow(image.pixels.data() + y * image.width * image.channels, row.data()))
            std::copy(row.begin(), row.end(), result.pixels.begin() + static_cast<std::ptrdiff_t>(step) * rows++);
    }
    EXPECT_EQ(result.height, rows);
    return result;
}

// Of a pixel of the result, `to` in number, how much of it a pixel of the source covers, times `from`.
int64_t overlap(int result, int source, int from, int to)
{
    const int64_t left = std::max(int64_t{result} * from, int64_t{source} * to);
    const int64_t right = std::min(int64_t{result + 1} * from, int64_t{source + 1} * to);
    return std::max<int64_t>(0, right - left);
}

// The mean over the area, straight from its definition.
int meanAt(const Image& image, const Image& half, int x, int y, int c)
{
    int64_t sum = 0, weights = 0, plain = 0, area = 0;
    for (int v = 0; v < image.height; ++v)
        for (int u = 0; u < image.width; ++u) {
            const int64_t part = overlap(x, u, image.width, half.width) * overlap(y, v, image.height, half.height);
            const int64_t weight = part * (image.channels == 4 && c < 3 ? image.at(u, v, 3) : 1);
            sum += weight * image.at(u, v, c);
            weights += weight;
            plain += part * image.at(u, v, c);
            area += part;
        }
    EXPECT_EQ(int64_t{image.width} * image.height, area);
    if (weights == 0) {
        sum = plain;
        weights = area;
    }
    return static_cast<int>((2 * sum + weights) / (2 * weights));
}

}  // namespace

TEST(DdsHalfSize, EqualsTheMeanOfEachArea)
{
    Random random(1);
    for (int width = 1; width <= 11; ++width)
        for (int height = 1; height <= 11; ++height)
            for (int channels = 1; channels <= 4; ++channels) {
                Image image = {width, height, channels, Bytes(static_cast<size_t>(width * height * channels))};
                const int kind = random.in(0, 2);
                for (uint8_t& sample : image.pixels)
                    sample = kind == 0 ? random.any<uint8_t>() : random.chance(50) ? uint8_t{0} : uint8_t{255};
                const Image half = halved(image);
                ASSERT_EQ(std::max(1, width / 2), half.width);
                ASSERT_EQ(std::max(1, height / 2), half.height);
                for (int y = 0; y < half.height; ++y)
                    for (int x = 0; x < half.width; ++x)
                        for (int c = 0; c < channels; ++c)
                            ASSERT_EQ(meanAt(image, half, x, y, c), half.at(x, y, c))
                                << width << " x " << height << " at " << x << ", " << y << ", " << c;
            }
}

TEST(DdsHalfSize, OfEvenSizesTakesFourPixelsAndRoundsHalvesUp)
{
    EXPECT_EQ((Bytes{1, 101}), halved({4, 2, 1, {0, 1, 100, 100, 0, 1, 100, 102}}).pixels);
}

TEST(DdsHalfSize, OfThreePixelsTakesAThirdEach) { EXPECT_EQ((Bytes{50}), halved({3, 1, 1, {10, 40, 100}}).pixels); }

TEST(DdsHalfSize, OfFivePixelsSharesTheOneInTheMiddle)
{
    EXPECT_EQ((Bytes{28, 194}), halved({5, 1, 1, {10, 30, 60, 200, 255}}).pixels);
}

TEST(DdsHalfSize, TransparentPixelsLeaveNoFringe)
{
    EXPECT_EQ((Bytes{200, 100, 50, 64}),
              halved({2, 2, 4, {200, 100, 50, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 0}}).pixels);
    EXPECT_EQ((Bytes{50, 60, 70, 0}), halved({2, 1, 4, {0, 20, 40, 0, 100, 100, 100, 0}}).pixels);
}

TEST(DdsHalfSize, OfALongRowLosesNothing)
{
    const int width = (1 << 21) - 1;  // odd: the weights are the largest
    Image image = {width, 3, 1, Bytes(static_cast<size_t>(width) * 3, 255)};
    const Image half = halved(image);
    EXPECT_EQ(width / 2, half.width);
    EXPECT_EQ(half.width, std::count(half.pixels.begin(), half.pixels.end(), 255));
}

TEST(DdsTexelRows, GiveTheChannelsThatAreCoded)
{
    const std::array<Bytes, 4> ofGrey = {{{9, 7}, {9, 9, 7, 7}, {9, 9, 9, 7, 7, 7}, {9, 9, 9, 255, 7, 7, 7, 255}}};
    const std::array<Bytes, 4> ofGreyAlpha = {{{9, 7}, {9, 9, 7, 7}, {9, 9, 9, 7, 7, 7}, {9, 9, 9, 1, 7, 7, 7, 2}}};
    const std::array<Bytes, 4> ofRgb = {{{1, 4}, {1, 2, 4, 5}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 255, 4, 5, 6, 255}}};
    const std::array<Bytes, 4> ofRgba = {{{1, 4}, {1, 2, 4, 5}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 8, 4, 5, 6, 9}}};
    const auto expectRows = [](const Bytes& pixels, int channels, const std::array<Bytes, 4>& expected) {
        for (int coded = 1; coded <= 4; ++coded) {
            const vekpix::Shape shape = {1, 2, channels, 8, channels % 2 == 0};
            vekpix::MemoryRows source(shape, pixels.data(), 0);
            TexelRows rows(source, coded);
            Bytes row(2 * static_cast<size_t>(coded));
            rows.readRows(row.data(), static_cast<size_t>(coded), 2);
            EXPECT_EQ(expected[static_cast<size_t>(coded - 1)], row) << channels << " to " << coded;
        }
    };
    expectRows({9, 7}, 1, ofGrey);
    expectRows({9, 1, 7, 2}, 2, ofGreyAlpha);
    expectRows({1, 2, 3, 4, 5, 6}, 3, ofRgb);
    expectRows({1, 2, 3, 8, 4, 5, 6, 9}, 4, ofRgba);
    const Bytes inks(4);
    vekpix::MemoryRows source({1, 1, 4}, inks.data(), 0);
    EXPECT_THROW(TexelRows(source, 4), vekpix::Error);
}

// Over all colours: out of the exact Y, Co and Cg of bytes each light comes back to within 2.
TEST(DdsYCoCg, ComesBack)
{
    Bytes rgb, ycocg, texels, back;
    for (int r = 0; r < 256; r += 5)
        for (int g = 0; g < 256; g += 3)
            for (int b = 0; b < 256; b += 5)
                for (const int light : {r, g, b}) rgb.push_back(static_cast<uint8_t>(light));
    const size_t pixels = rgb.size() / 3;
    ycocg.resize(rgb.size());
    back.resize(rgb.size());
    ycocgFromRgb(rgb.data(), ycocg.data(), pixels);
    for (size_t i = 0; i < pixels; ++i)
        texels.insert(texels.end(), {ycocg[3 * i + 1], ycocg[3 * i + 2], 0, ycocg[3 * i]});
    rgbFromScaledYcocg(texels.data(), back.data(), pixels);
    for (size_t i = 0; i < rgb.size(); ++i) ASSERT_NEAR(rgb[i], back[i], 2) << i;
}

TEST(DdsYCoCg, KnownColours)
{
    const auto coded = [](uint8_t r, uint8_t g, uint8_t b) {
        const std::array<uint8_t, 3> rgb = {r, g, b};
        Bytes result(3);
        ycocgFromRgb(rgb.data(), result.data(), 1);
        return result;
    };
    EXPECT_EQ((Bytes{77, 128, 128}), coded(77, 77, 77));
    EXPECT_EQ((Bytes{64, 255, 64}), coded(255, 0, 0));  // a Co of 256 is held
    EXPECT_EQ((Bytes{128, 128, 255}), coded(0, 255, 0));
    EXPECT_EQ((Bytes{64, 1, 64}), coded(0, 0, 255));
    const auto decoded = [](uint8_t co, uint8_t cg, uint8_t blue, uint8_t y) {
        const std::array<uint8_t, 4> texel = {co, cg, blue, y};
        Bytes result(3);
        rgbFromScaledYcocg(texel.data(), result.data(), 1);
        return result;
    };
    EXPECT_EQ((Bytes{110, 120, 90}), decoded(138, 138, 0, 110));
    EXPECT_EQ((Bytes{110, 115, 100}), decoded(138, 138, 8, 110));
    EXPECT_EQ((Bytes{110, 113, 105}), decoded(138, 138, 24, 110));
    EXPECT_EQ((Bytes{255, 0, 11}), decoded(255, 0, 0, 10));
}

TEST(DdsHalves, BecomeNumbersExactly)
{
    for (int half = 0; half < 65536; ++half) {
        const float number = numberOfHalf(static_cast<uint16_t>(half));
        const int exponent = half >> 10 & 31, fraction = half & 1023;
        EXPECT_EQ(half >= 32768, std::signbit(number));
        if (exponent == 31) {
            EXPECT_EQ(fraction == 0, std::isinf(number)) << half;
            EXPECT_EQ(fraction != 0, std::isnan(number)) << half;
            continue;
        }
        const double expected = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
        EXPECT_EQ(expected, std::fabs(number)) << half;
    }
}
