// The headers of DDS files, and where their pictures lie; damaged and hostile ones too.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "dds/describe.h"
#include "dds/float_map.h"
#include "dds/surfaces.h"
#include "dds_support.h"
#include "error.h"
#include "support/sanitizers.h"

using support::Bytes;
using support::setLetters;
using support::setWord;
using support::wordAt;
using vekpix::Error;
using namespace vekpix::dds;

namespace {

// Offsets of a header's words, counted from the front of the file.
constexpr size_t atSize = 4, atFlags = 8, atHeight = 12, atWidth = 16, atLinearSize = 20, atLevels = 28, atMark = 44,
                 atPixelSize = 76, atPixelFlags = 80, atFourCc = 84, atCaps = 108, atCaps2 = 112, atDxgi = 128,
                 atDimension = 132, atMisc = 136, atLayers = 140;

std::string errorOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

void expectError(const Bytes& file, const std::string& words)
{
    const std::string error = errorOf([&] { choose(file, {}); });
    EXPECT_NE(std::string::npos, error.find(words)) << error;
}

// Every picture of a file, decoded; an Error where one is refused.
void decodeAll(const Bytes& file)
{
    const Texture texture = choose(file, {}).texture;
    DecodeOptions options;
    for (options.layer = 0; options.layer < texture.layers; ++options.layer)
        for (size_t face = 0; face < texture.faceCount(); ++face)
            for (options.level = 0; options.level < texture.levels; ++options.level) {
                if (texture.isCube())
                    options.face = texture.faces[face];
                vekpix::MemorySink sink;
                if (isFloat(texture.format))
                    writeFloatMap(file, options, sink, {});
                else
                    support::decodeDds(file, options);
            }
}

// Blocks of any content behind a header of the texture.
Bytes fileOf(Texture texture)
{
    Bytes file = makeHeader(texture);
    const Surface last = surfaceAt(texture, texture.layers - 1, texture.faceCount() - 1, texture.levels - 1);
    while (file.size() < last.offset + last.bytes) file.push_back(static_cast<uint8_t>(file.size() * 151 + 1));
    return file;
}

const std::vector<Face> wholeCube = {Face::PositiveX, Face::NegativeX, Face::PositiveY,
                                     Face::NegativeY, Face::PositiveZ, Face::NegativeZ};

}  // namespace

TEST(DdsHeader, OldHeadersAreWrittenByTheBook)
{
    Texture texture;
    texture.format = Format::Bc3;
    texture.width = 300;
    texture.height = 77;
    texture.levels = 9;
    const Bytes header = makeHeader(texture);
    ASSERT_EQ(128u, header.size());
    EXPECT_EQ("DDS ", std::string(header.begin(), header.begin() + 4));
    EXPECT_EQ(124u, wordAt(header, atSize));
    EXPECT_EQ(0x000A1007u, wordAt(header, atFlags));  // caps, height, width, pixel format, levels, linear size
    EXPECT_EQ(77u, wordAt(header, atHeight));
    EXPECT_EQ(300u, wordAt(header, atWidth));
    EXPECT_EQ(75u * 20 * 16, wordAt(header, atLinearSize));
    EXPECT_EQ(9u, wordAt(header, atLevels));
    EXPECT_EQ(32u, wordAt(header, atPixelSize));
    EXPECT_EQ(4u, wordAt(header, atPixelFlags));
    EXPECT_EQ(0x35545844u, wordAt(header, atFourCc));  // DXT5
    EXPECT_EQ(0x00401008u, wordAt(header, atCaps));    // complex, texture, mipmap
    EXPECT_EQ(0u, wordAt(header, atCaps2));
    texture.levels = 1;
    EXPECT_EQ(0x00081007u, wordAt(makeHeader(texture), atFlags));
    EXPECT_EQ(0x1000u, wordAt(makeHeader(texture), atCaps));
}

