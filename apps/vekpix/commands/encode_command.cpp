#include <memory>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "commands/encoding.h"
#include "commands/only_options.h"
#include "error.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct EncodeCommand {
    struct Choice {
        std::unique_ptr<Encoding> encoding;
        CLI::Option_group* options;
    };

    void add(CLI::App& command, CLI::Option* lossless, std::unique_ptr<Encoding> encoding)
    {
        CLI::Option_group* const group = command.add_option_group(encoding->name());
        encoding->addOptions(*group, lossless);
        choices.push_back({std::move(encoding), group});
    }

    void run()
    {
        const ImageFormat format = formatOf(request.output);
        Encoding* chosen = nullptr;
        for (const Choice& choice : choices)
            if (choice.encoding->writes(format))
                chosen = choice.encoding.get();
        if (chosen == nullptr)
            throw Error(request.output + ": the coded picture must be named " + codedFileExtensions());
        for (const Choice& choice : choices)
            if (choice.encoding.get() != chosen)
                refuseOptions(*choice.options, request.output, chosen->name());
        if (request.threads == 0)
            request.threads = ownGetNumThreads();
        chosen->encode(request);
    }

    EncodeRequest request;
    std::vector<Choice> choices;
};

}  // namespace

void addEncodeCommand(CLI::App& app)
{
    auto encode = std::make_shared<EncodeCommand>();
    EncodeRequest& request = encode->request;
    request.threads = 0;
    CLI::App* command = app.add_subcommand("encode", "Codes a picture, in the format that the output's name tells.");
    command->add_option("input", request.input, "PNG, PPM, PGM or PAM file")->required();
    command->add_option("output", request.output, std::string("file to write: ") + codedFileExtensions())->required();
    CLI::Option* lossless = command->add_flag("--lossless", request.lossless, "codes every sample as it is");
    command->add_option("--threads", request.threads, "threads to work with; 0 for all processors")
        ->check(CLI::Range(0, 256))
        ->capture_default_str();
    encode->add(*command, lossless, makeJpegEncoding());
    encode->add(*command, lossless, makeJpeg2000Encoding());
    encode->add(*command, lossless, makeDdsEncoding());
    encode->add(*command, lossless, makeTiffEncoding());
    command->callback([encode] { encode->run(); });
}

}  // namespace vekpix
