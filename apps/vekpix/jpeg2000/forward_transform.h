// Rows of pixels become transformed samples of a tile.
#ifndef VEKPIX_JPEG2000_FORWARD_TRANSFORM_H
#define VEKPIX_JPEG2000_FORWARD_TRANSFORM_H

#include <vector>

#include "image/rows.h"
#include "jpeg2000/plane.h"
#include "jpeg2000/tile_layout.h"
#include "work/crew.h"

namespace vekpix::jpeg2000 {

// Stores rows of pixels, `step` bytes apart, as rows of all planes from row `y` on: centred about zero and transformed
// to luminance and chrominance if there are three components; for the irreversible transform with fractionBits() bits
// behind the point.
void storeRows(const Shape& picture, const uint8_t* pixels, size_t step, int rows, bool reversible,
               const std::vector<Plane>& planes, int y, Crew& crew);

// The wavelet transform of a tile's planes, all levels.
void forwardWavelets(const TileLayout& layout, const TileParameters& parameters, const std::vector<Plane>& planes,
                     Crew& crew);

}  // namespace vekpix::jpeg2000

#endif
