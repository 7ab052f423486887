// What the directory of a TIFF file tells about its picture, once it is known that the application can read it.
#ifndef VEKPIX_TIFF_LAYOUT_H
#define VEKPIX_TIFF_LAYOUT_H

#include <span>

#include "image/rows.h"
#include "tiff/directory_reader.h"

namespace vekpix::tiff {

struct Layout {
    Shape shape;
    ByteOrder order;
    Compression compression;
    bool whiteIsZero;
    int planes;        // 1: the samples of a pixel stand together; or one plane for each channel
    int rowsPerStrip;  // the last strip of a plane may have fewer
    int stripsPerPlane;
    Numbers offsets;  // of all strips, plane by plane
    Numbers byteCounts;

    size_t planeRowBytes() const { return shape.rowBytes() / static_cast<size_t>(planes); }
    std::span<const uint8_t> strip(std::span<const uint8_t> file, int plane, int index) const
    {
        const auto i = static_cast<size_t>(plane) * static_cast<size_t>(stripsPerPlane) + static_cast<size_t>(index);
        return file.subspan(offsets[i], byteCounts[i]);
    }
};

// Throws Error for pictures of other kinds, and for strips that leave the file, overlap, or are shorter than the rows
// that they should hold can be: so no size that a file tells is above 64 times its length.
Layout layoutOf(const Directory& directory, std::span<const uint8_t> file);

}  // namespace vekpix::tiff

#endif
