#include <memory>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "commands/decoding.h"
#include "commands/only_options.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct DecodeCommand {
    struct Choice {
        std::unique_ptr<Decoding> decoding;
        CLI::Option_group* options;
    };

    void add(CLI::App& command, std::unique_ptr<Decoding> decoding)
    {
        CLI::Option_group* const group = command.add_option_group(decoding->name());
        decoding->addOptions(*group);
        choices.push_back({std::move(decoding), group});
    }

    void run()
    {
        formatOf(request.output);  // before any work: it may be an Error
        const std::vector<uint8_t> file = readFile(request.input);
        Decoding* chosen = nullptr;
        for (const Choice& choice : choices)
            if (choice.decoding->reads(file))
                chosen = choice.decoding.get();
        if (chosen == nullptr)
            throw Error(request.input + ": its first bytes tell no coded picture that can be decoded");
        for (const Choice& choice : choices)
            if (choice.decoding.get() != chosen)
                refuseOptions(*choice.options, request.input, chosen->name());
        if (request.threads == 0)
            request.threads = ownGetNumThreads();
        chosen->decode(request, file);
    }

    DecodeRequest request;
    std::vector<Choice> choices;
};

}  // namespace

void addDecodeCommand(CLI::App& app)
{
    auto decode = std::make_shared<DecodeCommand>();
    DecodeRequest& request = decode->request;
    request.threads = 0;
    CLI::App* command = app.add_subcommand("decode", "Decodes a file, whose first bytes tell its format.");
    command
        ->add_option("input", request.input,
                     "JPEG file: sequential (8 or 12 bits), progressive (8) or lossless (8 to 16); JPEG 2000 file; "
                     "DDS file of blocks; TIFF file of strips")
        ->required();
    command
        ->add_option("output", request.output,
                     "PNG, PPM, PGM or PAM file, PFM for BC6H textures; PAM keeps the inks of CMYK pictures")
        ->required();
    command->add_option("--threads", request.threads, "threads to work with; 0 for all processors")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
    decode->add(*command, makeJpegDecoding());
    decode->add(*command, makeJpeg2000Decoding());
    decode->add(*command, makeDdsDecoding());
    decode->add(*command, makeTiffDecoding());
    command->callback([decode] { decode->run(); });
}

}  // namespace vekpix
