// Headers apart from their packets, palettes, and damaged, truncated and hostile files: an Error, or a picture; never
// more time or memory than the file can justify.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>

#include "error.h"
#include "jpeg2000/big_endian.h"
#include "jpeg2000/jp2_boxes.h"
#include "jpeg2000/markers.h"
#include "jpeg2000_peer.h"
#include "support/sanitizers.h"

using namespace vekpix::jpeg2000;
using support::decodeJpeg2000;
using support::drawDeep;
using support::Options;
using support::Raster;
using Bytes = std::vector<uint8_t>;

namespace {

class Jpeg2000Damage : public support::Jpeg2000Test {};
class Jpeg2000Packed : public support::Jpeg2000Test {};
class Jpeg2000Palette : public support::Jpeg2000Test {};

void append(Bytes& bytes, std::span<const uint8_t> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

// A file whose packets are all between markers, taken apart.
struct TilePart {
    Bytes start;    // SOT and what follows, up to SOD
    Bytes headers;  // of its packets
    Bytes bodies;
};
struct TakenApart {
    Bytes main;
    std::vector<TilePart> parts;
};

TilePart takePartApart(std::span<const uint8_t> bytes)
{
    TilePart part;
    size_t at = 12;
    while (bytes[at + 1] != (markerSod & 0xFF)) at += 2u + static_cast<size_t>(bytes[at + 2] << 8 | bytes[at + 3]);
    append(part.start, bytes.first(at));
    bool inHeader = false;
    for (at += 2; at < bytes.size(); ++at) {
        const int marker = bytes[at] == 0xFF && at + 1 < bytes.size() ? 0xFF00 | bytes[at + 1] : 0;
        if (marker == markerSop) {
            append(part.bodies, bytes.subspan(at, 6));
            at += 5;
            inHeader = true;
        } else if (marker == markerEph) {
            append(part.headers, bytes.subspan(at, 2));
            at += 1;
            inHeader = false;
        } else {
            (inHeader ? part.headers : part.bodies).push_back(bytes[at]);
        }
    }
    return part;
}

TakenApart takeApart(std::span<const uint8_t> file)
{
    TakenApart result;
    size_t at = 2;
    while (file[at + 1] != (markerSot & 0xFF)) at += 2u + static_cast<size_t>(file[at + 2] << 8 | file[at + 3]);
    append(result.main, file.first(at));
    while (file[at + 1] == (markerSot & 0xFF)) {
        const size_t length = Fields(file.subspan(at + 6)).u32();
        result.parts.push_back(takePartApart(file.subspan(at, length)));
        at += length;
    }
    return result;
}

void putSegment(Bytes& out, Marker marker, uint8_t number, std::span<const uint8_t> bytes)
{
    put16(out, marker);
    put16(out, static_cast<uint32_t>(3 + bytes.size()));
    put8(out, number);
    append(out, bytes);
}

// In segments of `length` bytes, the last first: their numbers, from `number` on, tell their order. Returns how many.
size_t putPacked(Bytes& out, Marker marker, std::span<const uint8_t> bytes, size_t length, size_t number = 0)
{
    const size_t count = (bytes.size() + length - 1) / length;
    for (size_t i = count; i-- > 0;)
        putSegment(out, marker, static_cast<uint8_t>(number + i),
                   bytes.subspan(i * length, std::min(length, bytes.size() - i * length)));
    return count;
}

void putPart(Bytes& out, const TilePart& part, std::span<const uint8_t> packed)
{
    Bytes bytes = part.start;
    append(bytes, packed);
    put16(bytes, markerSod);
    append(bytes, part.bodies);
    Bytes length;
    put32(length, static_cast<uint32_t>(bytes.size()));
    std::copy(length.begin(), length.end(), bytes.begin() + 6);
    append(out, bytes);
}

Bytes withPackedTileHeaders(const TakenApart& file)
{
    Bytes out = file.main;
    std::map<uint8_t, size_t> numbers;  // of the tiles, of which there are few
    for (const TilePart& part : file.parts) {
        Bytes packed;
        size_t& number = numbers[part.start[5]];
        number += putPacked(packed, markerPpt, part.headers, 11, number);
        putPart(out, part, packed);
    }
    put16(out, markerEoc);
    return out;
}

Bytes withPackedMainHeader(const TakenApart& file, size_t segmentLength)
{
    Bytes packed;
    for (const TilePart& part : file.parts) {
        put32(packed, static_cast<uint32_t>(part.headers.size()));
        append(packed, part.headers);
    }
    Bytes out = file.main;
    putPacked(out, markerPpm, packed, segmentLength);
    for (const TilePart& part : file.parts) putPart(out, part, {});
    put16(out, markerEoc);
    return out;
}

// The message of the Error that decoding ends with; empty if there is none. A damaged file may claim to be large, and
// be it: nobody waits for those here.
std::string messageOf(std::span<const uint8_t> file)
{
    try {
        vekpix::jpeg2000::Decoder decoder(file, {});
        const vekpix::Shape shape = decoder.shape();
        if (int64_t{shape.width} * shape.height > 1 << 16)
            return {};
        Bytes band(shape.rowBytes() * static_cast<size_t>(decoder.bandRows()));
        while (decoder.readBand(band.data(), shape.rowBytes()) > 0) {
        }
    } catch (const vekpix::Error& error) {
        EXPECT_EQ(std::string::npos, std::string(error.what()).find('\n'));
        EXPECT_NE(std::string(), error.what());
        return error.what();
    }
    return {};
}

Bytes box(const char* type, const Bytes& contents)
{
    Bytes out;
    put32(out, static_cast<uint32_t>(8 + contents.size()));
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(type[i]));
    append(out, contents);
    return out;
}

Bytes joined(const std::vector<Bytes>& pieces)
{
    Bytes out;
    for (const Bytes& piece : pieces) append(out, piece);
    return out;
}

// A JP2 file of one component with a palette of three columns.
Bytes palettedFile(const Bytes& codestream, int width, int height, const Bytes& pclr, const Bytes& cmap)
{
    const PictureSize unsized = {0, 0, width, height, 0, 0, width, height, {{}}};
    Bytes start = jp2Header(unsized, 0);
    start.resize(12 + 20);  // signature and file type
    Bytes ihdr;
    put32(ihdr, static_cast<uint32_t>(height));
    put32(ihdr, static_cast<uint32_t>(width));
    put16(ihdr, 1);
    append(ihdr, Bytes{7, 7, 0, 0});
    const Bytes srgb = {1, 0, 0, 0, 0, 0, 16};
    const Bytes header = joined({box("ihdr", ihdr), box("colr", srgb), box("pclr", pclr), box("cmap", cmap)});
    return joined({start, box("jp2h", header), box("jp2c", codestream)});
}

const Bytes threeColumns = {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2};  // cmap

}  // namespace

