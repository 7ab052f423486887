// What the encoder writes, as the packaged JPEG library reads it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <string>

#include "decode_support.h"
#include "error.h"
#include "image/memory_rows.h"
#include "jpeg/encoder.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/marker_reader.h"
#include "jpeg/standard_tables.h"
#include "jpeg_peer.h"
#include "support/sanitizers.h"
#include "vekj.h"

using peer::Picture;
using peer::Scene;
using vekpix::MemoryRows;
using vekpix::MemorySink;
using vekpix::Shape;
using vekpix::jpeg::ChromaSampling;
using vekpix::jpeg::EncodeOptions;

namespace {

// Rows that come once, into memory of the reader's.
class OnceRows : public vekpix::RowReader {
public:
    explicit OnceRows(const Picture& picture)
        : rows_(Shape{picture.width, picture.height, picture.channels}, picture.pixels.data(), 0)
    {
        shape_ = rows_.shape();
    }
    void readRows(uint8_t* pixels, size_t step, int rows) override { rows_.readRows(pixels, step, rows); }

private:
    MemoryRows rows_;
};

std::vector<uint8_t> encode(const Picture& picture, const EncodeOptions& options)
{
    OnceRows rows(picture);
    MemorySink sink;
    vekpix::jpeg::encode(rows, sink, options);
    return sink.bytes();
}

int blockWidth(ChromaSampling sampling) { return sampling == ChromaSampling::Full444 ? 1 : 2; }
int blockHeight(ChromaSampling sampling) { return sampling == ChromaSampling::Quarter420 ? 2 : 1; }

Picture withRepeatedEdges(const Picture& picture, int multipleOfWidth, int multipleOfHeight)
{
    Picture padded = picture;
    padded.width = (picture.width + multipleOfWidth - 1) / multipleOfWidth * multipleOfWidth;
    padded.height = (picture.height + multipleOfHeight - 1) / multipleOfHeight * multipleOfHeight;
    padded.pixels.clear();
    for (int y = 0; y < padded.height; ++y)
        for (int x = 0; x < padded.width; ++x)
            for (int c = 0; c < picture.channels; ++c)
                padded.pixels.push_back(picture.at(std::min(x, picture.width - 1), std::min(y, picture.height - 1), c));
    return padded;
}

struct Quantizers {
    std::array<uint16_t, 64> luminance;
    std::array<uint16_t, 64> chrominance;

