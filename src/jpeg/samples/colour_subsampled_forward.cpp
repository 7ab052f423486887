#include "jpeg/samples/colour_scalar.h"
#include "jpeg/samples/colour_subsampled_kernels.h"

namespace q3 {
namespace {

inline __m256i high(__m256i a, int16_t k) { return _mm256_mulhi_epu16(a, _mm256_set1_epi16(k)); }

inline __m256i lumaWords(__m256i r, __m256i g, __m256i b)  // of samples shifted left by 8
{
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(high(r, 4899), high(g, 9617)), high(b, 1868));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(32)), 6);
}
inline __m256i luma(Rgb x)
{
    const __m256i zero = _mm256_setzero_si256();
    const auto lo = [&](__m256i bytes) { return _mm256_unpacklo_epi8(zero, bytes); };
    const auto hi = [&](__m256i bytes) { return _mm256_unpackhi_epi8(zero, bytes); };
    return packClipped({lumaWords(lo(x.r), lo(x.g), lo(x.b)), lumaWords(hi(x.r), hi(x.g), hi(x.b))});
}

// Sums over the groups of 32 columns, 16 words each
inline Rgb addSums(Rgb total, Rgb x)
{
    const auto add = [](__m256i t, __m256i bytes) {
        return _mm256_add_epi16(t, _mm256_maddubs_epi16(bytes, _mm256_set1_epi8(1)));
    };
    return {add(total.r, x.r), add(total.g, x.g), add(total.b, x.b)};
}

inline void store16(uint8_t* p, __m256i words)
{
    storeU128(p, _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1)));
}

// 4:2:2, in 16-bit high products of the sums shifted left by 6
inline void storeChroma422(ChromaDestination chroma, Rgb sum)
{
    const __m256i r = _mm256_slli_epi16(sum.r, 6);
    const __m256i g = _mm256_slli_epi16(sum.g, 6);
    const __m256i b = _mm256_slli_epi16(sum.b, 6);
    const auto difference = [](__m256i plus, __m256i minus) {
        const __m256i d = _mm256_add_epi16(_mm256_sub_epi16(plus, minus), _mm256_set1_epi16(4112));
        return _mm256_srli_epi16(d, 5);
    };
    store16(chroma[0], difference(high(b, 8192), _mm256_add_epi16(high(r, 2765), high(g, 5427))));
    store16(chroma[1], difference(high(r, 8192), _mm256_add_epi16(high(g, 6860), high(b, 1332))));
}

// 4:1:1, exact: (8192 plus - factor1 * minus1 - factor2 * minus2 + 514 * 16384) >> 16, the last term being 128.5 in
// this scale
inline __m256i exactChroma(__m256i plus, __m256i minus1, int factor1, __m256i minus2, int factor2)
{
    const __m256i plusFactors = _mm256_set1_epi32(16384 * 65536 + 8192);
    const __m256i minusFactors = _mm256_set1_epi32(-factor2 * 65536 + (-factor1 & 0xFFFF));
    const __m256i half = _mm256_set1_epi16(514);
    const auto sum = [&](__m256i p, __m256i m) {
        return _mm256_srai_epi32(
            _mm256_add_epi32(_mm256_madd_epi16(p, plusFactors), _mm256_madd_epi16(m, minusFactors)), 16);
    };
    return _mm256_packs_epi32(sum(_mm256_unpacklo_epi16(plus, half), _mm256_unpacklo_epi16(minus1, minus2)),
                              sum(_mm256_unpackhi_epi16(plus, half), _mm256_unpackhi_epi16(minus1, minus2)));
}
inline void storeChroma411(ChromaDestination chroma, Rgb sum)
{
    store16(chroma[0], exactChroma(sum.b, sum.g, 5427, sum.r, 2765));
    store16(chroma[1], exactChroma(sum.r, sum.g, 6860, sum.b, 1332));
}

template <Order order, int PixelBytes>
inline Rgb load(const uint8_t* p)
{
    if constexpr (PixelBytes == 3)
        return loadC3<order>(p);
    else
        return loadC4<order>(p);
}

// One group of columns x and x + 1 of the last columns of a row
template <Order order, int PixelBytes, int Rows>
inline void convertGroup(Source<Rows, PixelBytes> src, Destination<Rows> y, ChromaDestination chroma, int x)
{
    int r = 0;
    int g = 0;
    int b = 0;
    for (int row = 0; row < Rows; ++row)
        for (int i = 0; i < 2; ++i) {
            const uint8_t* const p = src.at(x + i)[row];
            const int red = p[redChannel<order>];
            const int green = p[1];
            const int blue = p[blueChannel<order>];
            y[row][x + i] = static_cast<uint8_t>((4899 * red + 9617 * green + 1868 * blue + 8192) >> 14);
            r += red;
            g += green;
            b += blue;
        }
    constexpr int shift = Rows == 1 ? 15 : 16;
    constexpr int offset = -255 << (shift - 1);  // -127.5 in this scale: the low byte is that of 128.5 less 256
    chroma[0][x / 2] = static_cast<uint8_t>((8192 * b - 5427 * g - 2765 * r + offset) >> shift);
    chroma[1][x / 2] = static_cast<uint8_t>((8192 * r - 1332 * b - 6860 * g + offset) >> shift);
}

}  // namespace

template <Order order, int PixelBytes, int Rows>
void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3(Source<Rows, PixelBytes> src, Destination<Rows> y,
                                             ChromaDestination chroma, int width)
{
    const int split = width & ~15;
    forEachBlock(
        split,
        [](Source<Rows, PixelBytes> s, Destination<Rows> luminance, ChromaDestination c) {
            Rgb sum = {_mm256_setzero_si256(), _mm256_setzero_si256(), _mm256_setzero_si256()};
            for (int row = 0; row < Rows; ++row) {
                const Rgb x = load<order, PixelBytes>(s[row]);
                storeU(luminance[row], luma(x));
                sum = addSums(sum, x);
            }
            if constexpr (Rows == 1)
                storeChroma422(c, sum);
            else
                storeChroma411(c, sum);
        },
        src, y, chroma);
    for (int x = split; x < width; x += 2) convertGroup<order>(src, y, chroma, x);
}

template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::RGB, 3, 1>(Source<1, 3>, Destination<1>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::BGR, 3, 1>(Source<1, 3>, Destination<1>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::RGB, 4, 1>(Source<1, 4>, Destination<1>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::BGR, 4, 1>(Source<1, 4>, Destination<1>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::RGB, 3, 2>(Source<2, 3>, Destination<2>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::BGR, 3, 2>(Source<2, 3>, Destination<2>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::RGB, 4, 2>(Source<2, 4>, Destination<2>, ChromaDestination,
                                                                        int);
template void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<Order::BGR, 4, 2>(Source<2, 4>, Destination<2>, ChromaDestination,
                                                                        int);

}  // namespace q3
