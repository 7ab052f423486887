// PNG and PNM pictures: what is written comes back; every variant that files use becomes the same 8-bit rows.
#include <gtest/gtest.h>

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "command_support.h"
#include "error.h"
#include "image/formats.h"
#include "image/memory_rows.h"
#include "io/output_file.h"
#include "jpeg_peer.h"

using vekpix::Error;
using vekpix::ImageFormat;
using vekpix::MemorySink;
using vekpix::Raster;
using vekpix::RowReader;
using vekpix::Shape;
namespace fs = std::filesystem;

namespace {

class ImageRows : public support::FolderTest {
protected:
    Raster load(const std::string& name) const { return readPicture(*vekpix::openPicture(path(name))); }

    // Reads in bands of changing heights, into rows with gaps.
    Raster loadInBands(const std::string& name) const
    {
        const std::unique_ptr<RowReader> reader = vekpix::openPicture(path(name));
        Raster picture(reader->shape());
        const size_t step = picture.shape.rowBytes() + 5;
        for (int y = 0, rows = 1; y < reader->height(); y += rows, ++rows) {
            rows = std::min(rows, reader->height() - y);
            std::vector<uint8_t> band(step * static_cast<size_t>(rows), 0xEE);
            reader->readRows(band.data(), step, rows);
            for (int i = 0; i < rows; ++i) {
                const uint8_t* row = band.data() + step * static_cast<size_t>(i);
                std::copy_n(row, picture.shape.rowBytes(), picture.row(y + i));
                EXPECT_EQ(5, std::count(row + picture.shape.rowBytes(), row + step, 0xEE));
            }
        }
        return picture;
    }

    std::string errorOf(const std::string& name) const
    {
        try {
            load(name);
        } catch (const Error& error) {
            return error.what();
        }
        ADD_FAILURE() << name << " was read";
        return {};
    }
};

std::vector<uint8_t> written(ImageFormat format, const peer::Picture& picture)
{
    MemorySink sink;
    const Shape shape = {picture.width, picture.height, picture.channels};
    const auto writer = vekpix::makePictureWriter(format, shape, sink);
    for (int y = 0, rows = 1; y < shape.height; y += rows, ++rows) {
        rows = std::min(rows, shape.height - y);
        writer->writeRows(picture.pixels.data() + shape.rowBytes() * static_cast<size_t>(y), shape.rowBytes(), rows);
    }
    writer->finish();
    return sink.bytes();
}

// A PNG file of any kind that libpng writes. `rows` in the file's own layout.
struct PngKind {
    int width;
    int height;
    int bitDepth;
    int colourType;
    int interlacing = PNG_INTERLACE_NONE;
    std::vector<png_color> palette = {};
    std::vector<png_byte> paletteAlpha = {};
    const png_color_16* transparent = nullptr;
};

void writePng(const std::string& path, const PngKind& kind, std::vector<uint8_t> pixels)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(nullptr, file);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(kind.width), static_cast<png_uint_32>(kind.height), kind.bitDepth,
                 kind.colourType, kind.interlacing, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!kind.palette.empty())
        png_set_PLTE(png, info, kind.palette.data(), static_cast<int>(kind.palette.size()));
    if (!kind.paletteAlpha.empty() || kind.transparent)
        png_set_tRNS(png, info, kind.paletteAlpha.data(), static_cast<int>(kind.paletteAlpha.size()), kind.transparent);
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    for (int y = 0; y < kind.height; ++y)
        rows.push_back(pixels.data() + png_get_rowbytes(png, info) * static_cast<size_t>(y));
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

using Bytes = std::vector<uint8_t>;

}  // namespace

TEST_F(ImageRows, WhatIsWrittenComesBack)
{
    for (const int width : {1, 2, 3, 7, 64, 101})
        for (const int height : {1, 5, 33})
            for (const int channels : {1, 3}) {
                const peer::Picture picture = peer::draw(width, height, channels, peer::Scene::Harsh);
                for (const auto& [format, name] : {std::pair(ImageFormat::Png, "a.png"),
                                                   std::pair(channels == 1 ? ImageFormat::Pgm : ImageFormat::Ppm,
                                                             channels == 1 ? "a.pgm" : "a.ppm")}) {
                    save(name, written(format, picture));
                    EXPECT_EQ((Shape{width, height, channels}), load(name).shape);
                    EXPECT_TRUE(picture.pixels == load(name).pixels) << name << ' ' << width << " x " << height;
                    EXPECT_TRUE(picture.pixels == loadInBands(name).pixels) << name << ' ' << width << " x " << height;
                }
            }
}

