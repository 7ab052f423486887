// The order of a stored picture's blocks in a scan (ITU T.81, A.2).
#ifndef VEKPIX_JPEG_SCAN_WALK_H
#define VEKPIX_JPEG_SCAN_WALK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "jpeg/coefficient_store.h"

namespace vekpix::jpeg {

// A scan of one component has no blocks beyond those of the component itself (T.81, A.2.2).
template <class BeginMcu, class Visit>
void walkSingle(const CoefficientStore::Component& component, int mcuRow, const BeginMcu& beginMcu, const Visit& visit)
{
    const int begin = mcuRow * component.vertical;
    const int end = std::min(begin + component.vertical, component.blocksHigh);
    for (int row = begin; row < end; ++row) {
        int16_t* block = component.block(0, row);
        for (int column = 0; column < component.blocksWide; ++column, block += 64) {
            beginMcu();
            visit(block, size_t{0});
        }
    }
}

template <class BeginMcu, class Visit>
void walkInterleaved(const CoefficientStore& store, std::span<const size_t> components, int mcuRow,
                     const BeginMcu& beginMcu, const Visit& visit)
{
    for (int mcu = 0; mcu < store.mcusPerRow(); ++mcu) {
        beginMcu();
        for (size_t slot = 0; slot < components.size(); ++slot) {
            const CoefficientStore::Component& c = store.components()[components[slot]];
            for (int y = 0; y < c.vertical; ++y) {
                int16_t* block = c.block(mcu * c.horizontal, mcuRow * c.vertical + y);
                for (int x = 0; x < c.horizontal; ++x, block += 64) visit(block, slot);
            }
        }
    }
}

// In a row of the picture's MCUs, calls beginMcu() before each MCU of a scan of these components, and
// visit(block, slot) for each of its blocks, where `slot` is the place of the block's component in `components`.
template <class BeginMcu, class Visit>
void walkRow(const CoefficientStore& store, std::span<const size_t> components, int mcuRow, const BeginMcu& beginMcu,
             const Visit& visit)
{
    if (components.size() == 1)
        walkSingle(store.components()[components[0]], mcuRow, beginMcu, visit);
    else
        walkInterleaved(store, components, mcuRow, beginMcu, visit);
}

}  // namespace vekpix::jpeg

#endif
