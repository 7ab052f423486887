#include "frame/vec.h"
#include "jpeg/samples/sampling_kernels.h"

namespace q3 {
namespace {

// Sums of horizontal pairs of 32 samples, 16 bits each.
inline __m256i pairSums(const uint8_t* p) { return _mm256_maddubs_epi16(loadU(p), _mm256_set1_epi8(1)); }

// (x + bias) >> shift of 16 sums, the bias being half the divisor or one less, Even and Odd by lane: a rounded product
// with 2^(15 - shift), or one less. It is exact for sums up to that factor.
template <int Even, int Odd, int Shift>
inline __m256i mean(__m256i sums)
{
    constexpr int half = 1 << (Shift - 1);
    static_assert(Even <= half && Even >= half - 1 && Odd <= half && Odd >= half - 1);
    constexpr int factor = 1 << (15 - Shift);
    return _mm256_mulhrs_epi16(sums, _mm256_set1_epi32((factor - half + Even) | (factor - half + Odd) << 16));
}

// One row: dst(j) = (s(2j) + s(2j + 1) + bias(j)) >> 1, bias(j) = Even for even j, Odd for odd j.
template <int Even, int Odd>
struct OneRow {
    const uint8_t* src;

    __m256i means(int j) const { return mean<Even, Odd, 1>(pairSums(src + 2 * int64_t{j})); }
    int mean1(int j) const
    {
        const uint8_t* const s = src + 2 * int64_t{j};
        return (s[0] + s[1] + (j % 2 == 0 ? Even : Odd)) >> 1;
    }
};

// Two rows: dst(j) = (a(2j) + a(2j + 1) + b(2j) + b(2j + 1) + bias(j)) >> 2.
template <int Even, int Odd>
struct TwoRows {
    const uint8_t* a;
    const uint8_t* b;

    __m256i means(int j) const
    {
        const __m256i pairsA = pairSums(a + 2 * int64_t{j});
        const __m256i pairsB = pairSums(b + 2 * int64_t{j});
        if constexpr (Even == 3 && Odd == 3)  // rounded up: halved twice, rounding up each time
            return _mm256_avg_epu16(_mm256_avg_epu16(pairsA, pairsB), _mm256_setzero_si256());
        else
            return mean<Even, Odd, 2>(_mm256_add_epi16(pairsA, pairsB));
    }
    int mean1(int j) const
    {
        const int64_t at = 2 * int64_t{j};
        return (a[at] + a[at + 1] + b[at] + b[at + 1] + (j % 2 == 0 ? Even : Odd)) >> 2;
    }
};

// `count` results. Every vector begins at an even j, so that each lane keeps its bias.
template <typename Rows>
inline void sampleDown(const Rows rows, uint8_t* pDst, int count)
{
    const auto store32 = [&](int j) {
        const __m256i packed = _mm256_packus_epi16(rows.means(j), rows.means(j + 16));  // 0-7, 16-23 | 8-15, 24-31
        storeU(pDst + j, _mm256_permute4x64_epi64(packed, 0xD8));
    };
    int j = 0;
    for (const int whole = count & ~63; j < whole; j += 64) {
        store32(j);
        store32(j + 32);
    }
    if ((count & 32) != 0) {
        store32(j);
        j += 32;
    }
    if ((count & 16) != 0) {
        const __m256i m = rows.means(j);
        storeU128(pDst + j, _mm_packus_epi16(_mm256_castsi256_si128(m), _mm256_extracti128_si256(m, 1)));
        j += 16;
    }
    for (; j < count; ++j) pDst[j] = static_cast<uint8_t>(rows.mean1(j));
}

}  // namespace

void ownjc_SampleDownH2V1_JPEG_8u_C1(const uint8_t* pSrc, uint8_t* pDst, int width)
{
    sampleDown(OneRow<1, 1>{pSrc}, pDst, width);
}

void ownjc_SampleDownH2V2_JPEG_8u_C1(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int width)
{
    sampleDown(TwoRows<3, 3>{pSrc, pSrc + srcStep}, pDst, width);
}

// Below 16 samples the biases 0, 1 alternate from the end of the row, else from its beginning. From 16 samples on the
// row is counted short where the destination lies so close before its next 16-byte boundary, k results away, that
// srcWidth <= 2k: only (srcWidth - k) / 2 results are due then. Both are part of the contract.
void ownjc_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst)
{
    const int count = srcWidth / 2;
    if (srcWidth < 16) {
        if (count % 2 == 0)
            sampleDown(OneRow<1, 0>{pSrc}, pDst, count);
        else
            sampleDown(OneRow<0, 1>{pSrc}, pDst, count);
        return;
    }
    const int k = static_cast<int>(-reinterpret_cast<uintptr_t>(pDst) & 15);
    sampleDown(OneRow<0, 1>{pSrc}, pDst, srcWidth <= 2 * k ? (srcWidth - k) / 2 : count);
}

void ownjc_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth, uint8_t* pDst)
{
    sampleDown(TwoRows<1, 2>{pSrc1, pSrc2}, pDst, srcWidth / 2);
}

}  // namespace q3
