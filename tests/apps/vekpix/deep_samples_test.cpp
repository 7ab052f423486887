// Sequential files of 12-bit samples, here and by an independent codec.
#include <gtest/gtest.h>

#include <array>

#include "dicom_peer.h"
#include "error.h"
#include "image/depth_rows.h"
#include "image/formats.h"
#include "jpeg/decoder.h"
#include "jpeg/encoder.h"
#include "jpeg/marker_reader.h"
#include "jpeg/transcoder.h"

using support::largestDifference;
using support::Raster;
using support::sampleOf;
using support::Shape;
using vekpix::jpeg::ChromaSampling;
using vekpix::jpeg::DecodeOptions;
using vekpix::jpeg::EncodeOptions;
using vekpix::jpeg::Upsampling;

namespace {

class DeepSamples : public support::DicomTest {};

std::vector<uint8_t> encode(const Raster& picture, const EncodeOptions& options)
{
    vekpix::MemoryRows rows(picture);
    vekpix::MemorySink sink;
    vekpix::jpeg::encode(rows, sink, options);
    return sink.bytes();
}

Raster decode(std::span<const uint8_t> file, const DecodeOptions& options = {})
{
    vekpix::jpeg::Decoder decoder(file, options);
    Raster picture(decoder.shape());
    int y = 0;
    while (const int rows = decoder.readBand(picture.row(y), picture.shape.rowBytes())) y += rows;
    EXPECT_EQ(picture.shape.height, y);
    return picture;
}

double psnr(const Raster& a, const Raster& b)
{
    EXPECT_EQ(a.shape, b.shape);
    double squares = 0;
    const size_t samples = a.pixels.size() / a.shape.sampleBytes();
    for (size_t i = 0; i < samples; ++i) squares += std::pow(sampleOf(a, i) - sampleOf(b, i), 2);
    const double largest = (1 << a.shape.bits) - 1;
    return 10 * std::log10(largest * largest * static_cast<double>(samples) / squares);
}

}  // namespace

TEST_F(DeepSamples, ThePeerDecodesWhatIsCodedHereToTheSamePixels)
{
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(8, 8), std::pair(83, 61)})
        for (const int quality : {30, 90, 100}) {
            EncodeOptions options;
            options.quality = quality;
            options.restartInterval = quality == 90 ? 3 : 0;
            options.threads = quality == 100 ? 2 : 1;
            const Raster picture = support::drawDeep({width, height, 1, 12});
            const std::vector<uint8_t> file = encode(picture, options);
            // Samples here are cut towards zero, the peer's are rounded.
            EXPECT_LE(largestDifference(peerDecode(file, picture.shape, extended), decode(file)), 2);
            EXPECT_LE(largestDifference(picture, decode(file)), quality == 100 ? 4 : 4096);
        }
}

TEST_F(DeepSamples, WhatThePeerCodesComesOutHereAsItDoesThere)
{
    for (const auto& [width, height] : {std::pair(5, 3), std::pair(83, 61), std::pair(64, 200)})
        for (const std::string quality : {"60", "90", "100"}) {
            const Raster picture = support::drawDeep({width, height, 1, 12}, 40);
            const std::vector<uint8_t> file = peerEncode(picture, {"+ee", "+q", quality});
            vekpix::jpeg::MarkerReader markers(file);
            ASSERT_TRUE(markers.advanceToScan());
            EXPECT_EQ(12, markers.frame().bits);
            EXPECT_FALSE(markers.frame().baseline);
            EXPECT_LE(largestDifference(peerDecode(file, picture.shape, extended), decode(file)), 2);
            EXPECT_TRUE(decode(file).pixels == decode(file, {1, 2}).pixels);
        }
}

