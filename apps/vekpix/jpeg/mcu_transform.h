// From pixels to the quantised coefficients of one MCU after the other (ITU T.81, Annex A.2 and A.3).
#ifndef VEKPIX_JPEG_MCU_TRANSFORM_H
#define VEKPIX_JPEG_MCU_TRANSFORM_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "jpeg/colour_model.h"
#include "jpeg/encoder.h"
#include "jpeg/standard_tables.h"

namespace vekpix::jpeg {

constexpr size_t blockSize = 64;        // coefficients
constexpr size_t maxBlocksPerMcu = 10;  // of all that McuTransform makes
constexpr size_t blockAlignment = 64;   // bytes; the library's fastest and most exact forms ask for 16

// How a picture is cut into MCUs.
struct McuLayout {
    Shape picture;
    ColourModel colours = ColourModel::Grey;
    ChromaSampling sampling = ChromaSampling::Full444;
    ChromaDownsampling downsampling = ChromaDownsampling::Blocks;

    McuLayout(const Shape& picture, const EncodeOptions& options);

    int mcuWidth() const { return sampling == ChromaSampling::Full444 ? 8 : 16; }
    int mcuHeight() const { return sampling == ChromaSampling::Quarter420 ? 16 : 8; }
    int luminanceBlocks() const { return mcuWidth() / 8 * (mcuHeight() / 8); }
    int components() const { return colours == ColourModel::Grey ? 1 : hasInks() ? 4 : 3; }
    int blocksPerMcu() const { return luminanceBlocks() * (hasInks() ? 2 : 1) + (components() > 1 ? 2 : 0); }
    bool hasInks() const { return colours == ColourModel::Cmyk || colours == ColourModel::Ycck; }
    // Cb and Cr; black has the samples and tables of luminance, and so have colours that are not transformed.
    bool isChroma(size_t component) const
    {
        return (component == 1 || component == 2) && (colours == ColourModel::YCbCr || colours == ColourModel::Ycck);
    }
    // The component of a block in its MCU.
    size_t componentOf(int block) const { return static_cast<size_t>(std::clamp(block - luminanceBlocks() + 1, 0, 3)); }
    int mcusPerRow() const { return (picture.width + mcuWidth() - 1) / mcuWidth(); }
    int mcuRows() const { return (picture.height + mcuHeight() - 1) / mcuHeight(); }
};

// Rows of pixels; `rows` of them exist.
struct PixelBand {
    const uint8_t* pixels = nullptr;
    size_t step = 0;
    int rows = 0;
};

class McuTransform {
public:
    // The steps are those of the file; `chrominance` counts for Cb and Cr only.
    McuTransform(const McuLayout& layout, const QuantizerSteps& luminance, const QuantizerSteps& chrominance);

    const McuLayout& layout() const { return layout_; }

    // Makes the blocks of an MCU, in the order of the scan: of luminance, then one each of Cb and Cr, then of black.
    // `band` begins with the MCU's first row. Where the picture ends within the MCU, its last column and row are
    // repeated.
    void transform(const PixelBand& band, int mcuColumn, int16_t* blocks) const;

private:
    using Quantizer = std::array<uint16_t, 64>;
    static constexpr size_t patchStep = 64;  // bytes; 16 pixels of 4 channels

    void transformWhole(const uint8_t* pixels, int step, int16_t* blocks) const;
    void transformByRows(const uint8_t* pixels, int step, int16_t* blocks) const;
    void transformDeep(const PixelBand& band, int mcuColumn, int16_t* blocks) const;
    void transformInks(const uint8_t* pixels, int step, int16_t* blocks) const;
    void quantise(int16_t* blocks) const;

    McuLayout layout_;
    size_t channels_;
    alignas(64) Quantizer luminance_{};
    alignas(64) Quantizer chrominance_{};
    std::array<std::array<float, 64>, 2> deepQuantizers_{};  // of luminance and chrominance, for 12-bit samples
};

}  // namespace vekpix::jpeg

#endif
