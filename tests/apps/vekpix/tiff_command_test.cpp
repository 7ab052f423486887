// TIFF files at the command line, beside the packaged TIFF tools: what either side writes the other reads exactly.
#include <gtest/gtest.h>

#include <string>

#include "command_support.h"
#include "support/sanitizers.h"
#include "tiff_files.h"

using support::Bytes;
using support::Outcome;
using vekpix::Raster;

namespace {

class TiffCommand : public support::CommandTest {
protected:
    void runs(const std::vector<std::string>& arguments) const
    {
        const Outcome outcome = run(arguments);
        ASSERT_EQ(0, outcome.status) << testing::PrintToString(arguments) << outcome.output << outcome.errors;
    }

    void saveRaster(const std::string& name, const Raster& picture) const
    {
        std::string text = (picture.shape.channels == 1 ? "P5\n" : "P6\n") + std::to_string(picture.shape.width) + ' ' +
                           std::to_string(picture.shape.height) + (picture.shape.bits == 8 ? "\n255\n" : "\n65535\n");
        for (size_t i = 0; i < picture.pixels.size(); ++i)
            text += static_cast<char>(picture.pixels[picture.shape.bits == 8 ? i : i ^ 1]);  // high bytes first
        save(name, text);
    }

    // Samples without a header, low bytes first.
    void saveRaw(const std::string& name, const Raster& picture) const { save(name, picture.pixels); }

    // The packaged tool's file of `raw`.
    void makePeer(const std::string& name, const Raster& picture, const std::string& compression, int rows) const
    {
        const vekpix::Shape& shape = picture.shape;
        runs({"raw2tiff", "-M", "-w", std::to_string(shape.width), "-l", std::to_string(shape.height), "-b",
              std::to_string(shape.channels), "-d", shape.bits == 8 ? "byte" : "short", "-p",
              shape.channels == 3 ? "rgb" : "minisblack", "-c", compression, "-r", std::to_string(rows), path("raw"),
              path(name)});
    }
};

}  // namespace

TEST_F(TiffCommand, FilesGoBothWaysExactly)
{
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(61, 45), std::pair(400, 150)})
        for (const int channels : {1, 3})
            for (const int bits : {8, 16}) {
                if (support::underSanitizer && width != 61)
                    continue;
                SCOPED_TRACE(testing::Message() << width << " x " << height << " x " << channels << ", " << bits);
                const Raster picture = support::drawnRaster(width, height, channels, bits);
                saveRaster("in.ppm", picture);
                saveRaw("raw", picture);
                for (const std::string compression : {"none", "packbits"}) {
                    makePeer("peer.tif", picture, compression, 20);
                    std::vector<std::string> encode = {"encode", path("in.ppm"), path("ours.tif")};
                    if (compression == "packbits")
                        encode.push_back("--packbits");
                    ASSERT_EQ(0, vekpix(encode).status);
                    runs({"tiffcmp", "-t", path("peer.tif"), path("ours.tif")});
                    encode.push_back("--big-endian");
                    ASSERT_EQ(0, vekpix(encode).status);
                    runs({"tiffcmp", "-t", path("peer.tif"), path("ours.tif")});
                    const std::string out = channels == 1 ? "out.pgm" : "out.ppm";
                    for (const std::string order : {"-L", "-B"}) {
                        runs({"tiffcp", order, "-c", compression, "-r", "7", path("peer.tif"), path("copy.tif")});
                        ASSERT_EQ(0, vekpix({"decode", path("copy.tif"), path(out)}).status);
                        EXPECT_TRUE(contents("in.ppm") == contents(out));
                    }
                }
            }
}

TEST_F(TiffCommand, ReadsChannelsThatStandApart)
{
    const Raster picture = support::drawnRaster(61, 45, 3, 8);
    saveRaster("in.ppm", picture);
    saveRaw("raw", picture);
    makePeer("peer.tif", picture, "none", 10);
    for (const std::string compression : {"none", "packbits"}) {
        runs({"tiffcp", "-c", compression, "-p", "separate", "-r", "7", path("peer.tif"), path("copy.tif")});
        ASSERT_EQ(0, vekpix({"decode", path("copy.tif"), path("out.ppm")}).status);
        EXPECT_TRUE(picture.pixels == loadPnm("out.ppm").pixels);
        const Outcome comparison = vekpix({"compare", path("in.ppm"), path("copy.tif")});
        EXPECT_NE(std::string::npos, comparison.output.find("all       PSNR    inf dB  largest difference 0"));
    }
}