TEST_F(DeepSamples, ColoursAndInksOfEverySamplingComeBack)
{
    for (const int channels : {3, 4})
        for (const bool transform : {true, false})
            for (const ChromaSampling sampling :
                 {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420}) {
                const Raster picture = support::drawDeep({83, 61, channels, 12});
                EncodeOptions options;
                options.quality = 100;
                options.colourTransform = transform;
                options.sampling = sampling;
                const std::vector<uint8_t> file = encode(picture, options);
                DecodeOptions reading;
                reading.inks = true;
                const Raster alone = decode(file, reading);
                EXPECT_GT(psnr(picture, alone), sampling == ChromaSampling::Full444 || !transform ? 66 : 30);
                reading.threads = 3;
                EXPECT_TRUE(alone.pixels == decode(file, reading).pixels);
                reading.upsampling = Upsampling::Box;
                EXPECT_GT(psnr(picture, decode(file, reading)), 28);
                EXPECT_EQ((Shape{83, 61, 3, 12}), decode(file).shape);
            }
}

// Smooth pictures, which 8 bits show nearly as well: the same steps for the same chroma, whatever the depth.
TEST_F(DeepSamples, DecodeToThePictureOfEightBitsThatTheyAre)
{
    for (const Upsampling upsampling : {Upsampling::Smooth, Upsampling::Box})
        for (const ChromaSampling sampling :
             {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420})
            for (const int scale : {1, 2, 4, 8}) {
                const Raster deep = support::drawDeep({83, 61, 3, 12}, 0);
                vekpix::DepthRows narrowed(std::make_unique<vekpix::MemoryRows>(deep), 8);
                EncodeOptions options;
                options.quality = 98;
                options.sampling = sampling;
                const DecodeOptions reading{scale, 1, upsampling};
                const Raster fromDeep = decode(encode(deep, options), reading);
                const Raster fromNarrow = decode(encode(readPicture(narrowed), options), reading);
                vekpix::MemoryRows rows(fromDeep);
                vekpix::DepthRows result(std::make_unique<vekpix::MemoryRows>(rows), 8);
                EXPECT_LE(largestDifference(fromNarrow, readPicture(result)), scale == 1 ? 5 : 9)
                    << scale << ' ' << static_cast<int>(sampling);
            }
}

TEST_F(DeepSamples, OnlyEightAndTwelveBitsAreCodedAndTheseInOneScan)
{
    for (const int bits : {9, 11, 13, 16}) EXPECT_THROW(encode(support::drawDeep({8, 8, 1, bits}), {}), vekpix::Error);
    const Raster picture = support::drawDeep({8, 8, 1, 12});
    EncodeOptions progressive;
    progressive.progressive = true;
    EXPECT_THROW(encode(picture, progressive), vekpix::Error);
    vekpix::MemorySink sink;
    EXPECT_THROW(vekpix::jpeg::transcode(encode(picture, {}), sink, {}), vekpix::Error);
}

TEST_F(DeepSamples, TheCommandsKeepTwelveBitsInPngAndPnmFiles)
{
    EncodeOptions options;
    options.sampling = ChromaSampling::Full444;
    for (const int channels : {1, 3}) {
        const Raster picture = support::drawDeep({61, 45, channels, 12});
        for (const std::string& name : {std::string("in.png"), std::string(channels == 1 ? "in.pgm" : "in.ppm")}) {
            vekpix::MemorySink sink;
            const auto writer = vekpix::makePictureWriter(vekpix::formatOf(name), picture.shape, sink);
            writer->writeRows(picture.pixels.data(), picture.shape.rowBytes(), 45);
            writer->finish();
            save(name, sink.bytes());
            ASSERT_EQ(0,
                      vekpix({"encode", path(name), path("out.jpg"), "--precision", "12", "--sampling", "444"}).status);
            EXPECT_EQ(bytes("out.jpg"), encode(picture, options));
            EXPECT_NE(std::string::npos, vekpix({"info", path("out.jpg")}).output.find("61 x 45, 12 bits"));
            ASSERT_EQ(0, vekpix({"decode", path("out.jpg"), path(name)}).status);
            const auto back = vekpix::openPicture(path(name), vekpix::SampleDepth::AsStored);
            EXPECT_TRUE(decode(bytes("out.jpg")).pixels == readPicture(*back).pixels);
            const support::Outcome same = vekpix({"compare", path("out.jpg"), path(name)});
            EXPECT_NE(std::string::npos, same.output.find("largest difference 0")) << same.output << same.errors;
        }
    }
}
