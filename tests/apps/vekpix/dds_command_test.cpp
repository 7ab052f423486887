// The commands on DDS files as a user runs them.
#include <gtest/gtest.h>

#include <bit>
#include <string>

#include "command_support.h"
#include "dds_support.h"
#include "image/formats.h"

using support::Outcome;
using vekpix::Raster;
using vekpix::Shape;
namespace fs = std::filesystem;

namespace {

class DdsCommand : public support::CommandTest {
protected:
    void savePicture(const std::string& name, const Raster& picture) const
    {
        vekpix::MemorySink sink;
        const auto writer = vekpix::makePictureWriter(vekpix::formatOf(name), picture.shape, sink);
        writer->writeRows(picture.pixels.data(), picture.shape.rowBytes(), picture.shape.height);
        writer->finish();
        save(name, sink.bytes());
    }
    Raster loadPicture(const std::string& name) const
    {
        return readPicture(*vekpix::openPicture(path(name), vekpix::SampleDepth::AsStored, vekpix::Transparency::Kept));
    }
    void expectSuccess(const std::vector<std::string>& arguments) const
    {
        const Outcome outcome = vekpix(arguments);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        EXPECT_EQ("", outcome.errors);
    }
};

}  // namespace

TEST_F(DdsCommand, EncodesAndDecodesEveryFormat)
{
    const Raster lights = support::drawLights(53, 38, 4);
    savePicture("in.png", lights);
    const std::vector<std::pair<std::string, Shape>> expected = {
        {"bc1", {53, 38, 3}}, {"bc2", {53, 38, 4, 8, true}}, {"bc3", {53, 38, 4, 8, true}}, {"bc4", {53, 38, 1}},
        {"bc5", {53, 38, 3}}, {"bc7", {53, 38, 4, 8, true}}, {"ycocg-bc3", {53, 38, 3}},
    };
    for (const auto& [format, shape] : expected) {
        SCOPED_TRACE(format);
        expectSuccess({"encode", path("in.png"), path("a.dds"), "--format", format, "--mipmaps", "--threads", "2"});
        EXPECT_NE(std::string::npos, vekpix({"info", path("a.dds")}).output.find(format + " blocks"));
        for (const std::string name : {"out.png", "out.pam"}) {
            expectSuccess({"decode", path("a.dds"), path(name)});
            const Raster back = loadPicture(name);
            EXPECT_EQ(shape, back.shape);
            EXPECT_TRUE(support::decodeDds(bytes("a.dds")).pixels == back.pixels);
        }
        expectSuccess({"decode", path("a.dds"), path("out.png"), "--level", "3"});
        EXPECT_EQ(6, loadPicture("out.png").shape.width);
        EXPECT_EQ(4, loadPicture("out.png").shape.height);
        expectSuccess({"decode", path("a.dds"), path("out.ppm")});
        EXPECT_EQ((Shape{53, 38, 3}), loadPicture("out.ppm").shape);
    }
}

// Colours that cannot keep their alpha are seen on white; channels of BC4 and BC5 are taken as they are.
TEST_F(DdsCommand, AlphaThatIsNotCodedShowsWhite)
{
    Raster clear(Shape{4, 4, 4, 8, true});
    savePicture("in.png", clear);
    for (const std::string format : {"bc1", "ycocg-bc3", "bc4", "bc5"}) {
        expectSuccess({"encode", path("in.png"), path("a.dds"), "--format", format});
        expectSuccess({"decode", path("a.dds"), path("out.png")});
        EXPECT_EQ(format == "bc1" || format == "ycocg-bc3" ? 255 : 0, loadPicture("out.png").pixels[0]) << format;
    }
}

TEST_F(DdsCommand, ModesAndEffortChooseBc7Modes)
{
    savePicture("in.png", support::drawLights(16, 16, 3));
    for (int mode = 0; mode < 8; ++mode) {
        expectSuccess({"encode", "--modes", std::to_string(mode), path("in.png"), path("a.dds")});
        for (size_t block = 0; block < 16; ++block) EXPECT_EQ(mode, std::countr_zero(bytes("a.dds")[148 + 16 * block]));
    }
    expectSuccess({"encode", "--modes", "2,5", path("in.png"), path("a.dds")});
    expectSuccess({"encode", "--effort", "1", path("in.png"), path("a.dds")});
    EXPECT_NE(std::string::npos, failure({"encode", "--modes", "8", path("in.png"), path("b.dds")}).find("--modes"));
    EXPECT_NE(std::string::npos, failure({"encode", "--effort", "4", path("in.png"), path("b.dds")}).find("--effort"));
    EXPECT_NE(std::string::npos,
              failure({"encode", "--modes", "1", "--effort", "1", path("in.png"), path("b.dds")}).find("--modes"));
    EXPECT_NE(
        std::string::npos,
        failure({"encode", "--modes", "1", "--format", "bc1", path("in.png"), path("b.dds")}).find("for bc7 blocks"));
    EXPECT_FALSE(fs::exists(path("b.dds")));
}

