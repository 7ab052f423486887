// A JPEG file, sequential, progressive or lossless, becomes pixels, band by band from the top.
#ifndef VEKPIX_JPEG_DECODER_H
#define VEKPIX_JPEG_DECODER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "image/rows.h"

namespace vekpix::jpeg {

// What becomes of components with fewer samples than the picture has pixels.
enum class Upsampling {
    Smooth,  // a triangle filter where there are half as many in a direction; else as Box
    Box,     // each sample is replicated
};

struct DecodeOptions {
    int scale = 1;    // 1, 2, 4 or 8: the size that is divided out, rounded up
    int threads = 1;  // threads that may work on the picture
    Upsampling upsampling = Upsampling::Smooth;
    bool inks = false;  // gives the inks of a CMYK or YCCK file, not the colour that they make on paper
};

class BandSource;

// Grey files give one channel, all others three (red, green, blue), or four inks of which the largest value is all. The
// file's bytes must outlive the decoder. Everything that is wrong with a file is an Error: in the constructor for its
// headers, in readBand() for its data.
class Decoder {
public:
    Decoder(std::span<const uint8_t> file, const DecodeOptions& options);
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    int width() const { return shape_.width; }
    int height() const { return shape_.height; }
    int channels() const { return shape_.channels; }
    const Shape& shape() const { return shape_; }
    int bandRows() const;  // rows of every band but the last, which may have fewer

    // Stores the next band at `pixels`, its rows `step` bytes apart: both even if samples have more than 8 bits.
    // Returns its number of rows, 0 behind the last.
    int readBand(uint8_t* pixels, size_t step);

private:
    Shape shape_;
    int nextRow_ = 0;
    std::unique_ptr<BandSource> source_;
};

}  // namespace vekpix::jpeg

#endif
