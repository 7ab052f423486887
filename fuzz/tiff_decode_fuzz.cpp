// TIFF files of any bytes: described and decoded, they end in a picture or in an Error, in both cases the same way. A
// picture, written again in any form, is read back as it is.
#include <optional>
#include <sstream>
#include <vector>

#include "error.h"
#include "image/memory_rows.h"
#include "input.h"
#include "tiff/decoder.h"
#include "tiff/describe.h"
#include "tiff/encoder.h"

namespace {

using fuzz::require;
using vekpix::Raster;

constexpr size_t longestFile = 1 << 14;  // bounds the samples of a run: a byte stands for 64 at most

bool isDescribed(std::span<const uint8_t> file)
{
    std::ostringstream text;
    try {
        vekpix::tiff::describe(file, text);
        return true;
    } catch (const vekpix::Error&) {
        return false;
    }
}

std::optional<Raster> decode(std::span<const uint8_t> file, bool described)
{
    try {
        vekpix::tiff::Decoder decoder(file);
        require(described);
        require(decoder.shape().rowBytes() * static_cast<size_t>(decoder.height()) <= 64 * file.size());
        return readPicture(decoder);
    } catch (const vekpix::Error&) {
        return std::nullopt;
    }
}

std::vector<uint8_t> encode(const Raster& picture, int choice)
{
    vekpix::tiff::EncodeOptions options;
    options.packBits = choice % 2 == 0;
    options.order = choice % 4 < 2 ? vekpix::tiff::ByteOrder::Little : vekpix::tiff::ByteOrder::Big;
    vekpix::MemoryRows rows(picture);
    vekpix::MemorySink sink;
    vekpix::tiff::encode(rows, sink, options);
    return sink.bytes();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > longestFile)
        return 0;
    const std::vector<uint8_t> file(data, data + size);  // its end is the end of its memory
    const std::optional<Raster> picture = decode(file, isDescribed(file));
    if (!picture)
        return 0;
    const std::optional<Raster> again = decode(encode(*picture, data[size - 1]), true);
    require(again && again->shape == picture->shape && again->pixels == picture->pixels);
    return 0;
}
