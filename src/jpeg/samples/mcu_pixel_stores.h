// Pixel formats of MCU decoding: 16 pixels in one vector for each channel, 8 of them written to each of two places.
// Channels are signed 16-bit values; all formats clip them to 0 .. 255 first.
#ifndef VEK_JPEG_SAMPLES_MCU_PIXEL_STORES_H
#define VEK_JPEG_SAMPLES_MCU_PIXEL_STORES_H

#include <immintrin.h>

#include <array>
#include <cstdint>

#include "frame/vec.h"
#include "jpeg/samples/mcu_decode_forms.h"
#include "jpeg/samples/mcu_layout.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

// Three bytes a pixel. 8 pixels are 24 bytes: one store for the first 16, one for the last 16.
template <Order order>
struct StorePixels24 {
    static constexpr int pixelBytes = 3;
    static constexpr bool hasKey = false;

    static void store(uint8_t* pLow, uint8_t* pHigh, const Channels& c)
    {
        const __m256i first = order == Order::RGB ? c.first : c.third;
        const __m256i third = order == Order::RGB ? c.third : c.first;
        const __m256i firstSecond = _mm256_packus_epi16(first, c.second);  // 8 bytes of each in a lane
        const __m256i thirdTwice = _mm256_packus_epi16(third, third);
        storeLanes(pLow, pHigh,
                   _mm256_or_si256(shuffle(firstSecond, firstSecondFrom[0]), shuffle(thirdTwice, thirdFrom[0])));
        storeLanes(pLow + 8, pHigh + 8,
                   _mm256_or_si256(shuffle(firstSecond, firstSecondFrom[1]), shuffle(thirdTwice, thirdFrom[1])));
    }

private:
    using Pair = std::array<ByteShuffle, 2>;

    // For bytes 0 to 15 and 8 to 23 of 8 pixels. Places of other channels become zero.
    static constexpr Pair firstSecondFrom = [] {
        Pair t{};
        for (int byte = 0; byte < 16; ++byte)
            for (int i = 0; i < 2; ++i) {
                const int at = byte + 8 * i;
                t[i][byte] = static_cast<int8_t>(at % 3 == 2 ? -1 : at % 3 * 8 + at / 3);
            }
        return t;
    }();
    static constexpr Pair thirdFrom = [] {
        Pair t{};
        for (int byte = 0; byte < 16; ++byte)
            for (int i = 0; i < 2; ++i) {
                const int at = byte + 8 * i;
                t[i][byte] = static_cast<int8_t>(at % 3 == 2 ? at / 3 : -1);
            }
        return t;
    }();
};
using StoreRGB = StorePixels24<Order::RGB>;
using StoreBGR = StorePixels24<Order::BGR>;
using StoreYCbCr = StorePixels24<Order::RGB>;

// Words with blue in the lowest bits; the low bits of the channels fall away.
template <Fields fields>
struct StoreBGR16 {
    static constexpr int green = greenBits<fields>;
    static constexpr int pixelBytes = 2;
    static constexpr bool hasKey = false;

    static void store(uint8_t* pLow, uint8_t* pHigh, const Channels& c)
    {
        const __m256i red = _mm256_and_si256(_mm256_slli_epi16(clip(c.first), green + 2),
                                             _mm256_set1_epi16(static_cast<int16_t>(0x1F << (green + 5))));
        const __m256i greenField =
            _mm256_and_si256(_mm256_slli_epi16(clip(c.second), green - 3), _mm256_set1_epi16(((1 << green) - 1) << 5));
        const __m256i blue = _mm256_srli_epi16(clip(c.third), 3);
        storeLanes(pLow, pHigh, _mm256_or_si256(_mm256_or_si256(red, greenField), blue));
    }

private:
    static __m256i clip(__m256i v)
    {
        return _mm256_min_epi16(_mm256_max_epi16(v, _mm256_setzero_si256()), _mm256_set1_epi16(255));
    }
};

// Four bytes: 255 - R, 255 - G, 255 - B and the key.
struct StoreCMYK {
    static constexpr int pixelBytes = 4;
    static constexpr bool hasKey = true;

    static void store(uint8_t* pLow, uint8_t* pHigh, const Channels& c, __m256i key)
    {
        const __m256i cy = _mm256_packus_epi16(c.first, c.third);
        const __m256i mk = _mm256_packus_epi16(c.second, key);
        const __m256i cm = _mm256_unpacklo_epi8(cy, mk);
        const __m256i yk = _mm256_unpackhi_epi8(cy, mk);
        const __m256i complement = _mm256_set1_epi32(0x00FFFFFF);
        storeLanes(pLow, pHigh, _mm256_xor_si256(_mm256_unpacklo_epi16(cm, yk), complement));
        storeLanes(pLow + 16, pHigh + 16, _mm256_xor_si256(_mm256_unpackhi_epi16(cm, yk), complement));
    }
};

}  // namespace q3

#endif
