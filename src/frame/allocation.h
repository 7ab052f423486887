// Allocation of objects that the library makes for its caller.
#ifndef VEK_FRAME_ALLOCATION_H
#define VEK_FRAME_ALLOCATION_H

#include <cstdint>

#include "vekcore.h"

namespace q3 {

// Null, with no call to the core services, if `length` is below 1; else what they return.
inline uint8_t* veksMalloc_8u(int32_t length)
{
    return length < 1 ? nullptr : static_cast<uint8_t*>(vekMalloc(length));
}

inline void veksFree(void* p) { vekFree(p); }

}  // namespace q3

#endif
