#include "dds/decoder.h"

#include <algorithm>
#include <cstring>

#include "dds/ycocg.h"
#include "error.h"

namespace vekpix::dds {

namespace {

size_t faceIndex(const Texture& texture, const std::optional<Face>& face)
{
    if (!face)
        return 0;
    if (!texture.isCube())
        throw Error("no cube: it has no faces");
    const auto found = std::find(texture.faces.begin(), texture.faces.end(), *face);
    if (found == texture.faces.end())
        throw Error(std::string("the cube has no face ") + faceNames[static_cast<size_t>(*face)]);
    return static_cast<size_t>(found - texture.faces.begin());
}

Shape shapeOf(const Chosen& chosen, bool alpha)
{
    const Format format = chosen.texture.format;
    if (isFloat(format))
        throw Error("a BC6H texture holds floating-point numbers: they go to a .pfm file");
    const int colours = format == Format::Bc4 ? 1 : 3;
    alpha = alpha && hasAlpha(format);
    return {chosen.surface.width, chosen.surface.height, colours + (alpha ? 1 : 0), 8, alpha};
}

}  // namespace

Chosen choose(std::span<const uint8_t> file, const DecodeOptions& options)
{
    Chosen chosen;
    Texture& texture = chosen.texture;
    texture = parseHeader(file);
    expectWhole(texture, file.size());
    if (options.ycocg && texture.format != Format::YCoCgBc3) {
        if (texture.format != Format::Bc3)
            throw Error("only BC3 blocks can hold Y, Co and Cg");
        texture.format = Format::YCoCgBc3;
    }
    if (options.level >= texture.levels)
        throw Error("the largest level is " + std::to_string(texture.levels - 1));
    if (options.layer >= texture.layers)
        throw Error("the last texture of its array is " + std::to_string(texture.layers - 1));
    chosen.surface = surfaceAt(texture, options.layer, faceIndex(texture, options.face), options.level);
    return chosen;
}

Decoder::Decoder(std::span<const uint8_t> file, const DecodeOptions& options)
    : Decoder(choose(file, options), file, options)
{
}

Decoder::Decoder(const Chosen& chosen, std::span<const uint8_t> file, const DecodeOptions& options)
    : format_(chosen.texture.format),
      shape_(shapeOf(chosen, options.alpha)),
      blocks_(format_, chosen.surface, file.data() + chosen.surface.offset, options.threads)
{
}

int Decoder::readBand(uint8_t* pixels, size_t step)
{
    const int rows = std::min(bandRows_, shape_.height - nextRow_);
    const auto blockRows = static_cast<size_t>((rows + 3) / 4);
    decoded_.resize(4 * blockRows * blocks_.rowBytes());
    blocks_.decode(static_cast<size_t>(nextRow_ / 4), blockRows, decoded_.data());
    for (size_t y = 0; y < static_cast<size_t>(rows); ++y)
        storeRow(decoded_.data() + y * blocks_.rowBytes(), pixels + y * step);
    nextRow_ += rows;
    return rows;
}

void Decoder::storeRow(const uint8_t* decoded, uint8_t* pixels) const
{
    const auto width = static_cast<size_t>(shape_.width);
    if (format_ == Format::YCoCgBc3) {
        rgbFromScaledYcocg(decoded, pixels, width);
        return;
    }
    const auto from = static_cast<size_t>(codedChannels(format_));
    const auto to = static_cast<size_t>(shape_.channels);
    if (from == to) {
        std::memcpy(pixels, decoded, width * to);
        return;
    }
    const size_t common = std::min(from, to);
    for (size_t x = 0; x < width; ++x) {
        std::copy_n(decoded + x * from, common, pixels + x * to);
        std::fill_n(pixels + x * to + common, to - common, uint8_t{0});
    }
}

}  // namespace vekpix::dds
