// Pictures of 8 to 16 bits in memory: drawn, saved, loaded and compared.
#ifndef VEK_TESTS_VEKPIX_RASTER_SUPPORT_H
#define VEK_TESTS_VEKPIX_RASTER_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "image/memory_rows.h"

namespace support {

using vekpix::Raster;
using vekpix::Shape;

// Slopes and waves over the whole range with a little noise, all of the project's own drawing.
inline Raster drawDeep(const Shape& shape, int noise = 3)
{
    Raster picture(shape);
    const int largest = (1 << shape.bits) - 1;
    uint32_t random = 12345;
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x)
            for (int c = 0; c < shape.channels; ++c) {
                random = random * 1664525 + 1013904223;
                const double wave = 0.5 + 0.47 * std::sin(x / (9.0 + c)) * std::cos(y / (7.0 + c) + c);
                const int value = static_cast<int>(wave * largest) + static_cast<int>(random >> 16) % (noise + 1);
                const int sample = std::min(largest, value);
                uint8_t* at = picture.row(y) + static_cast<size_t>(x * shape.channels + c) * shape.sampleBytes();
                if (shape.bits > 8) {
                    const auto word = static_cast<uint16_t>(sample);
                    std::memcpy(at, &word, sizeof word);
                } else {
                    *at = static_cast<uint8_t>(sample);
                }
            }
    return picture;
}

inline int sampleOf(const Raster& picture, size_t index)
{
    if (picture.shape.bits == 8)
        return picture.pixels[index];
    uint16_t word = 0;
    std::memcpy(&word, picture.pixels.data() + 2 * index, sizeof word);
    return word;
}

inline int largestDifference(const Raster& a, const Raster& b)
{
    EXPECT_EQ(a.shape, b.shape);
    if (a.pixels.size() != b.pixels.size())
        return 1 << 16;
    int most = 0;
    for (size_t i = 0; i < a.pixels.size() / a.shape.sampleBytes(); ++i)
        most = std::max(most, std::abs(sampleOf(a, i) - sampleOf(b, i)));
    return most;
}

// Of all samples, in decibels of the largest value.
inline double psnr(const Raster& a, const Raster& b)
{
    EXPECT_EQ(a.shape, b.shape);
    double sum = 0;
    const size_t count = std::min(a.pixels.size(), b.pixels.size()) / a.shape.sampleBytes();
    for (size_t i = 0; i < count; ++i) sum += std::pow(sampleOf(a, i) - sampleOf(b, i), 2);
    return 10 * std::log10(std::pow((1 << a.shape.bits) - 1, 2) * static_cast<double>(count) / sum);
}

}  // namespace support

#endif
