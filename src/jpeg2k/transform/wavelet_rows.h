// What the row forms of the filters have in common.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_ROWS_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_ROWS_H

#include "jpeg2k/transform/line_filters.h"
#include "jpeg2k/transform/wavelet_arguments.h"
#include "jpeg2k/transform/wavelet_row_kernels.h"

namespace q3 {

constexpr int unbounded = 1 << 30;  // beyond every position of a row: the caller has laid out what is read

template <typename Filter, typename T>
inline void forwardRow(const Filter& filter, const T* x, T* low, T* high, int width, int phase, bool pastCache)
{
    forwardLine(filter, NaturalLine<T>{x, phase, -unbounded, unbounded}, low, width, high, width, pastCache);
}
template <typename Filter, typename T>
inline void inverseRow(const Filter& filter, const T* low, const T* high, T* x, int width, int phase, bool pastCache)
{
    inverseLine(filter, BandLine<T>{low, high, phase, -unbounded, unbounded}, x, 2 * width, pastCache);
}

template <typename T, void (*kernel)(const T*, T*, T*, int, int, bool)>
inline VekStatus forwardRows(Region<const T> src, Region<T> low, Region<T> high, VekSize roiSize, int phase)
{
    const VekStatus status = checkRegions(src, low, high, roiSize);
    if (status != vekStsOk)
        return status;
    const bool pastCache = storesPastCache<T>(roiSize);
    for (int y = 0; y < roiSize.height; ++y)
        kernel(src.row(y), low.row(y), high.row(y), roiSize.width, phase != 0, pastCache);
    if (pastCache)
        _mm_sfence();
    return vekStsOk;
}
template <typename T, void (*kernel)(const T*, const T*, T*, int, int, bool)>
inline VekStatus inverseRows(Region<const T> low, Region<const T> high, Region<T> dst, VekSize roiSize, int phase)
{
    const VekStatus status = checkRegions(low, high, dst, roiSize);
    if (status != vekStsOk)
        return status;
    const bool pastCache = storesPastCache<T>(roiSize);
    for (int y = 0; y < roiSize.height; ++y)
        kernel(low.row(y), high.row(y), dst.row(y), roiSize.width, phase != 0, pastCache);
    if (pastCache)
        _mm_sfence();
    return vekStsOk;
}

}  // namespace q3

#endif
