#include "jpeg/mcu_transform.h"

#include <algorithm>
#include <cstring>

#include "image/depth_rows.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

McuLayout::McuLayout(const Shape& shape, const EncodeOptions& options) : picture(shape)
{
    if (shape.channels == 4)
        colours = options.colourTransform ? ColourModel::Ycck : ColourModel::Cmyk;
    else if (shape.channels == 3 && !options.grey)
        colours = options.colourTransform ? ColourModel::YCbCr : ColourModel::Rgb;
    if (isChroma(1))
        sampling = options.sampling;
    if (sampling != ChromaSampling::Full444)
        downsampling = options.downsampling;
}

McuTransform::McuTransform(const McuLayout& layout, const QuantizerSteps& luminance, const QuantizerSteps& chrominance)
    : layout_(layout), channels_(static_cast<size_t>(layout.picture.channels))
{
    expectOk(vekiQuantFwdTableInit_JPEG_8u16u(luminance.data(), luminance_.data()), "quantisation table");
    expectOk(vekiQuantFwdTableInit_JPEG_8u16u(chrominance.data(), chrominance_.data()), "quantisation table");
    for (size_t t = 0; t < deepQuantizers_.size(); ++t) {
        Quantizer steps;
        expectOk(vekiQuantInvTableInit_JPEG_8u16u((t == 0 ? luminance : chrominance).data(), steps.data()),
                 "quantisation table");
        std::transform(steps.begin(), steps.end(), deepQuantizers_[t].begin(),
                       [](uint16_t step) { return 1.0F / static_cast<float>(step); });
    }
}

void McuTransform::transform(const PixelBand& band, int mcuColumn, int16_t* blocks) const
{
    if (layout_.picture.bits > 8) {
        transformDeep(band, mcuColumn, blocks);
        return;
    }
    const int width = layout_.mcuWidth();
    const int height = layout_.mcuHeight();
    const int columns = std::min(layout_.picture.width - mcuColumn * width, width);
    const int rows = std::min(band.rows, height);
    const uint8_t* pixels = band.pixels + static_cast<size_t>(mcuColumn * width) * channels_;
    const bool inks = layout_.hasInks();
    if (columns == width && rows == height && !inks) {
        transformWhole(pixels, static_cast<int>(band.step), blocks);
        return;
    }
    std::array<uint8_t, patchStep * 16> patch;
    for (int y = 0; y < height; ++y) {
        uint8_t* row = patch.data() + patchStep * static_cast<size_t>(y);
        const uint8_t* from = pixels + band.step * static_cast<size_t>(std::min(y, rows - 1));
        const size_t bytes = static_cast<size_t>(columns) * channels_;
        if (inks)
            std::transform(from, from + bytes, row, [](uint8_t ink) { return static_cast<uint8_t>(255 - ink); });
        else
            std::memcpy(row, from, bytes);
        for (size_t i = bytes; i < static_cast<size_t>(width) * channels_; ++i) row[i] = row[i - channels_];
    }
    transformWhole(patch.data(), patchStep, blocks);
}

void McuTransform::transformWhole(const uint8_t* pixels, int step, int16_t* blocks) const
{
    if (channels_ == 1) {
        expectOk(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pixels, step, blocks, luminance_.data()), "DCT");
        return;
    }
    if (layout_.colours == ColourModel::Grey) {
        alignas(blockAlignment) std::array<int16_t, 2 * blockSize> chroma;  // made and left
        int16_t* const planes[3] = {blocks, chroma.data(), chroma.data() + blockSize};
        expectOk(vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(pixels, step, planes), "colour conversion");
        quantise(blocks);
        return;
    }
    if (layout_.colours == ColourModel::Cmyk) {
        transformInks(pixels, step, blocks);
        return;
    }
    if (layout_.downsampling == ChromaDownsampling::Rows) {
        transformByRows(pixels, step, blocks);
        return;
    }
    int16_t* const cb = blocks + blockSize * static_cast<size_t>(layout_.luminanceBlocks());
    int16_t* const planes[4] = {blocks, cb, cb + blockSize, cb + 2 * blockSize};
    const size_t sampling = static_cast<size_t>(layout_.sampling);
    if (layout_.colours == ColourModel::Ycck) {
        constexpr std::array members = {vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R, vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R,
                                        vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R};
        expectOk(members[sampling](pixels, step, planes), "colour conversion");
    } else if (layout_.colours == ColourModel::Rgb) {
        expectOk(vekiSampleDown444LS_MCU_8u16s_C3P3R(pixels, step, planes), "level shift");
    } else {
        constexpr std::array members = {vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R, vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R,
                                        vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R};
        expectOk(members[sampling](pixels, step, planes), "colour conversion");
    }
    quantise(blocks);
}

void McuTransform::quantise(int16_t* blocks) const
{
    for (int b = 0; b < layout_.blocksPerMcu(); ++b, blocks += blockSize) {
        const Quantizer& quantizer = layout_.isChroma(layout_.componentOf(b)) ? chrominance_ : luminance_;
        expectOk(vekiDCTQuantFwd8x8_JPEG_16s_C1I(blocks, quantizer.data()), "DCT");
    }
}

// Luminance, Cb and Cr by T.871, clause 7, in 16-bit fixed point and rounded to the nearest.
void toYcbcr(std::array<int, 4>& colour, int bits)
{
    const auto [r, g, b, black] = colour;
    const int zero = (1 << (bits - 1 + 16)) + 32767;
    colour = {(19595 * r + 38470 * g + 7471 * b + 32768) >> 16, (-11059 * r - 21709 * g + 32768 * b + zero) >> 16,
              (32768 * r - 27439 * g - 5329 * b + zero) >> 16, black};
}

