// Files of the independent codec become others of the same coefficients, and those of the application become the same
// by the packaged tools.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "coefficient_checks.h"
#include "command_support.h"
#include "error.h"
#include "jpeg/describe.h"
#include "jpeg/marker_reader.h"
#include "jpeg/markers.h"
#include "jpeg/transcoder.h"
#include "jpeg_peer.h"
#include "scan_scripts.h"
#include "support/sanitizers.h"

using peer::Scene;
using peer::Stored;
using support::Outcome;
using vekpix::jpeg::TranscodeOptions;
using Bytes = std::vector<uint8_t>;
using Sampling = std::vector<std::pair<int, int>>;
namespace fs = std::filesystem;

namespace {

class TranscodeCommand : public support::CommandTest {};

bool contains(const std::string& text, const std::string& words) { return text.find(words) != std::string::npos; }

Bytes transcode(const Bytes& file, const TranscodeOptions& options)
{
    vekpix::MemorySink sink;
    vekpix::jpeg::transcode(file, sink, options);
    return sink.bytes();
}

TranscodeOptions progressive(int restartInterval = 0)
{
    TranscodeOptions options;
    options.restartInterval = restartInterval;
    return options;
}

TranscodeOptions sequential(bool optimize, int restartInterval = 0)
{
    TranscodeOptions options;
    options.progressive = false;
    options.optimizeTables = optimize;
    options.restartInterval = restartInterval;
    return options;
}

void expectSameCoefficientsBothWays(const Bytes& file)
{
    const peer::Coefficients expected = peer::readCoefficients(file);
    for (const int restart : {0, 5})
        for (const int threads : {1, 3}) {
            TranscodeOptions options = progressive(restart);
            options.threads = threads;
            const Bytes there = transcode(file, options);
            support::expectEqual(expected, peer::readCoefficients(there));
            for (const bool optimize : {false, true}) {
                options = sequential(optimize, restart);
                options.threads = threads;
                support::expectEqual(expected, peer::readCoefficients(transcode(file, options)));
                support::expectEqual(expected, peer::readCoefficients(transcode(there, options)));
            }
        }
}

std::string failure(const Bytes& file, const TranscodeOptions& options)
{
    try {
        transcode(file, options);
    } catch (const vekpix::Error& error) {
        EXPECT_EQ(std::string::npos, std::string(error.what()).find('\n'));
        return error.what();
    }
    return {};
}

std::vector<std::pair<int, Bytes>> applicationSegments(const Bytes& file)
{
    using namespace vekpix::jpeg;
    std::vector<std::pair<int, Bytes>> segments;
    MarkerReader markers(file, [&](const Segment& segment) {
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(segment.position);
        if ((segment.marker >= APP0 && segment.marker <= APP15) || segment.marker == COM)
            segments.push_back({segment.marker, Bytes(begin, begin + static_cast<std::ptrdiff_t>(segment.length) + 2)});
    });
    markers.advanceToScan();
    return segments;
}

}  // namespace

