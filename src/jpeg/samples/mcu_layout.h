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

// Two vectors of 16 bytes as the lanes of one, and back.
inline __m256i loadLanes(const int16_t* low, const int16_t* high)
{
    return loadLanes(reinterpret_cast<const uint8_t*>(low), reinterpret_cast<const uint8_t*>(high));
}
inline void storeLanes(void* low, void* high, __m256i v)
{
    storeU128(low, _mm256_castsi256_si128(v));
    storeU128(high, _mm256_extracti128_si256(v, 1));
}

}  // namespace q3

#endif
