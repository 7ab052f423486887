#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/samples/mcu_pixels.h"

namespace q3 {
namespace {

// Four 32-bit results a lane of two quads' worth of packing: packs to words in pixel order.
struct Sums {
    __m256i q[4];
};
inline Tile packTile(const Sums& s) { return {_mm256_packs_epi32(s.q[0], s.q[1]), _mm256_packs_epi32(s.q[2], s.q[3])}; }

inline __m256i products(Quad x, int r, int g, int b)
{
    const __m256i rg = _mm256_madd_epi16(x.c01, _mm256_set1_epi32(g * 65536 + (r & 0xFFFF)));
    return _mm256_add_epi32(rg, _mm256_madd_epi16(x.c2, _mm256_set1_epi32(b & 0xFFFF)));
}
inline __m256i shifted(__m256i sum, int term, int shift)
{
    return _mm256_srai_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(term)), shift);
}

// Q14, R, G, B being the sums over the n = 2^Log2n pixels that share a chroma sample:
//      Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14
//      Cb = (-2764 R - 5428 G + 8192 B + n * Term) >> (14 + log2 n), Cr = (8192 R - 6860 G - 1332 B + n * Term) >> (14
//      + log2 n)
template <int Term>
struct FormBlock {
    static __m256i y(Quad x) { return shifted(products(x, 4899, 9617, 1868), -2088960, 14); }
    template <int Log2n>
    static __m256i cb(Quad x)
    {
        return shifted(products(x, -2764, -5428, 8192), Term << Log2n, 14 + Log2n);
    }
    template <int Log2n>
    static __m256i cr(Quad x)
    {
        return shifted(products(x, 8192, -6860, -1332), Term << Log2n, 14 + Log2n);
    }
};
using FormRounded = FormBlock<8192>;
using FormCmyk444 = FormBlock<8133>;  // this one member rounds a little low

// The form of planes that are not aligned, Q16 without rounding:
//      Y = ((19595 R + 38470 G + 7471 B) >> 16) - 128
//      Cb = (-11059 R - 21709 G + 32768 B) >> (16 + log2 n), Cr = (32768 R - 27439 G - 5329 B) >> (16 + log2 n)
// 38470 = 65536 - 27066; products with 65536 and 32768 are shifts.
struct FormUnaligned {
    static __m256i y(Quad x)
    {
        const __m256i wholeGreen = _mm256_andnot_si256(_mm256_set1_epi32(0xFFFF), x.c01);
        const __m256i sum = _mm256_add_epi32(products(x, 19595, -27066, 7471), wholeGreen);
        return shifted(sum, -128 * 65536, 16);
    }
    template <int Log2n>
    static __m256i cb(Quad x)
    {
        const __m256i sum = _mm256_add_epi32(products(x, -11059, -21709, 0), _mm256_slli_epi32(x.c2, 15));
        return _mm256_srai_epi32(sum, 16 + Log2n);
    }
    template <int Log2n>
    static __m256i cr(Quad x)
    {
        const __m256i red = _mm256_and_si256(x.c01, _mm256_set1_epi32(0xFFFF));
        const __m256i sum = _mm256_add_epi32(products(x, 0, -27439, -5329), _mm256_slli_epi32(red, 15));
        return _mm256_srai_epi32(sum, 16 + Log2n);
    }
};

// No conversion: channels 0, 1, 2 are Y, Cb, Cr; chroma means are rounded down.
struct FormNone {
    static __m256i y(Quad x)
    {
        return _mm256_sub_epi32(_mm256_and_si256(x.c01, _mm256_set1_epi32(0xFFFF)), _mm256_set1_epi32(128));
    }
    template <int Log2n>
    static __m256i cb(Quad x)
    {
        return shifted(_mm256_srli_epi32(x.c01, 16), -(128 << Log2n), Log2n);
    }
    template <int Log2n>
    static __m256i cr(Quad x)
    {
        return shifted(x.c2, -(128 << Log2n), Log2n);
    }
};

template <typename Form>
inline Tile lumaTile(const Quads& x)
{
    return packTile({{Form::y(x.q[0]), Form::y(x.q[1]), Form::y(x.q[2]), Form::y(x.q[3])}});
}

