// DDS files of any bytes: each picture that they hold becomes pixels or numbers, or an Error. One thread and several
// give the same.
#include <cstdlib>
#include <sstream>
#include <vector>

#include "dds/decoder.h"
#include "dds/describe.h"
#include "dds/float_map.h"
#include "error.h"

namespace {

using namespace vekpix::dds;

constexpr size_t longestFile = 1 << 12;
constexpr uint32_t mostPictures = 64;  // of a file: they may be many, and small

std::vector<uint8_t> pixelsOf(std::span<const uint8_t> file, const DecodeOptions& options)
{
    Decoder decoder(file, options);
    const size_t step = decoder.shape().rowBytes();
    std::vector<uint8_t> pixels(step * static_cast<size_t>(decoder.shape().height));
    size_t rows = 0;
    while (rows < static_cast<size_t>(decoder.shape().height))
        rows += static_cast<size_t>(decoder.readBand(pixels.data() + rows * step, step));
    return pixels;
}

std::vector<uint8_t> decode(std::span<const uint8_t> file, const DecodeOptions& options)
{
    if (!isFloat(choose(file, options).texture.format))
        return pixelsOf(file, options);
    vekpix::MemorySink sink;
    writeFloatMap(file, options, sink, {});
    return sink.bytes();
}

void decodeAll(std::span<const uint8_t> file, DecodeOptions options)
{
    const Texture texture = choose(file, {}).texture;
    uint32_t pictures = 0;
    for (options.layer = 0; options.layer < texture.layers; ++options.layer)
        for (size_t face = 0; face < texture.faceCount(); ++face)
            for (options.level = 0; options.level < texture.levels; ++options.level) {
                if (++pictures > mostPictures)
                    return;
                if (texture.isCube())
                    options.face = texture.faces[face];
                options.threads = 1;
                const std::vector<uint8_t> alone = decode(file, options);
                options.threads = 2;
                if (alone != decode(file, options))
                    std::abort();
            }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > longestFile)
        return 0;
    const std::vector<uint8_t> file(data, data + size);  // its end is the end of its memory
    DecodeOptions options;
    options.alpha = data[size - 1] % 2 == 0;
    options.ycocg = data[size - 1] >= 192;
    bool refused = false;
    try {
        options.ycocg = options.ycocg && choose(file, {}).texture.format == Format::Bc3;
        decodeAll(file, options);
    } catch (const vekpix::Error&) {
        refused = true;
    }
    std::ostringstream text;
    try {
        describe(file, text);
        if (refused)
            std::abort();
    } catch (const vekpix::Error&) {
        if (!refused)
            std::abort();
    }
    return 0;
}
