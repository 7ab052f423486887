// Pictures of any sampling, in any number of scans, at any reduction. A band is as many MCU rows as give a multiple of
// eight rows of pixels. Each component's samples of the band lie in a plane of their own; then tiles of 8 x 8 pixels
// are put together from them, chroma replicated, and converted by the 4:4:4 functions.
#include <algorithm>
#include <array>
#include <cstring>

#include "error.h"
#include "jpeg/band_source.h"
#include "jpeg/entropy_reader.h"

namespace vekpix::jpeg {

namespace {

constexpr int tileSide = 8;

class PlaneBands final : public BandSource {
public:
    PlaneBands(const Picture& picture, int scale);
    int bandRows() const override { return tileSide * maxVertical_; }
    void readBand(uint8_t* pixels, size_t step, int rows) override;
    std::optional<int> markerBehind() const override
    {
        return stored_ ? std::nullopt : scans_.back().reader.markerBehind();
    }

private:
    struct Plane {
        int horizontal = 1;  // blocks of the component in an MCU
        int vertical = 1;
        int blocksWide = 0;  // of the component alone, as a scan of its own codes them
        int blocksHigh = 0;
        int side = 8;  // samples of a block, in each direction
        int step = 0;
        std::vector<uint8_t> samples;
        std::vector<int32_t> columnOfPixel;  // empty if each pixel has its own sample
        std::array<int32_t, tileSide * 4> rowOfPixel{};
        alignas(64) std::array<uint16_t, 64> quantTable{};
    };
    struct ScanInProgress {
        Scan scan;
        EntropyReader reader;
    };

    void makePlane(const Picture& picture, size_t index);
    void readStoredRow(int mcuRow, int rowInBand);
    void readScanRow(ScanInProgress& scan, int mcuRow, int rowInBand);
    void readInterleavedRow(ScanInProgress& scan, int rowInBand);
    void readSingleRow(ScanInProgress& scan, int mcuRow, int rowInBand);
    void invert(const int16_t* block, Plane& plane, int blockColumn, int blockRow);
    void copyGrey(uint8_t* pixels, size_t step, int rows) const;
    void convert(uint8_t* pixels, size_t step, int rows) const;
    void fillTile(const Plane& plane, int x, int y, int16_t* tile) const;
    void convertTile(const int16_t* const tiles[], uint8_t* pixels, int step) const;