TEST_F(DdsCommand, CubesAndTheirFaces)
{
    const Raster strip = support::drawLights(16, 96, 3);
    savePicture("in.ppm", strip);
    expectSuccess({"encode", path("in.ppm"), path("a.dds"), "--format", "bc1", "--cube", "--dx10"});
    EXPECT_NE(std::string::npos, vekpix({"info", path("a.dds")}).output.find("cube with faces +x -x +y -y +z -z"));
    for (int face = 0; face < 6; ++face) {
        expectSuccess(
            {"decode", path("a.dds"), path("out.ppm"), "--face", vekpix::dds::faceNames[static_cast<size_t>(face)]});
        Raster square(Shape{16, 16, 3});
        std::copy_n(strip.row(16 * face), square.pixels.size(), square.pixels.begin());
        EXPECT_GT(support::psnr(square, loadPicture("out.ppm"), 3), 28) << face;
    }
    failure({"decode", path("a.dds"), path("out.ppm"), "--face", "x"});
    failure({"decode", path("a.dds"), path("out.ppm"), "--layer", "1"});
    failure({"decode", path("a.dds"), path("out.ppm"), "--level", "1"});
    expectSuccess({"encode", path("in.ppm"), path("a.dds"), "--format", "bc1"});
    EXPECT_NE(std::string::npos, failure({"decode", path("a.dds"), path("b.ppm"), "--face", "+x"}).find("no cube"));
    savePicture("in.ppm", support::drawLights(16, 95, 3));
    EXPECT_NE(std::string::npos, failure({"encode", path("in.ppm"), path("b.dds"), "--cube"}).find("six squares"));
}

TEST_F(DdsCommand, FloatingPointTexturesGoToFloatMapsOnly)
{
    vekpix::dds::Texture texture;
    texture.format = vekpix::dds::Format::Bc6hSigned;
    texture.width = 5;
    texture.height = 3;
    support::Bytes file = makeHeader(texture);
    file.resize(file.size() + 32, 0x13);  // a reserved mode: zeros
    save("a.dds", file);
    expectSuccess({"decode", path("a.dds"), path("out.pfm")});
    EXPECT_EQ("PF\n5 3\n-1.0\n" + std::string(5 * 3 * 12, '\0'), contents("out.pfm"));
    EXPECT_NE(std::string::npos, failure({"decode", path("a.dds"), path("out.png")}).find(".pfm"));
    savePicture("in.png", support::drawLights(8, 8, 3));
    expectSuccess({"encode", path("in.png"), path("b.dds")});
    EXPECT_NE(std::string::npos, failure({"decode", path("b.dds"), path("b.pfm")}).find("BC6H"));
    EXPECT_FALSE(fs::exists(path("b.pfm")));
}

TEST_F(DdsCommand, DamagedFilesGiveOneLineAndNoPicture)
{
    savePicture("in.png", support::drawLights(33, 20, 3));
    expectSuccess({"encode", path("in.png"), path("a.dds"), "--format", "bc1", "--mipmaps"});
    support::Bytes cut = bytes("a.dds");
    cut.pop_back();
    save("cut.dds", cut);
    EXPECT_NE(std::string::npos, failure({"decode", path("cut.dds"), path("out.png")}).find(path("cut.dds") + ": "));
    const Outcome info = vekpix({"info", path("cut.dds")});
    EXPECT_EQ(1, info.status);
    EXPECT_NE(std::string::npos, info.output.find("level 5: 1 x 1"));
    EXPECT_NE(std::string::npos, info.errors.find("ends before"));
    failure({"encode", path("in.png"), path("out.dds"), "--lossless"});
    failure({"encode", path("in.png"), path("out.dds"), "--quality", "3"});
    failure({"encode", path("in.png"), path("out.jpg"), "--mipmaps"});
    EXPECT_FALSE(fs::exists(path("out.png")));
    EXPECT_FALSE(fs::exists(path("out.dds")));
}
