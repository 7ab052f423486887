#include <memory>

#include "commands/decoding.h"
#include "image/formats.h"
#include "io/output_file.h"
#include "jpeg2000/decoder.h"
#include "jpeg2000/jp2_boxes.h"

namespace vekpix {

namespace {

class Jpeg2000Decoding : public Decoding {
public:
    const char* name() const override { return "JPEG 2000"; }
    bool reads(std::span<const uint8_t> file) const override
    {
        return jpeg2000::isJp2(file) || jpeg2000::isCodestream(file);
    }
    void addOptions(CLI::Option_group& group) override
    {
        group.add_option("--reduce", options_.droppedResolutions, "halves width and height so many times")
            ->check(CLI::Range(0, 32))
            ->capture_default_str();
        group.add_option("--layers", options_.layers, "decodes only so many quality layers")
            ->check(CLI::Range(1, 65535));
    }
    void decode(const DecodeRequest& request, std::span<const uint8_t> file) override
    {
        const ImageFormat format = formatOf(request.output);
        options_.threads = request.threads;
        const auto decoder =
            reading(request.input, [&] { return std::make_unique<jpeg2000::Decoder>(file, options_); });
        OutputFile output(request.output);
        const auto writer = makePictureWriter(format, decoder->shape(), output);
        writeBands(request.input, *decoder, *writer);
        output.commit();
    }

private:
    jpeg2000::DecodeOptions options_;
};

}  // namespace

std::unique_ptr<Decoding> makeJpeg2000Decoding() { return std::make_unique<Jpeg2000Decoding>(); }

}  // namespace vekpix
