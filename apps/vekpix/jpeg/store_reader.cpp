#include "jpeg/store_reader.h"

#include <array>

#include "jpeg/entropy_reader.h"
#include "jpeg/scan_walk.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

void readScan(std::span<const uint8_t> file, const Scan& scan, const CoefficientStore& store)
{
    EntropyReader reader(file, scan.dataBegin, scan.restartInterval);
    std::vector<size_t> components;
    std::array<const VekDecodeHuffmanSpec*, maxComponents> dc{};
    std::array<const VekDecodeHuffmanSpec*, maxComponents> ac{};
    for (size_t slot = 0; slot < scan.components.size(); ++slot) {
        const ScanComponent& component = scan.components[slot];
        components.push_back(static_cast<size_t>(component.index));
        dc[slot] = component.dcTable ? component.dcTable->decoderTable() : nullptr;
        ac[slot] = component.acTable ? component.acTable->decoderTable() : nullptr;
    }
    const int begin = scan.spectralBegin;
    const int end = scan.spectralEnd;
    const int low = scan.low;
    const auto read = [&](const auto& readBlock) {
        walkScan(
            store, components, [&] { reader.beginMcu(); }, readBlock);
    };
    if (begin == 0 && end != 0)
        read([&](int16_t* block, size_t slot) { reader.readBlock(block, slot, dc[slot], ac[slot]); });
    else if (begin == 0 && scan.high == 0)
        read([&](int16_t* block, size_t slot) { reader.readDcFirst(block, slot, low, dc[slot]); });
    else if (begin == 0)
        read([&](int16_t* block, size_t) { reader.refineDc(block, low); });
    else if (scan.high == 0)
        read([&](int16_t* block, size_t) { reader.readAcFirst(block, begin, end, low, ac[0]); });
    else
        read([&](int16_t* block, size_t) { reader.refineAc(block, begin, end, low, ac[0]); });
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
