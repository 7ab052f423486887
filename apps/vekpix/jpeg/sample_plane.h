// The samples of one component, some MCU rows of them at a time, and how they grow to the size of the picture.
#ifndef VEKPIX_JPEG_SAMPLE_PLANE_H
#define VEKPIX_JPEG_SAMPLE_PLANE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "jpeg/band_source.h"
#include "jpeg/decoder.h"

namespace vekpix::jpeg {

// Sample: uint8_t, or uint16_t for those of 12 bits.
template <class Sample>
class SamplePlane {
public:
    // Holds `mcuRows` MCU rows: each takes the place of the one so many rows above it.
    SamplePlane(const Picture& picture, size_t index, const DecodeOptions& options, int mcuRows);

    int horizontalBlocks() const { return horizontal_; }  // in an MCU
    int verticalBlocks() const { return vertical_; }
    int blocksWide() const { return blocksWide_; }  // of the component alone, as a scan of its own codes them
    int blocksHigh() const { return blocksHigh_; }

    // Makes samples of quantised coefficients. The position counts blocks of the whole component.
    void storeBlock(const int16_t* block, int column, int row);

    // True if a row of pixels may need samples of the MCU row below its own.
    bool looksDown() const { return growth_ == Growth::Smooth1x2 || growth_ == Growth::Smooth2x2; }
    // The samples of a row of pixels: in the plane or in `room`, which holds rowRoom() samples.
    const Sample* pixelRow(int y, Sample* room) const;
    size_t rowRoom() const;

private:
    enum class Growth { None, Box, Smooth2x1, Smooth1x2, Smooth2x2 };
    using Step = std::conditional_t<sizeof(Sample) == 1, uint16_t, float>;

    // Above and below the component, its first and last row.
    const Sample* sampleRow(int row) const;
    Growth growthFor(Upsampling upsampling) const;

    int horizontal_;
    int vertical_;
    int blocksWide_;
    int blocksHigh_;
    int side_;   // samples of a block, in each direction
    int width_;  // samples within the picture
    int height_;
    int pixelsAcross_;   // as many pixels ...
    int samplesAcross_;  // ... as so many samples
    int pixelsDown_;
    int samplesDown_;
    Growth growth_;
    int ringRows_;
    size_t step_;  // samples
    std::vector<Sample> samples_;
    std::vector<int32_t> sampleOfPixel_;  // in a row, for replication
    alignas(64) std::array<Step, 64> quantTable_{};
};

extern template class SamplePlane<uint8_t>;
extern template class SamplePlane<uint16_t>;

}  // namespace vekpix::jpeg

#endif
