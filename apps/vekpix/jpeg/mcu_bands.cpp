// Three colours in one scan, 4:4:4, 4:2:2 or 4:2:0. An MCU goes from its bits over its coefficients and samples to its
// pixels while it is in the nearest cache.
//
// Two threads and more share the work in one of two ways. If the restart markers divide the scan into stripes of whole
// MCU rows, each thread decodes stripes of its own. Otherwise one thread decodes the coefficients of a group of MCU
// rows while the others turn those of the group before it into pixels.
//
// Coefficients that are stored already are turned into pixels by all threads, each with MCU rows of its own.
#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "jpeg/band_source.h"
#include "jpeg/entropy_reader.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

constexpr int mostBlocks = 6;  // of an MCU, 4:2:0
constexpr size_t mostStripeBytes = size_t{16} << 20;
constexpr size_t bandBytes = size_t{4} << 20;  // pixels or coefficients that threads share at a time: few meetings

struct alignas(64) Block {
    std::array<int16_t, 64> values;
};

using ConvertMcu = VekStatus (*)(const int16_t* const planes[3], uint8_t* pixels, int step);

struct Kind {
    int horizontal;
    int vertical;
    ConvertMcu convert;

    int lumaBlocks() const { return horizontal * vertical; }
    int blocks() const { return lumaBlocks() + 2; }
    int width() const { return 8 * horizontal; }
    int height() const { return 8 * vertical; }
};

constexpr Kind kinds[] = {
    {1, 1, vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R},
    {2, 1, vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R},
    {2, 2, vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R},
};

bool isOneScanInOrder(const Picture& picture)
{
    if (picture.scans.size() != 1)
        return false;
    const std::vector<ScanComponent>& components = picture.scans[0].components;
    for (size_t i = 0; i < components.size(); ++i)
        if (components[i].index != static_cast<int>(i))
            return false;
    return true;
}

const Kind* kindOf(const Picture& picture, const DecodeOptions& options)
{
    const std::vector<FrameComponent>& c = picture.frame.components;
    if (options.scale != 1 || picture.frame.bits != 8 || picture.colours != ColourModel::YCbCr ||
        !(picture.stored || isOneScanInOrder(picture)))
        return nullptr;
    for (size_t i = 1; i < c.size(); ++i)
        if (c[i].horizontalSampling != 1 || c[i].verticalSampling != 1)
            return nullptr;
    if (options.upsampling == Upsampling::Smooth && (c[0].horizontalSampling != 1 || c[0].verticalSampling != 1))
        return nullptr;
    for (const Kind& kind : kinds)
        if (c[0].horizontalSampling == kind.horizontal && c[0].verticalSampling == kind.vertical)
            return &kind;
    return nullptr;
}

class McuBands final : public BandSource {
public:
    McuBands(const Picture& picture, const Kind& kind, int threads);
    int bandRows() const override { return rowsPerBand_ * kind_.height(); }
    void readBand(uint8_t* pixels, size_t step, int rows) override;
    std::optional<int> markerBehind() const override { return reader_ ? reader_->markerBehind() : std::nullopt; }

private:
    struct Tables {
        const VekDecodeHuffmanSpec* dc;
        const VekDecodeHuffmanSpec* ac;
        alignas(64) std::array<uint16_t, 64> quant;
    };

    void planStoredBands();
    void planScan(const Picture& picture);
    void planStripes(const Picture& picture);
    void planGroups();
    void readStored(uint8_t* pixels, size_t step, int rows);
    void readStoredRow(int mcuRow, uint8_t* pixels, size_t step, int rows);
    void readStripes(uint8_t* pixels, size_t step, int rows);
    void readGroup(uint8_t* pixels, size_t step, int rows);
    void readMcuRow(EntropyReader& reader, uint8_t* pixels, size_t step, int rows);
    void readCoefficients(EntropyReader& reader, int16_t* mcu);
    void readCoefficientRows(int16_t* coefficients, int mcuRows);
    void convertMcuRow(int16_t* coefficients, uint8_t* pixels, size_t step, int rows);
    void convertMcu(int16_t* mcu, int mcuColumn, uint8_t* pixels, size_t step, int rows) const;

