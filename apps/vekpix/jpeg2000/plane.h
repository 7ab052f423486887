// The samples of a tile-component.
#ifndef VEKPIX_JPEG2000_PLANE_H
#define VEKPIX_JPEG2000_PLANE_H

#include <cstddef>
#include <cstdint>

namespace vekpix::jpeg2000 {

// Samples of 32 bits, rows `step` samples apart.
struct Plane {
    int32_t* samples = nullptr;
    size_t step = 0;

    int32_t* at(int x, int y) const { return samples + static_cast<size_t>(y) * step + static_cast<size_t>(x); }
    int stepBytes() const { return static_cast<int>(step * sizeof(int32_t)); }
};

// A step for rows of so many samples: lines of the cache apart, and an odd number of them, so that the samples of a
// column do not fall all into the same few sets of the cache.
inline size_t planeStep(size_t width)
{
    constexpr size_t lineSamples = 16;
    return ((width + lineSamples - 1) / lineSamples | 1) * lineSamples;
}

}  // namespace vekpix::jpeg2000

#endif
