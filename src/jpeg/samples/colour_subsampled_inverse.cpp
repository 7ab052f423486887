#include "jpeg/samples/colour_scalar.h"
#include "jpeg/samples/colour_subsampled_kernels.h"

namespace q3 {
namespace {

constexpr ByteShuffle twiceEachWord = {0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14};

// What chroma adds to luma, for each of 32 columns: a byte to add and one to subtract, the other being 0. The sums of
// the form, (16 Y + offset) >> 4, are Y + (offset >> 4).
struct ByteOffset {
    __m256i plus, minus;

    explicit ByteOffset(__m256i words)  // sixteen, each for two columns
    {
        const __m256i positive = _mm256_max_epi16(words, _mm256_setzero_si256());
        plus = shuffle(positive, twiceEachWord);
        minus = shuffle(_mm256_sub_epi16(positive, words), twiceEachWord);
    }
    __m256i applyTo(__m256i luma) const { return _mm256_subs_epu8(_mm256_adds_epu8(luma, plus), minus); }
};
struct Offsets {
    ByteOffset r, g, b;

    Rgb applyTo(__m256i luma) const { return {r.applyTo(luma), g.applyTo(luma), b.applyTo(luma)}; }
};

// Sixteen words each of u = Cb << 8 and v = Cr << 8. Red and blue are computed in twice the scale of the form, which
// takes chroma << 7; so is green's second product, whose factor is halved for it.
inline Offsets offsets(__m256i u, __m256i v)
{
    const auto high = [](__m256i a, int16_t k) { return _mm256_mulhi_epu16(a, _mm256_set1_epi16(k)); };
    const __m256i r = _mm256_add_epi16(high(v, 11485), _mm256_set1_epi16(2 * (8 - 2871)));
    const __m256i b = _mm256_add_epi16(high(u, 14516), _mm256_set1_epi16(2 * (8 - 3629)));
    const __m256i products = _mm256_add_epi16(high(_mm256_srli_epi16(u, 1), 2819), high(v, 5850 / 2));
    const __m256i g = _mm256_sub_epi16(_mm256_set1_epi16(8 + 2167), products);
    return {ByteOffset(_mm256_srai_epi16(r, 5)), ByteOffset(_mm256_srai_epi16(g, 4)),
            ByteOffset(_mm256_srai_epi16(b, 5))};
}

// 16 bytes as the high bytes of words
inline __m256i highBytes(const uint8_t* p)
{
    const __m256i places = _mm256_setr_epi8(-1, 0, -1, 1, -1, 2, -1, 3, -1, 4, -1, 5, -1, 6, -1, 7,  //
                                            -1, 8, -1, 9, -1, 10, -1, 11, -1, 12, -1, 13, -1, 14, -1, 15);
    return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(loadU128(p)), places);
}
inline Offsets offsets(ChromaSource chroma) { return offsets(highBytes(chroma[0]), highBytes(chroma[1])); }

// 32 columns of Y, Cb, Y, Cr
struct Stream {
    __m256i luma, u, v;

    explicit Stream(const uint8_t* p)
    {
        constexpr ByteShuffle lumaFirst = {0, 2, 4, 6, 8, 10, 12, 14, 1, 5, 9, 13, 3, 7, 11, 15};
        constexpr ByteShuffle highCb = {-1, 0, -1, 1, -1, 2, -1, 3, -1, 8, -1, 9, -1, 10, -1, 11};
        constexpr ByteShuffle highCr = {-1, 4, -1, 5, -1, 6, -1, 7, -1, 12, -1, 13, -1, 14, -1, 15};
        const __m256i a = shuffle(loadLanes(p, p + 32), lumaFirst);  // columns 0-7 | 16-23
        const __m256i b = shuffle(loadLanes(p + 16, p + 48), lumaFirst);
        const __m256i chroma = _mm256_unpackhi_epi64(a, b);
        luma = _mm256_unpacklo_epi64(a, b);
        u = shuffle(chroma, highCb);
        v = shuffle(chroma, highCr);
    }
};

}  // namespace

template <Order order, int Rows>
void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3(Source<Rows> y, ChromaSource chroma, Destination<Rows, 3> dst, int width)
{
    forEachBlock(
        width,
        [](Source<Rows> luma, ChromaSource c, Destination<Rows, 3> d) {
            const Offsets off = offsets(c);
            for (int row = 0; row < Rows; ++row) storeC3<order>(d[row], off.applyTo(loadU(luma[row])));
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
            for (int row = 0; row < Rows; ++row) storeC4<order>(d[row], off.applyTo(loadU(luma[row])), fourth);
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
            const Stream x(s[0]);
            storeC3<Order::RGB>(d[0], offsets(x.u, x.v).applyTo(x.luma));
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
