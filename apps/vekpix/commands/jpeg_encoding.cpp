#include <memory>
#include <string>

#include "commands/encoding.h"
#include "commands/progress.h"
#include "commands/scan_script_file.h"
#include "image/depth_rows.h"
#include "io/output_file.h"
#include "jpeg/encoder.h"

namespace vekpix {

namespace {

jpeg::ChromaSampling samplingNamed(const std::string& name)
{
    if (name == "444")
        return jpeg::ChromaSampling::Full444;
    return name == "422" ? jpeg::ChromaSampling::Half422 : jpeg::ChromaSampling::Quarter420;
}

class JpegEncoding : public Encoding {
public:
    bool writes(ImageFormat format) const override { return format == ImageFormat::Jpeg; }
    const char* name() const override { return "JPEG"; }
    void addOptions(CLI::Option_group& group, CLI::Option* lossless) override;
    void encode(const EncodeRequest& request) override;

private:
    std::unique_ptr<RowReader> openInput(const std::string& path) const;

    std::string scans_;
    std::string sampling_ = "420";
    std::string downsampling_ = "blocks";
    int precision_ = 0;  // as usual
    jpeg::EncodeOptions options_;
};

void JpegEncoding::addOptions(CLI::Option_group& group, CLI::Option* lossless)
{
    group.add_option("--quality", options_.quality, "1 (smallest file) to 100 (best picture)")
        ->check(CLI::Range(1, 100))
        ->excludes(lossless)
        ->capture_default_str();
    CLI::Option* const sampling =
        group.add_option("--sampling", sampling_, "chroma samples: 444 all, 422 half, 420 a quarter")
            ->check(CLI::IsMember({"444", "422", "420"}))
            ->excludes(lossless)
            ->capture_default_str();
    group
        .add_option("--downsampling", downsampling_,
                    "how 422 and 420 average chroma: blocks from exact values, rows from bytes as other encoders do")
        ->check(CLI::IsMember({"blocks", "rows"}))
        ->excludes(lossless)
        ->capture_default_str();
    group.add_option("--restart", options_.restartInterval, "restart marker every N MCUs (lossless: rows); 0 for none")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    group
        .add_option("--precision", precision_,
                    "bits of a sample: 8 (the default) or 12; without loss 8 to 16, by default the picture's")
        ->check(CLI::Range(8, 16));
    group.add_option("--predictor", options_.predictor, "how a lossless file predicts a sample, 1 to 7")
        ->check(CLI::Range(1, 7))
        ->needs(lossless)
        ->capture_default_str();
    group.add_option("--point-transform", options_.pointTransform, "low bits that a lossless file leaves out")
        ->check(CLI::Range(0, 15))
        ->needs(lossless)
        ->capture_default_str();
    group.add_flag("--optimize", options_.optimizeTables, "makes Huffman tables for this picture: a smaller file");
    group.add_flag("--progressive", options_.progressive, "codes in many scans, from coarse to fine");
    group.add_option("--scans", scans_, "text file that tells the scans to write");
    group.add_flag("--gray,--grey", options_.grey, "codes the luminance only");
    group.add_flag("!--no-transform", options_.colourTransform, "codes RGB or CMYK as they are, not as YCbCr or YCCK")
        ->excludes(sampling);
}

// A lossless file has the bits of the picture unless others are asked for.
std::unique_ptr<RowReader> JpegEncoding::openInput(const std::string& path) const
{
    const int bits = precision_ != 0 || options_.lossless ? precision_ : 8;
    if (bits == 8)
        return openPicture(path);
    std::unique_ptr<RowReader> picture = openPicture(path, SampleDepth::AsStored);
    return bits == 0 ? std::move(picture) : withBits(std::move(picture), bits);
}

void JpegEncoding::encode(const EncodeRequest& request)
{
    options_.lossless = request.lossless;
    options_.threads = request.threads;
    const std::unique_ptr<RowReader> picture = openInput(request.input);
    options_.scans = readScanScript(scans_);
    OutputFile file(request.output);
    Progress progress(int64_t{picture->height()} * jpeg::encodePasses(picture->shape(), options_));
    options_.sampling = samplingNamed(sampling_);
    if (downsampling_ == "rows")
        options_.downsampling = jpeg::ChromaDownsampling::Rows;
    options_.onRows = [&](int rows) { progress.advance(rows); };
    jpeg::encode(*picture, file, options_);
    file.commit();
}

}  // namespace

std::unique_ptr<Encoding> makeJpegEncoding() { return std::make_unique<JpegEncoding>(); }

}  // namespace vekpix
