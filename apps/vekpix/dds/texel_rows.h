// A picture's rows with the channels that a texture codes: one (red, or grey), two (red, green), three (red, green,
// blue) or four (with alpha). A grey picture has equal colours, one without alpha is opaque.
#ifndef VEKPIX_DDS_TEXEL_ROWS_H
#define VEKPIX_DDS_TEXEL_ROWS_H

#include <vector>

#include "image/rows.h"

namespace vekpix::dds {

class TexelRows : public RowReader {
public:
    // Of a picture of 8 bits that outlives the reader. An Error for a picture of inks.
    TexelRows(RowReader& source, int channels);

    void readRows(uint8_t* pixels, size_t step, int rows) override;

private:
    RowReader& source_;
    std::vector<uint8_t> row_;
};

}  // namespace vekpix::dds

#endif
