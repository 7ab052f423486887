#include "jpeg/coefficient_store.h"

#include <new>

namespace vekpix::jpeg {

namespace {

constexpr size_t alignment = 64;

int16_t* aligned(void* memory)
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    return reinterpret_cast<int16_t*>(static_cast<uint8_t*>(memory) + (alignment - address % alignment) % alignment);
}

}  // namespace

CoefficientStore::CoefficientStore(const Frame& frame) : mcusPerRow_(frame.mcusPerRow()), mcuRows_(frame.mcuRows())
{
    size_t count = 0;
    for (size_t i = 0; i < frame.components.size(); ++i) {
        Component component;
        component.horizontal = frame.components[i].horizontalSampling;
        component.vertical = frame.components[i].verticalSampling;
        component.blocksWide = divideUp(frame.componentWidth(i), 8);
        component.blocksHigh = divideUp(frame.componentHeight(i), 8);
        component.columns = mcusPerRow_ * component.horizontal;
        component.rows = mcuRows_ * component.vertical;
        count += static_cast<size_t>(component.columns) * static_cast<size_t>(component.rows) * 64;
        components_.push_back(component);
    }
    memory_.reset(std::calloc(count * sizeof(int16_t) + alignment, 1));
    if (!memory_)
        throw std::bad_alloc();
    int16_t* at = aligned(memory_.get());
    for (Component& component : components_) {
        component.blocks = at;
        at += static_cast<size_t>(component.columns) * static_cast<size_t>(component.rows) * 64;
    }
}

}  // namespace vekpix::jpeg
