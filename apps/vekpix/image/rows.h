// Pictures as rows of interleaved samples, from the top: grey (one channel), red, green, blue (three), or the inks
// cyan, magenta, yellow, black (four; the largest value is all ink). Lights may have an alpha channel behind them,
// which they are not multiplied by; its largest value is opaque. Samples of more than 8 bits are 16-bit words in the
// machine's own order.
#ifndef VEKPIX_IMAGE_ROWS_H
#define VEKPIX_IMAGE_ROWS_H

#include <cstddef>
#include <cstdint>

namespace vekpix {

struct Shape {
    int width = 0;
    int height = 0;
    int channels = 0;  // 1, 3 or 4; with alpha 2 or 4
    int bits = 8;      // 8 .. 16
    bool alpha = false;

    int colours() const { return channels - (alpha ? 1 : 0); }
    bool inks() const { return colours() == 4; }
    size_t sampleBytes() const { return bits > 8 ? 2 : 1; }
    size_t rowSamples() const { return static_cast<size_t>(width) * static_cast<size_t>(channels); }
    size_t rowBytes() const { return rowSamples() * sampleBytes(); }
    bool operator==(const Shape&) const = default;
};

class RowReader {
public:
    virtual ~RowReader() = default;
    const Shape& shape() const { return shape_; }
    int width() const { return shape_.width; }
    int height() const { return shape_.height; }
    int channels() const { return shape_.channels; }

    // Stores the next `rows` rows at `pixels`, each `step` bytes behind the one before. No more rows than are left.
    virtual void readRows(uint8_t* pixels, size_t step, int rows) = 0;
    // The next `rows` rows where they lie in memory, `step` bytes apart, passed over as if they had been read; null,
    // with nothing done, if the source does not hold them there.
    virtual const uint8_t* takeRows(int /*rows*/, size_t& /*step*/) { return nullptr; }
    // Goes back to the first row, if the source can: otherwise false, with nothing changed.
    virtual bool rewind() { return false; }

protected:
    Shape shape_;
};

class RowWriter {
public:
    virtual ~RowWriter() = default;
    virtual void writeRows(const uint8_t* pixels, size_t step, int rows) = 0;
    // To be called behind the last row.
    virtual void finish() = 0;
};

}  // namespace vekpix

#endif
