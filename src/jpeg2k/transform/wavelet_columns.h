// What the column forms of the filters have in common.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_COLUMNS_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_COLUMNS_H

#include "jpeg2k/transform/column_filters.h"
#include "jpeg2k/transform/wavelet_arguments.h"

namespace q3 {

// Rows that only steps ask for whose results nobody wants are replaced by the nearest that the caller owes.
template <typename Filter, typename T>
inline void forwardColumnsOf(const Filter& filter, const Region<const T>& src, const Region<T>& low,
                             const Region<T>& high, VekSize roiSize, int phase)
{
    const int reach = 2 * Filter::lead;
    const int first = phase - reach;
    const int last = 2 * (roiSize.height - 1) + phase + reach;
    forwardColumns(
        filter, [&](int i) { return src.row(std::clamp(i, first, last)); }, phase, [&](int i) { return low.row(i); },
        roiSize.height, [&](int i) { return high.row(i); }, roiSize.height, roiSize.width);
}
template <typename Filter, typename T>
inline void inverseColumnsOf(const Filter& filter, const Region<const T>& low, const Region<const T>& high,
                             const Region<T>& dst, VekSize roiSize, int phase)
{
    const int firstLow = 1 - Filter::lead - phase;
    const int lastLow = roiSize.height - 1 + Filter::lead - phase;
    const int lastHigh = roiSize.height - 1 + Filter::lead;
    inverseColumns(
        filter, [&](int i) { return low.row(std::clamp(i, firstLow, lastLow)); },
        [&](int i) { return high.row(std::clamp(i, -Filter::lead, lastHigh)); }, phase,
        [&](int i) { return dst.row(i); }, 2 * roiSize.height, roiSize.width);
}

}  // namespace q3

#endif
