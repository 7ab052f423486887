// Lossless files: every pixel comes back, here and by an independent codec, from files of either.
#include <gtest/gtest.h>

#include "dicom_peer.h"
#include "error.h"
#include "image/formats.h"
#include "jpeg/decoder.h"
#include "jpeg/encoder.h"
#include "jpeg/marker_reader.h"
#include "jpeg/markers.h"
#include "jpeg/transcoder.h"

using support::Raster;
using support::sampleOf;
using support::Shape;
using vekpix::jpeg::DecodeOptions;
using vekpix::jpeg::EncodeOptions;

namespace {

class Lossless : public support::DicomTest {};

using Bytes = std::vector<uint8_t>;

EncodeOptions options(int predictor, int pointTransform = 0, int restartRows = 0)
{
    EncodeOptions result;
    result.lossless = true;
    result.predictor = predictor;
    result.pointTransform = pointTransform;
    result.restartInterval = restartRows;
    return result;
}

Bytes encode(const Raster& picture, const EncodeOptions& options)
{
    vekpix::MemoryRows rows(picture);
    vekpix::MemorySink sink;
    vekpix::jpeg::encode(rows, sink, options);
    return sink.bytes();
}

Raster decode(std::span<const uint8_t> file, DecodeOptions options = {})
{
    options.inks = true;
    vekpix::jpeg::Decoder decoder(file, options);
    Raster picture(decoder.shape());
    int y = 0;
    while (const int rows = decoder.readBand(picture.row(y), picture.shape.rowBytes())) y += rows;
    EXPECT_EQ(picture.shape.height, y);
    return picture;
}

// Full-range noise: every category of differences.
Raster noise(const Shape& shape)
{
    Raster picture(shape);
    uint32_t random = 99;
    const unsigned largest = (1U << shape.bits) - 1;
    for (size_t i = 0; i < picture.pixels.size(); i += shape.sampleBytes()) {
        random = random * 1664525 + 1013904223;
        const unsigned value = random >> 29 == 0 ? 0 : random >> 29 == 1 ? largest : (random >> 8) & largest;
        picture.pixels[i] = static_cast<uint8_t>(value);
        if (shape.bits > 8)
            picture.pixels[i + 1] = static_cast<uint8_t>(value >> 8);
    }
    return picture;
}

Raster withoutLowBits(Raster picture, int bits)
{
    for (size_t i = 0; i < picture.pixels.size(); i += picture.shape.sampleBytes()) {
        const int value = sampleOf(picture, i / picture.shape.sampleBytes()) >> bits << bits;
        picture.pixels[i] = static_cast<uint8_t>(value);
        if (picture.shape.bits > 8)
            picture.pixels[i + 1] = static_cast<uint8_t>(value >> 8);
    }
    return picture;
}

std::string errorOf(std::span<const uint8_t> file)
{
    try {
        decode(file);
    } catch (const vekpix::Error& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST_F(Lossless, EveryDepthPredictorAndColourComesBackHere)
{
    for (int bits = 8; bits <= 16; ++bits)
        for (int predictor = 1; predictor <= 7; ++predictor)
            for (const int channels : {1, 3, 4})
                for (const auto& [width, height] : {std::pair(1, 1), std::pair(1, 9), std::pair(37, 21)})
                    for (const bool noisy : {false, true}) {
                        const Shape shape{width, height, channels, bits};
                        const Raster picture = noisy ? noise(shape) : support::drawDeep(shape);
                        for (const int restart : {0, 1, 4}) {
                            const Raster back = decode(encode(picture, options(predictor, 0, restart)));
                            ASSERT_EQ(shape, back.shape);
                            ASSERT_TRUE(picture.pixels == back.pixels)
                                << bits << " bits, predictor " << predictor << ", restart " << restart;
                        }
                        const int low = bits / 2;
                        ASSERT_TRUE(withoutLowBits(picture, channels == 4 ? 0 : low).pixels ==
                                    decode(encode(picture, options(predictor, channels == 4 ? 0 : low))).pixels);
                    }
}

TEST_F(Lossless, ThePeerDecodesEveryFileToThePixelsThatWereCoded)
{
    for (const int bits : {8, 9, 12, 16})
        for (const int channels : {1, 3})
            for (int predictor = 1; predictor <= 7; ++predictor) {
                const bool noisy = predictor % 2 == 0;
                const Shape shape{61, 33, channels, bits};
                const Raster picture = noisy ? noise(shape) : support::drawDeep(shape);
                const Bytes file = encode(picture, options(predictor, 0, predictor > 4 ? 5 : 0));
                SCOPED_TRACE(std::to_string(bits) + " bits, predictor " + std::to_string(predictor));
                EXPECT_TRUE(picture.pixels == peerDecode(file, shape, lossless).pixels);
            }
}

TEST_F(Lossless, FilesOfThePeerDecodeToThePixelsThatItCoded)
{
    for (const int bits : {8, 12, 16})
        for (const int channels : {1, 3})
            for (int predictor = 1; predictor <= 7; ++predictor) {
                const bool noisy = predictor % 2 == 1;
                const Shape shape{61, 33, channels, bits};
                const Raster picture = noisy ? noise(shape) : support::drawDeep(shape);
                const Bytes file = peerEncode(picture, {"+el", "+sv", std::to_string(predictor)});
                SCOPED_TRACE(std::to_string(bits) + " bits, predictor " + std::to_string(predictor));
                const Raster back = decode(file);
                EXPECT_EQ(picture.shape.channels, back.shape.channels);
                EXPECT_TRUE(picture.pixels == back.pixels);
            }
}

TEST_F(Lossless, ReducedPicturesAreAverages)
{
    const Raster picture = noise({13, 7, 3, 16});
    const Bytes file = encode(picture, options(4));
    for (const int scale : {2, 4, 8}) {
        const Raster reduced = decode(file, {scale, 1});
        ASSERT_EQ((Shape{(13 + scale - 1) / scale, (7 + scale - 1) / scale, 3, 16}), reduced.shape);
        for (int y = 0; y < reduced.shape.height; ++y)
            for (int x = 0; x < reduced.shape.width; ++x) {
                int64_t sum = 0;
                int64_t count = 0;
                for (int v = y * scale; v < std::min(7, (y + 1) * scale); ++v)
                    for (int u = x * scale; u < std::min(13, (x + 1) * scale); ++u, ++count)
                        sum += sampleOf(picture, static_cast<size_t>(v * 13 + u) * 3 + 1);
                EXPECT_EQ((sum + count / 2) / count,
                          sampleOf(reduced, static_cast<size_t>(y * reduced.shape.width + x) * 3 + 1));
            }
    }
}

TEST_F(Lossless, OptionsOutsideTheirRangesAreErrors)
{
    const Raster picture = support::drawDeep({8, 8, 3, 8});
    EXPECT_THROW(encode(picture, options(0)), vekpix::Error);
    EXPECT_THROW(encode(picture, options(8)), vekpix::Error);
    EXPECT_THROW(encode(picture, options(1, 8)), vekpix::Error);
    EXPECT_THROW(encode(picture, options(1, -1)), vekpix::Error);
    EXPECT_THROW(encode(picture, options(1, 0, 65536 / 8)), vekpix::Error);
    EncodeOptions progressive = options(1);
    progressive.progressive = true;
    EXPECT_THROW(encode(picture, progressive), vekpix::Error);
    vekpix::MemorySink sink;
    EXPECT_THROW(vekpix::jpeg::transcode(encode(picture, options(1)), sink, {}), vekpix::Error);
}

TEST_F(Lossless, DamagedFilesAreErrors)
{
    const Bytes file = encode(support::drawDeep({37, 21, 3, 8}), options(4, 0, 3));
    const auto find = [&](int marker) {
        size_t at = 0;
        vekpix::jpeg::MarkerReader markers(file, [&](const vekpix::jpeg::Segment& segment) {
            if (segment.marker == marker)
                at = segment.position;
        });
        markers.advanceToScan();
        return at;
    };
    const auto with = [&](size_t position, int value) {
        Bytes changed = file;
        changed[position] = static_cast<uint8_t>(value);
        return changed;
    };
    const size_t frame = find(vekpix::jpeg::SOF3);
    const size_t scan = find(vekpix::jpeg::SOS);
    const size_t interval = find(vekpix::jpeg::DRI);
    ASSERT_NE(0u, frame);
    EXPECT_EQ("", errorOf(file));
    EXPECT_NE(std::string::npos, errorOf(with(frame + 4, 7)).find("7-bit"));
    EXPECT_NE(std::string::npos, errorOf(with(frame + 4, 17)).find("17-bit"));
    EXPECT_NE(std::string::npos, errorOf(with(frame + 11, 0x21)).find("subsampled"));
    for (const int predictor : {0, 8}) EXPECT_NE("", errorOf(with(scan + 11, predictor)));
    EXPECT_NE("", errorOf(with(scan + 12, 1)));
    EXPECT_NE("", errorOf(with(scan + 13, 0x10)));
    EXPECT_NE("", errorOf(with(scan + 13, 8)));
    EXPECT_NE(std::string::npos, errorOf(with(interval + 5, 36)).find("whole rows"));
    for (size_t length = file.size() / 2; length + 8 < file.size(); length += 7)
        EXPECT_NE("", errorOf(std::span(file).first(length))) << length;
    EXPECT_NE(std::string::npos, errorOf(with(frame + 6, 255)).find("truncated"));
}

TEST_F(Lossless, TheCommandsKeepEveryBit)
{
    for (const int bits : {8, 10, 12, 16})
        for (const int channels : {1, 3, 4}) {
            const Raster picture = support::drawDeep({61, 45, channels, bits});
            for (const std::string name : {"in.png", "in.pam"}) {
                if (channels == 4 && name == "in.png")
                    continue;
                vekpix::MemorySink sink;
                const auto writer = vekpix::makePictureWriter(vekpix::formatOf(name), picture.shape, sink);
                writer->writeRows(picture.pixels.data(), picture.shape.rowBytes(), 45);
                writer->finish();
                save(name, sink.bytes());
                ASSERT_EQ(0, vekpix({"encode", path(name), path("out.jpg"), "--lossless", "--predictor", "7"}).status);
                EXPECT_EQ(bytes("out.jpg"), encode(picture, options(7)));
                const std::string info = vekpix({"info", path("out.jpg")}).output;
                EXPECT_NE(std::string::npos, info.find("lossless, 61 x 45, " + std::to_string(bits) + " bits")) << info;
                EXPECT_NE(std::string::npos, info.find("predictor 7, point transform 0")) << info;
                ASSERT_EQ(0, vekpix({"decode", path("out.jpg"), path("back-" + name)}).status);
                EXPECT_EQ(bytes(name), bytes("back-" + name));
            }
        }
    EXPECT_EQ(1, vekpix({"encode", path("in.pam"), path("out.jpg"), "--predictor", "7"}).status);
}
