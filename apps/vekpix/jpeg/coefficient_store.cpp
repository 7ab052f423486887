#include "jpeg/coefficient_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace vekpix::jpeg {

namespace {

constexpr size_t alignment = 64;

int16_t* aligned(void* memory)
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    return reinterpret_cast<int16_t*>(static_cast<uint8_t*>(memory) + (alignment - address % alignment) % alignment);
}

// Where the system likes to be asked for them. A picture's coefficients are many pages, and each costs a fault.
void adviseLargePages(void* memory, size_t bytes)
{
    constexpr size_t pageBytes = 4096;
    constexpr size_t worthIt = size_t{8} << 20;
    if (bytes < worthIt)
        return;
    const size_t before = (pageBytes - reinterpret_cast<uintptr_t>(memory) % pageBytes) % pageBytes;
    madvise(static_cast<uint8_t*>(memory) + before, (bytes - before) / pageBytes * pageBytes, MADV_HUGEPAGE);
}

}  // namespace

CoefficientStore::CoefficientStore(const Frame& frame, int mcuRowsHeld)
    : mcusPerRow_(frame.mcusPerRow()), mcuRows_(frame.mcuRows())
{
    for (size_t i = 0; i < frame.components.size(); ++i) {
        Component component;
        component.horizontal = frame.components[i].horizontalSampling;
        component.vertical = frame.components[i].verticalSampling;
        component.blocksWide = divideUp(frame.componentWidth(i), 8);
        component.blocksHigh = divideUp(frame.componentHeight(i), 8);
        component.columns = mcusPerRow_ * component.horizontal;
        component.rows = mcuRows_ * component.vertical;
        count_ += static_cast<size_t>(component.columns) * static_cast<size_t>(mcuRowsHeld * component.vertical) * 64;
        components_.push_back(component);
    }
    const size_t bytes = count_ * sizeof(int16_t) + alignment;
    memory_.reset(std::calloc(bytes, 1));
    if (!memory_)
        throw std::bad_alloc();
    adviseLargePages(memory_.get(), bytes);
    int16_t* at = aligned(memory_.get());
    for (Component& component : components_) {
        component.blocks = at;
        at += static_cast<size_t>(component.columns) * static_cast<size_t>(mcuRowsHeld * component.vertical) * 64;
    }
}

void CoefficientStore::moveTo(int mcuRow)
{
    for (Component& component : components_) component.firstRow = mcuRow * component.vertical;
    std::fill_n(components_.front().blocks, count_, int16_t{0});
}

}  // namespace vekpix::jpeg
