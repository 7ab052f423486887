// A row of components becomes a row of pixels.
#ifndef VEKPIX_JPEG_ROW_COLOURS_H
#define VEKPIX_JPEG_ROW_COLOURS_H

#include <array>
#include <cstdint>

#include "jpeg/colour_model.h"
#include "jpeg/marker_reader.h"

namespace vekpix::jpeg {

struct RowColours {
    ColourModel model = ColourModel::Grey;
    bool inverted = false;  // inks: the largest value is none
    bool inksOut = false;   // gives inks as they are, of which the largest value is all; else the colour of the paper
    int bits = 8;
};

template <class Sample>
using ComponentRows = std::array<const Sample*, maxComponents>;

// `inks` is room for `width` pixels of four samples if there are so many components.
void convertRow(const RowColours& colours, const ComponentRows<uint8_t>& samples, int width, uint8_t* pixels,
                uint8_t* inks);
void convertRow(const RowColours& colours, const ComponentRows<uint16_t>& samples, int width, uint16_t* pixels,
                uint16_t* inks);

}  // namespace vekpix::jpeg

#endif
