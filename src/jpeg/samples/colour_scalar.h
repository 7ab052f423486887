// Colour arithmetic for one pixel, where a row ends in a form of its own.
#ifndef VEK_JPEG_SAMPLES_COLOUR_SCALAR_H
#define VEK_JPEG_SAMPLES_COLOUR_SCALAR_H

#include <algorithm>
#include <cstdint>

namespace q3 {

struct Pixel {
    uint8_t r, g, b;
};

inline uint8_t clipToByte(int v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

// YCbCr to RGB in Q16, each chroma product rounded on its own but for green, whose two are rounded together:
//      R = clip(Y + ((91881 v + 32768) >> 16)),  B = clip(Y + ((116130 u + 32768) >> 16)),
//      G = clip(Y + ((-22554 u - 46802 v + 32768) >> 16)),   u = Cb - 128, v = Cr - 128
inline Pixel rgbByRoundedProducts(int y, int cb, int cr)
{
    const int u = cb - 128;
    const int v = cr - 128;
    return {clipToByte(y + ((91881 * v + 32768) >> 16)), clipToByte(y + ((-22554 * u - 46802 * v + 32768) >> 16)),
            clipToByte(y + ((116130 * u + 32768) >> 16))};
}

// RGB to luma in Q16, rounded: (19595 R + 38470 G + 7471 B + 32768) >> 16
inline uint8_t lumaQ16(int r, int g, int b)
{
    return static_cast<uint8_t>((19595 * r + 38470 * g + 7471 * b + 32768) >> 16);
}
// RGB to chroma in Q16. The common term 8421375 is one below 128.5, so that the largest sum stays within a byte.
inline uint8_t cbQ16(int r, int g, int b)
{
    return static_cast<uint8_t>((-11059 * r - 21709 * g + 32768 * b + 8421375) >> 16);
}
inline uint8_t crQ16(int r, int g, int b)
{
    return static_cast<uint8_t>((32768 * r - 27439 * g - 5329 * b + 8421375) >> 16);
}

}  // namespace q3

#endif
