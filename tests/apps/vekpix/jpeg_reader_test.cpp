// Files of the independent codec, in many forms, decode here to its coefficients and, within rounding, its pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "decode_support.h"
#include "error.h"
#include "jpeg/decoder.h"
#include "jpeg/entropy_reader.h"
#include "jpeg/marker_reader.h"
#include "jpeg/markers.h"
#include "jpeg_peer.h"

using peer::Chroma;
using peer::Picture;
using peer::Scene;
using peer::Stored;
using peer::WriteOptions;
using vekpix::jpeg::Upsampling;
using Sampling = std::vector<std::pair<int, int>>;

namespace {

std::string describe(const Picture& picture, const WriteOptions& options)
{
    std::string text = std::to_string(picture.width) + "x" + std::to_string(picture.height) + " quality " +
                       std::to_string(options.quality) + " restart " + std::to_string(options.restartInterval) +
                       (options.optimise ? " optimised" : "") + (options.interleaved ? "" : " scans") +
                       (options.extended ? " extended" : "") + " sampling";
    for (const auto& [h, v] : options.sampling) text += " " + std::to_string(h) + "x" + std::to_string(v);
    return text;
}

// The file's coefficients by way of the application's readers, in the peer's arrangement.
peer::Coefficients readOwnCoefficients(std::span<const uint8_t> file)
{
    using namespace vekpix::jpeg;
    MarkerReader markers(file);
    peer::Coefficients result;
    while (const std::optional<Scan> scan = markers.advanceToScan()) {
        const Frame& frame = markers.frame();
        const int maxH = frame.maxHorizontalSampling();
        const int maxV = frame.maxVerticalSampling();
        result.components.resize(frame.components.size());
        const auto up = [](int a, int b) { return (a + b - 1) / b; };
        for (const ScanComponent& c : scan->components) {
            const FrameComponent& f = frame.components[static_cast<size_t>(c.index)];
            auto& to = result.components[static_cast<size_t>(c.index)];
            to.blocksWide = up(up(frame.width * f.horizontalSampling, maxH), 8);
            to.blocksHigh = up(up(frame.height * f.verticalSampling, maxV), 8);
            to.blocks.resize(static_cast<size_t>(to.blocksWide * to.blocksHigh));
        }
        const bool single = scan->components.size() == 1;
        const auto& first = result.components[static_cast<size_t>(scan->components[0].index)];
        const int mcusWide = single ? first.blocksWide : up(frame.width, 8 * maxH);
        const int mcusHigh = single ? first.blocksHigh : up(frame.height, 8 * maxV);
        EntropyReader reader(file, scan->dataBegin, scan->restartInterval);
        for (int mcu = 0; mcu < mcusWide * mcusHigh; ++mcu) {
            reader.beginMcu();
            for (size_t slot = 0; slot < scan->components.size(); ++slot) {
                const ScanComponent& c = scan->components[slot];
                const FrameComponent& f = frame.components[static_cast<size_t>(c.index)];
                auto& to = result.components[static_cast<size_t>(c.index)];
                const int h = single ? 1 : f.horizontalSampling;
                const int v = single ? 1 : f.verticalSampling;
                for (int i = 0; i < h * v; ++i) {
                    std::array<int16_t, 64> block;
                    reader.readBlock(block.data(), slot, c.dcTable->decoderTable(), c.acTable->decoderTable());
                    const int x = mcu % mcusWide * h + i % h;
                    const int y = mcu / mcusWide * v + i / h;
                    if (x < to.blocksWide && y < to.blocksHigh)
                        to.blocks[static_cast<size_t>(y * to.blocksWide + x)] = block;
                }
            }
        }
        markers.skipScanData();
    }
    return result;
}

void expectEqualCoefficients(std::span<const uint8_t> file)
{
    const peer::Coefficients expected = peer::readCoefficients(file);
    const peer::Coefficients actual = readOwnCoefficients(file);
    ASSERT_EQ(expected.components.size(), actual.components.size());
    for (size_t c = 0; c < expected.components.size(); ++c) {
        ASSERT_EQ(expected.components[c].blocksWide, actual.components[c].blocksWide);
        ASSERT_EQ(expected.components[c].blocksHigh, actual.components[c].blocksHigh);
        ASSERT_TRUE(expected.components[c].blocks == actual.components[c].blocks) << "component " << c;
    }
}

// An RGB file of three scans from three grey files of one quantisation table.
std::vector<uint8_t> assembleScans(const std::vector<std::vector<uint8_t>>& parts, const Sampling& sampling, int width,
                                   int height)
{
    using namespace vekpix::jpeg;
    std::vector<uint8_t> file;
    const auto append = [&file](std::span<const uint8_t> bytes) {
        file.insert(file.end(), bytes.begin(), bytes.end());
    };
    for (size_t i = 0; i < parts.size(); ++i) {
        const std::span<const uint8_t> part = parts[i];
        Segment frame;
        Segment scan;
        MarkerReader markers(part, [&](const Segment& segment) {
            if (segment.marker == SOF0)
                frame = segment;
            if (segment.marker == SOS)
                scan = segment;
        });
        markers.advanceToScan();
        if (i == 0) {
            append(part.first(frame.position));
            const auto high = [](int value) { return static_cast<uint8_t>(value >> 8); };
            const auto low = [](int value) { return static_cast<uint8_t>(value); };
            append(
                std::array<uint8_t, 10>{0xFF, 0xC0, 0, 17, 8, high(height), low(height), high(width), low(width), 3});
            for (size_t c = 0; c < sampling.size(); ++c)
                append(std::array<uint8_t, 3>{static_cast<uint8_t>("RGB"[c]),
                                              low(sampling[c].first << 4 | sampling[c].second), 0});
        }
        const size_t frameEnd = frame.position + 2 + frame.length;
        append(part.subspan(frameEnd, scan.position - frameEnd));
        append(std::array<uint8_t, 10>{0xFF, 0xDA, 0, 8, 1, static_cast<uint8_t>("RGB"[i]), 0, 0, 63, 0});
        const size_t scanEnd = scan.position + 2 + scan.length;
        append(part.subspan(scanEnd, part.size() - 2 - scanEnd));
    }
    file.insert(file.end(), {0xFF, 0xD9});
    return file;
}

int largestDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.channels, b.channels);
    if (a.pixels.size() != b.pixels.size())
        return 256;
    int most = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) most = std::max(most, std::abs(a.pixels[i] - b.pixels[i]));
    return most;
}

