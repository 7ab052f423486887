// What the JPEG 2000 encoder writes: independent decoders and our own find every sample in lossless files, and in lossy
// ones as many bytes, or as good a picture, as were asked for.
#include <gtest/gtest.h>

#include "error.h"
#include "image/memory_rows.h"
#include "jpeg2000/encoder.h"
#include "jpeg2000_peer.h"
#include "support/sanitizers.h"

using support::decodeJpeg2000;
using support::drawDeep;
using support::psnr;
using support::Raster;
using vekpix::Shape;
using vekpix::jpeg2000::EncodeOptions;
using vekpix::jpeg2000::Progression;

namespace {

constexpr Progression progressions[] = {Progression::Lrcp, Progression::Rlcp, Progression::Rpcl, Progression::Pcrl,
                                        Progression::Cprl};

std::vector<uint8_t> encode(const Raster& picture, const EncodeOptions& options)
{
    vekpix::MemoryRows rows(picture);
    vekpix::MemorySink file;
    vekpix::jpeg2000::encode(rows, file, options);
    return file.bytes();
}

EncodeOptions bare()
{
    EncodeOptions options;
    options.jp2 = false;
    return options;
}

class Jpeg2000Encode : public support::Jpeg2000Test {
protected:
    void expectLossless(const Raster& picture, const EncodeOptions& options)
    {
        const Raster decoded = decodeJpeg2000(encode(picture, options));
        EXPECT_EQ(picture.shape, decoded.shape);
        EXPECT_TRUE(picture.pixels == decoded.pixels);
    }
    static std::string nameOf(const EncodeOptions& options) { return options.jp2 ? "b.jp2" : "b.j2k"; }

    void expectLosslessForFirstPeer(const Raster& picture, const EncodeOptions& options)
    {
        expectLossless(picture, options);
        const Raster first = openJpegDecodes(encode(picture, options), {}, nameOf(options));
        EXPECT_EQ(picture.shape, first.shape);
        EXPECT_TRUE(picture.pixels == first.pixels) << "first peer";
    }
    void expectLosslessForPeers(const Raster& picture, const EncodeOptions& options)
    {
        expectLosslessForFirstPeer(picture, options);
        const Raster second = grokDecodes(encode(picture, options), nameOf(options));
        EXPECT_EQ(picture.shape, second.shape);
        EXPECT_TRUE(picture.pixels == second.pixels) << "second peer";
    }
};

const Raster& colours()
{
    static const Raster picture = drawDeep({197, 151, 3, 8});
    return picture;
}

// Noise of the largest values: transformed samples become as large as they can.
Raster noise(const Shape& shape)
{
    Raster picture(shape);
    uint32_t state = 1;
    for (size_t i = 0; i < picture.pixels.size(); i += shape.sampleBytes()) {
        state = state * 1664525 + 1013904223;
        const int value = (state >> 24) % 2 != 0 ? (1 << shape.bits) - 1 : 0;
        picture.pixels[i] = static_cast<uint8_t>(value);
        if (shape.sampleBytes() == 2)
            picture.pixels[i + 1] = static_cast<uint8_t>(value >> 8);
    }
    return picture;
}

}  // namespace

TEST_F(Jpeg2000Encode, LosslessWithEveryBlockStyle)
{
    EncodeOptions options = bare();
    options.blockSizeLog = 5;
    for (options.blockStyle = 0; options.blockStyle < 64; ++options.blockStyle) {
        SCOPED_TRACE(options.blockStyle);
        options.layers = 1 + options.blockStyle % 3;
        expectLossless(drawDeep({97, 71, 3, 8}, 20), options);
        expectLossless(drawDeep({43, 91, 1, 16}, 1000), options);
    }
    for (const int style : {0, 1, 2, 4, 8, 16, 32, 63, 5, 21, 37, 58}) {
        SCOPED_TRACE(style);
        options.blockStyle = style;
        expectLosslessForPeers(colours(), options);
        options.layers = 7;
        expectLosslessForPeers(colours(), options);
        options.layers = 1;
    }
}

