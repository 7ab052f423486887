// Pictures become DDS files and come back; the blocks are the library's.
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <string>

#include "dds/float_map.h"
#include "dds/half_size.h"
#include "dds/surfaces.h"
#include "dds/ycocg.h"
#include "dds_support.h"
#include "error.h"
#include "support/generators.h"
#include "support/sanitizers.h"
#include "vekj.h"

using support::Bytes;
using support::decodeDds;
using support::drawLights;
using support::encodeDds;
using support::psnr;
using vekpix::Raster;
using vekpix::Shape;
using namespace vekpix::dds;

namespace {

constexpr std::array<Format, 7> writtenFormats = {Format::Bc1, Format::Bc2, Format::Bc3,     Format::Bc4,
                                                  Format::Bc5, Format::Bc7, Format::YCoCgBc3};

EncodeOptions optionsFor(Format format)
{
    EncodeOptions options;
    options.format = format;
    if (format == Format::Bc7)
        options.modes = {6, 5};
    return options;
}

Bytes blocksOf(const Bytes& file, const Surface& surface)
{
    const auto first = file.begin() + static_cast<std::ptrdiff_t>(surface.offset);
    return {first, first + static_cast<std::ptrdiff_t>(surface.bytes)};
}

// The whole picture in one call of the library.
Bytes libraryBlocks(Format format, const Raster& picture)
{
    const VekSize size = {picture.shape.width, picture.shape.height};
    const auto step = static_cast<uint32_t>(picture.shape.rowBytes());
    const uint8_t* pixels = picture.pixels.data();
    Bytes blocks(static_cast<size_t>((size.width + 3) / 4) * static_cast<size_t>((size.height + 3) / 4) *
                 blockBytes(format));
    VekStatus status = vekStsNullPointer;
    if (format == Format::Bc1)
        status = vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(pixels, step, size, blocks.data());
    else if (format == Format::Bc2)
        status = vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(pixels, step, size, blocks.data());
    else if (format == Format::Bc3)
        status = vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(pixels, step, size, blocks.data());
    else if (format == Format::Bc4)
        status = vekiTextureEncodeBlock_BC4_8u_C1R(pixels, step, size, blocks.data());
    else if (format == Format::Bc5)
        status = vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R(pixels, step, size, blocks.data());
    else if (format == Format::YCoCgBc3)
        status = vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(pixels, step, size, blocks.data());
    EXPECT_EQ(vekStsOk, status);
    return blocks;
}

// A picture that has exactly the channels that the format codes.
Raster pictureFor(Format format, int width, int height)
{
    const int channels = codedChannels(format);
    Raster picture(Shape{width, height, channels, 8, channels == 4});
    picture.pixels = peer::draw(width, height, channels, peer::Scene::Soft).pixels;
    return picture;
}

}  // namespace

TEST(DdsCodec, PicturesComeBackNearly)
{
    const Raster lights = drawLights(91, 70, 4);
    const std::array<std::pair<int, double>, 7> expected = {{
        {3, 30}, {4, 26}, {4, 30}, {1, 40}, {2, 40}, {4, 36}, {3, 34}  // channels, decibels
    }};
    for (size_t i = 0; i < writtenFormats.size(); ++i) {
        const Raster back = decodeDds(encodeDds(lights, optionsFor(writtenFormats[i])));
        EXPECT_EQ(lights.shape.width, back.shape.width);
        EXPECT_EQ(lights.shape.height, back.shape.height);
        EXPECT_EQ(hasAlpha(writtenFormats[i]), back.shape.alpha);
        EXPECT_GT(psnr(lights, back, expected[i].first), expected[i].second) << nameOf(writtenFormats[i]);
    }
}

TEST(DdsCodec, BlocksAreThoseOfOneCallOfTheLibrary)
{
    for (const Format format : writtenFormats) {
        if (format == Format::Bc7)
            continue;  // the library has no call for a whole picture: see below
        std::vector<std::pair<int, int>> sizes = {{64, 65}, {70, 130}, {4100, 9}, {8193, 3}};
        for (int side = 1; side <= 17; ++side) sizes.insert(sizes.end(), {{side, 18 - side}, {side, 1}, {3, side}});
        for (const auto& [width, height] : sizes) {
            Raster picture = pictureFor(format, width, height);
            for (const int threads : {1, 3}) {
                EncodeOptions options = optionsFor(format);
                options.threads = threads;
                const Bytes file = encodeDds(picture, options);
                Raster coded = picture;
                if (format == Format::YCoCgBc3)
                    ycocgFromRgb(picture.pixels.data(), coded.pixels.data(), picture.pixels.size() / 3);
                ASSERT_TRUE(libraryBlocks(format, coded) == blocksOf(file, choose(file, {}).surface))
                    << nameOf(format) << ' ' << width << " x " << height;
            }
        }
    }
}