TEST(Transcode, CoefficientsOfEverySamplingAndSize)
{
    for (const Sampling& sampling :
         {Sampling{{1, 1}, {1, 1}, {1, 1}}, Sampling{{2, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {1, 1}, {1, 1}},
          Sampling{{1, 2}, {1, 1}, {1, 1}}, Sampling{{4, 1}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {2, 1}, {1, 2}}})
        for (const auto& [width, height] : {std::pair(1, 1), {8, 8}, {31, 17}, {75, 61}})
            for (const bool interleaved : {true, false}) {
                SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
                expectSameCoefficientsBothWays(
                    peer::write(peer::draw(width, height, 3, Scene::Harsh),
                                {.quality = 85, .sampling = sampling, .interleaved = interleaved}));
            }
}

TEST(Transcode, CoefficientsOfEveryColourModel)
{
    expectSameCoefficientsBothWays(peer::write(peer::draw(75, 61, 1, Scene::Soft), {.stored = Stored::Grey}));
    const peer::Picture colour = peer::draw(75, 61, 3, Scene::Soft);
    expectSameCoefficientsBothWays(peer::write(colour, {.stored = Stored::Rgb, .jfif = false, .adobe = true}));
    expectSameCoefficientsBothWays(peer::write(colour, {.extended = true}));
    const peer::Picture inks = peer::draw(75, 61, 4, Scene::Soft);
    for (const Stored stored : {Stored::Cmyk, Stored::Ycck})
        expectSameCoefficientsBothWays(peer::write(inks, {.stored = stored, .jfif = false, .adobe = true}));
}

// MCUs of more than ten blocks, all components together: no scan may have them.
TEST(Transcode, ComponentsThatMustHaveScansOfTheirOwn)
{
    expectSameCoefficientsBothWays(
        peer::write(peer::draw(75, 61, 3, Scene::Soft), {.sampling = {{4, 2}, {2, 2}, {1, 1}}, .interleaved = false}));
}

TEST(Transcode, EveryScriptBothWays)
{
    const peer::Picture picture = peer::draw(75, 61, 3, Scene::Harsh);
    const Bytes source = peer::write(picture, {.quality = 95, .sampling = {{2, 2}, {1, 1}, {1, 1}}});
    const peer::Coefficients expected = peer::readCoefficients(source);
    for (const support::Script& script : support::colourScripts()) {
        SCOPED_TRACE(support::describe(script));
        TranscodeOptions options = progressive();
        options.scans = vekpix::jpeg::parseScanScript(support::describe(script));
        support::expectEqual(expected, peer::readCoefficients(transcode(source, options)));
        options.restartInterval = 4;
        support::expectEqual(expected, peer::readCoefficients(transcode(source, options)));
        const Bytes theirs =
            peer::write(picture, {.quality = 95, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .scans = script});
        support::expectEqual(expected, peer::readCoefficients(transcode(theirs, sequential(true))));
    }
    for (const char* script : {"0;1;2;", "0,1;2;"}) {
        TranscodeOptions options = sequential(true);
        options.scans = vekpix::jpeg::parseScanScript(script);
        support::expectEqual(expected, peer::readCoefficients(transcode(source, options)));
    }
}

TEST(Transcode, ThereAndBackIsTheSameFile)
{
    const Bytes file = transcode(peer::write(peer::draw(75, 61, 3, Scene::Soft), {}), sequential(true));
    const Bytes other = transcode(file, progressive());
    EXPECT_TRUE(file == transcode(other, sequential(true)));
    EXPECT_TRUE(other == transcode(other, progressive()));
}

TEST(Transcode, ApplicationSegmentsAndCommentsGoAlong)
{
    Bytes file = peer::write(peer::draw(75, 61, 3, Scene::Soft), {});
    const Bytes profile = {0xFF, 0xE2, 0, 8, 'I', 'C', 'C', 0xFF, 0xD9, 0};
    const Bytes comment = {0xFF, 0xFE, 0, 5, 'h', 'o', '!'};
    const Bytes exif = {0xFF, 0xE1, 0, 8, 'E', 'x', 'i', 'f', 0, 0};
    for (const Bytes& segment : {comment, profile, exif})
        file.insert(file.begin() + 20, segment.begin(), segment.end());
    for (const TranscodeOptions& options : {progressive(), sequential(false)}) {
        const auto kept = applicationSegments(transcode(file, options));
        EXPECT_TRUE(applicationSegments(file) == kept);
        ASSERT_EQ(4u, kept.size());
        EXPECT_TRUE(profile == kept[2].second);
    }
}

TEST(Transcode, MissingScansAreZeros)
{
    const Bytes file = peer::write(peer::draw(75, 61, 3, Scene::Soft), {.progressive = true});
    size_t scans = 0;
    for (size_t i = 0; i + 1 < file.size(); ++i) {
        if (!(file[i] == 0xFF && file[i + 1] == vekpix::jpeg::SOS) || ++scans == 1)
            continue;
        Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_TRUE(contains(failure(cut, progressive()), "before its last scan"));
        cut.insert(cut.end(), {0xFF, 0xD9});
        const peer::Coefficients expected = peer::readCoefficients(cut);
        support::expectEqual(expected, peer::readCoefficients(transcode(cut, sequential(true))));
        support::expectEqual(expected, peer::readCoefficients(transcode(cut, progressive())));
    }
    EXPECT_EQ(10u, scans);
}

TEST(Transcode, ScriptsMustSuitTheProcessAndTellEverything)
{
    const Bytes file = peer::write(peer::draw(75, 61, 3, Scene::Soft), {});
    TranscodeOptions options = progressive();
    options.scans = vekpix::jpeg::parseScanScript("0;1;2;");
    EXPECT_TRUE(contains(failure(file, options), "sequential file"));
    options.scans = vekpix::jpeg::parseScanScript("0 1 2: 0-0, 0, 0; 0: 1-63, 0, 0;");
    EXPECT_TRUE(contains(failure(file, options), "leaves coefficients out"));
    options.progressive = false;
    EXPECT_TRUE(contains(failure(file, options), "progressive file"));
}

TEST(Transcode, DamagedFilesEndInOneLine)
{
    for (const bool isProgressive : {false, true}) {
        const Bytes file = peer::write(peer::draw(40, 24, 3, Scene::Soft),
                                       {.quality = 50, .restartInterval = 3, .progressive = isProgressive});
        for (size_t length = 0; length + 4 < file.size(); length += 3) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_NE("", failure(cut, progressive()));
            ASSERT_NE("", failure(cut, sequential(true)));
        }
        for (size_t i = 0; i < file.size(); i += support::underSanitizer ? 5 : 1)
            for (const int value : {0x00, 0xFF, file[i] ^ 0x01, file[i] ^ 0x80}) {
                Bytes damaged = file;
                damaged[i] = static_cast<uint8_t>(value);
                failure(damaged, progressive());
                failure(damaged, sequential(true));
            }
    }
}