const std::vector<std::pair<int, int>> sizes = {{1, 1}, {7, 5}, {8, 8}, {16, 16}, {17, 33}, {65, 47}, {131, 77}};

constexpr int rounding = 2;

// Each codec's transform may round a sample up where the other rounds down. A level of chroma weighs 1.8 levels of
// blue: with the luma's own level and the rounding of the sum, one byte in some thousands differs by three levels.
void expectWithinRounding(const Picture& a, const Picture& b)
{
    EXPECT_LE(largestDifference(a, b), rounding + 1);
    size_t beyond = 0;
    for (size_t i = 0; i < std::min(a.pixels.size(), b.pixels.size()); ++i)
        beyond += std::abs(a.pixels[i] - b.pixels[i]) > rounding;
    EXPECT_LE(beyond, a.pixels.size() / 1000 + 1);
}

void expectSamePixels(const Picture& picture, const WriteOptions& options, int threads = 1)
{
    SCOPED_TRACE(describe(picture, options));
    const std::vector<uint8_t> file = peer::write(picture, options);
    expectEqualCoefficients(file);
    expectWithinRounding(peer::read(file), support::decode(file, {1, threads}));
    expectWithinRounding(peer::read(file, 1, Chroma::Replicated), support::decode(file, {1, threads, Upsampling::Box}));
}

}  // namespace

TEST(JpegReader, CommonSamplingsOfEverySizeAndQuality)
{
    for (const auto& [width, height] : sizes)
        for (const Sampling& sampling :
             {Sampling{}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}}})
            for (const int quality : {1, 30, 75, 95, 100})
                expectSamePixels(peer::draw(width, height, 3, Scene::Soft),
                                 {.quality = quality, .sampling = sampling, .optimise = quality > 50});
}

TEST(JpegReader, Grey)
{
    for (const auto& [width, height] : sizes)
        for (const Sampling& sampling : {Sampling{{1, 1}}, Sampling{{2, 2}}, Sampling{{4, 3}}})
            for (const int restart : {0, 1, 5})
                expectSamePixels(peer::draw(width, height, 1, Scene::Soft),
                                 {.stored = Stored::Grey, .sampling = sampling, .restartInterval = restart});
}

TEST(JpegReader, EverySamplingFactorOfLuma)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    for (int h = 1; h <= 4; ++h)
        for (int v = 1; v <= 4; ++v)
            for (const bool interleaved : {true, false})
                if (!interleaved || h * v + 2 <= 10)  // blocks in an MCU
                    expectSamePixels(picture, {.sampling = {{h, v}, {1, 1}, {1, 1}}, .interleaved = interleaved});
}

