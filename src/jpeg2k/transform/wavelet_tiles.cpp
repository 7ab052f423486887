#include "jpeg2k/transform/wavelet_tiles.h"
#include "frame/implementations.h"

namespace q3 {

namespace {

// The sizes, as 32-bit integers that wrap: a line with room for its extension at both ends, unless no line is filtered;
// and, for the forms with sub-band planes, the work image.
VekStatus lineBufferSize(const VekRect* pTileRect, int* pSize, int shortest, int sampleBytes, int extraBytes)
{
    VEK_CHECK_POINTER(pTileRect);
    VEK_CHECK_POINTER(pSize);
    const int longest = std::max(pTileRect->width, pTileRect->height);
    *pSize = longest < shortest ? 0 : static_cast<int32_t>(int64_t{sampleBytes} * longest + extraBytes);
    return vekStsOk;
}
VekStatus tileBufferSize(const VekRect* pTileRect, int* pSize, int shortest, int sampleBytes, int extraBytes)
{
    const VekStatus status = lineBufferSize(pTileRect, pSize, shortest, sampleBytes, extraBytes);
    if (status == vekStsOk) {
        const auto rowBytes = static_cast<uint32_t>((int64_t{sampleBytes} * pTileRect->width + 31) & ~int64_t{31});
        const uint32_t image = rowBytes * static_cast<uint32_t>(pTileRect->height);
        *pSize = static_cast<int32_t>(static_cast<uint32_t>(*pSize) + image);
    }
    return status;
}

template <auto transform, typename T>
VekStatus inPlace(T* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_STEP(srcDstStep);
    VEK_CHECK_POINTER(pTileRect);
    VEK_CHECK_POINTER(pBuffer);
    transform(Region<T>{pSrcDst, srcDstStep}, *pTileRect, reinterpret_cast<T*>(pBuffer));
    return vekStsOk;
}

// What comes after the tests of the arguments themselves for null.
template <typename T>
VekStatus checkPlanes(int imageStep, T* const planes[4], const int steps[4], const VekRect& tile)
{
    VEK_CHECK_STEP(imageStep);
    VEK_CHECK_PLANES(planes, 4);
    for (int i = 0; i < 4; ++i) VEK_CHECK_STEP(steps[i]);
    VEK_CHECK_SIZE(tile);
    return vekStsOk;
}

template <typename Tile, typename T>
VekStatus toPlanes(const T* pSrc, int srcStep, const VekRect* pTileRect, T* const pDst[4], const int dstStep[4],
                   uint8_t* pBuffer)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pTileRect);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(dstStep);
    VEK_CHECK_POINTER(pBuffer);
    const VekStatus status = checkPlanes(srcStep, pDst, dstStep, *pTileRect);
    if (status == vekStsOk)
        forwardToPlanes<Tile>(Region<const T>{pSrc, srcStep}, *pTileRect, pDst, dstStep, pBuffer);
    return status;
}
template <typename Tile, typename T>
VekStatus fromPlanes(const T* const pSrc[4], const int srcStep[4], T* pDst, int dstStep, const VekRect* pTileRect,
                     uint8_t* pBuffer)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(srcStep);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pTileRect);
    VEK_CHECK_POINTER(pBuffer);
    const VekStatus status = checkPlanes(dstStep, pSrc, srcStep, *pTileRect);
    if (status == vekStsOk)
        inverseFromPlanes<Tile>(pSrc, srcStep, Region<T>{pDst, dstStep}, *pTileRect, pBuffer);
    return status;
}

}  // namespace

VekStatus vekiWTGetBufSize_B53_JPEG2K_16s_C1IR(const VekRect* pTileRect, int* pSize)
{
    return lineBufferSize(pTileRect, pSize, 3, 2, 8);
}
VekStatus vekiWTGetBufSize_B53_JPEG2K_16s_C1R(const VekRect* pTileRect, int* pSize)
{
    return tileBufferSize(pTileRect, pSize, 3, 2, 8);
}
VekStatus vekiWTFwd_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<forwardInPlace<Tile53<int16_t>, int16_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTInv_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<inverseInPlace<Tile53<int16_t>, int16_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTFwd_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, const VekRect* pTileRect,
                                       int16_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer)
{
    return toPlanes<Tile53<int16_t>>(pSrc, srcStep, pTileRect, pDst, dstStep, pBuffer);
}
VekStatus vekiWTInv_B53_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int srcStep[4], int16_t* pDst, int dstStep,
                                       const VekRect* pTileRect, uint8_t* pBuffer)
{
    return fromPlanes<Tile53<int16_t>>(pSrc, srcStep, pDst, dstStep, pTileRect, pBuffer);
}