    ColourModel colours_;
    bool inverted_;
    int scale_;
    int width_;
    int maxHorizontal_;
    int maxVertical_;
    int mcusPerRow_;
    int mcuRows_;
    int nextMcuRow_ = 0;
    std::vector<Plane> planes_;
    std::shared_ptr<const CoefficientStore> stored_;
    std::vector<ScanInProgress> scans_;  // if they are not stored
};

PlaneBands::PlaneBands(const Picture& picture, int scale)
    : colours_(picture.colours),
      inverted_(picture.inverted),
      scale_(scale),
      width_(divideUp(picture.frame.width, scale)),
      maxHorizontal_(picture.frame.maxHorizontalSampling()),
      maxVertical_(picture.frame.maxVerticalSampling()),
      mcusPerRow_(picture.mcusPerRow()),
      mcuRows_(picture.mcuRows()),
      stored_(picture.stored)
{
    planes_.resize(picture.frame.components.size());
    for (size_t i = 0; i < planes_.size(); ++i) makePlane(picture, i);
    for (size_t i = 0; i < planes_.size(); ++i) picture.quantTable(i, planes_[i].quantTable.data());
    if (stored_)
        return;
    for (const Scan& scan : picture.scans)
        scans_.push_back({scan, EntropyReader(picture.file, scan.dataBegin, scan.restartInterval)});
}

void PlaneBands::makePlane(const Picture& picture, size_t index)
{
    const FrameComponent& component = picture.frame.components[index];
    Plane& plane = planes_[index];
    plane.horizontal = component.horizontalSampling;
    plane.vertical = component.verticalSampling;
    plane.blocksWide = divideUp(picture.componentWidth(index), 8);
    plane.blocksHigh = divideUp(picture.componentHeight(index), 8);
    // A reduced picture takes more samples of a subsampled component's blocks instead of replicating fewer.
    int enlarged = 1;
    while (enlarged < scale_ && maxHorizontal_ % (2 * enlarged * plane.horizontal) == 0 &&
           maxVertical_ % (2 * enlarged * plane.vertical) == 0)
        enlarged *= 2;
    plane.side = 8 / scale_ * enlarged;

    const int samplesPerMax = plane.horizontal * enlarged;  // for maxHorizontal_ pixels
    const int paddedWidth = std::max(mcusPerRow_ * maxHorizontal_ * 8 / scale_, divideUp(width_, tileSide) * tileSide);
    plane.step = (paddedWidth * samplesPerMax / maxHorizontal_ + 16) / 16 * 16;
    plane.samples.resize(static_cast<size_t>(plane.step) * static_cast<size_t>(8 * plane.vertical * enlarged));
    if (samplesPerMax != maxHorizontal_) {
        plane.columnOfPixel.resize(static_cast<size_t>(paddedWidth));
        for (int x = 0; x < paddedWidth; ++x)
            plane.columnOfPixel[static_cast<size_t>(x)] = x * samplesPerMax / maxHorizontal_;
    }
    for (int y = 0; y < bandRows(); ++y)
        plane.rowOfPixel[static_cast<size_t>(y)] = y * plane.vertical * enlarged / maxVertical_;
}

void PlaneBands::readBand(uint8_t* pixels, size_t step, int rows)
{
    for (int row = 0; row < scale_ && nextMcuRow_ < mcuRows_; ++row, ++nextMcuRow_) {
        if (stored_)
            readStoredRow(nextMcuRow_, row);
        for (ScanInProgress& scan : scans_) readScanRow(scan, nextMcuRow_, row);
    }
    if (colours_ == ColourModel::Grey)
        copyGrey(pixels, step, rows);
    else
        convert(pixels, step, rows);
}

void PlaneBands::readStoredRow(int mcuRow, int rowInBand)
{
    for (size_t i = 0; i < planes_.size(); ++i) {
        Plane& plane = planes_[i];
        const CoefficientStore::Component& component = stored_->components()[i];
        const int rows = std::min(plane.vertical, plane.blocksHigh - mcuRow * plane.vertical);
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < plane.blocksWide; ++x)
                invert(component.block(x, mcuRow * plane.vertical + y), plane, x, rowInBand * plane.vertical + y);
    }
}

void PlaneBands::readScanRow(ScanInProgress& scan, int mcuRow, int rowInBand)
{
    if (scan.scan.components.size() == 1)
        readSingleRow(scan, mcuRow, rowInBand);
    else
        readInterleavedRow(scan, rowInBand);
}

void PlaneBands::readInterleavedRow(ScanInProgress& scan, int rowInBand)
{
    alignas(64) int16_t block[64];
    for (int mcu = 0; mcu < mcusPerRow_; ++mcu) {
        scan.reader.beginMcu();
        for (size_t slot = 0; slot < scan.scan.components.size(); ++slot) {
            const ScanComponent& component = scan.scan.components[slot];
            Plane& plane = planes_[static_cast<size_t>(component.index)];
            for (int y = 0; y < plane.vertical; ++y) {
                for (int x = 0; x < plane.horizontal; ++x) {
                    scan.reader.readBlock(block, slot, component.dcTable->decoderTable(),
                                          component.acTable->decoderTable());
                    invert(block, plane, mcu * plane.horizontal + x, rowInBand * plane.vertical + y);
                }
            }
        }
    }
}

// A scan of one component has no padding blocks beyond those of the component itself (T.81, A.2.2).
void PlaneBands::readSingleRow(ScanInProgress& scan, int mcuRow, int rowInBand)
{
    alignas(64) int16_t block[64];
    const ScanComponent& component = scan.scan.components[0];
    Plane& plane = planes_[static_cast<size_t>(component.index)];
    const int rows = std::min(plane.vertical, plane.blocksHigh - mcuRow * plane.vertical);
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < plane.blocksWide; ++x) {
            scan.reader.beginMcu();
            scan.reader.readBlock(block, 0, component.dcTable->decoderTable(), component.acTable->decoderTable());
            invert(block, plane, x, rowInBand * plane.vertical + y);
        }
    }
}

