#include "jpeg/samples/colour_scalar.h"
#include "jpeg/samples/colour_subsampled_kernels.h"

namespace q3 {
namespace {

// Sixteen words doubled to those of 32 columns, in the order of widen()
inline Words twice(__m256i x) { return {_mm256_unpacklo_epi16(x, x), _mm256_unpackhi_epi16(x, x)}; }

// What chroma adds to 16 * Y, for 32 columns
struct Offsets {
    Words r, g, b;
};

// From 16 chroma words each, 0 to 255
inline Offsets offsets(__m256i cb, __m256i cr)
{
    const __m256i u = _mm256_slli_epi16(cb, 7);
    const __m256i v = _mm256_slli_epi16(cr, 7);
    const auto high = [](__m256i a, int16_t k) { return _mm256_mulhi_epi16(a, _mm256_set1_epi16(k)); };
    const __m256i r = _mm256_add_epi16(high(v, 11485), _mm256_set1_epi16(8 - 2871));
    const __m256i b = _mm256_add_epi16(high(u, 14516), _mm256_set1_epi16(8 - 3629));
    const __m256i g = _mm256_sub_epi16(_mm256_set1_epi16(8 + 2167), _mm256_add_epi16(high(u, 2819), high(v, 5850)));
    return {twice(r), twice(g), twice(b)};
}

inline Rgb apply(__m256i luma, const Offsets& off)
{
    const Words y = widen(luma);
    const __m256i yLo = _mm256_slli_epi16(y.lo, 4);
    const __m256i yHi = _mm256_slli_epi16(y.hi, 4);
    const auto channel = [&](Words o) {
        return packClipped(
            {_mm256_srai_epi16(_mm256_add_epi16(yLo, o.lo), 4), _mm256_srai_epi16(_mm256_add_epi16(yHi, o.hi), 4)});
    };
    return {channel(off.r), channel(off.g), channel(off.b)};
}

inline Offsets offsets(ChromaSource chroma)
{
    return offsets(_mm256_cvtepu8_epi16(loadU128(chroma[0])), _mm256_cvtepu8_epi16(loadU128(chroma[1])));
}

}  // namespace

template <Order order, int Rows>
void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3(Source<Rows> y, ChromaSource chroma, Destination<Rows, 3> dst, int width)
{
    forEachBlock(
        width,
        [](Source<Rows> luma, ChromaSource c, Destination<Rows, 3> d) {
            const Offsets off = offsets(c);
            for (int row = 0; row < Rows; ++row) storeC3<order>(d[row], apply(loadU(luma[row]), off));
        },
        y, chroma, dst);
}

template <Order order, int Rows>
void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4(Source<Rows> y, ChromaSource chroma, Destination<Rows, 4> dst, int width,
                                             uint8_t aval)
{
    forEachBlock(
        width,
        [aval](Source<Rows> luma, ChromaSource c, Destination<Rows, 4> d) {
            const Offsets off = offsets(c);
            const __m256i fourth = _mm256_set1_epi8(static_cast<int8_t>(aval));
            for (int row = 0; row < Rows; ++row) storeC4<order>(d[row], apply(loadU(luma[row]), off), fourth);
        },
        y, chroma, dst);
}

void ownjc_YCbCr422ToRGB_JPEG_8u_C2C3(const uint8_t* pSrc, uint8_t* pDst, int width)
{
    const Source<1, 2> src{{pSrc}};
    const Destination<1, 3> dst{{pDst}};
    const int split = width & ~7;
    forEachBlock(
        split,
        [](Source<1, 2> s, Destination<1, 3> d) {
            const __m256i a = loadLanes(s[0], s[0] + 32);  // columns 0-7 | 16-23
            const __m256i b = loadLanes(s[0] + 16, s[0] + 48);
            const __m256i lowByte = _mm256_set1_epi16(0xFF);
            const __m256i luma = packClipped({_mm256_and_si256(a, lowByte), _mm256_and_si256(b, lowByte)});
            const __m256i chroma = packClipped({_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8)});
            const Offsets off = offsets(_mm256_and_si256(chroma, lowByte), _mm256_srli_epi16(chroma, 8));
            storeC3<Order::RGB>(d[0], apply(luma, off));
        },
        src, dst);
    for (int x = split; x <= width - 2; x += 2) {
        const uint8_t* const pair = src.at(x)[0];
        for (int i = 0; i < 2; ++i) {
            const Pixel p = rgbByRoundedProducts(pair[2 * i], pair[1], pair[3]);
            uint8_t* const pixel = dst.at(x + i)[0];
            pixel[0] = p.r;
            pixel[1] = p.g;
            pixel[2] = p.b;
        }
    }
}

template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3<Order::RGB, 1>(Source<1>, ChromaSource, Destination<1, 3>, int);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3<Order::BGR, 1>(Source<1>, ChromaSource, Destination<1, 3>, int);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3<Order::RGB, 2>(Source<2>, ChromaSource, Destination<2, 3>, int);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3<Order::BGR, 2>(Source<2>, ChromaSource, Destination<2, 3>, int);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4<Order::RGB, 1>(Source<1>, ChromaSource, Destination<1, 4>, int,
                                                                     uint8_t);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4<Order::BGR, 1>(Source<1>, ChromaSource, Destination<1, 4>, int,
                                                                     uint8_t);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4<Order::RGB, 2>(Source<2>, ChromaSource, Destination<2, 4>, int,
                                                                     uint8_t);
template void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4<Order::BGR, 2>(Source<2>, ChromaSource, Destination<2, 4>, int,
                                                                     uint8_t);

}  // namespace q3
