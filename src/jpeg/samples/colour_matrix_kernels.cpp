// The Q15 and Q14 forms of interleaved sources.
#include "jpeg/samples/colour_forward_kernels.h"
#include "jpeg/samples/colour_scalar.h"

namespace q3 {
namespace {

// One row of a colour matrix: ((r R + g G + b B + rounding) >> shift) + (centred ? 128 : 0).
struct MatrixRow {
    int16_t r, g, b, rounding;

    int apply(Pixel p, int shift) const { return (r * p.r + g * p.g + b * p.b + rounding) >> shift; }
};
struct Matrix {
    int shift;
    MatrixRow y, cb, cr;
};
constexpr Matrix q15 = {15, {9798, 19235, 3736, 16266}, {-5529, -10855, 16384, 16384}, {16384, -13720, -2664, 16400}};
constexpr Matrix q14 = {14, {4899, 9617, 1868, 8192}, {-2764, -5428, 8192, 8192}, {8192, -6860, -1332, 8192}};

// Four pixels a lane as 16-bit pairs, (R, G) and (B, 1), in 32 bits each: pixels 4i to 4i + 3 | 16 + 4i to 19 + 4i of a
// block.
struct Quads {
    __m256i rg, b1;
};

// Shuffles of four pixels of PixelBytes bytes into zero-extended pairs; `first` is where the first pixel begins.
template <Order order, int PixelBytes>
constexpr ByteShuffle pairShuffle(bool rg, int first)
{
    ByteShuffle s{};
    for (int pixel = 0; pixel < 4; ++pixel) {
        const int byte = first + pixel * PixelBytes;
        const size_t at = 4 * static_cast<size_t>(pixel);
        s[at] = static_cast<int8_t>(byte + (rg ? redChannel<order> : blueChannel<order>));
        s[at + 1] = -1;
        s[at + 2] = rg ? static_cast<int8_t>(byte + 1) : int8_t{-1};
        s[at + 3] = -1;
    }
    return s;
}

// 8-bit sources of 3 or 4 bytes a pixel. The last quad of 3-byte pixels is loaded from 4 bytes earlier, so as to end
// with the block.
template <Order order, int PixelBytes>
struct InterleavedQuads {
    const uint8_t* p;

    template <int Quad>
    Quads quad() const
    {
        constexpr int early = Quad == 3 ? 16 - 4 * PixelBytes : 0;
        static constexpr ByteShuffle rg = pairShuffle<order, PixelBytes>(true, early);
        static constexpr ByteShuffle b = pairShuffle<order, PixelBytes>(false, early);
        const uint8_t* const at = p + 4 * PixelBytes * Quad - early;
        const __m256i pixels = loadLanes(at, at + 16 * PixelBytes);
        return {shuffle(pixels, rg), _mm256_or_si256(shuffle(pixels, b), _mm256_set1_epi32(0x10000))};
    }
};

// Packed 16-bit sources; a field's low bits become zero.
template <Order order, Fields fields>
struct PackedQuads {
    const uint8_t* p;

    template <int Quad>
    Quads quad() const
    {
        const uint8_t* const at = p + 16 * (Quad / 2);
        const __m256i words = loadLanes(at, at + 32);  // of this quad and its neighbour
        const __m256i five = _mm256_set1_epi16(0xF8);
        const __m256i green = _mm256_set1_epi16(fields == Fields::F555 ? 0xF8 : 0xFC);
        const __m256i first = _mm256_and_si256(_mm256_slli_epi16(words, 3), five);
        const __m256i g = _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> - 3), green);
        const __m256i third = _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> + 2), five);
        const __m256i r = order == Order::RGB ? first : third;
        const __m256i b = order == Order::RGB ? third : first;
        const __m256i one = _mm256_set1_epi16(1);
        if constexpr (Quad % 2 == 0)
            return {_mm256_unpacklo_epi16(r, g), _mm256_unpacklo_epi16(b, one)};
        return {_mm256_unpackhi_epi16(r, g), _mm256_unpackhi_epi16(b, one)};
    }
};