TEST_F(ImageRows, AGreyPictureMayBecomeAPpmFileButAColouredOneNoPgmFile)
{
    save("a.ppm", written(ImageFormat::Ppm, {2, 1, 1, {7, 200}}));
    EXPECT_EQ((Shape{2, 1, 3}), load("a.ppm").shape);
    EXPECT_EQ((Bytes{7, 7, 7, 200, 200, 200}), load("a.ppm").pixels);
    MemorySink sink;
    EXPECT_THROW(vekpix::makePictureWriter(ImageFormat::Pgm, {2, 1, 3}, sink), Error);
    EXPECT_THROW(vekpix::makePictureWriter(ImageFormat::Jpeg, {2, 1, 3}, sink), Error);
}

TEST_F(ImageRows, PamFilesHoldGreyColoursAndInks)
{
    for (const int channels : {1, 3, 4}) {
        const peer::Picture picture = peer::draw(13, 7, channels, peer::Scene::Harsh);
        save("a.pam", written(ImageFormat::Pam, picture));
        const char* type = channels == 1 ? "GRAYSCALE" : channels == 3 ? "RGB" : "CMYK";
        EXPECT_EQ(0u, contents("a.pam").find("P7\nWIDTH 13\nHEIGHT 7\nDEPTH " + std::to_string(channels) +
                                             "\nMAXVAL 255\nTUPLTYPE " + type + "\nENDHDR\n"));
        EXPECT_EQ((Shape{13, 7, channels}), load("a.pam").shape);
        EXPECT_TRUE(picture.pixels == load("a.pam").pixels);
        EXPECT_TRUE(picture.pixels == loadInBands("a.pam").pixels);
    }
    save("a.pam", std::string("P7\n# any order\nTUPLTYPE RGB\nMAXVAL 100\nDEPTH 3\nHEIGHT 1\nWIDTH 1\n\nENDHDR\n") +
                      std::string("\0\x32\x64", 3));
    EXPECT_EQ((Bytes{0, 128, 255}), load("a.pam").pixels);
    const peer::Picture inks = peer::draw(3, 3, 4, peer::Scene::Soft);
    for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Ppm, ImageFormat::Pgm})
        EXPECT_THROW(written(format, inks), Error);
}

// A sample keeps its bits on the way through any format; of a PNG picture, by the bits that it says are significant.
TEST_F(ImageRows, DeepSamplesComeBackAsTheyWere)
{
    for (const int bits : {9, 10, 12, 15, 16})
        for (const int channels : {1, 3}) {
            const Shape shape{37, 5, channels, bits};
            Raster picture(shape);
            std::vector<uint16_t> samples(shape.rowSamples() * 5);
            for (size_t i = 0; i < samples.size(); ++i)
                samples[i] = static_cast<uint16_t>((i * 40503 + (i % 7 == 0 ? 65535 : 0)) & ((1U << bits) - 1));
            samples[0] = 0;
            samples[1] = static_cast<uint16_t>((1U << bits) - 1);
            std::memcpy(picture.pixels.data(), samples.data(), picture.pixels.size());
            for (const auto& [format, name] :
                 {std::pair(ImageFormat::Png, "a.png"), std::pair(ImageFormat::Pam, "a.pam"),
                  std::pair(channels == 1 ? ImageFormat::Pgm : ImageFormat::Ppm, channels == 1 ? "a.pgm" : "a.ppm")}) {
                MemorySink sink;
                const auto writer = vekpix::makePictureWriter(format, shape, sink);
                writer->writeRows(picture.pixels.data(), shape.rowBytes(), 2);
                writer->writeRows(picture.row(2), shape.rowBytes(), 3);
                writer->finish();
                save(name, sink.bytes());
                const Raster back = readPicture(*vekpix::openPicture(path(name), vekpix::SampleDepth::AsStored));
                EXPECT_EQ(shape, back.shape) << name;
                EXPECT_TRUE(picture.pixels == back.pixels) << name << ' ' << bits;
                const Raster bytes = load(name);
                EXPECT_EQ((Shape{37, 5, channels}), bytes.shape);
                for (size_t i = 0; i < samples.size(); ++i)
                    ASSERT_NEAR(samples[i] * 255.0 / ((1 << bits) - 1), bytes.pixels[i], 0.51) << name << ' ' << bits;
            }
        }
}

