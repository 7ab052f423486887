// Writes a picture as a TIFF file: strips, packed or not, then the directory.
#ifndef VEKPIX_TIFF_ENCODER_H
#define VEKPIX_TIFF_ENCODER_H

#include <functional>

#include "image/rows.h"
#include "io/byte_sink.h"
#include "tiff/byte_order.h"

namespace vekpix::tiff {

struct EncodeOptions {
    bool packBits = false;
    ByteOrder order = ByteOrder::Little;
    std::function<void(int)> onRows = [](int) {};  // is told how many rows are done
};

// Grey or RGB pictures of 8 or 16 bits.
void encode(RowReader& picture, ChangeableSink& sink, const EncodeOptions& options);

}  // namespace vekpix::tiff

#endif
