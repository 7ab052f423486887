// How a tile falls into resolutions, sub-bands, precincts and code-blocks (ISO/IEC 15444-1, Annex B).
#ifndef VEKPIX_JPEG2000_TILE_LAYOUT_H
#define VEKPIX_JPEG2000_TILE_LAYOUT_H

#include <array>
#include <cstdint>
#include <vector>

#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

struct Rect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    bool empty() const { return x1 <= x0 || y1 <= y0; }
    bool operator==(const Rect&) const = default;
};

enum class Orientation { LL, HL, LH, HH };

struct Band {
    Rect rect;
    Orientation orientation = Orientation::LL;
    int level = 0;  // of decomposition, 1 the finest
    int index = 0;  // among the component's bands, as headers count them
    // Where the band begins in the plane of the transformed tile-component.
    int planeX = 0;
    int planeY = 0;
};

// A code-block, by its place in the plane of the transformed tile-component.
struct BlockPlace {
    int x = 0, y = 0, width = 0, height = 0;
    uint16_t component = 0;
    uint8_t resolution = 0;
    uint8_t band = 0;  // of the resolution
};

// The code-blocks of one band in one precinct: they follow each other in TileLayout::blocks, row by row.
struct PrecinctBand {
    int firstBlock = 0;
    int columns = 0;
    int rows = 0;
};

struct Precinct {
    std::array<PrecinctBand, 3> bands;
    // First point of the reference grid whose turn is the precinct's, in progressions by position.
    int64_t x = 0;
    int64_t y = 0;
};

struct Resolution {
    Rect rect;
    std::vector<Band> bands;  // LL, or HL, LH and HH
    std::vector<Precinct> precincts;
};

struct TileComponent {
    Rect rect;
    std::vector<Resolution> resolutions;
};

struct TileLayout {
    std::vector<TileComponent> components;
    std::vector<BlockPlace> blocks;
};

// The tile's area on the reference grid.
struct TileArea {
    int64_t x0, y0, x1, y1;
};
TileArea tileArea(const PictureSize& size, int tile);

// The samples of a component in an area of the reference grid, with `levels` resolutions left out.
Rect componentRect(const TileArea& area, const ComponentSize& component, int levels = 0);

// An Error if there were more than `maxBlocks` code-blocks or precincts.
TileLayout layOutTile(const PictureSize& size, const TileParameters& parameters, int tile, int64_t maxBlocks);

}  // namespace vekpix::jpeg2000

#endif
