// Progressive files of the independent codec, of many scan scripts: coefficients equal to the last bit, and pictures
// equal to those of the same coefficients in a sequential file. Damaged ones end in one line.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "decode_support.h"
#include "error.h"
#include "jpeg/coefficient_store.h"
#include "jpeg/describe.h"
#include "jpeg/markers.h"
#include "jpeg/picture.h"
#include "jpeg/store_reader.h"
#include "jpeg_peer.h"
#include "scan_scripts.h"
#include "support/sanitizers.h"

using peer::Scene;
using peer::Stored;
using peer::WriteOptions;
using Bytes = std::vector<uint8_t>;
using vekpix::jpeg::Upsampling;
using Sampling = std::vector<std::pair<int, int>>;

namespace {

void expectEqualCoefficients(const Bytes& file, int threads)
{
    using namespace vekpix::jpeg;
    const peer::Coefficients expected = peer::readCoefficients(file);
    const vekpix::jpeg::Picture picture = readHeaders(file);
    CoefficientStore store(picture.frame);
    readScans(file, picture.scans, store, threads);
    ASSERT_EQ(expected.components.size(), store.components().size());
    for (size_t i = 0; i < expected.components.size(); ++i) {
        const peer::Coefficients::Component& theirs = expected.components[i];
        const CoefficientStore::Component& ours = store.components()[i];
        ASSERT_EQ(theirs.blocksWide, ours.blocksWide);
        ASSERT_EQ(theirs.blocksHigh, ours.blocksHigh);
        for (int y = 0; y < ours.blocksHigh; ++y)
            for (int x = 0; x < ours.blocksWide; ++x) {
                const auto& block = theirs.blocks[static_cast<size_t>(y * theirs.blocksWide + x)];
                ASSERT_TRUE(std::ranges::equal(block, std::span(ours.block(x, y), 64)))
                    << "component " << i << " block " << x << ", " << y;
            }
    }
}

std::string failure(const Bytes& file, const vekpix::jpeg::DecodeOptions& options = {})
{
    try {
        support::decode(file, options);
    } catch (const vekpix::Error& error) {
        EXPECT_EQ(std::string::npos, std::string(error.what()).find('\n'));
        EXPECT_NE(std::string(), error.what());
        return error.what();
    }
    return {};
}

bool fails(const Bytes& file, const std::string& words)
{
    const std::string message = failure(file);
    if (message.find(words) != std::string::npos)
        return true;
    ADD_FAILURE() << "\"" << message << "\" does not tell \"" << words << "\"";
    return false;
}

// Where the headers of the file's scans begin, by their markers.
std::vector<size_t> scansOf(const Bytes& file)
{
    std::vector<size_t> positions;
    vekpix::jpeg::MarkerReader markers(file, [&](const vekpix::jpeg::Segment& segment) {
        if (segment.marker == vekpix::jpeg::SOS)
            positions.push_back(segment.position);
    });
    while (markers.advanceToScan()) markers.skipScanData();
    return positions;
}

Bytes with(Bytes file, size_t position, int value)
{
    file.at(position) = static_cast<uint8_t>(value);
    return file;
}

Bytes smallFile(int restartInterval = 0)
{
    return peer::write(
        peer::draw(40, 24, 3, Scene::Soft),
        {.quality = 50, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .restartInterval = restartInterval, .progressive = true});
}

}  // namespace

TEST(ProgressiveDecode, CoefficientsOfEveryScriptAreThePeers)
{
    for (const std::vector<peer::Scan>& scans : support::colourScripts())
        for (const Scene scene : {Scene::Soft, Scene::Harsh})
            for (const int restart : {0, 1, 7}) {
                SCOPED_TRACE(support::describe(scans) + ", restart " + std::to_string(restart));
                const Bytes file = peer::write(
                    peer::draw(75, 61, 3, scene),
                    {.quality = 92, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .restartInterval = restart, .scans = scans});
                expectEqualCoefficients(file, 1);
                expectEqualCoefficients(file, 3);
            }
}

TEST(ProgressiveDecode, CoefficientsOfEverySizeAndSampling)
{
    for (const Sampling& sampling :
         {Sampling{{1, 1}, {1, 1}, {1, 1}}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}},
          Sampling{{1, 2}, {1, 1}, {1, 1}}, Sampling{{4, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {2, 1}, {1, 2}}})
        for (const auto& [width, height] : {std::pair(1, 1), {8, 8}, {9, 7}, {16, 17}, {33, 31}, {100, 3}, {5, 99}})
            for (const int restart : {0, 2}) {
                SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
                expectEqualCoefficients(
                    peer::write(peer::draw(width, height, 3, Scene::Harsh),
                                {.quality = 80, .sampling = sampling, .restartInterval = restart, .progressive = true}),
                    1);
            }
    expectEqualCoefficients(
        peer::write(peer::draw(45, 37, 1, Scene::Soft), {.quality = 100, .stored = Stored::Grey, .progressive = true}),
        1);
    for (const Stored stored : {Stored::Cmyk, Stored::Ycck})
        expectEqualCoefficients(peer::write(peer::draw(45, 37, 4, Scene::Soft),
                                            {.stored = stored, .progressive = true, .jfif = false, .adobe = true}),
                                2);
}

// A flat picture with rare spots: end-of-band runs of all lengths, up to the longest of 32767 blocks.
TEST(ProgressiveDecode, LongEndOfBandRuns)
{
    peer::Picture picture = peer::draw(8, 8, 1, Scene::Soft);
    picture.width = support::underSanitizer ? 8 * 100 : 8 * 300;
    picture.height = 8 * 250;
    picture.pixels.assign(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height), 100);
    size_t gap = 1;
    for (size_t at = 0; at < picture.pixels.size(); at += gap, gap = gap * 3 / 2 + 1) picture.pixels[at] = 130;
    for (const int restart : {0, 100}) {
        const Bytes file = peer::write(picture, {.quality = 90,
                                                 .stored = Stored::Grey,
                                                 .restartInterval = restart,
                                                 .scans = support::greyScripts().back()});
        expectEqualCoefficients(file, 1);
    }
}

