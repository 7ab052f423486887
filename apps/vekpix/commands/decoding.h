// The formats that the command `decode` reads: one Decoding each, with the options that only it knows.
#ifndef VEKPIX_COMMANDS_DECODING_H
#define VEKPIX_COMMANDS_DECODING_H

#include <CLI/CLI.hpp>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "commands/progress.h"
#include "error.h"
#include "image/rows.h"

namespace vekpix {

// What is asked of every format.
struct DecodeRequest {
    std::string input;
    std::string output;
    int threads = 1;
};

class Decoding {
public:
    virtual ~Decoding() = default;
    virtual const char* name() const = 0;
    // Whether a file is one of the format, by its first bytes.
    virtual bool reads(std::span<const uint8_t> file) const = 0;
    // Adds the format's options to its own group of the command's help.
    virtual void addOptions(CLI::Option_group& group) = 0;
    // Decodes `file`, the bytes of the input. What cannot be done is an Error.
    virtual void decode(const DecodeRequest& request, std::span<const uint8_t> file) = 0;
};

std::unique_ptr<Decoding> makeJpegDecoding();
std::unique_ptr<Decoding> makeJpeg2000Decoding();
std::unique_ptr<Decoding> makeDdsDecoding();
std::unique_ptr<Decoding> makeTiffDecoding();

// Writes all bands of `decoder`, which is made of the file at `path`.
template <class Decoder>
void writeBands(const std::string& path, Decoder& decoder, RowWriter& writer)
{
    const size_t step = decoder.shape().rowBytes();
    std::vector<uint8_t> band(step * static_cast<size_t>(decoder.bandRows()));
    Progress progress(decoder.shape().height);
    while (const int rows = reading(path, [&] { return decoder.readBand(band.data(), step); })) {
        writer.writeRows(band.data(), step, rows);
        progress.advance(rows);
    }
    writer.finish();
}

}  // namespace vekpix

#endif
