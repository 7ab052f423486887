#include "dds/surfaces.h"

#include <algorithm>

#include "error.h"

namespace vekpix::dds {

namespace {

uint64_t bytesOfLevels(const Texture& texture, int levels)
{
    uint64_t bytes = 0;  // with the largest sides not above 2^50
    for (int level = 0; level < levels; ++level) bytes += levelOf(texture, level).bytes;
    return bytes;
}

}  // namespace

Surface levelOf(const Texture& texture, int level)
{
    Surface surface;
    surface.width = std::max(1, texture.width >> level);
    surface.height = std::max(1, texture.height >> level);
    surface.blocksWide = (static_cast<size_t>(surface.width) + 3) / 4;
    surface.blocksHigh = (static_cast<size_t>(surface.height) + 3) / 4;
    surface.bytes = uint64_t{surface.blocksWide} * surface.blocksHigh * blockBytes(texture.format);
    return surface;
}

Surface surfaceAt(const Texture& texture, uint32_t layer, size_t face, int level)
{
    Surface surface = levelOf(texture, level);
    const uint64_t chain = uint64_t{layer} * texture.faceCount() + face;
    surface.offset =
        texture.headerBytes() + chain * bytesOfLevels(texture, texture.levels) + bytesOfLevels(texture, level);
    return surface;
}

void expectWhole(const Texture& texture, uint64_t fileBytes)
{
    const uint64_t chainBytes = bytesOfLevels(texture, texture.levels);
    const uint64_t chains = uint64_t{texture.layers} * texture.faceCount();
    if (fileBytes < texture.headerBytes() || (fileBytes - texture.headerBytes()) / chainBytes < chains)
        throw Error("the file ends before its textures do");
}

}  // namespace vekpix::dds
