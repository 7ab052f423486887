// A picture becomes a JPEG 2000 file (ISO/IEC 15444-1), JP2 or a bare code-stream.
#ifndef VEKPIX_JPEG2000_ENCODER_H
#define VEKPIX_JPEG2000_ENCODER_H

#include <functional>
#include <optional>

#include "image/rows.h"
#include "io/byte_sink.h"
#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

struct EncodeOptions {
    // With neither of these the picture is coded without loss.
    std::optional<double> bitsPerPixel;  // of the whole file
    std::optional<double> psnr;          // decibels, over all samples; met nearly: it is an estimate

    int levels = 5;        // 0 .. 32
    int blockSizeLog = 6;  // 2 .. 6: of the code-blocks' sides
    int tileWidth = 0;     // 0: one tile
    int tileHeight = 0;
    int layers = 1;  // quality layers, each about twice as large as those before
    Progression progression = Progression::Lrcp;
    int blockStyle = 0;                    // a sum of BlockStyle
    bool jp2 = true;                       // boxes around the code-stream
    int threads = 1;                       // threads that may work on the picture; the file does not depend on it
    std::function<void(int rows)> onRows;  // hears of rows done
};

// An Error if the options or the picture do not suit the format. Where bytes are limited, code-blocks are cut where
// this costs the least: all at the same slope of squared error over bytes.
// Memory: the samples of a row of tiles, 32 bits each, and all coded data.
void encode(RowReader& picture, ByteSink& file, const EncodeOptions& options);

}  // namespace vekpix::jpeg2000

#endif
