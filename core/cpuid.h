#ifndef VEKCORE_CPUID_H
#define VEKCORE_CPUID_H

#include <cpuid.h>

namespace core {

struct Registers {
    unsigned eax, ebx, ecx, edx;
};

// One leaf of CPUID; all zero if the processor does not have the leaf.
inline Registers cpuid(unsigned leaf, unsigned subleaf = 0)
{
    Registers r{};
    __get_cpuid_count(leaf, subleaf, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

}  // namespace core

#endif
