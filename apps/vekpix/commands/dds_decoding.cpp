#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "commands/decoding.h"
#include "dds/decoder.h"
#include "dds/float_map.h"
#include "image/formats.h"
#include "io/output_file.h"

namespace vekpix {

namespace {

class DdsDecoding : public Decoding {
public:
    const char* name() const override { return "DDS"; }
    bool reads(std::span<const uint8_t> file) const override
    {
        constexpr std::array<uint8_t, 4> magic = {'D', 'D', 'S', ' '};
        return file.size() >= magic.size() && std::equal(magic.begin(), magic.end(), file.begin());
    }
    void addOptions(CLI::Option_group& group) override
    {
        group.add_option("--level", options_.level, "the mipmap to take: 0 is the full size")
            ->check(CLI::Range(0, 31))
            ->capture_default_str();
        group.add_option("--face", face_, "the face of a cube: +x, -x, +y, -y, +z or -z; by default the first")
            ->check(CLI::IsMember({"+x", "-x", "+y", "-y", "+z", "-z"}));
        group.add_option("--layer", options_.layer, "the texture, or cube, of an array: 0 is the first")
            ->capture_default_str();
        group.add_flag("--ycocg", options_.ycocg,
                       "takes BC3 blocks for scaled YCoCg, also where the file does not tell so");
    }
    void decode(const DecodeRequest& request, std::span<const uint8_t> file) override
    {
        const ImageFormat format = formatOf(request.output);
        options_.threads = request.threads;
        options_.alpha = format == ImageFormat::Png || format == ImageFormat::Pam;
        const auto* const named = std::find(dds::faceNames.begin(), dds::faceNames.end(), face_);
        if (named != dds::faceNames.end())
            options_.face = static_cast<dds::Face>(named - dds::faceNames.begin());
        if (format == ImageFormat::Pfm)
            decodeToFloats(request, file);
        else
            decodeToBytes(request, file, format);
    }

private:
    void decodeToFloats(const DecodeRequest& request, std::span<const uint8_t> file) const
    {
        const dds::Chosen chosen = reading(request.input, [&] { return dds::choose(file, options_); });
        OutputFile output(request.output);
        Progress progress(chosen.surface.height);
        reading(request.input,
                [&] { dds::writeFloatMap(file, options_, output, [&](int rows) { progress.advance(rows); }); });
        output.commit();
    }
    void decodeToBytes(const DecodeRequest& request, std::span<const uint8_t> file, ImageFormat format) const
    {
        const auto decoder = reading(request.input, [&] { return std::make_unique<dds::Decoder>(file, options_); });
        OutputFile output(request.output);
        const auto writer = makePictureWriter(format, decoder->shape(), output);
        writeBands(request.input, *decoder, *writer);
        output.commit();
    }

    std::string face_;
    dds::DecodeOptions options_;
};

}  // namespace

std::unique_ptr<Decoding> makeDdsDecoding() { return std::make_unique<DdsDecoding>(); }

}  // namespace vekpix