TEST_F(Jpeg2000Packed, HeadersApartFromPackets)
{
    const Raster picture = drawDeep({101, 83, 3, 8});
    for (const Options& kind : {Options{}, Options{"-t", "64,50", "-n", "4"},
                                Options{"-TP", "R", "-t", "64,50", "-n", "4"}, Options{"-TP", "L", "-p", "LRCP"}}) {
        SCOPED_TRACE(support::joined(kind));
        Options options = {"-SOP", "-EPH", "-r", "12,1"};
        options.insert(options.end(), kind.begin(), kind.end());
        const TakenApart apart = takeApart(openJpeg(picture, options));
        for (const Bytes& file : {withPackedTileHeaders(apart), withPackedMainHeader(apart, 60000)}) {
            EXPECT_TRUE(picture.pixels == decodeJpeg2000(file).pixels);
            EXPECT_TRUE(picture.pixels == openJpegDecodes(file).pixels);
        }
        // The peer wants the lengths of tile-parts whole.
        EXPECT_TRUE(picture.pixels == decodeJpeg2000(withPackedMainHeader(apart, 19)).pixels);
    }
}

TEST_F(Jpeg2000Packed, TooFewHeaders)
{
    const TakenApart apart = takeApart(openJpeg(drawDeep({40, 30, 1, 8}), {"-SOP", "-EPH", "-n", "3"}));
    TakenApart less = apart;
    less.parts[0].headers.resize(less.parts[0].headers.size() - 3);
    EXPECT_NE("", messageOf(withPackedTileHeaders(less)));
    Bytes file = apart.main;
    putSegment(file, markerPpm, 0, Bytes{0, 0, 0, 200, 0});
    putPart(file, apart.parts[0], {});
    EXPECT_EQ("the file's headers end early", messageOf(file));
}