TEST_F(ImageRows, DeepTransparencyShowsWhiteInAllBits)
{
    for (const int interlacing : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
        writePng(path("a.png"), {3, 1, 16, PNG_COLOR_TYPE_GRAY_ALPHA, interlacing},
                 {0x12, 0x34, 0xFF, 0xFF, 0x12, 0x34, 0, 0, 0, 0, 0x80, 0});
        const Raster picture = readPicture(*vekpix::openPicture(path("a.png"), vekpix::SampleDepth::AsStored));
        EXPECT_EQ((Shape{3, 1, 1, 16}), picture.shape);
        EXPECT_EQ((Bytes{0x34, 0x12, 0xFF, 0xFF, 0xFF, 0x7F}), picture.pixels);
    }
}

TEST_F(ImageRows, PnmHeadersMayHoldCommentsAndAnyWhiteSpace)
{
    for (const std::string header : {"P5 2 1 255\n", "P5\n2 1\n255\n", "P5\n# made by hand\n2 # columns\n1\n#\n255\n",
                                     "P5\t2\r\n1\v255 ", "P5#x\n2#y\n1#z\r255\n"}) {
        save("a.pgm", header + "\x20\x80");
        EXPECT_EQ((Bytes{0x20, 0x80}), load("a.pgm").pixels) << header;
    }
}

TEST_F(ImageRows, PlainPnmFilesAreReadToo)
{
    save("a.pgm", std::string("P2 # grey\n3 2\n15\n0 15\n 7 # half\n1 2\n14"));
    EXPECT_EQ((Shape{3, 2, 1}), load("a.pgm").shape);
    EXPECT_EQ((Bytes{0, 255, 119, 17, 34, 238}), load("a.pgm").pixels);
    save("a.ppm", std::string("P3\n1 2\n255\n1 2 3\n255 0 9\n"));
    EXPECT_EQ((Shape{1, 2, 3}), load("a.ppm").shape);
    EXPECT_EQ((Bytes{1, 2, 3, 255, 0, 9}), load("a.ppm").pixels);
}

TEST_F(ImageRows, OtherMaximalValuesAreScaledToTheNearest)
{
    save("a.pgm", std::string("P5 4 1 100\n") + "\x01" + "\x32" + "\x64" + "\x65");  // the last one is beyond 100
    EXPECT_EQ((Bytes{3, 128, 255, 255}), load("a.pgm").pixels);
    save("a.pgm", std::string("P5 3 1 65535\n") + std::string({0, 0, '\x80', 0, '\xFF', '\xFF'}));
    EXPECT_EQ((Bytes{0, 128, 255}), load("a.pgm").pixels);
    save("a.ppm", std::string("P6 1 1 1023\n") + std::string({1, '\xFF', 3, '\xFF', 0, 4}));
    EXPECT_EQ((Bytes{127, 255, 1}), load("a.ppm").pixels);
}

TEST_F(ImageRows, APnmReaderGoesBackToItsFirstRow)
{
    save("a.pgm", std::string("P5 2 2 255\nabcd"));
    const std::unique_ptr<RowReader> reader = vekpix::openPicture(path("a.pgm"));
    Bytes pixels(4);
    reader->readRows(pixels.data(), 2, 1);
    ASSERT_TRUE(reader->rewind());
    reader->readRows(pixels.data(), 2, 2);
    EXPECT_EQ((Bytes{'a', 'b', 'c', 'd'}), pixels);
}

