// Arguments of the functions that convert whole images: their checks, and their rows as columns.
#ifndef VEK_JPEG_SAMPLES_IMAGE_ARGUMENTS_H
#define VEK_JPEG_SAMPLES_IMAGE_ARGUMENTS_H

#include <array>

#include "frame/checks.h"
#include "jpeg/samples/columns.h"

namespace q3 {

// An image argument: its planes, with `PixelBytes` bytes a pixel in each, and the step that they share.
template <typename T, int Planes, int PixelBytes>
struct Image {
    using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
    T* const* planes;  // null if the caller passed null for the array
    int step;

    bool hasPlanes() const
    {
        if (planes == nullptr)
            return false;
        for (int i = 0; i < Planes; ++i)
            if (planes[i] == nullptr)
                return false;
        return true;
    }
    Columns<Byte, Planes, PixelBytes, 1> row(int y) const
    {
        Columns<Byte, Planes, PixelBytes, 1> columns{};
        for (int i = 0; i < Planes; ++i)
            columns.p[static_cast<size_t>(i)] = reinterpret_cast<Byte*>(rowAt(planes[i], step, y));
        return columns;
    }
};

enum class Steps { Checked, Unchecked };

// Planes first, then steps where the family checks them, then the size.
template <Steps steps, typename Src, typename Dst>
inline VekStatus checkImages(const Src& src, const Dst& dst, VekSize roiSize)
{
    VEK_CHECK(src.hasPlanes() && dst.hasPlanes(), vekStsNullPointer);
    if constexpr (steps == Steps::Checked) {
        VEK_CHECK_STEP(src.step);
        VEK_CHECK_STEP(dst.step);
    }
    VEK_CHECK_SIZE(roiSize);
    return vekStsOk;
}

}  // namespace q3

#endif