TEST_F(Jpeg2000Palette, BecomesColours)
{
    const int width = 30;
    const int height = 20;
    Raster indices({width, height, 1, 8});
    for (size_t i = 0; i < indices.pixels.size(); ++i) indices.pixels[i] = static_cast<uint8_t>(i * 7 % 5);
    const Bytes codestream = openJpeg(indices, {"-n", "2"});
    const Bytes colours = {1, 2, 3, 250, 240, 230, 0, 0, 0, 9, 99, 199, 255, 0, 128};
    const Bytes file = palettedFile(codestream, width, height, joined({{0, 5, 3, 7, 7, 7}, colours}), threeColumns);
    const Raster decoded = decodeJpeg2000(file);
    ASSERT_EQ((vekpix::Shape{width, height, 3, 8}), decoded.shape);
    for (size_t i = 0; i < indices.pixels.size(); ++i)
        for (size_t c = 0; c < 3; ++c) ASSERT_EQ(colours[3 * indices.pixels[i] + c], decoded.pixels[3 * i + c]);
    EXPECT_TRUE(openJpegDecodes(file, {}, "b.jp2").pixels == decoded.pixels);

    // An index that no entry has shows the last; columns may have other depths.
    const Bytes few = palettedFile(codestream, width, height,
                                   Bytes{0, 2, 3, 7, 15, 3, 10, 0x12, 0x34, 5, 255, 0xFF, 0xFF, 15}, threeColumns);
    const Raster deep = decodeJpeg2000(few);
    ASSERT_EQ(16, deep.shape.bits);
    EXPECT_EQ(10 * 257, support::sampleOf(deep, 0));
    EXPECT_EQ(0x1234, support::sampleOf(deep, 1));
    EXPECT_EQ(5 * 4369, support::sampleOf(deep, 2));
    for (size_t i = 3; i < 15; ++i) EXPECT_EQ(65535, support::sampleOf(deep, i));
}

TEST_F(Jpeg2000Palette, ThatDoesNotFitIsRefused)
{
    const Bytes codestream = openJpeg(drawDeep({9, 9, 1, 8}), {"-n", "1"});
    const Bytes good = {0, 1, 3, 7, 7, 7, 1, 2, 3};
    EXPECT_EQ("", messageOf(palettedFile(codestream, 9, 9, good, threeColumns)));
    for (const auto& [pclr, cmap] :
         {std::pair<Bytes, Bytes>{{0, 0, 3, 7, 7, 7}, threeColumns},                        // no entries
          std::pair<Bytes, Bytes>{{0, 1, 0}, threeColumns},                                 // no columns
          std::pair<Bytes, Bytes>{{0, 2, 3, 7, 7, 7, 1, 2, 3}, threeColumns},               // an entry is missing
          std::pair<Bytes, Bytes>{{0, 1, 3, 7, 7, 40, 1, 2, 0, 0, 0, 0, 3}, threeColumns},  // too deep
          std::pair<Bytes, Bytes>{good, {}},                                                // nothing uses it
          std::pair<Bytes, Bytes>{good, {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 3}},              // no such column
          std::pair<Bytes, Bytes>{good, {0, 0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 2}}})             // no such component
        EXPECT_NE("", messageOf(palettedFile(codestream, 9, 9, pclr, cmap)));
}

