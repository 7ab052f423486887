// Where the pictures of a texture lie in its file: of each layer its faces, of each face its levels, from the largest.
#ifndef VEKPIX_DDS_SURFACES_H
#define VEKPIX_DDS_SURFACES_H

#include "dds/header.h"

namespace vekpix::dds {

struct Surface {
    int width = 0;
    int height = 0;
    size_t blocksWide = 0;
    size_t blocksHigh = 0;
    uint64_t offset = 0;  // from the front of the file
    uint64_t bytes = 0;
};

// Size and bytes of a level; without its place.
Surface levelOf(const Texture& texture, int level);

// `face` is an index into the texture's faces.
Surface surfaceAt(const Texture& texture, uint32_t layer, size_t face, int level);

// Throws an Error if a file of so many bytes ends before its last surface does.
void expectWhole(const Texture& texture, uint64_t fileBytes);

}  // namespace vekpix::dds

#endif
