#include "jpeg/lossless_encoder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <vector>

#include "error.h"
#include "image/depth_rows.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/lossless_bias.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

constexpr size_t maxSampleBytes = 8;  // a code of 16 bits and 15 more, every byte stuffed
constexpr size_t fastPathBytes = 64;  // room behind a row with which the library still codes at full speed

// The rows of a picture as differences from their predictions, one row for each component.
class DifferenceRows {
public:
    DifferenceRows(RowReader& picture, const EncodeOptions& options)
        : picture_(picture),
          shape_(picture.shape()),
          options_(options),
          flip_(shape_.channels == 4 ? (1 << shape_.bits) - 1 : 0),
          bias_(losslessBias(shape_.bits, options.pointTransform)),
          pixels_(shape_.rowBytes()),
          components_(static_cast<size_t>(shape_.channels))
    {
        for (Component& component : components_) {
            component.above.resize(static_cast<size_t>(shape_.width));
            component.row.resize(static_cast<size_t>(shape_.width));
            component.differences.resize(static_cast<size_t>(shape_.width));
        }
    }

    int rows() const { return shape_.height; }
    int width() const { return shape_.width; }
    int components() const { return shape_.channels; }
    // Of the row made last.
    const int16_t* differences(size_t component) const { return components_[component].differences.data(); }
    // True if a restart marker stands behind the row made last.
    bool restartsBehind() const { return begins(next_) && next_ < shape_.height; }

    void makeRow()
    {
        picture_.readRows(pixels_.data(), pixels_.size(), 1);
        for (size_t c = 0; c < components_.size(); ++c) {
            Component& component = components_[c];
            std::swap(component.above, component.row);
            separate(c, component.row);
            if (next_ == 0 || begins(next_)) {
                expectOk(vekiDiffPredFirstRow_JPEG_16s_C1(component.row.data(), component.differences.data(),
                                                          shape_.width, shape_.bits, options_.pointTransform),
                         "prediction");
                component.differences[0] = static_cast<int16_t>(component.differences[0] ^ bias_);
            } else {
                expectOk(vekiDiffPredRow_JPEG_16s_C1(component.row.data(), component.above.data(),
                                                     component.differences.data(), shape_.width, options_.predictor),
                         "prediction");
            }
        }
        ++next_;
    }

private:
    struct Component {
        std::vector<int16_t> above;
        std::vector<int16_t> row;
        std::vector<int16_t> differences;
    };

    // Whether a restart interval begins with a row.
    bool begins(int row) const { return options_.restartInterval != 0 && row % options_.restartInterval == 0; }

    void separate(size_t c, std::vector<int16_t>& row) const
    {
        for (size_t x = 0; x < row.size(); ++x) {
            const int sample = sampleAt(pixels_.data(), x * components_.size() + c, shape_.sampleBytes()) ^ flip_;
            row[x] = static_cast<int16_t>(sample >> options_.pointTransform ^ bias_);
        }
    }

    RowReader& picture_;
    Shape shape_;
    const EncodeOptions& options_;
    int flip_;  // inks lie inverted in the file
    int bias_;
    std::vector<uint8_t> pixels_;
    std::vector<Component> components_;
    int next_ = 0;
};

void report(const EncodeOptions& options)
{
    if (options.onRows)
        options.onRows(1);
}

CodeLists makeCode(DifferenceRows rows, const EncodeOptions& options)
{
    SymbolStatistics::Counts counts{};
    for (int y = 0; y < rows.rows(); ++y) {
        std::array<int, 256> ofRow{};
        rows.makeRow();
        for (size_t c = 0; c < static_cast<size_t>(rows.components()); ++c)
            for (int x = 0; x < rows.width(); ++x)
                expectOk(vekiGetHuffmanStatisticsOne_JPEG_16s_C1(rows.differences(c) + x, ofRow.data()),
                         "Huffman statistics");
        for (size_t symbol = 0; symbol < counts.size(); ++symbol) counts[symbol] += ofRow[symbol];
        report(options);
    }
    return optimalCode(counts);
}