TEST(Jp2Boxes, WhatIsWrittenIsRead)
{
    for (const size_t components : {size_t{1}, size_t{3}}) {
        PictureSize size;
        size.x1 = 7;
        size.y1 = 5;
        size.components.assign(components, {12, false, 1, 1});
        Bytes file = jp2Header(size, 5);
        const size_t header = file.size();
        append(file, Bytes{1, 2, 3, 4, 5});
        append(file, box("uuid", {9}));
        const Jp2File read = readJp2(file);
        EXPECT_EQ(file.data() + header, read.codestream.data());
        EXPECT_EQ(5u, read.codestream.size());
        EXPECT_EQ(components == 1 ? ColourSpace::Grey : ColourSpace::Srgb, read.colourSpace);
    }
    PictureSize size;
    size.components.resize(1);
    const Bytes large = jp2Header(size, uint64_t{1} << 33);
    EXPECT_EQ((Bytes{0, 0, 0, 1, 'j', 'p', '2', 'c', 0, 0, 0, 2, 0, 0, 0, 16}), Bytes(large.end() - 16, large.end()));
}

TEST(Jp2Boxes, LengthsThatCannotBe)
{
    PictureSize size;
    size.components.resize(1);
    const Bytes good = jp2Header(size, 0);
    EXPECT_NO_THROW(readJp2(good));
    for (const uint32_t length : {1u, 2u, 7u, 9u, 0xFFFFFFFFu}) {
        Bytes file = good;
        file.resize(file.size() - 8);
        put32(file, length);
        append(file, Bytes{'j', 'p', '2', 'c'});
        EXPECT_THROW(readJp2(file), vekpix::Error) << length;
    }
    Bytes open = good;
    open.resize(open.size() - 8);
    append(open, Bytes{0, 0, 0, 0, 'j', 'p', '2', 'c', 1, 2, 3});
    EXPECT_EQ(3u, readJp2(open).codestream.size());  // up to the file's end
    for (size_t length = 12; length < good.size(); ++length)
        EXPECT_THROW(readJp2(std::span(good).first(length)), vekpix::Error);
}

TEST_F(Jpeg2000Damage, EveryTruncationIsAnErrorOrLosesNothing)
{
    const Raster picture = drawDeep({37, 29, 3, 8});
    for (const Options& kind : {Options{"-n", "3"}, Options{"-n", "2", "-t", "20,20", "-TP", "R", "-r", "8,1"},
                                Options{"-n", "2", "-M", "37", "-SOP", "-EPH", "-PLT", "-TLM"}}) {
        const Bytes file = openJpeg(picture, kind);
        for (size_t length = 0; length + 2 < file.size(); ++length)
            ASSERT_NE("", messageOf(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)))) << length;
        for (const size_t missing : {1u, 2u})  // of the end marker
            EXPECT_TRUE(picture.pixels == decodeJpeg2000(std::span(file).first(file.size() - missing)).pixels);
    }
    const Bytes boxed = openJpeg(picture, {"-n", "3"}, "a.jp2");
    for (size_t length = 0; length < boxed.size(); length += length < 100 ? 1 : 13)
        ASSERT_NE("", messageOf(Bytes(boxed.begin(), boxed.begin() + static_cast<std::ptrdiff_t>(length)))) << length;
}

TEST_F(Jpeg2000Damage, EveryHeaderByteWithManyValuesEndsCleanly)
{
    const Raster picture = drawDeep({23, 17, 3, 8});
    for (const auto& [name, kind] :
         {std::pair<std::string, Options>{"a.jp2", {"-n", "3", "-r", "8,1"}},
          std::pair<std::string, Options>{"a.j2k", {"-n", "2", "-t", "16,16", "-d", "3,2", "-c", "[16,16]", "-I"}},
          std::pair<std::string, Options>{"a.j2k", {"-n", "2", "-POC", "T1=0,0,1,2,3,RPCL", "-ROI", "c=0,U=9"}}}) {
        const Bytes file = openJpeg(picture, kind, name);
        const size_t end = std::min<size_t>(file.size(), 300);
        for (size_t at = 0; at < end; ++at)
            for (const int value : {0x00, 0x01, 0x02, 0x07, 0x0F, 0x20, 0x3F, 0x40, 0x7F, 0x80, 0xFF, file[at] ^ 1}) {
                if (support::underSanitizer && (at + static_cast<size_t>(value)) % 4 != 0)
                    continue;
                Bytes damaged = file;
                damaged[at] = static_cast<uint8_t>(value);
                messageOf(damaged);
            }
    }
}

