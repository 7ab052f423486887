// A picture becomes a lossless file of one scan (ITU T.81, Annex H.1), row by row.
#ifndef VEKPIX_JPEG_LOSSLESS_ENCODER_H
#define VEKPIX_JPEG_LOSSLESS_ENCODER_H

#include "image/rows.h"
#include "io/byte_sink.h"
#include "jpeg/encoder.h"

namespace vekpix::jpeg {

// Goes over the picture twice: its Huffman table is made for it. `picture` can be rewound.
void encodeLossless(RowReader& picture, ByteSink& file, const EncodeOptions& options);

}  // namespace vekpix::jpeg

#endif
