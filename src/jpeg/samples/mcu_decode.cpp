#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/samples/mcu_pixels.h"

namespace q3 {
namespace {

// What chroma adds to luma, 16 words of each.
struct Offsets {
    __m256i r, g, b;
};

// 32-bit sums factor0 * x + factor1 * y + term, shifted right and made words; Saturated or cut to 16 bits.
enum class Narrowing { Saturated, Cut };
template <Narrowing narrowing, int Shift>
inline __m256i narrow(__m256i lo, __m256i hi)
{
    if constexpr (narrowing == Narrowing::Saturated)
        return _mm256_packs_epi32(_mm256_srai_epi32(lo, Shift), _mm256_srai_epi32(hi, Shift));
    const auto cut = [](__m256i x) { return _mm256_srai_epi32(_mm256_slli_epi32(x, 16 - Shift), 16); };
    return _mm256_packs_epi32(cut(lo), cut(hi));
}
template <Narrowing narrowing, int Shift>
inline __m256i weighted(__m256i x, int factor0, __m256i y, int factor1, int term)
{
    const __m256i factors = _mm256_set1_epi32(factor1 * 65536 + (factor0 & 0xFFFF));
    const auto sum = [&](__m256i xy) {
        const __m256i products = _mm256_madd_epi16(xy, factors);
        return term == 0 ? products : _mm256_add_epi32(products, _mm256_set1_epi32(term));
    };
    return narrow<narrowing, Shift>(sum(_mm256_unpacklo_epi16(x, y)), sum(_mm256_unpackhi_epi16(x, y)));
}

inline __m256i clipToBytes(Tile x) { return _mm256_packus_epi16(x.left, x.right); }
// clip(v + 128): saturated to a signed byte, then the sign bit turned
inline __m256i levelShifted(Tile x)
{
    return _mm256_xor_si256(_mm256_packs_epi16(x.left, x.right), _mm256_set1_epi8(-128));
}
inline __m256i complement(__m256i x) { return _mm256_xor_si256(x, _mm256_set1_epi8(-1)); }

// Form A, Q14, offsets saturated to 16 bits, sums wrapping:
//      tR = (22970 Cr + 2105344) >> 14, tG = (-5638 Cb - 11700 Cr + 2105344) >> 14, tB = (29032 Cb + 2105344) >> 14
//      R = clip(Y + tR), G = clip(Y + tG), B = clip(Y + tB)
// The term, 128.5, comes as 257 * 8192.
struct FormA {
    static Offsets offsets(__m256i cb, __m256i cr)
    {
        const __m256i half = _mm256_set1_epi16(257);
        return {weighted<Narrowing::Saturated, 14>(cr, 22970, half, 8192, 0),
                weighted<Narrowing::Saturated, 14>(cb, -5638, cr, -11700, 2105344),
                weighted<Narrowing::Saturated, 14>(cb, 29032, half, 8192, 0)};
    }
    static __m256i red(Tile y, Tile t) { return sum(y, t); }
    static __m256i green(Tile y, Tile t) { return sum(y, t); }
    static __m256i blue(Tile y, Tile t) { return sum(y, t); }
    static __m256i black(Tile k) { return levelShifted(k); }

    static __m256i sum(Tile y, Tile t)
    {
        return clipToBytes({_mm256_add_epi16(y.left, t.left), _mm256_add_epi16(y.right, t.right)});
    }
};

// Form B, red and blue in Q13, offsets cut to 16 bits, sums wrapping:
//      tR = (11485 Cr + 1052672) >> 13, tB = (14516 Cb + 1052672) >> 13, tG = (5638 Cb + 11700 Cr - 2088960) >> 14
//      R = clip(Y + tR), G = clip(Y - tG), B = clip(Y + tB)
struct FormB {
    static Offsets offsets(__m256i cb, __m256i cr)
    {
        const __m256i half = _mm256_set1_epi16(257);
        return {weighted<Narrowing::Cut, 13>(cr, 11485, half, 4096, 0),
                weighted<Narrowing::Cut, 14>(cb, 5638, cr, 11700, -2088960),
                weighted<Narrowing::Cut, 13>(cb, 14516, half, 4096, 0)};
    }
    static __m256i red(Tile y, Tile t) { return FormA::sum(y, t); }
    static __m256i green(Tile y, Tile t)
    {
        return clipToBytes({_mm256_sub_epi16(y.left, t.left), _mm256_sub_epi16(y.right, t.right)});
    }
    static __m256i blue(Tile y, Tile t) { return FormA::sum(y, t); }
    static __m256i black(Tile k) { return levelShifted(k); }
};

// The form of planes that are not aligned, Q16 without rounding; products and their sum wrap at 32 bits, the sums with
// luma do not:
//      R = clip(Y + ((91881 Cr) >> 16) + 128), G = clip(Y + ((-22554 Cb - 46802 Cr) >> 16) + 128),
//      B = clip(Y + ((116130 Cb) >> 16) + 128)
// Whole multiples of 65536 come out of the factors: 91881 = 65536 + 26345, -46802 = 18734 - 65536, 116130 = 131072 -
// 14942.
struct FormUnaligned {
    static Offsets offsets(__m256i cb, __m256i cr)
    {
        const __m256i red = _mm256_add_epi16(cr, _mm256_mulhi_epi16(cr, _mm256_set1_epi16(26345)));
        const __m256i green = _mm256_sub_epi16(weighted<Narrowing::Saturated, 16>(cb, -22554, cr, 18734, 0), cr);
        const __m256i blue =
            _mm256_add_epi16(_mm256_add_epi16(cb, cb), _mm256_mulhi_epi16(cb, _mm256_set1_epi16(-14942)));
        return {red, green, blue};
    }
    static __m256i red(Tile y, Tile t) { return sum(y, t); }
    static __m256i green(Tile y, Tile t) { return sum(y, t); }
    static __m256i blue(Tile y, Tile t) { return sum(y, t); }
    // The low byte of K + 128: black wraps here.
    static __m256i black(Tile k)
    {
        const __m256i lowByte = _mm256_set1_epi16(0xFF);
        const __m256i low = clipToBytes({_mm256_and_si256(k.left, lowByte), _mm256_and_si256(k.right, lowByte)});
        return _mm256_xor_si256(low, _mm256_set1_epi8(-128));
    }

