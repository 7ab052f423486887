// What the ways of decoding a picture have in common: the decoder asks them for one band after the other.
#ifndef VEKPIX_JPEG_BAND_SOURCE_H
#define VEKPIX_JPEG_BAND_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jpeg/coefficient_store.h"
#include "jpeg/decoder.h"
#include "jpeg/marker_reader.h"

namespace vekpix::jpeg {

// Everything that the headers tell about a picture.
struct Picture {
    std::span<const uint8_t> file;
    Frame frame;
    ColourModel colours = ColourModel::Grey;
    bool inverted = false;  // four components as Adobe's programs write them: 255 is no ink
    std::vector<Scan> scans;
    std::shared_ptr<const CoefficientStore> stored;  // if bands are to be made from it, not from the scans

    int mcusPerRow() const { return frame.mcusPerRow(); }
    int mcuRows() const { return frame.mcuRows(); }
    int componentWidth(size_t index) const { return frame.componentWidth(index); }
    int componentHeight(size_t index) const { return frame.componentHeight(index); }
    // The steps in force when a component's first scan began; null if it has no scan.
    const QuantSteps* quantSteps(size_t index) const;
    // The library's table of them: of ones if the component has no scan, and thus no coefficients.
    void quantTable(size_t index, uint16_t* table) const;
};

class BandSource {
public:
    virtual ~BandSource() = default;
    virtual int bandRows() const = 0;
    // Stores `rows` rows: bandRows(), or what is left at the bottom of the picture.
    virtual void readBand(uint8_t* pixels, size_t step, int rows) = 0;
    // The first marker behind the last scan's data, once the last band has been read.
    virtual std::optional<int> markerBehind() const = 0;
};

// Three colours in one scan with 4:4:4 sampling, or 4:2:2 or 4:2:0 with replicated chroma, at full size: each MCU goes
// from its bits to its pixels at once. Null for anything else.
std::unique_ptr<BandSource> makeMcuBands(const Picture& picture, const DecodeOptions& options);

// Every picture: planes of samples of each component, a band high.
std::unique_ptr<BandSource> makePlaneBands(const Picture& picture, const DecodeOptions& options);

}  // namespace vekpix::jpeg

#endif
