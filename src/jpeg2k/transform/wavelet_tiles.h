// Whole tiles: one level of the wavelet transform in place, or between an image and four sub-band planes.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_TILES_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_TILES_H

#include "jpeg2k/transform/tile_passes.h"

namespace q3 {

// Columns are filtered in strips, as many at a time as fit into this much of the stack. A column that does not fit goes
// through the caller's buffer, which holds a line.
constexpr int stripScratchBytes = 128 * 1024;

// Calls pass(src, dst, columns) for strips of a block of n rows, with src a copy of the strip.
template <typename T, typename Pass>
inline void overStrips(const Region<T>& block, int width, int n, T* spare, const Pass& pass)
{
    alignas(64) unsigned char scratch[stripScratchBytes];
    int columns =
        static_cast<int>(std::min<int64_t>(stripColumns<T>, stripScratchBytes / (int64_t{n} * int64_t{sizeof(T)})));
    if (columns > lanesOf<T>)
        columns -= columns % lanesOf<T>;
    T* const copies = columns == 0 ? spare : reinterpret_cast<T*>(scratch);
    columns = std::max(columns, 1);
    const Region<T> copy = {copies, columns * static_cast<int>(sizeof(T))};
    for (int c = 0; c < width; c += columns) {
        const int count = std::min(columns, width - c);
        const Region<T> strip = {block.data + c, block.step};
        for (int y = 0; y < n; ++y) std::memcpy(copy.row(y), strip.row(y), static_cast<size_t>(count) * sizeof(T));
        pass(Region<const T>{copy.data, copy.step}, strip, count);
    }
}

template <typename Tile, typename T>
inline void forwardInPlace(const Region<T>& block, const VekRect& tile, T* spare)
{
    const int phaseX = tile.x & 1;
    const int phaseY = tile.y & 1;
    const int n = std::max(tile.height, 1);  // no rows count as one here
    if (n == 1 || (Tile::closedFormOfTwo && n == 2))
        forwardColumnsOfBlock<Tile>(Region<const T>{block.data, block.step}, block, tile.width, n, phaseY);
    else
        overStrips(block, tile.width, n, spare, [=](const auto& src, const auto& dst, int columns) {
            forwardColumnsOfBlock<Tile>(src, dst, columns, n, phaseY);
        });
    if (tile.width > 0)
        for (int y = 0; y < tile.height; ++y) forwardRowOfBlock<Tile>(block.row(y), tile.width, phaseX, spare);
}

template <typename Tile, typename T>
inline void inverseInPlace(const Region<T>& block, const VekRect& tile, T* spare)
{
    const int phaseX = tile.x & 1;
    const int phaseY = tile.y & 1;
    const int n = std::max(tile.height, 1);
    if (tile.width > 0)
        for (int y = 0; y < tile.height; ++y) inverseRowOfBlock<Tile>(block.row(y), tile.width, phaseX, spare);
    if (n == 1 || (Tile::closedFormOfTwo && n == 2))
        inverseColumnsOfBlock<Tile>(Region<const T>{block.data, block.step}, block, tile.width, n, phaseY);
    else
        overStrips(block, tile.width, n, spare, [=](const auto& src, const auto& dst, int columns) {
            inverseColumnsOfBlock<Tile>(src, dst, columns, n, phaseY);
        });
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
template <typename T>
inline void copyRows(const Region<const T>& src, const Region<T>& dst, int width, int height)
{
    for (int y = 0; y < height; ++y) std::memcpy(dst.row(y), src.row(y), static_cast<size_t>(width) * sizeof(T));
}

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
    inverseColumnsOfBlock<Tile>(Region<const T>{work.data, work.step}, dst, tile.width, tile.height, tile.y & 1);
}

}  // namespace q3

#endif
