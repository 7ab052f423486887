// The headers of a code-stream, and where the data of its tiles are (ISO/IEC 15444-1, Annex A).
#ifndef VEKPIX_JPEG2000_CODESTREAM_READER_H
#define VEKPIX_JPEG2000_CODESTREAM_READER_H

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

class Codestream {
public:
    // Everything that is wrong with the headers, those of tiles apart, is an Error. The bytes must outlive the object.
    explicit Codestream(std::span<const uint8_t> bytes);

    const PictureSize& size() const { return size_; }
    // Those of the main header.
    const TileParameters& parameters() const { return parameters_; }
    // Those of a tile: the main header's, as the tile's own headers change them.
    TileParameters tileParameters(int tile) const;
    const std::vector<std::span<const uint8_t>>& tileData(int tile) const
    {
        return tiles_[static_cast<size_t>(tile)].data;
    }

private:
    struct TileParts {
        std::vector<std::span<const uint8_t>> headers;
        std::vector<std::span<const uint8_t>> data;
    };

    PictureSize size_;
    TileParameters parameters_;
    std::vector<uint8_t> styleRanks_;         // by which kind of marker each component has its style
    std::vector<uint8_t> quantizationRanks_;  // and its quantisation
    std::vector<TileParts> tiles_;
};

}  // namespace vekpix::jpeg2000

#endif
