#include "jpeg/samples/colour_inverse_kernels.h"

#include "jpeg/samples/colour_scalar.h"

namespace q3 {
namespace {

enum class Rounding { Planar, Interleaved };

// The Q14 form in 16-bit lanes. A chroma byte, its sign bit turned, becomes the high byte of a word over a constant low
// byte: (v << 8) + 90 and (u << 8) + 64 or 67. The low bytes carry the rounding terms into the high halves of the
// products:
//      (22970 v + 8145) >> 14 = (((v << 8) + 90) * 22969 >> 16) >> 6
//      (29032 u + 7535) >> 14 = ((((u << 8) + 64) * 29032 >> 16) + 1) >> 6
//      (29032 u + 8135) >> 14 = ((((u << 8) + 67) * 29032 >> 16) + 2) >> 6
// each equal for all 256 values. Green's sum is exact in 32 bits, 256 times too large.
template <Rounding rounding>
struct ChromaOffsets {
    static constexpr int lowV = 90;
    static constexpr int lowU = rounding == Rounding::Planar ? 64 : 67;
    static constexpr int blueTerm = rounding == Rounding::Planar ? 1 : 2;
    static constexpr int greenSign = rounding == Rounding::Planar ? 1 : -1;
    static constexpr int greenTerm =
        256 * (rounding == Rounding::Planar ? 8082 : 8302) - greenSign * (5638 * lowU + 11700 * lowV);

