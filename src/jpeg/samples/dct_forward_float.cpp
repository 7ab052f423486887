#include "frame/vec.h"
#include "jpeg/samples/dct_float_tables.h"
#include "jpeg/samples/dct_forward.h"

namespace q3 {
namespace {

// One pass of eight transforms side by side; every operation rounds to single precision once, fused ones included.
inline void pass(__m256 x[8])
{
    const auto plus = [](__m256 a, __m256 b) { return _mm256_add_ps(a, b); };
    const auto less = [](__m256 a, __m256 b) { return _mm256_sub_ps(a, b); };
    const __m256 cosine = _mm256_set1_ps(c_cos_4_16);
    const __m256 tangent1 = _mm256_set1_ps(c_tg_1_16);
    const __m256 tangent2 = _mm256_set1_ps(c_tg_2_16);
    const __m256 tangent3 = _mm256_set1_ps(c_tg_3_16);

    const __m256 s07 = plus(x[0], x[7]);
    const __m256 d07 = less(x[0], x[7]);
    const __m256 s16 = plus(x[1], x[6]);
    const __m256 d16 = less(x[1], x[6]);
    const __m256 s25 = plus(x[2], x[5]);
    const __m256 d25 = less(x[2], x[5]);
    const __m256 s34 = plus(x[3], x[4]);
    const __m256 d34 = less(x[3], x[4]);

    const __m256 a0 = plus(s07, s34);
    const __m256 a3 = less(s07, s34);
    const __m256 a1 = plus(s16, s25);
    const __m256 a2 = less(s16, s25);
    const __m256 p = plus(d16, d25);
    const __m256 q = less(d16, d25);
    const __m256 b0 = _mm256_fmadd_ps(p, cosine, d07);
    const __m256 b3 = _mm256_fnmadd_ps(p, cosine, d07);
    const __m256 b1 = _mm256_fmadd_ps(q, cosine, d34);
    const __m256 b2 = _mm256_fnmadd_ps(q, cosine, d34);

    x[0] = plus(a0, a1);
    x[4] = less(a0, a1);
    x[2] = _mm256_fmadd_ps(a2, tangent2, a3);
    x[6] = _mm256_fmsub_ps(a3, tangent2, a2);
    x[1] = _mm256_fmadd_ps(b1, tangent1, b0);
    x[7] = _mm256_fmsub_ps(b0, tangent1, b1);
    x[5] = _mm256_fmadd_ps(b3, tangent3, b2);
    x[3] = _mm256_fnmadd_ps(b2, tangent3, b3);
}

// Along the rows, then down the columns, then the scale.
inline void transform(__m256 rows[8])
{
    transpose(rows);
    pass(rows);
    transpose(rows);
    pass(rows);
    for (size_t r = 0; r < 8; ++r) rows[r] = _mm256_mul_ps(rows[r], _mm256_loadu_ps(tab_scale[r].data()));
}

}  // namespace

void dct_8x8_fwd_32f(const float* pSrc, float* pDst)
{
    __m256 rows[8];
    for (int r = 0; r < 8; ++r) rows[r] = _mm256_loadu_ps(pSrc + 8 * r);
    transform(rows);
    for (int r = 0; r < 8; ++r) _mm256_storeu_ps(pDst + 8 * r, rows[r]);
}

// Samples count as signed 16-bit values. A result beyond 32 bits becomes the least integer, and so -32768.
void dct_qnt_fwd_8x8_ls(const uint16_t* pSrc, int srcStep, int16_t* pDst, const float* pQuantFwdTable)
{
    __m256 rows[8];
    for (int r = 0; r < 8; ++r) {
        const __m256i samples = _mm256_cvtepi16_epi32(loadU128(rowAt(pSrc, srcStep, r)));
        rows[r] = _mm256_sub_ps(_mm256_cvtepi32_ps(samples), _mm256_set1_ps(fLS));
    }
    transform(rows);
    for (int r = 0; r < 8; ++r) {
        const __m256i v = _mm256_cvtps_epi32(_mm256_mul_ps(rows[r], _mm256_loadu_ps(pQuantFwdTable + 8 * r)));
        storeU128(pDst + 8 * r, _mm_packs_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
    }
}

}  // namespace q3
