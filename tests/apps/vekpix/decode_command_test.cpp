// The commands `vekpix decode` and `vekpix info` as a user runs them, on files of the packaged JPEG tools.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "command_support.h"
#include "decode_support.h"
#include "jpeg_peer.h"
#include "support/sanitizers.h"

using peer::Picture;
using peer::Scene;
using peer::Stored;
using support::Outcome;
namespace fs = std::filesystem;

namespace {

class DecodeCommand : public support::CommandTest {};

double meanDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.pixels.size(), b.pixels.size());
    double sum = 0;
    for (size_t i = 0; i < std::min(a.pixels.size(), b.pixels.size()); ++i) sum += std::abs(a.pixels[i] - b.pixels[i]);
    return sum / static_cast<double>(a.pixels.size());
}

int largestDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.pixels.size(), b.pixels.size());
    int most = 0;
    for (size_t i = 0; i < std::min(a.pixels.size(), b.pixels.size()); ++i)
        most = std::max(most, std::abs(a.pixels[i] - b.pixels[i]));
    return most;
}

}  // namespace

TEST_F(DecodeCommand, ReadsWhatThePackagedToolsWrite)
{
    savePnm("in.ppm", peer::draw(97, 75, 3, Scene::Soft));
    const std::vector<std::vector<std::string>> optionSets = {
        {"-quality", "90"},
        {"-quality", "75", "-sample", "1x1"},
        {"-quality", "60", "-sample", "2x1", "-restart", "1"},
        {"-quality", "95", "-sample", "1x2", "-optimize"},
        {"-quality", "85", "-sample", "4x1", "-restart", "3B"},
        {"-quality", "90,50,30", "-sample", "2x2,2x1,1x1", "-optimize"},
        {"-grayscale", "-quality", "80"},
        {"-rgb", "-quality", "80"},
        {"-quality", "100", "-dct", "float", "-sample", "1x1"},
    };
    for (const std::vector<std::string>& options : optionSets) {
        SCOPED_TRACE(testing::PrintToString(options));
        std::vector<std::string> writer = {"cjpeg"};
        writer.insert(writer.end(), options.begin(), options.end());
        writer.insert(writer.end(), {"-outfile", path("in.jpg"), path("in.ppm")});
        ASSERT_EQ(0, run(writer).status);
        for (const bool smooth : {true, false}) {
            std::vector<std::string> reader = {"djpeg", "-dct", "int", "-pnm", "-outfile", path("peer.pnm")};
            std::vector<std::string> ours = {"decode", path("in.jpg")};
            if (!smooth) {
                reader.push_back("-nosmooth");
                ours.insert(ours.end(), {"--upsampling", "box"});
            }
            reader.push_back(path("in.jpg"));
            ASSERT_EQ(0, run(reader).status);
            const Picture expected = loadPnm("peer.pnm");
            const std::string name = expected.channels == 1 ? "out.pgm" : "out.ppm";
            ours.push_back(path(name));
            const Outcome outcome = vekpix(ours);
            ASSERT_EQ(0, outcome.status) << outcome.errors;
            EXPECT_EQ("", outcome.errors);
            const Picture actual = loadPnm(name);
            ASSERT_EQ(expected.width, actual.width);
            ASSERT_EQ(expected.height, actual.height);
            EXPECT_LE(largestDifference(expected, actual), 3);
            EXPECT_LE(meanDifference(expected, actual), 0.3);
        }
    }
}

TEST_F(DecodeCommand, WritesPngPpmAndPgmOfAnyScale)
{
    const std::vector<uint8_t> colour = peer::write(peer::draw(61, 45, 3, Scene::Soft), {});
    const std::vector<uint8_t> grey = peer::write(peer::draw(61, 45, 1, Scene::Soft), {.stored = Stored::Grey});
    save("colour.jpg", colour);
    save("grey.jpg", grey);
    for (const int scale : {1, 2, 4, 8}) {
        const std::string number = std::to_string(scale);
        ASSERT_EQ(0, vekpix({"decode", path("colour.jpg"), path("out.ppm"), "--scale", number}).status);
        EXPECT_TRUE(support::decode(colour, {scale, 1}).pixels == loadPnm("out.ppm").pixels);
        ASSERT_EQ(0, vekpix({"decode", path("grey.jpg"), path("out.pgm"), "--scale", number}).status);
        EXPECT_TRUE(support::decode(grey, {scale, 1}).pixels == loadPnm("out.pgm").pixels);
        ASSERT_EQ(0,
                  vekpix({"decode", path("colour.jpg"), path("out.png"), "--scale", number, "--threads", "1"}).status);
        const Outcome info = vekpix({"info", path("out.png")});
        EXPECT_EQ(0, info.status);
        const int width = (61 + scale - 1) / scale;
        EXPECT_NE(std::string::npos, info.output.find(std::to_string(width) + " x ")) << info.output;
    }
}