    static __m256i red(__m256i v) { return _mm256_srai_epi16(_mm256_mulhi_epi16(v, _mm256_set1_epi16(22969)), 6); }
    static __m256i blue(__m256i u)
    {
        const __m256i product = _mm256_mulhi_epi16(u, _mm256_set1_epi16(29032));
        return _mm256_srai_epi16(_mm256_add_epi16(product, _mm256_set1_epi16(blueTerm)), 6);
    }
    static __m256i green(__m256i u, __m256i v)
    {
        const __m256i factors = _mm256_set1_epi32((greenSign * 11700) * 65536 + ((greenSign * 5638) & 0xFFFF));
        const auto sum = [&](__m256i uv) {
            const __m256i s = _mm256_add_epi32(_mm256_madd_epi16(uv, factors), _mm256_set1_epi32(greenTerm));
            return _mm256_srai_epi32(s, 22);
        };
        return _mm256_packs_epi32(sum(_mm256_unpacklo_epi16(u, v)), sum(_mm256_unpackhi_epi16(u, v)));
    }
};

template <Rounding rounding>
inline Rgb convert(Source<3> src)
{
    using Offsets = ChromaOffsets<rounding>;
    const __m256i signBit = _mm256_set1_epi8(-128);
    const Words y = widen(loadU(src[0]));
    const __m256i cb = _mm256_xor_si256(loadU(src[1]), signBit);
    const __m256i cr = _mm256_xor_si256(loadU(src[2]), signBit);
    const __m256i lowU = _mm256_set1_epi8(Offsets::lowU);
    const __m256i lowV = _mm256_set1_epi8(Offsets::lowV);
    const Words u = {_mm256_unpacklo_epi8(lowU, cb), _mm256_unpackhi_epi8(lowU, cb)};
    const Words v = {_mm256_unpacklo_epi8(lowV, cr), _mm256_unpackhi_epi8(lowV, cr)};
    const auto plus = [&](__m256i lo, __m256i hi) {
        return packClipped({_mm256_add_epi16(y.lo, lo), _mm256_add_epi16(y.hi, hi)});
    };
    const auto minus = [&](__m256i lo, __m256i hi) {
        return packClipped({_mm256_sub_epi16(y.lo, lo), _mm256_sub_epi16(y.hi, hi)});
    };
    Rgb rgb;
    rgb.r = plus(Offsets::red(v.lo), Offsets::red(v.hi));
    if constexpr (rounding == Rounding::Planar)
        rgb.g = minus(Offsets::green(u.lo, v.lo), Offsets::green(u.hi, v.hi));
    else
        rgb.g = plus(Offsets::green(u.lo, v.lo), Offsets::green(u.hi, v.hi));
    rgb.b = plus(Offsets::blue(u.lo), Offsets::blue(u.hi));
    return rgb;
}

inline Rgb complement(Rgb x)
{
    const __m256i ones = _mm256_set1_epi8(-1);
    return {_mm256_xor_si256(x.r, ones), _mm256_xor_si256(x.g, ones), _mm256_xor_si256(x.b, ones)};
}

template <int Planes>
inline Source<3> firstThree(Source<Planes> src)
{
    return {{src[0], src[1], src[2]}};
}

// kernel(src, dst) makes 32 columns of the first form; tail(rgb, x) stores one pixel of the second.
template <int SrcPlanes, int DstPlanes, int DstBytes, typename Kernel, typename Tail>
inline void convertRow(Source<SrcPlanes> src, Destination<DstPlanes, DstBytes> dst, int width, const Kernel& kernel,
                       const Tail& tail)
{
    const int split = width & ~3;
    forEachBlock(split, kernel, src, dst);
    for (int x = split; x < width; ++x) tail(rgbByRoundedProducts(src[0][x], src[1][x], src[2][x]), x);
}

inline uint8_t complement(uint8_t x) { return static_cast<uint8_t>(255 - x); }

}  // namespace

void ownjc_YCbCrToRGB_JPEG_8u_P3(Source<3> src, Destination<3> dst, int width)
{
    convertRow(
        src, dst, width,
        [](Source<3> s, Destination<3> d) {
            const Rgb x = convert<Rounding::Planar>(s);
            storeU(d[0], x.r);
            storeU(d[1], x.g);
            storeU(d[2], x.b);
        },
        [&](Pixel p, int x) {
            dst[0][x] = p.r;
            dst[1][x] = p.g;
            dst[2][x] = p.b;
        });
}

void ownjc_YCCKToCMYK_JPEG_8u_P4(Source<4> src, Destination<4> dst, int width)
{
    convertRow(
        src, dst, width,
        [](Source<4> s, Destination<4> d) {
            const __m256i k = loadU(s[3]);
            const Rgb x = complement(convert<Rounding::Planar>(firstThree(s)));
            storeU(d[0], x.r);
            storeU(d[1], x.g);
            storeU(d[2], x.b);
            storeU(d[3], k);
        },
        [&](Pixel p, int x) {
            const uint8_t k = src[3][x];
            dst[0][x] = complement(p.r);
            dst[1][x] = complement(p.g);
            dst[2][x] = complement(p.b);
            dst[3][x] = k;
        });
}

void ownjc_YCCKToCMYK_JPEG_8u_P4C4(Source<4> src, Destination<1, 4> dst, int width)
{
    convertRow(
        src, dst, width,
        [](Source<4> s, Destination<1, 4> d) {
            storeC4<Order::RGB>(d[0], complement(convert<Rounding::Planar>(firstThree(s))), loadU(s[3]));
        },
        [&](Pixel p, int x) {
            uint8_t* const pixel = dst.at(x)[0];
            pixel[0] = complement(p.r);
            pixel[1] = complement(p.g);
            pixel[2] = complement(p.b);
            pixel[3] = src[3][x];
        });
}

template <Order order>
void ownjc_YCbCrToRGB_JPEG_8u_P3C3(Source<3> src, Destination<1, 3> dst, int width)
{
    convertRow(
        src, dst, width,
        [](Source<3> s, Destination<1, 3> d) { storeC3<order>(d[0], convert<Rounding::Interleaved>(s)); },
        [&](Pixel p, int x) {
            uint8_t* const pixel = dst.at(x)[0];
            pixel[redChannel<order>] = p.r;
            pixel[1] = p.g;
            pixel[blueChannel<order>] = p.b;
        });
}

template <Order order>
void ownjc_YCbCrToRGB_JPEG_8u_P3C4(Source<3> src, Destination<1, 4> dst, int width, uint8_t aval)
{
    convertRow(
        src, dst, width,
        [aval](Source<3> s, Destination<1, 4> d) {
            storeC4<order>(d[0], convert<Rounding::Interleaved>(s), _mm256_set1_epi8(static_cast<int8_t>(aval)));
        },
        [&](Pixel p, int x) {
            uint8_t* const pixel = dst.at(x)[0];
            pixel[redChannel<order>] = p.r;
            pixel[1] = p.g;
            pixel[blueChannel<order>] = p.b;
            pixel[3] = aval;
        });
}

template <Order order, Fields fields>
void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3(Source<3> src, Destination<1, 2> dst, int width)
{
    convertRow(
        src, dst, width,
        [](Source<3> s, Destination<1, 2> d) { storePacked<order, fields>(d[0], convert<Rounding::Planar>(s)); },
        [&](Pixel p, int x) {
            const int first = order == Order::RGB ? p.r : p.b;
            const int third = order == Order::RGB ? p.b : p.r;
            constexpr int green = greenBits<fields>;
            const int packed = first >> 3 | (p.g >> (8 - green)) << 5 | (third >> 3) << (5 + green);
            storeScalar(dst.at(x)[0], static_cast<uint16_t>(packed));
        });
}

template void ownjc_YCbCrToRGB_JPEG_8u_P3C3<Order::RGB>(Source<3>, Destination<1, 3>, int);
template void ownjc_YCbCrToRGB_JPEG_8u_P3C3<Order::BGR>(Source<3>, Destination<1, 3>, int);
template void ownjc_YCbCrToRGB_JPEG_8u_P3C4<Order::RGB>(Source<3>, Destination<1, 4>, int, uint8_t);
template void ownjc_YCbCrToRGB_JPEG_8u_P3C4<Order::BGR>(Source<3>, Destination<1, 4>, int, uint8_t);
template void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::RGB, Fields::F555>(Source<3>, Destination<1, 2>, int);
template void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::BGR, Fields::F555>(Source<3>, Destination<1, 2>, int);
template void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::RGB, Fields::F565>(Source<3>, Destination<1, 2>, int);
template void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::BGR, Fields::F565>(Source<3>, Destination<1, 2>, int);

}  // namespace q3
