// MCU decoding: planes of level-shifted samples to interleaved pixels, for every layout, arithmetic and pixel format.
#ifndef VEK_JPEG_SAMPLES_MCU_DECODE_H
#define VEK_JPEG_SAMPLES_MCU_DECODE_H

#include <immintrin.h>

#include <cstdint>

#include "frame/checks.h"
#include "frame/vec.h"
#include "jpeg/samples/mcu_decode_forms.h"
#include "jpeg/samples/mcu_layout.h"
#include "jpeg/samples/mcu_pixel_stores.h"

namespace q3 {

// The terms of two chroma rows, for each of the two pixels in a row that share them. 16 terms become 2 * 16.
struct DoubledTerms {
    Channels low, high;

    explicit DoubledTerms(const Channels& t)
        : low{_mm256_unpacklo_epi16(t.first, t.first), _mm256_unpacklo_epi16(t.second, t.second),
              _mm256_unpacklo_epi16(t.third, t.third)},
          high{_mm256_unpackhi_epi16(t.first, t.first), _mm256_unpackhi_epi16(t.second, t.second),
               _mm256_unpackhi_epi16(t.third, t.third)}
    {
    }
};

// One MCU. Two rows of chroma, one in each half of a vector, are worked on together. 16 pixels at a time are 8 of two
// rows in 4:4:4 and 4:2:2, as the rows of a block follow each other, and one row of 16 in 4:1:1.
template <McuLayout layout, typename Form, typename Pixels>
inline void ownDecodeMCU(const int16_t* const* pSrcMCU, uint8_t* pDst, int dstStep)
{
    const int16_t* const pLuma = pSrcMCU[0];
    const int16_t* const pCb = pSrcMCU[1];
    const int16_t* const pCr = pSrcMCU[2];
    const int16_t* const pKey = Pixels::hasKey ? pSrcMCU[3] : nullptr;
    constexpr int stride = layout == McuLayout::s411 ? 64 : 8;  // from the first eight pixels to the other ones

    const auto storePixels = [=](int luma, uint8_t* pLow, uint8_t* pHigh, const Channels& terms)
        __attribute__((always_inline))
    {
        const Channels c = Form::channels(loadSamples<stride>(pLuma, luma), terms);
        if constexpr (Pixels::hasKey)
            Pixels::store(pLow, pHigh, c, Form::key(loadSamples<stride>(pKey, luma)));
        else
            Pixels::store(pLow, pHigh, c);
    };
    constexpr int rightBytes = 8 * Pixels::pixelBytes;

    for (int chromaRow = 0; chromaRow < 8; chromaRow += 2) {
        const Channels terms = Form::terms(loadU(pCb + 8 * chromaRow), loadU(pCr + 8 * chromaRow));
        if constexpr (layout == McuLayout::s411) {
            // The halves of each chroma row go to the low halves, or the high ones, of both halves.
            constexpr int transposed = 0xD8;
            const DoubledTerms doubled({_mm256_permute4x64_epi64(terms.first, transposed),
                                        _mm256_permute4x64_epi64(terms.second, transposed),
                                        _mm256_permute4x64_epi64(terms.third, transposed)});
            for (int i = 0; i < 4; ++i) {
                const int y = 2 * chromaRow + i;
                uint8_t* pRow = rowAt(pDst, dstStep, y);
                storePixels(mcuLumaIndex(0, y), pRow, pRow + rightBytes, i < 2 ? doubled.low : doubled.high);
            }
        } else {
            uint8_t* pUpper = rowAt(pDst, dstStep, chromaRow);
            uint8_t* pLower = rowAt(pDst, dstStep, chromaRow + 1);
            if constexpr (layout == McuLayout::s444) {
                storePixels(8 * chromaRow, pUpper, pLower, terms);
            } else {
                const DoubledTerms doubled(terms);
                storePixels(mcuLumaIndex(0, chromaRow), pUpper, pLower, doubled.low);
                storePixels(mcuLumaIndex(8, chromaRow), pUpper + rightBytes, pLower + rightBytes, doubled.high);
            }
        }
    }
}

// The checks of every decoding member, in their order.
template <int planes>
inline VekStatus checkDecodeMCU(const int16_t* const* pSrcMCU, const void* pDst, int dstStep)
{
    VEK_CHECK_POINTER(pSrcMCU);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_PLANES(pSrcMCU, planes);
    VEK_CHECK_STEP(dstStep);
    return vekStsOk;
}

// A member with one arithmetic, whatever the alignment of the planes.
template <McuLayout layout, typename Form, typename Pixels>
inline VekStatus decodeMCU(const int16_t* const* pSrcMCU, void* pDst, int dstStep)
{
    const VekStatus status = checkDecodeMCU < Pixels::hasKey ? 4 : 3 > (pSrcMCU, pDst, dstStep);
    if (status == vekStsOk)
        ownDecodeMCU<layout, Form, Pixels>(pSrcMCU, static_cast<uint8_t*>(pDst), dstStep);
    return status;
}

// A member whose planes choose: BlockForm if all of them lie at multiples of 16 bytes, else the scalar form.
template <McuLayout layout, typename BlockForm, typename Pixels>
inline VekStatus decodeMCUByAlignment(const int16_t* const* pSrcMCU, void* pDst, int dstStep)
{
    constexpr int planes = Pixels::hasKey ? 4 : 3;
    const VekStatus status = checkDecodeMCU<planes>(pSrcMCU, pDst, dstStep);
    if (status != vekStsOk)
        return status;
    if (planesAligned < Pixels::hasKey ? 0b1111 : 0b0111 > (pSrcMCU))
        ownDecodeMCU<layout, BlockForm, Pixels>(pSrcMCU, static_cast<uint8_t*>(pDst), dstStep);
    else
        ownDecodeMCU<layout, DecodeScalarForm, Pixels>(pSrcMCU, static_cast<uint8_t*>(pDst), dstStep);
    return vekStsOk;
}

}  // namespace q3

#endif
