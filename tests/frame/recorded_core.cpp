#include "frame/recorded_core.h"

#include <cstdlib>

#include "vekcore.h"

// Zero-initialised: the library calls before any constructor of a test.
namespace recorded {

Call callsAtLoad[8];
int mallocCalls;
bool mallocFails;
int32_t lastMallocLength;
void* lastFreed;
int freeCalls;
int numThreadsCalls;
int32_t numThreads;
int cacheSizeCalls;
int32_t cacheSize = -1;

}  // namespace recorded

namespace {

int calls;

void note(recorded::Call call)
{
    if (calls < 8)
        recorded::callsAtLoad[calls++] = call;
}

}  // namespace

int32_t vekGetCpuFeatures(uint64_t* pFeatures, uint32_t pCpuInfo[4])
{
    const bool bothNull = pFeatures == nullptr && pCpuInfo == nullptr;
    note(bothNull ? recorded::Call::CpuFeatures : recorded::Call::CpuFeaturesWithPointers);
    return -1;  // a result that the library has to ignore
}

uint64_t vekGetEnabledCpuFeatures()
{
    note(recorded::Call::EnabledFeatures);
    return VEK_CPU_AVX2;  // one of the two bits
}

void* vekMalloc(int32_t length)
{
    ++recorded::mallocCalls;
    recorded::lastMallocLength = length;
    if (recorded::mallocFails)
        return nullptr;
    return std::malloc(static_cast<size_t>(length));
}

void vekFree(void* p)
{
    ++recorded::freeCalls;
    recorded::lastFreed = p;
    std::free(p);
}

int32_t vekGetMaxCacheSizeB(int32_t* pSize)
{
    ++recorded::cacheSizeCalls;
    if (recorded::cacheSize < 0)
        return -1;
    *pSize = recorded::cacheSize;
    return 0;
}

int32_t ownGetNumThreads()
{
    ++recorded::numThreadsCalls;
    return recorded::numThreads;
}
