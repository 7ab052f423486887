#include <array>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg2k/transform/component_kernels.h"

namespace q3 {

namespace {

template <typename T>
std::array<T*, 3> rowOfPlanes(T* const planes[3], int step, int y)
{
    return {rowAt(planes[0], step, y), rowAt(planes[1], step, y), rowAt(planes[2], step, y)};
}

// Rows that follow one another without gaps are one long row.
template <typename T>
VekSize joinedRows(VekSize roiSize, int64_t pixelStep, int64_t planeStep)
{
    const int64_t rowBytes = int64_t{roiSize.width} * int64_t{sizeof(T)};
    const int64_t pixels = int64_t{roiSize.width} * roiSize.height;
    if (planeStep != rowBytes || pixelStep != 3 * rowBytes || pixels > INT32_MAX)
        return roiSize;
    return {static_cast<int32_t>(pixels), 1};
}

template <auto kernel, typename T>
VekStatus toPlanes(const T* pSrc, int srcStep, T* const pDst[3], int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_PLANES(pDst, 3);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(roiSize);
    const VekSize rows = joinedRows<T>(roiSize, srcStep, dstStep);
    for (int y = 0; y < rows.height; ++y)
        kernel(rowAt(pSrc, srcStep, y), rowOfPlanes(pDst, dstStep, y).data(), rows.width);
    return vekStsOk;
}

template <auto kernel, typename T>
VekStatus fromPlanes(const T* const pSrc[3], int srcStep, T* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_PLANES(pSrc, 3);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(roiSize);
    const VekSize rows = joinedRows<T>(roiSize, dstStep, srcStep);
    for (int y = 0; y < rows.height; ++y)
        kernel(rowOfPlanes(pSrc, srcStep, y).data(), rowAt(pDst, dstStep, y), rows.width);
    return vekStsOk;
}

template <auto kernel, typename T>
VekStatus inPlace(T* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_PLANES(pSrcDst, 3);
    VEK_CHECK_STEP(srcDstStep);
    VEK_CHECK_SIZE(roiSize);
    const VekSize rows = joinedRows<T>(roiSize, 3 * int64_t{srcDstStep}, srcDstStep);
    for (int y = 0; y < rows.height; ++y) kernel(rowOfPlanes(pSrcDst, srcDstStep, y).data(), rows.width);
    return vekStsOk;
}

}  // namespace

VekStatus vekiRCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int srcStep, int16_t* const pDst[3], int dstStep,
                                      VekSize roiSize)
{
    return toPlanes<ownjc_RCTFwd_JPEG2K_16s_C3P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
VekStatus vekiRCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int srcStep, int32_t* const pDst[3], int dstStep,
                                      VekSize roiSize)
{
    return toPlanes<ownjc_RCTFwd_JPEG2K_32s_C3P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
VekStatus vekiICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, int srcStep, float* const pDst[3], int dstStep,
                                      VekSize roiSize)
{
    return toPlanes<ownjc_ICTFwd_JPEG2K_32f_C3P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiRCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int srcStep, int16_t* pDst, int dstStep,
                                      VekSize roiSize)
{
    return fromPlanes<ownjc_RCTInv_JPEG2K_16s_P3C3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
VekStatus vekiRCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int srcStep, int32_t* pDst, int dstStep,
                                      VekSize roiSize)
{
    return fromPlanes<ownjc_RCTInv_JPEG2K_32s_P3C3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
VekStatus vekiICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], int srcStep, float* pDst, int dstStep,
                                      VekSize roiSize)
{
    return fromPlanes<ownjc_ICTInv_JPEG2K_32f_P3C3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiRCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_RCTFwd_JPEG2K_16s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiRCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_RCTInv_JPEG2K_16s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiRCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_RCTFwd_JPEG2K_32s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiRCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_RCTInv_JPEG2K_32s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<my_ICTFwd_JPEG2K_16s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<my_ICTInv_JPEG2K_16s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_ICTFwd_JPEG2K_32s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_ICTInv_JPEG2K_32s_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_ICTFwd_JPEG2K_32f_P3IR>(pSrcDst, srcDstStep, roiSize);
}
VekStatus vekiICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int srcDstStep, VekSize roiSize)
{
    return inPlace<ownjc_ICTInv_JPEG2K_32f_P3IR>(pSrcDst, srcDstStep, roiSize);
}

}  // namespace q3
