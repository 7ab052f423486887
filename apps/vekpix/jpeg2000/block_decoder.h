// Code-blocks of a tile become transformed samples.
#ifndef VEKPIX_JPEG2000_BLOCK_DECODER_H
#define VEKPIX_JPEG2000_BLOCK_DECODER_H

#include <cstdint>
#include <vector>

#include "jpeg2000/packet_reader.h"
#include "work/crew.h"

namespace vekpix::jpeg2000 {

// Samples of a tile-component, 32 bits each, rows `step` samples apart.
struct Plane {
    int32_t* samples = nullptr;
    size_t step = 0;

    int32_t* at(int x, int y) const { return samples + static_cast<size_t>(y) * step + static_cast<size_t>(x); }
};

// Decodes all code-blocks of resolutions that are wanted into the planes of their components. Samples of irreversible
// transforms have fractionBits() bits behind the point.
void decodeBlocks(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                  const TileData& data, const Wanted& wanted, const std::vector<Plane>& planes, Crew& crew);

}  // namespace vekpix::jpeg2000

#endif
