// DDS files both ways with independent programs: Python's imaging library, ImageMagick and squish.
//
// Exactly equal: colours of BC1, BC2 and BC3, and whole BC7 blocks. What differs, by definition:
// - the fourth colour of a BC1 block of three is opaque white here, transparent black there;
// - the four bits of BC2's alpha are the high ones of eight here (15 is 240), repeated there (15 is 255);
// - values between the ends of a BC3 alpha, BC4 or BC5 block are rounded to the nearest here, truncated there;
// - a BC7 block of no mode is transparent black here, opaque black there;
// - BC6H endpoints that leave their bits do not wrap here, and the lowest of a signed endpoint goes beyond the range.
// Python's imaging library gives BC6H as bytes, of numbers cut to 0 .. 1, and takes sums of signed endpoints that are
// negative for large ones.
#include <gtest/gtest.h>

#include <squish.h>

#include <map>
#include <sstream>
#include <string>

#include "command_support.h"
#include "dds/float_map.h"
#include "dds_support.h"
#include "image/formats.h"
#include "reference/texture/bptc.h"
#include "support/generators.h"

using support::Bytes;
using support::decodeDds;
using support::drawLights;
using support::encodeDds;
using support::Outcome;
using support::Random;
using vekpix::Raster;
using vekpix::Shape;
using namespace vekpix::dds;

namespace {

class DdsInterop : public support::CommandTest {
protected:
    // What Python's imaging library makes of files: grey, R, G, B, or with alpha.
    std::vector<Raster> pil(const std::vector<std::string>& names) const
    {
        std::vector<std::string> command = {"/usr/bin/python3", VEKPIX_DDS_PEER};
        for (const std::string& name : names) command.push_back(path(name));
        const Outcome outcome = run(command);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        std::vector<Raster> pictures;
        for (const std::string& name : names) {
            std::istringstream raw(contents(name + ".raw"));
            std::string mode;
            Shape shape;
            raw >> mode >> shape.width >> shape.height;
            raw.get();
            shape.alpha = mode == "RGBA";
            shape.channels = mode == "L" ? 1 : shape.alpha ? 4 : 3;
            Raster& picture = pictures.emplace_back(shape);
            raw.read(reinterpret_cast<char*>(picture.pixels.data()),
                     static_cast<std::streamsize>(picture.pixels.size()));
            EXPECT_TRUE(raw.good());
        }
        return pictures;
    }
    Raster load(const std::string& name) const
    {
        return readPicture(*vekpix::openPicture(path(name), vekpix::SampleDepth::Eight, vekpix::Transparency::Kept));
    }
    void savePng(const std::string& name, const Raster& picture) const
    {
        vekpix::MemorySink sink;
        const auto writer = vekpix::makePictureWriter(vekpix::ImageFormat::Png, picture.shape, sink);
        writer->writeRows(picture.pixels.data(), picture.shape.rowBytes(), picture.shape.height);
        writer->finish();
        save(name, sink.bytes());
    }
};

int largestDifference(const Raster& a, const Raster& b, int firstChannel, int lastChannel)
{
    EXPECT_EQ(a.shape.width, b.shape.width);
    EXPECT_EQ(a.shape.height, b.shape.height);
    int most = 0;
    const size_t pixels = static_cast<size_t>(a.shape.width) * static_cast<size_t>(a.shape.height);
    for (size_t i = 0; i < pixels; ++i)
        for (int c = firstChannel; c <= lastChannel; ++c)
            most =
                std::max(most, std::abs(a.pixels[i * static_cast<size_t>(a.shape.channels) + static_cast<size_t>(c)] -
                                        b.pixels[i * static_cast<size_t>(b.shape.channels) + static_cast<size_t>(c)]));
    return most;
}

EncodeOptions optionsFor(Format format, bool longHeader = false)
{
    EncodeOptions options;
    options.format = format;
    options.longHeader = longHeader;
    options.mipmaps = true;
    if (format == Format::Bc7)
        options.modes = modesOfEffort(3);
    return options;
}

// A file of blocks of random bytes, the first of each not 0: BC7 has no such mode.
Bytes randomFile(Format format, bool longHeader, int width, int height, Random& random)
{
    Texture texture;
    texture.format = format;
    texture.width = width;
    texture.height = height;
    texture.dx10 = longHeader;
    Bytes file = makeHeader(texture);
    Bytes blocks(levelOf(texture, 0).bytes);
    random.fill(blocks);
    for (size_t i = 0; i < blocks.size(); i += blockBytes(format)) blocks[i] = std::max(blocks[i], uint8_t{1});
    file.insert(file.end(), blocks.begin(), blocks.end());
    return file;
}

// A file of given blocks, four pixels wide.
Bytes columnOf(Format format, const std::vector<Bytes>& blocks)
{
    Texture texture;
    texture.format = format;
    texture.width = 4;
    texture.height = static_cast<int>(4 * blocks.size());
    Bytes file = makeHeader(texture);
    for (const Bytes& block : blocks) file.insert(file.end(), block.begin(), block.end());
    return file;
}

// BC2's alpha as others have it.
void repeatNibbles(Raster& picture)
{
    for (size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = static_cast<uint8_t>(picture.pixels[i] | picture.pixels[i] >> 4);
}

}  // namespace

TEST_F(DdsInterop, PythonReadsWhatIsWritten)
{
    const Raster lights = drawLights(53, 38, 4);
    struct Case {
        Format format;
        bool longHeader;
        int channels;
        int largest;
    };
    const std::vector<Case> cases = {
        {Format::Bc1, false, 3, 0}, {Format::Bc2, false, 4, 0}, {Format::Bc3, false, 4, 1}, {Format::Bc4, false, 1, 1},
        {Format::Bc5, false, 3, 1}, {Format::Bc5, true, 3, 1},  {Format::Bc7, true, 4, 0},
    };
    std::vector<std::string> names;
    for (const Case& each : cases) {
        names.push_back(std::to_string(names.size()) + ".dds");
        save(names.back(), encodeDds(lights, optionsFor(each.format, each.longHeader)));
    }
    const std::vector<Raster> pictures = pil(names);
    ASSERT_EQ(cases.size(), pictures.size());
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(nameOf(cases[i].format));
        Raster own = decodeDds(bytes(names[i]));
        if (cases[i].format == Format::Bc2)
            repeatNibbles(own);
        EXPECT_LE(largestDifference(own, pictures[i], 0, cases[i].channels - 1), cases[i].largest);
        if (cases[i].channels == 4) {
            EXPECT_EQ(0, largestDifference(own, pictures[i], 0, 2));  // colours are exact always
        }
    }
}

