#include <algorithm>
#include <array>
#include <memory>

#include "commands/decoding.h"
#include "image/formats.h"
#include "io/output_file.h"
#include "tiff/decoder.h"

namespace vekpix {

namespace {

class TiffDecoding : public Decoding {
public:
    const char* name() const override { return "TIFF"; }
    // BigTIFF files too, which the decoder refuses.
    bool reads(std::span<const uint8_t> file) const override
    {
        static constexpr std::array<std::array<uint8_t, 4>, 4> beginnings = {
            {{'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}}};
        return file.size() >= 4 && std::ranges::any_of(beginnings, [&](const auto& beginning) {
                   return std::ranges::equal(beginning, file.first(4));
               });
    }
    void addOptions(CLI::Option_group&) override {}
    void decode(const DecodeRequest& request, std::span<const uint8_t> file) override
    {
        const auto decoder = reading(request.input, [&] { return std::make_unique<tiff::Decoder>(file); });
        OutputFile output(request.output);
        const auto writer = makePictureWriter(formatOf(request.output), decoder->shape(), output);
        writeBands(request.input, *decoder, *writer);
        output.commit();
    }
};

}  // namespace

std::unique_ptr<Decoding> makeTiffDecoding() { return std::make_unique<TiffDecoding>(); }

}  // namespace vekpix
