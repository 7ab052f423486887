#include "dds/header.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "error.h"

namespace vekpix::dds {

namespace {

constexpr uint32_t fourCc(const char (&letters)[5])
{
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word |= static_cast<uint32_t>(static_cast<unsigned char>(letters[i])) << 8 * i;
    return word;
}

// Words of the header, by their index from the front of the file.
enum Word : size_t {
    magicWord = 0,
    sizeWord = 1,
    flagsWord = 2,
    heightWord = 3,
    widthWord = 4,
    linearSizeWord = 5,
    levelsWord = 7,
    firstReservedWord = 8,
    markWord = 11,
    pixelSizeWord = 19,
    pixelFlagsWord = 20,
    fourCcWord = 21,
    capsWord = 27,
    caps2Word = 28,
    dxgiFormatWord = 32,
    dimensionWord = 33,
    miscWord = 34,
    layersWord = 35,
};

constexpr uint32_t headerSize = 124;
constexpr uint32_t pixelFormatSize = 32;
constexpr size_t shortWords = 32;
constexpr size_t longWords = 37;

constexpr uint32_t flagCaps = 0x1;
constexpr uint32_t flagHeight = 0x2;
constexpr uint32_t flagWidth = 0x4;
constexpr uint32_t flagPixelFormat = 0x1000;
constexpr uint32_t flagLevels = 0x20000;
constexpr uint32_t flagLinearSize = 0x80000;
constexpr uint32_t pixelFourCc = 0x4;
constexpr uint32_t capsComplex = 0x8;
constexpr uint32_t capsTexture = 0x1000;
constexpr uint32_t capsMipmap = 0x400000;
constexpr uint32_t caps2Cube = 0x200;
constexpr uint32_t caps2FirstFace = 0x400;
constexpr uint32_t caps2Volume = 0x200000;
constexpr uint32_t dimension2d = 3;
constexpr uint32_t miscCube = 0x4;

// Behind the letters GIMP-DDS and a version in the reserved words: BC3 of Y, Co, Cg and their scale.
constexpr uint32_t markYCoCg = fourCc("YCG2");

struct FourCcFormat {
    uint32_t code;
    Format format;
};
// The first of a format is the one that is written.
constexpr FourCcFormat fourCcFormats[] = {
    {fourCc("DXT1"), Format::Bc1}, {fourCc("DXT3"), Format::Bc2}, {fourCc("DXT5"), Format::Bc3},
    {fourCc("ATI1"), Format::Bc4}, {fourCc("BC4U"), Format::Bc4}, {fourCc("ATI2"), Format::Bc5},
    {fourCc("BC5U"), Format::Bc5},
};

// DXGI numbers: typeless, linear, sRGB or signed.
struct DxgiFormat {
    uint32_t number;
    Format format;
    bool written = false;
};
constexpr DxgiFormat dxgiFormats[] = {
    {70, Format::Bc1},
    {71, Format::Bc1, true},
    {72, Format::Bc1},
    {73, Format::Bc2},
    {74, Format::Bc2, true},
    {75, Format::Bc2},
    {76, Format::Bc3},
    {77, Format::Bc3, true},
    {78, Format::Bc3},
    {79, Format::Bc4},
    {80, Format::Bc4, true},
    {82, Format::Bc5},
    {83, Format::Bc5, true},
    {94, Format::Bc6hUnsigned},
    {95, Format::Bc6hUnsigned, true},
    {96, Format::Bc6hSigned, true},
    {97, Format::Bc7},
    {98, Format::Bc7, true},
    {99, Format::Bc7},
};

uint32_t wordAt(std::span<const uint8_t> file, size_t index)
{
    uint32_t word = 0;
    std::memcpy(&word, file.data() + 4 * index, sizeof word);  // x86-64 keeps the file's order of bytes
    return word;
}

std::string printable(uint32_t code)
{
    std::string letters;
    for (int i = 0; i < 4; ++i) {
        const char letter = static_cast<char>(code >> 8 * i);
        letters += letter >= ' ' && letter <= '~' ? letter : '?';
    }
    return letters;
}

int sideOf(uint32_t word, const char* what)
{
    if (word == 0 || word > static_cast<uint32_t>(mostPixelsAside))
        throw Error(std::string("its ") + what + " is " + std::to_string(word));
    return static_cast<int>(word);
}

std::vector<Face> facesOf(uint32_t caps2)
{
    std::vector<Face> faces;
    for (int face = 0; face < 6; ++face)
        if (caps2 & caps2FirstFace << face)
            faces.push_back(static_cast<Face>(face));
    if (faces.empty())
        throw Error("a cube without faces");
    return faces;
}

void parseLongHeader(std::span<const uint8_t> file, Texture& texture)
{
    if (file.size() < 4 * longWords)
        throw Error("the file ends in its header");
    texture.dx10 = true;
    texture.dxgiFormat = wordAt(file, dxgiFormatWord);
    const auto* known = std::find_if(std::begin(dxgiFormats), std::end(dxgiFormats),
                                     [&](const DxgiFormat& entry) { return entry.number == texture.dxgiFormat; });
    if (known == std::end(dxgiFormats))
        throw Error("DXGI format " + std::to_string(texture.dxgiFormat) + " is not supported");
    texture.format = known->format;
    if (wordAt(file, dimensionWord) != dimension2d)
        throw Error("only textures of two dimensions are supported");
    texture.layers = wordAt(file, layersWord);
    if (texture.layers == 0)
        throw Error("an array without textures");
    if (wordAt(file, miscWord) & miscCube)
        texture.faces = facesOf(~0U);
}

void parseFourCc(uint32_t code, Texture& texture)
{
    const auto* known = std::find_if(std::begin(fourCcFormats), std::end(fourCcFormats),
                                     [&](const FourCcFormat& entry) { return entry.code == code; });
    if (known == std::end(fourCcFormats))
        throw Error("FourCC " + printable(code) + " is not supported");
    texture.format = known->format;
}

}  // namespace

int fullLevels(int width, int height)
{
    return static_cast<int>(std::bit_width(static_cast<unsigned>(std::max(width, height))));
}

Texture parseHeader(std::span<const uint8_t> file)
{
    if (file.size() < 4 || wordAt(file, magicWord) != fourCc("DDS "))
        throw Error("no DDS texture");
    if (file.size() < 4 * shortWords)
        throw Error("the file ends in its header");
    if (wordAt(file, sizeWord) != headerSize || wordAt(file, pixelSizeWord) != pixelFormatSize)
        throw Error("damaged DDS header");
    Texture texture;
    texture.width = sideOf(wordAt(file, widthWord), "width");
    texture.height = sideOf(wordAt(file, heightWord), "height");
    if ((wordAt(file, pixelFlagsWord) & pixelFourCc) == 0)
        throw Error("only textures of compressed blocks are supported");
    const uint32_t caps2 = wordAt(file, caps2Word);
    if (caps2 & caps2Volume)
        throw Error("only textures of two dimensions are supported");
    const uint32_t code = wordAt(file, fourCcWord);
    texture.fourCc = printable(code);
    if (code == fourCc("DX10")) {
        parseLongHeader(file, texture);
    } else {
        parseFourCc(code, texture);
        if (caps2 & caps2Cube)
            texture.faces = facesOf(caps2);
    }
    if (texture.format == Format::Bc3 && wordAt(file, markWord) == markYCoCg)
        texture.format = Format::YCoCgBc3;
    if (texture.isCube() && texture.width != texture.height)
        throw Error("the faces of a cube must be squares");
    const uint32_t levels = std::max(1U, wordAt(file, levelsWord));  // files without mipmaps may tell 0
    if (levels > static_cast<uint32_t>(fullLevels(texture.width, texture.height)))
        throw Error("more mipmaps than its size has");
    texture.levels = static_cast<int>(levels);
    return texture;
}

std::vector<uint8_t> makeHeader(Texture& texture)
{
    const Format blocks = texture.format == Format::YCoCgBc3 ? Format::Bc3 : texture.format;
    const auto* old = std::find_if(std::begin(fourCcFormats), std::end(fourCcFormats),
                                   [&](const FourCcFormat& entry) { return entry.format == blocks; });
    texture.dx10 = texture.dx10 || old == std::end(fourCcFormats) || texture.layers != 1;
    const uint32_t code = texture.dx10 ? fourCc("DX10") : old->code;
    texture.fourCc = printable(code);

    std::vector<uint32_t> words(texture.dx10 ? longWords : shortWords);
    words[magicWord] = fourCc("DDS ");
    words[sizeWord] = headerSize;
    words[flagsWord] = flagCaps | flagHeight | flagWidth | flagPixelFormat | flagLinearSize;
    words[heightWord] = static_cast<uint32_t>(texture.height);
    words[widthWord] = static_cast<uint32_t>(texture.width);
    const uint64_t blocksWide = (static_cast<uint64_t>(texture.width) + 3) / 4;
    const uint64_t blocksHigh = (static_cast<uint64_t>(texture.height) + 3) / 4;
    words[linearSizeWord] =
        static_cast<uint32_t>(std::min<uint64_t>(blocksWide * blocksHigh * blockBytes(blocks), ~0U));
    words[levelsWord] = static_cast<uint32_t>(texture.levels);
    words[pixelSizeWord] = pixelFormatSize;
    words[pixelFlagsWord] = pixelFourCc;
    words[fourCcWord] = code;
    words[capsWord] = capsTexture;
    if (texture.levels > 1) {
        words[flagsWord] |= flagLevels;
        words[capsWord] |= capsComplex | capsMipmap;
    }
    if (texture.isCube()) {
        words[capsWord] |= capsComplex;
        words[caps2Word] = caps2Cube;
        for (const Face face : texture.faces) words[caps2Word] |= caps2FirstFace << static_cast<int>(face);
    }
    if (texture.format == Format::YCoCgBc3) {
        words[firstReservedWord] = fourCc("GIMP");
        words[firstReservedWord + 1] = fourCc("-DDS");
        words[markWord] = markYCoCg;
    }
    if (texture.dx10) {
        const auto* number = std::find_if(std::begin(dxgiFormats), std::end(dxgiFormats), [&](const DxgiFormat& entry) {
            return entry.written && entry.format == blocks;
        });
        texture.dxgiFormat = number->number;
        words[dxgiFormatWord] = number->number;
        words[dimensionWord] = dimension2d;
        words[miscWord] = texture.isCube() ? miscCube : 0;
        words[layersWord] = texture.layers;
    }
    std::vector<uint8_t> bytes(4 * words.size());
    std::memcpy(bytes.data(), words.data(), bytes.size());
    return bytes;
}

}  // namespace vekpix::dds
