// Constants of the fixed-point DCT. The row pass of row r multiplies by cos(k pi / 16) times the row's own factor: rows
// 0 and 4, 1 and 7, 2 and 6, 3 and 5 share theirs.
#ifndef VEK_JPEG_SAMPLES_DCT_TABLES_H
#define VEK_JPEG_SAMPLES_DCT_TABLES_H

#include <array>
#include <cstdint>
#include <utility>

#include "frame/vec.h"

namespace q3 {

struct DctFactors {
    int16_t a, b, c, d, e, f, g;
};
constexpr DctFactors factors04 = {16384, 22725, 19266, 12873, 4520, 21407, 8867};
constexpr DctFactors factors17 = {22725, 31521, 26722, 17855, 6270, 29692, 12299};
constexpr DctFactors factors26 = {21407, 29692, 25172, 16819, 5906, 27969, 11585};
constexpr DctFactors factors35 = {19266, 26722, 22654, 15137, 5315, 25172, 10426};

// Multiply-add operands of eight factors each, twice side by side for two rows in one vector; or of two rows of their
// own.
template <size_t N>
using Operands = std::array<std::array<int16_t, 8>, N>;
template <size_t N>
using RowOperands = std::array<std::array<int16_t, 16>, N>;
template <size_t N>
constexpr RowOperands<N> sideBySide(const Operands<N>& low, const Operands<N>& high)
{
    RowOperands<N> t{};
    for (size_t i = 0; i < N; ++i)
        for (size_t k = 0; k < 8; ++k) {
            t[i][k] = low[i][k];
            t[i][k + 8] = high[i][k];
        }
    return t;
}
using RowFactors = RowOperands<4>;
constexpr RowFactors twice(const Operands<4>& groups) { return sideBySide(groups, groups); }
constexpr int16_t minus(int16_t v) { return static_cast<int16_t>(-v); }

// High half of the product, and the tangents of k pi / 16 in that scale; that of 3 pi / 16 is less one, and the cosine
// of pi / 4 of the inverse transform too: their users add the multiplicand.
inline __m128i mulHigh(__m128i x, int16_t factor) { return _mm_mulhi_epi16(x, _mm_set1_epi16(factor)); }
constexpr int16_t tg_1_16 = 13036;
constexpr int16_t tg_2_16 = 27146;
constexpr int16_t tg_3_16 = -21746;

inline __m128i orOne(__m128i x) { return _mm_or_si128(x, _mm_set1_epi16(1)); }

// f(0) to f(7), so that what they make stays in registers.
template <typename F>
[[gnu::always_inline]] inline void forEightRows(const F& f)
{
    [&]<int... I>(std::integer_sequence<int, I...>) __attribute__((always_inline)) { (f(I), ...); }
    (std::make_integer_sequence<int, 8>());
}

// Two rows in one vector, the first in the low lane.
inline __m256i twoRows(__m128i low, __m128i high)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

}  // namespace q3

#endif