TEST(DdsCodec, ABc7BlockHasTheFirstModeWithTheSmallestReportedError)
{
    const Raster picture = drawLights(support::underSanitizer ? 10 : 22, 9, 4, peer::Scene::Harsh);
    EncodeOptions options;
    options.format = Format::Bc7;
    options.modes = {5, 2, 6, 0, 7};
    options.threads = 2;
    const Bytes file = encodeDds(picture, options);
    const Bytes blocks = blocksOf(file, choose(file, {}).surface);
    const int blocksWide = (picture.shape.width + 3) / 4;
    for (size_t i = 0; i < blocks.size() / 16; ++i) {
        const int x = static_cast<int>(i) % blocksWide * 4, y = static_cast<int>(i) / blocksWide * 4;
        Bytes pixels;
        for (int k = 0; k < 16; ++k) {
            const int column = std::min(x + k % 4, picture.shape.width - 1);
            const int row = std::min(y + k / 4, picture.shape.height - 1);
            const uint8_t* pixel = picture.row(row) + 4 * column;
            pixels.insert(pixels.end(), pixel, pixel + 4);
        }
        int least = std::numeric_limits<int>::max();
        std::array<uint8_t, 16> best{};
        for (const int mode : options.modes) {
            std::array<uint8_t, 16> block{};
            int error = 0;
            ASSERT_EQ(vekStsOk,
                      vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(pixels.data(), 16, block.data(), &error, mode));
            if (error < least) {
                least = error;
                best = block;
            }
        }
        ASSERT_TRUE(std::equal(best.begin(), best.end(), blocks.begin() + static_cast<std::ptrdiff_t>(16 * i))) << i;
    }
}

TEST(DdsCodec, MoreEffortGivesBetterPictures)
{
    const int side = support::underSanitizer ? 32 : 64;
    const Raster picture = drawLights(side, side, 3);
    double last = 0;
    for (const int effort : {1, 2, 3}) {
        EncodeOptions options;
        options.format = Format::Bc7;
        options.modes = modesOfEffort(effort);
        const double decibels = psnr(picture, decodeDds(encodeDds(picture, options)), 3);
        EXPECT_GT(decibels, last) << effort;
        last = decibels;
    }
}

TEST(DdsCodec, MipmapsAreEncodedHalves)
{
    for (const Format format : writtenFormats) {
        Raster picture = pictureFor(format, 75, 34);
        EncodeOptions options = optionsFor(format);
        options.mipmaps = true;
        int64_t blocks = 0;
        options.onBlocks = [&](int64_t count) { blocks += count; };
        const Bytes file = encodeDds(picture, options);
        const Texture texture = choose(file, {}).texture;
        ASSERT_EQ(7, texture.levels);  // 75 x 34, 37 x 17, 18 x 8, 9 x 4, 4 x 2, 2 x 1, 1 x 1
        EXPECT_EQ(blocksToEncode(picture.shape, options), blocks);
        EXPECT_EQ(file.size(), texture.headerBytes() + static_cast<size_t>(blocks) * blockBytes(format));
        EncodeOptions alone = optionsFor(format);
        for (int level = 0; level < texture.levels; ++level) {
            const Bytes single = encodeDds(picture, alone);
            EXPECT_TRUE(blocksOf(single, choose(single, {}).surface) == blocksOf(file, surfaceAt(texture, 0, 0, level)))
                << nameOf(format) << ' ' << level;
            DecodeOptions chosen;
            chosen.level = level;
            EXPECT_EQ(picture.shape.width, decodeDds(file, chosen).shape.width);
            EXPECT_EQ(picture.shape.height, decodeDds(file, chosen).shape.height);
            HalfSize half(picture.shape.width, picture.shape.height, picture.shape.channels);
            Raster smaller(Shape{half.width(), half.height(), picture.shape.channels, 8, picture.shape.alpha});
            int rows = 0;
            Bytes row(smaller.shape.rowBytes());
            for (int y = 0; y < picture.shape.height; ++y)
                if (half.takeRow(picture.row(y), row.data()))
                    std::copy(row.begin(), row.end(), smaller.row(rows++));
            picture = smaller;
        }
        DecodeOptions beyond;
        beyond.level = 7;
        EXPECT_THROW(Decoder(file, beyond), vekpix::Error);
    }
}

