// A JPEG 2000 file (ISO/IEC 15444-1), JP2 or a bare code-stream, becomes pixels, band by band from the top.
#ifndef VEKPIX_JPEG2000_DECODER_H
#define VEKPIX_JPEG2000_DECODER_H

#include <cstdint>
#include <memory>
#include <span>

#include "image/rows.h"

namespace vekpix::jpeg2000 {

struct DecodeOptions {
    int droppedResolutions = 0;  // each halves width and height, rounded up on the reference grid
    int layers = 65535;          // quality layers to decode, from the first
    int threads = 1;             // threads that may work on the picture
};

// Grey files give one channel, all others three (red, green, blue); opacity is left out. Components with fewer samples
// than the picture has pixels are replicated. Samples of fewer than 8 bits are scaled to 8; components of unequal
// depths are scaled to the largest. The file's bytes must outlive the decoder. Everything that is wrong with a file is
// an Error: in the constructor for its main header, in readBand() for its tiles.
// Memory: the samples of a row of tiles, 32 bits each.
class Decoder {
public:
    Decoder(std::span<const uint8_t> file, const DecodeOptions& options);
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    const Shape& shape() const;
    int bandRows() const;  // rows of a band, at most

    // Stores the next band at `pixels`, its rows `step` bytes apart: both even if samples have more than 8 bits.
    // Returns its number of rows, 0 behind the last.
    int readBand(uint8_t* pixels, size_t step);

private:
    class State;
    std::unique_ptr<State> state_;
};

}  // namespace vekpix::jpeg2000

#endif
