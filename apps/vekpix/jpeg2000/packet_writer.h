// Writes a tile's packets (ISO/IEC 15444-1, B.9 and B.10).
#ifndef VEKPIX_JPEG2000_PACKET_WRITER_H
#define VEKPIX_JPEG2000_PACKET_WRITER_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "jpeg2000/block_encoder.h"
#include "jpeg2000/progression.h"
#include "jpeg2000/tag_tree.h"

namespace vekpix::jpeg2000 {

// Of each precinct the layers must be written in order. A copy goes on from where the original stands.
class PacketWriter {
public:
    PacketWriter(const TileLayout& layout, const TileParameters& parameters, const std::vector<CodedBlock>& blocks);

    // Appends the packet by which each block comes to have as many passes as `passes` tells. Returns the bytes of the
    // blocks in it, which are appended only `withBodies`.
    size_t write(const Packet& packet, const std::vector<int>& passes, bool withBodies, std::vector<uint8_t>& out);

private:
    struct BandState {
        TagTree inclusion;
        TagTree zeroPlanes;
    };
    struct BlockState {
        int passes = 0;
        int lengthBits = 0;
    };

    void writeBlock(HeaderBitWriter& bits, BandState& band, int cell, int number, int layer, int passes, int style);

    const TileLayout* layout_;
    const TileParameters* parameters_;
    const std::vector<CodedBlock>* blocks_;
    std::vector<std::vector<std::vector<std::vector<BandState>>>> bands_;  // component, resolution, precinct, band
    std::vector<BlockState> states_;
    std::vector<std::pair<const uint8_t*, size_t>> pieces_;  // of the packet being written
};

}  // namespace vekpix::jpeg2000

#endif
