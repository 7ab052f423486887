// How the ColLift kernels walk along their rows.
#ifndef VEK_JPEG2K_TRANSFORM_COLLIFT_ROWS_H
#define VEK_JPEG2K_TRANSFORM_COLLIFT_ROWS_H

#include <initializer_list>
#include <type_traits>

#include "jpeg2k/transform/lanes.h"

namespace q3 {

// Whether a row that is written overlaps another without being the same.
template <typename T>
inline bool rowsCross(std::initializer_list<const T*> written, std::initializer_list<const T*> all, int width)
{
    const int64_t bytes = int64_t{width} * int64_t{sizeof(T)};
    for (const T* row : written)
        for (const T* other : all)
            if (row != other && overlap(row, bytes, other, bytes))
                return true;
    return false;
}

// Calls step(i, count) for the samples i .. i + count - 1, from left to right: vectors and the rest of one, or single
// samples.
template <typename T, typename Step>
inline void alongRows(int width, bool singly, const Step& step)
{
    constexpr int lanes = lanesOf<T>;
    int i = 0;
    if (singly) {
        for (; i < width; ++i) step(i, 1);
        return;
    }
    for (; i + lanes <= width; i += lanes) step(i, std::integral_constant<int, lanes>{});
    if (i < width)
        step(i, width - i);
}

}  // namespace q3

#endif
