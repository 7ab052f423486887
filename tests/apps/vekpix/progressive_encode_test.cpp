// Pictures coded progressively, as the packaged JPEG library reads them: the coefficients of a sequential file.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "coefficient_checks.h"
#include "error.h"
#include "image/memory_rows.h"
#include "jpeg/coefficient_store.h"
#include "jpeg/encoder.h"
#include "jpeg/markers.h"
#include "jpeg/store_writer.h"
#include "jpeg_peer.h"
#include "scan_scripts.h"
#include "support/generators.h"
#include "support/sanitizers.h"

using peer::Picture;
using peer::Scene;
using vekpix::jpeg::ChromaSampling;
using vekpix::jpeg::CoefficientStore;
using vekpix::jpeg::EncodeOptions;
using vekpix::jpeg::ScanScript;
using Bytes = std::vector<uint8_t>;

namespace {

Bytes encode(const Picture& picture, const EncodeOptions& options)
{
    vekpix::MemoryRows rows({picture.width, picture.height, picture.channels}, picture.pixels.data(), 0);
    vekpix::MemorySink sink;
    vekpix::jpeg::encode(rows, sink, options);
    return sink.bytes();
}

ScanScript own(const support::Script& script) { return vekpix::jpeg::parseScanScript(support::describe(script)); }

// As the encoder's sequential file of the same options has them.
void expectSequentialCoefficients(const Picture& picture, EncodeOptions options)
{
    const Bytes file = encode(picture, options);
    options.progressive = false;
    options.scans = {};
    support::expectEqual(peer::readCoefficients(encode(picture, options)), peer::readCoefficients(file));
}

bool isProgressive(const Bytes& file)
{
    const std::array<uint8_t, 2> frame = {0xFF, vekpix::jpeg::SOF2};
    return std::search(file.begin(), file.end(), frame.begin(), frame.end()) != file.end();
}

// A picture of one grey component, of blocks that the caller fills.
struct Stored {
    Stored(int blocksWide, int blocksHigh) : frame(frameOf(blocksWide, blocksHigh)), store(frame) {}

    static vekpix::jpeg::Frame frameOf(int blocksWide, int blocksHigh)
    {
        vekpix::jpeg::Frame frame;
        frame.width = 8 * blocksWide;
        frame.height = 8 * blocksHigh;
        frame.progressive = true;
        frame.components.push_back({1, 1, 1, 0});
        return frame;
    }
    int16_t* block(int index) { return store.components()[0].block(0, 0) + 64 * index; }
    Bytes write(const std::string& script, int restartInterval = 0) const
    {
        vekpix::MemorySink sink;
        const Bytes table = {0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
        sink.write(table);
        sink.write(Bytes(64, 1));
        const ScanScript scans = vekpix::jpeg::parseScanScript(script);
        EXPECT_TRUE(checkScanScript(scans, frame));
        vekpix::jpeg::ScanOptions options;
        options.restartInterval = restartInterval;
        vekpix::jpeg::writeScans({frame, vekpix::jpeg::ColourModel::Grey, store}, scans, options, sink);
        sink.write(Bytes{0xFF, 0xD9});
        return sink.bytes();
    }
    void expectReadBy(const std::string& script, int restartInterval = 0) const
    {
        const peer::Coefficients read = peer::readCoefficients(write(script, restartInterval));
        const CoefficientStore::Component& component = store.components()[0];
        for (size_t i = 0; i < read.components[0].blocks.size(); ++i)
            ASSERT_TRUE(std::ranges::equal(read.components[0].blocks[i], std::span(component.blocks + 64 * i, 64)))
                << "block " << i << " of " << script;
    }

    vekpix::jpeg::Frame frame;
    CoefficientStore store;
};

const std::string bitByBit = "0: 0-0, 0, 2; 0: 0-0, 2, 1; 0: 1-63, 0, 2; 0: 1-63, 2, 1; 0: 0-0, 1, 0; 0: 1-63, 1, 0;";

}  // namespace

TEST(ProgressiveEncode, CoefficientsAreThoseOfTheSequentialFile)
{
    for (const auto& [width, height] : {std::pair(1, 1), {8, 8}, {9, 7}, {17, 33}, {83, 61}})
        for (const ChromaSampling sampling :
             {ChromaSampling::Full444, ChromaSampling::Half422, ChromaSampling::Quarter420})
            for (const int quality : {5, 75, 100})
                for (const int restart : {0, 1, 7})
                    for (const int channels : {1, 3}) {
                        EncodeOptions options;
                        options.quality = quality;
                        options.sampling = sampling;
                        options.restartInterval = restart;
                        options.threads = quality == 5 ? 3 : 1;
                        options.progressive = true;
                        const Scene scene = quality == 75 ? Scene::Soft : Scene::Harsh;
                        const Picture picture = peer::draw(width, height, channels, scene);
                        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + " quality " +
                                     std::to_string(quality) + " restart " + std::to_string(restart));
                        expectSequentialCoefficients(picture, options);
                        EXPECT_TRUE(isProgressive(encode(picture, options)));
                    }
}

