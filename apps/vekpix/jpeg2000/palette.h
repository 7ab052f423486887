// The colours that the values of a component stand for (ISO/IEC 15444-1, I.5.3.4).
#ifndef VEKPIX_JPEG2000_PALETTE_H
#define VEKPIX_JPEG2000_PALETTE_H

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vekpix::jpeg2000 {

struct Palette {
    std::vector<int> bits;        // of each column
    std::vector<int32_t> values;  // from 0, entry after entry

    int32_t value(int32_t entry, int column) const
    {
        const auto columns = static_cast<int32_t>(bits.size());
        const int32_t last = static_cast<int32_t>(values.size()) / columns - 1;
        return values[static_cast<size_t>(std::min(entry, last) * columns + column)];
    }
};

// Where a channel of the picture comes from.
struct ChannelSource {
    int component = 0;
    int column = -1;  // of the palette, or -1: the component's values themselves
};

}  // namespace vekpix::jpeg2000

#endif
