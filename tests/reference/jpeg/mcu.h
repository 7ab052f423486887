// Model of the MCU conversions, one pixel at a time.
#ifndef VEK_TESTS_REFERENCE_JPEG_MCU_H
#define VEK_TESTS_REFERENCE_JPEG_MCU_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace model {

enum class Sampling { s444, s422, s411 };
enum class Pixels { rgb, bgr, cmyk, bgr555, bgr565, ycc, stream422 };

// Samples of luma, two chromas and black, in the order of the planes.
using McuPlanes = std::array<std::vector<int16_t>, 4>;

struct Mcu {
    Sampling sampling;
    Pixels pixels;

    int width() const { return sampling == Sampling::s444 ? 8 : 16; }
    int height() const { return sampling == Sampling::s411 ? 16 : 8; }
    int pixelBytes() const;
    int planes() const { return pixels == Pixels::cmyk ? 4 : 3; }
    size_t planeSize(int plane) const;
    size_t lumaIndex(int x, int y) const;
    size_t chromaIndex(int x, int y) const;

    // Rows of pixels without gaps. `aligned` tells for each plane whether its address is a multiple of 16.
    std::vector<uint8_t> decode(const McuPlanes& planes, const std::array<bool, 4>& aligned) const;
    McuPlanes encode(const std::vector<uint8_t>& bytes, const std::array<bool, 4>& aligned) const;
};

}  // namespace model

#endif