void PlaneBands::invert(const int16_t* block, Plane& plane, int blockColumn, int blockRow)
{
    uint8_t* at = plane.samples.data() + static_cast<size_t>(blockRow * plane.side) * static_cast<size_t>(plane.step) +
                  static_cast<size_t>(blockColumn * plane.side);
    const uint16_t* table = plane.quantTable.data();
    if (plane.side == 8) {
        vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, at, plane.step, table);
    } else if (plane.side == 4) {
        vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(block, at, plane.step, table);
    } else if (plane.side == 2) {
        vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(block, at, plane.step, table);
    } else {
        uint8_t samples[64];
        vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(block, samples, 8, table);
        *at = samples[0];
    }
}

void PlaneBands::copyGrey(uint8_t* pixels, size_t step, int rows) const
{
    const Plane& plane = planes_[0];
    for (int y = 0; y < rows; ++y)
        std::memcpy(pixels + static_cast<size_t>(y) * step,
                    plane.samples.data() + static_cast<size_t>(y) * static_cast<size_t>(plane.step),
                    static_cast<size_t>(width_));
}

void PlaneBands::convert(uint8_t* pixels, size_t step, int rows) const
{
    alignas(64) int16_t samples[maxComponents][64];
    const int16_t* const tiles[maxComponents] = {samples[0], samples[1], samples[2], samples[3]};
    for (int y = 0; y < rows; y += tileSide) {
        const int tileRows = std::min(tileSide, rows - y);
        for (int x = 0; x < width_; x += tileSide) {
            const int tileColumns = std::min(tileSide, width_ - x);
            for (size_t i = 0; i < planes_.size(); ++i) fillTile(planes_[i], x, y, samples[i]);
            uint8_t* at = pixels + static_cast<size_t>(y) * step + static_cast<size_t>(x) * 3;
            if (tileRows == tileSide && tileColumns == tileSide) {
                convertTile(tiles, at, static_cast<int>(step));
                continue;
            }
            uint8_t whole[tileSide * tileSide * 3];
            convertTile(tiles, whole, tileSide * 3);
            for (int row = 0; row < tileRows; ++row)
                std::memcpy(at + static_cast<size_t>(row) * step, whole + row * tileSide * 3,
                            static_cast<size_t>(tileColumns) * 3);
        }
    }
}

void PlaneBands::fillTile(const Plane& plane, int x, int y, int16_t* tile) const
{
    for (int row = 0; row < tileSide; ++row, tile += tileSide) {
        const uint8_t* from =
            plane.samples.data() +
            static_cast<size_t>(plane.rowOfPixel[static_cast<size_t>(y + row)]) * static_cast<size_t>(plane.step);
        if (plane.columnOfPixel.empty()) {
            for (int i = 0; i < tileSide; ++i) tile[i] = static_cast<int16_t>(from[x + i] - 128);
        } else {
            const int32_t* column = plane.columnOfPixel.data() + x;
            for (int i = 0; i < tileSide; ++i) tile[i] = static_cast<int16_t>(from[column[i]] - 128);
        }
    }
}

// Ink on paper to light: the share of light that the colour's ink and the black ink let through.
void cmykToRgb(const uint8_t* inks, bool inverted, uint8_t* pixels, int step)
{
    const int flip = inverted ? 0 : 255;
    for (int i = 0; i < tileSide * tileSide; ++i) {
        uint8_t* pixel = pixels + i / tileSide * step + i % tileSide * 3;
        const int black = inks[4 * i + 3] ^ flip;
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(((inks[4 * i + c] ^ flip) * black + 127) / 255);
    }
}

void PlaneBands::convertTile(const int16_t* const tiles[], uint8_t* pixels, int step) const
{
    uint8_t inks[tileSide * tileSide * 4];
    switch (colours_) {
        case ColourModel::Rgb:
            vekiSampleUp444LS_MCU_16s8u_P3C3R(tiles, pixels, step);
            break;
        case ColourModel::Ycck:
            vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(tiles, inks, tileSide * 4);
            cmykToRgb(inks, inverted_, pixels, step);
            break;
        case ColourModel::Cmyk:
            for (int i = 0; i < tileSide * tileSide * 4; ++i) inks[i] = static_cast<uint8_t>(tiles[i % 4][i / 4] + 128);
            cmykToRgb(inks, inverted_, pixels, step);
            break;
        default:
            vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(tiles, pixels, step);
            break;
    }
}

}  // namespace

std::unique_ptr<BandSource> makePlaneBands(const Picture& picture, int scale)
{
    return std::make_unique<PlaneBands>(picture, scale);
}

}  // namespace vekpix::jpeg