TEST(DdsCodec, ACubeHasSixFaces)
{
    const Raster strip = drawLights(20, 120, 3);
    EncodeOptions options = optionsFor(Format::Bc1);
    options.cube = true;
    options.mipmaps = true;
    for (const bool longHeader : {false, true}) {
        options.longHeader = longHeader;
        const Bytes file = encodeDds(strip, options);
        const Texture texture = choose(file, {}).texture;
        EXPECT_EQ(6u, texture.faces.size());
        EXPECT_EQ(20, texture.height);
        EXPECT_EQ(longHeader, texture.dx10);
        EncodeOptions alone = optionsFor(Format::Bc1);
        alone.mipmaps = true;
        for (int face = 0; face < 6; ++face) {
            Raster square(Shape{20, 20, 3});
            std::copy_n(strip.row(20 * face), square.pixels.size(), square.pixels.begin());
            const Bytes single = encodeDds(square, alone);
            DecodeOptions chosen;
            chosen.face = static_cast<Face>(face);
            for (chosen.level = 0; chosen.level < 5; ++chosen.level) {
                DecodeOptions level;
                level.level = chosen.level;
                EXPECT_TRUE(decodeDds(single, level).pixels == decodeDds(file, chosen).pixels) << face;
            }
        }
        EXPECT_TRUE(decodeDds(file).pixels == [&] {
            DecodeOptions first;
            first.face = Face::PositiveX;
            return decodeDds(file, first).pixels;
        }());
    }
    EXPECT_THROW(encodeDds(drawLights(20, 119, 3), options), vekpix::Error);
    EXPECT_THROW(encodeDds(drawLights(20, 20, 3), options), vekpix::Error);
}

TEST(DdsCodec, TheLongHeaderHasTheSameBlocks)
{
    for (const Format format : writtenFormats) {
        const Raster picture = pictureFor(format, 21, 13);
        EncodeOptions options = optionsFor(format);
        const Bytes plain = encodeDds(picture, options);
        options.longHeader = true;
        const Bytes longer = encodeDds(picture, options);
        EXPECT_EQ(format == Format::Bc7 ? 148u : 128u, choose(plain, {}).surface.offset);
        EXPECT_EQ(148u, choose(longer, {}).surface.offset);
        EXPECT_TRUE(blocksOf(plain, choose(plain, {}).surface) == blocksOf(longer, choose(longer, {}).surface));
        EXPECT_TRUE(decodeDds(plain).pixels == decodeDds(longer).pixels);
    }
}

TEST(DdsCodec, TexturesOfAnArrayAreFoundByTheirNumber)
{
    Texture texture;
    texture.format = Format::Bc4;
    texture.width = texture.height = 4;
    texture.layers = 3;
    Bytes file = makeHeader(texture);
    for (const uint8_t value : {10, 20, 30}) file.insert(file.end(), {value, value, 0, 0, 0, 0, 0, 0});
    for (uint32_t layer = 0; layer < 3; ++layer) {
        DecodeOptions options;
        options.layer = layer;
        EXPECT_EQ(Bytes(16, static_cast<uint8_t>(10 * (layer + 1))), decodeDds(file, options).pixels);
    }
    DecodeOptions beyond;
    beyond.layer = 3;
    EXPECT_THROW(Decoder(file, beyond), vekpix::Error);
}

TEST(DdsCodec, ThreadsChangeNothing)
{
    for (const Format format : writtenFormats) {
        const Raster picture = pictureFor(format, 150, 71);
        EncodeOptions options = optionsFor(format);
        const Bytes file = encodeDds(picture, options);
        options.threads = 4;
        EXPECT_TRUE(file == encodeDds(picture, options));
        DecodeOptions shared;
        shared.threads = 4;
        EXPECT_TRUE(decodeDds(file).pixels == decodeDds(file, shared).pixels);
    }
}