VekStatus vekiWTGetBufSize_B53_JPEG2K_32s_C1IR(const VekRect* pTileRect, int* pSize)
{
    return lineBufferSize(pTileRect, pSize, 3, 4, 16);
}
VekStatus vekiWTGetBufSize_B53_JPEG2K_32s_C1R(const VekRect* pTileRect, int* pSize)
{
    return tileBufferSize(pTileRect, pSize, 3, 4, 16);
}
VekStatus vekiWTFwd_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<forwardInPlace<Tile53<int32_t>, int32_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTInv_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<inverseInPlace<Tile53<int32_t>, int32_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTFwd_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, const VekRect* pTileRect,
                                       int32_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer)
{
    return toPlanes<Tile53<int32_t>>(pSrc, srcStep, pTileRect, pDst, dstStep, pBuffer);
}
VekStatus vekiWTInv_B53_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int srcStep[4], int32_t* pDst, int dstStep,
                                       const VekRect* pTileRect, uint8_t* pBuffer)
{
    return fromPlanes<Tile53<int32_t>>(pSrc, srcStep, pDst, dstStep, pTileRect, pBuffer);
}

VekStatus vekiWTGetBufSize_D97_JPEG2K_16s_C1IR(const VekRect* pTileRect, int* pSize)
{
    return lineBufferSize(pTileRect, pSize, 2, 2, 16);
}
VekStatus vekiWTGetBufSize_D97_JPEG2K_16s_C1R(const VekRect* pTileRect, int* pSize)
{
    return tileBufferSize(pTileRect, pSize, 2, 2, 16);
}
VekStatus vekiWTFwd_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<forwardInPlace<Tile97<int16_t>, int16_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTInv_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<inverseInPlace<Tile97<int16_t>, int16_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTFwd_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int srcStep, const VekRect* pTileRect,
                                       int16_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer)
{
    return toPlanes<Tile97<int16_t>>(pSrc, srcStep, pTileRect, pDst, dstStep, pBuffer);
}
VekStatus vekiWTInv_D97_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int srcStep[4], int16_t* pDst, int dstStep,
                                       const VekRect* pTileRect, uint8_t* pBuffer)
{
    return fromPlanes<Tile97<int16_t>>(pSrc, srcStep, pDst, dstStep, pTileRect, pBuffer);
}

VekStatus vekiWTGetBufSize_D97_JPEG2K_32s_C1IR(const VekRect* pTileRect, int* pSize)
{
    return lineBufferSize(pTileRect, pSize, 2, 4, 32);
}
VekStatus vekiWTGetBufSize_D97_JPEG2K_32s_C1R(const VekRect* pTileRect, int* pSize)
{
    return tileBufferSize(pTileRect, pSize, 2, 4, 32);
}
VekStatus vekiWTFwd_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<forwardInPlace<Tile97<int32_t>, int32_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTInv_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int srcDstStep, const VekRect* pTileRect, uint8_t* pBuffer)
{
    return inPlace<inverseInPlace<Tile97<int32_t>, int32_t>>(pSrcDst, srcDstStep, pTileRect, pBuffer);
}
VekStatus vekiWTFwd_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, const VekRect* pTileRect,
                                       int32_t* const pDst[4], const int dstStep[4], uint8_t* pBuffer)
{
    return toPlanes<Tile97<int32_t>>(pSrc, srcStep, pTileRect, pDst, dstStep, pBuffer);
}
VekStatus vekiWTInv_D97_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int srcStep[4], int32_t* pDst, int dstStep,
                                       const VekRect* pTileRect, uint8_t* pBuffer)
{
    return fromPlanes<Tile97<int32_t>>(pSrc, srcStep, pDst, dstStep, pTileRect, pBuffer);
}

}  // namespace q3
