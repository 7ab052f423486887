#include "jpeg2000/jp2_boxes.h"

#include <algorithm>
#include <array>
#include <utility>

#include "error.h"
#include "jpeg2000/big_endian.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr std::array<uint8_t, 12> signature = {0, 0, 0, 12, 'j', 'P', ' ', ' ', 0x0D, 0x0A, 0x87, 0x0A};

constexpr uint32_t boxType(const char (&name)[5])
{
    uint32_t type = 0;
    for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<uint8_t>(name[i]);
    return type;
}

struct Box {
    uint32_t type;
    std::span<const uint8_t> contents;
};

Box takeBox(std::span<const uint8_t>& bytes)
{
    Fields fields(bytes);
    uint64_t length = fields.u32();
    const uint32_t type = fields.u32();
    size_t header = 8;
    if (length == 1) {
        length = uint64_t{fields.u32()} << 32;
        length |= fields.u32();
        header = 16;
    } else if (length == 0) {
        length = bytes.size();
    }
    if (length < header)
        throw Error("a box of the file is too short");
    if (length > bytes.size())
        throw Error("the file ends early");
    const Box box = {type, bytes.subspan(header, length - header)};
    bytes = bytes.subspan(length);
    return box;
}

void readColours(Fields fields, Jp2File& file)
{
    const uint32_t method = fields.u8();
    fields.u16();  // precedence, approximation
    if (method != 1)
        return;
    switch (fields.u32()) {
        case 16:
            file.colourSpace = ColourSpace::Srgb;
            break;
        case 17:
            file.colourSpace = ColourSpace::Grey;
            break;
        case 18:
            file.colourSpace = ColourSpace::Sycc;
            break;
        default:
            break;
    }
}

void readChannels(Fields fields, Jp2File& file)
{
    for (uint32_t count = fields.u16(); count > 0; --count) {
        ChannelUse use;
        use.channel = static_cast<int>(fields.u16());
        use.isColour = fields.u16() == 0;
        use.colour = static_cast<int>(fields.u16());
        file.channels.push_back(use);
    }
}

// Values with a sign are moved up to begin at 0.
void readPalette(Fields fields, Jp2File& file)
{
    const uint32_t entries = fields.u16();
    const uint32_t columns = fields.u8();
    if (entries == 0 || entries > 1024 || columns == 0)
        throw Error("impossible size of a palette");
    Palette palette;
    std::vector<bool> isSigned;
    for (uint32_t c = 0; c < columns; ++c) {
        const uint32_t depth = fields.u8();
        isSigned.push_back((depth & 0x80) != 0);
        palette.bits.push_back(static_cast<int>(depth & 0x7F) + 1);
        if (palette.bits.back() > 16)
            throw Error("palettes of more than 16 bits are not supported");
    }
    for (uint32_t i = 0; i < entries; ++i)
        for (uint32_t c = 0; c < columns; ++c) {
            const int bits = palette.bits[c];
            uint32_t value = bits > 8 ? fields.u16() : fields.u8();
            if (isSigned[c])
                value ^= uint32_t{1} << (bits - 1);
            palette.values.push_back(static_cast<int32_t>(value & ((uint32_t{1} << bits) - 1)));
        }
    file.palette = std::move(palette);
}

void readSources(Fields fields, Jp2File& file)
{
    while (fields.left() > 0) {
        ChannelSource source;
        source.component = static_cast<int>(fields.u16());
        const bool usesPalette = fields.u8() == 1;
        const auto column = static_cast<int>(fields.u8());
        if (usesPalette)
            source.column = column;
        file.sources.push_back(source);
    }
}

void readHeaderBoxes(std::span<const uint8_t> bytes, Jp2File& file)
{
    bool hasColours = false;
    while (!bytes.empty()) {
        const Box box = takeBox(bytes);
        if (box.type == boxType("colr") && !hasColours) {
            readColours(Fields(box.contents), file);
            hasColours = true;
        } else if (box.type == boxType("cdef")) {
            readChannels(Fields(box.contents), file);
        } else if (box.type == boxType("pclr")) {
            readPalette(Fields(box.contents), file);
        } else if (box.type == boxType("cmap")) {
            readSources(Fields(box.contents), file);
        }
    }
    if (file.palette.has_value() == file.sources.empty())
        throw Error("a palette and the channels that it serves do not come together");
    for (const ChannelSource& source : file.sources)
        if (source.column >= static_cast<int>(file.palette->bits.size()))
            throw Error("a channel names a column of the palette that is not there");
}

void putBox(std::vector<uint8_t>& out, const char (&name)[5], const std::vector<uint8_t>& contents)
{
    put32(out, static_cast<uint32_t>(8 + contents.size()));
    put32(out, boxType(name));
    out.insert(out.end(), contents.begin(), contents.end());
}

uint8_t depthCode(const ComponentSize& component)
{
    return static_cast<uint8_t>((component.isSigned ? 0x80 : 0) | (component.bits - 1));
}

}  // namespace

bool isJp2(std::span<const uint8_t> file)
{
    return file.size() >= signature.size() && std::equal(signature.begin(), signature.end(), file.begin());
}

bool isCodestream(std::span<const uint8_t> file)
{
    constexpr std::array<uint8_t, 4> start = {0xFF, 0x4F, 0xFF, 0x51};
    return file.size() >= start.size() && std::equal(start.begin(), start.end(), file.begin());
}

Jp2File readJp2(std::span<const uint8_t> file)
{
    Jp2File result;
    if (!isJp2(file)) {
        result.codestream = file;
        return result;
    }
    while (!file.empty()) {
        const Box box = takeBox(file);
        if (box.type == boxType("jp2h")) {
            readHeaderBoxes(box.contents, result);
        } else if (box.type == boxType("jp2c")) {
            result.codestream = box.contents;
            return result;
        }
    }
    throw Error("the file holds no code-stream");
}

std::vector<uint8_t> jp2Header(const PictureSize& size, uint64_t codestreamLength)
{
    std::vector<uint8_t> out(signature.begin(), signature.end());
    std::vector<uint8_t> type;
    put32(type, boxType("jp2 "));
    put32(type, 0);
    put32(type, boxType("jp2 "));
    putBox(out, "ftyp", type);

    std::vector<uint8_t> image;
    put32(image, static_cast<uint32_t>(size.y1 - size.y0));
    put32(image, static_cast<uint32_t>(size.x1 - size.x0));
    put16(image, static_cast<uint32_t>(size.components.size()));
    image.push_back(depthCode(size.components[0]));
    image.push_back(7);  // the compression that the standard defines
    image.push_back(0);  // the colours are known
    image.push_back(0);  // no rights
    std::vector<uint8_t> colours = {1, 0, 0};
    put32(colours, size.components.size() >= 3 ? 16 : 17);
    std::vector<uint8_t> header;
    putBox(header, "ihdr", image);
    putBox(header, "colr", colours);
    putBox(out, "jp2h", header);

    if (codestreamLength + 8 <= UINT32_MAX) {
        put32(out, static_cast<uint32_t>(codestreamLength + 8));
        put32(out, boxType("jp2c"));
    } else {
        put32(out, 1);
        put32(out, boxType("jp2c"));
        put32(out, static_cast<uint32_t>((codestreamLength + 16) >> 32));
        put32(out, static_cast<uint32_t>(codestreamLength + 16));
    }
    return out;
}

}  // namespace vekpix::jpeg2000
