// The arithmetics by which MCU conversions make planes of pixels. Pixels come as pairs of 16-bit values, (R, G) and (B,
// G), one pixel in each 32-bit lane; for chroma they are sums over the 1 << logSharers pixels that share a chroma
// sample, so that the matrix is applied once to a sum. Results are 32-bit values within the range of 16 bits.
#ifndef VEK_JPEG_SAMPLES_MCU_ENCODE_FORMS_H
#define VEK_JPEG_SAMPLES_MCU_ENCODE_FORMS_H

#include <immintrin.h>

#include <cstdint>

namespace q3 {

// The sum of the products of each pair with two factors.
template <int16_t firstFactor, int16_t secondFactor>
inline __m256i dot(__m256i pairs)
{
    return _mm256_madd_epi16(
        pairs, _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(secondFactor)) << 16 |
                                                      static_cast<uint16_t>(firstFactor))));
}

// Q14 with rounding.
//   Y  = (4899 R + 9617 G + 1868 B - 2088960) >> 14                                 2088960 is 127.5
//   Cb = (sum of (-2764 R - 5428 G + 8192 B) + (rounding << n)) >> (14 + n)         n = logSharers
//   Cr = (sum of (8192 R - 6860 G - 1332 B) + (rounding << n)) >> (14 + n)
// rounding is 8192, a half, in all members but one.
template <int32_t rounding = 8192>
struct EncodeBlockForm {
    static __m256i luma(__m256i rg, __m256i bg)
    {
        const __m256i sum = _mm256_add_epi32(dot<4899, 9617>(rg), dot<1868, 0>(bg));
        return _mm256_srai_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(-2088960)), 14);
    }
    template <int logSharers>
    static __m256i cb(__m256i rg, __m256i bg)
    {
        return rounded<logSharers>(_mm256_add_epi32(dot<-2764, -5428>(rg), dot<8192, 0>(bg)));
    }
    template <int logSharers>
    static __m256i cr(__m256i rg, __m256i bg)
    {
        return rounded<logSharers>(_mm256_add_epi32(dot<8192, -6860>(rg), dot<-1332, 0>(bg)));
    }

private:
    template <int logSharers>
    static __m256i rounded(__m256i sum)
    {
        return _mm256_srai_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(rounding << logSharers)), 14 + logSharers);
    }
};

// Q16 without rounding.
//   Y  = ((19595 R + 38470 G + 7471 B) >> 16) - 128
//   Cb = (sum of (-11059 R - 21709 G + 32768 B)) >> (16 + n)         n = logSharers
//   Cr = (sum of (32768 R - 27439 G - 5329 B)) >> (16 + n)
// 38470 goes half to each of the pairs, and 32768 is subtracted as -32768, to have factors of 16 bits.
struct EncodeScalarForm {
    static __m256i luma(__m256i rg, __m256i bg)
    {
        const __m256i sum = _mm256_add_epi32(dot<19595, 19235>(rg), dot<7471, 19235>(bg));
        return _mm256_sub_epi32(_mm256_srai_epi32(sum, 16), _mm256_set1_epi32(128));
    }
    template <int logSharers>
    static __m256i cb(__m256i rg, __m256i bg)
    {
        return _mm256_srai_epi32(_mm256_sub_epi32(dot<-11059, -21709>(rg), dot<-32768, 0>(bg)), 16 + logSharers);
    }
    template <int logSharers>
    static __m256i cr(__m256i rg, __m256i bg)
    {
        return _mm256_srai_epi32(_mm256_sub_epi32(dot<-5329, -27439>(bg), dot<-32768, 0>(rg)), 16 + logSharers);
    }
};

// No colour conversion: here the pairs are (Y, Cb) and (Cr, Cb).
//   Y - 128; chroma (sum of x - 128) >> logSharers, the average rounded down
struct EncodeSamples {
    static __m256i luma(__m256i yCb, __m256i) { return shifted<0>(_mm256_and_si256(yCb, _mm256_set1_epi32(0xFFFF))); }
    template <int logSharers>
    static __m256i cb(__m256i yCb, __m256i)
    {
        return shifted<logSharers>(_mm256_srli_epi32(yCb, 16));
    }
    template <int logSharers>
    static __m256i cr(__m256i, __m256i crCb)
    {
        return shifted<logSharers>(_mm256_and_si256(crCb, _mm256_set1_epi32(0xFFFF)));
    }

private:
    template <int logSharers>
    static __m256i shifted(__m256i sum)
    {
        return _mm256_srai_epi32(_mm256_sub_epi32(sum, _mm256_set1_epi32(128 << logSharers)), logSharers);
    }
};

}  // namespace q3

#endif
