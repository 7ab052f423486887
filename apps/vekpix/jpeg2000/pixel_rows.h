// Rows of component samples become rows of pixels.
#ifndef VEKPIX_JPEG2000_PIXEL_ROWS_H
#define VEKPIX_JPEG2000_PIXEL_ROWS_H

#include <array>
#include <cstdint>
#include <vector>

#include "image/rows.h"
#include "jpeg2000/palette.h"
#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

// The samples of a component in a row, the first at position `first` of the component's own grid.
struct SampleRow {
    const int32_t* samples = nullptr;
    int first = 0;
    int count = 0;
    const ComponentSize* size = nullptr;
    const Palette* palette = nullptr;
    int column = 0;  // of the palette, if there is one
};

class PixelRows {
public:
    PixelRows(const Shape& shape, bool isYcc) : shape_(shape), isYcc_(isYcc) {}

    // Stores a row of pixels, the first of which is at `left` of the reference grid.
    void convert(const std::array<SampleRow, 3>& rows, uint8_t* pixels, int left) const;

private:
    Shape shape_;
    bool isYcc_;
};

}  // namespace vekpix::jpeg2000

#endif