    explicit Quantizers(int quality)
    {
        build(vekpix::jpeg::standardLuminanceSteps, quality, luminance);
        build(vekpix::jpeg::standardChrominanceSteps, quality, chrominance);
    }
    static void build(vekpix::jpeg::QuantizerSteps steps, int quality, std::array<uint16_t, 64>& table)
    {
        EXPECT_EQ(vekStsOk, vekiQuantFwdRawTableInit_JPEG_8u(steps.data(), quality));
        EXPECT_EQ(vekStsOk, vekiQuantFwdTableInit_JPEG_8u16u(steps.data(), table.data()));
    }
};

// The coefficients of the whole picture at once, without bands, threads or entropy coding.
peer::Coefficients expectedCoefficients(const Picture& picture, const EncodeOptions& options)
{
    const bool colour = picture.channels == 3 && !options.grey;
    const ChromaSampling sampling = colour ? options.sampling : ChromaSampling::Full444;
    const int h = blockWidth(sampling);
    const int v = blockHeight(sampling);
    const Picture padded = withRepeatedEdges(picture, 8 * h, 8 * v);
    const Quantizers quantizers(options.quality);
    peer::Coefficients result;
    result.components.resize(colour ? 3 : 1);
    for (size_t c = 0; c < result.components.size(); ++c) {
        auto& component = result.components[c];
        component.blocksWide = padded.width / 8 / (c == 0 ? 1 : h);
        component.blocksHigh = padded.height / 8 / (c == 0 ? 1 : v);
        component.blocks.resize(static_cast<size_t>(component.blocksWide * component.blocksHigh));
    }
    const int step = padded.width * padded.channels;
    for (int my = 0; my < padded.height / (8 * v); ++my)
        for (int mx = 0; mx < padded.width / (8 * h); ++mx) {
            const uint8_t* pixels = padded.pixels.data() + my * 8 * v * step + mx * 8 * h * padded.channels;
            alignas(16) std::array<int16_t, 6 * 64> mcu;
            int16_t* const planes[3] = {mcu.data(), mcu.data() + 64 * h * v, mcu.data() + 64 * (h * v + 1)};
            if (padded.channels == 1)
                vekiSub128_JPEG_8u16s_C1R(pixels, step, mcu.data(), 16, {8, 8});
            else if (sampling == ChromaSampling::Full444)
                vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(pixels, step, planes);
            else if (sampling == ChromaSampling::Half422)
                vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(pixels, step, planes);
            else
                vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(pixels, step, planes);
            for (int b = 0; b < (colour ? h * v + 2 : 1); ++b) {
                const size_t c = b < h * v ? 0 : static_cast<size_t>(b - h * v + 1);
                auto& component = result.components[c];
                const int x = c == 0 ? mx * h + b % h : mx;
                const int y = c == 0 ? my * v + b / h : my;
                int16_t* block = component.blocks[static_cast<size_t>(y * component.blocksWide + x)].data();
                vekiDCTQuantFwd8x8_JPEG_16s_C1(mcu.data() + 64 * b, block,
                                               (c == 0 ? quantizers.luminance : quantizers.chrominance).data());
            }
        }
    return result;
}

// The file holds these coefficients; it may lack blocks wholly beyond the picture's edge.
void expectCoefficients(const peer::Coefficients& expected, const peer::Coefficients& actual)
{
    ASSERT_EQ(expected.components.size(), actual.components.size());
    for (size_t c = 0; c < actual.components.size(); ++c) {
        const auto& there = actual.components[c];
        const auto& here = expected.components[c];
        ASSERT_GE(here.blocksWide, there.blocksWide);
        ASSERT_GE(here.blocksHigh, there.blocksHigh);
        for (int y = 0; y < there.blocksHigh; ++y)
            for (int x = 0; x < there.blocksWide; ++x)
                ASSERT_EQ(here.blocks[static_cast<size_t>(y * here.blocksWide + x)],
                          there.blocks[static_cast<size_t>(y * there.blocksWide + x)])
                    << "component " << c << ", block " << x << ", " << y;
    }
}

int largestDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.pixels.size(), b.pixels.size());
    int most = 0;
    for (size_t i = 0; i < std::min(a.pixels.size(), b.pixels.size()); ++i)
        most = std::max(most, std::abs(a.pixels[i] - b.pixels[i]));
    return most;
}

double psnr(const Picture& a, const Picture& b)
{
    double squares = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) squares += std::pow(a.pixels[i] - b.pixels[i], 2);
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.pixels.size()) / squares);
}

// Markers of one kind in the entropy-coded data.
int restartMarkers(const std::vector<uint8_t>& file)
{
    const std::array<uint8_t, 2> startOfScan = {0xFF, 0xDA};
    auto at = std::search(file.begin(), file.end(), startOfScan.begin(), startOfScan.end());
    int count = 0;
    for (; at + 1 < file.end(); ++at)
        if (at[0] == 0xFF && at[1] >= 0xD0 && at[1] <= 0xD7) {
            EXPECT_EQ(0xD0 + count % 8, at[1]);
            ++count;
        }
    return count;
}

std::string described(const EncodeOptions& options, const Picture& picture)
{
    return std::to_string(picture.width) + " x " + std::to_string(picture.height) + ", " +
           std::to_string(picture.channels) + " channels, quality " + std::to_string(options.quality) + ", " +
           std::to_string(8 * blockWidth(options.sampling)) + " x " +
           std::to_string(8 * blockHeight(options.sampling)) + " MCUs, restart " +
           std::to_string(options.restartInterval) + (options.optimizeTables ? ", optimal tables" : "") +
           (options.grey ? ", grey" : "") + ", threads " + std::to_string(options.threads);
}