TEST_F(Jpeg2000Encode, LosslessInEverySmallSize)
{
    for (int height = 1; height <= 17; ++height)
        for (int width = 1; width <= 17; width += support::underSanitizer ? 4 : 1) {
            SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
            EncodeOptions options;
            options.levels = (width + height) % 7;
            expectLossless(drawDeep({width, height, width % 2 != 0 ? 1 : 3, 8}), options);
        }
    expectLosslessForPeers(drawDeep({1, 1, 3, 8}), EncodeOptions());
    expectLosslessForPeers(drawDeep({1, 70, 1, 8}), EncodeOptions());
}

TEST_F(Jpeg2000Encode, LosslessOfEveryDepthAndOfExtremeSamples)
{
    for (const int bits : {8, 9, 10, 12, 14, 16})
        for (const int channels : {1, 3}) {
            SCOPED_TRACE(std::to_string(bits) + " bits");
            expectLosslessForPeers(drawDeep({61, 83, channels, bits}, 100), EncodeOptions());
            expectLossless(noise({67, 55, channels, bits}), EncodeOptions());
        }
}

TEST_F(Jpeg2000Encode, LosslessInTilesLayersBlocksAndProgressions)
{
    int number = 0;
    for (const Progression progression : progressions)
        for (const auto& [width, height] : {std::pair(0, 0), std::pair(64, 64), std::pair(61, 47), std::pair(197, 9)}) {
            EncodeOptions options = bare();
            options.progression = progression;
            options.tileWidth = width;
            options.tileHeight = height;
            options.layers = 1 + number % 12;
            options.blockSizeLog = 2 + number % 5;
            options.levels = number % 8;
            options.jp2 = number % 2 == 0;
            ++number;
            SCOPED_TRACE(number);
            // Of narrow tiles with many levels the second peer misreads the first one's files, too.
            if (width == 0 || width == 64)
                expectLosslessForPeers(colours(), options);
            else
                expectLosslessForFirstPeer(colours(), options);
        }
}

TEST_F(Jpeg2000Encode, MoreLevelsThanThePictureHas)
{
    EncodeOptions options;
    options.levels = 32;
    expectLossless(colours(), options);
    options.psnr = 40;
    EXPECT_GT(psnr(colours(), decodeJpeg2000(encode(colours(), options))), 39.5);
}

TEST_F(Jpeg2000Encode, RatesAreKeptAndNearlyUsed)
{
    for (const double rate : {0.3, 1.0, 2.0, 4.0})
        for (const int tile : {0, 100})
            for (const int layers : {1, 6}) {
                EncodeOptions options;
                options.bitsPerPixel = rate;
                options.tileWidth = options.tileHeight = tile;
                options.layers = layers;
                const auto size = static_cast<double>(encode(colours(), options).size());
                const double wanted = rate / 8 * colours().shape.width * colours().shape.height;
                EXPECT_LE(size, wanted);
                EXPECT_GE(size, wanted * 0.95);
            }
}

TEST_F(Jpeg2000Encode, AsGoodAsThePeerAtItsRate)
{
    for (const char* ratio : {"48", "24", "12", "6"}) {
        const std::vector<uint8_t> peers = openJpeg(colours(), {"-I", "-r", ratio});
        EncodeOptions options = bare();
        options.bitsPerPixel = 8.0 * static_cast<double>(peers.size()) / colours().shape.width / colours().shape.height;
        const std::vector<uint8_t> ours = encode(colours(), options);
        EXPECT_LE(ours.size(), peers.size());
        EXPECT_GE(psnr(colours(), openJpegDecodes(ours)), psnr(colours(), openJpegDecodes(peers)) - 0.2) << ratio;
    }
}

TEST_F(Jpeg2000Encode, AllDecodersSeeTheSameLossyPicture)
{
    for (const int style : {0, 1, 4, 5, 63}) {
        EncodeOptions options = bare();
        options.bitsPerPixel = 1.5;
        options.blockStyle = style;
        options.layers = 3;
        const std::vector<uint8_t> file = encode(colours(), options);
        const Raster decoded = decodeJpeg2000(file);
        EXPECT_LE(support::largestDifference(decoded, openJpegDecodes(file)), 1) << style;
        EXPECT_LE(support::largestDifference(decoded, grokDecodes(file)), 1) << style;
    }
}

