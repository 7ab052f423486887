// The forms of planar and CMYK sources: chroma from the differences to luma, and luma in single precision.
#include "jpeg/samples/colour_forward_kernels.h"
#include "jpeg/samples/colour_scalar.h"

namespace q3 {
namespace {

struct YCbCr {
    __m256i y, cb, cr;
};

// (19595 R + 38470 G + 7471 B + 32768) >> 16 of 16 pixels in 16-bit lanes. 38470 = 65536 - 27066: the whole part of
// green's factor is the pair itself with its low word cleared. 1 << 15 comes as 2 * 16384.
inline __m256i luma(__m256i r, __m256i g, __m256i b)
{
    const __m256i rgFactors = _mm256_set1_epi32(-27066 * 65536 + 19595);
    const __m256i bFactors = _mm256_set1_epi32(16384 * 65536 + 7471);
    const __m256i two = _mm256_set1_epi16(2);
    const auto sum = [&](__m256i rg, __m256i b2) {
        const __m256i wholeGreen = _mm256_andnot_si256(_mm256_set1_epi32(0xFFFF), rg);
        const __m256i products = _mm256_add_epi32(_mm256_madd_epi16(rg, rgFactors), _mm256_madd_epi16(b2, bFactors));
        return _mm256_srli_epi32(_mm256_add_epi32(products, wholeGreen), 16);
    };
    return _mm256_packus_epi32(sum(_mm256_unpacklo_epi16(r, g), _mm256_unpacklo_epi16(b, two)),
                               sum(_mm256_unpackhi_epi16(r, g), _mm256_unpackhi_epi16(b, two)));
}

// clip(128 + ((d * factor + 16384) >> 15)) of the differences d
inline __m256i chroma(Words x, Words y, int16_t factor)
{
    const __m256i f = _mm256_set1_epi16(factor);
    const __m256i lo = _mm256_mulhrs_epi16(_mm256_sub_epi16(x.lo, y.lo), f);
    const __m256i hi = _mm256_mulhrs_epi16(_mm256_sub_epi16(x.hi, y.hi), f);
    return _mm256_xor_si256(_mm256_packs_epi16(lo, hi), _mm256_set1_epi8(-128));
}

inline YCbCr convert(Rgb x)
{
    const Words r = widen(x.r);
    const Words g = widen(x.g);
    const Words b = widen(x.b);
    const Words y = {luma(r.lo, g.lo, b.lo), luma(r.hi, g.hi, b.hi)};
    return {packClipped(y), chroma(b, y, 18491), chroma(r, y, 23373)};
}

inline Rgb complement(Rgb x)
{
    const __m256i ones = _mm256_set1_epi8(-1);
    return {_mm256_xor_si256(x.r, ones), _mm256_xor_si256(x.g, ones), _mm256_xor_si256(x.b, ones)};
}

template <int Planes>
inline void store(Destination<Planes> dst, YCbCr x)
{
    storeU(dst[0], x.y);
    storeU(dst[1], x.cb);
    storeU(dst[2], x.cr);
}

template <int Planes>
inline void storePixel(Destination<Planes> dst, int x, Pixel p)
{
    dst[0][x] = lumaQ16(p.r, p.g, p.b);
    dst[1][x] = cbQ16(p.r, p.g, p.b);
    dst[2][x] = crQ16(p.r, p.g, p.b);
}

inline uint8_t complement(uint8_t x) { return static_cast<uint8_t>(255 - x); }
inline Pixel complementPixel(uint8_t c, uint8_t m, uint8_t y) { return {complement(c), complement(m), complement(y)}; }

// 8 pixels of luma in single precision, as 32-bit integers
inline __m256i lumaFloat(__m128i r, __m128i g, __m128i b)
{
    const auto product = [](__m128i bytes, float factor) {
        return _mm256_mul_ps(_mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes)), _mm256_set1_ps(factor));
    };
    const __m256 rg = _mm256_add_ps(product(r, 0.299F), product(g, 0.587F));
    return _mm256_cvtps_epi32(_mm256_add_ps(rg, product(b, 0.114F)));
}

}  // namespace

void ownjc_RGBToYCbCr_JPEG_8u_P3(Source<3> src, Destination<3> dst, int width)
{
    const int split = width & ~3;
    forEachBlock(
        split,
        [](Source<3> s, Destination<3> d) {
            store(d, convert({loadU(s[0]), loadU(s[1]), loadU(s[2])}));
        },
        src, dst);
    for (int x = split; x < width; ++x) storePixel(dst, x, {src[0][x], src[1][x], src[2][x]});
}

void ownjc_CMYKToYCCK_JPEG_8u_P4(Source<4> src, Destination<4> dst, int width)
{
    const int split = width & ~3;
    forEachBlock(
        split,
        [](Source<4> s, Destination<4> d) {
            const __m256i k = loadU(s[3]);
            store(d, convert(complement(Rgb{loadU(s[0]), loadU(s[1]), loadU(s[2])})));
            storeU(d[3], k);
        },
        src, dst);
    for (int x = split; x < width; ++x) {
        const uint8_t k = src[3][x];
        storePixel(dst, x, complementPixel(src[0][x], src[1][x], src[2][x]));
        dst[3][x] = k;
    }
}

void ownjc_CMYKToYCCK_JPEG_8u_C4P4(Source<1, 4> src, Destination<4> dst, int width)
{
    const int split = width & ~3;
    forEachBlock(
        split,
        [](Source<1, 4> s, Destination<4> d) {
            const Channels4 x = loadChannels4(s[0]);
            store(d, convert(complement(Rgb{x.c0, x.c1, x.c2})));
            storeU(d[3], x.c3);
        },
        src, dst);
    for (int x = split; x < width; ++x) {
        const uint8_t* const p = src.at(x)[0];
        storePixel(dst, x, complementPixel(p[0], p[1], p[2]));
        dst[3][x] = p[3];
    }
}

void ownjc_RGBToY_JPEG_8u_P3C1(Source<3> src, Destination<1> dst, int width)
{
    const int split = width & ~3;
    forEachBlock(
        split,
        [](Source<3> s, Destination<1> d) {
            const auto eight = [&](int x) {
                return lumaFloat(loadLow64(s[0] + x), loadLow64(s[1] + x), loadLow64(s[2] + x));
            };
            const __m256i words01 = _mm256_packs_epi32(eight(0), eight(8));  // 0-3, 8-11 | 4-7, 12-15
            const __m256i words23 = _mm256_packs_epi32(eight(16), eight(24));
            const __m256i bytes = _mm256_packus_epi16(words01, words23);
            storeU(d[0], _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
        },
        src, dst);
    for (int x = split; x < width; ++x) dst[0][x] = lumaQ16(src[0][x], src[1][x], src[2][x]);
}

}  // namespace q3
