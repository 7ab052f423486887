// Pixel formats of MCU encoding: 8 pixels from each of two places as pairs of 16-bit values.
#ifndef VEK_JPEG_SAMPLES_MCU_PIXEL_LOADS_H
#define VEK_JPEG_SAMPLES_MCU_PIXEL_LOADS_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "frame/vec.h"
#include "jpeg/samples/mcu_layout.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

// (R, G) and (B, G) of 16 pixels, R in the low half of a 32-bit lane. The first four of 8 pixels are in the `left`
// vectors, the other four in the `right` ones; each half of a vector belongs to one of the two places.
struct PixelPairs {
    __m256i rgLeft, rgRight, bgLeft, bgRight;
};

// Brings the channels `first` and `second` of four pixels of `pixelBytes` bytes to pairs of words; the first pixel
// begins at byte `begin`.
constexpr ByteShuffle pairShuffle(int pixelBytes, int first, int second, int begin)
{
    ByteShuffle t{};
    for (int pixel = 0; pixel < 4; ++pixel) {
        const int at = begin + pixel * pixelBytes;
        const size_t pair = 4 * static_cast<size_t>(pixel);
        t[pair] = static_cast<int8_t>(at + first);
        t[pair + 1] = -1;
        t[pair + 2] = static_cast<int8_t>(at + second);
        t[pair + 3] = -1;
    }
    return t;
}

// Three bytes a pixel: 24 bytes, of which the first 16 hold pixels 0 to 3, and the last 16 pixels 4 to 7.
template <Order order>
struct LoadPixels24 {
    static constexpr int pixelBytes = 3;
    static constexpr bool hasKey = false;

    static PixelPairs load(const uint8_t* pLow, const uint8_t* pHigh)
    {
        const __m256i head = loadLanes(pLow, pHigh);
        const __m256i tail = loadLanes(pLow + 8, pHigh + 8);
        return {shuffle(head, rgOfHead), shuffle(tail, rgOfTail), shuffle(head, bgOfHead), shuffle(tail, bgOfTail)};
    }

private:
    static constexpr ByteShuffle rgOfHead = pairShuffle(3, redChannel<order>, 1, 0);
    static constexpr ByteShuffle bgOfHead = pairShuffle(3, blueChannel<order>, 1, 0);
    static constexpr ByteShuffle rgOfTail = pairShuffle(3, redChannel<order>, 1, 4);
    static constexpr ByteShuffle bgOfTail = pairShuffle(3, blueChannel<order>, 1, 4);
};
using LoadRGB = LoadPixels24<Order::RGB>;
using LoadBGR = LoadPixels24<Order::BGR>;
using LoadYCbCr = LoadPixels24<Order::RGB>;  // the pairs are (Y, Cb) and (Cr, Cb)

// Words with blue in the lowest bits; the channels are widened to 8 bits by zeros. Bit 15 of a 555 word counts for
// nothing.
template <Fields fields>
struct LoadBGR16 {
    static constexpr int pixelBytes = 2;
    static constexpr bool hasKey = false;

    static PixelPairs load(const uint8_t* pLow, const uint8_t* pHigh)
    {
        const __m256i words = loadLanes(pLow, pHigh);
        const __m256i fiveBits = _mm256_set1_epi16(0xF8);
        const __m256i red = _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> + 2), fiveBits);
        const __m256i green =
            _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> - 3),
                             _mm256_set1_epi16(((1 << greenBits<fields>)-1) << (8 - greenBits<fields>)));
        const __m256i blue = _mm256_and_si256(_mm256_slli_epi16(words, 3), fiveBits);
        return {_mm256_unpacklo_epi16(red, green), _mm256_unpackhi_epi16(red, green),
                _mm256_unpacklo_epi16(blue, green), _mm256_unpackhi_epi16(blue, green)};
    }
};

// Four bytes: R = 255 - C, G = 255 - M, B = 255 - Y, and the key K - 128.
struct LoadCMYK {
    static constexpr int pixelBytes = 4;
    static constexpr bool hasKey = true;

    static PixelPairs load(const uint8_t* pLow, const uint8_t* pHigh)
    {
        static constexpr ByteShuffle rgOf = pairShuffle(4, 0, 1, 0);
        static constexpr ByteShuffle bgOf = pairShuffle(4, 2, 1, 0);
        const __m256i complement = _mm256_set1_epi32(0x00FFFFFF);
        const __m256i left = _mm256_xor_si256(loadLanes(pLow, pHigh), complement);
        const __m256i right = _mm256_xor_si256(loadLanes(pLow + 16, pHigh + 16), complement);
        return {shuffle(left, rgOf), shuffle(right, rgOf), shuffle(left, bgOf), shuffle(right, bgOf)};
    }
    static __m256i key(const uint8_t* pLow, const uint8_t* pHigh)
    {
        const __m256i left = _mm256_srli_epi32(loadLanes(pLow, pHigh), 24);
        const __m256i right = _mm256_srli_epi32(loadLanes(pLow + 16, pHigh + 16), 24);
        return _mm256_sub_epi16(_mm256_packs_epi32(left, right), _mm256_set1_epi16(128));
    }
};

}  // namespace q3

#endif