TEST_F(TiffCommand, TheToolsFindNothingWrongInOurFiles)
{
    saveRaster("in.ppm", support::drawnRaster(300, 400, 3, 16));
    for (const std::string option : {"--packbits", "--big-endian"}) {
        ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("out.tiff"), option}).status);
        const Outcome info = run({"tiffinfo", "-D", path("out.tiff")});
        EXPECT_EQ(0, info.status);
        EXPECT_EQ("", info.errors);
        for (const char* words : {"Image Width: 300 Image Length: 400", "Bits/Sample: 16", "Samples/Pixel: 3",
                                  "Photometric Interpretation: RGB color", "Planar Configuration: single image plane"})
            EXPECT_NE(std::string::npos, info.output.find(words)) << info.output;
        EXPECT_EQ(option == "--packbits", info.output.find("Compression Scheme: PackBits") != std::string::npos);
    }
}

TEST_F(TiffCommand, PngAndOddDepthsGoThroughTiff)
{
    saveRaster("in.ppm", support::drawnRaster(50, 40, 3, 16));
    ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("a.tif"), "--packbits"}).status);
    ASSERT_EQ(0, vekpix({"decode", path("a.tif"), path("a.png")}).status);
    ASSERT_EQ(0, vekpix({"encode", path("a.png"), path("b.tif"), "--packbits"}).status);
    EXPECT_EQ(contents("a.tif"), contents("b.tif"));
    save("twelve.pgm", std::string("P5 2 1 4095\n\x0F\xFF\x00\x00", 16));
    ASSERT_EQ(0, vekpix({"encode", path("twelve.pgm"), path("twelve.tif")}).status);
    ASSERT_EQ(0, vekpix({"decode", path("twelve.tif"), path("out.pgm")}).status);
    EXPECT_EQ(std::string("P5\n2 1\n65535\n\xFF\xFF\x00\x00", 17), contents("out.pgm"));
}

TEST_F(TiffCommand, WhatIsNotReadGivesOneLine)
{
    saveRaw("raw", support::drawnRaster(61, 45, 3, 8));
    makePeer("peer.tif", support::drawnRaster(61, 45, 3, 8), "none", 10);
    runs({"tiffcp", "-c", "lzw", path("peer.tif"), path("lzw.tif")});
    runs({"tiffcp", "-t", path("peer.tif"), path("tiles.tif")});
    runs({"tiffcp", "-8", path("peer.tif"), path("big.tif")});
    const std::string whole = contents("peer.tif");
    save("cut.tif", whole.substr(0, whole.size() / 2));
    save("text.tif", std::string("text"));
    for (const auto& [name, words] : std::map<std::string, std::string>{{"lzw", "compression 5"},
                                                                        {"tiles", "tiles"},
                                                                        {"big", "BigTIFF"},
                                                                        {"cut", "damaged TIFF file"},
                                                                        {"text", "first bytes"},
                                                                        {"missing", "cannot read"}}) {
        const std::string line = failure({"decode", path(name + ".tif"), path("out.png")});
        EXPECT_NE(std::string::npos, line.find(words)) << line;
        EXPECT_NE(std::string::npos, line.find(path(name + ".tif"))) << line;
        EXPECT_FALSE(std::filesystem::exists(path("out.png")));
    }
    save("inks.pam", std::string("P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\nabcd"));
    EXPECT_NE(std::string::npos, failure({"encode", path("inks.pam"), path("out.tif")}).find("inks"));
    EXPECT_NE(std::string::npos, failure({"encode", path("peer.tif"), path("out.tif")}).find("must be a PNG"));
    failure({"encode", "--quality", "3", path("inks.pam"), path("out.tif")});
    EXPECT_FALSE(std::filesystem::exists(path("out.tif")));
}

TEST_F(TiffCommand, InfoTellsWhatAFileHolds)
{
    saveRaster("in.pgm", support::drawnRaster(61, 45, 1, 8));
    ASSERT_EQ(0, vekpix({"encode", path("in.pgm"), path("out.tif"), "--packbits"}).status);
    const Outcome outcome = vekpix({"info", path("out.tif")});
    EXPECT_EQ(0, outcome.status);
    EXPECT_NE(std::string::npos, outcome.output.find("read as 61 x 45, 8 bits, grey, PackBits")) << outcome.output;
}

TEST_F(TiffCommand, PeakMemoryStaysBelowTheRawPictureAnd64Mebibytes)
{
    const Raster picture = support::drawnRaster(3000, 2000, 3, 8);
    const long allowed = static_cast<long>(picture.pixels.size() >> 10) + 64 * 1024;
    saveRaster("in.ppm", picture);
    for (const bool packed : {false, true}) {
        std::vector<std::string> encode = {"encode", path("in.ppm"), path("large.tif")};
        if (packed)
            encode.push_back("--packbits");
        const Outcome encoded = vekpix(encode);
        const Outcome decoded = vekpix({"decode", path("large.tif"), path("out.ppm")});
        EXPECT_EQ(0, encoded.status);
        EXPECT_EQ(0, decoded.status);
        if (!support::underSanitizer) {
            EXPECT_LT(encoded.peakKilobytes, 48 * 1024);  // a few strips
            EXPECT_LT(decoded.peakKilobytes, allowed);
        }
    }
}
