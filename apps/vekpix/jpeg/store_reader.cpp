#include "jpeg/store_reader.h"

#include <array>

#include "jpeg/entropy_reader.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

// A scan of one component has no blocks beyond those of the component itself (T.81, A.2.2).
template <class ReadBlock>
void readSingle(EntropyReader& reader, const CoefficientStore::Component& component, const ReadBlock& readBlock)
{
    for (int row = 0; row < component.blocksHigh; ++row) {
        int16_t* block = component.block(0, row);
        for (int column = 0; column < component.blocksWide; ++column, block += 64) {
            reader.beginMcu();
            readBlock(block, 0);
        }
    }
}

template <class ReadBlock>
void readInterleaved(EntropyReader& reader, const Scan& scan, const CoefficientStore& store, const ReadBlock& readBlock)
{
    for (int mcuRow = 0; mcuRow < store.mcuRows(); ++mcuRow) {
        for (int mcu = 0; mcu < store.mcusPerRow(); ++mcu) {
            reader.beginMcu();
            for (size_t slot = 0; slot < scan.components.size(); ++slot) {
                const CoefficientStore::Component& c =
                    store.components()[static_cast<size_t>(scan.components[slot].index)];
                for (int y = 0; y < c.vertical; ++y) {
                    int16_t* block = c.block(mcu * c.horizontal, mcuRow * c.vertical + y);
                    for (int x = 0; x < c.horizontal; ++x, block += 64) readBlock(block, slot);
                }
            }
        }
    }
}

template <class ReadBlock>
void readBlocks(EntropyReader& reader, const Scan& scan, const CoefficientStore& store, const ReadBlock& readBlock)
{
    if (scan.components.size() == 1)
        readSingle(reader, store.components()[static_cast<size_t>(scan.components[0].index)], readBlock);
    else
        readInterleaved(reader, scan, store, readBlock);
}

void readScan(std::span<const uint8_t> file, const Scan& scan, const CoefficientStore& store)
{
    EntropyReader reader(file, scan.dataBegin, scan.restartInterval);
    std::array<const VekDecodeHuffmanSpec*, maxComponents> dc{};
    std::array<const VekDecodeHuffmanSpec*, maxComponents> ac{};
    for (size_t slot = 0; slot < scan.components.size(); ++slot) {
        const ScanComponent& component = scan.components[slot];
        dc[slot] = component.dcTable ? component.dcTable->decoderTable() : nullptr;
        ac[slot] = component.acTable ? component.acTable->decoderTable() : nullptr;
    }
    const int begin = scan.spectralBegin;
    const int end = scan.spectralEnd;
    const int low = scan.low;
    if (begin == 0 && end != 0)
        readBlocks(reader, scan, store,
                   [&](int16_t* block, size_t slot) { reader.readBlock(block, slot, dc[slot], ac[slot]); });
    else if (begin == 0 && scan.high == 0)
        readBlocks(reader, scan, store,
                   [&](int16_t* block, size_t slot) { reader.readDcFirst(block, slot, low, dc[slot]); });
    else if (begin == 0)
        readBlocks(reader, scan, store, [&](int16_t* block, size_t) { reader.refineDc(block, low); });
    else if (scan.high == 0)
        readBlocks(reader, scan, store,
                   [&](int16_t* block, size_t) { reader.readAcFirst(block, begin, end, low, ac[0]); });
    else
        readBlocks(reader, scan, store,
                   [&](int16_t* block, size_t) { reader.refineAc(block, begin, end, low, ac[0]); });
}

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

}  // namespace vekpix::jpeg