template <int Shift>
inline __m256i sums(Quads q, MatrixRow row)
{
    const __m256i rg = _mm256_set1_epi32(row.g * 65536 + (row.r & 0xFFFF));
    const __m256i b1 = _mm256_set1_epi32(row.rounding * 65536 + (row.b & 0xFFFF));
    return _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(q.rg, rg), _mm256_madd_epi16(q.b1, b1)), Shift);
}

struct Block {
    Quads q0, q1, q2, q3;
};
template <typename QuadSource>
inline Block loadBlock(QuadSource src)
{
    return {src.template quad<0>(), src.template quad<1>(), src.template quad<2>(), src.template quad<3>()};
}

template <int Shift>
inline Words channel(const Block& x, MatrixRow row)
{
    return {_mm256_packs_epi32(sums<Shift>(x.q0, row), sums<Shift>(x.q1, row)),
            _mm256_packs_epi32(sums<Shift>(x.q2, row), sums<Shift>(x.q3, row))};
}

// clip(v + 128): saturated to a signed byte, then the sign bit turned
inline __m256i packCentred(Words w) { return _mm256_xor_si256(_mm256_packs_epi16(w.lo, w.hi), _mm256_set1_epi8(-128)); }

template <const Matrix& matrix, typename QuadSource>
[[gnu::always_inline]] inline void storeYCbCr(QuadSource src, Destination<3> dst)
{
    const Block x = loadBlock(src);
    storeU(dst[0], packClipped(channel<matrix.shift>(x, matrix.y)));
    storeU(dst[1], packCentred(channel<matrix.shift>(x, matrix.cb)));
    storeU(dst[2], packCentred(channel<matrix.shift>(x, matrix.cr)));
}

template <Order order>
inline Pixel pixelAt(const uint8_t* p)
{
    return {p[redChannel<order>], p[1], p[blueChannel<order>]};
}

}  // namespace

template <Order order, int PixelBytes>
void ownjc_RGBToYCbCr_JPEG_8u_CnP3(Source<1, PixelBytes> src, Destination<3> dst, int width)
{
    const int split = width & ~7;
    forEachBlock(
        split,
        [](Source<1, PixelBytes> s, Destination<3> d) {
            storeYCbCr<q15>(InterleavedQuads<order, PixelBytes>{s[0]}, d);
        },
        src, dst);
    for (int x = split; x < width; ++x) {
        const Pixel p = pixelAt<order>(src.at(x)[0]);
        dst[0][x] = clipToByte(q14.y.apply(p, q14.shift));
        dst[1][x] = clipToByte(q14.cb.apply(p, q14.shift) + 128);
        dst[2][x] = clipToByte(q14.cr.apply(p, q14.shift) + 128);
    }
}

template <Order order, Fields fields>
void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3(Source<1, 2> src, Destination<3> dst, int width)
{
    forEachBlock(
        width, [](Source<1, 2> s, Destination<3> d) { storeYCbCr<q14>(PackedQuads<order, fields>{s[0]}, d); }, src,
        dst);
}

template <Order order>
void ownjc_RGBToY_JPEG_8u_C3C1(Source<1, 3> src, Destination<1> dst, int width)
{
    forEachBlock(
        width,
        [](Source<1, 3> s, Destination<1> d) {
            const Block x = loadBlock(InterleavedQuads<order, 3>{s[0]});
            storeU(d[0], packClipped(channel<q15.shift>(x, q15.y)));
        },
        src, dst);
}

template void ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::RGB, 3>(Source<1, 3>, Destination<3>, int);
template void ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::BGR, 3>(Source<1, 3>, Destination<3>, int);
template void ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::RGB, 4>(Source<1, 4>, Destination<3>, int);
template void ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::BGR, 4>(Source<1, 4>, Destination<3>, int);
template void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::RGB, Fields::F555>(Source<1, 2>, Destination<3>, int);
template void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::BGR, Fields::F555>(Source<1, 2>, Destination<3>, int);
template void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::RGB, Fields::F565>(Source<1, 2>, Destination<3>, int);
template void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::BGR, Fields::F565>(Source<1, 2>, Destination<3>, int);
template void ownjc_RGBToY_JPEG_8u_C3C1<Order::RGB>(Source<1, 3>, Destination<1>, int);
template void ownjc_RGBToY_JPEG_8u_C3C1<Order::BGR>(Source<1, 3>, Destination<1>, int);

}  // namespace q3