TEST(ProgressiveDecode, PicturesAreThoseOfTheSameCoefficientsInOneScan)
{
    for (const Sampling& sampling : {Sampling{{1, 1}, {1, 1}, {1, 1}}, Sampling{{2, 1}, {1, 1}, {1, 1}},
                                     Sampling{{2, 2}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {2, 1}, {1, 2}}}) {
        const peer::Picture picture = peer::draw(75, 61, 3, Scene::Harsh);
        const Bytes sequential = peer::write(picture, {.sampling = sampling});
        const Bytes progressive = peer::write(picture, {.sampling = sampling, .progressive = true});
        for (const int scale : {1, 2, 4, 8})
            for (const int threads : {1, 3})
                for (const Upsampling upsampling : {Upsampling::Smooth, Upsampling::Box})
                    EXPECT_TRUE(support::decode(sequential, {scale, 1, upsampling}).pixels ==
                                support::decode(progressive, {scale, threads, upsampling}).pixels);
    }
}

// What is never told is 0: a file may end early by its end marker.
TEST(ProgressiveDecode, MissingScansLeaveTheirBitsUntold)
{
    for (const std::vector<peer::Scan>& script : support::colourScripts()) {
        const Bytes file =
            peer::write(peer::draw(40, 24, 3, Scene::Soft), {.sampling = {{2, 2}, {1, 1}, {1, 1}}, .scans = script});
        for (const size_t position : scansOf(file)) {
            if (position == scansOf(file)[0])
                continue;
            Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(position));
            EXPECT_TRUE(fails(cut, "it ends before its last scan"));
            cut.insert(cut.end(), {0xFF, 0xD9});
            expectEqualCoefficients(cut, 1);
            EXPECT_EQ("", failure(cut));
        }
    }
}

TEST(ProgressiveDecode, EveryTruncationEndsInOneLine)
{
    for (const int restart : {0, 2}) {
        const Bytes file = smallFile(restart);
        const Bytes whole = support::decode(file).pixels;
        for (size_t length = 0; length < file.size(); ++length) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            const std::string message = failure(cut);
            ASSERT_EQ(message.empty(), failure(cut, {1, 3}).empty());
            if (message.empty()) {
                ASSERT_GE(length + 4, file.size());  // nothing but the end marker and padding is missing
                ASSERT_TRUE(whole == support::decode(cut).pixels);
            }
        }
    }
}

TEST(ProgressiveDecode, EveryByteChanged)
{
    for (const int restart : {0, 1}) {
        const Bytes file = smallFile(restart);
        const size_t step = support::underSanitizer ? 7 : 1;
        for (size_t i = 0; i < file.size(); i += step)
            for (const int value : {0x00, 0xFF, file[i] ^ 0x01, file[i] ^ 0x80, 0xD9}) {
                const Bytes damaged = with(file, i, value);
                const std::string message = failure(damaged);
                ASSERT_EQ(message.empty(), failure(damaged, {8, 2}).empty()) << message;
            }
    }
}

TEST(ProgressiveDecode, ImpossibleScansAreRefused)
{
    const Bytes file = smallFile();
    const std::vector<size_t> scans = scansOf(file);  // the first is that of DC, the second of AC
    const size_t dc = scans[0] + 11;
    const size_t ac = scans[1] + 7;
    EXPECT_TRUE(fails(with(file, dc + 1, 1), "impossible coefficients"));
    EXPECT_TRUE(fails(with(file, ac + 1, 64), "impossible coefficients"));
    EXPECT_TRUE(fails(with(file, ac, 6), "impossible coefficients"));
    EXPECT_TRUE(fails(with(with(file, dc, 1), dc + 1, 5), "several components"));
    EXPECT_TRUE(fails(with(file, ac + 2, 0x0E), "impossible bits"));
    EXPECT_TRUE(fails(with(file, ac + 2, 0x42), "impossible bits"));
    EXPECT_TRUE(fails(with(file, ac + 2, 0x21), "out of their order"));
    EXPECT_TRUE(fails(with(file, scans[4] + 7, 5), "out of their order"));
    EXPECT_TRUE(fails(with(file, scans[0] + 6, 0x20), "without its Huffman table"));
    EXPECT_TRUE(fails(with(file, scans[1] + 6, 0x03), "without its Huffman table"));
}

TEST(ProgressiveDecode, HugeClaimsCostNothing)
{
    Bytes file = smallFile();
    size_t frame = 0;
    while (!(file[frame] == 0xFF && file[frame + 1] == vekpix::jpeg::SOF2)) ++frame;
    for (size_t i = 5; i <= 8; ++i) file[frame + i] = 0xFF;
    EXPECT_TRUE(fails(file, "too short for a picture of 65535 x 65535"));
}

TEST(ProgressiveDecode, DescriptionsTellTheProcessAndEachScan)
{
    std::ostringstream out;
    vekpix::jpeg::describe(smallFile(), out);
    const std::string text = out.str();
    for (const char* words :
         {"SOF2", "frame: progressive, 40 x 24, 8 bits, YCbCr", "coefficients 0 to 0, bits from the top down to 1",
          "coefficients 1 to 5, bits from the top down to 2", "coefficients 1 to 63, bits from 0 down to 0",
          "  component 1: DC table 0\n", "  component 3: AC table 1\n", "  component 2\n"})
        EXPECT_NE(std::string::npos, text.find(words)) << words << " not in\n" << text;
}
