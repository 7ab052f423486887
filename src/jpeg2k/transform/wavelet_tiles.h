// Whole tiles: one level of the wavelet transform in place, or between an image and four sub-band planes.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_TILES_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_TILES_H

#include "jpeg2k/transform/tile_passes.h"

namespace q3 {

// In place, columns are filtered in strips: as many side by side as this much of the stack holds the set-aside half of.
// A column too long for it goes through the caller's buffer, which holds a line.
constexpr int stripScratchBytes = 144 * 1024;  // 16 columns of 32 bits, 4096 rows long

// Calls pass(strip, scratch, columns) for strips of a block of which `rows` rows are to be set aside.
template <typename T, typename Pass>
inline void overStrips(const Region<T>& block, int width, int rows, T* spare, const Pass& pass)
{
    alignas(64) unsigned char scratch[stripScratchBytes];
    const int64_t room = stripScratchBytes / (int64_t{rows} * int64_t{sizeof(T)});
    int columns = static_cast<int>(std::min<int64_t>(stripColumns<T>, room));
    if (columns > lanesOf<T>)
        columns -= columns % lanesOf<T>;
    T* const aside = columns == 0 ? spare : reinterpret_cast<T*>(scratch);
    columns = std::max(columns, 1);
    for (int c = 0; c < width; c += columns)
        pass(Region<T>{block.data + c, block.step}, Region<T>{aside, columns * static_cast<int>(sizeof(T))},
             std::min(columns, width - c));
}

template <typename T>
inline void copyRows(const Region<const T>& src, const Region<T>& dst, int width, int height)
{
    for (int y = 0; y < height; ++y) std::memcpy(dst.row(y), src.row(y), static_cast<size_t>(width) * sizeof(T));
}
template <typename T>
inline Region<const T> readOnly(const Region<T>& region)
{
    return {region.data, region.step};
}

// From this length on no low row overtakes the rows that are still to be read, mirrored ones included; shorter columns
// are copied as a whole.
constexpr int shortestInPlace = 16;

template <typename Tile, typename T>
inline void forwardColumnsInPlace(const Region<T>& block, int width, int n, int phase, T* spare)
{
    if (n == 1 || (Tile::closedFormOfTwo && n == 2))
        return forwardColumnsOfBlock<Tile>(readOnly(block), block, width, n, phase);
    if (n < shortestInPlace)
        return overStrips(block, width, n, spare, [=](const auto& strip, const auto& copy, int columns) {
            copyRows(readOnly(strip), copy, columns, n);
            forwardColumnsOfBlock<Tile>(readOnly(copy), strip, columns, n, phase);
        });
    const int lowCount = lowCountOf(n, phase);
    overStrips(block, width, n - lowCount, spare, [=](const auto& strip, const auto& high, int columns) {
        forwardColumns(
            typename Tile::Columns{}, [&](int i) { return strip.row(mirrored(i, n)); }, phase,
            [&](int i) { return strip.row(i); }, lowCount, [&](int i) { return high.row(i); }, n - lowCount, columns);
        copyRows(readOnly(high), Region<T>{strip.row(lowCount), strip.step}, columns, n - lowCount);
    });
}

// The low rows are set aside, and the last few high ones, which mirrored reads ask for when they are overwritten.
template <typename Tile, typename T>
inline void inverseColumnsInPlace(const Region<T>& block, int width, int n, int phase, T* spare)
{
    if (n == 1 || (Tile::closedFormOfTwo && n == 2))
        return inverseColumnsOfBlock<Tile>(readOnly(block), block, width, n, phase);
    if (n < shortestInPlace)
        return overStrips(block, width, n, spare, [=](const auto& strip, const auto& copy, int columns) {
            copyRows(readOnly(strip), copy, columns, n);
            inverseColumnsOfBlock<Tile>(readOnly(copy), strip, columns, n, phase);
        });
    constexpr int lastRows = 4;
    const int lowCount = lowCountOf(n, phase);
    const int lastFrom = n - lowCount - lastRows;  // of the high rows
    overStrips(block, width, lowCount + lastRows, spare, [=](const auto& strip, const auto& aside, int columns) {
        copyRows(readOnly(strip), aside, columns, lowCount);
        const Region<T> last = {aside.row(lowCount), aside.step};
        copyRows(Region<const T>{strip.row(n - lastRows), strip.step}, last, columns, lastRows);
        inverseColumns(
            typename Tile::Columns{}, [&](int i) { return aside.row((mirrored(2 * i + phase, n) - phase) / 2); },
            [&](int i) {
                const int k = (mirrored(2 * i + 1 - phase, n) - 1 + phase) / 2;
                return k < lastFrom ? strip.row(lowCount + k) : last.row(k - lastFrom);
            },
            phase, [&](int i) { return strip.row(i); }, n, columns);
    });
}

template <typename Tile, typename T>
inline void forwardInPlace(const Region<T>& block, const VekRect& tile, T* spare)
{
    // No rows count as one for the columns.
    forwardColumnsInPlace<Tile>(block, tile.width, std::max(tile.height, 1), tile.y & 1, spare);
    if (tile.width > 0)
        for (int y = 0; y < tile.height; ++y) forwardRowOfBlock<Tile>(block.row(y), tile.width, tile.x & 1, spare);
}
template <typename Tile, typename T>
inline void inverseInPlace(const Region<T>& block, const VekRect& tile, T* spare)
{
    if (tile.width > 0)
        for (int y = 0; y < tile.height; ++y) inverseRowOfBlock<Tile>(block.row(y), tile.width, tile.x & 1, spare);
    inverseColumnsInPlace<Tile>(block, tile.width, std::max(tile.height, 1), tile.y & 1, spare);
}

// The work image of the forms with sub-band planes: rows are rounded up to 32 bytes. A line buffer follows it.
template <typename T>
inline Region<T> workImage(uint8_t* pBuffer, const VekRect& tile)
{
    return {reinterpret_cast<T*>(pBuffer),
            static_cast<int>((int64_t{tile.width} * int64_t{sizeof(T)} + 31) & ~int64_t{31})};
}

// Where a sub-band lies in the work image; the split is that of an even origin, whatever the phases.
struct Quadrant {
    int x, y, width, height;

