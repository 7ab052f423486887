#include "jpeg/scan_passes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

// Rows of the picture, in a place of their own unless the source lends its own.
class BandReader {
public:
    void read(RowReader& picture, int rows)
    {
        band_.rows = rows;
        band_.pixels = picture.takeRows(rows, band_.step);
        if (band_.pixels != nullptr)
            return;
        band_.step = picture.shape().rowBytes();
        pixels_.resize(band_.step * static_cast<size_t>(rows));
        picture.readRows(pixels_.data(), band_.step, rows);
        band_.pixels = pixels_.data();
    }
    const PixelBand& all() const { return band_; }
    PixelBand from(int row) const
    {
        return {band_.pixels + band_.step * static_cast<size_t>(row), band_.step, band_.rows - row};
    }

private:
    PixelBand band_;
    std::vector<uint8_t> pixels_;
};

class CoefficientBuffer {
public:
    void resize(size_t count)
    {
        if (count <= size_)
            return;
        memory_.reset(static_cast<int16_t*>(::operator new(count * sizeof(int16_t), alignment)));
        size_ = count;
    }
    int16_t* data() { return memory_.get(); }

private:
    static constexpr std::align_val_t alignment{blockAlignment};
    struct Deleter {
        void operator()(int16_t* p) const { ::operator delete(p, alignment); }
    };
    std::unique_ptr<int16_t, Deleter> memory_;
    size_t size_ = 0;
};

void report(const EncodeOptions& options, int rows)
{
    if (options.onRows)
        options.onRows(rows);
}

// Each MCU at once from pixels to its coder, while its coefficients are in the first-level cache.
template <class MakeCoder, class Target>
void passOfOneThread(RowReader& picture, const McuTransform& transform, const EncodeOptions& options,
                     const MakeCoder& makeCoder, Target& target)
{
    const McuLayout& layout = transform.layout();
    alignas(blockAlignment) std::array<int16_t, maxBlocksPerMcu * blockSize> blocks;
    auto coder = makeCoder();
    BandReader band;
    int64_t mcu = 0;
    for (int top = 0; top < picture.height(); top += layout.mcuHeight()) {
        band.read(picture, std::min(layout.mcuHeight(), picture.height() - top));
        for (int column = 0; column < layout.mcusPerRow(); ++column) {
            transform.transform(band.all(), column, blocks.data());
            coder.code(blocks.data(), mcu++);
        }
        coder.drain(target);
        report(options, band.all().rows);
    }
}

// A pipeline of three stages on bands of MCU rows: while one band is read, the rows of the band before it are
// transformed, each by itself, and the one before that is coded: as a whole, or in pieces that begin with restart
// intervals.
template <class MakeCoder, class Target>
class PassOfManyThreads {
public:
    using Coder = decltype(std::declval<MakeCoder>()());

    PassOfManyThreads(RowReader& picture, const McuTransform& transform, const ScanLayout& scan,
                      const EncodeOptions& options, const MakeCoder& makeCoder, Target& target)
        : picture_(picture),
          transform_(transform),
          layout_(transform.layout()),
          scan_(scan),
          options_(options),
          makeCoder_(makeCoder),
          target_(target),
          crew_(std::min(options.threads, layout_.mcuRows() + 2))
    {
        const size_t rowBytes = mcuCoefficients() * sizeof(int16_t) * static_cast<size_t>(layout_.mcusPerRow());
        const auto most = static_cast<int>(std::max<size_t>(1, maxBandBytes / rowBytes));
        bandMcuRows_ = std::min(2 * options.threads, most);
    }

    void run()
    {
        const int bands = (layout_.mcuRows() + bandMcuRows_ - 1) / bandMcuRows_;
        for (int step = 0; step < bands + 2; ++step) {
            Band* reading = step < bands ? &bands_[static_cast<size_t>(step % 3)] : nullptr;
            Band* transforming = step >= 1 && step <= bands ? &bands_[static_cast<size_t>((step - 1) % 3)] : nullptr;
            Band* coding = step >= 2 ? &bands_[static_cast<size_t>((step - 2) % 3)] : nullptr;
            if (reading)
                begin(*reading, step);
            if (coding)
                cut(*coding);
            else
                cuts_.clear();
            runStep(reading, transforming, coding);
            for (size_t piece = 0; piece + 1 < cuts_.size(); ++piece) coders_[piece]->drain(target_);
            if (coding) {
                // All pieces but the last ended with their intervals, so that their coders can begin any other.
                std::swap(coders_.front(), coders_[cuts_.size() - 2]);
                report(options_, coding->rows.all().rows);
            }
        }
    }

private:
    static constexpr size_t maxBandBytes = size_t{4} << 20;  // of coefficients
    static constexpr int64_t minPieceMcus = 64;

    struct Band {
        int firstMcuRow = 0;
        int mcuRows = 0;
        BandReader rows;
        CoefficientBuffer coefficients;
    };

    size_t mcuCoefficients() const { return blockSize * static_cast<size_t>(layout_.blocksPerMcu()); }

    void begin(Band& band, int number)
    {
        band.firstMcuRow = number * bandMcuRows_;
        band.mcuRows = std::min(bandMcuRows_, layout_.mcuRows() - band.firstMcuRow);
        band.coefficients.resize(mcuCoefficients() * static_cast<size_t>(band.mcuRows * layout_.mcusPerRow()));
    }

