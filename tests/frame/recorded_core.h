// Core services of the test's own, linked in place of the library's: they note how they were called.
#ifndef VEK_TESTS_FRAME_RECORDED_CORE_H
#define VEK_TESTS_FRAME_RECORDED_CORE_H

#include <cstdint>

namespace recorded {

enum class Call : uint8_t { None, CpuFeatures, CpuFeaturesWithPointers, EnabledFeatures };

extern Call callsAtLoad[8];  // the calls made before main, in their order
extern int mallocCalls;
extern bool mallocFails;
extern int32_t lastMallocLength;
extern void* lastFreed;
extern int freeCalls;
extern int numThreadsCalls;
extern int32_t numThreads;  // the answer of ownGetNumThreads
extern int cacheSizeCalls;
extern int32_t cacheSize;  // what vekGetMaxCacheSizeB stores; it fails if this is negative, as it is at first

}  // namespace recorded

#endif
