#include <cstdlib>

#include "vekcore.h"

void* vekMalloc(int32_t length)
{
    constexpr size_t alignment = 64;  // a cache line, and any vector register
    if (length < 1)
        return nullptr;
    const size_t rounded = (static_cast<size_t>(length) + alignment - 1) / alignment * alignment;
    return std::aligned_alloc(alignment, rounded);
}

void vekFree(void* p) { std::free(p); }
