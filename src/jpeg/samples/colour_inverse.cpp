#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/parallel_rows.h"
#include "jpeg/samples/colour_inverse_kernels.h"
#include "jpeg/samples/image_arguments.h"

namespace q3 {

VekStatus vekiYCbCrToRGB_JPEG_8u_P3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* const pDst[3], int dstStep,
                                     VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_YCbCrToRGB_JPEG_8u_P3(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiYCCKToCMYK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* const pDst[4], int dstStep,
                                     VekSize roiSize)
{
    const Image<const uint8_t, 4, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 4, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_YCCKToCMYK_JPEG_8u_P4(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiYCCKToCMYK_JPEG_8u_P4C4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* pDst, int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 4, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 4> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_YCCKToCMYK_JPEG_8u_P4C4(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiYCbCrToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 3> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize,
               [=](int y) { ownjc_YCbCrToRGB_JPEG_8u_P3C3<Order::RGB>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiYCbCrToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 3> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize,
               [=](int y) { ownjc_YCbCrToRGB_JPEG_8u_P3C3<Order::BGR>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiYCbCrToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                       VekSize roiSize, uint8_t aval)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 4> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Unchecked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGB_JPEG_8u_P3C4<Order::RGB>(src.row(y), dst.row(y), roiSize.width, aval);
    return vekStsOk;
}

VekStatus vekiYCbCrToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                       VekSize roiSize, uint8_t aval)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 4> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Unchecked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGB_JPEG_8u_P3C4<Order::BGR>(src.row(y), dst.row(y), roiSize.width, aval);
    return vekStsOk;
}

VekStatus vekiYCbCrToRGB555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst, int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint16_t, 1, 2> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::RGB, Fields::F555>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiYCbCrToBGR555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst, int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint16_t, 1, 2> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::BGR, Fields::F555>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiYCbCrToRGB565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst, int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint16_t, 1, 2> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::RGB, Fields::F565>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiYCbCrToBGR565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int srcStep, uint16_t* pDst, int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint16_t, 1, 2> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3<Order::BGR, Fields::F565>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

}  // namespace q3
