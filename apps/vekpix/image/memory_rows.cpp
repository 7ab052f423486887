#include "image/memory_rows.h"

#include <cstring>

namespace vekpix {

Raster readPicture(RowReader& reader)
{
    Raster picture(reader.shape());
    reader.readRows(picture.pixels.data(), picture.shape.rowBytes(), picture.shape.height);
    return picture;
}

MemoryRows::MemoryRows(const Shape& shape, const uint8_t* pixels, size_t step)
    : pixels_(pixels), step_(step == 0 ? shape.rowBytes() : step)
{
    shape_ = shape;
}

const uint8_t* MemoryRows::takeRows(int rows, size_t& step)
{
    const uint8_t* first = pixels_ + step_ * static_cast<size_t>(next_);
    next_ += rows;
    step = step_;
    return first;
}

void MemoryRows::readRows(uint8_t* pixels, size_t step, int rows)
{
    size_t sourceStep = 0;
    const uint8_t* source = takeRows(rows, sourceStep);
    for (int y = 0; y < rows; ++y)
        std::memcpy(pixels + step * static_cast<size_t>(y), source + sourceStep * static_cast<size_t>(y),
                    shape_.rowBytes());
}

bool MemoryRows::rewind()
{
    next_ = 0;
    return true;
}

}  // namespace vekpix
