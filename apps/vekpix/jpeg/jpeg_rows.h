// A JPEG file as rows of pixels, to stand beside the other picture formats.
#ifndef VEKPIX_JPEG_JPEG_ROWS_H
#define VEKPIX_JPEG_JPEG_ROWS_H

#include <memory>
#include <string>

#include "image/rows.h"
#include "jpeg/decoder.h"

namespace vekpix::jpeg {

std::unique_ptr<RowReader> openJpeg(const std::string& path, const DecodeOptions& options);

}  // namespace vekpix::jpeg

#endif
