// TIFF files in memory: every kind is read, what is written is read back, and other kinds are refused in one line.
#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <string>

#include "error.h"
#include "support/guarded_buffer.h"
#include "tiff/decoder.h"
#include "tiff/describe.h"
#include "tiff/encoder.h"
#include "tiff_files.h"

using support::Bytes;
using support::drawnRaster;
using support::TiffFile;
using support::TiffKind;
using vekpix::MemoryRows;
using vekpix::MemorySink;
using vekpix::Raster;
namespace tiff = vekpix::tiff;

namespace {

// By bands, which lie with a gap between rows, from a file that ends where its memory does.
Raster decode(const Bytes& file)
{
    support::GuardedBytes memory(file.size());
    std::copy(file.begin(), file.end(), memory.data());
    tiff::Decoder decoder({memory.data(), file.size()});
    Raster picture(decoder.shape());
    const size_t step = decoder.shape().rowBytes() + 3;
    Bytes band(step * static_cast<size_t>(decoder.bandRows()), 77);
    int y = 0;
    while (const int rows = decoder.readBand(band.data(), step))
        for (int i = 0; i < rows; ++i, ++y) {
            const uint8_t* row = band.data() + static_cast<size_t>(i) * step;
            std::copy_n(row, picture.shape.rowBytes(), picture.row(y));
            EXPECT_EQ(77, row[step - 1]);
        }
    EXPECT_EQ(picture.shape.height, y);
    return picture;
}

Bytes encode(const Raster& picture, const tiff::EncodeOptions& options)
{
    MemoryRows rows(picture);
    MemorySink sink;
    tiff::encode(rows, sink, options);
    return sink.bytes();
}

void expectEqual(const Raster& expected, const Raster& actual)
{
    ASSERT_EQ(expected.shape, actual.shape);
    EXPECT_TRUE(expected.pixels == actual.pixels);
}

std::string messageOf(const Bytes& file)
{
    try {
        decode(file);
    } catch (const vekpix::Error& error) {
        return error.what();
    }
    return "";
}

void expectRefusal(const TiffFile& file, const std::string& words)
{
    const std::string message = messageOf(file.bytes());
    EXPECT_NE(std::string::npos, message.find(words)) << message << " instead of " << words;
    EXPECT_EQ(std::string::npos, message.find('\n'));
}

constexpr std::pair<int, int> sizes[] = {{1, 1}, {2, 1}, {1, 2}, {3, 5}, {7, 3}, {129, 4}, {300, 9}};

}  // namespace

TEST(TiffReader, ReadsEveryKind)
{
    for (const auto& [width, height] : sizes)
        for (const int channels : {1, 3})
            for (const int bits : {8, 16}) {
                const Raster picture = drawnRaster(width, height, channels, bits);
                for (int choice = 0; choice < 32; ++choice)
                    for (const int rowsPerStrip : {1, 2, 1 << 30}) {
                        const TiffKind kind = {.bigEndian = (choice & 1) != 0,
                                               .packed = (choice & 2) != 0,
                                               .packedAcrossRows = (choice & 4) != 0,
                                               .separate = (choice & 8) != 0,
                                               .whiteIsZero = (choice & 16) != 0 && channels == 1,
                                               .rowsPerStrip = rowsPerStrip};
                        SCOPED_TRACE(testing::Message() << width << " x " << height << " x " << channels << ", " << bits
                                                        << " bits, kind " << choice << ", rows " << rowsPerStrip);
                        expectEqual(picture, decode(TiffFile(picture, kind).bytes()));
                    }
            }
}

TEST(TiffReader, FieldsMayBeMissingIfTheirUsualValuesAreMeant)
{
    const Raster picture = drawnRaster(9, 4, 1, 8);
    TiffFile file(picture, {});
    for (const int tag : {259, 277, 278, 284}) file.fields.erase(tag);
    expectEqual(picture, decode(file.bytes()));
}

TEST(TiffReader, NumbersMayBeBytesWordsOrLongWords)
{
    const Raster picture = drawnRaster(9, 4, 3, 8);
    for (const int type : {1, 3, 4}) {
        TiffFile file(picture, {.bigEndian = true});
        for (const int tag : {256, 257, 258, 259, 262, 277, 284}) file.fields[tag].type = type;
        expectEqual(picture, decode(file.bytes()));
    }
}

