// The two passes of one level of a whole tile: over its columns and over its rows. A line of n samples holds first its
// low-pass samples, then its high-pass ones, once it is filtered.
#ifndef VEK_JPEG2K_TRANSFORM_TILE_PASSES_H
#define VEK_JPEG2K_TRANSFORM_TILE_PASSES_H

#include "jpeg2k/transform/collift_rows.h"
#include "jpeg2k/transform/column_filters.h"
#include "jpeg2k/transform/lifting97_tile.h"
#include "jpeg2k/transform/line_filters.h"
#include "jpeg2k/transform/wavelet_arguments.h"

namespace q3 {

// The filters of whole tiles.
template <typename T>
struct Tile53 {
    using Sample = T;
    using Lines = LineFilter53<T>;
    using Columns = ColumnFilter53<T>;
    static constexpr bool closedFormOfTwo = true;
};
template <typename T>
struct Tile97 {
    using Sample = T;
    using Stages = std::conditional_t<sizeof(T) == 2, Q14Stages, MixedStages>;
    using Lines = LineFilter97<T, Stages>;
    using Columns = ColumnFilter97<T, Stages>;
    static constexpr bool closedFormOfTwo = false;
};

inline int lowCountOf(int n, int phase) { return (n + 1 - phase) / 2; }

// A line of one sample is doubled, wrapping, at an odd position, and halved again, towards zero; this holds for every
// filter.
template <typename T>
inline __m256i doubled(__m256i v)
{
    return Lifting53<T>::sum(v, v);
}
template <typename T>
inline __m256i halved(__m256i v)
{
    if constexpr (sizeof(T) == 2)
        return _mm256_srai_epi16(_mm256_add_epi16(v, _mm256_srli_epi16(v, 15)), 1);
    else
        return _mm256_srai_epi32(_mm256_add_epi32(v, _mm256_srli_epi32(v, 31)), 1);
}

// Lines of one sample, `count` of them side by side.
template <typename T, typename Scale>
inline void scaleSingles(const T* src, T* dst, int count, int phase, const Scale& scale)
{
    alongRows<T>(count, false, [&](int i, auto lanes) {
        const __m256i v = loadLanes(src + i, lanes);
        storeLanes(dst + i, phase != 0 ? scale(v) : v, lanes);
    });
}

// Lines of two samples by the 5/3 filter, `count` of them side by side; `even` and `odd` are the samples at even and
// odd positions.
//      H = O - E, L = E + ((H + 1) >> 1)        E = L - ((H + 1) >> 1), O = H + E
template <typename T>
inline void forwardOfTwo(const T* even, const T* odd, T* low, T* high, int count)
{
    alongRows<T>(count, false, [=](int i, auto lanes) {
        const __m256i e = loadLanes(even + i, lanes);
        const __m256i h = Lifting53<T>::difference(loadLanes(odd + i, lanes), e);
        storeLanes(low + i, Lifting53<T>::sum(e, Lifting53<T>::halfRoundedUp(h)), lanes);
        storeLanes(high + i, h, lanes);
    });
}
template <typename T>
inline void inverseOfTwo(const T* low, const T* high, T* even, T* odd, int count)
{
    alongRows<T>(count, false, [=](int i, auto lanes) {
        const __m256i h = loadLanes(high + i, lanes);
        const __m256i e = Lifting53<T>::difference(loadLanes(low + i, lanes), Lifting53<T>::halfRoundedUp(h));
        storeLanes(even + i, e, lanes);
        storeLanes(odd + i, Lifting53<T>::sum(h, e), lanes);
    });
}

// All columns of a block, from `src` to `dst`; the two may be the same only for lines of one or, by the 5/3 filter, two
// samples.
template <typename Tile, typename T>
inline void forwardColumnsOfBlock(const Region<const T>& src, const Region<T>& dst, int width, int n, int phase)
{
    if (n == 1)
        return scaleSingles(src.row(0), dst.row(0), width, phase, doubled<T>);
    if (Tile::closedFormOfTwo && n == 2)
        return forwardOfTwo(src.row(phase), src.row(1 - phase), dst.row(0), dst.row(1), width);
    const int lowCount = lowCountOf(n, phase);
    forwardColumns(
        typename Tile::Columns{}, [&](int i) { return src.row(mirrored(i, n)); }, phase,
        [&](int i) { return dst.row(i); }, lowCount, [&](int i) { return dst.row(lowCount + i); }, n - lowCount, width);
}
template <typename Tile, typename T>
inline void inverseColumnsOfBlock(const Region<const T>& src, const Region<T>& dst, int width, int n, int phase)
{
    if (n == 1)
        return scaleSingles(src.row(0), dst.row(0), width, phase, halved<T>);
    if (Tile::closedFormOfTwo && n == 2)
        return inverseOfTwo(src.row(0), src.row(1), dst.row(phase), dst.row(1 - phase), width);
    const int lowCount = lowCountOf(n, phase);
    inverseColumns(
        typename Tile::Columns{}, [&](int i) { return src.row((mirrored(2 * i + phase, n) - phase) / 2); },
        [&](int i) { return src.row(lowCount + (mirrored(2 * i + 1 - phase, n) - 1 + phase) / 2); }, phase,
        [&](int i) { return dst.row(i); }, n, width);
}

// A row of a block in place. Rows that do not fit into a piece go through `spare`, which holds n samples, at any
// address.
template <typename Tile, typename T>
inline void forwardRowOfBlock(T* row, int n, int phase, T* spare)
{
    if (n == 1)
        return scaleSingles(row, row, 1, phase, doubled<T>);
    if (Tile::closedFormOfTwo && n == 2)
        return forwardOfTwo(row + phase, row + 1 - phase, row, row + 1, 1);
    const int lowCount = lowCountOf(n, phase);
    const T* src = row;
    if (lowCount > piecePairs)
        src = static_cast<const T*>(std::memcpy(spare, row, static_cast<size_t>(n) * sizeof(T)));
    forwardLine(typename Tile::Lines{}, NaturalLine<T>{src, phase, 0, n - 1}, row, lowCount, row + lowCount,
                n - lowCount);
}
template <typename Tile, typename T>
inline void inverseRowOfBlock(T* row, int n, int phase, T* spare)
{
    if (n == 1)
        return scaleSingles(row, row, 1, phase, halved<T>);
    if (Tile::closedFormOfTwo && n == 2)
        return inverseOfTwo(row, row + 1, row + phase, row + 1 - phase, 1);
    const T* src = row;
    if (n > 2 * piecePairs)
        src = static_cast<const T*>(std::memcpy(spare, row, static_cast<size_t>(n) * sizeof(T)));
    inverseLine(typename Tile::Lines{}, BandLine<T>{src, src + lowCountOf(n, phase), phase, 0, n - 1}, row, n);
}

}  // namespace q3

#endif