TEST(DdsHeader, LongHeadersAreWrittenByTheBook)
{
    Texture texture;
    texture.format = Format::Bc7;
    texture.width = texture.height = 64;
    texture.layers = 3;
    texture.faces = wholeCube;
    const Bytes header = makeHeader(texture);
    ASSERT_EQ(148u, header.size());
    EXPECT_EQ(0x30315844u, wordAt(header, atFourCc));  // DX10
    EXPECT_EQ(0x1008u, wordAt(header, atCaps));
    EXPECT_EQ(0xFE00u, wordAt(header, atCaps2));
    EXPECT_EQ(98u, wordAt(header, atDxgi));
    EXPECT_EQ(3u, wordAt(header, atDimension));
    EXPECT_EQ(4u, wordAt(header, atMisc));
    EXPECT_EQ(3u, wordAt(header, atLayers));
}

TEST(DdsHeader, WhatIsWrittenIsRead)
{
    for (const Format format : {Format::Bc1, Format::Bc2, Format::Bc3, Format::Bc4, Format::Bc5, Format::Bc6hUnsigned,
                                Format::Bc6hSigned, Format::Bc7, Format::YCoCgBc3})
        for (const bool dx10 : {false, true})
            for (const bool cube : {false, true})
                for (const uint32_t layers : {1, 4}) {
                    Texture texture;
                    texture.format = format;
                    texture.width = 36;
                    texture.height = cube ? 36 : 17;
                    texture.levels = 6;
                    texture.layers = layers;
                    texture.dx10 = dx10;
                    if (cube)
                        texture.faces = wholeCube;
                    const Bytes header = makeHeader(texture);
                    const Texture back = parseHeader(header);
                    EXPECT_EQ(header.size(), back.headerBytes());
                    EXPECT_EQ(texture.format, back.format);
                    EXPECT_EQ(texture.width, back.width);
                    EXPECT_EQ(texture.height, back.height);
                    EXPECT_EQ(texture.levels, back.levels);
                    EXPECT_EQ(texture.layers, back.layers);
                    EXPECT_EQ(texture.faces, back.faces);
                    EXPECT_EQ(texture.dx10, back.dx10);
                    EXPECT_EQ(texture.fourCc, back.fourCc);
                    EXPECT_EQ(texture.dxgiFormat, back.dxgiFormat);
                }
}

TEST(DdsHeader, EveryNameOfAFormatIsKnown)
{
    Texture texture;
    texture.width = texture.height = 4;
    Bytes file = fileOf(texture);
    file.resize(file.size() + 64);
    const std::map<std::string, Format> fourCcs = {
        {"DXT1", Format::Bc1}, {"DXT3", Format::Bc2}, {"DXT5", Format::Bc3}, {"ATI1", Format::Bc4},
        {"BC4U", Format::Bc4}, {"ATI2", Format::Bc5}, {"BC5U", Format::Bc5},
    };
    for (const auto& [name, format] : fourCcs) {
        setLetters(file, atFourCc, name.c_str());
        EXPECT_EQ(format, choose(file, {}).texture.format) << name;
        EXPECT_EQ(name, choose(file, {}).texture.fourCc);
    }
    for (const char* name : {"DXT2", "DXT4", "BC4S", "BC5S", "ABCD", "RXGB"}) {
        setLetters(file, atFourCc, name);
        expectError(file, std::string("FourCC ") + name + " is not supported");
    }
    setWord(file, atFourCc, 36);  // a number of a format without blocks
    expectError(file, "FourCC $??? is not supported");
    setLetters(file, atFourCc, "DX10");
    setWord(file, atDimension, 3);
    setWord(file, atMisc, 0);
    setWord(file, atLayers, 1);
    const std::map<uint32_t, Format> numbers = {
        {70, Format::Bc1}, {71, Format::Bc1}, {72, Format::Bc1},          {73, Format::Bc2},          {74, Format::Bc2},
        {75, Format::Bc2}, {76, Format::Bc3}, {77, Format::Bc3},          {78, Format::Bc3},          {79, Format::Bc4},
        {80, Format::Bc4}, {82, Format::Bc5}, {83, Format::Bc5},          {94, Format::Bc6hUnsigned}, {97, Format::Bc7},
        {98, Format::Bc7}, {99, Format::Bc7}, {95, Format::Bc6hUnsigned}, {96, Format::Bc6hSigned},
    };
    for (uint32_t number = 0; number < 256; ++number) {
        setWord(file, atDxgi, number);
        const auto known = numbers.find(number);
        if (known == numbers.end())
            expectError(file, "DXGI format " + std::to_string(number) + " is not supported");
        else
            EXPECT_EQ(known->second, choose(file, {}).texture.format) << number;
    }
}

