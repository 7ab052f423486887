// The headers of a code-stream, and where the data of its tiles are (ISO/IEC 15444-1, Annex A).
#ifndef VEKPIX_JPEG2000_CODESTREAM_READER_H
#define VEKPIX_JPEG2000_CODESTREAM_READER_H

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

// A tile's packets: in its tile-parts, or their bodies there and their headers apart.
struct TilePackets {
    std::vector<std::span<const uint8_t>> parts;
    std::vector<uint8_t> headers;
    bool headersApart = false;
};

class Codestream {
public:
    // Everything that is wrong with the headers, those of tiles apart, is an Error. The bytes must outlive the object.
    explicit Codestream(std::span<const uint8_t> bytes);

    const PictureSize& size() const { return size_; }
    // Those of the main header.
    const TileParameters& parameters() const { return parameters_; }
    // Those of a tile: the main header's, as the tile's own headers change them.
    TileParameters tileParameters(int tile) const;
    // Without any part if the tile is missing.
    const TilePackets& tilePackets(int tile) const { return tiles_[static_cast<size_t>(tile)].packets; }

private:
    struct TileParts {
        std::vector<std::span<const uint8_t>> headers;
        TilePackets packets;
        size_t toldParts = 0;  // 0: not told
    };

    PictureSize size_;
    TileParameters parameters_;
    std::vector<uint8_t> styleRanks_;         // by which kind of marker each component has its style
    std::vector<uint8_t> quantizationRanks_;  // and its quantisation
    std::vector<TileParts> tiles_;
};

}  // namespace vekpix::jpeg2000

#endif
