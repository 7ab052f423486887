#include "dds/encoder.h"

#include <algorithm>
#include <optional>

#include "dds/block_encoder.h"
#include "dds/half_size.h"
#include "dds/surfaces.h"
#include "dds/texel_rows.h"
#include "error.h"
#include "image/memory_rows.h"

namespace vekpix::dds {

namespace {

constexpr int bandRows = 64;

Texture textureOf(const Shape& picture, const EncodeOptions& options)
{
    Texture texture;
    texture.format = options.format;
    texture.width = picture.width;
    texture.height = picture.height;
    texture.dx10 = options.longHeader;
    if (isFloat(options.format))
        throw Error("BC6H textures are read, not written");
    if (options.cube) {
        if (picture.height % 6 != 0 || picture.height / 6 != picture.width)
            throw Error("a cube's picture consists of six squares, one below the other");
        texture.height = picture.width;
        for (int face = 0; face < 6; ++face) texture.faces.push_back(static_cast<Face>(face));
    }
    if (std::max(texture.width, texture.height) > mostPixelsAside)
        throw Error("a texture has at most " + std::to_string(mostPixelsAside) + " pixels in a direction");
    if (options.mipmaps)
        texture.levels = fullLevels(texture.width, texture.height);
    return texture;
}

// Makes the levels of one face after the other.
class FaceEncoder {
public:
    FaceEncoder(const Texture& texture, ByteSink& sink, const EncodeOptions& options)
        : texture_(texture), sink_(sink), options_(options), blocks_(options.format, options.modes, options.threads)
    {
    }

    void encode(RowReader& picture)
    {
        std::optional<Raster> smaller = encodeLevel(picture, 0);
        for (int level = 1; level < texture_.levels; ++level) {
            const Raster current = std::move(*smaller);
            MemoryRows rows(current);
            smaller = encodeLevel(rows, level);
        }
    }

private:
    // Writes the level whose rows come next, and returns the pixels of the one below it.
    std::optional<Raster> encodeLevel(RowReader& rows, int level)
    {
        const Surface surface = levelOf(texture_, level);
        Shape shape = rows.shape();
        shape.width = surface.width;
        shape.height = surface.height;
        std::optional<HalfSize> half;
        std::optional<Raster> smaller;
        if (level + 1 < texture_.levels) {
            half.emplace(shape.width, shape.height, shape.channels);
            smaller.emplace(Shape{half->width(), half->height(), shape.channels, 8, shape.alpha});
        }
        const size_t step = shape.rowBytes();
        const int most = std::min(bandRows, shape.height);
        pixels_.resize(step * static_cast<size_t>(most));
        coded_.resize(surface.blocksWide * ((static_cast<size_t>(most) + 3) / 4) * blockBytes(texture_.format));
        int halfRows = 0;
        for (int y = 0; y < shape.height; y += most) {
            const int count = std::min(most, shape.height - y);
            rows.readRows(pixels_.data(), step, count);
            blocks_.encode(pixels_.data(), step, shape.width, count, coded_.data());
            const size_t made = surface.blocksWide * ((static_cast<size_t>(count) + 3) / 4);
            sink_.write({coded_.data(), made * blockBytes(texture_.format)});
            for (int i = 0; half && i < count; ++i)
                if (half->takeRow(pixels_.data() + step * static_cast<size_t>(i), smaller->row(halfRows)))
                    ++halfRows;
            if (options_.onBlocks)
                options_.onBlocks(static_cast<int64_t>(made));
        }
        return smaller;
    }

    const Texture& texture_;
    ByteSink& sink_;
    const EncodeOptions& options_;
    BlockEncoder blocks_;
    std::vector<uint8_t> pixels_;
    std::vector<uint8_t> coded_;
};

}  // namespace

// In the order of their speed: a block without error ends the search. Never mode 0: where endpoints share p-bits,
// blocks differ from what their error was measured of, and there so much that whole pictures get worse.
std::vector<int> modesOfEffort(int effort)
{
    if (effort == 1)
        return {6, 5};
    if (effort == 2)
        return {6, 5, 4, 1};
    return {6, 5, 4, 7, 2, 3, 1};
}

int64_t blocksToEncode(const Shape& picture, const EncodeOptions& options)
{
    const Texture texture = textureOf(picture, options);
    uint64_t bytes = 0;
    for (int level = 0; level < texture.levels; ++level) bytes += levelOf(texture, level).bytes;
    return static_cast<int64_t>(bytes / blockBytes(texture.format) * texture.faceCount());
}

void encode(RowReader& picture, ByteSink& sink, const EncodeOptions& options)
{
    Texture texture = textureOf(picture.shape(), options);
    TexelRows texels(picture, codedChannels(options.format));
    sink.write(makeHeader(texture));
    FaceEncoder faces(texture, sink, options);
    for (size_t face = 0; face < texture.faceCount(); ++face) faces.encode(texels);
}

}  // namespace vekpix::dds