TEST_F(Jpeg2000Damage, PacketsOfAnyBytesEndCleanly)
{
    const Raster picture = drawDeep({45, 37, 1, 8});
    for (const char* style : {"0", "1", "4", "16", "32", "63"}) {
        const Bytes file = openJpeg(picture, {"-n", "3", "-M", style, "-b", "16,16"});
        uint32_t random = 7;
        int errors = 0;
        for (int round = 0; round < (support::underSanitizer ? 60 : 300); ++round) {
            Bytes damaged = file;
            for (int i = 0; i < 3; ++i) {
                random = random * 1664525 + 1013904223;
                damaged[150 + (random >> 8) % (file.size() - 152)] = static_cast<uint8_t>(random >> 24);
            }
            errors += !messageOf(damaged).empty();
        }
        EXPECT_GT(errors, 0) << style;
    }
}

TEST_F(Jpeg2000Damage, AMissingTileIsAnError)
{
    const Bytes file = openJpeg(drawDeep({40, 20, 1, 8}), {"-n", "2", "-t", "20,20"});
    size_t at = 2;
    while (file[at + 1] != (markerSot & 0xFF)) at += 2u + static_cast<size_t>(file[at + 2] << 8 | file[at + 3]);
    const size_t length = Fields(std::span(file).subspan(at + 6)).u32();
    Bytes less(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(at + length));
    EXPECT_EQ("a tile of the picture is missing", messageOf(less));
}

// Headers that claim much, with nothing behind them, cost nothing.
TEST_F(Jpeg2000Damage, HugeClaimsAreRefusedAtOnce)
{
    const Bytes file = openJpeg(drawDeep({8, 8, 1, 8}), {"-n", "1"});
    const auto with = [&](const std::function<void(Bytes&)>& change) {
        Bytes changed = file;
        change(changed);
        return changed;
    };
    const auto put = [](Bytes& bytes, size_t at, uint32_t value) {
        for (int i = 0; i < 4; ++i) bytes[at + static_cast<size_t>(i)] = static_cast<uint8_t>(value >> (24 - 8 * i));
    };
    constexpr size_t xsiz = 8, ysiz = 12, tileWide = 24, tileHigh = 28;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE("", messageOf(with([&](Bytes& b) { put(b, xsiz, 0xFFFFFFFF); })));
    for (const uint32_t side : {1u << 30, 1u << 26, 1u << 20, 60000u}) {
        const Bytes wide = with([&](Bytes& b) {
            for (const size_t at : {xsiz, ysiz, tileWide, tileHigh}) put(b, at, side);
        });
        EXPECT_THROW(decodeJpeg2000(wide), vekpix::Error) << side;
    }
    EXPECT_EQ("too many tiles", messageOf(with([&](Bytes& b) {
                  put(b, xsiz, 1 << 20);
                  put(b, tileWide, 1);
              })));
    Bytes manyComponents(file.begin(), file.begin() + 4);
    put16(manyComponents, 38 + 3 * 16384);
    put16(manyComponents, 0);
    for (const uint32_t value : {255u, 257u, 0u, 0u, 1u, 1u, 0u, 0u}) put32(manyComponents, value);
    put16(manyComponents, 16384);
    for (int i = 0; i < 16384; ++i) append(manyComponents, Bytes{7, 1, 1});
    EXPECT_EQ("the file holds too little data for its tiles and components", messageOf(manyComponents));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}
