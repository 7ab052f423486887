#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/parallel_rows.h"
#include "jpeg/samples/colour_subsampled_kernels.h"

namespace q3 {
namespace {

// The families with one chroma sample for two columns of one row (4:2:2) or of two rows (4:1:1) check no step. Rows is
// 1 or 2.
template <int Rows, typename T, typename Planes>
VekStatus checkSubsampled(const Planes* planes, const T* pixels, VekSize roiSize)
{
    VEK_CHECK_POINTER(planes);
    VEK_CHECK_POINTER(pixels);
    VEK_CHECK_PLANES(planes, 3);
    VEK_CHECK(roiSize.width >= 2 && roiSize.height >= Rows, vekStsBadSize);
    return vekStsOk;
}

template <int Rows>
VekStatus warnIfOdd(VekSize roiSize)
{
    return roiSize.width % 2 != 0 || roiSize.height % Rows != 0 ? vekStsOddSize : vekStsOk;
}

// Rows y to y + Rows - 1
template <int PixelBytes, int Rows, typename Byte>
Columns<Byte, Rows, PixelBytes, 1> rowsOf(Byte* p, int step, int y)
{
    Columns<Byte, Rows, PixelBytes, 1> columns{};
    for (int i = 0; i < Rows; ++i) columns.p[static_cast<size_t>(i)] = rowAt(p, step, y + i);
    return columns;
}

// Calls convert(y) for every group of Rows rows.
template <int Rows, typename Convert>
VekStatus forEachGroup(VekSize roiSize, const Convert& convert)
{
    for (int y = 0; y <= roiSize.height - Rows; y += Rows) convert(y);
    return warnIfOdd<Rows>(roiSize);
}

template <Order order, int Rows>
VekStatus toC3(const uint8_t* const* pSrc, const int* srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    const VekStatus status = checkSubsampled<Rows>(pSrc, pDst, roiSize);
    if (status != vekStsOk)
        return status;
    return forEachGroup<Rows>(roiSize, [=](int y) {
        const ChromaSource chroma{{rowAt(pSrc[1], srcStep[1], y / Rows), rowAt(pSrc[2], srcStep[2], y / Rows)}};
        ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3<order, Rows>(rowsOf<1, Rows>(pSrc[0], srcStep[0], y), chroma,
                                                             rowsOf<3, Rows>(pDst, dstStep, y), roiSize.width & ~1);
    });
}

template <Order order, int Rows>
VekStatus toC4(const uint8_t* const* pSrc, const int* srcStep, uint8_t* pDst, int dstStep, VekSize roiSize,
               uint8_t aval)
{
    const VekStatus status = checkSubsampled<Rows>(pSrc, pDst, roiSize);
    if (status != vekStsOk)
        return status;
    return forEachGroup<Rows>(roiSize, [=](int y) {
        const ChromaSource chroma{{rowAt(pSrc[1], srcStep[1], y / Rows), rowAt(pSrc[2], srcStep[2], y / Rows)}};
        ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4<order, Rows>(rowsOf<1, Rows>(pSrc[0], srcStep[0], y), chroma,
                                                             rowsOf<4, Rows>(pDst, dstStep, y), roiSize.width & ~1,
                                                             aval);
    });
}

template <Order order, int PixelBytes, int Rows>
VekStatus fromPixels(const uint8_t* pSrc, int srcStep, uint8_t* const* pDst, const int* dstStep, VekSize roiSize)
{
    const VekStatus status = checkSubsampled<Rows>(pDst, pSrc, roiSize);
    if (status != vekStsOk)
        return status;
    return forEachGroup<Rows>(roiSize, [=](int y) {
        const ChromaDestination chroma{{rowAt(pDst[1], dstStep[1], y / Rows), rowAt(pDst[2], dstStep[2], y / Rows)}};
        ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3<order, PixelBytes, Rows>(rowsOf<PixelBytes, Rows>(pSrc, srcStep, y),
                                                                         rowsOf<1, Rows>(pDst[0], dstStep[0], y),
                                                                         chroma, roiSize.width & ~1);
    });
}

}  // namespace

VekStatus vekiYCbCr422ToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize)
{
    return toC3<Order::RGB, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiYCbCr422ToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize)
{
    return toC3<Order::BGR, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiYCbCr411ToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize)
{
    return toC3<Order::RGB, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiYCbCr411ToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize)
{
    return toC3<Order::BGR, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiYCbCr422ToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize, uint8_t aval)
{
    return toC4<Order::RGB, 1>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

VekStatus vekiYCbCr422ToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize, uint8_t aval)
{
    return toC4<Order::BGR, 1>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

VekStatus vekiYCbCr411ToRGB_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize, uint8_t aval)
{
    return toC4<Order::RGB, 2>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

VekStatus vekiYCbCr411ToBGR_JPEG_8u_P3C4R(const uint8_t* const pSrc[3], const int srcStep[3], uint8_t* pDst,
                                          int dstStep, VekSize roiSize, uint8_t aval)
{
    return toC4<Order::BGR, 2>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

VekStatus vekiRGBToYCbCr422_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::RGB, 3, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiBGRToYCbCr422_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::BGR, 3, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiRGBToYCbCr422_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::RGB, 4, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiBGRToYCbCr422_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::BGR, 4, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiRGBToYCbCr411_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::RGB, 3, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiBGRToYCbCr411_JPEG_8u_C3P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::BGR, 3, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiRGBToYCbCr411_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::RGB, 4, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiBGRToYCbCr411_JPEG_8u_C4P3R(const uint8_t* pSrc, int srcStep, uint8_t* const pDst[3],
                                          const int dstStep[3], VekSize roiSize)
{
    return fromPixels<Order::BGR, 4, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

VekStatus vekiYCbCr422ToRGB_JPEG_8u_C2C3R(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK(roiSize.width >= 2 && roiSize.height >= 1, vekStsBadSize);
    forEachRow(roiSize, [=](int y) {
        ownjc_YCbCr422ToRGB_JPEG_8u_C2C3(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), roiSize.width);
    });
    return warnIfOdd<1>(roiSize);
}

}  // namespace q3