    Kind kind_;
    int width_;
    int mcusPerRow_;
    int mcuRows_;
    int threads_;
    std::span<const uint8_t> file_;
    std::array<Tables, 3> tables_{};
    int rowsPerBand_ = 1;  // MCU rows
    int nextMcuRow_ = 0;

    int rowsPerStripe_ = 0;  // MCU rows; 0 if the stripes are not decoded on their own
    size_t intervalsPerStripe_ = 0;
    std::vector<size_t> stripeStarts_;

    std::array<std::vector<Block>, 2> groups_;  // coefficients of a group of MCU rows and of the next one

    std::shared_ptr<StoredRows> stored_;
    Scan scan_;                            // if they are not stored
    std::optional<EntropyReader> reader_;  // of it
    std::optional<Crew> crew_;             // if there are several threads
};

McuBands::McuBands(const Picture& picture, const Kind& kind, int threads)
    : kind_(kind),
      width_(picture.frame.width),
      mcusPerRow_(picture.mcusPerRow()),
      mcuRows_(picture.mcuRows()),
      threads_(threads),
      file_(picture.file),
      stored_(picture.stored)
{
    for (size_t i = 0; i < tables_.size(); ++i) picture.quantTable(i, tables_[i].quant.data());
    if (stored_)
        planStoredBands();
    else
        planScan(picture);
    if (threads_ > 1)
        crew_.emplace(threads_);
}

void McuBands::planStoredBands()
{
    const size_t rowBytes = static_cast<size_t>(kind_.height()) * static_cast<size_t>(width_) * 3;
    if (threads_ > 1)
        rowsPerBand_ = std::min(mcuRows_, std::max(1, static_cast<int>(bandBytes / rowBytes)));
}

void McuBands::planScan(const Picture& picture)
{
    scan_ = picture.scans[0];
    reader_.emplace(file_, scan_.dataBegin, scan_.restartInterval);
    for (size_t i = 0; i < tables_.size(); ++i) {
        tables_[i].dc = scan_.components[i].dcTable->decoderTable();
        tables_[i].ac = scan_.components[i].acTable->decoderTable();
    }
    if (threads_ > 1)
        planStripes(picture);
    if (threads_ > 1 && rowsPerStripe_ == 0)
        planGroups();
}

void McuBands::planStripes(const Picture& picture)
{
    const int interval = scan_.restartInterval;
    if (interval == 0 || (mcusPerRow_ % interval != 0 && interval % mcusPerRow_ != 0))
        return;
    const int rows = std::max(1, interval / mcusPerRow_);
    const size_t stripeBytes = static_cast<size_t>(rows * kind_.height()) * static_cast<size_t>(width_) * 3;
    if (rows >= mcuRows_ || stripeBytes * static_cast<size_t>(threads_) > mostStripeBytes)
        return;
    intervalsPerStripe_ = static_cast<size_t>(std::max(1, mcusPerRow_ / interval));
    const size_t intervals = static_cast<size_t>(divideUp(mcuRows_, rows)) * intervalsPerStripe_;
    std::optional<std::vector<size_t>> starts =
        findIntervals(picture.file, scan_.dataBegin, intervals, intervalsPerStripe_);
    if (!starts)
        return;  // one thread, which reads up to the error
    stripeStarts_ = std::move(*starts);
    stripeStarts_.insert(stripeStarts_.begin(), scan_.dataBegin);
    rowsPerStripe_ = rows;
    rowsPerBand_ = std::min(mcuRows_, rows * std::max(threads_, static_cast<int>(bandBytes / stripeBytes)));
}

