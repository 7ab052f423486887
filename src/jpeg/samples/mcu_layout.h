// Where the samples of an MCU lie, and the tiles in which it is worked through.
//
// A tile is 32 pixels whose luma samples are two whole vectors of 16, `left` and `right`; packed to bytes they make two
// lanes of 16:
//      16 pixels wide (4:2:2, 4:1:1): two rows. left: columns 0-7 of row y | of row y + 1; right: columns 8-15 of them.
//      Lanes: the rows. 8 pixels wide (4:4:4): four rows. left: rows y | y + 1; right: rows y + 2 | y + 3. Lanes: rows
//      y, y + 2 | y + 1, y + 3.
#ifndef VEK_JPEG_SAMPLES_MCU_LAYOUT_H
#define VEK_JPEG_SAMPLES_MCU_LAYOUT_H

#include "frame/vec.h"

namespace q3 {

enum class Layout { L444, L422, L411 };

template <Layout layout>
constexpr int pixelWidth = layout == Layout::L444 ? 8 : 16;
template <Layout layout>
constexpr int pixelHeight = layout == Layout::L411 ? 16 : 8;
template <Layout layout>
constexpr int tileRows = layout == Layout::L444 ? 4 : 2;

// Index of a tile's vectors in a plane of luma or black.
template <Layout layout>
constexpr int leftIndex(int row)
{
    return layout == Layout::L411 ? 128 * (row / 8) + 8 * (row % 8) : 8 * row;
}
template <Layout layout>
constexpr int rightIndex(int row)
{
    return leftIndex<layout>(row) + (layout == Layout::L444 ? 16 : 64);
}

// Words of both vectors of a tile.
struct Tile {
    __m256i left, right;
};

// Eight chroma samples a lane, for each of which there are two pixels in a row.
inline Tile widenChroma(__m256i x) { return {_mm256_unpacklo_epi16(x, x), _mm256_unpackhi_epi16(x, x)}; }

// Lane 0 of a vector for both rows of a tile, or lane 1.
inline __m256i bothRows(__m256i x, bool upper)
{
    return upper ? _mm256_permute2x128_si256(x, x, 0x11) : _mm256_permute2x128_si256(x, x, 0x00);
}

template <Layout layout>
inline Tile loadTile(const int16_t* plane, int row)
{
    return {loadU(plane + leftIndex<layout>(row)), loadU(plane + rightIndex<layout>(row))};
}
template <Layout layout>
inline void storeTile(int16_t* plane, int row, Tile x)
{
    storeU(plane + leftIndex<layout>(row), x.left);
    storeU(plane + rightIndex<layout>(row), x.right);
}

// Two lanes of 16 consecutive bytes of a tile's pixels, of 8 rows of `bytes` bytes or 16: here lie those of lane 0 and
// lane 1.
template <typename Byte>
struct TilePixels {
    Byte* rows[4];
};
template <Layout layout, typename Byte>
inline TilePixels<Byte> pixelsOf(Byte* pixels, int step, int row)
{
    if constexpr (layout == Layout::L444)
        return {{rowAt(pixels, step, row), rowAt(pixels, step, row + 1), rowAt(pixels, step, row + 2),
                 rowAt(pixels, step, row + 3)}};
    else
        return {{rowAt(pixels, step, row), rowAt(pixels, step, row + 1), nullptr, nullptr}};
}

}  // namespace q3

#endif