TEST(DdsHeader, WhatIsNotSupportedIsNamed)
{
    Texture texture;
    texture.width = 20;
    texture.height = 12;
    const Bytes sound = fileOf(texture);
    EXPECT_NO_THROW(choose(sound, {}));
    const auto with = [&](size_t offset, uint32_t word) {
        Bytes file = sound;
        setWord(file, offset, word);
        return file;
    };
    expectError({}, "no DDS texture");
    expectError({'D', 'D', 'S'}, "no DDS texture");
    expectError({'D', 'D', 'S', ' '}, "ends in its header");
    expectError(with(0, 0x20534445), "no DDS texture");
    expectError(with(atSize, 123), "damaged");
    expectError(with(atPixelSize, 24), "damaged");
    expectError(with(atWidth, 0), "its width is 0");
    expectError(with(atHeight, 0), "its height is 0");
    expectError(with(atWidth, 0xFFFFFFFF), "its width is 4294967295");
    expectError(with(atHeight, (1 << 24) + 1), "its height is 16777217");
    expectError(with(atHeight, 1 << 24), "ends before its textures do");
    expectError(with(atPixelFlags, 0x41), "compressed blocks");
    expectError(with(atCaps2, 0x200000), "two dimensions");
    expectError(with(atCaps2, 0xFE00), "squares");
    expectError(with(atCaps2, 0x200), "without faces");
    expectError(with(atLevels, 6), "more mipmaps");
    expectError(with(atLevels, 0xFFFFFFFF), "more mipmaps");
    expectError(with(atLevels, 2), "ends before its textures do");
    EXPECT_EQ(1, choose(with(atLevels, 0), {}).texture.levels);

    texture.dx10 = true;
    const Bytes longer = fileOf(texture);
    const auto longerWith = [&](size_t offset, uint32_t word) {
        Bytes file = longer;
        setWord(file, offset, word);
        return file;
    };
    expectError(Bytes(longer.begin(), longer.begin() + 147), "ends in its header");
    expectError(longerWith(atDimension, 2), "two dimensions");
    expectError(longerWith(atDimension, 4), "two dimensions");
    expectError(longerWith(atLayers, 0), "without textures");
    expectError(longerWith(atLayers, 2), "ends before its textures do");
    expectError(longerWith(atLayers, 0xFFFFFFFF), "ends before its textures do");
    expectError(longerWith(atMisc, 4), "squares");
}

TEST(DdsSurfaces, LieBehindOneAnother)
{
    Texture texture;
    texture.format = Format::Bc1;
    texture.width = 9;
    texture.height = 5;
    texture.levels = 4;
    const std::array<Surface, 4> levels = {{
        {9, 5, 3, 2, 128, 48},
        {4, 2, 1, 1, 176, 8},
        {2, 1, 1, 1, 184, 8},
        {1, 1, 1, 1, 192, 8},
    }};
    for (int level = 0; level < 4; ++level) {
        const Surface surface = surfaceAt(texture, 0, 0, level);
        const Surface& expected = levels[static_cast<size_t>(level)];
        EXPECT_EQ(expected.width, surface.width);
        EXPECT_EQ(expected.height, surface.height);
        EXPECT_EQ(expected.blocksWide, surface.blocksWide);
        EXPECT_EQ(expected.blocksHigh, surface.blocksHigh);
        EXPECT_EQ(expected.offset, surface.offset);
        EXPECT_EQ(expected.bytes, surface.bytes);
    }
    EXPECT_THROW(expectWhole(texture, 199), Error);
    EXPECT_NO_THROW(expectWhole(texture, 200));

    texture.format = Format::Bc7;
    texture.width = texture.height = 8;
    texture.levels = 2;
    texture.layers = 3;
    texture.dx10 = true;
    texture.faces = wholeCube;
    EXPECT_EQ(148u + 80 * (6 * 2 + 5) + 64, surfaceAt(texture, 2, 5, 1).offset);
    EXPECT_THROW(expectWhole(texture, 148 + 80 * 18 - 1), Error);
    EXPECT_NO_THROW(expectWhole(texture, 148 + 80 * 18));
}