class RowCoder {
public:
    RowCoder(const DifferenceRows& rows, const VekEncodeHuffmanSpec* table)
        : width_(rows.width()), count_(rows.components())
    {
        VekEncodeHuffmanState* state = nullptr;
        if (vekiEncodeHuffmanStateInitAlloc_JPEG_8u(&state) != vekStsOk)
            throw std::bad_alloc();
        state_.reset(state);
        tables_.fill(table);
        bytes_.resize(static_cast<size_t>(width_ * count_) * maxSampleBytes + fastPathBytes);
    }

    void code(const DifferenceRows& rows)
    {
        std::array<const int16_t*, 4> differences{};
        for (size_t c = 0; c < static_cast<size_t>(count_); ++c) differences[c] = rows.differences(c);
        expectOk(vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(differences.data(), width_, count_, bytes_.data(), room(),
                                                      &length_, tables_.data(), state_.get(), 0),
                 "Huffman coding");
    }
    void pad()
    {
        expectOk(vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, bytes_.data(), room(), &length_, nullptr,
                                                      state_.get(), 1),
                 "Huffman coding");
    }
    void drain(ByteSink& sink)
    {
        sink.write({bytes_.data(), static_cast<size_t>(length_)});
        length_ = 0;
    }

private:
    struct StateDeleter {
        void operator()(VekEncodeHuffmanState* state) const { vekiEncodeHuffmanStateFree_JPEG_8u(state); }
    };
    int room() const { return static_cast<int>(bytes_.size()); }

    int width_;
    int count_;
    std::unique_ptr<VekEncodeHuffmanState, StateDeleter> state_;
    std::array<const VekEncodeHuffmanSpec*, 4> tables_{};
    std::vector<uint8_t> bytes_;
    int length_ = 0;
};

void writeRows(DifferenceRows rows, const VekEncodeHuffmanSpec* table, const EncodeOptions& options, ByteSink& file)
{
    RowCoder coder(rows, table);
    int interval = 0;
    for (int y = 0; y < rows.rows(); ++y) {
        rows.makeRow();
        coder.code(rows);
        if (rows.restartsBehind()) {
            coder.pad();
            coder.drain(file);
            const std::array<uint8_t, 2> marker = {0xFF, static_cast<uint8_t>(RST0 + interval++ % 8)};
            file.write(marker);
        }
        coder.drain(file);
        report(options);
    }
    coder.pad();
    coder.drain(file);
}

}  // namespace

void encodeLossless(RowReader& picture, ByteSink& file, const EncodeOptions& options)
{
    EncodeOptions untransformed = options;
    untransformed.colourTransform = false;
    const McuLayout layout(picture.shape(), untransformed);
    Frame frame = frameOf(layout);
    frame.lossless = true;
    for (FrameComponent& component : frame.components) component.quantTable = 0;
    const CodeLists code = makeCode(DifferenceRows(picture, options), options);
    picture.rewind();

    writeStart(file);
    writeColours(file, layout.colours);
    writeFrame(file, frame);
    writeHuffmanTable(file, dcTableClass, 0, code);
    if (options.restartInterval != 0)
        writeRestartInterval(file, options.restartInterval * picture.width());
    ScanHeader scan;
    for (const FrameComponent& component : frame.components) scan.components.push_back({component.id, 0, 0});
    scan.spectralBegin = options.predictor;
    scan.spectralEnd = 0;
    scan.low = options.pointTransform;
    writeScanHeader(file, scan);
    const EncoderTables tables({{code, code}, {standardLuminanceAc, standardLuminanceAc}});
    writeRows(DifferenceRows(picture, options), tables.dc(0), options, file);
    writeEnd(file);
}

}  // namespace vekpix::jpeg