TEST_F(DdsInterop, BlocksOfAnyBytesDecodeAsInPython)
{
    Random random(5);
    const std::vector<std::pair<Format, bool>> kinds = {{Format::Bc1, false}, {Format::Bc2, false},
                                                        {Format::Bc3, false}, {Format::Bc4, false},
                                                        {Format::Bc5, true},  {Format::Bc7, true}};
    std::vector<std::string> names;
    for (const auto& [format, longHeader] : kinds) {
        names.push_back(nameOf(format) + ".dds");
        save(names.back(), randomFile(format, longHeader, 117, 90, random));
    }
    std::vector<Raster> pictures = pil(names);
    ASSERT_EQ(kinds.size(), pictures.size());
    size_t transparent = 0;
    for (size_t i = 0; i < pictures[0].pixels.size(); i += 4)
        if (pictures[0].pixels[i + 3] == 0) {
            ++transparent;
            std::fill_n(pictures[0].pixels.begin() + static_cast<std::ptrdiff_t>(i), 3, uint8_t{255});
        }
    EXPECT_GT(transparent, 500u);
    for (size_t i = 0; i < kinds.size(); ++i) {
        const Format format = kinds[i].first;
        SCOPED_TRACE(nameOf(format));
        Raster own = decodeDds(bytes(names[i]));
        if (format == Format::Bc2)
            repeatNibbles(own);
        const bool rounded = format == Format::Bc4 || format == Format::Bc5;
        EXPECT_LE(largestDifference(own, pictures[i], 0, rounded && format == Format::Bc4 ? 0 : 2), rounded ? 1 : 0);
        if (own.shape.alpha) {
            EXPECT_LE(largestDifference(own, pictures[i], 3, 3), format == Format::Bc3 ? 1 : 0);
        }
    }
}

