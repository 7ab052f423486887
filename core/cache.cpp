#include <algorithm>

#include "cpuid.h"
#include "vekcore.h"

namespace {

using core::cpuid;
using core::Registers;

// Largest data or unified cache by the deterministic cache parameters of CPUID leaf 4 (Intel) or 0x8000001D (AMD),
// which share their layout; 0 if the leaf is absent.
uint64_t largestCache(unsigned leaf)
{
    constexpr unsigned maxSubleaf = 32;  // far above any real count; a hypervisor may fail to end the list
    uint64_t largest = 0;
    for (unsigned i = 0; i < maxSubleaf; ++i) {
        const Registers r = cpuid(leaf, i);
        const unsigned type = r.eax & 31;  // 0 none, 1 data, 2 instruction, 3 unified
        if (type == 0)
            break;
        if (type == 2)
            continue;
        const uint64_t ways = (r.ebx >> 22) + 1;
        const uint64_t partitions = ((r.ebx >> 12) & 0x3FF) + 1;
        const uint64_t lineSize = (r.ebx & 0xFFF) + 1;
        const uint64_t sets = uint64_t{r.ecx} + 1;
        largest = std::max(largest, ways * partitions * lineSize * sets);
    }
    return largest;
}

uint64_t detect()
{
    const uint64_t size = largestCache(4);
    return size != 0 ? size : largestCache(0x8000001D);
}

}  // namespace

int32_t vekGetMaxCacheSizeB(int32_t* pSize)
{
    static const uint64_t size = detect();
    if (pSize == nullptr || size == 0)
        return -1;
    *pSize = static_cast<int32_t>(std::min<uint64_t>(size, INT32_MAX));
    return 0;
}
