// What the ways of decoding a picture have in common: the decoder asks them for one band after the other.
#ifndef VEKPIX_JPEG_BAND_SOURCE_H
#define VEKPIX_JPEG_BAND_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "jpeg/decoder.h"
#include "jpeg/picture.h"

namespace vekpix::jpeg {

class BandSource {
public:
    virtual ~BandSource() = default;
    virtual int bandRows() const = 0;
    // Stores `rows` rows: bandRows(), or what is left at the bottom of the picture. Samples of more than 8 bits are
    // words, for which `pixels` and `step` must be even.
    virtual void readBand(uint8_t* pixels, size_t step, int rows) = 0;
    // The first marker behind the last scan's data, once the last band has been read.
    virtual std::optional<int> markerBehind() const = 0;
};

// Three colours in one scan with 4:4:4 sampling, or 4:2:2 or 4:2:0 with replicated chroma, at full size: each MCU goes
// from its bits to its pixels at once. Null for anything else.
std::unique_ptr<BandSource> makeMcuBands(const Picture& picture, const DecodeOptions& options);

// Every picture: planes of samples of each component, a band high.
std::unique_ptr<BandSource> makePlaneBands(const Picture& picture, const DecodeOptions& options);

// A progressive picture. One thread reads all scans side by side; several read all coefficients first, which takes the
// time of the first band.
std::unique_ptr<BandSource> makeProgressiveBands(const Picture& picture, const DecodeOptions& options);

// A lossless picture.
std::unique_ptr<BandSource> makeLosslessBands(const Picture& picture, const DecodeOptions& options);

}  // namespace vekpix::jpeg

#endif
