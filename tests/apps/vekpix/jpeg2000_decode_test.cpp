// Files of independent codecs: lossless ones exactly equal, lossy ones as their own decoder has them.
#include <gtest/gtest.h>

#include <tuple>

#include "error.h"
#include "jpeg2000_peer.h"

using support::decodeJpeg2000;
using support::drawDeep;
using support::joined;
using support::largestDifference;
using support::Options;
using support::psnr;
using support::Raster;

namespace {

Options operator+(Options a, const Options& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class Jpeg2000Decode : public support::Jpeg2000Test {
protected:
    void expectLossless(const Raster& picture, const Options& options, const std::string& name = "a.j2k")
    {
        SCOPED_TRACE(joined(options));
        const std::vector<uint8_t> file = openJpeg(picture, options, name);
        const Raster decoded = decodeJpeg2000(file, {.threads = 2});
        EXPECT_EQ(picture.shape, decoded.shape);
        EXPECT_TRUE(picture.pixels == decoded.pixels) << "first peer";
    }
    void expectLosslessFromBoth(const Raster& picture, const Options& options, const std::string& name = "a.j2k")
    {
        expectLossless(picture, options, name);
        SCOPED_TRACE(joined(options));
        const std::vector<uint8_t> file = grok(picture, options, name);
        const Raster decoded = decodeJpeg2000(file);
        EXPECT_EQ(picture.shape, decoded.shape);
        EXPECT_TRUE(picture.pixels == decoded.pixels) << "second peer";
    }

    // The same picture as the peer makes of the same file within `most`, and as good.
    void expectAsPeer(const Raster& picture, const std::vector<uint8_t>& file, int most)
    {
        const Raster peers = openJpegDecodes(file);
        const Raster decoded = decodeJpeg2000(file);
        EXPECT_LE(largestDifference(peers, decoded), most);
        EXPECT_GE(psnr(picture, decoded), psnr(picture, peers) - 0.1);
    }
};

const Raster& grey()
{
    static const Raster picture = drawDeep({201, 147, 1, 8});
    return picture;
}
const Raster& colours()
{
    static const Raster picture = drawDeep({197, 151, 3, 8});
    return picture;
}

}  // namespace

TEST_F(Jpeg2000Decode, LosslessWithEveryBlockStyle)
{
    const Raster small = drawDeep({97, 71, 1, 8}, 20);
    for (int style = 0; style < 64; ++style) expectLossless(small, {"-M", std::to_string(style), "-b", "32,32"});
    for (const int style : {0, 1, 2, 4, 8, 16, 32, 63, 5, 7, 9, 13, 37, 41, 58})
        expectLosslessFromBoth(colours(), {"-M", std::to_string(style)});
}

TEST_F(Jpeg2000Decode, LosslessOfEveryDepth)
{
    for (const int bits : {8, 9, 10, 12, 14, 16})
        for (const int channels : {1, 3}) expectLosslessFromBoth(drawDeep({61, 83, channels, bits}, 100), {"-n", "4"});
    for (const int style : {1, 4, 5, 8, 63})
        expectLossless(drawDeep({61, 83, 3, 16}, 1000), {"-M", std::to_string(style)});
}

TEST_F(Jpeg2000Decode, LosslessInSmallSizes)
{
    for (const auto& [width, height, resolutions] :
         {std::tuple(1, 1, 1), std::tuple(1, 9, 1), std::tuple(13, 1, 1), std::tuple(2, 2, 2), std::tuple(3, 5, 2),
          std::tuple(33, 4, 3), std::tuple(31, 31, 5)})
        for (const int channels : {1, 3})
            expectLossless(drawDeep({width, height, channels, 8}), {"-n", std::to_string(resolutions)});
}

TEST_F(Jpeg2000Decode, LosslessWithTilesAtOddOffsets)
{
    for (const char* tile : {"64,64", "61,47", "128,33", "24,300"}) {
        expectLosslessFromBoth(colours(), {"-t", tile, "-n", "4"});
        for (const char* progression : {"LRCP", "RPCL", "PCRL", "CPRL"})
            expectLossless(colours(),
                           {"-d", "13,7", "-T", "5,3", "-t", tile, "-n", "4", "-p", progression, "-c", "[32,16]"});
    }
    expectLosslessFromBoth(grey(), {"-d", "101,57"});
    expectLossless(grey(), {"-d", "31,63", "-T", "31,1", "-t", "50,77", "-M", "8", "-n", "3"});
    // The first tile holds one column, and one row.
    expectLossless(grey(), {"-d", "63,31", "-T", "0,0", "-t", "64,32"});
}

TEST_F(Jpeg2000Decode, LosslessInEveryProgressionWithPrecinctsAndLayers)
{
    for (const char* progression : {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"}) {
        const Options order = {"-p", progression};
        expectLosslessFromBoth(colours(), order + Options{"-c", "[64,32],[32,64],[16,16]", "-r", "20,8,1"});
        expectLossless(colours(), order + Options{"-t", "100,70", "-c", "[128,128],[64,64]", "-r", "40,10,4,1"});
        expectLossless(grey(), order + Options{"-c", "[256,8],[8,256],[2,2]", "-n", "4", "-b", "16,16"});
        expectLossless(colours(), order + Options{"-TP", "R", "-r", "9,1", "-SOP", "-EPH"});
    }
}

TEST_F(Jpeg2000Decode, LosslessAcrossProgressionChanges)
{
    for (const Options& precincts : {Options{}, Options{"-c", "[64,64]"}})
        for (const char* first : {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"})
            for (const char* second : {"CPRL", "LRCP", "PCRL"}) {
                const std::string changes = std::string("T1=0,0,1,3,3,") + first + "/T1=3,0,1,6,3," + second;
                expectLossless(colours(), precincts + Options{"-POC", changes});
            }
}

// The first peer does not write all packets of such changes: its own decoder tells what there is.
TEST_F(Jpeg2000Decode, ProgressionChangesThatOverlap)
{
    for (const Options& precincts : {Options{}, Options{"-c", "[64,64]"}})
        for (const char* changes :
             {"T1=0,0,1,3,3,RLCP/T1=0,0,3,6,3,CPRL", "T1=0,0,2,6,1,LRCP/T1=0,0,3,6,3,RPCL",
              "T1=0,0,1,6,3,LRCP/T1=0,0,3,6,3,CPRL", "T1=2,1,3,5,3,PCRL/T1=0,0,1,6,3,RLCP/T1=0,0,3,6,3,LRCP"}) {
            const Options options = precincts + Options{"-POC", changes, "-r", "30,9,1"};
            SCOPED_TRACE(joined(options));
            expectAsPeer(colours(), openJpeg(colours(), options), 0);
        }
    // One tile of several has changes of its own.
    expectAsPeer(
        colours(),
        openJpeg(colours(), {"-POC", "T2=0,0,1,3,3,RLCP/T2=0,0,2,6,3,CPRL", "-r", "9,1", "-t", "128,151", "-n", "4"}),
        0);
}

TEST_F(Jpeg2000Decode, LosslessWithMarkersAndTileParts)
{
    for (const Options& options : {Options{"-SOP"}, Options{"-EPH"}, Options{"-SOP", "-EPH"}, Options{"-PLT"},
                                   Options{"-TLM"}, Options{"-SOP", "-EPH", "-PLT", "-TLM", "-C", "by hand"}})
        for (const char* part : {"R", "L", "C"})
            expectLossless(colours(), options + Options{"-TP", part, "-t", "128,100", "-r", "10,1"});
    expectLosslessFromBoth(grey(), {"-SOP", "-EPH"});
}

TEST_F(Jpeg2000Decode, LosslessWithEveryBlockSizeAndResolutionCount)
{
    for (const char* block : {"4,4", "8,4", "4,64", "16,16", "64,16", "32,32", "4,1024", "1024,4", "256,16"})
        expectLossless(grey(), {"-b", block});
    for (int resolutions = 1; resolutions <= 6; ++resolutions)
        expectLosslessFromBoth(grey(), {"-n", std::to_string(resolutions)});
    expectLossless(drawDeep({1100, 1030, 1, 8}), {"-n", "11"});
}

TEST_F(Jpeg2000Decode, LosslessWithAndWithoutTheComponentTransform)
{
    expectLossless(colours(), {"-mct", "0"});
    expectLossless(colours(), {"-mct", "1"});
}

TEST_F(Jpeg2000Decode, LosslessInJp2)
{
    expectLosslessFromBoth(grey(), {}, "a.jp2");
    expectLosslessFromBoth(colours(), {"-t", "99,80"}, "a.jp2");
    expectLossless(drawDeep({40, 30, 3, 16}), {"-n", "3"}, "a.jp2");
}

TEST_F(Jpeg2000Decode, ComponentsOfInterest)
{
    for (const Options& options : {Options{"-ROI", "c=0,U=12"}, Options{"-ROI", "c=1,U=7", "-mct", "0"}}) {
        expectLossless(colours(), options);
        SCOPED_TRACE(joined(options));
        expectAsPeer(colours(), openJpeg(colours(), options + Options{"-I", "-r", "15"}), 2);
    }
    expectLossless(grey(), {"-ROI", "c=0,U=3"});
}

TEST_F(Jpeg2000Decode, LossyAsGoodAsThePeersPicture)
{
    const Options qualities[] = {{"-r", "5"}, {"-r", "12"}, {"-r", "40"}, {"-q", "30,38,45"}, {"-r", "1"}};
    for (const Options& quality : qualities)
        for (const Options& kind :
             {Options{}, Options{"-I"}, Options{"-I", "-mct", "0", "-M", "9"},
              Options{"-I", "-t", "99,64", "-d", "3,5", "-M", "4", "-n", "3"}, Options{"-I", "-n", "1"}}) {
            SCOPED_TRACE(joined(quality + kind));
            expectAsPeer(colours(), openJpeg(colours(), quality + kind), 1);
            expectAsPeer(grey(), openJpeg(grey(), quality + kind), 1);
        }
    const Raster deep = drawDeep({120, 90, 3, 16});
    for (const char* rate : {"3", "10", "50"})
        for (const Options& kind : {Options{}, Options{"-I"}}) {
            SCOPED_TRACE(rate + joined(kind));
            const std::vector<uint8_t> file = openJpeg(deep, kind + Options{"-r", rate});
            EXPECT_GE(psnr(deep, decodeJpeg2000(file)), psnr(deep, openJpegDecodes(file)) - 0.1);
        }
    for (const char* rate : {"5", "20"}) {
        SCOPED_TRACE(rate);
        expectAsPeer(colours(), grok(colours(), {"-I", "-r", rate}), 1);
    }
}

TEST_F(Jpeg2000Decode, FewerResolutions)
{
    for (const Options& kind : {Options{}, Options{"-t", "70,64"}, Options{"-d", "13,7", "-T", "5,3", "-t", "61,47"},
                                Options{"-I", "-r", "4"}})
        for (int reduce = 1; reduce <= 5; ++reduce) {
            SCOPED_TRACE(joined(kind) + std::to_string(reduce));
            const std::vector<uint8_t> file = openJpeg(colours(), kind);
            const Raster peers = openJpegDecodes(file, {"-r", std::to_string(reduce)});
            EXPECT_LE(largestDifference(peers, decodeJpeg2000(file, {.droppedResolutions = reduce})),
                      kind.size() == 3 ? 1 : 0);
        }
    const std::vector<uint8_t> file = openJpeg(grey(), {"-n", "3"});
    EXPECT_NO_THROW(decodeJpeg2000(file, {.droppedResolutions = 2}));
    EXPECT_THROW(decodeJpeg2000(file, {.droppedResolutions = 3}), vekpix::Error);
}

TEST_F(Jpeg2000Decode, FewerLayers)
{
    for (const Options& kind :
         {Options{}, Options{"-M", "5"}, Options{"-M", "63"}, Options{"-I"}, Options{"-p", "RPCL"}})
        for (int layers = 1; layers <= 4; ++layers) {
            SCOPED_TRACE(joined(kind) + std::to_string(layers));
            const std::vector<uint8_t> file = openJpeg(colours(), kind + Options{"-r", "60,25,8,2"});
            const Raster peers = openJpegDecodes(file, {"-l", std::to_string(layers)});
            EXPECT_LE(largestDifference(peers, decodeJpeg2000(file, {.layers = layers})), 1);
        }
}

// Each pixel shows the sample that covers it.
TEST_F(Jpeg2000Decode, SubsampledComponents)
{
    struct Distances {
        const char* form;
        int dx[3];
        int dy[3];
    };
    const int width = 119;
    const int height = 87;
    for (const Distances& d :
         {Distances{"1x1:2x2:2x2", {1, 2, 2}, {1, 2, 2}}, Distances{"1x1:2x1:2x1", {1, 2, 2}, {1, 1, 1}},
          Distances{"1x1:3x2:1x4", {1, 3, 1}, {1, 2, 4}}})
        for (const Options& kind :
             {Options{"-t", "119,87"}, Options{"-t", "45,31"}, Options{"-t", "64,35", "-I", "-r", "4"},
              Options{"-p", "PCRL", "-c", "[32,32]"}, Options{"-p", "RPCL", "-c", "[16,64]", "-t", "50,50"},
              Options{"-p", "CPRL", "-c", "[16,64]"}}) {
            const std::string form = std::to_string(width) + "," + std::to_string(height) + ",3,8,u@" + d.form;
            SCOPED_TRACE(form + " " + joined(kind));
            std::vector<uint8_t> planes;
            for (int c = 0; c < 3; ++c) {
                const Raster plane =
                    drawDeep({(width + d.dx[c] - 1) / d.dx[c], (height + d.dy[c] - 1) / d.dy[c], 1, 8});
                planes.insert(planes.end(), plane.pixels.begin(), plane.pixels.end());
            }
            const std::vector<uint8_t> file = openJpegFromRaw(planes, form, kind + Options{"-mct", "0", "-n", "3"});
            const Raster decoded = decodeJpeg2000(file);
            ASSERT_EQ((vekpix::Shape{width, height, 3, 8}), decoded.shape);
            for (int c = 0; c < 3; ++c) {
                const std::vector<uint8_t> samples = openJpegComponent(file, c);
                const int wide = (width + d.dx[c] - 1) / d.dx[c];
                ASSERT_EQ(static_cast<size_t>(wide * ((height + d.dy[c] - 1) / d.dy[c])), samples.size());
                int most = 0;
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        most = std::max(most, std::abs(samples[static_cast<size_t>(y / d.dy[c] * wide + x / d.dx[c])] -
                                                       decoded.row(y)[3 * x + c]));
                EXPECT_LE(most, kind.size() == 5 ? 1 : 0) << "component " << c;
            }
        }
}

TEST_F(Jpeg2000Decode, ThreadsDoNotChangeAByte)
{
    const Raster picture = drawDeep({333, 257, 3, 8});
    for (const Options& kind : {Options{}, Options{"-t", "100,100"}, Options{"-I", "-r", "6"}}) {
        const std::vector<uint8_t> file = openJpeg(picture, kind);
        const Raster alone = decodeJpeg2000(file);
        for (const int threads : {2, 3, 8})
            EXPECT_TRUE(alone.pixels == decodeJpeg2000(file, {.threads = threads}).pixels) << joined(kind) << threads;
    }
}

TEST_F(Jpeg2000Decode, InfoTellsWhatTheHeadersSay)
{
    const auto info = [&](const Options& options, const std::string& name) {
        openJpeg(colours(), options, name);
        const support::Outcome outcome = vekpix({"info", path(name)});
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        return outcome.output;
    };
    const auto expectAll = [](const std::string& text, const Options& lines) {
        for (const std::string& line : lines) EXPECT_NE(std::string::npos, text.find(line)) << line << "\n" << text;
    };
    expectAll(info({"-d", "13,7", "-T",   "5,3",  "-t", "100,90",          "-n", "4",    "-r", "9,1", "-M", "37",
                    "-p", "PCRL", "-SOP", "-EPH", "-c", "[64,32],[16,16]", "-b", "32,16"},
                   "a.jp2"),
              {"JP2, ", "colours: sRGB\n", "code-stream: ", "picture: 197 x 151 at 13, 7\n",
               "tiles: 3 x 2 of 100 x 90 from 5, 3\n", "  components 0 to 2: 8 bits, one for 1 x 1\n",
               "coding: PCRL, 2 layers, component transform, SOP markers, EPH markers\n",
               "  components 0 to 2: 5/3 reversible, 3 levels, blocks of 32 x 16, bypass, termall, segsym\n",
               "    precincts 4 x 4, 8 x 8, 16 x 16, 64 x 32\n", "    quantisation: exponents alone, 2 guard bits\n",
               "\ntile 0: ", "\ntile 5: ", " bytes in 1 tile-part\n"});
    expectAll(info({"-I", "-r", "5", "-ROI", "c=1,U=9", "-TP", "R", "-POC", "T1=0,0,1,6,3,RPCL"}, "a.j2k"),
              {"JPEG 2000 code-stream, ", "  component 1: 9/7 irreversible, 5 levels, blocks of 64 x 64\n",
               "    quantisation: a step for each band, 2 guard bits\n", "    region of interest: 9 planes up\n",
               "  RPCL for resolutions 0 to 5, components 0 to 2, layers up to 0\n", " tile-parts\n"});
    std::vector<uint8_t> few = bytes("a.j2k");
    few.resize(60);
    save("cut.j2k", few);
    const support::Outcome cut = vekpix({"info", path("cut.j2k")});
    EXPECT_EQ(1, cut.status);
    EXPECT_EQ(0u, cut.output.find("JPEG 2000 code-stream, 60 bytes\n"));
    EXPECT_NE(std::string::npos, cut.errors.find("cut.j2k: the file's headers end early")) << cut.errors;
}

TEST_F(Jpeg2000Decode, TheCommandDecodesByFirstBytesAndTakesItsOptions)
{
    openJpeg(colours(), {"-r", "20,1"}, "a.jp2");
    std::filesystem::rename(path("a.jp2"), path("picture"));
    EXPECT_EQ(0, vekpix({"decode", path("picture"), path("whole.ppm")}).status);
    const auto whole = vekpix::openPnm(path("whole.ppm"), vekpix::SampleDepth::AsStored);
    EXPECT_TRUE(colours().pixels == vekpix::readPicture(*whole).pixels);
    EXPECT_EQ(0, vekpix({"decode", path("picture"), path("part.ppm"), "--reduce", "2", "--layers", "1"}).status);
    const auto part = vekpix::openPnm(path("part.ppm"), vekpix::SampleDepth::AsStored);
    EXPECT_TRUE(decodeJpeg2000(bytes("picture"), {.droppedResolutions = 2, .layers = 1}).pixels ==
                vekpix::readPicture(*part).pixels);
    EXPECT_NE(std::string::npos, failure({"decode", path("picture"), path("c.ppm"), "--reduce", "9"}).find("picture"));
    EXPECT_FALSE(std::filesystem::exists(path("c.ppm")));
}