// Of each mode, blocks of random bits that have one reading only.
TEST_F(DdsInterop, Bc6hBlocksDecodeAsInPython)
{
    Random random(6);
    std::vector<std::string> names;
    for (const bool isSigned : {false, true}) {
        std::vector<Bytes> blocks;
        for (const int mode : {0, 1, 2, 6, 10, 14, 18, 22, 26, 30, 3, 7, 11, 15, 19, 23, 27, 31})
            for (int found = 0; found < 100;) {
                Bytes block(16);
                random.fill(block);
                block[0] = static_cast<uint8_t>(mode < 2 ? (block[0] & ~3) | mode : (block[0] & ~31) | mode);
                if (!model::bc6hNeedsNoWrapping(block.data(), isSigned))
                    continue;
                blocks.push_back(block);
                ++found;
            }
        names.push_back(isSigned ? "signed.dds" : "unsigned.dds");
        save(names.back(), columnOf(isSigned ? Format::Bc6hSigned : Format::Bc6hUnsigned, blocks));
    }
    const std::vector<Raster> pictures = pil(names);
    ASSERT_EQ(2u, pictures.size());
    for (size_t i = 0; i < 2; ++i) {
        vekpix::MemorySink sink;
        writeFloatMap(bytes(names[i]), {}, sink, {});
        const Raster& expected = pictures[i];
        const size_t samples = expected.pixels.size();
        const size_t front = sink.bytes().size() - 4 * samples;
        int inside = 0;
        for (size_t k = 0; k < samples; ++k) {
            const size_t fromBottom = static_cast<size_t>(expected.shape.height) - 1 - k / 12;
            float number = 0;
            std::memcpy(&number, sink.bytes().data() + front + 4 * (fromBottom * 12 + k % 12), sizeof number);
            const auto byte = static_cast<int>(std::clamp(number, 0.0F, 1.0F) * 255);
            ASSERT_NEAR(expected.pixels[k], byte, 1) << names[i] << ": block " << k / 48;
            inside += byte > 0 && byte < 255;
        }
        EXPECT_GT(inside, 8000);
    }
}

TEST_F(DdsInterop, ImageMagickReadsWhatIsWritten)
{
    const Raster lights = drawLights(53, 38, 4);
    for (const Format format : {Format::Bc1, Format::Bc2, Format::Bc3}) {
        SCOPED_TRACE(nameOf(format));
        save("a.dds", encodeDds(lights, optionsFor(format)));
        const Outcome outcome = run({"convert", path("a.dds"), "-depth", "8", path("out.png")});
        ASSERT_EQ(0, outcome.status) << outcome.errors;
        Raster own = decodeDds(bytes("a.dds"));
        if (format == Format::Bc2)
            repeatNibbles(own);
        const Raster theirs = load("out.png");
        EXPECT_EQ(0, largestDifference(own, theirs, 0, 2));
        if (own.shape.alpha) {
            EXPECT_LE(largestDifference(own, theirs, 3, 3), format == Format::Bc3 ? 1 : 0);
        }
    }
}

