// A picture of a BC6H texture as a portable float map (PFM): three 32-bit numbers a pixel, from the bottom row.
#ifndef VEKPIX_DDS_FLOAT_MAP_H
#define VEKPIX_DDS_FLOAT_MAP_H

#include <functional>
#include <span>

#include "dds/decoder.h"
#include "io/byte_sink.h"

namespace vekpix::dds {

float numberOfHalf(uint16_t half);

void writeFloatMap(std::span<const uint8_t> file, const DecodeOptions& options, ByteSink& sink,
                   const std::function<void(int)>& onRows);

}  // namespace vekpix::dds

#endif
