// Transformed samples of a tile become samples of its components again.
#ifndef VEKPIX_JPEG2000_INVERSE_TRANSFORM_H
#define VEKPIX_JPEG2000_INVERSE_TRANSFORM_H

#include <vector>

#include "jpeg2000/block_decoder.h"

namespace vekpix::jpeg2000 {

// Undoes the wavelet transform of each plane but for the finest resolutions that are dropped, and the component
// transform if there is one. All samples are integers then, centred about zero unless their component has a sign.
void inverseTransform(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                      const Wanted& wanted, const std::vector<Plane>& planes, Crew& crew);

}  // namespace vekpix::jpeg2000

#endif
