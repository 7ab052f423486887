// Pictures of any sampling, in any number of scans, at any reduction. Each component's samples lie in a plane of their
// own: a ring of MCU rows, from the one above the band at hand to the one below it, which smooth up-sampling looks at.
// Rows of the planes grow to the width of the picture, and become rows of pixels.
//
// With several threads one decodes the samples of the next band while the others make the pixels of this one.
#include <algorithm>
#include <array>

#include "jpeg/band_source.h"
#include "jpeg/entropy_reader.h"
#include "jpeg/row_colours.h"
#include "jpeg/sample_plane.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

constexpr size_t bandBytes = size_t{1} << 20;  // pixels that threads share at a time
constexpr int sliceRows = 16;                  // of them, for one thread at a time

// Sample: uint8_t, or uint16_t for those of 12 bits.
template <class Sample>
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

    RowColours colours_;
    int width_;
    int mcuHeight_;  // pixels
    int mcusPerRow_;
    int mcuRows_;
    int bandMcuRows_;
    int nextRow_ = 0;       // of pixels
    int nextMcuRow_ = 0;    // to be read
    int mcuRowsAhead_ = 0;  // that a band needs below its own
    std::vector<SamplePlane<Sample>> planes_;
    std::shared_ptr<StoredRows> stored_;
    std::vector<ScanInProgress> scans_;  // if they are not stored
    std::optional<Crew> crew_;           // if there are several threads
};

template <class Sample>
PlaneBands<Sample>::PlaneBands(const Picture& picture, const DecodeOptions& options)
    : colours_{picture.colours, picture.inverted, options.inks, picture.frame.bits},
      width_(divideUp(picture.frame.width, options.scale)),
      mcuHeight_(8 * picture.frame.maxVerticalSampling() / options.scale),
      mcusPerRow_(picture.mcusPerRow()),
      mcuRows_(picture.mcuRows()),
      bandMcuRows_(options.scale),
      stored_(picture.stored)
{
    if (options.threads > 1) {
        const size_t rowBytes = static_cast<size_t>(width_) * 3 * sizeof(Sample) * static_cast<size_t>(mcuHeight_);
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

template <class Sample>
void PlaneBands<Sample>::readBand(uint8_t* pixels, size_t step, int rows)
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

template <class Sample>
void PlaneBands<Sample>::readMcuRowsUpTo(int end)
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

template <class Sample>
void PlaneBands<Sample>::readStoredRow(int mcuRow)
{
    const CoefficientStore& store = stored_->row(mcuRow);
    for (size_t i = 0; i < planes_.size(); ++i) {
        SamplePlane<Sample>& plane = planes_[i];
        const CoefficientStore::Component& component = store.components()[i];
        const int begin = mcuRow * component.vertical;
        const int end = std::min(begin + component.vertical, component.blocksHigh);
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < component.blocksWide; ++x) plane.storeBlock(component.block(x, y), x, y);
    }
}

template <class Sample>
void PlaneBands<Sample>::readInterleavedRow(ScanInProgress& scan, int mcuRow)
{
    alignas(64) int16_t block[64];
    for (int mcu = 0; mcu < mcusPerRow_; ++mcu) {
        scan.reader.beginMcu();
        for (size_t slot = 0; slot < scan.scan.components.size(); ++slot) {
            const ScanComponent& component = scan.scan.components[slot];
            SamplePlane<Sample>& plane = planes_[static_cast<size_t>(component.index)];
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
template <class Sample>
void PlaneBands<Sample>::readSingleRow(ScanInProgress& scan, int mcuRow)
{
    alignas(64) int16_t block[64];
    const ScanComponent& component = scan.scan.components[0];
    SamplePlane<Sample>& plane = planes_[static_cast<size_t>(component.index)];
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

template <class Sample>
void PlaneBands<Sample>::convertRows(int first, int count, uint8_t* pixels, size_t step) const
{
    std::vector<Sample> room;
    for (const SamplePlane<Sample>& plane : planes_) room.resize(std::max(room.size(), plane.rowRoom()));
    const size_t rowRoom = room.size();
    room.resize(rowRoom * planes_.size());
    std::vector<Sample> inks(planes_.size() == 4 ? static_cast<size_t>(width_) * 4 : 0);
    ComponentRows<Sample> samples{};
    for (int y = first; y < first + count; ++y, pixels += step) {
        for (size_t i = 0; i < planes_.size(); ++i) samples[i] = planes_[i].pixelRow(y, room.data() + i * rowRoom);
        convertRow(colours_, samples, width_, reinterpret_cast<Sample*>(pixels), inks.data());
    }
}

}  // namespace

std::unique_ptr<BandSource> makePlaneBands(const Picture& picture, const DecodeOptions& options)
{
    if (picture.frame.bits > 8)
        return std::make_unique<PlaneBands<uint16_t>>(picture, options);
    return std::make_unique<PlaneBands<uint8_t>>(picture, options);
}

}  // namespace vekpix::jpeg
