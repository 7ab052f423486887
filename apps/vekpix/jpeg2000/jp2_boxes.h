// The boxes of a JP2 file (ISO/IEC 15444-1, Annex I): where its code-stream is, and what its components mean.
#ifndef VEKPIX_JPEG2000_JP2_BOXES_H
#define VEKPIX_JPEG2000_JP2_BOXES_H

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jpeg2000/palette.h"
#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

enum class ColourSpace { Unknown, Srgb, Grey, Sycc };

// What a channel is for (cdef): colour number `colour`, or opacity and the like.
struct ChannelUse {
    int channel = 0;
    bool isColour = true;
    int colour = 0;  // from 1; 0: the whole picture
};

struct Jp2File {
    std::span<const uint8_t> codestream;
    ColourSpace colourSpace = ColourSpace::Unknown;
    std::vector<ChannelUse> channels;
    std::optional<Palette> palette;
    std::vector<ChannelSource> sources;  // of the channels, if there is a palette
};

bool isJp2(std::span<const uint8_t> file);
bool isCodestream(std::span<const uint8_t> file);

// A JP2 file, or a bare code-stream.
Jp2File readJp2(std::span<const uint8_t> file);

// All boxes up to the first byte of the code-stream, whose length is told.
std::vector<uint8_t> jp2Header(const PictureSize& size, uint64_t codestreamLength);

}  // namespace vekpix::jpeg2000

#endif