// Averages cells of 2 x `down` samples in place, with the result in rows as far apart as before.
void average(uint16_t* plane, int step, int width, int height, int down)
{
    for (int y = 0; y < height / down; ++y)
        for (int x = 0; x < width / 2; ++x) {
            int sum = down;
            for (int dy = 0; dy < down; ++dy) {
                const uint16_t* cell = plane + (y * down + dy) * step + 2 * x;
                sum += cell[0] + cell[1];
            }
            plane[y * step + x] = static_cast<uint16_t>(sum / (2 * down));
        }
}

void McuTransform::transformDeep(const PixelBand& band, int mcuColumn, int16_t* blocks) const
{
    constexpr int side = 16;
    std::array<std::array<uint16_t, side * side>, 4> planes;
    const int bits = layout_.picture.bits;
    const int flip = layout_.hasInks() ? (1 << bits) - 1 : 0;
    for (int y = 0; y < layout_.mcuHeight(); ++y) {
        const uint8_t* row = band.pixels + band.step * static_cast<size_t>(std::min(y, band.rows - 1));
        for (int x = 0; x < layout_.mcuWidth(); ++x) {
            const int column = std::min(mcuColumn * layout_.mcuWidth() + x, layout_.picture.width - 1);
            std::array<int, 4> colour{};
            for (size_t c = 0; c < channels_; ++c)
                colour[c] = sampleAt(row, static_cast<size_t>(column) * channels_ + c, 2) ^ flip;
            if (layout_.colours == ColourModel::Ycck)  // of the inverse of what a CMYK file holds
                for (size_t c = 0; c < 3; ++c) colour[c] ^= flip;
            const bool transformed = layout_.colours != ColourModel::Rgb && layout_.colours != ColourModel::Cmyk;
            if (channels_ != 1 && transformed)
                toYcbcr(colour, bits);
            for (size_t c = 0; c < planes.size(); ++c)
                planes[c][static_cast<size_t>(y * side + x)] = static_cast<uint16_t>(colour[c]);
        }
    }
    for (size_t c = 0; c < static_cast<size_t>(layout_.components()); ++c) {
        uint16_t* plane = planes[c].data();
        VekSize size = {layout_.mcuWidth(), layout_.mcuHeight()};
        const bool chroma = layout_.isChroma(c);
        if (chroma && layout_.sampling != ChromaSampling::Full444) {
            average(plane, side, size.width, size.height, size.height / 8);
            size = {8, 8};
        }
        for (int y = 0; y < size.height; y += 8)
            for (int x = 0; x < size.width; x += 8, blocks += blockSize)
                expectOk(vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(plane + y * side + x, side * 2, blocks,
                                                              deepQuantizers_[chroma ? 1 : 0].data()),
                         "DCT");
    }
}

void McuTransform::transformInks(const uint8_t* pixels, int step, int16_t* blocks) const
{
    std::array<uint8_t, blockSize> samples;
    for (size_t c = 0; c < channels_; ++c, blocks += blockSize) {
        for (size_t i = 0; i < blockSize; ++i)
            samples[i] = pixels[static_cast<size_t>(step) * (i / 8) + channels_ * (i % 8) + c];
        expectOk(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(samples.data(), 8, blocks, luminance_.data()), "DCT");
    }
}

void McuTransform::transformByRows(const uint8_t* pixels, int step, int16_t* blocks) const
{
    constexpr int side = 16;
    using Plane = std::array<uint8_t, side * side>;
    alignas(blockAlignment) std::array<Plane, 4> samples;
    uint8_t* const planes[4] = {samples[0].data(), samples[1].data(), samples[2].data(), samples[3].data()};
    const VekSize mcu = {side, layout_.mcuHeight()};
    if (layout_.hasInks())
        expectOk(vekiCMYKToYCCK_JPEG_8u_C4P4R(pixels, step, planes, side, mcu), "colour conversion");
    else
        expectOk(vekiRGBToYCbCr_JPEG_8u_C3P3R(pixels, step, planes, side, mcu), "colour conversion");
    for (size_t c = 0; c < channels_; ++c) {
        alignas(blockAlignment) Plane averaged;  // its rows lie at multiples of 16, where no rule of alignment bites
        VekSize size = mcu;
        const uint8_t* plane = planes[c];
        if (layout_.isChroma(c)) {
            size = {8, 8};
            for (int y = 0; y < size.height; ++y) {
                uint8_t* to = averaged.data() + y * side;
                if (layout_.sampling == ChromaSampling::Half422)
                    expectOk(vekiSampleDownRowH2V1_Box_JPEG_8u_C1(plane + y * side, side, to), "down-sampling");
                else
                    expectOk(vekiSampleDownRowH2V2_Box_JPEG_8u_C1(plane + 2 * y * side, plane + (2 * y + 1) * side,
                                                                  side, to),
                             "down-sampling");
            }
            plane = averaged.data();
        }
        const Quantizer& quantizer = layout_.isChroma(c) ? chrominance_ : luminance_;
        for (int y = 0; y < size.height; y += 8)
            for (int x = 0; x < size.width; x += 8, blocks += blockSize)
                expectOk(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(plane + y * side + x, side, blocks, quantizer.data()),
                         "DCT");
    }
}

}  // namespace vekpix::jpeg
