// A TIFF file as rows of pixels: its first picture, grey or RGB, of 8 or 16 bits, in strips that are packed or not. An
// orientation is not heeded: rows come as they are stored.
#ifndef VEKPIX_TIFF_DECODER_H
#define VEKPIX_TIFF_DECODER_H

#include <span>
#include <vector>

#include "image/rows.h"
#include "tiff/layout.h"
#include "tiff/strip_reader.h"

namespace vekpix::tiff {

class Decoder : public RowReader {
public:
    // Throws Error for what is no such file, as readRows() does for a damaged strip. The file must outlive the object.
    explicit Decoder(std::span<const uint8_t> file);

    void readRows(uint8_t* pixels, size_t step, int rows) override;

    // Rows for readBand().
    int bandRows() const { return bandRows_; }
    // As many rows as readRows() stores, at most bandRows(): 0 behind the last row.
    int readBand(uint8_t* pixels, size_t step);

private:
    void readRow(uint8_t* row);
    void startStrip(int index);

    std::span<const uint8_t> file_;
    Layout layout_;
    std::vector<StripReader> strips_;  // at the row, one for each plane
    std::vector<uint8_t> planeRow_;
    int bandRows_;
    int next_ = 0;
};

}  // namespace vekpix::tiff

#endif
