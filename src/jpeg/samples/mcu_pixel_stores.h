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

// Words with blue in the lowest bits; the low bits of the channels fall away: (B + G << k) >> 3 in one multiply-add of
// bytes and a shift, and R from the high byte.
template <Fields fields>
struct StoreBGR16 {
    static constexpr int pixelBytes = 2;
    static constexpr bool hasKey = false;
    struct alignas(32) Constants {  // in another file, as those of the arithmetics
        std::array<uint8_t, 32> keptBlue, keptGreen, keptRed;
        std::array<int8_t, 32> factors;  // of blue and green, in turn
    };
    static const Constants constants;

    static void storeBeside(uint8_t* pUpper, uint8_t* pLower, const Channels& left, const Channels& right)
    {
        const Words w = words(left, right);
        storeLanes(pUpper, pLower, w.lo);
        storeLanes(pUpper + 16, pLower + 16, w.hi);
    }
    static void storeBelow(uint8_t* pDst, int64_t step, const Channels& upper, const Channels& lower)
    {
        const Words w = words(upper, lower);
        storeLanes(pDst, pDst + step, w.lo);
        storeLanes(pDst + 2 * step, pDst + 3 * step, w.hi);
    }

private:
    static Words words(const Channels& first, const Channels& second)
    {
        const __m256i factors = loadU(constants.factors.data());
        const __m256i zero = _mm256_setzero_si256();
        const __m256i b = kept(_mm256_packus_epi16(first.third, second.third), constants.keptBlue);
        const __m256i g = kept(_mm256_packus_epi16(first.second, second.second), constants.keptGreen);
        __m256i r = _mm256_packus_epi16(first.first, second.first);
        if constexpr (fields == Fields::F555)
            r = _mm256_srli_epi16(r, 1);  // bits of the next byte go with those that are not kept
        r = kept(r, constants.keptRed);
        const auto withRed = [=](__m256i bg, __m256i red) {
            return _mm256_or_si256(_mm256_srli_epi16(_mm256_maddubs_epi16(bg, factors), 3), red);
        };
        return {withRed(_mm256_unpacklo_epi8(b, g), _mm256_unpacklo_epi8(zero, r)),
                withRed(_mm256_unpackhi_epi8(b, g), _mm256_unpackhi_epi8(zero, r))};
    }
    static __m256i kept(__m256i bytes, const std::array<uint8_t, 32>& bits)
    {
        return _mm256_and_si256(bytes, loadU(bits.data()));
    }
};
template <>
const StoreBGR16<Fields::F555>::Constants StoreBGR16<Fields::F555>::constants;
template <>
const StoreBGR16<Fields::F565>::Constants StoreBGR16<Fields::F565>::constants;

// Four bytes: 255 - R, 255 - G, 255 - B and the key.
struct StoreCMYK {
    static constexpr int pixelBytes = 4;
    static constexpr bool hasKey = true;
    struct alignas(32) Constants {
        std::array<uint32_t, 8> complement;
    };
    static const Constants constants;

    static void storeBeside(uint8_t* pUpper, uint8_t* pLower, const ChannelsAndKey& left, const ChannelsAndKey& right)
    {
        store(pUpper, pLower, left);
        store(pUpper + 32, pLower + 32, right);
    }
    static void storeBelow(uint8_t* pDst, int64_t step, const ChannelsAndKey& upper, const ChannelsAndKey& lower)
    {
        store(pDst, pDst + step, upper);
        store(pDst + 2 * step, pDst + 3 * step, lower);
    }

private:
    static void store(uint8_t* pLow, uint8_t* pHigh, const ChannelsAndKey& c)
    {
        const __m256i cy = _mm256_packus_epi16(c.first, c.third);
        const __m256i mk = _mm256_packus_epi16(c.second, c.key);
        const __m256i cm = _mm256_unpacklo_epi8(cy, mk);
        const __m256i yk = _mm256_unpackhi_epi8(cy, mk);
        const __m256i complement = loadU(constants.complement.data());
        storeLanes(pLow, pHigh, _mm256_xor_si256(_mm256_unpacklo_epi16(cm, yk), complement));
        storeLanes(pLow + 16, pHigh + 16, _mm256_xor_si256(_mm256_unpackhi_epi16(cm, yk), complement));
    }
};

}  // namespace q3

#endif
