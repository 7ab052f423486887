#include <memory>
#include <string>
#include <vector>

#include "commands/encoding.h"
#include "commands/progress.h"
#include "dds/encoder.h"
#include "error.h"
#include "io/output_file.h"

namespace vekpix {

namespace {

class DdsEncoding : public Encoding {
public:
    bool writes(ImageFormat format) const override { return format == ImageFormat::Dds; }
    const char* name() const override { return "DDS"; }
    void addOptions(CLI::Option_group& group, CLI::Option* lossless) override;
    void encode(const EncodeRequest& request) override;

private:
    std::string format_ = "bc7";
    int effort_ = 2;
    CLI::Option* effortOption_ = nullptr;
    dds::EncodeOptions options_;
};

void DdsEncoding::addOptions(CLI::Option_group& group, CLI::Option* /*lossless*/)
{
    group
        .add_option("--format", format_,
                    "blocks to write; bc4 takes red or grey, bc5 red and green, bc2, bc3 and bc7 also alpha")
        ->check(CLI::IsMember({"bc1", "bc2", "bc3", "bc4", "bc5", "bc7", "ycocg-bc3"}))
        ->capture_default_str();
    CLI::Option* const modes =
        group.add_option("--modes", options_.modes, "modes that are tried for each BC7 block, as 1,5,6")
            ->delimiter(',')
            ->allow_extra_args(false)
            ->check(CLI::Range(0, 7));
    effortOption_ = group.add_option("--effort", effort_, "modes that are tried for each BC7 block: 1 few to 3 all")
                        ->check(CLI::Range(1, 3))
                        ->excludes(modes)
                        ->capture_default_str();
    group.add_flag("--mipmaps", options_.mipmaps, "adds all smaller sizes, each half the one before");
    group.add_flag("--cube", options_.cube, "takes six squares, one below the other, for a cube's +x -x +y -y +z -z");
    group.add_flag("--dx10", options_.longHeader, "writes the longer header also where the older one would do");
}

void DdsEncoding::encode(const EncodeRequest& request)
{
    if (request.lossless)
        throw Error(request.output + ": the blocks of a DDS file are not lossless");
    options_.format = dds::formatNamed(format_);
    options_.threads = request.threads;
    if (options_.format == dds::Format::Bc7) {
        if (options_.modes.empty())
            options_.modes = dds::modesOfEffort(effort_);
    } else if (!options_.modes.empty() || effortOption_->count() > 0) {
        throw Error(request.output + ": --modes and --effort are for bc7 blocks, not for " + format_);
    }
    // Where alpha is not coded, colours show over white; the channels of BC4 and BC5 are no colours.
    const bool coloursAlone = options_.format == dds::Format::Bc1 || options_.format == dds::Format::YCoCgBc3;
    const std::unique_ptr<RowReader> picture =
        openPicture(request.input, SampleDepth::Eight, coloursAlone ? Transparency::White : Transparency::Kept);
    Progress progress(dds::blocksToEncode(picture->shape(), options_));
    options_.onBlocks = [&](int64_t blocks) { progress.advance(blocks); };
    OutputFile file(request.output);
    dds::encode(*picture, file, options_);
    file.commit();
}

}  // namespace

std::unique_ptr<Encoding> makeDdsEncoding() { return std::make_unique<DdsEncoding>(); }

}  // namespace vekpix