TEST_F(DecodeCommand, InksGoToPamFilesAndBack)
{
    const Picture inks = peer::draw(61, 45, 4, Scene::Soft);
    for (const Stored stored : {Stored::Cmyk, Stored::Ycck}) {
        save("in.jpg", peer::write(inks, {.quality = 95, .stored = stored, .jfif = false, .adobe = true}));
        ASSERT_EQ(0, vekpix({"decode", path("in.jpg"), path("inks.pam")}).status);
        EXPECT_NE(std::string::npos, vekpix({"info", path("inks.pam")}).output.find("61 x 45, 8 bits, CMYK"));
        ASSERT_EQ(0, vekpix({"decode", path("in.jpg"), path("light.ppm")}).status);
        EXPECT_TRUE(support::decode(bytes("in.jpg")).pixels == loadPnm("light.ppm").pixels);
        std::vector<std::string> encode = {"encode", "--quality", "98", path("inks.pam"), path("out.jpg")};
        if (stored == Stored::Cmyk)
            encode.push_back("--no-transform");
        ASSERT_EQ(0, vekpix(encode).status);
        const std::string info = vekpix({"info", path("out.jpg")}).output;
        EXPECT_NE(std::string::npos, info.find(stored == Stored::Cmyk ? "CMYK" : "YCCK")) << info;
        EXPECT_EQ(0, vekpix({"compare", path("out.jpg"), path("inks.pam")}).status);
    }
    EXPECT_NE(std::string::npos, failure({"compare", path("light.ppm"), path("inks.pam")}).find("inks"));
}

TEST_F(DecodeCommand, DamagedFilesGiveOneLineAndNoPicture)
{
    std::vector<uint8_t> file = peer::write(peer::draw(61, 45, 3, Scene::Soft), {});
    file.resize(file.size() / 2);
    save("cut.jpg", file);
    save("text.jpg", std::vector<uint8_t>{'t', 'e', 'x', 't'});
    for (const std::string name : {"cut.jpg", "text.jpg", "missing.jpg"}) {
        const Outcome outcome = vekpix({"decode", path(name), path("out.png")});
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_EQ(0u, outcome.errors.find("vekpix: ")) << outcome.errors;
        EXPECT_NE(std::string::npos, outcome.errors.find(path(name) + ": ")) << outcome.errors;
        EXPECT_EQ(outcome.errors.size() - 1, outcome.errors.find('\n')) << outcome.errors;
        EXPECT_FALSE(fs::exists(path("out.png")));
    }
    EXPECT_EQ(1, vekpix({"decode", path("cut.jpg"), path("out.tif")}).status);
    EXPECT_EQ(1, vekpix({"decode", path("cut.jpg"), path("out.png"), "--scale", "3"}).status);
    EXPECT_EQ(1, vekpix({"info", path("text.jpg")}).status);
}

TEST_F(DecodeCommand, InfoTellsMarkersAndTables)
{
    save("in.jpg", peer::write(peer::draw(61, 45, 3, Scene::Soft), {.restartInterval = 4}));
    const Outcome outcome = vekpix({"info", path("in.jpg")});
    EXPECT_EQ(0, outcome.status);
    for (const char* words : {"SOF0", "61 x 45", "restart interval of 4", "quantisation table 1", "AC table 0"})
        EXPECT_NE(std::string::npos, outcome.output.find(words)) << outcome.output;
}

TEST_F(DecodeCommand, OutputThatTakesNothingIsAFailureInOneLine)
{
    const std::string full = ">/dev/full";
    const std::string nobodyReads = "3<>\"$0\" 4>\"$0\" 3<&- >&4";
    save("in.jpg", peer::write(peer::draw(61, 45, 3, Scene::Soft), {}));
    ASSERT_EQ(0, mkfifo(path("pipe.ppm").c_str(), 0600));
    const auto redirected = [&](const std::string& where, const std::vector<std::string>& arguments) {
        std::vector<std::string> shell = {"sh", "-c", "\"$@\" " + where, path("pipe.ppm"), VEKPIX_PROGRAM};
        shell.insert(shell.end(), arguments.begin(), arguments.end());
        return run(shell);
    };
    for (const std::string& where : {full, nobodyReads})
        for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
                 {"info", path("in.jpg")}, {"compare", path("in.jpg"), path("in.jpg")}, {"--help"}}) {
            const Outcome outcome = redirected(where, arguments);
            EXPECT_EQ(1, outcome.status) << where << ' ' << arguments[0];
            EXPECT_EQ("vekpix: cannot write to standard output\n", outcome.errors) << where << ' ' << arguments[0];
        }
    fs::create_symlink("/dev/stdout", path("stdout.ppm"));
    EXPECT_EQ("vekpix: cannot write " + path("stdout.ppm") + ": No space left on device\n",
              redirected(full, {"decode", path("in.jpg"), path("stdout.ppm")}).errors);
}

TEST_F(DecodeCommand, PeakMemoryStaysBelowTheRawPictureAnd64Mebibytes)
{
    const long allowed = 3000L * 2000 * 3 / 1024 + 64 * 1024;
    for (const bool interleaved : {true, false})
        for (const int restart : {0, 188}) {
            save("large.jpg", peer::write(peer::draw(3000, 2000, 3, Scene::Soft), {.sampling = {{2, 2}, {1, 1}, {1, 1}},
                                                                                   .restartInterval = restart,
                                                                                   .interleaved = interleaved}));
            const Outcome outcome = vekpix({"decode", path("large.jpg"), path("large.ppm")});
            EXPECT_EQ(0, outcome.status) << outcome.errors;
            if (!support::underSanitizer) {
                EXPECT_LT(outcome.peakKilobytes, allowed);
            }
        }
}
