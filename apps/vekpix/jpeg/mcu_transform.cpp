#include "jpeg/mcu_transform.h"

#include <algorithm>
#include <cstring>

#include "jpeg/library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

McuLayout::McuLayout(const Shape& shape, const EncodeOptions& options)
    : picture(shape), colour(shape.channels == 3 && !options.grey)
{
    if (colour)
        sampling = options.sampling;
    if (sampling != ChromaSampling::Full444)
        downsampling = options.downsampling;
}

McuTransform::McuTransform(const McuLayout& layout, const QuantizerSteps& luminance, const QuantizerSteps& chrominance)
    : layout_(layout), channels_(static_cast<size_t>(layout.picture.channels))
{
    expectOk(vekiQuantFwdTableInit_JPEG_8u16u(luminance.data(), luminance_.data()), "quantisation table");
    expectOk(vekiQuantFwdTableInit_JPEG_8u16u(chrominance.data(), chrominance_.data()), "quantisation table");
}

void McuTransform::transform(const PixelBand& band, int mcuColumn, int16_t* blocks) const
{
    const int width = layout_.mcuWidth();
    const int height = layout_.mcuHeight();
    const int columns = std::min(layout_.picture.width - mcuColumn * width, width);
    const int rows = std::min(band.rows, height);
    const uint8_t* pixels = band.pixels + static_cast<size_t>(mcuColumn * width) * channels_;
    if (columns == width && rows == height) {
        transformWhole(pixels, static_cast<int>(band.step), blocks);
        return;
    }
    std::array<uint8_t, patchStep * 16> patch;
    for (int y = 0; y < height; ++y) {
        uint8_t* row = patch.data() + patchStep * static_cast<size_t>(y);
        const uint8_t* from = pixels + band.step * static_cast<size_t>(std::min(y, rows - 1));
        const size_t bytes = static_cast<size_t>(columns) * channels_;
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
    if (!layout_.colour) {
        alignas(blockAlignment) std::array<int16_t, 2 * blockSize> chroma;  // made and left
        int16_t* const planes[3] = {blocks, chroma.data(), chroma.data() + blockSize};
        expectOk(vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(pixels, step, planes), "colour conversion");
        expectOk(vekiDCTQuantFwd8x8_JPEG_16s_C1I(blocks, luminance_.data()), "DCT");
        return;
    }
    if (layout_.downsampling == ChromaDownsampling::Rows) {
        transformByRows(pixels, step, blocks);
        return;
    }
    int16_t* const cb = blocks + blockSize * static_cast<size_t>(layout_.luminanceBlocks());
    int16_t* const planes[3] = {blocks, cb, cb + blockSize};
    switch (layout_.sampling) {
        case ChromaSampling::Full444:
            expectOk(vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(pixels, step, planes), "colour conversion");
            break;
        case ChromaSampling::Half422:
            expectOk(vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(pixels, step, planes), "colour conversion");
            break;
        case ChromaSampling::Quarter420:
            expectOk(vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(pixels, step, planes), "colour conversion");
            break;
    }
    for (int16_t* block = blocks; block != cb; block += blockSize)
        expectOk(vekiDCTQuantFwd8x8_JPEG_16s_C1I(block, luminance_.data()), "DCT");
    expectOk(vekiDCTQuantFwd8x8_JPEG_16s_C1I(planes[1], chrominance_.data()), "DCT");
    expectOk(vekiDCTQuantFwd8x8_JPEG_16s_C1I(planes[2], chrominance_.data()), "DCT");
}

void McuTransform::transformByRows(const uint8_t* pixels, int step, int16_t* blocks) const
{
    constexpr int side = 16;
    using Plane = std::array<uint8_t, side * side>;
    alignas(blockAlignment) std::array<Plane, 3> samples;
    uint8_t* const planes[3] = {samples[0].data(), samples[1].data(), samples[2].data()};
    expectOk(vekiRGBToYCbCr_JPEG_8u_C3P3R(pixels, step, planes, side, {side, layout_.mcuHeight()}),
             "colour conversion");
    for (int y = 0; y < layout_.mcuHeight(); y += 8)
        for (int x = 0; x < side; x += 8, blocks += blockSize)
            expectOk(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(planes[0] + y * side + x, side, blocks, luminance_.data()),
                     "DCT");
    for (const uint8_t* plane : {planes[1], planes[2]}) {
        alignas(blockAlignment) Plane averaged;  // its rows lie at multiples of 16, where no rule of alignment bites
        for (int y = 0; y < 8; ++y) {
            uint8_t* to = averaged.data() + y * side;
            if (layout_.sampling == ChromaSampling::Half422)
                expectOk(vekiSampleDownRowH2V1_Box_JPEG_8u_C1(plane + y * side, side, to), "down-sampling");
            else
                expectOk(
                    vekiSampleDownRowH2V2_Box_JPEG_8u_C1(plane + 2 * y * side, plane + (2 * y + 1) * side, side, to),
                    "down-sampling");
        }
        expectOk(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(averaged.data(), side, blocks, chrominance_.data()), "DCT");
        blocks += blockSize;
    }
}

}  // namespace vekpix::jpeg
