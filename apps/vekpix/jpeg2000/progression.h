// The order of a tile's packets (ISO/IEC 15444-1, B.12).
#ifndef VEKPIX_JPEG2000_PROGRESSION_H
#define VEKPIX_JPEG2000_PROGRESSION_H

#include <cstdint>
#include <functional>
#include <vector>

#include "jpeg2000/tile_layout.h"

namespace vekpix::jpeg2000 {

struct Packet {
    int component;
    int resolution;
    int precinct;
    int layer;
};

// Calls `visit` for each packet of the tile in order, once, until it returns false.
void forEachPacket(const TileLayout& layout, const TileParameters& parameters,
                   const std::function<bool(const Packet&)>& visit);

}  // namespace vekpix::jpeg2000

#endif
