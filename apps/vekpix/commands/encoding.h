// The formats that the command `encode` writes: one Encoding each, with the options that only it knows.
#ifndef VEKPIX_COMMANDS_ENCODING_H
#define VEKPIX_COMMANDS_ENCODING_H

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

#include "image/formats.h"

namespace vekpix {

// What is asked of every format.
struct EncodeRequest {
    std::string input;
    std::string output;
    bool lossless = false;
    int threads = 1;
};

class Encoding {
public:
    virtual ~Encoding() = default;
    virtual bool writes(ImageFormat format) const = 0;
    virtual const char* name() const = 0;
    // Adds the format's options to its own group of the command's help. `lossless` is the option of all formats.
    virtual void addOptions(CLI::Option_group& group, CLI::Option* lossless) = 0;
    // Writes the file that is asked for. What cannot be done is an Error.
    virtual void encode(const EncodeRequest& request) = 0;
};

std::unique_ptr<Encoding> makeJpegEncoding();
std::unique_ptr<Encoding> makeJpeg2000Encoding();
std::unique_ptr<Encoding> makeDdsEncoding();
std::unique_ptr<Encoding> makeTiffEncoding();

}  // namespace vekpix

#endif