TEST(TiffReader, FieldsThatAreNotKnownAreLeftAlone)
{
    const Raster picture = drawnRaster(9, 4, 3, 8);
    TiffFile file(picture, {});
    file.fields[315] = {2, {'m', 'e', 0}};
    file.fields[40000] = {12, {1, 2, 3}};
    file.fields[274] = {3, {3}};
    expectEqual(picture, decode(file.bytes()));
}

TEST(TiffReader, PacketsThatDoNothingArePassedOver)
{
    const Raster picture = drawnRaster(50, 2, 1, 8);
    TiffFile file(picture, {.packed = true});
    file.strips[0].insert(file.strips[0].begin(), 3, 0x80);
    file.strips[0].push_back(0x80);
    expectEqual(picture, decode(file.bytes()));
}

TEST(TiffReader, OtherKindsAreRefused)
{
    const Raster colour = drawnRaster(6, 4, 3, 8);
    const auto refuse = [&](int tag, const support::TiffField& field, const std::string& words) {
        TiffFile file(colour, {});
        file.fields[tag] = field;
        expectRefusal(file, words);
    };
    refuse(259, {3, {5}}, "compression 5");
    refuse(259, {4, {65537}}, "compression 65537");
    refuse(262, {3, {3}}, "palettes");
    refuse(262, {3, {6}}, "photometric interpretation 6");
    refuse(266, {3, {2}}, "bits in reversed order");
    refuse(277, {3, {4}}, "extra samples");
    refuse(338, {3, {0}}, "extra samples");
    refuse(322, {3, {16}}, "tiles");
    refuse(324, {4, {16}}, "tiles");
    refuse(258, {3, {8, 16, 8}}, "samples of different kinds");
    refuse(258, {3, {4, 4, 4}}, "samples of 4 bits");
    refuse(339, {3, {3, 3, 3}}, "no whole numbers");
    refuse(339, {3, {2, 2, 2}}, "no whole numbers");
    TiffFile large(colour, {});
    large.version = 43;
    expectRefusal(large, "BigTIFF");
    TiffFile bilevel(drawnRaster(8, 1, 1, 8), {});
    bilevel.fields.erase(258);
    expectRefusal(bilevel, "samples of 1 bit");
}

TEST(TiffReader, ImpossibleFieldsAreRefused)
{
    const Raster colour = drawnRaster(6, 4, 3, 8);
    const auto refuse = [&](int tag, const support::TiffField& field, const std::string& words) {
        TiffFile file(colour, {.rowsPerStrip = 2});
        file.fields[tag] = field;
        expectRefusal(file, words);
    };
    refuse(256, {4, {0}}, "ImageWidth is outside 1 .. 16777216");
    refuse(257, {4, {0xFFFFFFFF}}, "ImageLength is outside 1 .. 16777216");
    refuse(256, {4, {1 << 24}}, "strip 0 is too short");
    refuse(257, {4, {1 << 24}}, "and should have 8388608");
    refuse(278, {4, {0}}, "RowsPerStrip is 0");
    refuse(278, {4, {1}}, "it lists 2 strips with 2 lengths, and should have 4");
    refuse(256, {4, {6, 6}}, "ImageWidth has 2 values");
    refuse(256, {4, {}}, "ImageWidth is empty");
    refuse(256, {5, {6}}, "ImageWidth holds no whole numbers");
    refuse(258, {3, {8, 8}}, "BitsPerSample has 2 values for 3 samples");
    refuse(277, {3, {2}}, "fewer samples than colours");
    refuse(284, {3, {3}}, "PlanarConfiguration is 3");
    refuse(273, {4, {8, 0xFFFFFFFF}}, "strip 1 lies outside");
    refuse(273, {4, {8}}, "it lists 1 strips with 2 lengths");
    refuse(279, {4, {36, 35}}, "strip 1 is too short");
    refuse(279, {4, {36, 1 << 20}}, "strip 1 lies outside");
    for (const int tag : {256, 257, 262}) {
        TiffFile file(colour, {});
        file.fields.erase(tag);
        expectRefusal(file, "is missing");
    }
    TiffFile overlapping(drawnRaster(200, 50, 1, 8), {.rowsPerStrip = 1});
    overlapping.fields[273] = {4, std::vector<uint32_t>(50, 8)};
    overlapping.fields[279] = {4, std::vector<uint32_t>(50, 400)};
    expectRefusal(overlapping, "its strips overlap");
}