    // The first MCUs of the band's pieces, and the first behind the band; a coder for each piece.
    void cut(const Band& band)
    {
        const int64_t first = int64_t{band.firstMcuRow} * layout_.mcusPerRow();
        const int64_t end = first + int64_t{band.mcuRows} * layout_.mcusPerRow();
        cuts_.assign(1, first);
        if (const int interval = scan_.restartInterval; interval != 0) {
            const int64_t least = std::max(minPieceMcus, (end - first) / (2 * options_.threads));
            for (int64_t next; (next = (cuts_.back() + least + interval - 1) / interval * interval) < end;)
                cuts_.push_back(next);
        }
        cuts_.push_back(end);
        while (coders_.size() + 1 < cuts_.size()) coders_.push_back(std::make_unique<Coder>(makeCoder_()));
    }

    void runStep(Band* reading, Band* transforming, Band* coding)
    {
        const int pieces = coding ? static_cast<int>(cuts_.size()) - 1 : 0;
        const int readings = reading ? 1 : 0;
        const int items = pieces + readings + (transforming ? transforming->mcuRows : 0);
        crew_.run(items, [&](int item) {
            if (item < pieces)
                codePiece(*coding, static_cast<size_t>(item));
            else if (item < pieces + readings)
                read(*reading);
            else
                transformRow(*transforming, item - pieces - readings);
        });
    }

    void read(Band& band)
    {
        const int top = band.firstMcuRow * layout_.mcuHeight();
        band.rows.read(picture_, std::min(band.mcuRows * layout_.mcuHeight(), picture_.height() - top));
    }

    void transformRow(Band& band, int mcuRow) const
    {
        const PixelBand pixels = band.rows.from(mcuRow * layout_.mcuHeight());
        int16_t* blocks =
            band.coefficients.data() + mcuCoefficients() * static_cast<size_t>(mcuRow * layout_.mcusPerRow());
        for (int column = 0; column < layout_.mcusPerRow(); ++column, blocks += mcuCoefficients())
            transform_.transform(pixels, column, blocks);
    }

    void codePiece(Band& band, size_t piece)
    {
        const int64_t first = int64_t{band.firstMcuRow} * layout_.mcusPerRow();
        const int16_t* blocks =
            band.coefficients.data() + mcuCoefficients() * static_cast<size_t>(cuts_[piece] - first);
        for (int64_t mcu = cuts_[piece]; mcu < cuts_[piece + 1]; ++mcu, blocks += mcuCoefficients())
            coders_[piece]->code(blocks, mcu);
    }

    RowReader& picture_;
    const McuTransform& transform_;
    const McuLayout& layout_;
    const ScanLayout& scan_;
    const EncodeOptions& options_;
    const MakeCoder& makeCoder_;
    Target& target_;
    Crew crew_;
    int bandMcuRows_ = 1;
    std::array<Band, 3> bands_;
    std::vector<int64_t> cuts_;
    std::vector<std::unique_ptr<Coder>> coders_;  // the first one goes on where the band before ended
};

template <class MakeCoder, class Target>
void pass(RowReader& picture, const McuTransform& transform, const ScanLayout& scan, const EncodeOptions& options,
          const MakeCoder& makeCoder, Target& target)
{
    if (options.threads == 1)
        passOfOneThread(picture, transform, options, makeCoder, target);
    else
        PassOfManyThreads(picture, transform, scan, options, makeCoder, target).run();
}

// Puts the blocks of each MCU where the store has them.
class StoreFiller {
public:
    StoreFiller(CoefficientStore& store) : store_(&store) {}

    void code(const int16_t* blocks, int64_t mcu)
    {
        const int row = static_cast<int>(mcu / store_->mcusPerRow());
        const int column = static_cast<int>(mcu % store_->mcusPerRow());
        for (const CoefficientStore::Component& c : store_->components())
            for (int y = 0; y < c.vertical; ++y) {
                const size_t count = blockSize * static_cast<size_t>(c.horizontal);
                std::memcpy(c.block(column * c.horizontal, row * c.vertical + y), blocks, count * sizeof(int16_t));
                blocks += count;
            }
    }
    void drain(CoefficientStore&) {}

private:
    CoefficientStore* store_;
};

}  // namespace

void storeCoefficients(RowReader& picture, const McuTransform& transform, const EncodeOptions& options,
                       CoefficientStore& store)
{
    const McuLayout& layout = transform.layout();
    const ScanLayout whole = {layout, 0, int64_t{layout.mcusPerRow()} * layout.mcuRows()};
    pass(
        picture, transform, whole, options, [&] { return StoreFiller(store); }, store);
}

SymbolStatistics countSymbols(RowReader& picture, const McuTransform& transform, const ScanLayout& scan,
                              const EncodeOptions& options)
{
    SymbolStatistics statistics;
    pass(
        picture, transform, scan, options, [&] { return EntropyCounter(scan); }, statistics);
    return statistics;
}

void writeScan(RowReader& picture, const McuTransform& transform, const ScanLayout& scan, const EncoderTables& tables,
               const EncodeOptions& options, ByteSink& file)
{
    pass(
        picture, transform, scan, options, [&] { return EntropyWriter(scan, tables); }, file);
}

}  // namespace vekpix::jpeg