void McuBands::planGroups()
{
    const size_t blocksPerRow = static_cast<size_t>(mcusPerRow_ * kind_.blocks());
    const size_t rowBytes = blocksPerRow * sizeof(Block);
    rowsPerBand_ = std::min(mcuRows_, std::max(1, static_cast<int>(bandBytes / rowBytes)));
    for (auto& group : groups_) group.resize(blocksPerRow * static_cast<size_t>(rowsPerBand_));
}

void McuBands::readBand(uint8_t* pixels, size_t step, int rows)
{
    if (stored_)
        readStored(pixels, step, rows);
    else if (rowsPerStripe_ != 0)
        readStripes(pixels, step, rows);
    else if (threads_ > 1)
        readGroup(pixels, step, rows);
    else
        readMcuRow(*reader_, pixels, step, rows);
    nextMcuRow_ += rowsPerBand_;
}

void McuBands::readStored(uint8_t* pixels, size_t step, int rows)
{
    const int height = kind_.height();
    const auto readRow = [&](int row) {
        const int y = row * height;
        readStoredRow(nextMcuRow_ + row, pixels + static_cast<size_t>(y) * step, step, std::min(height, rows - y));
    };
    if (crew_)
        crew_->run(divideUp(rows, height), readRow);
    else
        readRow(0);
}

void McuBands::readStoredRow(int mcuRow, uint8_t* pixels, size_t step, int rows)
{
    const CoefficientStore& store = stored_->row(mcuRow);
    alignas(64) int16_t mcu[mostBlocks * 64];
    for (int mcuColumn = 0; mcuColumn < mcusPerRow_; ++mcuColumn) {
        int16_t* to = mcu;
        for (const CoefficientStore::Component& c : store.components())
            for (int y = 0; y < c.vertical; ++y) {
                const size_t count = static_cast<size_t>(c.horizontal) * 64;
                std::memcpy(to, c.block(mcuColumn * c.horizontal, mcuRow * c.vertical + y), count * sizeof(int16_t));
                to += count;
            }
        convertMcu(mcu, mcuColumn, pixels, step, rows);
    }
}

void McuBands::readStripes(uint8_t* pixels, size_t step, int rows)
{
    const int stripeHeight = rowsPerStripe_ * kind_.height();
    const int stripes = divideUp(rows, stripeHeight);
    const int first = nextMcuRow_ / rowsPerStripe_;
    const int last = divideUp(mcuRows_, rowsPerStripe_) - 1;
    crew_->run(stripes, [&](int i) {
        const size_t stripe = static_cast<size_t>(first + i);
        EntropyReader reader(file_, stripeStarts_[stripe], scan_.restartInterval, stripe * intervalsPerStripe_);
        const int y = i * stripeHeight;
        const int stripeRows = std::min(stripeHeight, rows - y);
        for (int row = 0; row < stripeRows; row += kind_.height())
            readMcuRow(reader, pixels + static_cast<size_t>(y + row) * step, step,
                       std::min(kind_.height(), stripeRows - row));
        if (first + i == last)
            reader_ = std::move(reader);
        else
            reader.endInterval();
    });
}

void McuBands::readGroup(uint8_t* pixels, size_t step, int rows)
{
    const int rowsHere = std::min(rowsPerBand_, mcuRows_ - nextMcuRow_);
    const int rowsAhead = std::min(rowsPerBand_, mcuRows_ - nextMcuRow_ - rowsHere);
    const size_t current = static_cast<size_t>(nextMcuRow_ / rowsPerBand_ % 2);
    const size_t rowSize = static_cast<size_t>(mcusPerRow_ * kind_.blocks());
    if (nextMcuRow_ == 0)
        readCoefficientRows(groups_[current].front().values.data(), rowsHere);
    crew_->run(1 + rowsHere, [&](int item) {
        if (item == 0) {
            readCoefficientRows(groups_[1 - current].front().values.data(), rowsAhead);
            return;
        }
        const int row = item - 1;
        const int y = row * kind_.height();
        convertMcuRow(groups_[current][static_cast<size_t>(row) * rowSize].values.data(),
                      pixels + static_cast<size_t>(y) * step, step, std::min(kind_.height(), rows - y));
    });
}

