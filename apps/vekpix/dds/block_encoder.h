// Rows of blocks from rows of pixels, on several threads.
#ifndef VEKPIX_DDS_BLOCK_ENCODER_H
#define VEKPIX_DDS_BLOCK_ENCODER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dds/format.h"
#include "work/crew.h"

namespace vekpix::dds {

class BlockEncoder {
public:
    // `modes` are those that are tried for each BC7 block, in this order: the first with the smallest error that the
    // library reports is taken. Of other formats the list is empty.
    BlockEncoder(Format format, std::vector<int> modes, int threads);

    // Pixels of codedChannels(format), of YCoCg textures R, G, B. Stores ceil(width / 4) * ceil(rows / 4) blocks: those
    // that stick out repeat the last column and row.
    void encode(const uint8_t* pixels, size_t step, int width, int rows, uint8_t* blocks);

private:
    struct Piece {
        const uint8_t* pixels;
        size_t step;
        int width;
        int rows;
        uint8_t* blocks;
    };

    void encodePiece(const Piece& piece) const;
    void encodeBc7(const Piece& piece) const;

    Format format_;
    std::vector<int> modes_;
    Crew crew_;
};

}  // namespace vekpix::dds

#endif
