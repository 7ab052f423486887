#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/parallel_rows.h"
#include "jpeg/samples/colour_forward_kernels.h"
#include "jpeg/samples/image_arguments.h"

namespace q3 {

VekStatus vekiRGBToYCbCr_JPEG_8u_P3R(const uint8_t* const pSrc[3], int srcStep, uint8_t* const pDst[3], int dstStep,
                                     VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_RGBToYCbCr_JPEG_8u_P3(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiCMYKToYCCK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int srcStep, uint8_t* const pDst[4], int dstStep,
                                     VekSize roiSize)
{
    const Image<const uint8_t, 4, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 4, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_CMYKToYCCK_JPEG_8u_P4(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiCMYKToYCCK_JPEG_8u_C4P4R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[4], int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 1, 4> src = {&pSrc, srcStep};
    const Image<uint8_t, 4, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Unchecked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_CMYKToYCCK_JPEG_8u_C4P4(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiRGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 1, 3> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize,
               [=](int y) { ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::RGB, 3>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiBGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 1, 3> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize,
               [=](int y) { ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::BGR, 3>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiRGBToYCbCr_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 1, 4> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Unchecked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::RGB, 4>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiBGRToYCbCr_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                       VekSize roiSize)
{
    const Image<const uint8_t, 1, 4> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Unchecked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBToYCbCr_JPEG_8u_CnP3<Order::BGR, 4>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint16_t, 1, 2> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::RGB, Fields::F555>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint16_t, 1, 2> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::BGR, Fields::F555>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint16_t, 1, 2> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::RGB, Fields::F565>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int srcStep, uint8_t* const pDst[3], int dstStep,
                                             VekSize roiSize)
{
    const Image<const uint16_t, 1, 2> src = {&pSrc, srcStep};
    const Image<uint8_t, 3, 1> dst = {pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    for (int y = 0; y < roiSize.height; ++y)
        ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3<Order::BGR, Fields::F565>(src.row(y), dst.row(y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiRGBToY_JPEG_8u_P3C1R(const uint8_t* const pSrc[3], int srcStep, uint8_t* pDst, int dstStep,
                                   VekSize roiSize)
{
    const Image<const uint8_t, 3, 1> src = {pSrc, srcStep};
    const Image<uint8_t, 1, 1> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_RGBToY_JPEG_8u_P3C1(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiRGBToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    const Image<const uint8_t, 1, 3> src = {&pSrc, srcStep};
    const Image<uint8_t, 1, 1> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_RGBToY_JPEG_8u_C3C1<Order::RGB>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

VekStatus vekiBGRToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    const Image<const uint8_t, 1, 3> src = {&pSrc, srcStep};
    const Image<uint8_t, 1, 1> dst = {&pDst, dstStep};
    const VekStatus status = checkImages<Steps::Checked>(src, dst, roiSize);
    if (status != vekStsOk)
        return status;
    forEachRow(roiSize, [=](int y) { ownjc_RGBToY_JPEG_8u_C3C1<Order::BGR>(src.row(y), dst.row(y), roiSize.width); });
    return vekStsOk;
}

}  // namespace q3