TEST_F(TranscodeCommand, ThePackagedToolsReadItAndDoTheSame)
{
    savePnm("in.ppm", peer::draw(97, 75, 3, Scene::Soft));
    save("scans.txt", support::describe(support::colourScripts()[2]));
    ASSERT_EQ(0, run({"cjpeg", "-quality", "90", "-outfile", path("in.jpg"), path("in.ppm")}).status);
    ASSERT_EQ(0, run({"djpeg", "-outfile", path("expected.ppm"), path("in.jpg")}).status);
    const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> pairs = {
        {{"--progressive"}, {"-progressive"}},
        {{"--progressive", "--scans", path("scans.txt")}, {"-scans", path("scans.txt")}},
        {{"--sequential", "--optimize"}, {"-optimize"}},
        {{"--sequential"}, {}},
    };
    for (const auto& [ours, theirs] : pairs) {
        std::vector<std::string> arguments = {"transcode", path("in.jpg"), path("out.jpg")};
        arguments.insert(arguments.end(), ours.begin(), ours.end());
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = vekpix(arguments);
        ASSERT_EQ(0, outcome.status) << outcome.errors;
        EXPECT_EQ("", outcome.output + outcome.errors);
        ASSERT_EQ(0, run({"djpeg", "-outfile", path("out.ppm"), path("out.jpg")}).status);
        EXPECT_TRUE(loadPnm("expected.ppm").pixels == loadPnm("out.ppm").pixels);

        std::vector<std::string> tool = {"jpegtran"};
        tool.insert(tool.end(), theirs.begin(), theirs.end());
        tool.insert(tool.end(), {"-outfile", path("peer.jpg"), path("in.jpg")});
        ASSERT_EQ(0, run(tool).status);
        support::expectEqual(peer::readCoefficients(bytes("peer.jpg")), peer::readCoefficients(bytes("out.jpg")));
        EXPECT_LE(bytes("out.jpg").size(), bytes("peer.jpg").size());
        // And back, by the tool from ours, by ours from the tool's.
        ASSERT_EQ(0, run({"jpegtran", "-optimize", "-outfile", path("back.jpg"), path("out.jpg")}).status);
        ASSERT_EQ(0, vekpix({"transcode", path("peer.jpg"), path("own.jpg"), "--sequential", "--optimize"}).status);
        support::expectEqual(peer::readCoefficients(bytes("in.jpg")), peer::readCoefficients(bytes("back.jpg")));
        support::expectEqual(peer::readCoefficients(bytes("in.jpg")), peer::readCoefficients(bytes("own.jpg")));
    }
}

TEST_F(TranscodeCommand, EncodeAndDecodeKnowProgressiveFilesToo)
{
    savePnm("in.ppm", peer::draw(97, 75, 3, Scene::Soft));
    save("scans.txt", support::describe(support::colourScripts()[3]));
    ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("plain.jpg")}).status);
    ASSERT_EQ(0, vekpix({"decode", path("plain.jpg"), path("plain.ppm")}).status);
    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
             {"--progressive"},
             {"--scans", path("scans.txt")},
             {"--progressive", "--scans", path("scans.txt"), "--restart", "9", "--threads", "3"}}) {
        std::vector<std::string> arguments = {"encode", path("in.ppm"), path("out.jpg")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ASSERT_EQ(0, vekpix(arguments).status);
        support::expectEqual(peer::readCoefficients(bytes("plain.jpg")), peer::readCoefficients(bytes("out.jpg")));
        EXPECT_TRUE(contains(vekpix({"info", path("out.jpg")}).output, "frame: progressive, 97 x 75"));
        ASSERT_EQ(0, vekpix({"decode", path("out.jpg"), path("out.ppm")}).status);
        EXPECT_TRUE(loadPnm("plain.ppm").pixels == loadPnm("out.ppm").pixels);
        // The packaged tool with the same script writes the same scans.
        std::vector<std::string> tool = {"jpegtran"};
        if (options.size() > 1)
            tool.insert(tool.end(), {"-scans", path("scans.txt")});
        else
            tool.push_back("-progressive");
        tool.insert(tool.end(), {"-outfile", path("peer.jpg"), path("plain.jpg")});
        ASSERT_EQ(0, run(tool).status);
        ASSERT_EQ(0, vekpix({"decode", path("peer.jpg"), path("peer.ppm")}).status);
        EXPECT_TRUE(loadPnm("plain.ppm").pixels == loadPnm("peer.ppm").pixels);
    }
}

