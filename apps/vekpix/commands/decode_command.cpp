#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/progress.h"
#include "error.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "io/output_file.h"
#include "jpeg/decoder.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct DecodeArguments {
    std::string input;
    std::string output;
    int scale = 1;
    int threads = 0;
    std::string upsampling = "smooth";
};

// Calls `read`; its Error also tells the file.
template <class Read>
auto reading(const std::string& path, const Read& read)
{
    try {
        return read();
    } catch (const Error& error) {
        throw Error(path + ": " + error.what());
    }
}

void decodeRows(const std::string& path, jpeg::Decoder& decoder, RowWriter& writer)
{
    const size_t step = decoder.shape().rowBytes();
    std::vector<uint8_t> band(step * static_cast<size_t>(decoder.bandRows()));
    Progress progress(decoder.height());
    while (const int rows = reading(path, [&] { return decoder.readBand(band.data(), step); })) {
        writer.writeRows(band.data(), step, rows);
        progress.advance(rows);
    }
}

void decode(const DecodeArguments& arguments)
{
    const ImageFormat format = formatOf(arguments.output);
    const std::vector<uint8_t> file = readFile(arguments.input);
    jpeg::DecodeOptions options;
    options.scale = arguments.scale;
    options.inks = format == ImageFormat::Pam;
    options.upsampling = arguments.upsampling == "box" ? jpeg::Upsampling::Box : jpeg::Upsampling::Smooth;
    options.threads = arguments.threads == 0 ? ownGetNumThreads() : arguments.threads;
    const auto decoder = reading(arguments.input, [&] { return std::make_unique<jpeg::Decoder>(file, options); });
    OutputFile output(arguments.output);
    const auto writer = makePictureWriter(format, decoder->shape(), output);
    decodeRows(arguments.input, *decoder, *writer);
    writer->finish();
    output.commit();
}

}  // namespace

void addDecodeCommand(CLI::App& app)
{
    auto arguments = std::make_shared<DecodeArguments>();
    CLI::App* command = app.add_subcommand("decode", "Decodes a JPEG file.");
    command
        ->add_option("input", arguments->input,
                     "JPEG file: sequential (8 or 12 bits), progressive (8) or lossless (8 to 16)")
        ->required();
    command->add_option("output", arguments->output, "PNG, PPM, PGM or PAM file; PAM keeps the inks of CMYK pictures")
        ->required();
    command->add_option("--scale", arguments->scale, "divides width and height")
        ->check(CLI::IsMember({1, 2, 4, 8}))
        ->capture_default_str();
    command
        ->add_option("--upsampling", arguments->upsampling,
                     "chroma with fewer samples: smooth by a triangle filter, box by replication")
        ->check(CLI::IsMember({"smooth", "box"}))
        ->capture_default_str();
    command->add_option("--threads", arguments->threads, "threads to work with; 0 for all processors")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
    command->callback([arguments] { decode(*arguments); });
}

}  // namespace vekpix
