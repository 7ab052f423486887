#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/progress.h"
#include "commands/scan_script_file.h"
#include "error.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "io/output_file.h"
#include "jpeg/transcoder.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct TranscodeArguments {
    std::string input;
    std::string output;
    std::string scans;
    bool sequential = false;
    jpeg::TranscodeOptions options;
};

void transcode(TranscodeArguments arguments)
{
    if (formatOf(arguments.output) != ImageFormat::Jpeg)
        throw Error(arguments.output + ": the coded picture must be named .jpg or .jpeg");
    const std::vector<uint8_t> file = readFile(arguments.input);
    jpeg::TranscodeOptions& options = arguments.options;
    if (options.progressive == arguments.sequential)
        throw Error("either --progressive or --sequential must tell what the file is to become");
    options.scans = readScanScript(arguments.scans);
    if (options.threads == 0)
        options.threads = ownGetNumThreads();
    OutputFile output(arguments.output);
    try {
        Progress progress(jpeg::heightOf(file));
        options.onRows = [&](int rows) { progress.advance(rows); };
        jpeg::transcode(file, output, options);
    } catch (const Error& error) {
        throw Error(arguments.input + ": " + error.what());
    }
    output.commit();
}

}  // namespace

void addTranscodeCommand(CLI::App& app)
{
    auto arguments = std::make_shared<TranscodeArguments>();
    jpeg::TranscodeOptions& options = arguments->options;
    options.progressive = false;
    options.threads = 0;

    CLI::App* command = app.add_subcommand(
        "transcode", "Codes a JPEG file anew, as a progressive or sequential one, without touching its coefficients.");
    command->add_option("input", arguments->input, "JPEG file of 8-bit samples, sequential or progressive")->required();
    command->add_option("output", arguments->output, "JPEG file to write")->required();
    command->add_flag("--progressive", options.progressive, "many scans, from coarse to fine");
    command->add_flag("--sequential", arguments->sequential, "one scan, from top to bottom");
    command->add_option("--scans", arguments->scans, "text file that tells the scans to write");
    command->add_flag("--optimize", options.optimizeTables,
                      "makes Huffman tables for this picture; progressive files always have them");
    command->add_option("--restart", options.restartInterval, "restart marker every N MCUs; 0 for none")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->add_option("--threads", options.threads, "threads to work with; 0 for all processors")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
    command->callback([arguments] { transcode(*arguments); });
}

}  // namespace vekpix
