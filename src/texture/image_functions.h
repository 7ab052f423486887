// What all functions on whole images do alike: their checks, and the walk from block to block.
#ifndef VEK_TEXTURE_IMAGE_FUNCTIONS_H
#define VEK_TEXTURE_IMAGE_FUNCTIONS_H

#include "frame/checks.h"
#include "texture/block_walk.h"

namespace q3 {

#define VEK_CHECK_IMAGE(pSrc, pDst, step, roiSize) \
    do {                                           \
        VEK_CHECK_POINTER(pSrc);                   \
        VEK_CHECK_POINTER(pDst);                   \
        VEK_CHECK((step) != 0, vekStsBadStep);     \
        VEK_CHECK_SIZE(roiSize);                   \
    } while (false)

using EncodeBlock = void(const uint8_t* p, int64_t step, uint8_t* block);
using DecodeBlock = void(const uint8_t* block, uint8_t* p, int64_t step);

template <int pixelBytes, int blockBytes, EncodeBlock encode>
VekStatus encodeImage(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize, uint8_t* pDst)
{
    VEK_CHECK_IMAGE(pSrc, pDst, srcStep, roiSize);
    encodeBlocks<pixelBytes, blockBytes>(
        pSrc, srcStep, roiSize, pDst, [](const uint8_t* p, int64_t step, uint8_t* block) { encode(p, step, block); });
    return vekStsOk;
}

// Steps are 32-bit numbers, with or without a sign.
template <int pixelBytes, int blockBytes, DecodeBlock decode>
VekStatus decodeImage(const uint8_t* pSrc, uint8_t* pDst, int64_t dstStep, VekSize roiSize)
{
    VEK_CHECK_IMAGE(pSrc, pDst, dstStep, roiSize);
    decodeBlocks<pixelBytes, blockBytes>(
        pSrc, pDst, dstStep, roiSize, [](const uint8_t* block, uint8_t* p, int64_t step) { decode(block, p, step); });
    return vekStsOk;
}

}  // namespace q3

#endif
