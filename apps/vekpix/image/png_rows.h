// PNG pictures, by libpng; with their alpha, if they have any.
#ifndef VEKPIX_IMAGE_PNG_ROWS_H
#define VEKPIX_IMAGE_PNG_ROWS_H

#include <memory>
#include <string>

#include "image/formats.h"
#include "image/rows.h"
#include "io/byte_sink.h"

namespace vekpix {

std::unique_ptr<RowReader> openPng(const std::string& path, SampleDepth depth);
std::unique_ptr<RowWriter> makePngWriter(const Shape& shape, ByteSink& sink);

}  // namespace vekpix

#endif
