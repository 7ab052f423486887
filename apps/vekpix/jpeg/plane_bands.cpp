// Pictures of any sampling, in any number of scans, at any reduction. Each component's samples lie in a plane of their
// own: a ring of MCU rows, from the one above the band at hand to the one below it, which smooth up-sampling looks at.
// Rows of the planes grow to the width of the picture, and become rows of pixels.
//
// With several threads one decodes the samples of the next band while the others make the pixels of this one.
#include <algorithm>
#include <array>
#include <cstring>

#include "jpeg/band_source.h"
#include "jpeg/entropy_reader.h"
#include "jpeg/library_status.h"
#include "jpeg/sample_plane.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

constexpr size_t bandBytes = size_t{1} << 20;  // pixels that threads share at a time
constexpr int sliceRows = 16;                  // of them, for one thread at a time
constexpr int segmentPixels = 8192;            // colour conversion of more would begin threads of its own

class PlaneBands final : public BandSource {
public:
    PlaneBands(const Picture& picture, const DecodeOptions& options);
    int bandRows() const override { return bandMcuRows_ * mcuHeight_; }
    void readBand(uint8_t* pixels, size_t step, int rows) override;
    std::optional<int> markerBehind() const override
    {
        return stored_ ? std::nullopt : scans_.back().reader.markerBehind();
    }

private:
    struct ScanInProgress {
        Scan scan;
        EntropyReader reader;
    };

    void readMcuRowsUpTo(int end);
    void readStoredRow(int mcuRow);
    void readInterleavedRow(ScanInProgress& scan, int mcuRow);
    void readSingleRow(ScanInProgress& scan, int mcuRow);
    void convertRows(int first, int count, uint8_t* pixels, size_t step) const;
    void convertRow(const std::array<const uint8_t*, maxComponents>& samples, uint8_t* pixels, uint8_t* inks) const;

    ColourModel colours_;
    bool inverted_;
    bool inksOut_;
    int width_;
    int mcuHeight_;  // pixels
    int mcusPerRow_;
    int mcuRows_;
    int bandMcuRows_;
    int nextRow_ = 0;       // of pixels
    int nextMcuRow_ = 0;    // to be read
    int mcuRowsAhead_ = 0;  // that a band needs below its own
    std::vector<SamplePlane> planes_;
    std::shared_ptr<const CoefficientStore> stored_;
    std::vector<ScanInProgress> scans_;  // if they are not stored
    std::optional<Crew> crew_;           // if there are several threads
};

PlaneBands::PlaneBands(const Picture& picture, const DecodeOptions& options)
    : colours_(picture.colours),
      inverted_(picture.inverted),
      inksOut_(options.inks),
      width_(divideUp(picture.frame.width, options.scale)),
      mcuHeight_(8 * picture.frame.maxVerticalSampling() / options.scale),
      mcusPerRow_(picture.mcusPerRow()),
      mcuRows_(picture.mcuRows()),
      bandMcuRows_(options.scale),
      stored_(picture.stored)
{
    if (options.threads > 1) {
        const size_t rowBytes = static_cast<size_t>(width_) * 3 * static_cast<size_t>(mcuHeight_);
        bandMcuRows_ = std::max(bandMcuRows_, static_cast<int>(std::min<size_t>(bandBytes / rowBytes, 1024)));
        crew_.emplace(options.threads);
    }
    bandMcuRows_ = std::min(bandMcuRows_, mcuRows_);
    const int bandsInRing = crew_ ? 2 : 1;
    for (size_t i = 0; i < picture.frame.components.size(); ++i) {
        planes_.emplace_back(picture, i, options, bandsInRing * bandMcuRows_ + 2);
        if (planes_.back().looksDown())
            mcuRowsAhead_ = 1;
    }
    if (stored_)
        return;
    for (const Scan& scan : picture.scans)
        scans_.push_back({scan, EntropyReader(picture.file, scan.dataBegin, scan.restartInterval)});
}

void PlaneBands::readBand(uint8_t* pixels, size_t step, int rows)
{
    const int needed = divideUp(nextRow_ + rows, mcuHeight_) + mcuRowsAhead_;
    readMcuRowsUpTo(needed);
    if (crew_) {
        crew_->run(1 + divideUp(rows, sliceRows), [&](int item) {
            const int y = (item - 1) * sliceRows;
            if (item == 0)
                readMcuRowsUpTo(needed + bandMcuRows_);
            else
                convertRows(nextRow_ + y, std::min(sliceRows, rows - y), pixels + static_cast<size_t>(y) * step, step);
        });
    } else {
        convertRows(nextRow_, rows, pixels, step);
    }
    nextRow_ += rows;
}

void PlaneBands::readMcuRowsUpTo(int end)
{
    for (; nextMcuRow_ < std::min(end, mcuRows_); ++nextMcuRow_) {
        if (stored_)
            readStoredRow(nextMcuRow_);
        for (ScanInProgress& scan : scans_) {
            if (scan.scan.components.size() == 1)
                readSingleRow(scan, nextMcuRow_);
            else
                readInterleavedRow(scan, nextMcuRow_);
        }
    }
}

void PlaneBands::readStoredRow(int mcuRow)
{
    for (size_t i = 0; i < planes_.size(); ++i) {
        SamplePlane& plane = planes_[i];
        const CoefficientStore::Component& component = stored_->components()[i];
        const int begin = mcuRow * component.vertical;
        const int end = std::min(begin + component.vertical, component.blocksHigh);
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < component.blocksWide; ++x) plane.storeBlock(component.block(x, y), x, y);
    }
}

