#include "frame/vec.h"
#include "jpeg/entropy/prediction_halves.h"
#include "jpeg/entropy/prediction_kernels.h"

namespace q3 {
namespace {

constexpr int lanes = 16;

// The prediction from the samples to the left (a), above (b), and above to the left (c).
template <int Predictor>
inline __m256i predict(__m256i a, __m256i b, __m256i c)
{
    if constexpr (Predictor == 1)
        return a;
    if constexpr (Predictor == 2)
        return b;
    if constexpr (Predictor == 3)
        return c;
    if constexpr (Predictor == 4)
        return _mm256_add_epi16(a, _mm256_sub_epi16(b, c));
    if constexpr (Predictor == 5)
        return _mm256_add_epi16(a, halfDifference(b, c));
    if constexpr (Predictor == 6)
        return _mm256_add_epi16(b, halfDifference(a, c));
    if constexpr (Predictor == 7)
        return halfSum(a, b);
}

template <int Predictor>
inline int predict(int a, int b, int c)
{
    if constexpr (Predictor == 1)
        return a;
    if constexpr (Predictor == 2)
        return b;
    if constexpr (Predictor == 3)
        return c;
    if constexpr (Predictor == 4)
        return a + b - c;
    if constexpr (Predictor == 5)
        return a + ((b - c) >> 1);
    if constexpr (Predictor == 6)
        return b + ((a - c) >> 1);
    if constexpr (Predictor == 7)
        return (a + b) >> 1;
}

// Columns width - 1 down to 1: from the right, so that a row in place still finds its left neighbours.
template <int Predictor>
void differences(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width)
{
    int i = width;
    for (; i - lanes >= 1; i -= lanes) {
        const int x = i - lanes;
        const __m256i prediction =
            predict<Predictor>(loadU(pSrc + x - 1), loadU(pPrevRow + x), loadU(pPrevRow + x - 1));
        storeU(pDst + x, _mm256_sub_epi16(loadU(pSrc + x), prediction));
    }
    while (--i >= 1)
        pDst[i] = static_cast<int16_t>(pSrc[i] - predict<Predictor>(pSrc[i - 1], pPrevRow[i], pPrevRow[i - 1]));
}

}  // namespace

void ownjc_DiffPredFirstRow(const int16_t* pSrc, int16_t* pDst, int width, int16_t reference)
{
    differences<1>(pSrc, pSrc, pDst, width);  // predictor 1 does not look at the row above
    pDst[0] = static_cast<int16_t>(pSrc[0] - reference);
}

void ownjc_DiffPredRow(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width, int predictor)
{
    switch (predictor) {
        case 1:
            differences<1>(pSrc, pPrevRow, pDst, width);
            break;
        case 2:
            differences<2>(pSrc, pPrevRow, pDst, width);
            break;
        case 3:
            differences<3>(pSrc, pPrevRow, pDst, width);
            break;
        case 4:
            differences<4>(pSrc, pPrevRow, pDst, width);
            break;
        case 5:
            differences<5>(pSrc, pPrevRow, pDst, width);
            break;
        case 6:
            differences<6>(pSrc, pPrevRow, pDst, width);
            break;
        default:
            differences<7>(pSrc, pPrevRow, pDst, width);
            break;
    }
    pDst[0] = static_cast<int16_t>(pSrc[0] - pPrevRow[0]);
}

}  // namespace q3
