// The commands `vekpix encode` and `vekpix compare` as a user runs them, beside the packaged JPEG tools.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "command_support.h"
#include "jpeg_peer.h"
#include "support/sanitizers.h"

using peer::Picture;
using peer::Scene;
using support::Outcome;
namespace fs = std::filesystem;

namespace {

class EncodeCommand : public support::CommandTest {};
class CompareCommand : public support::CommandTest {};

bool contains(const std::string& text, const std::string& words) { return text.find(words) != std::string::npos; }

}  // namespace

TEST_F(EncodeCommand, ThePackagedToolReadsEveryOptionCombination)
{
    const Picture picture = peer::draw(97, 75, 3, Scene::Soft);
    savePnm("in.ppm", picture);
    for (const std::string sampling : {"444", "422", "420"})
        for (const std::string quality : {"20", "90"})
            for (const std::vector<std::string>& more :
                 std::vector<std::vector<std::string>>{{},
                                                       {"--optimize"},
                                                       {"--restart", "5"},
                                                       {"--downsampling", "rows"},
                                                       {"--restart", "1", "--optimize", "--threads", "2"},
                                                       {"--gray", "--threads", "1"}}) {
                std::vector<std::string> arguments = {"encode", path("in.ppm"), path("out.jpg"), "--quality",
                                                      quality,  "--sampling",   sampling};
                arguments.insert(arguments.end(), more.begin(), more.end());
                SCOPED_TRACE(testing::PrintToString(arguments));
                const Outcome outcome = vekpix(arguments);
                ASSERT_EQ(0, outcome.status) << outcome.errors;
                EXPECT_EQ("", outcome.output + outcome.errors);
                ASSERT_EQ(
                    0, run({"djpeg", "-dct", "int", "-nosmooth", "-pnm", "-outfile", path("peer.pnm"), path("out.jpg")})
                           .status);
                const Picture decoded = loadPnm("peer.pnm");
                EXPECT_EQ(97, decoded.width);
                EXPECT_EQ(75, decoded.height);
                EXPECT_TRUE(peer::read(bytes("out.jpg"), 1, peer::Chroma::Replicated).pixels == decoded.pixels);
            }
}

TEST_F(EncodeCommand, PngAndPnmFilesOfOnePictureGiveOneFile)
{
    savePnm("in.ppm", peer::draw(61, 45, 3, Scene::Soft));
    ASSERT_EQ(0, vekpix({"encode", path("in.ppm"), path("a.jpg")}).status);
    ASSERT_EQ(0, vekpix({"decode", path("a.jpg"), path("b.png")}).status);
    ASSERT_EQ(0, vekpix({"decode", path("a.jpg"), path("b.ppm")}).status);
    for (const std::string optimize : {"--threads=0", "--optimize"}) {
        ASSERT_EQ(0, vekpix({"encode", path("b.png"), path("png.jpg"), optimize}).status);
        ASSERT_EQ(0, vekpix({"encode", path("b.ppm"), path("ppm.jpg"), optimize}).status);
        EXPECT_TRUE(bytes("png.jpg") == bytes("ppm.jpg"));
    }
    savePnm("in.pgm", peer::draw(61, 45, 1, Scene::Soft));
    ASSERT_EQ(0, vekpix({"encode", path("in.pgm"), path("grey.jpeg")}).status);
    EXPECT_EQ(1, peer::read(bytes("grey.jpeg")).channels);
}

TEST_F(EncodeCommand, WrongOptionsAreToldInOneLine)
{
    savePnm("in.ppm", peer::draw(8, 8, 3, Scene::Soft));
    const auto encodeWith = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"encode", path("in.ppm"), path("out.jpg")});
        const std::string line = failure(options);
        EXPECT_FALSE(fs::exists(path("out.jpg")));
        return line;
    };
    EXPECT_TRUE(contains(encodeWith({"--quality", "0"}), "--quality"));
    EXPECT_TRUE(contains(encodeWith({"--quality", "101"}), "--quality"));
    EXPECT_TRUE(contains(encodeWith({"--quality", "best"}), "--quality"));
    EXPECT_TRUE(contains(encodeWith({"--sampling", "411"}), "--sampling"));
    EXPECT_TRUE(contains(encodeWith({"--restart", "65536"}), "--restart"));
    EXPECT_TRUE(contains(encodeWith({"--restart", "-1"}), "--restart"));
    EXPECT_TRUE(contains(encodeWith({"--threads", "-1"}), "--threads"));
    EXPECT_TRUE(contains(encodeWith({"--no-transform", "--sampling", "420"}), "--sampling"));
    EXPECT_TRUE(contains(encodeWith({"--lossless", "--quality", "90"}), "--quality"));
    EXPECT_TRUE(contains(encodeWith({"--lossless", "--sampling", "444"}), "--sampling"));
    EXPECT_TRUE(contains(encodeWith({"--lossless", "--downsampling", "rows"}), "--downsampling"));
    encodeWith({"--unknown"});
    failure({"encode", path("in.ppm")});
    failure({"paint"});
    failure({});
}

