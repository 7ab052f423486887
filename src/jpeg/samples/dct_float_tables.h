// Constants and the transposition of the single-precision DCT.
#ifndef VEK_JPEG_SAMPLES_DCT_FLOAT_TABLES_H
#define VEK_JPEG_SAMPLES_DCT_FLOAT_TABLES_H

#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>

namespace q3 {

constexpr float c_cos_4_16 = std::bit_cast<float>(uint32_t{0x3F3504F3});
constexpr float c_tg_1_16 = std::bit_cast<float>(uint32_t{0x3E4BAFAF});
constexpr float c_tg_2_16 = std::bit_cast<float>(uint32_t{0x3ED413CD});
constexpr float c_tg_3_16 = std::bit_cast<float>(uint32_t{0x3F2B0DC1});
constexpr float fLS = 2048.0F;

// The float nearest to 0.125 * s(r) * s(c), with s(0) = s(4) = 1 and s(k) = s(8 - k) = sqrt(2) * cos(k * pi / 16) for k
// = 1, 2, 3. Rows 4 to 7 are rows 0, 3, 2, 1.
constexpr auto tab_scale = [] {
    constexpr std::array<double, 4> s = {1.0, 1.38703984532214746182, 1.30656296487637652785, 1.17587560241935871698};
    std::array<std::array<float, 8>, 8> t{};
    for (size_t r = 0; r < 8; ++r)
        for (size_t c = 0; c < 8; ++c) {
            const double product = s[r < 4 ? r : r == 4 ? 0 : 8 - r] * s[c < 4 ? c : c == 4 ? 0 : 8 - c];
            t[r][c] = static_cast<float>(0.125 * product);
        }
    return t;
}();

inline void transpose(__m256 x[8])
{
    const __m256 a0 = _mm256_unpacklo_ps(x[0], x[1]);
    const __m256 a1 = _mm256_unpackhi_ps(x[0], x[1]);
    const __m256 a2 = _mm256_unpacklo_ps(x[2], x[3]);
    const __m256 a3 = _mm256_unpackhi_ps(x[2], x[3]);
    const __m256 a4 = _mm256_unpacklo_ps(x[4], x[5]);
    const __m256 a5 = _mm256_unpackhi_ps(x[4], x[5]);
    const __m256 a6 = _mm256_unpacklo_ps(x[6], x[7]);
    const __m256 a7 = _mm256_unpackhi_ps(x[6], x[7]);
    const __m256 b0 = _mm256_shuffle_ps(a0, a2, 0x44);
    const __m256 b1 = _mm256_shuffle_ps(a0, a2, 0xEE);
    const __m256 b2 = _mm256_shuffle_ps(a1, a3, 0x44);
    const __m256 b3 = _mm256_shuffle_ps(a1, a3, 0xEE);
    const __m256 b4 = _mm256_shuffle_ps(a4, a6, 0x44);
    const __m256 b5 = _mm256_shuffle_ps(a4, a6, 0xEE);
    const __m256 b6 = _mm256_shuffle_ps(a5, a7, 0x44);
    const __m256 b7 = _mm256_shuffle_ps(a5, a7, 0xEE);
    x[0] = _mm256_permute2f128_ps(b0, b4, 0x20);
    x[1] = _mm256_permute2f128_ps(b1, b5, 0x20);
    x[2] = _mm256_permute2f128_ps(b2, b6, 0x20);
    x[3] = _mm256_permute2f128_ps(b3, b7, 0x20);
    x[4] = _mm256_permute2f128_ps(b0, b4, 0x31);
    x[5] = _mm256_permute2f128_ps(b1, b5, 0x31);
    x[6] = _mm256_permute2f128_ps(b2, b6, 0x31);
    x[7] = _mm256_permute2f128_ps(b3, b7, 0x31);
}

}  // namespace q3

#endif
