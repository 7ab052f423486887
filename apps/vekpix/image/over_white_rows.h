// The rows of a picture with alpha as they look on white.
#ifndef VEKPIX_IMAGE_OVER_WHITE_ROWS_H
#define VEKPIX_IMAGE_OVER_WHITE_ROWS_H

#include <memory>

#include "image/rows.h"

namespace vekpix {

// colour * alpha + white * (1 - alpha), to the nearest, without the alpha; `source` itself if it has none.
std::unique_ptr<RowReader> overWhite(std::unique_ptr<RowReader> source);

}  // namespace vekpix

#endif
