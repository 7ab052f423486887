// MCU encoding: interleaved pixels to planes of level-shifted samples, for every layout, arithmetic and pixel format.
#ifndef VEK_JPEG_SAMPLES_MCU_ENCODE_H
#define VEK_JPEG_SAMPLES_MCU_ENCODE_H

#include <immintrin.h>

#include <cstdint>

#include "frame/checks.h"
#include "frame/vec.h"
#include "jpeg/samples/mcu_encode_forms.h"
#include "jpeg/samples/mcu_layout.h"
#include "jpeg/samples/mcu_pixel_loads.h"

namespace q3 {

// The sums over two neighbours in a row: of pixels 0 and 1, 2 and 3, 4 and 5, 6 and 7, in each half.
struct PairSums {
    __m256i rg, bg;

    explicit PairSums(const PixelPairs& p)
        : rg(_mm256_hadd_epi32(p.rgLeft, p.rgRight)), bg(_mm256_hadd_epi32(p.bgLeft, p.bgRight))
    {
    }
};

// One MCU. Two rows of chroma are made together. 16 pixels at a time are 8 of two rows in 4:4:4 and 4:2:2, as the rows
// of a block follow each other, and one row of 16 in 4:1:1, where rows are added before neighbours are.
template <McuLayout layout, typename Form, typename Pixels>
inline void ownEncodeMCU(const uint8_t* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    int16_t* const pLuma = pDstMCU[0];
    int16_t* const pCb = pDstMCU[1];
    int16_t* const pCr = pDstMCU[2];
    constexpr int rightBytes = 8 * Pixels::pixelBytes;

    int16_t* const pKey = Pixels::hasKey ? pDstMCU[3] : nullptr;
    constexpr int stride = layout == McuLayout::s411 ? 64 : 8;  // from the first eight pixels to the other ones

    // Stores Y, and K if there is one, of 16 pixels; returns them for the chroma.
    const auto loadPixels = [=](const uint8_t* pLow, const uint8_t* pHigh, int luma) __attribute__((always_inline))
    {
        const PixelPairs p = Pixels::load(pLow, pHigh);
        storeSamples<stride>(pLuma, luma,
                             _mm256_packs_epi32(Form::luma(p.rgLeft, p.bgLeft), Form::luma(p.rgRight, p.bgRight)));
        if constexpr (Pixels::hasKey)
            storeSamples<stride>(pKey, luma, Pixels::key(pLow, pHigh));
        return p;
    };
    // Both rows of a 4:1:1 chroma row: chroma 0 to 3 in the low half, 4 to 7 in the high one.
    const auto loadTwoRows = [=](int y) __attribute__((always_inline))
    {
        const uint8_t* pUpper = rowAt(pSrc, srcStep, y);
        const uint8_t* pLower = rowAt(pSrc, srcStep, y + 1);
        const PixelPairs u = loadPixels(pUpper, pUpper + rightBytes, mcuLumaIndex(0, y));
        const PixelPairs l = loadPixels(pLower, pLower + rightBytes, mcuLumaIndex(0, y + 1));
        return PairSums({_mm256_add_epi32(u.rgLeft, l.rgLeft), _mm256_add_epi32(u.rgRight, l.rgRight),
                         _mm256_add_epi32(u.bgLeft, l.bgLeft), _mm256_add_epi32(u.bgRight, l.bgRight)});
    };

    for (int chromaRow = 0; chromaRow < 8; chromaRow += 2) {
        __m256i cb, cr;
        if constexpr (layout == McuLayout::s411) {
            const PairSums upper = loadTwoRows(2 * chromaRow);
            const PairSums lower = loadTwoRows(2 * chromaRow + 2);
            cb = _mm256_packs_epi32(Form::template cb<2>(upper.rg, upper.bg), Form::template cb<2>(lower.rg, lower.bg));
            cr = _mm256_packs_epi32(Form::template cr<2>(upper.rg, upper.bg), Form::template cr<2>(lower.rg, lower.bg));
            cb = _mm256_permute4x64_epi64(cb, 0xD8);
            cr = _mm256_permute4x64_epi64(cr, 0xD8);
        } else {
            const uint8_t* pUpper = rowAt(pSrc, srcStep, chromaRow);
            const uint8_t* pLower = rowAt(pSrc, srcStep, chromaRow + 1);
            const PixelPairs p = loadPixels(pUpper, pLower, mcuLumaIndex(0, chromaRow));
            if constexpr (layout == McuLayout::s444) {
                cb = _mm256_packs_epi32(Form::template cb<0>(p.rgLeft, p.bgLeft),
                                        Form::template cb<0>(p.rgRight, p.bgRight));
                cr = _mm256_packs_epi32(Form::template cr<0>(p.rgLeft, p.bgLeft),
                                        Form::template cr<0>(p.rgRight, p.bgRight));
            } else {
                const PairSums left(p);
                const PairSums right(loadPixels(pUpper + rightBytes, pLower + rightBytes, mcuLumaIndex(8, chromaRow)));
                cb = _mm256_packs_epi32(Form::template cb<1>(left.rg, left.bg),
                                        Form::template cb<1>(right.rg, right.bg));
                cr = _mm256_packs_epi32(Form::template cr<1>(left.rg, left.bg),
                                        Form::template cr<1>(right.rg, right.bg));
            }
        }
        storeU(pCb + 8 * chromaRow, cb);
        storeU(pCr + 8 * chromaRow, cr);
    }
}

// The checks of every encoding member, in their order.
template <int planes>
inline VekStatus checkEncodeMCU(const void* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDstMCU);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_PLANES(pDstMCU, planes);
    return vekStsOk;
}

// A member with one arithmetic, whatever the alignment of the planes.
template <McuLayout layout, typename Form, typename Pixels>
inline VekStatus encodeMCU(const void* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    const VekStatus status = checkEncodeMCU < Pixels::hasKey ? 4 : 3 > (pSrc, srcStep, pDstMCU);
    if (status == vekStsOk)
        ownEncodeMCU<layout, Form, Pixels>(static_cast<const uint8_t*>(pSrc), srcStep, pDstMCU);
    return status;
}

// A member whose planes choose: BlockForm if those whose bits are set in `decidingPlanes` lie at multiples of 16 bytes,
// else the scalar form.
template <McuLayout layout, typename BlockForm, typename Pixels, unsigned decidingPlanes>
inline VekStatus encodeMCUByAlignment(const void* pSrc, int srcStep, int16_t* const* pDstMCU)
{
    constexpr int planes = Pixels::hasKey ? 4 : 3;
    const VekStatus status = checkEncodeMCU<planes>(pSrc, srcStep, pDstMCU);
    if (status != vekStsOk)
        return status;
    if (planesAligned<decidingPlanes>(pDstMCU))
        ownEncodeMCU<layout, BlockForm, Pixels>(static_cast<const uint8_t*>(pSrc), srcStep, pDstMCU);
    else
        ownEncodeMCU<layout, EncodeScalarForm, Pixels>(static_cast<const uint8_t*>(pSrc), srcStep, pDstMCU);
    return vekStsOk;
}

}  // namespace q3

#endif
