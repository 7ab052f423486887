#include <memory>
#include <string>

#include "commands/encoding.h"
#include "commands/progress.h"
#include "error.h"
#include "io/output_file.h"
#include "jpeg2000/encoder.h"

namespace vekpix {

namespace {

jpeg2000::Progression progressionNamed(const std::string& name)
{
    using jpeg2000::Progression;
    if (name == "RLCP")
        return Progression::Rlcp;
    if (name == "RPCL")
        return Progression::Rpcl;
    if (name == "PCRL")
        return Progression::Pcrl;
    return name == "CPRL" ? Progression::Cprl : Progression::Lrcp;
}

class Jpeg2000Encoding : public Encoding {
public:
    bool writes(ImageFormat format) const override
    {
        return format == ImageFormat::Jp2 || format == ImageFormat::Jpeg2000;
    }
    const char* name() const override { return "JPEG 2000"; }

    void addOptions(CLI::Option_group& group, CLI::Option* lossless) override
    {
        CLI::Option* rate = group.add_option("--rate", rate_, "bits per pixel of the file")
                                ->check(CLI::Range(0.001, 1000.0))
                                ->excludes(lossless);
        group.add_option("--psnr", psnr_, "decibels that the decoded picture is to reach")
            ->check(CLI::Range(10.0, 100.0))
            ->excludes(lossless)
            ->excludes(rate);
        group.add_option("--levels", options_.levels, "levels of the wavelet transform")
            ->check(CLI::Range(0, 32))
            ->capture_default_str();
        group.add_option("--block", blockSize_, "side of the code-blocks")
            ->check(CLI::IsMember({4, 8, 16, 32, 64}))
            ->capture_default_str();
        group.add_option("--tiles", tiles_, "size of tiles, as 512x256; one tile if none is told");
        group.add_option("--layers", options_.layers, "quality layers")
            ->check(CLI::Range(1, 64))
            ->capture_default_str();
        group.add_option("--progression", progression_, "order of the packets")
            ->check(CLI::IsMember({"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"}))
            ->capture_default_str();
        addStyle(group, "--bypass", jpeg2000::styleBypass, "stores low bit planes as they are");
        addStyle(group, "--reset", jpeg2000::styleReset, "resets contexts with each coding pass");
        addStyle(group, "--termall", jpeg2000::styleTermAll, "ends a segment with each coding pass");
        addStyle(group, "--causal", jpeg2000::styleCausal, "contexts do not look below their stripe");
        addStyle(group, "--pterm", jpeg2000::stylePredictableTermination, "ends segments so that damage shows");
        addStyle(group, "--segsym", jpeg2000::styleSegmentationSymbols, "marks the end of each bit plane");
    }

    void encode(const EncodeRequest& request) override
    {
        if (rate_ > 0)
            options_.bitsPerPixel = rate_;
        if (psnr_ > 0)
            options_.psnr = psnr_;
        options_.threads = request.threads;
        options_.progression = progressionNamed(progression_);
        options_.jp2 = formatOf(request.output) == ImageFormat::Jp2;
        for (options_.blockSizeLog = 2; 1 << options_.blockSizeLog < blockSize_;) ++options_.blockSizeLog;
        setTiles();
        const std::unique_ptr<RowReader> picture = openPicture(request.input, SampleDepth::AsStored);
        OutputFile file(request.output);
        Progress progress(picture->height());
        options_.onRows = [&](int rows) { progress.advance(rows); };
        jpeg2000::encode(*picture, file, options_);
        file.commit();
    }

private:
    void addStyle(CLI::Option_group& group, const char* name, int style, const char* description)
    {
        group.add_flag_callback(
            name, [this, style] { options_.blockStyle |= style; }, description);
    }

    void setTiles()
    {
        if (tiles_.empty())
            return;
        size_t used = 0;
        try {
            options_.tileWidth = std::stoi(tiles_, &used);
            if (used < tiles_.size() && tiles_[used] == 'x') {
                const std::string height = tiles_.substr(used + 1);
                options_.tileHeight = std::stoi(height, &used);
                if (used == height.size() && options_.tileWidth > 0 && options_.tileHeight > 0)
                    return;
            }
        } catch (const std::logic_error&) {  // no number, or too large
        }
        throw Error("--tiles: must be a size as 512x256");
    }

    jpeg2000::EncodeOptions options_;
    double rate_ = 0;
    double psnr_ = 0;
    int blockSize_ = 64;
    std::string tiles_;
    std::string progression_ = "LRCP";
};

}  // namespace

std::unique_ptr<Encoding> makeJpeg2000Encoding() { return std::make_unique<Jpeg2000Encoding>(); }

}  // namespace vekpix
