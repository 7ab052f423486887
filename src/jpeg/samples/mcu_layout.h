// One minimum coded unit (MCU): how its pixels share chroma samples, and where its samples lie.
#ifndef VEK_JPEG_SAMPLES_MCU_LAYOUT_H
#define VEK_JPEG_SAMPLES_MCU_LAYOUT_H

#include <immintrin.h>

#include <cstdint>

#include "frame/vec.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

enum class McuLayout {
    s444,  // 8 x 8 pixels, each with its own chroma
    s422,  // 16 x 8 pixels, two of a row share a chroma sample; Y: the left block, then the right one
    s411,  // 16 x 16 pixels, 2 x 2 share a chroma sample; Y: top left, top right, bottom left, bottom right
};

// Index, in the Y or K plane of any layout, of the sample of pixel (x, y), x a multiple of 8. The other samples of its
// row in the block follow, then the next row of the block.
constexpr int mcuLumaIndex(int x, int y) { return 128 * (y / 8) + 64 * (x / 8) + 8 * (y % 8); }

// Sixteen samples of a plane from `index` on, or eight there and eight `stride` later.
template <int stride>
inline __m256i loadSamples(const int16_t* pPlane, int index)
{
    if constexpr (stride == 8)
        return loadU(pPlane + index);
    else
        return loadLanes(reinterpret_cast<const uint8_t*>(pPlane + index),
                         reinterpret_cast<const uint8_t*>(pPlane + index + stride));
}
inline void storeLanes(void* low, void* high, __m256i v)
{
    storeU128(low, _mm256_castsi256_si128(v));
    storeU128(high, _mm256_extracti128_si256(v, 1));
}
template <int stride>
inline void storeSamples(int16_t* pPlane, int index, __m256i v)
{
    if constexpr (stride == 8)
        storeU(pPlane + index, v);
    else
        storeLanes(pPlane + index, pPlane + index + stride, v);
}

// Whether the planes whose bits are set in `deciding` lie at multiples of 16 bytes.
template <unsigned deciding, typename Sample>
inline bool planesAligned(Sample* const* planes)
{
    uintptr_t bits = 0;
    if constexpr ((deciding & 1) != 0)
        bits |= reinterpret_cast<uintptr_t>(planes[0]);
    if constexpr ((deciding & 2) != 0)
        bits |= reinterpret_cast<uintptr_t>(planes[1]);
    if constexpr ((deciding & 4) != 0)
        bits |= reinterpret_cast<uintptr_t>(planes[2]);
    if constexpr ((deciding & 8) != 0)
        bits |= reinterpret_cast<uintptr_t>(planes[3]);
    return bits % 16 == 0;
}

}  // namespace q3

#endif
