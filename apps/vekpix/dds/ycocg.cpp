#include "dds/ycocg.h"

#include <algorithm>

namespace vekpix::dds {

void ycocgFromRgb(const uint8_t* rgb, uint8_t* ycocg, size_t pixels)
{
    for (size_t i = 0; i < pixels; ++i, rgb += 3, ycocg += 3) {
        const int r = rgb[0], g = rgb[1], b = rgb[2];
        ycocg[0] = static_cast<uint8_t>((r + 2 * g + b + 2) >> 2);
        ycocg[1] = static_cast<uint8_t>(std::min(255, ((2 * r - 2 * b + 2) >> 2) + 128));
        ycocg[2] = static_cast<uint8_t>(std::min(255, ((2 * g - r - b + 2) >> 2) + 128));
    }
}

void rgbFromScaledYcocg(const uint8_t* texels, uint8_t* rgb, size_t pixels)
{
    // y + difference / scale, to the nearest; halves go up.
    const auto light = [](int y, int difference, int scale) {
        return static_cast<uint8_t>(std::clamp((2 * (y * scale + difference) + scale) / (2 * scale), 0, 255));
    };
    for (size_t i = 0; i < pixels; ++i, texels += 4, rgb += 3) {
        const int co = texels[0] - 128, cg = texels[1] - 128;
        const int scale = (texels[2] >> 3) + 1;
        const int y = texels[3];
        rgb[0] = light(y, co - cg, scale);
        rgb[1] = light(y, cg, scale);
        rgb[2] = light(y, -co - cg, scale);
    }
}

}  // namespace vekpix::dds