TEST_F(DdsInterop, WhatImageMagickWritesIsRead)
{
    Raster slopes(Shape{64, 64, 4, 8, true});  // which all filters halve alike; mipmaps want powers of 2 there
    for (size_t i = 0; i < 64 * 64; ++i) {
        slopes.pixels[4 * i] = static_cast<uint8_t>(4 * (i % 64));
        slopes.pixels[4 * i + 1] = static_cast<uint8_t>(3 * (i / 64));
        slopes.pixels[4 * i + 2] = static_cast<uint8_t>(90 + i % 64);
        slopes.pixels[4 * i + 3] = static_cast<uint8_t>(255 - i / 64);
    }
    savePng("in.png", slopes);
    std::vector<std::string> names;
    for (const std::string kind : {"dxt1", "dxt5"})
        for (const std::string levels : {"0", "3"}) {
            names.push_back(kind + levels + ".dds");
            const Outcome outcome = run({"convert", path("in.png"), "-define", "dds:compression=" + kind, "-define",
                                         "dds:mipmaps=" + levels, path(names.back())});
            ASSERT_EQ(0, outcome.status) << outcome.errors;
        }
    const std::vector<Raster> pictures = pil(names);
    ASSERT_EQ(names.size(), pictures.size());
    for (size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        const Bytes file = bytes(names[i]);
        const Texture texture = choose(file, {}).texture;
        EXPECT_EQ(i % 2 == 0 ? 1 : 4, texture.levels);
        EXPECT_EQ(i < 2 ? Format::Bc1 : Format::Bc3, texture.format);
        Raster theirs = pictures[i];
        if (i < 2)
            for (size_t k = 0; k < theirs.pixels.size(); k += 4)
                if (theirs.pixels[k + 3] == 0)
                    std::fill_n(theirs.pixels.begin() + static_cast<std::ptrdiff_t>(k), 3, uint8_t{255});
        const Raster own = decodeDds(file);
        EXPECT_EQ(0, largestDifference(own, theirs, 0, 2));
        if (i >= 2) {
            EXPECT_LE(largestDifference(own, theirs, 3, 3), 1);
        }
        for (int level = 1; level < texture.levels; ++level) {  // their halves look like ours
            DecodeOptions options;
            options.level = level;
            options.alpha = false;
            const Raster small = decodeDds(file, options);
            EXPECT_EQ(64 >> level, small.shape.width);
            const Bytes again = encodeDds(slopes, optionsFor(texture.format));
            EXPECT_GT(support::psnr(small, decodeDds(again, options), 3), 24) << level;
        }
    }
}

TEST_F(DdsInterop, SquishBothWays)
{
    const std::map<Format, int> kinds = {{Format::Bc1, squish::kDxt1},
                                         {Format::Bc2, squish::kDxt3},
                                         {Format::Bc3, squish::kDxt5},
                                         {Format::Bc4, squish::kBc4},
                                         {Format::Bc5, squish::kBc5}};
    for (const auto& [format, flag] : kinds)
        for (const auto& [width, height] : {std::pair(53, 38), {1, 1}, {64, 3}}) {
            SCOPED_TRACE(nameOf(format) + " " + std::to_string(width));
            Raster lights = drawLights(width, height, 4);
            if (format == Format::Bc1)
                for (size_t i = 3; i < lights.pixels.size(); i += 4) lights.pixels[i] = 255;
            Texture texture;
            texture.format = format;
            texture.width = width;
            texture.height = height;
            Bytes theirs = makeHeader(texture);
            theirs.resize(theirs.size() + levelOf(texture, 0).bytes);
            squish::CompressImage(lights.pixels.data(), width, height, theirs.data() + 128,
                                  flag | squish::kColourRangeFit);
            const int channels = format == Format::Bc4 ? 1 : format == Format::Bc5 ? 2 : 3;
            for (const Bytes& file : {theirs, encodeDds(lights, optionsFor(format))}) {
                Raster own = decodeDds(file);
                if (format == Format::Bc2)
                    repeatNibbles(own);
                if (width > 1) {
                    EXPECT_GT(support::psnr(lights, own, channels), channels == 3 ? 26 : 38);
                }
                if (channels < 3)
                    continue;  // squish decodes BC4 and BC5 as colours
                Raster decoded(Shape{width, height, 4, 8, true});
                squish::DecompressImage(decoded.pixels.data(), width, height, file.data() + 128, flag);
                EXPECT_EQ(0, largestDifference(own, decoded, 0, 2));
                if (own.shape.alpha) {
                    EXPECT_LE(largestDifference(own, decoded, 3, 3), format == Format::Bc3 ? 1 : 0);
                }
            }
        }
}
