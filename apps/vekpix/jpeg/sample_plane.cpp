#include "jpeg/sample_plane.h"

#include <algorithm>

#include "jpeg/library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

// A row between two: a quarter of the way from `near` to `far`. The rounding alternates, as in the other direction.
void blendRows(const uint8_t* near, const uint8_t* far, bool farIsBelow, int width, uint8_t* row)
{
    const int rounding = farIsBelow ? 2 : 1;
    for (int x = 0; x < width; ++x) row[x] = static_cast<uint8_t>((3 * near[x] + far[x] + rounding) >> 2);
}

}  // namespace

SamplePlane::SamplePlane(const Picture& picture, size_t index, const DecodeOptions& options, int mcuRows)
{
    const int maxHorizontal = picture.frame.maxHorizontalSampling();
    const int maxVertical = picture.frame.maxVerticalSampling();
    const FrameComponent& component = picture.frame.components[index];
    horizontal_ = component.horizontalSampling;
    vertical_ = component.verticalSampling;
    blocksWide_ = divideUp(picture.componentWidth(index), 8);
    blocksHigh_ = divideUp(picture.componentHeight(index), 8);
    // A reduced picture takes more samples of a subsampled component's blocks instead of replicating fewer.
    int enlarged = 1;
    while (enlarged < options.scale && maxHorizontal % (2 * enlarged * horizontal_) == 0 &&
           maxVertical % (2 * enlarged * vertical_) == 0)
        enlarged *= 2;
    side_ = 8 / options.scale * enlarged;
    width_ = divideUp(picture.frame.width * horizontal_ * side_, maxHorizontal * 8);
    height_ = divideUp(picture.frame.height * vertical_ * side_, maxVertical * 8);
    pixelsAcross_ = maxHorizontal;
    samplesAcross_ = horizontal_ * enlarged;
    pixelsDown_ = maxVertical;
    samplesDown_ = vertical_ * enlarged;
    growth_ = growthFor(options.upsampling);

    ringRows_ = mcuRows * vertical_ * side_;
    step_ = static_cast<size_t>(picture.mcusPerRow() * horizontal_ * side_ + 15) / 16 * 16;
    samples_.resize(step_ * static_cast<size_t>(ringRows_));
    if (growth_ == Growth::Box && samplesAcross_ != pixelsAcross_) {
        sampleOfPixel_.resize(static_cast<size_t>(divideUp(picture.frame.width, options.scale)));
        for (size_t x = 0; x < sampleOfPixel_.size(); ++x)
            sampleOfPixel_[x] = static_cast<int32_t>(x) * samplesAcross_ / pixelsAcross_;
    }
    picture.quantTable(index, quantTable_.data());
}

SamplePlane::Growth SamplePlane::growthFor(Upsampling upsampling) const
{
    const bool sameAcross = pixelsAcross_ == samplesAcross_;
    const bool sameDown = pixelsDown_ == samplesDown_;
    if (sameAcross && sameDown)
        return Growth::None;
    const bool twiceAcross = pixelsAcross_ == 2 * samplesAcross_;
    const bool twiceDown = pixelsDown_ == 2 * samplesDown_;
    if (upsampling == Upsampling::Smooth && (sameAcross || twiceAcross) && (sameDown || twiceDown))
        return sameDown ? Growth::Smooth2x1 : sameAcross ? Growth::Smooth1x2 : Growth::Smooth2x2;
    return Growth::Box;
}

void SamplePlane::storeBlock(const int16_t* block, int column, int row)
{
    uint8_t* to = at(row * side_) + static_cast<size_t>(column * side_);
    const int step = static_cast<int>(step_);
    const uint16_t* table = quantTable_.data();
    if (side_ == 8) {
        vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, to, step, table);
    } else if (side_ == 4) {
        vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(block, to, step, table);
    } else if (side_ == 2) {
        vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(block, to, step, table);
    } else {
        uint8_t samples[64];
        vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(block, samples, 8, table);
        *to = samples[0];
    }
}

const uint8_t* SamplePlane::sampleRow(int row) const
{
    const int within = std::clamp(row, 0, height_ - 1);
    return samples_.data() + static_cast<size_t>(within % ringRows_) * step_;
}

size_t SamplePlane::rowRoom() const { return std::max(2 * static_cast<size_t>(width_), sampleOfPixel_.size()); }

const uint8_t* SamplePlane::pixelRow(int y, uint8_t* room) const
{
    const int row = y * samplesDown_ / pixelsDown_;
    const uint8_t* near = sampleRow(row);
    const bool farIsBelow = y % 2 == 1;
    const uint8_t* far = sampleRow(farIsBelow ? row + 1 : row - 1);
    switch (growth_) {
        case Growth::None:
            return near;
        case Growth::Smooth2x1:
            expectOk(vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(near, width_, room), "up-sampling");
            break;
        case Growth::Smooth1x2:
            blendRows(near, far, farIsBelow, width_, room);
            break;
        case Growth::Smooth2x2:
            expectOk(vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(near, far, width_, room), "up-sampling");
            break;
        case Growth::Box:
            if (sampleOfPixel_.empty())
                return near;
            for (size_t x = 0; x < sampleOfPixel_.size(); ++x) room[x] = near[sampleOfPixel_[x]];
            break;
    }
    return room;
}

}  // namespace vekpix::jpeg