TEST_F(ImageRows, DamagedPnmFilesAreErrors)
{
    const std::vector<std::pair<std::string, std::string>> files = {
        {"", "no PPM, PGM or PAM picture"},
        {"P4 1 1\n", "no PPM, PGM or PAM picture"},
        {"hello", "no PPM, PGM or PAM picture"},
        {"P5", "ends before"},
        {"P5 2", "ends before"},
        {"P5 x 1 255\n", "width"},
        {"P5 0 1 255\n", "width"},
        {"P5 2 -1 255\n", "height"},
        {"P5 2 99999999999999999999 255\n", "height"},
        {"P5 2 1 65536\n", "maximal value"},
        {"P5 2 1 0\n", "maximal value"},
        {"P5 2 1 255\na", "ends before"},
        {"P6 16000000 16000000 255\nabc", "ends before"},
        {"P2 2 1 255\n1", "ends before"},
        {"P2 2 1 255\n1 256", "sample"},
        {"P2 2 1 255\n1 x", "sample"},
        {"P7\nWIDTH 2\n", "PAM header"},
        {"P7\nENDHDR\n", "incomplete PAM header"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nENDHDR\n", "ends before"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 65536\nENDHDR\n1", "maximal value"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nENDHDR\n12", "2 channels"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 3\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n1234", "RGB_ALPHA"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 5\nMAXVAL 255\nTUPLTYPE CMYK_ALPHA\nENDHDR\n12345", "CMYK_ALPHA"},
    };
    for (const auto& [bytes, words] : files) {
        save("a.pgm", bytes);
        const std::string error = errorOf("a.pgm");
        EXPECT_EQ(0u, error.find(path("a.pgm"))) << error;
        EXPECT_NE(std::string::npos, error.find(words)) << error;
    }
}

TEST_F(ImageRows, APlainFileTooShortForItsSizeIsRefusedBeforeMemoryIsTakenForIt)
{
    save("a.pgm", std::string("P2 2 2 255\n1 2 3 4"));
    EXPECT_NO_THROW(vekpix::openPicture(path("a.pgm")));
    for (const std::string text : {"P2 2 2 255\n1 2 3 ", "P3 16777216 16777216 255\n1 2 3"}) {
        save("a.pgm", text);
        EXPECT_THROW(vekpix::openPicture(path("a.pgm")), vekpix::Error) << text;
    }
}

TEST_F(ImageRows, SixteenBitPngIsRoundedToEight)
{
    writePng(path("a.png"), {3, 1, 16, PNG_COLOR_TYPE_GRAY}, {0x80, 0x00, 0x7F, 0xFF, 0x12, 0xF0});
    EXPECT_EQ((Shape{3, 1, 1}), load("a.png").shape);
    EXPECT_EQ((Bytes{128, 127, 19}), load("a.png").pixels);  // 0x12F0 / 257 is 18.86
}

TEST_F(ImageRows, FewBitsAndPalettesAreWidened)
{
    writePng(path("a.png"), {10, 1, 1, PNG_COLOR_TYPE_GRAY}, {0xA5, 0x80});
    EXPECT_EQ((Bytes{255, 0, 255, 0, 0, 255, 0, 255, 255, 0}), load("a.png").pixels);
    writePng(path("a.png"), {3, 1, 2, PNG_COLOR_TYPE_GRAY}, {0x1B});
    EXPECT_EQ((Bytes{0, 85, 170}), load("a.png").pixels);
    writePng(path("a.png"), {3, 1, 4, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {{1, 2, 3}, {40, 50, 60}}},
             {0x10, 0x10});
    EXPECT_EQ((Shape{3, 1, 3}), load("a.png").shape);
    EXPECT_EQ((Bytes{40, 50, 60, 1, 2, 3, 40, 50, 60}), load("a.png").pixels);
}

TEST_F(ImageRows, TransparencyShowsWhite)
{
    writePng(path("a.png"), {3, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA}, {10, 20, 30, 255, 10, 20, 30, 0, 0, 100, 255, 128});
    EXPECT_EQ((Shape{3, 1, 3}), load("a.png").shape);
    EXPECT_EQ((Bytes{10, 20, 30, 255, 255, 255, 127, 177, 255}), load("a.png").pixels);
    writePng(path("a.png"), {2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA}, {10, 255, 10, 51});
    EXPECT_EQ((Shape{2, 1, 1}), load("a.png").shape);
    EXPECT_EQ((Bytes{10, 206}), load("a.png").pixels);
    writePng(path("a.png"), {2, 1, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {{1, 2, 3}, {0, 0, 0}}, {255, 51}},
             {0, 1});
    EXPECT_EQ((Bytes{1, 2, 3, 204, 204, 204}), load("a.png").pixels);
    const png_color_16 transparent = {.index = 0, .red = 0, .green = 0, .blue = 0, .gray = 10};
    writePng(path("a.png"), {2, 1, 8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, {}, {}, &transparent}, {10, 11});
    EXPECT_EQ((Bytes{255, 11}), load("a.png").pixels);
}

// Lights with alpha go through PNG and PAM files as they are, and are composed with white where alpha is not wanted.
TEST_F(ImageRows, AlphaIsKeptOnRequest)
{
    const auto kept = [&](const std::string& name, vekpix::SampleDepth depth = vekpix::SampleDepth::Eight) {
        return readPicture(*vekpix::openPicture(path(name), depth, vekpix::Transparency::Kept));
    };
    for (const int bits : {8, 12, 16})
        for (const int channels : {2, 4}) {
            const Shape shape = {23, 6, channels, bits, true};
            Raster picture(shape);
            for (size_t i = 0; i < picture.pixels.size(); ++i)
                picture.pixels[i] = static_cast<uint8_t>(bits == 12 && i % 2 == 1 ? i % 16 : i * 37);
            for (const auto& [format, name] :
                 {std::pair(ImageFormat::Png, "a.png"), std::pair(ImageFormat::Pam, "a.pam")}) {
                MemorySink sink;
                const auto writer = vekpix::makePictureWriter(format, shape, sink);
                writer->writeRows(picture.pixels.data(), shape.rowBytes(), shape.height);
                writer->finish();
                save(name, sink.bytes());
                const Raster back = kept(name, vekpix::SampleDepth::AsStored);
                EXPECT_EQ(shape, back.shape) << name;
                EXPECT_TRUE(picture.pixels == back.pixels) << name << ' ' << bits;
                EXPECT_EQ((Shape{23, 6, channels - 1, 8}), load(name).shape);
            }
            MemorySink sink;
            EXPECT_THROW(vekpix::makePictureWriter(ImageFormat::Ppm, shape, sink), Error);
        }
    save("a.pam", std::string("P7\nWIDTH 3\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nTUPLTYPE GRAYSCALE_ALPHA\nENDHDR\n") +
                      std::string("\x0A\xFF\x0A\x33\x00\x00", 6));
    EXPECT_EQ((Bytes{10, 255, 10, 51, 0, 0}), kept("a.pam").pixels);
    EXPECT_EQ((Bytes{10, 206, 255}), load("a.pam").pixels);
    const Bytes pixels = {10, 20, 30, 255, 10, 20, 30, 0};
    writePng(path("a.png"), {1, 2, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_ADAM7}, pixels);
    EXPECT_EQ(pixels, kept("a.png").pixels);
    writePng(path("a.png"), {2, 1, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {{1, 2, 3}, {0, 0, 0}}, {255, 51}},
             {0, 1});
    EXPECT_EQ((Bytes{1, 2, 3, 255, 0, 0, 0, 51}), kept("a.png").pixels);
    save("a.ppm", std::string("P6 1 1 255\nabc"));
    EXPECT_EQ((Shape{1, 1, 3}), kept("a.ppm").shape);
}

TEST_F(ImageRows, InterlacedPngIsReadWhole)
{
    for (const int width : {1, 5, 8, 37}) {
        const peer::Picture picture = peer::draw(width, 21, 3, peer::Scene::Harsh);
        writePng(path("a.png"), {width, 21, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7}, picture.pixels);
        EXPECT_TRUE(picture.pixels == loadInBands("a.png").pixels) << width;
    }
    const Bytes pixels = {10, 20, 30, 255, 10, 20, 30, 0};
    writePng(path("a.png"), {1, 2, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_ADAM7}, pixels);
    EXPECT_EQ((Bytes{10, 20, 30, 255, 255, 255}), load("a.png").pixels);
}

TEST_F(ImageRows, DamagedPngFilesAreErrors)
{
    const Bytes sound = written(ImageFormat::Png, peer::draw(40, 30, 3, peer::Scene::Harsh));
    for (size_t length = 0; length < sound.size(); length += 1 + sound.size() / 50) {
        save("a.png", std::span(sound).first(length));
        const std::string error = errorOf("a.png");
        EXPECT_EQ(0u, error.find(path("a.png"))) << error;
    }
    Bytes wrong = sound;
    wrong[wrong.size() / 2] ^= 0x55;
    save("a.png", wrong);
    errorOf("a.png");
}

TEST_F(ImageRows, APngFileTooShortForItsPictureIsRefusedBeforeMemoryIsTaken)
{
    writePng(path("a.png"), {1, 1, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7}, {1, 2, 3});
    Bytes file = bytes("a.png");
    const Bytes size = {0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF};
    std::copy(size.begin(), size.end(), file.begin() + 16);
    const auto crc = static_cast<uint32_t>(crc32(0, file.data() + 12, 17));
    for (size_t i = 0; i < 4; ++i) file[29 + i] = static_cast<uint8_t>(crc >> (24 - 8 * i));
    save("a.png", file);
    EXPECT_NE(std::string::npos, errorOf("a.png").find("too short"));
}

TEST_F(ImageRows, TheExtensionTellsTheFormat)
{
    EXPECT_EQ(ImageFormat::Png, vekpix::formatOf("a/b.PNG"));
    EXPECT_EQ(ImageFormat::Ppm, vekpix::formatOf("b.ppm"));
    EXPECT_EQ(ImageFormat::Pgm, vekpix::formatOf("b.x.pgm"));
    EXPECT_EQ(ImageFormat::Pam, vekpix::formatOf("b.pam"));
    EXPECT_EQ(ImageFormat::Jpeg, vekpix::formatOf("b.jpg"));
    EXPECT_EQ(ImageFormat::Jpeg, vekpix::formatOf("b.JPEG"));
    EXPECT_EQ(ImageFormat::Dds, vekpix::formatOf("b.dds"));
    EXPECT_EQ(ImageFormat::Pfm, vekpix::formatOf("b.pfm"));
    EXPECT_THROW(vekpix::formatOf("b"), Error);
    EXPECT_THROW(vekpix::formatOf("b.gif"), Error);
    EXPECT_THROW(vekpix::openPicture(path("missing.png")), Error);
    EXPECT_THROW(vekpix::openPicture(path("a.jpg")), Error);
    fs::create_directory(path("folder.ppm"));
    EXPECT_THROW(vekpix::openPicture(path("folder.ppm")), Error);
}

TEST_F(ImageRows, AnOutputFileAppearsWhenItIsComplete)
{
    save("a.bin", std::string("old"));
    {
        vekpix::OutputFile file(path("a.bin"));
        file.write(Bytes{1, 2});
    }
    EXPECT_EQ("old", contents("a.bin"));
    vekpix::OutputFile file(path("a.bin"));
    Bytes expected;
    for (const size_t length : {size_t{1}, size_t{70000}, size_t{65536}, size_t{3}, size_t{65535}}) {
        const Bytes part(length, static_cast<uint8_t>(length));
        file.write(part);
        expected.insert(expected.end(), part.begin(), part.end());
    }
    EXPECT_EQ("old", contents("a.bin"));
    file.commit();
    EXPECT_TRUE(expected == bytes("a.bin"));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
}

TEST_F(ImageRows, AnOutputFileReplacesWhatALinkLeadsTo)
{
    fs::create_directory(path("folder"));
    save("folder/a.bin", std::string("old"));
    fs::create_symlink("folder/a.bin", path("link.bin"));
    vekpix::OutputFile file(path("link.bin"));
    file.write(Bytes{'n', 'e', 'w'});
    file.commit();
    EXPECT_TRUE(fs::is_symlink(path("link.bin")));
    EXPECT_EQ("new", contents("folder/a.bin"));
}

TEST_F(ImageRows, AnOutputFileNeedsItsFolderAndMayBeADevice)
{
    EXPECT_THROW(vekpix::OutputFile(path("missing/a.bin")), Error);
    vekpix::OutputFile null("/dev/null");
    null.write(Bytes{1});
    null.commit();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    vekpix::OutputFile full("/dev/full");
    full.write(Bytes{1});
    EXPECT_THROW(full.commit(), Error);
}
