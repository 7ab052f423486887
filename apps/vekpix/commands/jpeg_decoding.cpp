#include <memory>
#include <string>

#include "commands/decoding.h"
#include "image/formats.h"
#include "io/output_file.h"
#include "jpeg/decoder.h"

namespace vekpix {

namespace {

class JpegDecoding : public Decoding {
public:
    const char* name() const override { return "JPEG"; }
    bool reads(std::span<const uint8_t> file) const override
    {
        return file.size() >= 2 && file[0] == 0xFF && file[1] == 0xD8;
    }
    void addOptions(CLI::Option_group& group) override
    {
        group.add_option("--scale", scale_, "divides width and height")
            ->check(CLI::IsMember({1, 2, 4, 8}))
            ->capture_default_str();
        group
            .add_option("--upsampling", upsampling_,
                        "chroma with fewer samples: smooth by a triangle filter, box by replication")
            ->check(CLI::IsMember({"smooth", "box"}))
            ->capture_default_str();
    }
    void decode(const DecodeRequest& request, std::span<const uint8_t> file) override
    {
        const ImageFormat format = formatOf(request.output);
        jpeg::DecodeOptions options;
        options.scale = scale_;
        options.inks = format == ImageFormat::Pam;
        options.upsampling = upsampling_ == "box" ? jpeg::Upsampling::Box : jpeg::Upsampling::Smooth;
        options.threads = request.threads;
        const auto decoder = reading(request.input, [&] { return std::make_unique<jpeg::Decoder>(file, options); });
        OutputFile output(request.output);
        const auto writer = makePictureWriter(format, decoder->shape(), output);
        writeBands(request.input, *decoder, *writer);
        output.commit();
    }

private:
    int scale_ = 1;
    std::string upsampling_ = "smooth";
};

}  // namespace

std::unique_ptr<Decoding> makeJpegDecoding() { return std::make_unique<JpegDecoding>(); }

}  // namespace vekpix