void PlaneBands::readInterleavedRow(ScanInProgress& scan, int mcuRow)
{
    alignas(64) int16_t block[64];
    for (int mcu = 0; mcu < mcusPerRow_; ++mcu) {
        scan.reader.beginMcu();
        for (size_t slot = 0; slot < scan.scan.components.size(); ++slot) {
            const ScanComponent& component = scan.scan.components[slot];
            SamplePlane& plane = planes_[static_cast<size_t>(component.index)];
            for (int y = 0; y < plane.verticalBlocks(); ++y) {
                for (int x = 0; x < plane.horizontalBlocks(); ++x) {
                    scan.reader.readBlock(block, slot, component.dcTable->decoderTable(),
                                          component.acTable->decoderTable());
                    plane.storeBlock(block, mcu * plane.horizontalBlocks() + x, mcuRow * plane.verticalBlocks() + y);
                }
            }
        }
    }
}

// A scan of one component has no padding blocks beyond those of the component itself (T.81, A.2.2).
void PlaneBands::readSingleRow(ScanInProgress& scan, int mcuRow)
{
    alignas(64) int16_t block[64];
    const ScanComponent& component = scan.scan.components[0];
    SamplePlane& plane = planes_[static_cast<size_t>(component.index)];
    const int begin = mcuRow * plane.verticalBlocks();
    const int end = std::min(begin + plane.verticalBlocks(), plane.blocksHigh());
    for (int y = begin; y < end; ++y) {
        for (int x = 0; x < plane.blocksWide(); ++x) {
            scan.reader.beginMcu();
            scan.reader.readBlock(block, 0, component.dcTable->decoderTable(), component.acTable->decoderTable());
            plane.storeBlock(block, x, y);
        }
    }
}

void PlaneBands::convertRows(int first, int count, uint8_t* pixels, size_t step) const
{
    std::vector<uint8_t> room;
    for (const SamplePlane& plane : planes_) room.resize(std::max(room.size(), plane.rowRoom()));
    const size_t rowRoom = room.size();
    room.resize(rowRoom * planes_.size());
    std::vector<uint8_t> inks(planes_.size() == 4 ? static_cast<size_t>(width_) * 4 : 0);
    std::array<const uint8_t*, maxComponents> samples{};
    for (int y = first; y < first + count; ++y, pixels += step) {
        for (size_t i = 0; i < planes_.size(); ++i) samples[i] = planes_[i].pixelRow(y, room.data() + i * rowRoom);
        convertRow(samples, pixels, inks.data());
    }
}

// Ink on paper to light: the share of light that the colour's ink and the black ink let through.
void inksToRgb(const uint8_t* inks, bool inverted, uint8_t* pixels, int width)
{
    const int flip = inverted ? 0 : 255;
    for (int x = 0; x < width; ++x, inks += 4, pixels += 3) {
        const int black = inks[3] ^ flip;
        for (int c = 0; c < 3; ++c) pixels[c] = static_cast<uint8_t>(((inks[c] ^ flip) * black + 127) / 255);
    }
}

void uninvert(const uint8_t* inks, bool inverted, uint8_t* pixels, int width)
{
    const int flip = inverted ? 255 : 0;
    for (size_t i = 0; i < static_cast<size_t>(width) * 4; ++i) pixels[i] = static_cast<uint8_t>(inks[i] ^ flip);
}

template <int channels>
void interleave(const std::array<const uint8_t*, maxComponents>& samples, uint8_t* pixels, int width)
{
    for (int x = 0; x < width; ++x)
        for (size_t c = 0; c < channels; ++c) *pixels++ = samples[c][x];
}

void PlaneBands::convertRow(const std::array<const uint8_t*, maxComponents>& samples, uint8_t* pixels,
                            uint8_t* inks) const
{
    switch (colours_) {
        case ColourModel::Grey:
            std::memcpy(pixels, samples[0], static_cast<size_t>(width_));
            break;
        case ColourModel::Rgb:
            interleave<3>(samples, pixels, width_);
            break;
        case ColourModel::YCbCr:
            for (int x = 0; x < width_; x += segmentPixels) {
                const uint8_t* const planes[3] = {samples[0] + x, samples[1] + x, samples[2] + x};
                expectOk(vekiYCbCrToRGB_JPEG_8u_P3C3R(planes, width_, pixels + static_cast<size_t>(x) * 3, width_ * 3,
                                                      {std::min(segmentPixels, width_ - x), 1}),
                         "colour conversion");
            }
            break;
        case ColourModel::Cmyk:
            interleave<4>(samples, inks, width_);
            break;
        case ColourModel::Ycck:
            for (int x = 0; x < width_; x += segmentPixels) {
                const uint8_t* const planes[4] = {samples[0] + x, samples[1] + x, samples[2] + x, samples[3] + x};
                expectOk(vekiYCCKToCMYK_JPEG_8u_P4C4R(planes, width_, inks + static_cast<size_t>(x) * 4, width_ * 4,
                                                      {std::min(segmentPixels, width_ - x), 1}),
                         "colour conversion");
            }
            break;
    }
    if (planes_.size() == 4)
        (inksOut_ ? uninvert : inksToRgb)(inks, inverted_, pixels, width_);
}

}  // namespace

std::unique_ptr<BandSource> makePlaneBands(const Picture& picture, const DecodeOptions& options)
{
    return std::make_unique<PlaneBands>(picture, options);
}

}  // namespace vekpix::jpeg
