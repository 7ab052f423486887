// The headers of code-streams (ISO/IEC 15444-1, Annex A), all components being alike.
#ifndef VEKPIX_JPEG2000_CODESTREAM_WRITER_H
#define VEKPIX_JPEG2000_CODESTREAM_WRITER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

constexpr size_t tilePartHeaderBytes = 14;
constexpr size_t endBytes = 2;

std::vector<uint8_t> mainHeader(const PictureSize& size, const TileParameters& parameters);
void appendTilePartHeader(std::vector<uint8_t>& out, int tile, size_t packetBytes);
void appendEnd(std::vector<uint8_t>& out);

}  // namespace vekpix::jpeg2000

#endif