void McuBands::readCoefficients(EntropyReader& reader, int16_t* mcu)
{
    reader.beginMcu();
    const int lumaBlocks = kind_.lumaBlocks();
    for (int i = 0; i < lumaBlocks; ++i) reader.readBlock(mcu + 64 * i, 0, tables_[0].dc, tables_[0].ac);
    reader.readBlock(mcu + 64 * lumaBlocks, 1, tables_[1].dc, tables_[1].ac);
    reader.readBlock(mcu + 64 * (lumaBlocks + 1), 2, tables_[2].dc, tables_[2].ac);
}

void McuBands::readCoefficientRows(int16_t* coefficients, int mcuRows)
{
    for (int i = 0; i < mcuRows * mcusPerRow_; ++i, coefficients += 64 * kind_.blocks())
        readCoefficients(*reader_, coefficients);
}

void McuBands::convertMcuRow(int16_t* coefficients, uint8_t* pixels, size_t step, int rows)
{
    for (int mcu = 0; mcu < mcusPerRow_; ++mcu, coefficients += 64 * kind_.blocks())
        convertMcu(coefficients, mcu, pixels, step, rows);
}

void McuBands::readMcuRow(EntropyReader& reader, uint8_t* pixels, size_t step, int rows)
{
    alignas(64) int16_t mcu[mostBlocks * 64];
    for (int column = 0; column < mcusPerRow_; ++column) {
        readCoefficients(reader, mcu);
        convertMcu(mcu, column, pixels, step, rows);
    }
}

// A sample is clipped to 8 bits before its colour is converted (T.81, A.3.1); level-shifted, to -128 .. 127.
void clipSamples(int16_t* block)
{
    for (int i = 0; i < 64; ++i) block[i] = std::max<int16_t>(-128, std::min<int16_t>(127, block[i]));
}

// Turns the coefficients at `mcu` into samples in their place, and these into pixels; those outside the picture are
// cut.
void McuBands::convertMcu(int16_t* mcu, int mcuColumn, uint8_t* pixels, size_t step, int rows) const
{
    const int lumaBlocks = kind_.lumaBlocks();
    for (int i = 0; i < kind_.blocks(); ++i) {
        const size_t component = static_cast<size_t>(std::max(0, i - lumaBlocks + 1));
        vekiDCTQuantInv8x8_JPEG_16s_C1I(mcu + 64 * i, tables_[component].quant.data());
        clipSamples(mcu + 64 * i);
    }
    const int16_t* const planes[3] = {mcu, mcu + 64 * lumaBlocks, mcu + 64 * (lumaBlocks + 1)};
    const int x = mcuColumn * kind_.width();
    const int columns = std::min(kind_.width(), width_ - x);
    uint8_t* at = pixels + static_cast<size_t>(x) * 3;
    if (columns == kind_.width() && rows == kind_.height()) {
        kind_.convert(planes, at, static_cast<int>(step));
        return;
    }
    uint8_t whole[16 * 16 * 3];
    const int wholeStep = kind_.width() * 3;
    kind_.convert(planes, whole, wholeStep);
    for (int row = 0; row < rows; ++row)
        std::memcpy(at + static_cast<size_t>(row) * step, whole + row * wholeStep, static_cast<size_t>(columns) * 3);
}

}  // namespace

std::unique_ptr<BandSource> makeMcuBands(const Picture& picture, const DecodeOptions& options)
{
    const Kind* kind = kindOf(picture, options);
    return kind == nullptr ? nullptr : std::make_unique<McuBands>(picture, *kind, options.threads);
}

}  // namespace vekpix::jpeg
