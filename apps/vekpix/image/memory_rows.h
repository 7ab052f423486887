// A picture that lies in memory.
#ifndef VEKPIX_IMAGE_MEMORY_ROWS_H
#define VEKPIX_IMAGE_MEMORY_ROWS_H

#include <vector>

#include "image/rows.h"

namespace vekpix {

struct Raster {
    Shape shape;
    std::vector<uint8_t> pixels;  // rows without gaps

    explicit Raster(const Shape& size) : shape(size), pixels(size.rowBytes() * static_cast<size_t>(size.height)) {}
    uint8_t* row(int y) { return pixels.data() + shape.rowBytes() * static_cast<size_t>(y); }
    const uint8_t* row(int y) const { return pixels.data() + shape.rowBytes() * static_cast<size_t>(y); }
};

// All rows of `reader`, which stands at its first.
Raster readPicture(RowReader& reader);

// The rows of a picture that outlives the reader.
class MemoryRows : public RowReader {
public:
    explicit MemoryRows(const Raster& picture) : MemoryRows(picture.shape, picture.pixels.data(), 0) {}
    MemoryRows(const Shape& shape, const uint8_t* pixels, size_t step);  // a step of 0: rows without gaps

    void readRows(uint8_t* pixels, size_t step, int rows) override;
    const uint8_t* takeRows(int rows, size_t& step) override;
    bool rewind() override;

private:
    const uint8_t* pixels_;
    size_t step_;
    int next_ = 0;
};

}  // namespace vekpix

#endif