template <class Check>
void forOptions(const Picture& picture, const Check& check)
{
    for (const ChromaSampling sampling : {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420})
        for (const int quality : {1, 30, 75, 100})
            for (const int restart : {0, 1, 7})
                for (const bool optimize : {false, true})
                    for (const bool grey : {false, true}) {
                        EncodeOptions options;
                        options.quality = quality;
                        options.sampling = sampling;
                        options.restartInterval = restart;
                        options.optimizeTables = optimize;
                        options.grey = grey;
                        options.threads = quality == 30 ? 2 : 1;
                        SCOPED_TRACE(described(options, picture));
                        check(options);
                    }
}

}  // namespace

TEST(Encoder, ThePeerReadsTheCoefficientsThatWereWrittenWhateverTheOptions)
{
    for (const Scene scene : {Scene::Soft, Scene::Harsh})
        for (const int channels : {1, 3}) {
            const Picture picture = peer::draw(83, 61, channels, scene);
            forOptions(picture, [&](const EncodeOptions& options) {
                const std::vector<uint8_t> file = encode(picture, options);
                expectCoefficients(expectedCoefficients(picture, options), peer::readCoefficients(file));
            });
        }
}

// The chroma of the whole picture in bytes, averaged with a rounding that alternates from column to column.
TEST(Encoder, RowsOfChromaAreAveragedWithAlternatingRounding)
{
    for (const auto& [width, height] : {std::pair(83, 61), std::pair(1, 1), std::pair(16, 16), std::pair(200, 18)})
        for (const ChromaSampling sampling : {ChromaSampling::Half422, ChromaSampling::Quarter420}) {
            EncodeOptions options;
            options.sampling = sampling;
            options.downsampling = vekpix::jpeg::ChromaDownsampling::Rows;
            options.threads = height % 2 + 1;
            const Picture picture = peer::draw(width, height, 3, Scene::Harsh);
            const int v = blockHeight(sampling);
            const Picture padded = withRepeatedEdges(picture, 16, 8 * v);
            const size_t size = static_cast<size_t>(padded.width) * static_cast<size_t>(padded.height);
            std::array<std::vector<uint8_t>, 3> samples;
            for (auto& plane : samples) plane.resize(size);
            uint8_t* const planes[3] = {samples[0].data(), samples[1].data(), samples[2].data()};
            ASSERT_EQ(vekStsOk, vekiRGBToYCbCr_JPEG_8u_C3P3R(padded.pixels.data(), padded.width * 3, planes,
                                                             padded.width, {padded.width, padded.height}));
            const Quantizers quantizers(options.quality);
            peer::Coefficients expected;
            for (size_t c = 0; c < 3; ++c) {
                const int across = c == 0 ? 1 : 2;
                const int down = c == 0 ? 1 : v;
                const int w = padded.width / across;
                const int h = padded.height / down;
                std::vector<uint8_t> plane;
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        int sum = c == 0 ? 0 : v == 1 ? x % 2 : 1 + x % 2;
                        for (int dy = 0; dy < down; ++dy)
                            for (int dx = 0; dx < across; ++dx)
                                sum +=
                                    samples[c][static_cast<size_t>((y * down + dy) * padded.width + x * across + dx)];
                        plane.push_back(static_cast<uint8_t>(sum / (across * down)));
                    }
                peer::Coefficients::Component component{w / 8, h / 8, {}};
                for (int y = 0; y < h; y += 8)
                    for (int x = 0; x < w; x += 8) {
                        alignas(16) std::array<int16_t, 64> block;
                        vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(
                            plane.data() + y * w + x, w, block.data(),
                            (c == 0 ? quantizers.luminance : quantizers.chrominance).data());
                        component.blocks.push_back(block);
                    }
                expected.components.push_back(std::move(component));
            }
            SCOPED_TRACE(described(options, picture));
            expectCoefficients(expected, peer::readCoefficients(encode(picture, options)));
        }
}

