// Pixel formats of MCU decoding. Channels are signed 16-bit values, of 8 pixels in each lane; all formats clip them to
// 0 .. 255 first. A format stores two such groups at once:
//   storeBeside    16 pixels of each of two rows: 8 of both rows in one group, the 8 to the right in the other
//   storeBelow     8 pixels of each of four rows: two rows in one group, the two below in the other
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

// Three bytes a pixel. Four pixels of a lane, 4 bytes of each channel, become 12 bytes: stores of 16 are put together
// from two of those.
template <Order order>
struct StorePixels24 {
    static constexpr int pixelBytes = 3;
    static constexpr bool hasKey = false;

    static void storeBeside(uint8_t* pUpper, uint8_t* pLower, const Channels& left, const Channels& right)
    {
        const Quads q(left, right);
        const __m256i a = rotated<0>(q.a);
        const __m256i b = rotated<12>(q.b);
        const __m256i c = rotated<8>(q.c);
        const __m256i d = rotated<4>(q.d);
        storeLanes(pUpper, pLower, _mm256_blend_epi32(a, b, 0b10001000));
        storeLanes(pUpper + 16, pLower + 16, _mm256_blend_epi32(b, c, 0b11001100));
        storeLanes(pUpper + 32, pLower + 32, _mm256_blend_epi32(c, d, 0b11101110));
    }

    // A row is 24 bytes: one store for the first 16, whose end the store of the last 16 corrects.
    static void storeBelow(uint8_t* pDst, int64_t step, const Channels& upper, const Channels& lower)
    {
        const Quads q(upper, lower);
        storeRows(pDst, pDst + step, rotated<0>(q.a), rotated<0>(q.b));
        storeRows(pDst + 2 * step, pDst + 3 * step, rotated<0>(q.c), rotated<0>(q.d));
    }

private:
    // In a lane 4 bytes R, 4 bytes G, 4 bytes B: pixels 0 to 3 of the first group, 4 to 7, and those of the second.
    struct Quads {
        __m256i a, b, c, d;

        Quads(const Channels& first, const Channels& second)
        {
            const __m256i redGreen1 = _mm256_packus_epi16(first.first, first.second);
            const __m256i redGreen2 = _mm256_packus_epi16(second.first, second.second);
            const __m256i blue = _mm256_packus_epi16(first.third, second.third);
            a = words<0, 2, 0>(redGreen1, blue);
            b = words<1, 3, 1>(redGreen1, blue);
            c = words<0, 2, 2>(redGreen2, blue);
            d = words<1, 3, 3>(redGreen2, blue);
        }

    private:
        template <int red, int green, int third>
        static __m256i words(__m256i redGreen, __m256i blue)
        {
            return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(redGreen), _mm256_castsi256_ps(blue),
                                                         red | green << 2 | third << 4 | third << 6));
        }
    };

    // A quad as 12 bytes of pixels from byte `begin` of the lane on, round its end, then its last 4 bytes once more.
    template <int begin>
    static __m256i rotated(__m256i quad)
    {
        struct alignas(32) Bytes {  // of both lanes: a broadcast would cost more than a load, so short is an MCU
            std::array<int8_t, 32> from;
        };
        static constexpr Bytes bytes = [] {
            Bytes t{};
            for (int i = 0; i < 16; ++i) {
                const int at = i < 12 ? i : i - 4;
                const int channel = order == Order::RGB ? at % 3 : 2 - at % 3;
                for (int lane = 0; lane < 2; ++lane)
                    t.from[static_cast<size_t>(16 * lane + (begin + i) % 16)] =
                        static_cast<int8_t>(4 * channel + at / 3);
            }
            return t;
        }();
        return _mm256_shuffle_epi8(quad, loadU(bytes.from.data()));
    }

    static void storeRows(uint8_t* pUpper, uint8_t* pLower, __m256i left, __m256i right)
    {
        storeLanes(pUpper, pLower, left);
        storeLanes(pUpper + 8, pLower + 8, _mm256_alignr_epi8(right, left, 12));
    }
};
using StoreRGB = StorePixels24<Order::RGB>;
using StoreBGR = StorePixels24<Order::BGR>;
using StoreYCbCr = StorePixels24<Order::RGB>;

// Formats that store one group after the other.
template <typename Format, int bytes>
struct StoreGroups {
    static constexpr int pixelBytes = bytes;

    template <typename Group>
    static void storeBeside(uint8_t* pUpper, uint8_t* pLower, const Group& left, const Group& right)
    {
        Format::store(pUpper, pLower, left);
        Format::store(pUpper + 8 * bytes, pLower + 8 * bytes, right);
    }
    template <typename Group>
    static void storeBelow(uint8_t* pDst, int64_t step, const Group& upper, const Group& lower)
    {
        Format::store(pDst, pDst + step, upper);
        Format::store(pDst + 2 * step, pDst + 3 * step, lower);
    }
};

// Words with blue in the lowest bits; the low bits of the channels fall away.
template <Fields fields>
struct StoreBGR16 : StoreGroups<StoreBGR16<fields>, 2> {
    static constexpr int green = greenBits<fields>;
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
struct StoreCMYK : StoreGroups<StoreCMYK, 4> {
    static constexpr bool hasKey = true;

    static void store(uint8_t* pLow, uint8_t* pHigh, const ChannelsAndKey& c)
    {
        const __m256i cy = _mm256_packus_epi16(c.first, c.third);
        const __m256i mk = _mm256_packus_epi16(c.second, c.key);
        const __m256i cm = _mm256_unpacklo_epi8(cy, mk);
        const __m256i yk = _mm256_unpackhi_epi8(cy, mk);
        const __m256i complement = _mm256_set1_epi32(0x00FFFFFF);
        storeLanes(pLow, pHigh, _mm256_xor_si256(_mm256_unpacklo_epi16(cm, yk), complement));
        storeLanes(pLow + 16, pHigh + 16, _mm256_xor_si256(_mm256_unpackhi_epi16(cm, yk), complement));
    }
};

}  // namespace q3

#endif
