// PPM and PGM pictures: binary (P5, P6) and plain (P2, P3), of any maximal value; PAM pictures (P7) of one, three or
// four channels, and of lights with alpha. Written binary with the largest value of their bits.
#ifndef VEKPIX_IMAGE_PNM_ROWS_H
#define VEKPIX_IMAGE_PNM_ROWS_H

#include <memory>
#include <string>

#include "image/formats.h"
#include "image/rows.h"
#include "io/byte_sink.h"

namespace vekpix {

std::unique_ptr<RowReader> openPnm(const std::string& path, SampleDepth depth);

enum class PnmKind { Pgm, Ppm, Pam };
std::unique_ptr<RowWriter> makePnmWriter(const Shape& shape, PnmKind kind, ByteSink& sink);

}  // namespace vekpix

#endif
