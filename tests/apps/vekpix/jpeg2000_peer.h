// Independent codecs of JPEG 2000, whose tools run as programs, and the application's decoder beside them.
#ifndef VEK_TESTS_VEKPIX_JPEG2000_PEER_H
#define VEK_TESTS_VEKPIX_JPEG2000_PEER_H

#include <string>
#include <utility>
#include <vector>

#include "command_support.h"
#include "image/formats.h"
#include "image/pnm_rows.h"
#include "io/byte_sink.h"
#include "jpeg2000/decoder.h"
#include "raster_support.h"

namespace support {

using Options = std::vector<std::string>;

inline Raster decodeJpeg2000(std::span<const uint8_t> file, const vekpix::jpeg2000::DecodeOptions& options = {})
{
    vekpix::jpeg2000::Decoder decoder(file, options);
    Raster picture(decoder.shape());
    const size_t step = picture.shape.rowBytes();
    std::vector<uint8_t> band(step * static_cast<size_t>(decoder.bandRows()));
    int y = 0;
    while (const int rows = decoder.readBand(band.data(), step)) {
        std::copy_n(band.begin(), static_cast<size_t>(rows) * step, picture.row(y));
        y += rows;
    }
    EXPECT_EQ(picture.shape.height, y);
    return picture;
}

class Jpeg2000Test : public CommandTest {
protected:
    // The file that a peer makes of a picture.
    std::vector<uint8_t> openJpeg(const Raster& picture, const Options& options,
                                  const std::string& name = "a.j2k") const
    {
        return compress("opj_compress", picture, options, name);
    }
    std::vector<uint8_t> grok(const Raster& picture, const Options& options, const std::string& name = "a.j2k") const
    {
        return compress("grk_compress", picture, options, name);
    }

    // The picture that a peer makes of a file.
    Raster openJpegDecodes(std::span<const uint8_t> file, const Options& options = {},
                           const std::string& name = "b.j2k") const
    {
        save(name, file);
        Options command = {"opj_decompress", "-i", path(name), "-o", path("b.pnm")};
        command.insert(command.end(), options.begin(), options.end());
        std::filesystem::remove(path("b.pnm"));
        const Outcome outcome = run(command);
        EXPECT_EQ(0, outcome.status) << outcome.errors << outcome.output;
        const auto reader = vekpix::openPnm(path("b.pnm"), vekpix::SampleDepth::AsStored);
        return vekpix::readPicture(*reader);
    }

    Raster grokDecodes(std::span<const uint8_t> file, const std::string& name = "b.j2k") const
    {
        save(name, file);
        std::filesystem::remove(path("g.pnm"));
        const Outcome outcome = run({"grk_decompress", "-i", path(name), "-o", path("g.pnm")});
        EXPECT_EQ(0, outcome.status) << outcome.errors << outcome.output;
        const auto reader = vekpix::openPnm(path("g.pnm"), vekpix::SampleDepth::AsStored);
        return vekpix::readPicture(*reader);
    }

    // What a peer makes of raw planes, component after component.
    std::vector<uint8_t> openJpegFromRaw(const std::vector<uint8_t>& planes, const std::string& form,
                                         const Options& options) const
    {
        save("a.raw", planes);
        Options command = {"opj_compress", "-i", path("a.raw"), "-o", path("a.j2k"), "-F", form};
        command.insert(command.end(), options.begin(), options.end());
        const Outcome outcome = run(command);
        EXPECT_EQ(0, outcome.status) << outcome.errors << outcome.output;
        return bytes("a.j2k");
    }
    // The samples of one component.
    std::vector<uint8_t> openJpegComponent(std::span<const uint8_t> file, int component) const
    {
        save("b.j2k", file);
        const Outcome outcome =
            run({"opj_decompress", "-i", path("b.j2k"), "-o", path("b.raw"), "-c", std::to_string(component)});
        EXPECT_EQ(0, outcome.status) << outcome.errors << outcome.output;
        return bytes("b.raw");
    }

private:
    std::vector<uint8_t> compress(const std::string& program, const Raster& picture, const Options& options,
                                  const std::string& name) const
    {
        vekpix::MemorySink pnm;
        const auto kind = picture.shape.channels == 1 ? vekpix::PnmKind::Pgm : vekpix::PnmKind::Ppm;
        const auto writer = vekpix::makePnmWriter(picture.shape, kind, pnm);
        writer->writeRows(picture.pixels.data(), picture.shape.rowBytes(), picture.shape.height);
        writer->finish();
        const std::string input = picture.shape.channels == 1 ? "a.pgm" : "a.ppm";
        save(input, pnm.bytes());
        Options command = {program, "-i", path(input), "-o", path(name)};
        command.insert(command.end(), options.begin(), options.end());
        std::filesystem::remove(path(name));
        const Outcome outcome = run(command);
        EXPECT_EQ(0, outcome.status) << outcome.errors << outcome.output;
        return bytes(name);
    }
};

inline std::string joined(const Options& options)
{
    std::string text;
    for (const std::string& option : options) text += option + " ";
    return text;
}

}  // namespace support

#endif