TEST(ProgressiveEncode, EveryScript)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Harsh);
    for (const support::Script& script : support::colourScripts())
        for (const int restart : {0, 3}) {
            EncodeOptions options;
            options.quality = 95;
            options.scans = own(script);
            options.restartInterval = restart;
            SCOPED_TRACE(support::describe(script));
            expectSequentialCoefficients(picture, options);
            options.threads = 1;
            const Bytes file = encode(picture, options);
            for (const int threads : {2, 5}) {
                options.threads = threads;
                EXPECT_TRUE(file == encode(picture, options));
            }
        }
    for (const support::Script& script : support::greyScripts()) {
        EncodeOptions options;
        options.scans = own(script);
        expectSequentialCoefficients(peer::draw(45, 37, 1, Scene::Soft), options);
    }
}

TEST(ProgressiveEncode, SequentialScriptsGiveSequentialFiles)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    for (const char* script : {"0;1;2;", "0,2;1;", "0 1 2;"})
        for (const bool optimize : {false, true}) {
            EncodeOptions options;
            options.optimizeTables = optimize;
            options.scans = vekpix::jpeg::parseScanScript(script);
            expectSequentialCoefficients(picture, options);
            EXPECT_FALSE(isProgressive(encode(picture, options)));
            options.progressive = true;
            EXPECT_THROW(encode(picture, options), vekpix::Error);
        }
}

TEST(ProgressiveEncode, InksAndUntransformedColours)
{
    for (const int channels : {3, 4})
        for (const bool transform : {false, true}) {
            EncodeOptions options;
            options.colourTransform = transform;
            options.progressive = true;
            expectSequentialCoefficients(peer::draw(45, 37, channels, Scene::Soft), options);
        }
}

TEST(ProgressiveEncode, TheFileIsSmallerThanTheSequentialOneWithTablesOfItsOwn)
{
    const Picture picture = peer::draw(400, 300, 3, Scene::Soft);
    EncodeOptions options;
    options.optimizeTables = true;
    const size_t sequential = encode(picture, options).size();
    options.progressive = true;
    EXPECT_LT(encode(picture, options).size(), sequential);
}

TEST(ProgressiveEncode, TellsRowsOfTwoPasses)
{
    const Picture picture = peer::draw(83, 61, 3, Scene::Soft);
    for (const int threads : {1, 4}) {
        EncodeOptions options;
        options.progressive = true;
        options.threads = threads;
        int rows = 0;
        options.onRows = [&](int more) { rows += more; };
        encode(picture, options);
        EXPECT_EQ(2 * 61, rows);
        EXPECT_EQ(2, vekpix::jpeg::encodePasses({83, 61, 3}, options));
    }
}

