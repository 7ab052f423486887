// Lossless pictures: rows of differences become rows of samples, each with the help of the one above it (ITU T.81,
// Annex H.2). A reduced picture has the averages of squares of samples.
#include <algorithm>
#include <array>

#include "error.h"
#include "jpeg/band_source.h"
#include "jpeg/entropy_reader.h"
#include "jpeg/lossless_bias.h"
#include "jpeg/row_colours.h"
#include "library_status.h"

namespace vekpix::jpeg {

namespace {

// Sample: uint8_t, or uint16_t for those of more bits.
template <class Sample>
class LosslessBands final : public BandSource {
public:
    LosslessBands(const Picture& picture, const DecodeOptions& options);
    int bandRows() const override { return rowsPerBand; }
    void readBand(uint8_t* pixels, size_t step, int rows) override;
    std::optional<int> markerBehind() const override { return scans_.back().reader.markerBehind(); }

private:
    static constexpr int rowsPerBand = 16;

    struct ScanInProgress {
        Scan scan;
        int rowsPerInterval;  // 0 without restart markers
        EntropyReader reader;
    };
    struct Component {
        int pointTransform = 0;
        int bias = 0;
        std::vector<int16_t> above;  // samples without the bits of the point transform
        std::vector<int16_t> row;
        std::vector<uint32_t> sums;  // of the cells of a reduced picture
        std::vector<Sample> samples;
    };

    void readRow();
    void readRowOf(ScanInProgress& scan);
    void addRow(Component& component) const;
    void average(Component& component, int rows) const;

    RowColours colours_;
    int width_;
    int height_;
    int scale_;
    int widthOut_;
    int nextRow_ = 0;  // of the file
    std::vector<Component> components_;
    std::vector<int16_t> differences_;
    std::vector<Sample> inks_;
    std::vector<ScanInProgress> scans_;
};

template <class Sample>
LosslessBands<Sample>::LosslessBands(const Picture& picture, const DecodeOptions& options)
    : colours_{picture.colours, picture.inverted, options.inks, picture.frame.bits},
      width_(picture.frame.width),
      height_(picture.frame.height),
      scale_(options.scale),
      widthOut_(divideUp(width_, scale_))
{
    components_.resize(picture.frame.components.size());
    for (Component& component : components_) {
        component.above.resize(static_cast<size_t>(width_));
        component.row.resize(static_cast<size_t>(width_));
        component.sums.resize(static_cast<size_t>(widthOut_));
        component.samples.resize(static_cast<size_t>(widthOut_));
    }
    differences_.resize(components_.size() * static_cast<size_t>(width_));
    inks_.resize(static_cast<size_t>(widthOut_) * 4);
    for (const Scan& scan : picture.scans) {
        if (scan.restartInterval % width_ != 0)
            throw Error("damaged JPEG file: a lossless restart interval that is not of whole rows");
        const int rows = scan.restartInterval / width_;
        scans_.push_back({scan, rows, EntropyReader(picture.file, scan.dataBegin, rows)});
        for (const ScanComponent& inScan : scan.components) {
            Component& component = components_[static_cast<size_t>(inScan.index)];
            component.pointTransform = scan.pointTransform;
            component.bias = losslessBias(picture.frame.bits, scan.pointTransform);
        }
    }
}

template <class Sample>
void LosslessBands<Sample>::readBand(uint8_t* pixels, size_t step, int rows)
{
    ComponentRows<Sample> samples{};
    for (int y = 0; y < rows; ++y, pixels += step) {
        const int rowsHere = std::min(scale_, height_ - nextRow_);
        for (int i = 0; i < rowsHere; ++i) readRow();
        for (size_t c = 0; c < components_.size(); ++c) {
            average(components_[c], rowsHere);
            samples[c] = components_[c].samples.data();
        }
        convertRow(colours_, samples, widthOut_, reinterpret_cast<Sample*>(pixels), inks_.data());
    }
}

template <class Sample>
void LosslessBands<Sample>::readRow()
{
    for (ScanInProgress& scan : scans_) readRowOf(scan);
    for (Component& component : components_) addRow(component);
    ++nextRow_;
}

template <class Sample>
void LosslessBands<Sample>::readRowOf(ScanInProgress& scan)
{
    std::array<int16_t*, maxComponents> rows{};
    std::array<const VekDecodeHuffmanSpec*, maxComponents> tables{};
    const size_t count = scan.scan.components.size();
    for (size_t i = 0; i < count; ++i) {
        rows[i] = differences_.data() + i * static_cast<size_t>(width_);
        tables[i] = scan.scan.components[i].dcTable->decoderTable();
    }
    scan.reader.beginMcu();
    scan.reader.readRow(rows.data(), width_, static_cast<int>(count), tables.data());
    const bool first = nextRow_ == 0 || (scan.rowsPerInterval != 0 && nextRow_ % scan.rowsPerInterval == 0);
    for (size_t i = 0; i < count; ++i) {
        Component& component = components_[static_cast<size_t>(scan.scan.components[i].index)];
        std::swap(component.above, component.row);
        if (first) {
            rows[i][0] = static_cast<int16_t>(rows[i][0] ^ component.bias);
            expectOk(vekiReconstructPredFirstRow_JPEG_16s_C1(rows[i], component.row.data(), width_, colours_.bits,
                                                             scan.scan.pointTransform),
                     "prediction");
        } else {
            expectOk(vekiReconstructPredRow_JPEG_16s_C1(rows[i], component.above.data(), component.row.data(), width_,
                                                        scan.scan.predictor),
                     "prediction");
        }
    }
}

// A damaged file may tell samples of more bits than it should.
template <class Sample>
void LosslessBands<Sample>::addRow(Component& component) const
{
    const uint32_t largest = (1U << colours_.bits) - 1;
    const auto sample = [&](int x) {
        return static_cast<uint32_t>(static_cast<uint16_t>(component.row[static_cast<size_t>(x)] ^ component.bias))
                   << component.pointTransform &
               largest;
    };
    if (scale_ == 1) {
        for (int x = 0; x < width_; ++x) component.samples[static_cast<size_t>(x)] = static_cast<Sample>(sample(x));
        return;
    }
    for (int x = 0; x < width_; ++x) component.sums[static_cast<size_t>(x / scale_)] += sample(x);
}

template <class Sample>
void LosslessBands<Sample>::average(Component& component, int rows) const
{
    if (scale_ == 1)
        return;
    for (int x = 0; x < widthOut_; ++x) {
        const auto cell = static_cast<uint32_t>(rows * std::min(scale_, width_ - x * scale_));
        uint32_t& sum = component.sums[static_cast<size_t>(x)];
        component.samples[static_cast<size_t>(x)] = static_cast<Sample>((sum + cell / 2) / cell);
        sum = 0;
    }
}

}  // namespace

std::unique_ptr<BandSource> makeLosslessBands(const Picture& picture, const DecodeOptions& options)
{
    if (picture.frame.bits > 8)
        return std::make_unique<LosslessBands<uint16_t>>(picture, options);
    return std::make_unique<LosslessBands<uint8_t>>(picture, options);
}

}  // namespace vekpix::jpeg
