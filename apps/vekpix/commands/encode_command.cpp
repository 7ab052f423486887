#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/progress.h"
#include "commands/scan_script_file.h"
#include "error.h"
#include "image/depth_rows.h"
#include "image/formats.h"
#include "io/output_file.h"
#include "jpeg/encoder.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct EncodeArguments {
    std::string input;
    std::string output;
    std::string scans;
    std::string sampling = "420";
    std::string downsampling = "blocks";
    int precision = 0;  // as usual
    jpeg::EncodeOptions options;
};

jpeg::ChromaSampling samplingNamed(const std::string& name)
{
    if (name == "444")
        return jpeg::ChromaSampling::Full444;
    return name == "422" ? jpeg::ChromaSampling::Half422 : jpeg::ChromaSampling::Quarter420;
}

// A lossless file has the bits of the picture unless others are asked for.
std::unique_ptr<RowReader> openInput(const EncodeArguments& arguments)
{
    const int bits = arguments.precision != 0 || arguments.options.lossless ? arguments.precision : 8;
    if (bits == 8)
        return openPicture(arguments.input);
    std::unique_ptr<RowReader> picture = openPicture(arguments.input, SampleDepth::AsStored);
    return bits == 0 ? std::move(picture) : withBits(std::move(picture), bits);
}

void runEncode(EncodeArguments arguments)
{
    if (formatOf(arguments.output) != ImageFormat::Jpeg)
        throw Error(arguments.output + ": the coded picture must be named .jpg or .jpeg");
    const std::unique_ptr<RowReader> picture = openInput(arguments);
    arguments.options.scans = readScanScript(arguments.scans);
    OutputFile file(arguments.output);
    Progress progress(int64_t{picture->height()} * jpeg::encodePasses(picture->shape(), arguments.options));
    if (arguments.options.threads == 0)
        arguments.options.threads = ownGetNumThreads();
    arguments.options.sampling = samplingNamed(arguments.sampling);
    if (arguments.downsampling == "rows")
        arguments.options.downsampling = jpeg::ChromaDownsampling::Rows;
    arguments.options.onRows = [&](int rows) { progress.advance(rows); };
    jpeg::encode(*picture, file, arguments.options);
    file.commit();
}

}  // namespace

void addEncodeCommand(CLI::App& app)
{
    auto arguments = std::make_shared<EncodeArguments>();
    jpeg::EncodeOptions& options = arguments->options;
    options.threads = 0;

    CLI::App* command = app.add_subcommand("encode", "Codes a picture as a JPEG file.");
    command->add_option("input", arguments->input, "PNG, PPM, PGM or PAM file")->required();
    command->add_option("output", arguments->output, "JPEG file to write")->required();
    command->add_option("--quality", options.quality, "1 (smallest file) to 100 (best picture)")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command->add_option("--sampling", arguments->sampling, "chroma samples: 444 all, 422 half, 420 a quarter")
        ->check(CLI::IsMember({"444", "422", "420"}))
        ->capture_default_str();
    command
        ->add_option("--downsampling", arguments->downsampling,
                     "how 422 and 420 average chroma: blocks from exact values, rows from bytes as other encoders do")
        ->check(CLI::IsMember({"blocks", "rows"}))
        ->capture_default_str();
    command
        ->add_option("--restart", options.restartInterval, "restart marker every N MCUs (lossless: rows); 0 for none")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command
        ->add_option("--precision", arguments->precision,
                     "bits of a sample: 8 (the default) or 12; without loss 8 to 16, by default the picture's")
        ->check(CLI::Range(8, 16));
    CLI::Option* lossless = command->add_flag("--lossless", options.lossless, "codes every sample as it is");
    command->add_option("--predictor", options.predictor, "how a lossless file predicts a sample, 1 to 7")
        ->check(CLI::Range(1, 7))
        ->needs(lossless)
        ->capture_default_str();
    command->add_option("--point-transform", options.pointTransform, "low bits that a lossless file leaves out")
        ->check(CLI::Range(0, 15))
        ->needs(lossless)
        ->capture_default_str();
    command->add_flag("--optimize", options.optimizeTables, "makes Huffman tables for this picture: a smaller file");
    command->add_flag("--progressive", options.progressive, "codes in many scans, from coarse to fine");
    command->add_option("--scans", arguments->scans, "text file that tells the scans to write");
    command->add_flag("--gray,--grey", options.grey, "codes the luminance only");
    command->add_flag("!--no-transform", options.colourTransform,
                      "codes RGB or CMYK as they are, not as YCbCr or YCCK; takes no --sampling");
    command->add_option("--threads", options.threads, "threads to work with; 0 for all processors")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
    command->callback([arguments] { runEncode(*arguments); });
}

}  // namespace vekpix
