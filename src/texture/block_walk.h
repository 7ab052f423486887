// How images are cut into blocks of 4x4 pixels. Blocks are stored back to back, row of blocks after row of blocks.
#ifndef VEK_TEXTURE_BLOCK_WALK_H
#define VEK_TEXTURE_BLOCK_WALK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/vec.h"
#include "vekj/types.h"

namespace q3 {

// Calls work(x, y, columns, rows) for every block: its first pixel, and how many of its columns and rows lie in the
// image.
template <class Work>
[[gnu::always_inline]] inline void forEachBlock(VekSize roiSize, const Work& work)
{
    for (int y = 0; y < roiSize.height;) {
        const int rows = std::min(4, roiSize.height - y);
        int x = 0;
        for (; rows == 4 && x <= roiSize.width - 4; x += 4) work(x, y, 4, 4);
        while (x < roiSize.width) {
            const int columns = std::min(4, roiSize.width - x);
            work(x, y, columns, rows);
            x += columns;
        }
        y += rows;
    }
}

// Calls encode(first pixel, row step, block) for every block of an image with `pixelBytes` bytes a pixel. A block that
// sticks out repeats the last column and the last row.
template <int pixelBytes, int blockBytes, class Encode>
void encodeBlocks(const uint8_t* pSrc, int64_t srcStep, VekSize roiSize, uint8_t* pDst, const Encode& encode)
{
    const auto encodeEdge = [&](const uint8_t* p, int columns, int rows) {
        constexpr int rowBytes = 4 * pixelBytes;
        uint8_t pixels[4 * rowBytes];
        for (int y = 0; y < 4; ++y) {
            uint8_t* const row = pixels + y * rowBytes;
            std::memcpy(row, rowAt(p, srcStep, std::min(y, rows - 1)), static_cast<size_t>(columns * pixelBytes));
            for (int x = columns; x < 4; ++x) std::memcpy(row + x * pixelBytes, row + (x - 1) * pixelBytes, pixelBytes);
        }
        encode(pixels, rowBytes, pDst);
    };
    forEachBlock(roiSize, [&](int x, int y, int columns, int rows) {
        const uint8_t* const p = rowAt(pSrc, srcStep, y) + pixelBytes * ptrdiff_t{x};
        if (columns == 4 && rows == 4)
            encode(p, srcStep, pDst);
        else
            encodeEdge(p, columns, rows);
        pDst += blockBytes;
    });
}

// Calls decode(block, first pixel, row step) for every block. Of a block that sticks out only what lies in the image is
// stored.
template <int pixelBytes, int blockBytes, class Decode>
void decodeBlocks(const uint8_t* pSrc, uint8_t* pDst, int64_t dstStep, VekSize roiSize, const Decode& decode)
{
    const auto decodeEdge = [&](uint8_t* p, int columns, int rows) {
        constexpr int rowBytes = 4 * pixelBytes;
        uint8_t pixels[4 * rowBytes];
        decode(pSrc, pixels, rowBytes);
        for (int y = 0; y < rows; ++y)
            std::memcpy(rowAt(p, dstStep, y), pixels + y * rowBytes, static_cast<size_t>(columns * pixelBytes));
    };
    forEachBlock(roiSize, [&](int x, int y, int columns, int rows) {
        uint8_t* const p = rowAt(pDst, dstStep, y) + pixelBytes * ptrdiff_t{x};
        if (columns == 4 && rows == 4)
            decode(pSrc, p, dstStep);
        else
            decodeEdge(p, columns, rows);
        pSrc += blockBytes;
    });
}

}  // namespace q3

#endif