TEST_F(Jpeg2000Encode, TheQualityAskedForIsReachedClosely)
{
    for (const int bits : {8, 12, 16})
        for (const double wanted : {30.0, 38.0, 46.0}) {
            const Raster picture = drawDeep({197, 151, 3, bits}, 2 << (bits - 8));
            EncodeOptions options;
            options.psnr = wanted;
            options.layers = 2;
            const double reached = psnr(picture, decodeJpeg2000(encode(picture, options)));
            EXPECT_GT(reached, wanted - 0.5) << bits << " bits";
            EXPECT_LT(reached, wanted + 1) << bits << " bits";
        }
    EncodeOptions options;
    options.psnr = 60;
    EXPECT_GT(psnr(colours(), decodeJpeg2000(encode(colours(), options))), 60);
}

TEST_F(Jpeg2000Encode, EveryLayerImprovesThePicture)
{
    for (const bool lossless : {false, true}) {
        EncodeOptions options;
        options.layers = 5;
        if (!lossless)
            options.bitsPerPixel = 2;
        const std::vector<uint8_t> file = encode(colours(), options);
        double before = 0;
        for (int layer = 1; layer <= 5; ++layer) {
            const double now = psnr(colours(), decodeJpeg2000(file, {.layers = layer}));
            EXPECT_GT(now, before + 0.5) << layer;
            before = now;
        }
    }
}

TEST_F(Jpeg2000Encode, ThreadsDoNotChangeTheFile)
{
    EncodeOptions options;
    options.bitsPerPixel = 1;
    options.layers = 3;
    const std::vector<uint8_t> file = encode(colours(), options);
    options.threads = 3;
    EXPECT_TRUE(file == encode(colours(), options));
}

TEST_F(Jpeg2000Encode, TheCommandTakesItsOptions)
{
    savePnm("in.ppm", peer::draw(97, 75, 3, peer::Scene::Soft));
    for (const char* output : {"out.jp2", "out.j2k", "out.j2c"}) {
        const support::Outcome outcome = vekpix(
            {"encode", path("in.ppm"), path(output), "--levels", "3", "--block", "32", "--tiles", "50x40", "--layers",
             "2", "--progression", "CPRL", "--bypass", "--reset", "--termall", "--causal", "--pterm", "--segsym"});
        ASSERT_EQ(0, outcome.status) << outcome.errors;
        ASSERT_EQ(0, vekpix({"decode", path(output), path("back.ppm")}).status);
        EXPECT_EQ(contents("in.ppm").substr(contents("in.ppm").find("255\n")),
                  contents("back.ppm").substr(contents("back.ppm").find("255\n")));
        const support::Outcome equal = vekpix({"compare", path("in.ppm"), path(output)});
        EXPECT_NE(std::string::npos, equal.output.find("inf")) << equal.errors;
    }
    ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("out.jp2"), "--rate", "2"}).status);
    EXPECT_LE(bytes("out.jp2").size(), 97u * 75 * 2 / 8);
    ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("out.jp2"), "--psnr", "35", "--threads", "2"}).status);
}

TEST_F(Jpeg2000Encode, WrongOptionsAreRefusedInOneLine)
{
    savePnm("in.ppm", peer::draw(9, 7, 3, peer::Scene::Soft));
    const auto refused = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"encode", path("in.ppm"), path("out.jp2")});
        failure(options);
        EXPECT_FALSE(std::filesystem::exists(path("out.jp2")));
    };
    refused({"--lossless", "--rate", "1"});
    refused({"--psnr", "40", "--rate", "1"});
    refused({"--tiles", "64"});
    refused({"--tiles", "0x64"});
    refused({"--tiles", "64x64x64"});
    refused({"--block", "128"});
    refused({"--progression", "LCRP"});
    refused({"--quality", "80"});
    save("inks.pam", std::string("P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\n1234"));
    failure({"encode", path("inks.pam"), path("out.jp2")});
}
