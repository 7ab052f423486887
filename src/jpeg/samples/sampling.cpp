#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/parallel_rows.h"
#include "frame/vec.h"
#include "jpeg/samples/sampling_kernels.h"

namespace q3 {
namespace {

VekStatus checkPlanes(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, const uint8_t* pDst, int dstStep,
                      VekSize dstRoiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_SIZE(srcRoiSize);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(dstRoiSize);
    return vekStsOk;
}

}  // namespace

VekStatus vekiSampleDownH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                         int dstStep, VekSize dstRoiSize)
{
    const VekStatus status = checkPlanes(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(dstRoiSize, [=](int y) {
        ownjc_SampleDownH2V1_JPEG_8u_C1(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), dstRoiSize.width);
    });
    return vekStsOk;
}

VekStatus vekiSampleDownH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst,
                                         int dstStep, VekSize dstRoiSize)
{
    const VekStatus status = checkPlanes(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(dstRoiSize, [=](int y) {
        ownjc_SampleDownH2V2_JPEG_8u_C1(rowAt(pSrc, 2 * int64_t{srcStep}, y), srcStep, rowAt(pDst, dstStep, y),
                                        dstRoiSize.width);
    });
    return vekStsOk;
}

VekStatus vekiSampleUpH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst, int dstStep,
                                       VekSize dstRoiSize)
{
    const VekStatus status = checkPlanes(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < dstRoiSize.height; ++y)
        ownjc_SampleUpH2V1_JPEG_8u_C1(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), dstRoiSize.width);
    return vekStsOk;
}

VekStatus vekiSampleUpH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int srcStep, VekSize srcRoiSize, uint8_t* pDst, int dstStep,
                                       VekSize dstRoiSize)
{
    const VekStatus status = checkPlanes(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(dstRoiSize, [=](int y) {
        const uint8_t* const near = rowAt(pSrc, srcStep, y / 2);
        const uint8_t* const far = y % 2 != 0 ? near + srcStep : near - srcStep;
        ownjc_SampleUpH2V2_JPEG_8u_C1(near, far, rowAt(pDst, dstStep, y), dstRoiSize.width);
    });
    return vekStsOk;
}

VekStatus vekiSampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcWidth);
    ownjc_SampleDownRowH2V1_Box_JPEG_8u_C1(pSrc, srcWidth, pDst);
    return vekStsOk;
}

VekStatus vekiSampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth, uint8_t* pDst)
{
    VEK_CHECK_POINTER(pSrc1);
    VEK_CHECK_POINTER(pSrc2);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcWidth);
    ownjc_SampleDownRowH2V2_Box_JPEG_8u_C1(pSrc1, pSrc2, srcWidth, pDst);
    return vekStsOk;
}

VekStatus vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcWidth);
    ownjc_SampleUpRowH2V1_Triangle_JPEG_8u_C1(pSrc, srcWidth, pDst);
    return vekStsOk;
}

VekStatus vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth,
                                                  uint8_t* pDst)
{
    VEK_CHECK_POINTER(pSrc1);
    VEK_CHECK_POINTER(pSrc2);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(srcWidth);
    ownjc_SampleUpRowH2V2_Triangle_JPEG_8u_C1(pSrc1, pSrc2, srcWidth, pDst);
    return vekStsOk;
}

}  // namespace q3