// Inks lie inverted in the file, and the peer gives them as they lie there.
TEST(Encoder, InksAndUntransformedColoursComeBackFromThePeerAndFromHere)
{
    for (const int channels : {3, 4})
        for (const bool transform : {false, true})
            for (const ChromaSampling sampling :
                 {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420})
                for (const auto downsampling :
                     {vekpix::jpeg::ChromaDownsampling::Blocks, vekpix::jpeg::ChromaDownsampling::Rows})
                    for (const auto& [width, height] : {std::pair(83, 61), std::pair(16, 32), std::pair(1, 1)}) {
                        EncodeOptions options;
                        options.quality = 100;
                        options.colourTransform = transform;
                        options.sampling = sampling;
                        options.downsampling = downsampling;
                        options.threads = 1 + height % 2;
                        options.optimizeTables = height == 61;
                        options.restartInterval = height == 61 ? 2 : 0;
                        const Picture picture = peer::draw(width, height, channels, Scene::Soft);
                        SCOPED_TRACE(described(options, picture));
                        const std::vector<uint8_t> file = encode(picture, options);
                        vekpix::jpeg::MarkerReader markers(file);
                        ASSERT_TRUE(markers.advanceToScan());
                        const bool jfif = channels == 3 && transform;
                        EXPECT_EQ(jfif, markers.hasJfif());
                        EXPECT_EQ(jfif ? std::nullopt : std::optional<int>(transform ? 2 : 0),
                                  markers.adobeTransform());
                        const Picture ours = support::decode(file, {.inks = true});
                        Picture theirs = peer::read(file);
                        if (channels == 4)
                            for (uint8_t& ink : theirs.pixels) ink = static_cast<uint8_t>(255 - ink);
                        EXPECT_LE(largestDifference(theirs, ours), 3);
                        if (!transform)
                            EXPECT_LE(largestDifference(picture, ours), 2);
                        else if (sampling == ChromaSampling::Full444)
                            EXPECT_LE(largestDifference(picture, ours), 4);
                        else
                            EXPECT_GT(psnr(picture, ours), 30);
                    }
    EncodeOptions grey;
    grey.grey = true;
    EXPECT_THROW(encode(peer::draw(8, 8, 4, Scene::Soft), grey), vekpix::Error);
}

TEST(Encoder, ThePeerReadsPicturesOfEverySmallSize)
{
    EncodeOptions options;
    for (int width = 1; width <= 34; width += width < 18 ? 1 : 5)
        for (int height = 1; height <= 34; height += height < 18 ? 1 : 5) {
            const Picture picture = peer::draw(width, height, 3, Scene::Soft);
            for (const ChromaSampling sampling :
                 {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420}) {
                options.sampling = sampling;
                SCOPED_TRACE(described(options, picture));
                const std::vector<uint8_t> file = encode(picture, options);
                expectCoefficients(expectedCoefficients(picture, options), peer::readCoefficients(file));
                const Picture decoded = peer::read(file);
                EXPECT_EQ(width, decoded.width);
                EXPECT_EQ(height, decoded.height);
            }
        }
}

TEST(Encoder, ThePeersPixelsAreOursWithinTheTransformsRounding)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    forOptions(picture, [&](const EncodeOptions& options) {
        const std::vector<uint8_t> file = encode(picture, options);
        // A level in luminance and one in a chroma, of which 1.77 times goes into blue.
        EXPECT_LE(largestDifference(peer::read(file), support::decode(file)), 3);
    });
}