TEST(JpegReader, UncommonSamplings)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    for (const Sampling& sampling :
         {Sampling{{2, 2}, {2, 1}, {1, 2}}, Sampling{{1, 1}, {2, 2}, {1, 1}}, Sampling{{4, 1}, {2, 1}, {1, 1}},
          Sampling{{1, 2}, {1, 2}, {1, 1}}, Sampling{{2, 1}, {2, 1}, {2, 1}}, Sampling{{1, 1}, {1, 1}, {4, 2}}})
        for (const bool interleaved : {true, false})
            expectSamePixels(picture, {.sampling = sampling, .interleaved = interleaved});
    for (const Sampling& sampling : {Sampling{{2, 2}, {2, 2}, {2, 2}}, Sampling{{4, 4}, {1, 2}, {4, 1}}})
        expectSamePixels(picture, {.sampling = sampling, .interleaved = false});
}

// The peer neither writes nor reads files whose factors do not divide each other: each component is written as a
// picture of its own, and their scans are put together. A slope shows whether every pixel finds its sample.
TEST(JpegReader, SamplingFactorsThatDoNotDivideEachOther)
{
    for (const Sampling& sampling :
         {Sampling{{3, 1}, {2, 1}, {1, 1}}, Sampling{{1, 3}, {1, 2}, {1, 2}}, Sampling{{4, 4}, {3, 3}, {2, 3}}}) {
        const int width = 90;
        const int height = 66;
        const int maxH = sampling[0].first;
        const int maxV = sampling[0].second;
        std::vector<std::vector<uint8_t>> parts;
        std::vector<Picture> planes;
        for (const auto& [h, v] : sampling) {
            Picture plane{(width * h + maxH - 1) / maxH, (height * v + maxV - 1) / maxV, 1, {}};
            for (int y = 0; y < plane.height; ++y)
                for (int x = 0; x < plane.width; ++x)
                    plane.pixels.push_back(static_cast<uint8_t>(40 + x * maxH / h + y * maxV / v));
            parts.push_back(peer::write(plane, {.quality = 98, .stored = Stored::Grey, .jfif = false}));
            planes.push_back(peer::read(parts.back()));
        }
        const Picture picture = support::decode(assembleScans(parts, sampling, width, height));
        ASSERT_EQ(width, picture.width);
        ASSERT_EQ(height, picture.height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < 3; ++c) {
                    const auto [h, v] = sampling[static_cast<size_t>(c)];
                    const int sample = planes[static_cast<size_t>(c)].at(x * h / maxH, y * v / maxV, 0);
                    ASSERT_NEAR(sample, picture.at(x, y, c), 1) << x << " " << y << " " << c;
                }
    }
}

TEST(JpegReader, RestartIntervalsOfEveryLength)
{
    const Picture picture = peer::draw(150, 70, 3, Scene::Soft);
    for (const Sampling& sampling : {Sampling{}, Sampling{{2, 2}, {1, 1}, {1, 1}}, Sampling{{1, 2}, {1, 1}, {1, 1}}})
        for (const int restart : {1, 2, 3, 5, 10, 19, 20, 38, 95, 190, 1000})
            for (const bool interleaved : {true, false})
                expectSamePixels(picture,
                                 {.sampling = sampling, .restartInterval = restart, .interleaved = interleaved});
}

TEST(JpegReader, ExtendedSequentialWithTablesForEachComponent)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    const WriteOptions options{.sampling = {{2, 1}, {1, 1}, {1, 1}}, .optimise = true, .extended = true};
    EXPECT_FALSE([&] {
        const std::vector<uint8_t> file = peer::write(picture, options);
        vekpix::jpeg::MarkerReader markers(file);
        markers.advanceToScan();
        return markers.frame().baseline;
    }());
    expectSamePixels(picture, options);
}

TEST(JpegReader, RgbByAdobeMarkerAndByComponentNames)
{
    for (const auto& [width, height] : sizes)
        for (const bool adobe : {true, false})
            expectSamePixels(peer::draw(width, height, 3, Scene::Harsh),
                             {.stored = Stored::Rgb, .jfif = false, .adobe = adobe});
}

