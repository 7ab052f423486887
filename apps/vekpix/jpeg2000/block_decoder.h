// Code-blocks of a tile become transformed samples.
#ifndef VEKPIX_JPEG2000_BLOCK_DECODER_H
#define VEKPIX_JPEG2000_BLOCK_DECODER_H

#include <vector>

#include "jpeg2000/packet_reader.h"
#include "jpeg2000/plane.h"
#include "work/crew.h"

namespace vekpix::jpeg2000 {

// Decodes all code-blocks of resolutions that are wanted into the planes of their components. Samples of irreversible
// transforms have fractionBits() bits behind the point.
void decodeBlocks(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                  const TileData& data, const Wanted& wanted, const std::vector<Plane>& planes, Crew& crew);

}  // namespace vekpix::jpeg2000

#endif