    static __m256i sum(Tile y, Tile t)
    {
        return levelShifted({_mm256_adds_epi16(y.left, t.left), _mm256_adds_epi16(y.right, t.right)});
    }
};

using Planes = const int16_t* const*;

struct TileOffsets {
    Tile r, g, b;
};
inline TileOffsets widenOffsets(const Offsets& t) { return {widenChroma(t.r), widenChroma(t.g), widenChroma(t.b)}; }

// Calls fn(row, offsets) for every tile; `row` is its first row of pixels.
template <typename Form, Layout layout, typename Fn>
inline void forEachTile(Planes planes, const Fn& fn)
{
    const int16_t* const cb = planes[1];
    const int16_t* const cr = planes[2];
    if constexpr (layout == Layout::L444) {
        for (int row = 0; row < 8; row += 4) {
            const Offsets left = Form::offsets(loadU(cb + 8 * row), loadU(cr + 8 * row));
            const Offsets right = Form::offsets(loadU(cb + 8 * row + 16), loadU(cr + 8 * row + 16));
            fn(row, TileOffsets{{left.r, right.r}, {left.g, right.g}, {left.b, right.b}});
        }
    } else {
        for (int row = 0; row < 8; row += 2) {  // of chroma
            const Offsets t = Form::offsets(loadU(cb + 8 * row), loadU(cr + 8 * row));
            if constexpr (layout == Layout::L422) {
                fn(row, widenOffsets(t));
            } else {
                fn(2 * row, widenOffsets({bothRows(t.r, false), bothRows(t.g, false), bothRows(t.b, false)}));
                fn(2 * row + 2, widenOffsets({bothRows(t.r, true), bothRows(t.g, true), bothRows(t.b, true)}));
            }
        }
    }
}

template <typename Form, Layout layout>
inline Rgb tileRgb(Planes planes, int row, const TileOffsets& t)
{
    const Tile y = loadTile<layout>(planes[0], row);
    return {Form::red(y, t.r), Form::green(y, t.g), Form::blue(y, t.b)};
}

template <typename Form, Layout layout, Order order>
void decodeC3(Planes planes, uint8_t* pDst, int dstStep)
{
    forEachTile<Form, layout>(
        planes, [=](int row, const TileOffsets& t) __attribute__((always_inline)) {
            const Rgb x = tileRgb<Form, layout>(planes, row, t);
            const auto dst = pixelsOf<layout>(pDst, dstStep, row);
            if constexpr (order == Order::RGB)
                PixelsC3<layout>::store(dst, x.r, x.g, x.b);
            else
                PixelsC3<layout>::store(dst, x.b, x.g, x.r);
        });
}

template <typename Form, Layout layout>
void decodeCmyk(Planes planes, uint8_t* pDst, int dstStep)
{
    forEachTile<Form, layout>(
        planes, [=](int row, const TileOffsets& t) __attribute__((always_inline)) {
            const Rgb x = tileRgb<Form, layout>(planes, row, t);
            storeTileC4<layout>(pixelsOf<layout>(pDst, dstStep, row), complement(x.r), complement(x.g), complement(x.b),
                                Form::black(loadTile<layout>(planes[3], row)));
        });
}

template <Layout layout, Fields fields>
void decodePacked(Planes planes, uint16_t* pDst, int dstStep)
{
    forEachTile<FormB, layout>(
        planes, [=](int row, const TileOffsets& t) __attribute__((always_inline)) {
            storeTilePacked<layout, fields>(pixelsOf<layout>(reinterpret_cast<uint8_t*>(pDst), dstStep, row),
                                            tileRgb<FormB, layout>(planes, row, t));
        });
}

// No conversion: chroma itself is what goes with luma.
struct FormNone {
    static Offsets offsets(__m256i cb, __m256i cr) { return {cb, cr, cr}; }
};

template <Layout layout>
void sampleUp(Planes planes, uint8_t* pDst, int dstStep)
{
    forEachTile<FormNone, layout>(
        planes, [=](int row, const TileOffsets& t) __attribute__((always_inline)) {
            PixelsC3<layout>::store(pixelsOf<layout>(pDst, dstStep, row),
                                    levelShifted(loadTile<layout>(planes[0], row)), levelShifted(t.r),
                                    levelShifted(t.g));
        });
}

// Y0 Cb0 Y1 Cr0 Y2 Cb1 ..., two rows at a time
void join422(Planes planes, uint8_t* pDst, int dstStep)
{
    for (int row = 0; row < 8; row += 2) {
        const __m256i y = levelShifted(loadTile<Layout::L422>(planes[0], row));
        const __m256i cb = loadU(planes[1] + 8 * row);
        const __m256i cr = loadU(planes[2] + 8 * row);
        const __m256i chroma = levelShifted({_mm256_unpacklo_epi16(cb, cr), _mm256_unpackhi_epi16(cb, cr)});
        storeLanes<Layout::L422, 2>(pixelsOf<Layout::L422>(pDst, dstStep, row),
                                    {{_mm256_unpacklo_epi8(y, chroma), _mm256_unpackhi_epi8(y, chroma)}});
    }
}

template <int Count, typename Pixel>
VekStatus check(Planes pSrcMCU, const Pixel* pDst, int dstStep)
{
    VEK_CHECK_POINTER(pSrcMCU);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_PLANES(pSrcMCU, Count);
    VEK_CHECK_STEP(dstStep);
    return vekStsOk;
}

template <int Count>
bool allAligned(Planes planes)
{
    for (int i = 0; i < Count; ++i)
        if (!isAligned(planes[i], 16))
            return false;
    return true;
}

// The planes' alignment chooses the arithmetic: that is part of the contract.
template <typename AlignedForm, Layout layout, Order order>
VekStatus toC3(Planes pSrcMCU, uint8_t* pDst, int dstStep)
{
    const VekStatus status = check<3>(pSrcMCU, pDst, dstStep);
    if (status != vekStsOk)
        return status;
    const auto decode =
        allAligned<3>(pSrcMCU) ? decodeC3<AlignedForm, layout, order> : decodeC3<FormUnaligned, layout, order>;
    decode(pSrcMCU, pDst, dstStep);
    return vekStsOk;
}

template <Layout layout>
VekStatus toCmyk(Planes pSrcMCU, uint8_t* pDst, int dstStep)
{
    const VekStatus status = check<4>(pSrcMCU, pDst, dstStep);
    if (status != vekStsOk)
        return status;
    const auto decode = allAligned<4>(pSrcMCU) ? decodeCmyk<FormB, layout> : decodeCmyk<FormUnaligned, layout>;
    decode(pSrcMCU, pDst, dstStep);
    return vekStsOk;
}

template <Layout layout, Fields fields>
VekStatus toPacked(Planes pSrcMCU, uint16_t* pDst, int dstStep)
{
    const VekStatus status = check<3>(pSrcMCU, pDst, dstStep);
    if (status == vekStsOk)
        decodePacked<layout, fields>(pSrcMCU, pDst, dstStep);
    return status;
}

template <Layout layout>
VekStatus toSamples(Planes pSrcMCU, uint8_t* pDst, int dstStep)
{
    const VekStatus status = check<3>(pSrcMCU, pDst, dstStep);
    if (status == vekStsOk)
        sampleUp<layout>(pSrcMCU, pDst, dstStep);
    return status;
}

}  // namespace

VekStatus vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormA, Layout::L444, Order::RGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormB, Layout::L422, Order::RGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormB, Layout::L411, Order::RGB>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormA, Layout::L444, Order::BGR>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormB, Layout::L422, Order::BGR>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toC3<FormB, Layout::L411, Order::BGR>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L444, Fields::F555>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L422, Fields::F555>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L411, Fields::F555>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L444, Fields::F565>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L422, Fields::F565>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst, int dstStep)
{
    return toPacked<Layout::L411, Fields::F565>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return toCmyk<Layout::L444>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return toCmyk<Layout::L422>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst, int dstStep)
{
    return toCmyk<Layout::L411>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toSamples<Layout::L444>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toSamples<Layout::L422>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    return toSamples<Layout::L411>(pSrcMCU, pDst, dstStep);
}

VekStatus vekiJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int dstStep)
{
    const VekStatus status = check<3>(pSrcMCU, pDst, dstStep);
    if (status == vekStsOk)
        join422(pSrcMCU, pDst, dstStep);
    return status;
}

}  // namespace q3