// The adobe marker says that 255 is no ink; without one 255 is all ink.
TEST(JpegReader, FourInksBecomeLight)
{
    const Picture picture = peer::draw(45, 27, 4, Scene::Soft);
    for (const Stored stored : {Stored::Cmyk, Stored::Ycck}) {
        const std::vector<uint8_t> file = peer::write(picture, {.stored = stored, .jfif = false, .adobe = true});
        const Picture inks = peer::read(file);
        Picture light{inks.width, inks.height, 3, {}};
        for (int y = 0; y < inks.height; ++y)
            for (int x = 0; x < inks.width; ++x)
                for (int c = 0; c < 3; ++c)
                    light.pixels.push_back(static_cast<uint8_t>((inks.at(x, y, c) * inks.at(x, y, 3) + 127) / 255));
        EXPECT_LE(largestDifference(light, support::decode(file)), rounding);
        Picture uninverted = inks;
        for (uint8_t& ink : uninverted.pixels) ink = static_cast<uint8_t>(255 - ink);
        EXPECT_LE(largestDifference(uninverted, support::decode(file, {.inks = true})), rounding + 1);
    }
    const std::vector<uint8_t> plain = peer::write(picture, {.stored = Stored::Cmyk, .jfif = false});
    const Picture inks = peer::read(plain);
    const Picture light = support::decode(plain);
    EXPECT_LE(largestDifference(inks, support::decode(plain, {.inks = true})), rounding);
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR((255 - inks.at(20, 20, c)) * (255 - inks.at(20, 20, 3)) / 255.0, light.at(20, 20, c), rounding);
}

// Where a sample leaves 0 .. 255 it is clipped before its colour is converted, as the standard's decoder does.
TEST(JpegReader, HarshPicturesAreClippedAsSamples)
{
    for (const Sampling& sampling : {Sampling{}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}},
                                     Sampling{{1, 2}, {1, 1}, {1, 1}}})
        for (const int quality : {5, 20, 50, 90})
            expectSamePixels(peer::draw(131, 77, 3, Scene::Harsh, 3), {.quality = quality, .sampling = sampling});
}

TEST(JpegReader, ThreadsDoNotChangeAByte)
{
    for (const auto& [width, height] : {std::pair(150, 230), std::pair(33, 9), std::pair(640, 200)}) {
        const Picture picture = peer::draw(width, height, 3, Scene::Soft);
        for (const Sampling& sampling :
             {Sampling{}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}}})
            for (const int restart : {0, 1, 5, 10, 20, 40, 7}) {
                const std::vector<uint8_t> file =
                    peer::write(picture, {.sampling = sampling, .restartInterval = restart});
                for (const Upsampling upsampling : {Upsampling::Smooth, Upsampling::Box}) {
                    const Picture alone = support::decode(file, {1, 1, upsampling});
                    for (const int threads : {2, 3, 8})
                        EXPECT_TRUE(alone.pixels == support::decode(file, {1, threads, upsampling}).pixels)
                            << width << " " << restart << " " << threads;
                }
            }
    }
}

// A reduced transform of the library and the peer's are different filters of the same block: the peer's inverts the low
// coefficients alone with its own rounding, so that soft pictures come out alike but not equal.
TEST(JpegReader, ReducedPictures)
{
    for (const auto& [width, height] : sizes)
        for (const Sampling& sampling : {Sampling{}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}},
                                         Sampling{{4, 2}, {1, 1}, {1, 1}}, Sampling{{3, 1}, {1, 1}, {1, 1}}}) {
            const std::vector<uint8_t> file =
                peer::write(peer::draw(width, height, 3, Scene::Soft), {.sampling = sampling});
            for (const int scale : {2, 4, 8}) {
                SCOPED_TRACE(std::to_string(width) + " scale " + std::to_string(scale));
                const int tolerance = 4;
                EXPECT_LE(largestDifference(peer::read(file, scale, Chroma::Replicated),
                                            support::decode(file, {scale, 1, Upsampling::Box})),
                          tolerance);
                if (scale < 8 && width > 16) {  // the peer replicates the smallest
                    EXPECT_LE(largestDifference(peer::read(file, scale), support::decode(file, {scale, 1})), tolerance);
                }
            }
        }
}

TEST(JpegReader, ReducedGreyInScansAndIntervals)
{
    const std::vector<uint8_t> grey = peer::write(peer::draw(131, 77, 1, Scene::Soft), {.stored = Stored::Grey});
    const std::vector<uint8_t> scans =
        peer::write(peer::draw(131, 77, 3, Scene::Soft),
                    {.sampling = {{2, 2}, {1, 1}, {1, 1}}, .restartInterval = 4, .interleaved = false});
    for (const int scale : {2, 4, 8}) {
        const int tolerance = 3;
        EXPECT_LE(largestDifference(peer::read(grey, scale), support::decode(grey, {scale, 1})), tolerance);
        EXPECT_LE(largestDifference(peer::read(scans, scale), support::decode(scans, {scale, 1})), tolerance + 1);
    }
}

TEST(JpegReader, RefusesAnotherScale)
{
    const std::vector<uint8_t> file = peer::write(peer::draw(8, 8, 3, Scene::Soft), {});
    for (const int scale : {-1, 0, 3, 16}) EXPECT_THROW(support::decode(file, {scale, 1}), vekpix::Error);
}
