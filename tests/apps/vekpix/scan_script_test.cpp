// Scan scripts: their text, the rules of the standard, and the scripts that the encoder uses by itself.
#include <gtest/gtest.h>

#include <string>

#include "error.h"
#include "jpeg/scan_script.h"
#include "scan_scripts.h"

using vekpix::jpeg::checkScanScript;
using vekpix::jpeg::ColourModel;
using vekpix::jpeg::Frame;
using vekpix::jpeg::isComplete;
using vekpix::jpeg::parseScanScript;
using vekpix::jpeg::ScanScript;

namespace {

Frame frame(const std::vector<std::pair<int, int>>& sampling)
{
    Frame frame;
    frame.width = 64;
    frame.height = 48;
    for (const auto& [h, v] : sampling)
        frame.components.push_back({static_cast<int>(frame.components.size()) + 1, h, v, 0});
    return frame;
}

const Frame colour = frame({{2, 2}, {1, 1}, {1, 1}});
const Frame grey = frame({{1, 1}});

template <class Work>
std::string failure(const Work& work)
{
    try {
        work();
    } catch (const vekpix::Error& error) {
        return error.what();
    }
    return "no error";
}

void expectRefused(const std::string& text, const std::string& words, const Frame& picture = colour)
{
    const std::string message = failure([&] { checkScanScript(parseScanScript(text), picture); });
    EXPECT_NE(std::string::npos, message.find(words)) << message << "\n" << text;
}

}  // namespace

TEST(ScanScriptText, ComponentsCoefficientsAndBits)
{
    const ScanScript expected = {{{0, 1, 2}, 0, 0, 0, 1}, {{0}, 1, 5, 0, 2}, {{1}, 0, 63, 0, 0}};
    for (const char* text : {
             "0,1,2: 0-0, 0, 1; 0: 1-5, 0, 2; 1: 0-63, 0, 0;",
             "0 1 2:0 0 0 1;0:1 5 0 2;1:0 63 0 0",
             "# what comes first\n0 1 2: 0-0, 0, 1;\n\n# then\n0: 1-5,\t0,2 ; # done\n1;",
             "0/1/2 : 0 - 0 / 0 / 1 ; 0 : 1.5.0.2; 1 ;  ",
         })
        EXPECT_TRUE(expected == parseScanScript(text)) << text;
    EXPECT_TRUE(parseScanScript("").empty());
    EXPECT_TRUE(parseScanScript(" # nothing\n\n").empty());
}

TEST(ScanScriptText, ErrorsTellTheLine)
{
    const auto lineOf = [](const std::string& text) { return failure([&] { parseScanScript(text); }); };
    EXPECT_EQ("scan script, line 1: a number expected", lineOf("luma: 0-0, 0, 0;"));
    EXPECT_EQ("scan script, line 2: a number expected", lineOf("0: 0-0, 0, 0;\n0: 1-63, 0;"));
    EXPECT_EQ("scan script, line 1: ';' expected", lineOf("0: 0-0, 0, 0 0"));
    EXPECT_EQ("scan script, line 3: ';' expected", lineOf("0: 0-0, 0, 0;\n\n1: 0-0, 0, 0, 1: 1-63, 0, 0;"));
    EXPECT_EQ("scan script, line 1: a number expected", lineOf(";"));
}

TEST(ScanScriptRules, GoodOnes)
{
    for (const auto& script : support::colourScripts()) {
        const ScanScript parsed = parseScanScript(support::describe(script));
        ASSERT_EQ(script.size(), parsed.size());
        EXPECT_TRUE(checkScanScript(parsed, colour)) << support::describe(script);
        EXPECT_TRUE(isComplete(parsed, colour));
    }
    EXPECT_FALSE(checkScanScript(parseScanScript("0;1;2;"), colour));
    EXPECT_FALSE(checkScanScript(parseScanScript("0,2;1;"), colour));
    EXPECT_FALSE(isComplete(parseScanScript("0 1 2: 0-0, 0, 0; 0: 1-63, 0, 0;"), colour));
    EXPECT_FALSE(isComplete(parseScanScript("0: 0-0, 0, 0; 0: 1-63, 0, 1;"), grey));
}

TEST(ScanScriptRules, BadOnesAreRefused)
{
    expectRefused("", "no scans");
    expectRefused("0 1 3: 0-0, 0, 0;", "scan 1: the picture has no component 3");
    expectRefused("1 0 2: 0-0, 0, 0;", "components must rise");
    expectRefused("0 0: 0-0, 0, 0;", "components must rise");
    expectRefused("0 1 2: 0-0, 0, 0; 0 1: 1-63, 0, 0;", "scan 2: AC coefficients of several components");
    expectRefused("0 1 2: 0-5, 0, 0;", "DC and some of AC");
    expectRefused("0 1 2: 0-0, 0, 0; 0: 5-4, 0, 0;", "impossible coefficients");
    expectRefused("0 1 2: 0-0, 0, 0; 0: 5-64, 0, 0;", "impossible coefficients");
    expectRefused("0 1 2: 0-0, 0, 14;", "impossible bits");
    expectRefused("0 1 2: 0-0, 0, 2; 0 1 2: 0-0, 2, 0;", "impossible bits");
    expectRefused("0 1 2: 0-0, 0, 2; 0 1 2: 0-0, 1, 0;", "scan 2: coefficient 0");
    expectRefused("0 1 2: 0-0, 0, 0; 0 1 2: 0-0, 0, 0;", "scan 2: coefficient 0");
    expectRefused("0 1 2: 0-0, 0, 0; 0: 1-9, 0, 1; 0: 1-10, 1, 0;", "scan 3: coefficient 10");
    expectRefused("0 1 2: 0-0, 1, 0;", "scan 1: coefficient 0");
    expectRefused("0: 1-63, 0, 0; 0 1 2: 0-0, 0, 0;", "scan 1: AC before DC");
    expectRefused("0 1: 0-0, 0, 0;", "component 2 is missing");
    expectRefused("0; 1: 0-0, 0, 0; 2;", "sequential and progressive");
    expectRefused("0 1 2: 0-63, 0, 1;", "bits of a sequential scan");
    expectRefused("0 1 2: 0-0, 0, 0;", "too many blocks", frame({{4, 2}, {1, 1}, {2, 1}}));
}

TEST(ScanScriptDefaults, AreCompleteAndSuitEveryPicture)
{
    for (const Frame& picture : {grey, colour, frame({{4, 2}, {1, 1}, {2, 1}}), frame({{1, 1}, {1, 1}, {1, 1}, {1, 1}}),
                                 frame({{2, 2}, {1, 1}, {1, 1}, {2, 2}}), frame({{4, 4}})})
        for (const ColourModel model : {ColourModel::YCbCr, ColourModel::Rgb}) {
            if (model == ColourModel::YCbCr && picture.components.size() != 3)
                continue;
            const ScanScript progressive = progressiveScript(picture, model);
            EXPECT_TRUE(checkScanScript(progressive, picture));
            EXPECT_TRUE(isComplete(progressive, picture));
            const ScanScript sequential = sequentialScript(picture);
            EXPECT_FALSE(checkScanScript(sequential, picture));
            EXPECT_TRUE(isComplete(sequential, picture));
        }
    EXPECT_EQ(10u, progressiveScript(colour, ColourModel::YCbCr).size());
    EXPECT_EQ(6u, progressiveScript(grey, ColourModel::Grey).size());
    EXPECT_EQ(1u, sequentialScript(colour).size());
    EXPECT_EQ(3u, sequentialScript(frame({{4, 2}, {1, 1}, {2, 1}})).size());
}
