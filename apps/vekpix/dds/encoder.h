// A picture becomes a DDS file.
#ifndef VEKPIX_DDS_ENCODER_H
#define VEKPIX_DDS_ENCODER_H

#include <functional>
#include <vector>

#include "dds/format.h"
#include "image/rows.h"
#include "io/byte_sink.h"

namespace vekpix::dds {

struct EncodeOptions {
    Format format = Format::Bc1;  // any but BC6H
    std::vector<int> modes;       // of BC7
    bool mipmaps = false;
    bool cube = false;  // the picture's six squares, from the top, are +x, -x, +y, -y, +z, -z
    bool longHeader = false;
    int threads = 1;
    std::function<void(int64_t)> onBlocks;
};

// The modes that an effort of 1 to 3 tries for each BC7 block.
std::vector<int> modesOfEffort(int effort);

// Blocks that encode() makes of such a picture. An Error if it can make none.
int64_t blocksToEncode(const Shape& picture, const EncodeOptions& options);

// `picture` has 8 bits. The channels that the format codes: BC4 takes the first (red, or grey), BC5 red and green; BC2,
// BC3 and BC7 also take alpha.
void encode(RowReader& picture, ByteSink& sink, const EncodeOptions& options);

}  // namespace vekpix::dds

#endif