TEST_F(EncodeCommand, MessagesAreOneLineWhateverNamesAndFilesHold)
{
    EXPECT_TRUE(contains(failure({"encode", path("new\nline\x1B[2J.ppm"), path("out.jpg")}), "new?line?[2J.ppm"));
    EXPECT_TRUE(contains(failure({"encode", "in.ppm", "out.jpg", "--sampling", "4\n4"}), "4?4"));
    save("in.pam", std::string("P7\nWIDTH 1\nHEIGHT 1\nDEPTH 9\nMAXVAL 255\nTUPLTYPE \x1B\x7F\nENDHDR\n123456789"));
    EXPECT_TRUE(contains(failure({"encode", path("in.pam"), path("out.jpg")}), "type ??"));
}

TEST_F(EncodeCommand, WrongFilesAreToldInOneLineAndLeaveNothing)
{
    save("cut.ppm", std::string("P6 10 10 255\nabc"));
    save("text.png", std::string("hello"));
    savePnm("in.ppm", peer::draw(8, 8, 3, Scene::Soft));
    savePnm("wide.pgm", {65536, 1, 1, std::vector<uint8_t>(65536)});
    const auto before = std::distance(fs::directory_iterator(folder_), fs::directory_iterator()) + 2;  // the streams
    for (const std::string name : {"cut.ppm", "text.png", "missing.png"})
        EXPECT_TRUE(contains(failure({"encode", path(name), path("out.jpg")}), path(name)));
    EXPECT_TRUE(contains(failure({"encode", path("wide.pgm"), path("out.jpg")}), "65535"));
    EXPECT_TRUE(contains(failure({"encode", path("in.ppm"), path("out.png")}), ".jpg"));
    EXPECT_TRUE(contains(failure({"encode", path("in.ppm"), path("missing/out.jpg")}), "missing/out.jpg"));
    EXPECT_TRUE(contains(failure({"encode", path("in.gif"), path("out.jpg")}), "in.gif"));
    EXPECT_EQ(before, std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
}

TEST_F(EncodeCommand, ASignalEndsTheProgramAndNothingIsLeftBehind)
{
    ASSERT_EQ(0, mkfifo(path("in.ppm").c_str(), 0600));
    const auto files = [&] { return std::distance(fs::directory_iterator(folder_), fs::directory_iterator()); };
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        const int rows = open(path("in.ppm").c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_EQ(13, write(rows, "P6 64 64 255\n", 13));  // and no pixels: the program waits for them
        const pid_t child = fork();
        if (child == 0) {
            std::signal(signal, SIG_DFL);
            execl(VEKPIX_PROGRAM, VEKPIX_PROGRAM, "encode", path("in.ppm").c_str(), path("out.jpg").c_str(), nullptr);
            _exit(127);
        }
        for (int wait = 0; wait < 10000 && files() < 2; ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(2, files()) << "the picture and the unfinished file";
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        kill(child, signal);
        int status = 0;
        EXPECT_EQ(child, waitpid(child, &status, 0));
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_EQ(1, files());
        close(rows);
    }
}

TEST_F(EncodeCommand, PeakMemoryStaysBelowTheRawPictureAnd64Mebibytes)
{
    constexpr int width = 6000;
    constexpr int height = support::underSanitizer ? 400 : 4000;
    const Picture tile = peer::draw(600, 400, 3, Scene::Soft);
    Picture picture{width, height, 3, {}};
    picture.pixels.reserve(size_t{3} * width * height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += tile.width) {
            const auto row = tile.pixels.begin() + std::ptrdiff_t{3} * tile.width * (y % tile.height);
            picture.pixels.insert(picture.pixels.end(), row, row + std::ptrdiff_t{3} * tile.width);
        }
    savePnm("in.ppm", picture);
    picture = {};
    const auto peakWith = [&](const std::string& name, std::vector<std::string> options) {
        options.insert(options.begin(), {"encode", path(name), path("out.jpg")});
        const Outcome outcome = vekpix(options);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        return support::underSanitizer ? 0 : outcome.peakKilobytes;
    };
    // A PNM file is read once more for the second pass; of a PNG file the picture is kept.
    constexpr long raw = 3L * width * height / 1024;
    EXPECT_LT(peakWith("in.ppm", {}), 64 * 1024);
    EXPECT_LT(peakWith("in.ppm", {"--optimize", "--quality", "100", "--sampling", "444"}), 64 * 1024);
    EXPECT_LT(peakWith("in.ppm", {"--restart", "100", "--threads", "8"}), 64 * 1024);
    ASSERT_EQ(0, vekpix({"decode", path("out.jpg"), path("in.png")}).status);
    EXPECT_LT(peakWith("in.png", {}), 64 * 1024);
    EXPECT_LT(peakWith("in.png", {"--optimize"}), raw + 64 * 1024);
}

TEST_F(CompareCommand, TellsNoiseRatioAndLargestDifferencePerChannel)
{
    savePnm("a.ppm", {2, 2, 3, {10, 20, 30, 10, 20, 30, 10, 20, 30, 10, 20, 30}});
    savePnm("b.ppm", {2, 2, 3, {10, 22, 30, 10, 20, 25, 10, 20, 30, 10, 20, 31}});
    const Outcome outcome = vekpix({"compare", path("a.ppm"), path("b.ppm")});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(
        "red       PSNR    inf dB  largest difference 0\n"
        "green     PSNR  48.13 dB  largest difference 2\n"
        "blue      PSNR  40.00 dB  largest difference 5\n"
        "all       PSNR  44.15 dB  largest difference 5\n",
        outcome.output);
}

TEST_F(CompareCommand, TakesEveryFormatAndGreyBesideColour)
{
    savePnm("a.pgm", {2, 1, 1, {7, 200}});
    savePnm("a.ppm", {2, 1, 3, {7, 7, 7, 200, 200, 199}});
    Outcome outcome = vekpix({"compare", path("a.pgm"), path("a.pgm")});
    EXPECT_EQ("grey      PSNR    inf dB  largest difference 0\n", outcome.output);
    outcome = vekpix({"compare", path("a.pgm"), path("a.ppm")});
    EXPECT_TRUE(contains(outcome.output, "green     PSNR    inf dB  largest difference 0\n")) << outcome.output;
    EXPECT_TRUE(contains(outcome.output, "blue      PSNR  51.14 dB  largest difference 1\n")) << outcome.output;

    savePnm("b.ppm", peer::draw(61, 145, 3, Scene::Soft));
    ASSERT_EQ(0, vekpix({"encode", path("b.ppm"), path("b.jpg")}).status);
    ASSERT_EQ(0, vekpix({"decode", path("b.jpg"), path("b.png")}).status);
    outcome = vekpix({"compare", path("b.png"), path("b.jpg")});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_TRUE(contains(outcome.output, "all       PSNR    inf dB  largest difference 0\n")) << outcome.output;
    EXPECT_TRUE(contains(vekpix({"compare", path("b.ppm"), path("b.jpg")}).output, "all       PSNR  3"));
}

TEST_F(CompareCommand, PicturesOfDifferentSizesAreAnError)
{
    savePnm("a.pgm", {2, 1, 1, {7, 200}});
    savePnm("b.pgm", {1, 2, 1, {7, 200}});
    const std::string line = failure({"compare", path("a.pgm"), path("b.pgm")});
    EXPECT_TRUE(contains(line, "2 x 1") && contains(line, "1 x 2")) << line;
    save("c.jpg", std::string("text"));
    EXPECT_TRUE(contains(failure({"compare", path("a.pgm"), path("c.jpg")}), "c.jpg"));
    EXPECT_TRUE(contains(failure({"compare", path("a.pgm"), path("missing.pgm")}), "missing.pgm"));
}
