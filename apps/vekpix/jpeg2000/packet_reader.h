// Reads a tile's packets: what each code-block has in them (ISO/IEC 15444-1, B.9 and B.10).
#ifndef VEKPIX_JPEG2000_PACKET_READER_H
#define VEKPIX_JPEG2000_PACKET_READER_H

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg2000/codestream_reader.h"
#include "jpeg2000/progression.h"
#include "jpeg2000/tag_tree.h"

namespace vekpix::jpeg2000 {

// A piece of a segment.
struct Chunk {
    const uint8_t* data;
    uint32_t length;
    bool beginsSegment;
    int next;  // chunk of the same block, or -1
};

struct BlockData {
    int zeroPlanes = -1;  // not included yet
    int passes = 0;       // wanted ones
    int firstChunk = -1;
    int lastChunk = -1;
    // While packets are read:
    int passesRead = 0;
    int segmentBegan = 0;  // pass
    int lengthBits = 0;
};

struct TileData {
    std::vector<BlockData> blocks;  // as in the layout
    std::vector<Chunk> chunks;
};

struct Wanted {
    int layers;
    int droppedResolutions;
};

// An Error for packets that cannot be. Those that are missing at the end are not missed.
TileData readPackets(const TileLayout& layout, const TileParameters& parameters, const TilePackets& packets,
                     const Wanted& wanted);

}  // namespace vekpix::jpeg2000

#endif
