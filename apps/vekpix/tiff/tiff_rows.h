// A TIFF file as rows of pixels, to stand beside the other picture formats.
#ifndef VEKPIX_TIFF_TIFF_ROWS_H
#define VEKPIX_TIFF_TIFF_ROWS_H

#include <memory>
#include <string>

#include "image/rows.h"

namespace vekpix::tiff {

std::unique_ptr<RowReader> openTiff(const std::string& path);

}  // namespace vekpix::tiff

#endif
