// The arithmetics by which MCU conversions make pixels of planes. Each has two steps, so that shared chroma is worked
// on once: terms(cb, cr), one value of each channel for each chroma sample, and channels(y, terms), one for each pixel.
// The channels are 16-bit values that the pixel formats clip to 0 .. 255. All lanes are signed 16-bit, over their full
// range.
#ifndef VEK_JPEG_SAMPLES_MCU_DECODE_FORMS_H
#define VEK_JPEG_SAMPLES_MCU_DECODE_FORMS_H

#include <immintrin.h>

#include <array>
#include <cstdint>

#include "frame/vec.h"

namespace q3 {

struct Channels {
    __m256i first, second, third;  // R, G, B, or Y, Cb, Cr
};
struct ChannelsAndKey : Channels {
    __m256i key;
};

// The vectors of an arithmetic. They lie in memory of another file: the broadcasts that the compiler would make of
// values that it knows cost a tenth of the time, so short is an MCU.
struct alignas(32) DecodeConstants {
    std::array<int16_t, 16> red, blue;    // factors of Cr and Cb
    std::array<int16_t, 16> green;        // of Cb and Cr, in turn
    std::array<int32_t, 8> greenSummand;  // to the sum of products
    std::array<int16_t, 16> bias;         // 128
};

// cb * green + cr * green' + greenSummand in 32 bits, for the lanes that unpacking takes.
struct WideSums {
    __m256i low, high;

    WideSums(__m256i cb, __m256i cr, const DecodeConstants& constants)
    {
        const __m256i factors = loadU(constants.green.data());
        const __m256i summand = loadU(constants.greenSummand.data());
        low = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(cb, cr), factors), summand);
        high = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(cb, cr), factors), summand);
    }

    // The sums >> shift, saturated to 16 bits.
    template <int shift>
    __m256i saturated() const
    {
        return _mm256_packs_epi32(_mm256_srai_epi32(low, shift), _mm256_srai_epi32(high, shift));
    }
    // The sums >> 16
    __m256i highHalves() const { return saturated<16>(); }
};

// Q14 with saturated terms, for 4:4:4 to RGB and BGR.
//   tR = sat16((22970 Cr + 2105344) >> 14)      tG = sat16((-5638 Cb - 11700 Cr + 2105344) >> 14)
//   tB = sat16((29032 Cb + 2105344) >> 14)      channel = Y + t, modulo 2^16
// 22970 = 16384 + 13172 / 2 and 29032 = 16384 + 25296 / 2: the rounding multiply gives the second summand rounded, and
// 2105344 is 128 and a half; the last of the sums is the only one that can leave 16 bits, and it saturates.
struct DecodeFormA {
    static const DecodeConstants constants;

    static Channels terms(__m256i cb, __m256i cr)
    {
        const __m256i bias = loadU(constants.bias.data());
        const __m256i red = _mm256_mulhrs_epi16(cr, loadU(constants.red.data()));
        const __m256i blue = _mm256_mulhrs_epi16(cb, loadU(constants.blue.data()));
        return {_mm256_adds_epi16(cr, _mm256_add_epi16(red, bias)), WideSums(cb, cr, constants).saturated<14>(),
                _mm256_adds_epi16(cb, _mm256_add_epi16(blue, bias))};
    }
    static Channels channels(__m256i y, const Channels& t)
    {
        return {_mm256_add_epi16(y, t.first), _mm256_add_epi16(y, t.second), _mm256_add_epi16(y, t.third)};
    }
};

// Q13 and Q14 with terms cut to 16 bits, for all other colour conversions.
//   tR = (11485 Cr + 1052672) >> 13      tG = (5638 Cb + 11700 Cr - 2088960) >> 14      tB = (14516 Cb + 1052672) >> 13
//   R = Y + tR, G = Y - tG, B = Y + tB, modulo 2^16
// The products of tR and tB are taken apart as in form A, with sums that wrap. In tG, times 4, 46800 = 65536 - 18736.
// YCCK: the fourth byte is clip(K + 128).
struct DecodeFormB {
    static const DecodeConstants constants;

    static Channels terms(__m256i cb, __m256i cr)
    {
        const __m256i bias = loadU(constants.bias.data());
        const __m256i red = _mm256_mulhrs_epi16(cr, loadU(constants.red.data()));
        const __m256i blue = _mm256_mulhrs_epi16(cb, loadU(constants.blue.data()));
        return {_mm256_add_epi16(cr, _mm256_add_epi16(red, bias)),
                _mm256_add_epi16(cr, WideSums(cb, cr, constants).highHalves()),
                _mm256_add_epi16(cb, _mm256_add_epi16(blue, bias))};
    }
    static Channels channels(__m256i y, const Channels& t)
    {
        return {_mm256_add_epi16(y, t.first), _mm256_sub_epi16(y, t.second), _mm256_add_epi16(y, t.third)};
    }
    static __m256i key(__m256i k) { return _mm256_adds_epi16(k, loadU(constants.bias.data())); }
};

// Q16 without rounding; products and the sum for G wrap at 32 bits, so that each shifted term is a 16-bit value.
//   tR = (91881 Cr) >> 16      tG = (-22554 Cb - 46802 Cr) >> 16      tB = (116130 Cb) >> 16      channel = Y + t + 128
// 91881 = 65536 + 26345, 46802 = 65536 - 18734, 116130 = 2 * 65536 - 14942: whole multiples of 65536 leave the shift.
// The last sums saturate, which the clipping does not tell from wider ones. YCCK: the fourth byte is the low byte of
// K + 128.
struct DecodeScalarForm {
    static const DecodeConstants constants;

    static Channels terms(__m256i cb, __m256i cr)
    {
        const __m256i red = _mm256_mulhi_epi16(cr, loadU(constants.red.data()));
        const __m256i blue = _mm256_mulhi_epi16(cb, loadU(constants.blue.data()));
        return {_mm256_add_epi16(cr, red), _mm256_sub_epi16(WideSums(cb, cr, constants).highHalves(), cr),
                _mm256_add_epi16(_mm256_add_epi16(cb, cb), blue)};
    }
    static Channels channels(__m256i y, const Channels& t)
    {
        const __m256i bias = loadU(constants.bias.data());
        return {_mm256_adds_epi16(_mm256_adds_epi16(y, t.first), bias),
                _mm256_adds_epi16(_mm256_adds_epi16(y, t.second), bias),
                _mm256_adds_epi16(_mm256_adds_epi16(y, t.third), bias)};
    }
    static __m256i key(__m256i k)
    {
        const __m256i lowByte = _mm256_and_si256(k, _mm256_set1_epi16(255));
        return _mm256_xor_si256(lowByte, loadU(constants.bias.data()));
    }
};

// No colour conversion: each channel is its plane's sample + 128, the sum saturated.
struct DecodeSamples {
    static Channels terms(__m256i cb, __m256i cr)
    {
        const __m256i bias = _mm256_set1_epi16(128);
        return {_mm256_setzero_si256(), _mm256_adds_epi16(cb, bias), _mm256_adds_epi16(cr, bias)};
    }
    static Channels channels(__m256i y, const Channels& t)
    {
        return {_mm256_adds_epi16(y, _mm256_set1_epi16(128)), t.second, t.third};
    }
};

}  // namespace q3

#endif
