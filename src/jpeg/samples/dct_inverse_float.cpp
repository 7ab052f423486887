#include "frame/vec.h"
#include "jpeg/samples/dct_float_tables.h"
#include "jpeg/samples/dct_inverse.h"

namespace q3 {
namespace {

// One pass of eight transforms side by side from f0 and f1, which the two passes make in different ways, and the other
// inputs. Every operation rounds to single precision once, fused ones included.
inline void pass(__m256 f0, __m256 f1, __m256 x[8])
{
    const auto plus = [](__m256 a, __m256 b) { return _mm256_add_ps(a, b); };
    const auto less = [](__m256 a, __m256 b) { return _mm256_sub_ps(a, b); };
    const __m256 cosine = _mm256_set1_ps(c_cos_4_16);
    const __m256 tangent1 = _mm256_set1_ps(c_tg_1_16);
    const __m256 tangent2 = _mm256_set1_ps(c_tg_2_16);
    const __m256 tangent3 = _mm256_set1_ps(c_tg_3_16);

    const __m256 p = _mm256_fmadd_ps(x[7], tangent1, x[1]);
    const __m256 q = _mm256_fmsub_ps(x[1], tangent1, x[7]);
    const __m256 r = _mm256_fmadd_ps(x[5], tangent3, x[3]);
    const __m256 s = _mm256_fnmadd_ps(x[3], tangent3, x[5]);
    const __m256 e1 = plus(p, r);
    const __m256 e2 = plus(q, s);
    const __m256 e3 = less(q, s);
    const __m256 e4 = less(p, r);
    const __m256 g = _mm256_fmadd_ps(x[6], tangent2, x[2]);
    const __m256 h = _mm256_fmsub_ps(x[2], tangent2, x[6]);
    const __m256 a = plus(f0, g);
    const __m256 b = plus(f1, h);
    const __m256 c = less(f1, h);
    const __m256 d = less(f0, g);
    const __m256 u = plus(e4, e3);
    const __m256 v = less(e4, e3);
    x[0] = plus(a, e1);
    x[1] = _mm256_fmadd_ps(u, cosine, b);
    x[2] = _mm256_fmadd_ps(v, cosine, c);
    x[3] = plus(d, e2);
    x[4] = less(d, e2);
    x[5] = _mm256_fnmadd_ps(v, cosine, c);
    x[6] = _mm256_fnmadd_ps(u, cosine, b);
    x[7] = less(a, e1);
}

// Along the rows, whose inputs are scaled, the first of them within the fused steps; then down the columns.
inline void transform(__m256 x[8])
{
    transpose(x);  // vector k holds input k of all rows; the scale is symmetric
    const auto scale = [](size_t k) { return _mm256_loadu_ps(tab_scale[k].data()); };
    for (size_t k = 1; k < 8; ++k) x[k] = _mm256_mul_ps(x[k], scale(k));
    pass(_mm256_fmadd_ps(x[0], scale(0), x[4]), _mm256_fmsub_ps(x[0], scale(0), x[4]), x);
    transpose(x);
    pass(_mm256_add_ps(x[0], x[4]), _mm256_sub_ps(x[0], x[4]), x);
}

}  // namespace

void dct_8x8_inv_32f(const float* pSrc, float* pDst)
{
    __m256 rows[8];
    for (int r = 0; r < 8; ++r) rows[r] = _mm256_loadu_ps(pSrc + 8 * r);
    transform(rows);
    for (int r = 0; r < 8; ++r) _mm256_storeu_ps(pDst + 8 * r, rows[r]);
}

void dct_qnt_inv_8x8_ls(const int16_t* pSrc, uint16_t* pDst, int dstStep, const float* pQuantInvTable)
{
    constexpr int16_t iST = 4095;
    __m256 rows[8];
    for (int r = 0; r < 8; ++r) {
        const __m256 coefficients = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(loadU128(pSrc + 8 * r)));
        rows[r] = _mm256_mul_ps(coefficients, _mm256_loadu_ps(pQuantInvTable + 8 * r));
    }
    transform(rows);
    for (int r = 0; r < 8; ++r) {
        const __m256i v = _mm256_cvttps_epi32(_mm256_add_ps(rows[r], _mm256_set1_ps(fLS)));
        const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
        const __m128i clipped = _mm_min_epi16(_mm_max_epi16(words, _mm_setzero_si128()), _mm_set1_epi16(iST));
        storeU128(rowAt(pDst, dstStep, r), clipped);
    }
}

}  // namespace q3
