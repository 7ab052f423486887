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

// One MCU. Two rows of chroma, one in each lane, are worked on together, and the pixels of two such groups stored. The
// loops are unrolled: the whole of an MCU takes no longer than a few passes of a loop take to find their pace.
template <McuLayout layout, typename Form, typename Pixels>
inline void ownDecodeMCU(const int16_t* const* pSrcMCU, uint8_t* pDst, int dstStep)
{
    const int16_t* const pLuma = pSrcMCU[0];
    const int16_t* const pCb = pSrcMCU[1];
    const int16_t* const pCr = pSrcMCU[2];
    const int16_t* const pKey = Pixels::hasKey ? pSrcMCU[3] : nullptr;
    constexpr int rowsPerChroma = layout == McuLayout::s411 ? 2 : 1;

    const auto terms = [=](int chromaRow) __attribute__((always_inline))
    {
        return Form::terms(loadU(pCb + 8 * chromaRow), loadU(pCr + 8 * chromaRow));
    };
    // 8 luma samples at `luma` and 8 of the row that has the next row of chroma, with their terms.
    const auto pixels = [=](int luma, const Channels& t) __attribute__((always_inline))
    {
        const Channels c = Form::channels(loadSamples<8 * rowsPerChroma>(pLuma, luma), t);
        if constexpr (Pixels::hasKey)
            return ChannelsAndKey{c, Form::key(loadSamples<8 * rowsPerChroma>(pKey, luma))};
        else
            return c;
    };

    if constexpr (layout == McuLayout::s444) {
#pragma GCC unroll 2
        for (int y = 0; y < 8; y += 4)
            Pixels::storeBelow(rowAt(pDst, dstStep, y), dstStep, pixels(8 * y, terms(y)),
                               pixels(8 * (y + 2), terms(y + 2)));
    } else {
#pragma GCC unroll 4
        for (int chromaRow = 0; chromaRow < 8; chromaRow += 2) {
            const DoubledTerms doubled(terms(chromaRow));
#pragma GCC unroll 2
            for (int i = 0; i < rowsPerChroma; ++i) {
                const int y = rowsPerChroma * chromaRow + i;
                uint8_t* pUpper = rowAt(pDst, dstStep, y);
                Pixels::storeBeside(pUpper, rowAt(pUpper, dstStep, rowsPerChroma),
                                    pixels(mcuLumaIndex(0, y), doubled.low), pixels(mcuLumaIndex(8, y), doubled.high));
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
    constexpr int planes = Pixels::hasKey ? 4 : 3;
    const VekStatus status = checkDecodeMCU<planes>(pSrcMCU, pDst, dstStep);
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
    constexpr unsigned named = Pixels::hasKey ? 0b1111 : 0b0111;
    if (planesAligned<named>(pSrcMCU))
        ownDecodeMCU<layout, BlockForm, Pixels>(pSrcMCU, static_cast<uint8_t*>(pDst), dstStep);
    else
        ownDecodeMCU<layout, DecodeScalarForm, Pixels>(pSrcMCU, static_cast<uint8_t*>(pDst), dstStep);
    return vekStsOk;
}

}  // namespace q3

#endif
