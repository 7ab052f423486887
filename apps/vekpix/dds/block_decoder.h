// Rows of pixels from rows of blocks, on several threads.
#ifndef VEKPIX_DDS_BLOCK_DECODER_H
#define VEKPIX_DDS_BLOCK_DECODER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dds/surfaces.h"
#include "work/crew.h"

namespace vekpix::dds {

class BlockDecoder {
public:
    // `blocks` are those of the whole surface, and outlive the decoder.
    BlockDecoder(Format format, const Surface& surface, const uint8_t* blocks, int threads);

    // Bytes of a decoded row, which is as wide as its blocks: pixels of codedChannels(), of YCoCg textures four (Co,
    // Cg, scale, Y).
    size_t rowBytes() const { return surface_.blocksWide * 4 * pixelBytes_; }
    // Decodes rows of blocks, each to four rows of `pixels` without gaps.
    void decode(size_t firstRow, size_t rows, uint8_t* pixels);

private:
    void decodeRow(const uint8_t* blocks, uint8_t* pixels) const;

    Format format_;
    Surface surface_;
    const uint8_t* blocks_;
    size_t pixelBytes_;
    Crew crew_;
};

}  // namespace vekpix::dds

#endif
