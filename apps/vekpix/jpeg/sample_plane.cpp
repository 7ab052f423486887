#include "jpeg/sample_plane.h"

#include <algorithm>

#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

// A row between two: a quarter of the way from `near` to `far`. The rounding alternates, as in the other direction.
template <class Sample>
void blendRows(const Sample* near, const Sample* far, bool farIsBelow, int width, Sample* row)
{
    const int rounding = farIsBelow ? 2 : 1;
    for (int x = 0; x < width; ++x) row[x] = static_cast<Sample>((3 * near[x] + far[x] + rounding) >> 2);
}

void growAcross(const uint8_t* samples, int width, uint8_t* row)
{
    expectOk(vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(samples, width, row), "up-sampling");
}

void growBothWays(const uint8_t* near, const uint8_t* far, int width, uint8_t* row)
{
    expectOk(vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(near, far, width, row), "up-sampling");
}

// The same filters for samples that the library's functions do not take.
void growAcross(const uint16_t* samples, int width, uint16_t* row)
{
    for (int x = 0; x < width; ++x) {
        const int left = samples[std::max(x - 1, 0)];
        const int right = samples[std::min(x + 1, width - 1)];
        row[2 * x] = static_cast<uint16_t>((3 * samples[x] + left + 1) >> 2);
        row[2 * x + 1] = static_cast<uint16_t>((3 * samples[x] + right + 2) >> 2);
    }
}

void growBothWays(const uint16_t* near, const uint16_t* far, int width, uint16_t* row)
{
    const auto sum = [&](int x) { return 3 * near[x] + far[x]; };
    for (int x = 0; x < width; ++x) {
        row[2 * x] = static_cast<uint16_t>((3 * sum(x) + sum(std::max(x - 1, 0)) + 8) >> 4);
        row[2 * x + 1] = static_cast<uint16_t>((3 * sum(x) + sum(std::min(x + 1, width - 1)) + 7) >> 4);
    }
}

// A block to `side` x `side` samples in rows `step` samples apart.
void invert(const int16_t* block, int side, const uint16_t* table, uint8_t* to, int step)
{
    if (side == 8) {
        vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, to, step, table);
    } else if (side == 4) {
        vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(block, to, step, table);
    } else if (side == 2) {
        vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(block, to, step, table);
    } else {
        uint8_t samples[64];
        vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(block, samples, 8, table);
        *to = samples[0];
    }
}

// Reduced blocks are averages of whole ones.
void invert(const int16_t* block, int side, const float* table, uint16_t* to, int step)
{
    if (side == 8) {
        vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(block, to, step * 2, table);
        return;
    }
    uint16_t samples[64];
    vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(block, samples, 8 * 2, table);
    const int cell = 8 / side;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            int sum = cell * cell / 2;
            for (int i = 0; i < cell * cell; ++i) sum += samples[(y * cell + i / cell) * 8 + x * cell + i % cell];
            to[y * step + x] = static_cast<uint16_t>(sum / (cell * cell));
        }
}

}  // namespace

template <class Sample>
SamplePlane<Sample>::SamplePlane(const Picture& picture, size_t index, const DecodeOptions& options, int mcuRows)
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
    std::array<uint16_t, 64> steps;
    picture.quantTable(index, steps.data());
    std::copy(steps.begin(), steps.end(), quantTable_.begin());
}

template <class Sample>
typename SamplePlane<Sample>::Growth SamplePlane<Sample>::growthFor(Upsampling upsampling) const
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

template <class Sample>
void SamplePlane<Sample>::storeBlock(const int16_t* block, int column, int row)
{
    const size_t first = static_cast<size_t>(row * side_ % ringRows_) * step_ + static_cast<size_t>(column * side_);
    invert(block, side_, quantTable_.data(), samples_.data() + first, static_cast<int>(step_));
}

template <class Sample>
const Sample* SamplePlane<Sample>::sampleRow(int row) const
{
    const int within = std::clamp(row, 0, height_ - 1);
    return samples_.data() + static_cast<size_t>(within % ringRows_) * step_;
}

template <class Sample>
size_t SamplePlane<Sample>::rowRoom() const
{
    return std::max(2 * static_cast<size_t>(width_), sampleOfPixel_.size());
}

template <class Sample>
const Sample* SamplePlane<Sample>::pixelRow(int y, Sample* room) const
{
    const int row = y * samplesDown_ / pixelsDown_;
    const Sample* near = sampleRow(row);
    const bool farIsBelow = y % 2 == 1;
    const Sample* far = sampleRow(farIsBelow ? row + 1 : row - 1);
    switch (growth_) {
        case Growth::None:
            return near;
        case Growth::Smooth2x1:
            growAcross(near, width_, room);
            break;
        case Growth::Smooth1x2:
            blendRows(near, far, farIsBelow, width_, room);
            break;
        case Growth::Smooth2x2:
            growBothWays(near, far, width_, room);
            break;
        case Growth::Box:
            if (sampleOfPixel_.empty())
                return near;
            for (size_t x = 0; x < sampleOfPixel_.size(); ++x) room[x] = near[sampleOfPixel_[x]];
            break;
    }
    return room;
}

template class SamplePlane<uint8_t>;
template class SamplePlane<uint16_t>;

}  // namespace vekpix::jpeg
