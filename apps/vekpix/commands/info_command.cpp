#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "error.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "jpeg/describe.h"

namespace vekpix {

namespace {

void describeJpeg(const std::string& path)
{
    const std::vector<uint8_t> file = readFile(path);
    try {
        jpeg::describe(file, std::cout);
        std::cout.flush();
    } catch (const Error& error) {
        std::cout.flush();
        throw Error(path + ": " + error.what());
    }
}

void describePicture(const std::string& path, ImageFormat format)
{
    const std::unique_ptr<RowReader> reader = openPicture(path, SampleDepth::AsStored);
    const char* colours = reader->channels() == 1 ? "grey" : reader->channels() == 3 ? "RGB" : "CMYK";
    std::cout << (format == ImageFormat::Png   ? "PNG"
                  : format == ImageFormat::Pam ? "PAM"
                                               : "PNM")
              << "\nread as " << reader->width() << " x " << reader->height() << ", " << reader->shape().bits
              << " bits, " << colours << '\n';
}

}  // namespace

void addInfoCommand(CLI::App& app)
{
    auto path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("info", "Tells what a picture file holds.");
    command->add_option("file", *path, "JPEG, PNG, PPM, PGM or PAM file")->required();
    command->callback([path] {
        const ImageFormat format = formatOf(*path);
        if (format == ImageFormat::Jpeg)
            describeJpeg(*path);
        else
            describePicture(*path, format);
    });
}

}  // namespace vekpix