TEST_F(TranscodeCommand, WrongOptionsAndFilesAreToldInOneLine)
{
    savePnm("in.ppm", peer::draw(40, 24, 3, Scene::Soft));
    save("in.jpg", peer::write(peer::draw(40, 24, 3, Scene::Soft), {}));
    save("bad.txt", std::string("0 1 2: zero;"));
    save("short.txt", std::string("0 1 2: 0-0, 0, 0;"));
    save("empty.txt", std::string("# nothing\n"));
    save("cut.jpg", std::string("\xFF\xD8\xFF"));
    const auto failing = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"transcode", path("in.jpg"), path("out.jpg")});
        const std::string line = failure(options);
        EXPECT_FALSE(fs::exists(path("out.jpg")));
        return line;
    };
    EXPECT_TRUE(contains(failing({}), "--progressive or --sequential"));
    EXPECT_TRUE(contains(failing({"--progressive", "--sequential"}), "--progressive or --sequential"));
    EXPECT_TRUE(contains(failing({"--progressive", "--scans", path("bad.txt")}), "bad.txt: scan script, line 1"));
    EXPECT_TRUE(contains(failing({"--progressive", "--scans", path("empty.txt")}), "no scans"));
    EXPECT_TRUE(contains(failing({"--progressive", "--scans", path("missing.txt")}), "missing.txt"));
    EXPECT_TRUE(contains(failing({"--progressive", "--scans", path("short.txt")}), "leaves coefficients out"));
    EXPECT_TRUE(contains(failing({"--progressive", "--restart", "65536"}), "--restart"));
    const auto fails = [&](const std::string& from, const std::string& to, const std::string& words) {
        EXPECT_TRUE(contains(failure({"transcode", path(from), path(to), "--progressive"}), words));
        EXPECT_FALSE(fs::exists(path(to)));
    };
    fails("cut.jpg", "out.jpg", "cut.jpg: ");
    fails("missing.jpg", "out.jpg", "missing.jpg");
    fails("in.ppm", "out.jpg", "not a JPEG file");
    fails("in.jpg", "out.png", ".jpg");
    EXPECT_TRUE(contains(failure({"encode", path("in.ppm"), path("out.jpg"), "--scans", path("bad.txt")}), "bad.txt"));
    EXPECT_TRUE(contains(vekpix({"transcode", "--help"}).output, "without touching its coefficients"));
}

// The coefficients of the whole picture in 16 bits, and the coded scans, are all that grows with the picture.
TEST_F(TranscodeCommand, PeakMemoryIsThatOfTheCoefficientsAnd64Mebibytes)
{
    constexpr long width = 3000;
    constexpr long height = 2000;
    savePnm("in.ppm", peer::draw(width, height, 3, Scene::Soft));
    constexpr long coefficients = width * height * 3 / 2 * 2 / 1024;
    const auto peakOf = [&](const std::vector<std::string>& arguments) {
        const Outcome outcome = vekpix(arguments);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        return support::underSanitizer ? 0 : outcome.peakKilobytes;
    };
    EXPECT_LT(peakOf({"encode", path("in.ppm"), path("a.jpg"), "--progressive"}), coefficients + 64 * 1024);
    EXPECT_LT(peakOf({"decode", path("a.jpg"), path("a.ppm")}), coefficients + 64 * 1024);
    EXPECT_LT(peakOf({"transcode", path("a.jpg"), path("b.jpg"), "--sequential"}), coefficients + 64 * 1024);
    EXPECT_LT(peakOf({"transcode", path("b.jpg"), path("c.jpg"), "--progressive"}), coefficients + 64 * 1024);
}