// End-of-band runs from one block up to more than the longest that a code can tell, in both kinds of AC scans.
TEST(ProgressiveEncode, LongEndOfBandRuns)
{
    for (const int gap : {1, 2, 3, 255, 256, 257, 4095, 32766, 32767, 32768, 65535}) {
        Stored picture(300, 250);
        for (int i = 0; i < 300 * 250; i += gap) {
            picture.block(i)[1] = static_cast<int16_t>(i / gap % 2 == 0 ? 9 : -4);
            picture.block(i)[0] = 3;
        }
        picture.expectReadBy(bitByBit);
        picture.expectReadBy("0: 0-0, 0, 0; 0: 1-63, 0, 0;", gap);
    }
    Stored{300, 250}.expectReadBy(bitByBit);
}

// Correction bits of many blocks wait for the end of a run: more than the library's buffer holds.
TEST(ProgressiveEncode, ManyCorrectionBitsInARun)
{
    for (const int perBlock : {1, 7, 8, 15, 62, 63}) {
        Stored picture(60, 50);
        support::Random random(static_cast<uint64_t>(perBlock));
        for (int i = 0; i < 60 * 50; ++i)
            for (int k = 0; k < perBlock; ++k)
                picture.block(i)[1 + k] = static_cast<int16_t>(random.in(4, 7) * (random.chance(50) ? 1 : -1));
        picture.expectReadBy(bitByBit);
        picture.expectReadBy(bitByBit, 13);
    }
}

TEST(ProgressiveEncode, CoefficientsOfEveryMagnitude)
{
    Stored picture(50, 40);
    support::Random random(1);
    for (int i = 0; i < 50 * 40; ++i) {
        picture.block(i)[0] = random.in<int16_t>(-1023, 1023);
        for (int k = 1; k < 64; ++k) {
            const int bits = random.in(0, 10);
            if (random.chance(i % 100))
                picture.block(i)[k] = static_cast<int16_t>(random.in(-(1 << bits) + 1, (1 << bits) - 1));
        }
    }
    picture.expectReadBy(bitByBit);
    for (const support::Script& script : support::greyScripts()) picture.expectReadBy(support::describe(script), 17);
}

TEST(ProgressiveEncode, CoefficientsBeyondEightBitSamplesAreRefused)
{
    Stored large(3, 3);
    large.block(4)[9] = 1023;
    large.expectReadBy("0: 0-0, 0, 0; 0: 1-63, 0, 0;");
    large.block(4)[9] = 1024;
    EXPECT_THROW(large.write("0: 0-0, 0, 0; 0: 1-63, 0, 0;"), vekpix::Error);
    large.block(4)[9] = 0;
    large.block(4)[0] = 2047;
    large.expectReadBy("0: 0-0, 0, 0; 0: 1-63, 0, 0;");
    large.block(4)[0] = 2048;
    EXPECT_THROW(large.write("0: 0-0, 0, 0; 0: 1-63, 0, 0;"), vekpix::Error);
}

TEST(StorePadding, CopiesTheDcOfTheBlockBefore)
{
    vekpix::jpeg::Frame frame;
    frame.width = 17;
    frame.height = 9;
    frame.components = {{1, 2, 2, 0}, {2, 1, 1, 0}};
    CoefficientStore store(frame);
    const CoefficientStore::Component& luma = store.components()[0];
    ASSERT_EQ(4, luma.columns);
    ASSERT_EQ(2, luma.rows);
    int16_t value = 1;
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 4; ++column) std::fill_n(luma.block(column, row), 64, value++);
    simplifyPadding(store);
    const int expected[2][4] = {{1, 2, 3, 3}, {5, 6, 7, 7}};
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 4; ++column) {
            EXPECT_EQ(expected[row][column], luma.block(column, row)[0]);
            EXPECT_EQ(column < 3 ? expected[row][column] : 0, luma.block(column, row)[63]);
        }
    frame.height = 8;
    CoefficientStore flat(frame);
    const CoefficientStore::Component& oneRow = flat.components()[0];
    for (int column = 0; column < 3; ++column) std::fill_n(oneRow.block(column, 0), 64, static_cast<int16_t>(column));
    simplifyPadding(flat);
    const int below[4] = {1, 1, 2, 2};
    for (int column = 0; column < 4; ++column) EXPECT_EQ(below[column], oneRow.block(column, 1)[0]);
}
