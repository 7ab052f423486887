#include <iostream>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "dds/describe.h"
#include "error.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "jpeg/describe.h"
#include "jpeg2000/describe.h"
#include "tiff/describe.h"

namespace vekpix {

namespace {

// Prints what `describe` finds in a file, up to where it fails.
void describeCoded(const std::string& path, void (*describe)(std::span<const uint8_t>, std::ostream&))
{
    const std::vector<uint8_t> file = readFile(path);
    try {
        describe(file, std::cout);
        std::cout.flush();
    } catch (const Error& error) {
        std::cout.flush();
        throw Error(path + ": " + error.what());
    }
}

void describePicture(const std::string& path, ImageFormat format)
{
    const std::unique_ptr<RowReader> reader = openPicture(path, SampleDepth::AsStored, Transparency::Kept);
    const Shape& shape = reader->shape();
    const char* colours = shape.colours() == 1 ? "grey" : shape.colours() == 3 ? "RGB" : "CMYK";
    std::cout << (format == ImageFormat::Png   ? "PNG"
                  : format == ImageFormat::Pam ? "PAM"
                                               : "PNM")
              << "\nread as " << reader->width() << " x " << reader->height() << ", " << reader->shape().bits
              << " bits, " << colours << (shape.alpha ? ", alpha\n" : "\n");
}

}  // namespace

void addInfoCommand(CLI::App& app)
{
    auto path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("info", "Tells what a picture file holds.");
    command->add_option("file", *path, "JPEG, JPEG 2000, DDS, TIFF, PNG, PPM, PGM or PAM file")->required();
    command->callback([path] {
        const ImageFormat format = formatOf(*path);
        if (format == ImageFormat::Jpeg)
            describeCoded(*path, jpeg::describe);
        else if (format == ImageFormat::Jpeg2000 || format == ImageFormat::Jp2)
            describeCoded(*path, jpeg2000::describe);
        else if (format == ImageFormat::Dds)
            describeCoded(*path, dds::describe);
        else if (format == ImageFormat::Tiff)
            describeCoded(*path, tiff::describe);
        else
            describePicture(*path, format);
    });
}

}  // namespace vekpix