    Quadrant(int index, const VekRect& tile)
        : x(index < 2 ? 0 : (tile.width + 1) / 2),
          y(index % 2 == 0 ? 0 : (tile.height + 1) / 2),
          width(index < 2 ? (tile.width + 1) / 2 : tile.width / 2),
          height(index % 2 == 0 ? (tile.height + 1) / 2 : tile.height / 2)
    {
    }
};

// The columns pass takes the samples from the image to the work image, or back.
template <typename Tile, typename T>
inline void forwardToPlanes(const Region<const T>& src, const VekRect& tile, T* const pDst[4], const int dstStep[4],
                            uint8_t* pBuffer)
{
    const Region<T> work = workImage<T>(pBuffer, tile);
    T* const spare = work.row(tile.height);
    forwardColumnsOfBlock<Tile>(src, work, tile.width, tile.height, tile.y & 1);
    for (int y = 0; y < tile.height; ++y) forwardRowOfBlock<Tile>(work.row(y), tile.width, tile.x & 1, spare);
    for (int i = 0; i < 4; ++i) {
        const Quadrant q(i, tile);
        copyRows<T>({work.row(q.y) + q.x, work.step}, {pDst[i], dstStep[i]}, q.width, q.height);
    }
}
template <typename Tile, typename T>
inline void inverseFromPlanes(const T* const pSrc[4], const int srcStep[4], const Region<T>& dst, const VekRect& tile,
                              uint8_t* pBuffer)
{
    const Region<T> work = workImage<T>(pBuffer, tile);
    T* const spare = work.row(tile.height);
    for (int i = 0; i < 4; ++i) {
        const Quadrant q(i, tile);
        copyRows<T>({pSrc[i], srcStep[i]}, {work.row(q.y) + q.x, work.step}, q.width, q.height);
    }
    for (int y = 0; y < tile.height; ++y) inverseRowOfBlock<Tile>(work.row(y), tile.width, tile.x & 1, spare);
    inverseColumnsOfBlock<Tile>(readOnly(work), dst, tile.width, tile.height, tile.y & 1);
}

}  // namespace q3

#endif