TEST(DdsSurfaces, LevelsEndAtOnePixel)
{
    EXPECT_EQ(1, fullLevels(1, 1));
    EXPECT_EQ(2, fullLevels(2, 1));
    EXPECT_EQ(2, fullLevels(1, 3));
    EXPECT_EQ(9, fullLevels(256, 3));
    EXPECT_EQ(9, fullLevels(256, 511));
    EXPECT_EQ(25, fullLevels(1, 1 << 24));
}

TEST(DdsDamage, EveryFileThatEndsEarlyIsRefused)
{
    for (const Format format : {Format::Bc1, Format::Bc7, Format::Bc6hSigned}) {
        Texture texture;
        texture.format = format;
        texture.width = texture.height = 9;
        texture.levels = 3;
        texture.faces = wholeCube;
        Bytes file = fileOf(texture);
        decodeAll(file);
        for (size_t length = 0; length < file.size(); ++length) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_NE("no error", errorOf([&] { decodeAll(cut); })) << length;
        }
        file.resize(file.size() + 100);
        EXPECT_NO_THROW(decodeAll(file));
    }
}

// Ends in pictures or in an Error, and takes no more memory than the file's length explains.
TEST(DdsDamage, EveryByteOfAHeaderMayBeWrong)
{
    for (const bool dx10 : {false, true}) {
        Texture texture;
        texture.width = 8;
        texture.height = 8;
        texture.levels = 2;
        texture.dx10 = dx10;
        texture.faces = wholeCube;
        const Bytes sound = fileOf(texture);
        int refused = 0;
        for (size_t i = 0; i < texture.headerBytes(); ++i)
            for (int value = 0; value < 256; value += support::underSanitizer ? 5 : 1) {
                Bytes file = sound;
                file[i] = static_cast<uint8_t>(value);
                if (errorOf([&] { decodeAll(file); }) != "no error")
                    ++refused;
                std::ostringstream text;
                const bool told = errorOf([&] { describe(file, text); }) == "no error";
                EXPECT_EQ(told, errorOf([&] { choose(file, {}); }) == "no error") << i << ": " << value;
            }
        EXPECT_GT(refused,
                  support::underSanitizer ? 20 * 51 : 20 * 256);  // magic, sizes, width, height, pixel format, kind
    }
}

TEST(DdsDescribe, TellsWhatTheFileHolds)
{
    Texture texture;
    texture.format = Format::Bc7;
    texture.width = texture.height = 8;
    texture.levels = 2;
    texture.layers = 2;
    texture.faces = wholeCube;
    std::ostringstream text;
    describe(fileOf(texture), text);
    EXPECT_EQ(
        "DDS texture of bc7 blocks, FourCC DX10, DXGI format 98\n"
        "8 x 8 pixels, array of 2, cube with faces +x -x +y -y +z -z\n"
        "level 0: 8 x 8, 64 bytes at 148\n"
        "level 1: 4 x 4, 16 bytes at 212\n",
        text.str());
}

TEST(DdsFaces, APartOfACubeIsFoundByItsFaces)
{
    Texture texture;
    texture.format = Format::Bc4;
    texture.width = texture.height = 4;
    texture.faces = {Face::NegativeX, Face::PositiveZ};
    const Bytes file = fileOf(texture);
    EXPECT_EQ(128u + 2 * 8, file.size());
    EXPECT_EQ(128u, choose(file, {}).surface.offset);
    DecodeOptions options;
    options.face = Face::PositiveZ;
    EXPECT_EQ(136u, choose(file, options).surface.offset);
    options.face = Face::PositiveX;
    EXPECT_EQ("the cube has no face +x", errorOf([&] { choose(file, options); }));
    texture.faces.clear();
    EXPECT_EQ("no cube: it has no faces", errorOf([&] { choose(fileOf(texture), options); }));
}

TEST(DdsHeader, TheMarkOfYCoCgCountsForBc3Alone)
{
    Texture texture;
    texture.width = texture.height = 4;
    for (const Format format : {Format::Bc1, Format::Bc2, Format::Bc3}) {
        texture.format = format;
        Bytes file = fileOf(texture);
        setLetters(file, atMark, "YCG2");
        EXPECT_EQ(format == Format::Bc3 ? Format::YCoCgBc3 : format, parseHeader(file).format);
    }
}