// Sums of neighbouring pixels: no 16-bit half of a 32-bit lane overflows.
inline Quad addNeighbours(Quad a, Quad b) { return {_mm256_hadd_epi32(a.c01, b.c01), _mm256_hadd_epi32(a.c2, b.c2)}; }
// Sums of the two lanes, which are rows one above the other: those of a below, of b above.
inline Quad addRows(Quad a, Quad b)
{
    const auto add = [](__m256i x, __m256i y) {
        return _mm256_add_epi32(_mm256_permute2x128_si256(x, y, 0x20), _mm256_permute2x128_si256(x, y, 0x31));
    };
    return {add(a.c01, b.c01), add(a.c2, b.c2)};
}

template <typename Form, int Log2n>
inline void storeChroma(int16_t* const* planes, int index, Quad first, Quad second)
{
    storeU(planes[1] + index, _mm256_packs_epi32(Form::template cb<Log2n>(first), Form::template cb<Log2n>(second)));
    storeU(planes[2] + index, _mm256_packs_epi32(Form::template cr<Log2n>(first), Form::template cr<Log2n>(second)));
}

// load(row) gives the quads of the tile at a row of pixels.
template <typename Form, Layout layout, typename Load>
inline void encodeTiles(int16_t* const* planes, const Load& load)
{
    const auto luma = [&](int row, const Quads& x) { storeTile<layout>(planes[0], row, lumaTile<Form>(x)); };
    if constexpr (layout == Layout::L444) {
        for (int row = 0; row < 8; row += 4) {
            const Quads x = load(row);
            luma(row, x);
            storeChroma<Form, 0>(planes, 8 * row, x.q[0], x.q[1]);
            storeChroma<Form, 0>(planes, 8 * row + 16, x.q[2], x.q[3]);
        }
    } else if constexpr (layout == Layout::L422) {
        for (int row = 0; row < 8; row += 2) {
            const Quads x = load(row);
            luma(row, x);
            storeChroma<Form, 1>(planes, 8 * row, addNeighbours(x.q[0], x.q[1]), addNeighbours(x.q[2], x.q[3]));
        }
    } else {
        for (int row = 0; row < 16; row += 4) {
            const Quads upper = load(row);
            luma(row, upper);
            const Quads lower = load(row + 2);
            luma(row + 2, lower);
            storeChroma<Form, 2>(planes, 4 * row,
                                 addRows(addNeighbours(upper.q[0], upper.q[1]), addNeighbours(lower.q[0], lower.q[1])),
                                 addRows(addNeighbours(upper.q[2], upper.q[3]), addNeighbours(lower.q[2], lower.q[3])));
        }
    }
}

template <typename Form, Layout layout, int C0, int C1, int C2>
void encodeC3(const uint8_t* pSrc, int srcStep, int16_t* const* planes)
{
    encodeTiles<Form, layout>(
        planes, [=](int row) { return loadQuadsC3<layout, C0, C1, C2>(pixelsOf<layout>(pSrc, srcStep, row)); });
}

template <typename Form, Layout layout>
void encodeCmyk(const uint8_t* pSrc, int srcStep, int16_t* const* planes)
{
    encodeTiles<Form, layout>(planes, [=](int row) {
        Tile black;
        const Quads x = loadQuadsCmyk<layout>(pixelsOf<layout>(pSrc, srcStep, row), black);
        const __m256i bias = _mm256_set1_epi16(128);
        storeTile<layout>(planes[3], row, {_mm256_sub_epi16(black.left, bias), _mm256_sub_epi16(black.right, bias)});
        return x;
    });
}

template <Layout layout, Fields fields>
void encodePacked(const uint16_t* pSrc, int srcStep, int16_t* const* planes)
{
    encodeTiles<FormRounded, layout>(planes, [=](int row) {
        return loadQuadsPacked<layout, fields>(pixelsOf<layout>(reinterpret_cast<const uint8_t*>(pSrc), srcStep, row));
    });
}

