#include <algorithm>

#include "frame/vec.h"
#include "jpeg/entropy/prediction_halves.h"
#include "jpeg/entropy/prediction_kernels.h"

namespace q3 {
namespace {

constexpr int lanes = 16;

// The part of the prediction that does not hang on the sample to the left.
template <int Predictor>
inline __m256i offset(__m256i b, __m256i c)
{
    if constexpr (Predictor == 2)
        return b;
    if constexpr (Predictor == 3)
        return c;
    if constexpr (Predictor == 4)
        return _mm256_sub_epi16(b, c);
    if constexpr (Predictor == 5)
        return halfDifference(b, c);
}

template <int Predictor>
inline int offset(int b, int c)
{
    if constexpr (Predictor == 2)
        return b;
    if constexpr (Predictor == 3)
        return c;
    if constexpr (Predictor == 4)
        return b - c;
    if constexpr (Predictor == 5)
        return (b - c) >> 1;
}

// Columns 1 to width - 1 of predictors 2 and 3: d + offset.
template <int Predictor>
void addOffsets(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width)
{
    int i = 1;
    for (; i <= width - lanes; i += lanes) {
        const __m256i o = offset<Predictor>(loadU(pPrevRow + i), loadU(pPrevRow + i - 1));
        storeU(pDst + i, _mm256_add_epi16(loadU(pSrc + i), o));
    }
    for (; i < width; ++i) pDst[i] = static_cast<int16_t>(pSrc[i] + offset<Predictor>(pPrevRow[i], pPrevRow[i - 1]));
}

// Lane k becomes the sum of lanes 0 to k.
inline __m256i prefixSums(__m256i x)
{
    x = _mm256_add_epi16(x, _mm256_slli_si256(x, 2));
    x = _mm256_add_epi16(x, _mm256_slli_si256(x, 4));
    x = _mm256_add_epi16(x, _mm256_slli_si256(x, 8));
    const __m256i lastWord = _mm256_set1_epi16(0x0F0E);
    const __m256i lowHalf = _mm256_permute2x128_si256(x, x, 0x08);  // zero below, the low half above
    return _mm256_add_epi16(x, _mm256_shuffle_epi8(lowHalf, lastWord));
}

// Columns 1 to width - 1 of predictors 1, 4 and 5, where x(i) = x(i - 1) + d(i) + offset(i): running sums.
template <int Predictor>
void sumOffsets(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width)
{
    int i = 1;
    __m256i carry = _mm256_set1_epi16(pDst[0]);
    const __m256i lastWord = _mm256_set1_epi16(0x0F0E);
    for (; i <= width - lanes; i += lanes) {
        __m256i step = loadU(pSrc + i);
        if constexpr (Predictor != 1)
            step = _mm256_add_epi16(step, offset<Predictor>(loadU(pPrevRow + i), loadU(pPrevRow + i - 1)));
        const __m256i sums = prefixSums(step);
        storeU(pDst + i, _mm256_add_epi16(carry, sums));
        // The carry's own chain is one addition: the total of this step does not wait for it.
        carry = _mm256_add_epi16(carry, _mm256_shuffle_epi8(_mm256_permute4x64_epi64(sums, 0xFF), lastWord));
    }
    for (; i < width; ++i) {
        int o = 0;
        if constexpr (Predictor != 1)
            o = offset<Predictor>(pPrevRow[i], pPrevRow[i - 1]);
        pDst[i] = static_cast<int16_t>(pDst[i - 1] + pSrc[i] + o);
    }
}

// Predictors 6 and 7 halve a sum with the sample to the left:
//      x(i) = e(i) + ((x(i - 1) + g(i)) >> 1)      6: e = d + b, g = -c      7: e = d, g = b
// As a halving of a halving is a division by 4, rounding down as well, eight columns hang on the one before them alone:
//      x(k) = e(k) + ((x(0) + s(k)) >> k)          s(k) = g(1) + the sum of (e(j - 1) + g(j)) << (j - 1), j = 2 to k
// That holds as long as no sample leaves its 16 bits. Where one does, the samples follow one by one: lane 0 of a vector
// holds the one to the left in the form that the average instruction takes, and each costs one average and one
// addition, two cycles:
//      6:  x' = x + 0x8000:      x'(i) = average(x'(i - 1), ~c') + (d + b)
//      7:  z = ~(x + 0x8000):    z(i) = average(z(i - 1), ~b') - d
struct Predictor6 {
    static __m256i e(__m256i d, __m256i b) { return _mm256_add_epi32(d, b); }
    static __m256i withG(__m256i x, const int16_t* pPrevRow, __m256i)
    {
        return _mm256_sub_epi32(x, _mm256_cvtepi16_epi32(loadU128(pPrevRow - 1)));
    }
    static constexpr int16_t form = -0x8000;  // x ^ form is x in the form of the chain
    static __m128i next(__m128i left, __m128i d, __m128i b, __m128i c)
    {
        const __m128i complement = _mm_xor_si128(c, _mm_set1_epi16(0x7FFF));
        return _mm_add_epi16(_mm_avg_epu16(left, complement), _mm_add_epi16(d, b));
    }
    static int next(int left, int d, int b, int c) { return d + b + ((left - c) >> 1); }
};
struct Predictor7 {
    static __m256i e(__m256i d, __m256i) { return d; }
    static __m256i withG(__m256i x, const int16_t*, __m256i b) { return _mm256_add_epi32(x, b); }
    static constexpr int16_t form = 0x7FFF;
    static __m128i next(__m128i left, __m128i d, __m128i b, __m128i)
    {
        const __m128i complement = _mm_xor_si128(b, _mm_set1_epi16(0x7FFF));
        return _mm_sub_epi16(_mm_avg_epu16(left, complement), d);
    }
    static int next(int left, int d, int b, int) { return d + ((left + b) >> 1); }
};

constexpr int group = 8;

// Lane k becomes the sum of lanes 0 to k.
inline __m256i prefixSums32(__m256i x)
{
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 4));
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 8));
    const __m256i lowHalf = _mm256_permute2x128_si256(x, x, 0x08);  // zero below, the low half above
    return _mm256_add_epi32(x, _mm256_shuffle_epi32(lowHalf, 0xFF));
}