TEST(Encoder, LosesNoMoreThanThePeerDoesAtTheSameQuality)
{
    const Picture picture = peer::draw(160, 120, 3, Scene::Soft);
    for (const int quality : {30, 60, 85, 95, 100})
        for (const ChromaSampling sampling :
             {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420}) {
            EncodeOptions options;
            options.quality = quality;
            options.sampling = sampling;
            SCOPED_TRACE(described(options, picture));
            const std::vector<uint8_t> ours = encode(picture, options);
            const std::vector<uint8_t> theirs = peer::write(
                picture,
                {.quality = quality, .sampling = {{blockWidth(sampling), blockHeight(sampling)}, {1, 1}, {1, 1}}});
            EXPECT_GT(psnr(picture, peer::read(ours)), psnr(picture, peer::read(theirs)) - 0.25);
            EXPECT_LT(static_cast<double>(ours.size()), 1.05 * static_cast<double>(theirs.size()));
        }
}

TEST(Encoder, EveryQualityDecodes)
{
    const Picture picture = peer::draw(48, 32, 3, Scene::Harsh);
    EncodeOptions options;
    for (options.quality = 1; options.quality <= 100; ++options.quality)
        for (const bool optimize : {false, true}) {
            options.optimizeTables = optimize;
            SCOPED_TRACE(described(options, picture));
            expectCoefficients(expectedCoefficients(picture, options),
                               peer::readCoefficients(encode(picture, options)));
        }
}

TEST(Encoder, OptimalTablesMakeASmallerFile)
{
    const Picture picture = peer::draw(160, 120, 3, Scene::Soft);
    EncodeOptions options;
    for (const int restart : {0, 9}) {
        options.restartInterval = restart;
        options.optimizeTables = false;
        const size_t standard = encode(picture, options).size();
        options.optimizeTables = true;
        EXPECT_LT(encode(picture, options).size(), standard);
    }
}

TEST(Encoder, FlatPicturesHaveOptimalTablesToo)
{
    EncodeOptions options;
    options.optimizeTables = true;
    for (const int channels : {1, 3})
        for (const uint8_t level : {uint8_t{0}, uint8_t{128}, uint8_t{255}}) {
            const Picture picture = {50, 40, channels,
                                     std::vector<uint8_t>(static_cast<size_t>(50 * 40 * channels), level)};
            EXPECT_LE(largestDifference(picture, peer::read(encode(picture, options))), 1);
        }
}

TEST(Encoder, WritesARestartMarkerBehindEveryIntervalButTheLast)
{
    const Picture picture = peer::draw(100, 50, 3, Scene::Harsh);  // 7 x 4 MCUs of 16 x 16
    EncodeOptions options;
    for (const int threads : {1, 2})
        for (const auto& [interval, markers] : {std::pair(0, 0), std::pair(1, 27), std::pair(4, 6), std::pair(5, 5),
                                                std::pair(27, 1), std::pair(28, 0), std::pair(65535, 0)}) {
            options.restartInterval = interval;
            options.threads = threads;
            EXPECT_EQ(markers, restartMarkers(encode(picture, options))) << interval;
        }
}

TEST(Encoder, TheFileDoesNotDependOnThreadsNorOnWhereThePictureComesFrom)
{
    for (const auto& [width, height] :
         {std::pair(1, 1), std::pair(333, 517), std::pair(1600, 40), std::pair(17, 900)}) {
        const Picture picture = peer::draw(width, height, 3, Scene::Soft);
        for (const int restart : {0, 1, 3, 64, 100, 1000})
            for (const bool optimize : {false, true}) {
                EncodeOptions options;
                options.restartInterval = restart;
                options.optimizeTables = optimize;
                const std::vector<uint8_t> alone = encode(picture, options);
                for (const int threads : {2, 3, 8}) {
                    options.threads = threads;
                    SCOPED_TRACE(described(options, picture));
                    EXPECT_TRUE(alone == encode(picture, options));
                    MemoryRows rows(Shape{width, height, 3}, picture.pixels.data(), 0);
                    MemorySink sink;
                    vekpix::jpeg::encode(rows, sink, options);
                    EXPECT_TRUE(alone == sink.bytes());
                }
            }
    }
}

TEST(Encoder, TellsOfAllRowsInEveryPass)
{
    const Picture picture = peer::draw(50, 77, 3, Scene::Soft);
    for (const int threads : {1, 2})
        for (const bool optimize : {false, true}) {
            EncodeOptions options;
            int rows = 0;
            options.threads = threads;
            options.optimizeTables = optimize;
            options.onRows = [&](int count) { rows += count; };
            encode(picture, options);
            EXPECT_EQ(77 * encodePasses({1, 77, 3}, options), rows);
        }
}