TEST(TiffReader, StripsThatEndBeforeTheirRowsAreRefused)
{
    const Raster picture = drawnRaster(200, 3, 1, 8);
    TiffFile file(picture, {.packed = true});
    const Bytes strip = file.strips[0];
    for (size_t length = 10; length < strip.size(); ++length) {
        file.strips[0].assign(strip.begin(), strip.begin() + static_cast<ptrdiff_t>(length));
        expectRefusal(file, "a strip ends before its rows do");
    }
    // A run whose byte is cut off, though the file has bytes behind it.
    TiffFile run(drawnRaster(100, 1, 1, 8), {.packed = true});
    run.strips[0] = {0, 5, static_cast<uint8_t>(-98)};
    expectRefusal(run, "a strip ends before its rows do");
}

TEST(TiffWriter, WhatIsWrittenIsReadBack)
{
    for (const auto& [width, height] : sizes)
        for (const int channels : {1, 3})
            for (const int bits : {8, 16})
                for (const bool packed : {false, true})
                    for (const tiff::ByteOrder order : {tiff::ByteOrder::Little, tiff::ByteOrder::Big}) {
                        const Raster picture = drawnRaster(width, height, channels, bits);
                        expectEqual(picture, decode(encode(picture, {.packBits = packed, .order = order})));
                    }
}

TEST(TiffWriter, LargePicturesHaveStripsOfMiddlingSize)
{
    for (const int width : {3, 700, 40000}) {
        const Raster picture = drawnRaster(width, 2100000 / width, 3, 8);
        for (const bool packed : {false, true}) {
            int rows = 0;
            const Bytes file = encode(picture, {.packBits = packed, .onRows = [&](int n) { rows += n; }});
            EXPECT_EQ(picture.shape.height, rows);
            expectEqual(picture, decode(file));
            const tiff::Layout layout = tiff::layoutOf(tiff::Directory(file), file);
            const size_t stripBytes = static_cast<size_t>(layout.rowsPerStrip) * picture.shape.rowBytes();
            EXPECT_GE(stripBytes, size_t{64} << 10);
            EXPECT_LE(stripBytes, size_t{256} << 10);
        }
    }
}

TEST(TiffWriter, RowsArePackedOneByOne)
{
    const Raster picture = drawnRaster(300, 40, 3, 8);
    const Bytes file = encode(picture, {.packBits = true});
    Bytes expected;
    for (int y = 0; y < picture.shape.height; ++y)
        for (const Bytes& packet : model::packetsOf({picture.row(y), picture.row(y) + picture.shape.rowBytes()}))
            expected.insert(expected.end(), packet.begin(), packet.end());
    ASSERT_LT(expected.size(), file.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), file.begin() + 8));
}

TEST(TiffWriter, OtherPicturesAreRefused)
{
    for (const auto& picture : {drawnRaster(3, 3, 4, 8), drawnRaster(3, 3, 1, 12)})
        EXPECT_THROW(encode(picture, {}), vekpix::Error);
}

TEST(TiffDescription, TellsFieldsAndPicture)
{
    const Raster picture = drawnRaster(20, 30, 3, 16);
    TiffFile file(picture, {.bigEndian = true, .packed = true, .separate = true, .rowsPerStrip = 7});
    file.next = 8;
    file.fields[315] = {2, {'m', 'e', 0}};
    file.fields[40001] = {3, {}};
    std::ostringstream text;
    const Bytes bytes = file.bytes();
    tiff::describe(bytes, text);
    for (const char* words : {"TIFF, big-endian\n", "  256 ImageWidth: 20\n", "  258 BitsPerSample: 16, 16, 16\n",
                              "  315 (not known): 3 of type 2\n", "  40001 (not known): damaged\n", "... (15)\n",
                              "read as 20 x 30, 16 bits, RGB, PackBits, 15 strips of 7 rows, channels apart\n",
                              "more pictures follow, which are not read\n"})
        EXPECT_NE(std::string::npos, text.str().find(words)) << words << text.str();
}

TEST(TiffDescription, TellsTheFieldsOfAFileThatIsRefused)
{
    TiffFile file(drawnRaster(6, 4, 3, 8), {});
    file.fields[259] = {3, {5}};
    std::ostringstream text;
    EXPECT_THROW(tiff::describe(file.bytes(), text), vekpix::Error);
    EXPECT_NE(std::string::npos, text.str().find("259 Compression: 5\n")) << text.str();
}
