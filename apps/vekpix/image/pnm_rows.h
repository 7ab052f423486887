// PPM and PGM pictures: binary (P5, P6) and plain (P2, P3), of any maximal value; written binary with 255.
#ifndef VEKPIX_IMAGE_PNM_ROWS_H
#define VEKPIX_IMAGE_PNM_ROWS_H

#include <memory>
#include <string>

#include "image/rows.h"
#include "io/byte_sink.h"

namespace vekpix {

std::unique_ptr<RowReader> openPnm(const std::string& path);
// Writes `fileChannels` channels, 1 (PGM) or 3 (PPM).
std::unique_ptr<RowWriter> makePnmWriter(const Shape& shape, int fileChannels, ByteSink& sink);

}  // namespace vekpix

#endif
