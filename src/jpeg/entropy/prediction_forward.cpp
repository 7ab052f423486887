#include "frame/vec.h"
#include "jpeg/entropy/prediction_halves.h"
#include "jpeg/entropy/prediction_kernels.h"

namespace q3 {
namespace {

constexpr int lanes = 16;
constexpr int vectorBytes = 32;

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

// Of columns x to x + 15.
template <int Predictor>
inline __m256i difference(const int16_t* pSrc, const int16_t* pPrevRow, int x)
{
    return _mm256_sub_epi16(loadU(pSrc + x),
                            predict<Predictor>(loadU(pSrc + x - 1), loadU(pPrevRow + x), loadU(pPrevRow + x - 1)));
}

// Predictors 4 to 6 need more of a column than its sample, and of its left neighbour only one term, which is the same
// for all columns. So each column's terms are made once:
//      4:  (x - b) - (a - c)
//      5:  (x' - a) - average(b', ~c')     with x' = x + 0x8000, see prediction_halves.h
//      6:  (x' - b) - average(a', ~c')
struct ColumnTerms {
    __m256i own, ofNeighbour;
};
template <int Predictor>
inline ColumnTerms columnTerms(const int16_t* pSrc, const int16_t* pPrevRow, int x)
{
    const __m256i sample = loadU(pSrc + x);
    const __m256i b = loadU(pPrevRow + x);
    if constexpr (Predictor == 4) {
        const __m256i difference = _mm256_sub_epi16(sample, b);
        return {difference, difference};
    }
    if constexpr (Predictor == 5)
        return {_mm256_sub_epi16(biased(sample), loadU(pSrc + x - 1)), biased(b)};
    if constexpr (Predictor == 6)
        return {_mm256_sub_epi16(biased(sample), b), _mm256_avg_epu16(biased(sample), complementBiased(b))};
}
template <int Predictor>
inline __m256i difference(const ColumnTerms& terms, __m256i ofLeftNeighbour)
{
    if constexpr (Predictor == 5) {
        const __m256i complement = _mm256_xor_si256(ofLeftNeighbour, _mm256_set1_epi16(-1));
        return _mm256_sub_epi16(terms.own, _mm256_avg_epu16(terms.ofNeighbour, complement));
    }
    return _mm256_sub_epi16(terms.own, ofLeftNeighbour);
}

// The last lane of `left`, then all but the last of `right`.
inline __m256i shiftedByOne(__m256i left, __m256i right)
{
    return _mm256_alignr_epi8(right, _mm256_permute2x128_si256(left, right, 0x21), 14);
}

// Of the columns below `end`, in steps of sixteen going down, as long as there is a whole step to the left of them, and
// one more column. Returns where they begin.
template <int Predictor>
inline int differencesByTerms(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int end)
{
    int x = end - lanes;
    ColumnTerms right = columnTerms<Predictor>(pSrc, pPrevRow, x);
    for (; x > lanes; x -= lanes) {
        const ColumnTerms left = columnTerms<Predictor>(pSrc, pPrevRow, x - lanes);
        storeU(pDst + x, difference<Predictor>(right, shiftedByOne(left.ofNeighbour, right.ofNeighbour)));
        right = left;
    }
    return x + lanes;
}

// Columns 1 to width - 1. Stores are aligned but for the first and the last sixteen columns, and go from the right, so
// that a row in place still finds its left neighbours; for the same reason the ends are read first and stored last.
template <int Predictor>
void differences(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width)
{
    if (width <= lanes) {
        for (int i = width - 1; i >= 1; --i)
            pDst[i] = static_cast<int16_t>(pSrc[i] - predict<Predictor>(pSrc[i - 1], pPrevRow[i], pPrevRow[i - 1]));
        return;
    }
    const __m256i first = difference<Predictor>(pSrc, pPrevRow, 1);
    const __m256i last = difference<Predictor>(pSrc, pPrevRow, width - lanes);
    int x = width - static_cast<int>(reinterpret_cast<uintptr_t>(pDst + width) % vectorBytes / sizeof(int16_t));
    if constexpr (Predictor >= 4 && Predictor <= 6) {
        if (x > lanes)
            x = differencesByTerms<Predictor>(pSrc, pPrevRow, pDst, x);
    } else {
        for (; x > 2 * lanes; x -= 2 * lanes) {
            const __m256i right = difference<Predictor>(pSrc, pPrevRow, x - lanes);
            const __m256i left = difference<Predictor>(pSrc, pPrevRow, x - 2 * lanes);
            storeU(pDst + x - lanes, right);
            storeU(pDst + x - 2 * lanes, left);
        }
    }
    if (x > lanes)
        storeU(pDst + x - lanes, difference<Predictor>(pSrc, pPrevRow, x - lanes));
    storeU(pDst + 1, first);
    storeU(pDst + width - lanes, last);
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