// What these formats do by their definition here: BC1 is opaque, its fourth colour of three white; BC2 has no alpha
// above 240; a BC7 block without mode is nothing at all.
TEST(DdsCodec, QuirksOfTheDecoders)
{
    const auto decoded = [](Format format, const Bytes& block) {
        Texture texture;
        texture.format = format;
        texture.width = texture.height = 1;
        Bytes file = makeHeader(texture);
        file.insert(file.end(), block.begin(), block.end());
        return decodeDds(file).pixels;
    };
    EXPECT_EQ((Bytes{255, 255, 255}), decoded(Format::Bc1, {0, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_EQ((Bytes{0, 0, 0, 240}), decoded(Format::Bc2, {15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ((Bytes{0, 0, 0, 0}), decoded(Format::Bc7, Bytes(16)));
    EXPECT_EQ((Bytes{10, 20, 0}), decoded(Format::Bc5, {10, 10, 0, 0, 0, 0, 0, 0, 20, 20, 0, 0, 0, 0, 0, 0}));
}

TEST(DdsCodec, AlphaIsLeftOutOnRequest)
{
    const Bytes file = encodeDds(drawLights(9, 9, 4), optionsFor(Format::Bc3));
    DecodeOptions options;
    const Raster with = decodeDds(file, options);
    options.alpha = false;
    const Raster without = decodeDds(file, options);
    EXPECT_EQ((Shape{9, 9, 4, 8, true}), with.shape);
    EXPECT_EQ((Shape{9, 9, 3}), without.shape);
    for (size_t i = 0; i < 81; ++i)
        for (size_t c = 0; c < 3; ++c) ASSERT_EQ(with.pixels[4 * i + c], without.pixels[3 * i + c]);
}

TEST(DdsCodec, YCoCgIsTakenForWhatTheUserSays)
{
    const Raster picture = drawLights(33, 20, 3);
    Bytes file = encodeDds(picture, optionsFor(Format::YCoCgBc3));
    const Raster marked = decodeDds(file);
    EXPECT_EQ((Shape{33, 20, 3}), marked.shape);
    support::setWord(file, 44, 0);  // the mark
    EXPECT_EQ((Shape{33, 20, 4, 8, true}), decodeDds(file).shape);
    DecodeOptions options;
    options.ycocg = true;
    EXPECT_TRUE(marked.pixels == decodeDds(file, options).pixels);
    EXPECT_THROW(Decoder(encodeDds(picture, optionsFor(Format::Bc1)), options), vekpix::Error);
}

TEST(DdsCodec, WhatCannotBeWrittenIsRefused)
{
    EXPECT_THROW(encodeDds(drawLights(4, 4, 3), optionsFor(Format::Bc6hUnsigned)), vekpix::Error);
    EXPECT_THROW(encodeDds(Raster(Shape{4, 4, 4}), optionsFor(Format::Bc1)), vekpix::Error);  // inks
}

// Blocks of one subset with endpoints of ten bits, which are not differences: every pixel at its first endpoint.
TEST(DdsFloatMap, HoldsTheNumbersFromTheBottomRow)
{
    const auto blockOf = [](uint32_t r, uint32_t g, uint32_t b) {
        Bytes block(16);
        unsigned bit = 5;
        block[0] = 3;
        for (const uint32_t value : {r, g, b, r, g, b})
            for (unsigned i = 0; i < 10; ++i, ++bit)
                block[bit / 8] = static_cast<uint8_t>(block[bit / 8] | (value >> i & 1) << bit % 8);
        return block;
    };
    constexpr int width = 6, height = 70;
    Texture texture;
    texture.format = Format::Bc6hUnsigned;
    texture.width = width;
    texture.height = height;
    Bytes file = makeHeader(texture);
    for (uint32_t y = 0; y < 18; ++y)
        for (uint32_t x = 0; x < 2; ++x) {
            const Bytes block = blockOf(1023, 10 * y, 500 * x);
            file.insert(file.end(), block.begin(), block.end());
        }
    for (const int threads : {1, 3}) {
        DecodeOptions options;
        options.threads = threads;
        vekpix::MemorySink sink;
        int rowsTold = 0;
        writeFloatMap(file, options, sink, [&](int rows) { rowsTold += rows; });
        EXPECT_EQ(height, rowsTold);
        const std::string header = "PF\n6 70\n-1.0\n";
        ASSERT_EQ(header.size() + 12 * width * height, sink.bytes().size());
        EXPECT_EQ(header, std::string(sink.bytes().begin(), sink.bytes().begin() + 13));
        const auto halfOf = [](uint32_t value) {  // unquantised, then scaled to the range of finite halves
            const uint32_t wide = value == 0 ? 0 : value == 1023 ? 65535 : (value * 65536 + 32768) >> 10;
            return numberOfHalf(static_cast<uint16_t>(wide * 31 >> 6));
        };
        for (size_t y = 0; y < height; ++y)
            for (size_t x = 0; x < width; ++x) {
                const size_t fromBottom = height - 1 - y;
                std::array<float, 3> pixel{};
                std::memcpy(pixel.data(), sink.bytes().data() + header.size() + 12 * (fromBottom * width + x), 12);
                ASSERT_EQ(65504.0F, pixel[0]);
                ASSERT_EQ(halfOf(static_cast<uint32_t>(10 * (y / 4))), pixel[1]) << x << ", " << y;
                ASSERT_EQ(halfOf(static_cast<uint32_t>(500 * (x / 4))), pixel[2]) << x << ", " << y;
            }
    }
    EXPECT_THROW(decodeDds(file), vekpix::Error);
    vekpix::MemorySink sink;
    EXPECT_THROW(writeFloatMap(encodeDds(drawLights(4, 4, 3), optionsFor(Format::Bc1)), {}, sink, {}), vekpix::Error);
}
