#include "jpeg/store_reader.h"

#include <array>

#include "jpeg/entropy_reader.h"
#include "jpeg/scan_walk.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

class ScanReader {
public:
    ScanReader(std::span<const uint8_t> file, const Scan& scan)
        : reader_(file, scan.dataBegin, scan.restartInterval),
          begin_(scan.spectralBegin),
          end_(scan.spectralEnd),
          high_(scan.high),
          low_(scan.low)
    {
        for (const ScanComponent& component : scan.components) {
            dc_[components_.size()] = component.dcTable ? component.dcTable->decoderTable() : nullptr;
            ac_[components_.size()] = component.acTable ? component.acTable->decoderTable() : nullptr;
            components_.push_back(static_cast<size_t>(component.index));
        }
    }

    // The next row of MCUs of the picture: rows come in their order.
    void readRow(const CoefficientStore& store, int mcuRow)
    {
        const auto read = [&](const auto& readBlock) {
            walkRow(
                store, components_, mcuRow, [&] { reader_.beginMcu(); }, readBlock);
        };
        if (begin_ == 0 && end_ != 0)
            read([&](int16_t* block, size_t slot) { reader_.readBlock(block, slot, dc_[slot], ac_[slot]); });
        else if (begin_ == 0 && high_ == 0)
            read([&](int16_t* block, size_t slot) { reader_.readDcFirst(block, slot, low_, dc_[slot]); });
        else if (begin_ == 0)
            read([&](int16_t* block, size_t) { reader_.refineDc(block, low_); });
        else if (high_ == 0)
            read([&](int16_t* block, size_t) { reader_.readAcFirst(block, begin_, end_, low_, ac_[0]); });
        else
            read([&](int16_t* block, size_t) { reader_.refineAc(block, begin_, end_, low_, ac_[0]); });
    }

private:
    EntropyReader reader_;
    int begin_;
    int end_;
    int high_;
    int low_;
    std::vector<size_t> components_;
    std::array<const VekDecodeHuffmanSpec*, maxComponents> dc_{};
    std::array<const VekDecodeHuffmanSpec*, maxComponents> ac_{};
};

void readScan(std::span<const uint8_t> file, const Scan& scan, const CoefficientStore& store)
{
    ScanReader reader(file, scan);
    for (int row = 0; row < store.mcuRows(); ++row) reader.readRow(store, row);
}

class ScansAbreast final : public StoredRows {
public:
    explicit ScansAbreast(const Picture& picture) : store_(picture.frame, 1), scans_(picture.scans)
    {
        for (const Scan& scan : scans_) readers_.emplace_back(picture.file, scan);
    }

    const CoefficientStore& row(int mcuRow) override
    {
        store_.moveTo(mcuRow);
        for (ScanReader& reader : readers_) reader.readRow(store_, mcuRow);
        return store_;
    }

private:
    CoefficientStore store_;
    std::vector<Scan> scans_;  // whose tables the readers use
    std::vector<ScanReader> readers_;
};

}  // namespace

void readScans(std::span<const uint8_t> file, const std::vector<Scan>& scans, CoefficientStore& store, int threads)
{
    Crew crew(threads);
    using Chain = std::vector<const Scan*>;  // of a component: each scan builds upon those before it
    std::array<Chain, maxComponents> chains;
    const auto readChains = [&] {
        crew.run(maxComponents, [&](int component) {
            Chain& chain = chains[static_cast<size_t>(component)];
            for (const Scan* scan : chain) readScan(file, *scan, store);
            chain.clear();
        });
    };
    for (const Scan& scan : scans) {
        if (scan.components.size() == 1) {
            chains[static_cast<size_t>(scan.components[0].index)].push_back(&scan);
        } else {
            readChains();
            readScan(file, scan, store);
        }
    }
    readChains();
}

std::unique_ptr<StoredRows> readScansAbreast(const Picture& picture) { return std::make_unique<ScansAbreast>(picture); }

}  // namespace vekpix::jpeg
