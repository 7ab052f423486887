// Images and blocks for the texture tests.
#ifndef VEK_TESTS_TEXTURE_IMAGES_H
#define VEK_TESTS_TEXTURE_IMAGES_H

#include <algorithm>

#include "reference/texture/dxt.h"
#include "support/generators.h"

namespace texture {

using model::Pixels;
using support::Random;

// Noise, few values, narrow ranges, slopes and flat areas.
inline Pixels randomImage(Random& random, int width, int height, int channels)
{
    Pixels image(width, height, channels);
    const int kind = random.in(0, 4);
    const int base = random.in(0, 255), range = random.in(0, 40);
    const int dx = random.in(-20, 20), dy = random.in(-20, 20);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                int v = base;
                if (kind == 0)
                    v = random.in(0, 255);
                else if (kind == 1)
                    v = random.chance(50) ? 0 : 255;
                else if (kind == 2)
                    v = base + random.in(-range, range);
                else if (kind == 3)
                    v = base + dx * x + dy * y * (c + 1) + random.in(0, 3);
                image.at(x, y, c) = static_cast<uint8_t>(std::clamp(v, 0, 255));
            }
    return image;
}

constexpr size_t blocksOf(int width, int height)
{
    return static_cast<size_t>((width + 3) / 4) * static_cast<size_t>((height + 3) / 4);
}

}  // namespace texture

#endif