TEST(Encoder, RefusesWhatTheFormatCannotHold)
{
    const Picture picture = peer::draw(8, 8, 3, Scene::Soft);
    const auto refused = [&](auto change) {
        EncodeOptions options;
        change(options);
        EXPECT_THROW(encode(picture, options), vekpix::Error);
    };
    refused([](EncodeOptions& o) { o.quality = 0; });
    refused([](EncodeOptions& o) { o.quality = 101; });
    refused([](EncodeOptions& o) { o.restartInterval = -1; });
    refused([](EncodeOptions& o) { o.restartInterval = 65536; });
    refused([](EncodeOptions& o) { o.threads = 0; });
    const std::vector<uint8_t> row(65536);
    MemorySink sink;
    MemoryRows wide(Shape{65536, 1, 1}, row.data(), 0);
    EXPECT_THROW(vekpix::jpeg::encode(wide, sink, {}), vekpix::Error);
    MemoryRows high(Shape{1, 65536, 1}, row.data(), 0);
    EXPECT_THROW(vekpix::jpeg::encode(high, sink, {}), vekpix::Error);
    EXPECT_TRUE(sink.bytes().empty());
}

TEST(Encoder, TheWidestAndHighestPicturesAreCoded)
{
    for (const auto& [width, height] : {std::pair(65535, 3), std::pair(3, 65535)}) {  // beyond what the peer reads
        const Picture picture = peer::draw(width, height, 1, Scene::Soft);
        for (const int threads : {1, 2}) {
            EncodeOptions options;
            options.quality = 100;
            options.threads = threads;
            EXPECT_LE(largestDifference(picture, support::decode(encode(picture, options))), 2);
        }
    }
}

TEST(Encoder, AFailingSourceEndsTheWorkWithItsError)
{
    class Failing : public vekpix::RowReader {
    public:
        Failing() { shape_ = {64, 400, 3}; }
        void readRows(uint8_t* pixels, size_t step, int rows) override
        {
            if ((done_ += rows) > 100)
                throw vekpix::Error("the source is broken");
            for (int y = 0; y < rows; ++y) std::fill_n(pixels + step * static_cast<size_t>(y), 192, uint8_t{7});
        }

    private:
        int done_ = 0;
    };
    for (const int threads : {1, 2})
        for (const bool optimize : {false, true}) {
            EncodeOptions options;
            options.threads = threads;
            options.optimizeTables = optimize;
            Failing source;
            MemorySink sink;
            EXPECT_THROW(vekpix::jpeg::encode(source, sink, options), vekpix::Error);
        }
}

// Counts beyond what the table builder can add up in 32 bits.
TEST(OptimalCode, HugeCountsKeepACodeForEverySymbol)
{
    vekpix::jpeg::SymbolStatistics::Counts counts{};
    for (size_t symbol = 0; symbol < 162; ++symbol)
        counts[symbol] = symbol == 5 ? 6'000'000'000 : symbol == 6 ? 1 : 70'000'000;
    const vekpix::jpeg::CodeLists lists = vekpix::jpeg::optimalCode(counts);
    ASSERT_EQ(162, lists.symbolCount());
    EXPECT_EQ(5, lists.symbols[0]);
    int64_t room = 0;  // of all codes, in units of the longest
    for (int length = 1; length <= 16; ++length)
        room += int64_t{lists.lengthCounts[static_cast<size_t>(length - 1)]} << (16 - length);
    EXPECT_LT(room, int64_t{1} << 16);
    std::vector<uint8_t> symbols(lists.symbols.begin(), lists.symbols.begin() + 162);
    std::sort(symbols.begin(), symbols.end());
    for (size_t i = 0; i < 162; ++i) EXPECT_EQ(i, symbols[i]);
}