// Groups from column i on, up to the first that has a sample beyond 16 bits. Returns its column.
template <typename Predictor>
int halveGroups(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int i, int width)
{
    const __m256i place = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    const __m256i halvings = _mm256_add_epi32(place, _mm256_set1_epi32(1));
    const __m256i lastLane = _mm256_set1_epi32(7);
    __m256i left = _mm256_set1_epi32(pDst[i - 1]);
    for (; i + group <= width; i += group) {
        const __m256i b = _mm256_cvtepi16_epi32(loadU128(pPrevRow + i));
        const __m256i e = Predictor::e(_mm256_cvtepi16_epi32(loadU128(pSrc + i)), b);
        const __m256i eBefore = _mm256_alignr_epi8(e, _mm256_permute2x128_si256(e, e, 0x08), 12);
        const __m256i s = prefixSums32(_mm256_sllv_epi32(Predictor::withG(eBefore, pPrevRow + i, b), place));
        const __m256i x = _mm256_add_epi32(e, _mm256_srav_epi32(_mm256_add_epi32(left, s), halvings));
        const __m256i beyond = _mm256_add_epi32(x, _mm256_set1_epi32(0x8000));
        if (!_mm256_testz_si256(beyond, _mm256_set1_epi32(-0x10000)))
            break;
        storeU128(pDst + i, _mm_packs_epi32(_mm256_castsi256_si128(x), _mm256_extracti128_si256(x, 1)));
        left = _mm256_permutevar8x32_epi32(x, lastLane);
    }
    return i;
}

// Groups from column i to `end`, one sample after the other. Returns the next column; fewer than two groups are left if
// it is not `end`.
template <typename Predictor>
int chainGroups(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int i, int end, int width)
{
    const __m128i form = _mm_set1_epi16(Predictor::form);
    __m128i left = _mm_xor_si128(_mm_set1_epi16(pDst[i - 1]), form);
    for (; i < end && i + 2 * group <= width; i += group) {  // the loads reach past their one sample by seven
        __m128i results = form;
#pragma GCC unroll 8
        for (int k = i; k < i + group; ++k) {
            left = Predictor::next(left, loadU128(pSrc + k), loadU128(pPrevRow + k), loadU128(pPrevRow + k - 1));
            results = _mm_alignr_epi8(left, results, 2);
        }
        storeU128(pDst + i, _mm_xor_si128(results, form));
    }
    return i;
}

// Where a sample wraps more of them will: the columns that go one by one then, twice as many every time.
constexpr int firstChain = 1024;
constexpr int longestChain = 1 << 20;

template <typename Predictor>
void halve(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width)
{
    int length = firstChain;
    int i = 1;
    while (i + 2 * group <= width) {
        i = halveGroups<Predictor>(pSrc, pPrevRow, pDst, i, width);
        i = chainGroups<Predictor>(pSrc, pPrevRow, pDst, i, i + std::min(length, width - i), width);
        length = std::min(2 * length, longestChain);
    }
    for (; i < width; ++i)
        pDst[i] = static_cast<int16_t>(Predictor::next(pDst[i - 1], pSrc[i], pPrevRow[i], pPrevRow[i - 1]));
}

}  // namespace

void ownjc_ReconstructPredFirstRow(const int16_t* pSrc, int16_t* pDst, int width, int16_t reference)
{
    pDst[0] = static_cast<int16_t>(pSrc[0] + reference);
    sumOffsets<1>(pSrc, nullptr, pDst, width);
}

void ownjc_ReconstructPredRow(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width, int predictor)
{
    pDst[0] = static_cast<int16_t>(pSrc[0] + pPrevRow[0]);
    switch (predictor) {
        case 1:
            sumOffsets<1>(pSrc, pPrevRow, pDst, width);
            break;
        case 2:
            addOffsets<2>(pSrc, pPrevRow, pDst, width);
            break;
        case 3:
            addOffsets<3>(pSrc, pPrevRow, pDst, width);
            break;
        case 4:
            sumOffsets<4>(pSrc, pPrevRow, pDst, width);
            break;
        case 5:
            sumOffsets<5>(pSrc, pPrevRow, pDst, width);
            break;
        case 6:
            halve<Predictor6>(pSrc, pPrevRow, pDst, width);
            break;
        default:
            halve<Predictor7>(pSrc, pPrevRow, pDst, width);
            break;
    }
}

}  // namespace q3
