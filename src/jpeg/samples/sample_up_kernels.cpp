#include "frame/vec.h"
#include "jpeg/samples/sampling_kernels.h"

namespace q3 {
namespace {

// 32 values of 16 bits, in the order that unpacking bytes within 128-bit lanes gives: 0-7, 16-23 | 8-15, 24-31.
struct Wide {
    __m256i lo, hi;
};

// x * WeightX + y * WeightY, for 32 samples of each.
template <int WeightX, int WeightY>
inline Wide weigh(const uint8_t* x, const uint8_t* y)
{
    const __m256i weights = _mm256_set1_epi16(WeightX | WeightY << 8);
    const __m256i vx = loadU(x);
    const __m256i vy = loadU(y);
    return {_mm256_maddubs_epi16(_mm256_unpacklo_epi8(vx, vy), weights),
            _mm256_maddubs_epi16(_mm256_unpackhi_epi8(vx, vy), weights)};
}

// (x + half the divisor) >> shift, a rounded product with the factor 2^(15 - shift). One less in the factor is one less
// in the rounding, as long as x does not exceed it.
template <int Factor>
inline Wide scale(Wide x)
{
    const __m256i factor = _mm256_set1_epi16(Factor);
    return {_mm256_mulhrs_epi16(x.lo, factor), _mm256_mulhrs_epi16(x.hi, factor)};
}

inline Wide add(Wide x, Wide y) { return {_mm256_add_epi16(x.lo, y.lo), _mm256_add_epi16(x.hi, y.hi)}; }

// Stores even(0), odd(0), even(1), ...: 64 bytes.
inline void storeInterleaved(uint8_t* pDst, Wide even, Wide odd)
{
    const __m256i lo = _mm256_or_si256(even.lo, _mm256_slli_epi16(odd.lo, 8));
    const __m256i hi = _mm256_or_si256(even.hi, _mm256_slli_epi16(odd.hi, 8));
    storeU(pDst, _mm256_permute2x128_si256(lo, hi, 0x20));
    storeU(pDst + 32, _mm256_permute2x128_si256(lo, hi, 0x31));
}

// One row: even(i) = (3 s(i) + s(i - 1) + 1) >> 2, odd(i) = (3 s(i) + s(i + 1) + 2) >> 2.
struct OneRow {
    const uint8_t* s;

    uint8_t even(int i) const { return static_cast<uint8_t>((3 * s[i] + s[i - 1] + 1) >> 2); }
    uint8_t odd(int i) const { return static_cast<uint8_t>((3 * s[i] + s[i + 1] + 2) >> 2); }
    uint8_t first() const { return s[0]; }
    uint8_t last(int i) const { return s[i]; }
    void store32(int i, uint8_t* pDst) const
    {
        storeInterleaved(pDst, scale<8191>(weigh<3, 1>(s + i, s + i - 1)), scale<8192>(weigh<3, 1>(s + i, s + i + 1)));
    }
};

// Two rows, t(i) = 3 a(i) + b(i): even(i) = (3 t(i) + t(i - 1) + 8) >> 4, odd(i) = (3 t(i) + t(i + 1) + 7) >> 4. At an
// end of the row t stands in for its missing neighbour.
struct TwoRows {
    const uint8_t* a;
    const uint8_t* b;

    int t(int i) const { return 3 * a[i] + b[i]; }
    Wide t32(int i) const { return weigh<3, 1>(a + i, b + i); }
    Wide threeT32(int i) const { return weigh<9, 3>(a + i, b + i); }

    uint8_t even(int i) const { return static_cast<uint8_t>((3 * t(i) + t(i - 1) + 8) >> 4); }
    uint8_t odd(int i) const { return static_cast<uint8_t>((3 * t(i) + t(i + 1) + 7) >> 4); }
    uint8_t first() const { return static_cast<uint8_t>((4 * t(0) + 8) >> 4); }
    uint8_t last(int i) const { return static_cast<uint8_t>((4 * t(i) + 7) >> 4); }
    void store32(int i, uint8_t* pDst) const
    {
        const Wide centre = threeT32(i);
        const Wide lessOne = {_mm256_sub_epi16(centre.lo, _mm256_set1_epi16(1)),
                              _mm256_sub_epi16(centre.hi, _mm256_set1_epi16(1))};
        storeInterleaved(pDst, scale<2048>(add(centre, t32(i - 1))), scale<2048>(add(lessOne, t32(i + 1))));
    }
};

// Results 2 * begin to 2 * end - 1, from the samples begin - 1 to end.
template <typename Rows>
inline void sampleUpPairs(const Rows rows, uint8_t* pDst, int begin, int end)
{
    int i = begin;
    for (; i <= end - 32; i += 32) rows.store32(i, pDst + 2 * int64_t{i});
    if (i < end && end - begin >= 32) {  // a last vector that overlaps the one before
        i = end - 32;
        rows.store32(i, pDst + 2 * int64_t{i});
        return;
    }
    for (; i < end; ++i) {
        pDst[2 * int64_t{i}] = rows.even(i);
        pDst[2 * int64_t{i} + 1] = rows.odd(i);
    }
}

// `width` results with no rule for the ends: samples -1 to width / 2 are read.
template <typename Rows>
inline void sampleUpPlaneRow(const Rows rows, uint8_t* pDst, int width)
{
    sampleUpPairs(rows, pDst, 0, width / 2);
    if (width % 2 != 0)
        pDst[width - 1] = rows.even(width / 2);
}

// 2 * srcWidth results from srcWidth samples.
template <typename Rows>
inline void sampleUpClosedRow(const Rows rows, uint8_t* pDst, int srcWidth)
{
    const int last = srcWidth - 1;
    pDst[0] = rows.first();
    if (last > 0) {
        pDst[1] = rows.odd(0);
        sampleUpPairs(rows, pDst, 1, last);
        pDst[2 * int64_t{last}] = rows.even(last);
    }
    pDst[2 * int64_t{last} + 1] = rows.last(last);
}

}  // namespace

void ownjc_SampleUpH2V1_JPEG_8u_C1(const uint8_t* pSrc, uint8_t* pDst, int width)
{
    sampleUpPlaneRow(OneRow{pSrc}, pDst, width);
}

void ownjc_SampleUpH2V2_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, uint8_t* pDst, int width)
{
    sampleUpPlaneRow(TwoRows{pSrc1, pSrc2}, pDst, width);
}

void ownjc_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst)
{
    sampleUpClosedRow(OneRow{pSrc}, pDst, srcWidth);
}

void ownjc_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth, uint8_t* pDst)
{
    sampleUpClosedRow(TwoRows{pSrc1, pSrc2}, pDst, srcWidth);
}

}  // namespace q3
