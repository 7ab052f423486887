// Vectors of 16- or 32-bit elements at any address, whole or in part.
#ifndef VEK_JPEG2K_TRANSFORM_LANES_H
#define VEK_JPEG2K_TRANSFORM_LANES_H

#include <cstring>

#include "frame/vec.h"

namespace q3 {

template <typename T>
constexpr int lanesOf = static_cast<int>(32 / sizeof(T));

// The first `count` elements of a vector. A count of lanesOf<T> is worth a branch of its own to the callers, which hand
// it over as a constant.
template <typename T>
inline __m256i loadLanes(const T* p, int count)
{
    if (count == lanesOf<T>)
        return loadU(p);
    alignas(32) unsigned char bytes[32] = {};
    std::memcpy(bytes, p, static_cast<size_t>(count) * sizeof(T));
    return loadU(bytes);
}
template <typename T>
inline void storeLanes(T* p, __m256i v, int count)
{
    if (count == lanesOf<T>)
        return storeU(p, v);
    alignas(32) unsigned char bytes[32];
    storeU(bytes, v);
    std::memcpy(p, bytes, static_cast<size_t>(count) * sizeof(T));
}

// Whether `bytesA` bytes at a and `bytesB` bytes at b share any.
inline bool overlap(const void* a, int64_t bytesA, const void* b, int64_t bytesB)
{
    const auto first = reinterpret_cast<uintptr_t>(a);
    const auto second = reinterpret_cast<uintptr_t>(b);
    return first < second + static_cast<uintptr_t>(bytesB) && second < first + static_cast<uintptr_t>(bytesA);
}

}  // namespace q3

#endif
