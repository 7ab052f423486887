// What the column forms of the filters have in common.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_COLUMNS_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_COLUMNS_H

#include <initializer_list>

#include "jpeg2k/transform/column_filters.h"
#include "jpeg2k/transform/wavelet_arguments.h"

namespace q3 {

// Calls work(past cache or not, as a type; columns up to an aligned address of each row of results) for regions that
// take two results for each sample of the given size.
template <typename T, typename Work>
inline void withStoresFor(std::initializer_list<Region<T>> results, VekSize size, const Work& work)
{
    const int64_t head = bytesToAligned(results.begin()->data);
    bool pastCache = storesPastCache<T>(size) && head % int64_t{sizeof(T)} == 0;
    for (const Region<T>& r : results) pastCache = pastCache && bytesToAligned(r.data) == head && r.step % 32 == 0;
    if (!pastCache)
        return work(std::false_type{}, 0);
    work(std::true_type{}, static_cast<int>(head) / static_cast<int>(sizeof(T)));
    _mm_sfence();
}

// Rows that only steps ask for whose results nobody wants are replaced by the nearest that the caller owes.
template <typename Filter, typename T>
inline void forwardColumnsOf(const Filter& filter, const Region<const T>& src, const Region<T>& low,
                             const Region<T>& high, VekSize roiSize, int phase, int head)
{
    const int reach = 2 * Filter::lead;
    const int first = phase - reach;
    const int last = 2 * (roiSize.height - 1) + phase + reach;
    forwardColumns(
        filter, [&](int i) { return src.row(std::clamp(i, first, last)); }, phase, [&](int i) { return low.row(i); },
        roiSize.height, [&](int i) { return high.row(i); }, roiSize.height, roiSize.width, head);
}
template <typename Filter, typename T>
inline void inverseColumnsOf(const Filter& filter, const Region<const T>& low, const Region<const T>& high,
                             const Region<T>& dst, VekSize roiSize, int phase, int head)
{
    const int firstLow = 1 - Filter::lead - phase;
    const int lastLow = roiSize.height - 1 + Filter::lead - phase;
    const int lastHigh = roiSize.height - 1 + Filter::lead;
    inverseColumns(
        filter, [&](int i) { return low.row(std::clamp(i, firstLow, lastLow)); },
        [&](int i) { return high.row(std::clamp(i, -Filter::lead, lastHigh)); }, phase,
        [&](int i) { return dst.row(i); }, 2 * roiSize.height, roiSize.width, head);
}

}  // namespace q3

#endif