// Y0 Cb0 Y1 Cr0 Y2 Cb1 ..., two rows at a time
void split422(const uint8_t* pSrc, int srcStep, int16_t* const* planes)
{
    const __m256i lowByte = _mm256_set1_epi16(0xFF);
    const __m256i bias = _mm256_set1_epi16(128);
    for (int row = 0; row < 8; row += 2) {
        const auto src = pixelsOf<Layout::L422>(pSrc, srcStep, row);
        const __m256i left = loadLanes(src.rows[0], src.rows[1]);
        const __m256i right = loadLanes(src.rows[0] + 16, src.rows[1] + 16);
        const auto level = [&](__m256i x) { return _mm256_sub_epi16(x, bias); };
        storeTile<Layout::L422>(planes[0], row,
                                {level(_mm256_and_si256(left, lowByte)), level(_mm256_and_si256(right, lowByte))});
        const __m256i chroma = _mm256_packus_epi16(_mm256_srli_epi16(left, 8), _mm256_srli_epi16(right, 8));
        storeU(planes[1] + 8 * row, level(_mm256_and_si256(chroma, lowByte)));
        storeU(planes[2] + 8 * row, level(_mm256_srli_epi16(chroma, 8)));
    }
}

template <int Count, typename Pixel>
VekStatus check(const Pixel* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDstMCU);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_PLANES(pDstMCU, Count);
    return vekStsOk;
}

// Of 4:1:1 the alignment of the luma plane chooses the arithmetic: that is part of the contract.
template <Layout layout, Order order>
VekStatus fromC3(const uint8_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const VekStatus status = check<3>(pSrc, srcStep, pDstMCU);
    if (status != vekStsOk)
        return status;
    constexpr int r = redChannel<order>;
    constexpr int b = blueChannel<order>;
    if (layout == Layout::L411 && !isAligned(pDstMCU[0], 16))
        encodeC3<FormUnaligned, layout, r, 1, b>(pSrc, srcStep, pDstMCU);
    else
        encodeC3<FormRounded, layout, r, 1, b>(pSrc, srcStep, pDstMCU);
    return vekStsOk;
}

// Of CMYK that of all planes (4:4:4), or of luma and black.
template <Layout layout>
VekStatus fromCmyk(const uint8_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const VekStatus status = check<4>(pSrc, srcStep, pDstMCU);
    if (status != vekStsOk)
        return status;
    bool aligned = isAligned(pDstMCU[0], 16) && isAligned(pDstMCU[3], 16);
    if (layout == Layout::L444)
        aligned = aligned && isAligned(pDstMCU[1], 16) && isAligned(pDstMCU[2], 16);
    using FormAligned = std::conditional_t<layout == Layout::L444, FormCmyk444, FormRounded>;
    const auto encode = aligned ? encodeCmyk<FormAligned, layout> : encodeCmyk<FormUnaligned, layout>;
    encode(pSrc, srcStep, pDstMCU);
    return vekStsOk;
}

template <Layout layout, Fields fields>
VekStatus fromPacked(const uint16_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const VekStatus status = check<3>(pSrc, srcStep, pDstMCU);
    if (status == vekStsOk)
        encodePacked<layout, fields>(pSrc, srcStep, pDstMCU);
    return status;
}

template <Layout layout>
VekStatus fromSamples(const uint8_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const VekStatus status = check<3>(pSrc, srcStep, pDstMCU);
    if (status == vekStsOk)
        encodeC3<FormNone, layout, 0, 1, 2>(pSrc, srcStep, pDstMCU);
    return status;
}

}  // namespace

VekStatus vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L444, Order::RGB>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L422, Order::RGB>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L411, Order::RGB>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L444, Order::BGR>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L422, Order::BGR>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromC3<Layout::L411, Order::BGR>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L444, Fields::F555>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L422, Fields::F555>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L411, Fields::F555>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L444, Fields::F565>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L422, Fields::F565>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromPacked<Layout::L411, Fields::F565>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return fromCmyk<Layout::L444>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return fromCmyk<Layout::L422>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[4])
{
    return fromCmyk<Layout::L411>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromSamples<Layout::L444>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromSamples<Layout::L422>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    return fromSamples<Layout::L411>(pSrc, srcStep, pDstMCU);
}

VekStatus vekiSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int srcStep, int16_t* const pDstMCU[3])
{
    const VekStatus status = check<3>(pSrc, srcStep, pDstMCU);
    if (status == vekStsOk)
        split422(pSrc, srcStep, pDstMCU);
    return status;
}

}  // namespace q3
