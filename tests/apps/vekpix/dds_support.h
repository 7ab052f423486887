// DDS files in memory, and how near pictures are.
#ifndef VEK_TESTS_VEKPIX_DDS_SUPPORT_H
#define VEK_TESTS_VEKPIX_DDS_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>
#include <vector>

#include "dds/decoder.h"
#include "dds/encoder.h"
#include "image/memory_rows.h"
#include "jpeg_peer.h"

namespace support {

using Bytes = std::vector<uint8_t>;

// A picture of lights: of two or four channels the last is alpha.
inline vekpix::Raster drawLights(int width, int height, int channels, peer::Scene scene = peer::Scene::Soft)
{
    vekpix::Raster picture(vekpix::Shape{width, height, channels, 8, channels % 2 == 0});
    picture.pixels = peer::draw(width, height, channels, scene).pixels;
    return picture;
}

inline Bytes encodeDds(const vekpix::Raster& picture, const vekpix::dds::EncodeOptions& options)
{
    vekpix::MemoryRows rows(picture);
    vekpix::MemorySink sink;
    vekpix::dds::encode(rows, sink, options);
    return sink.bytes();
}

inline vekpix::Raster decodeDds(std::span<const uint8_t> file, const vekpix::dds::DecodeOptions& options = {})
{
    vekpix::dds::Decoder decoder(file, options);
    vekpix::Raster picture(decoder.shape());
    int y = 0;
    while (y < picture.shape.height) {
        const int rows = decoder.readBand(picture.row(y), picture.shape.rowBytes());
        EXPECT_EQ(std::min(decoder.bandRows(), picture.shape.height - y), rows);
        y += rows;
    }
    EXPECT_EQ(0, decoder.readBand(nullptr, picture.shape.rowBytes()));
    return picture;
}

// In decibels, over the channels of both that are chosen.
inline double psnr(const vekpix::Raster& a, const vekpix::Raster& b, int channels)
{
    EXPECT_EQ(a.shape.width, b.shape.width);
    EXPECT_EQ(a.shape.height, b.shape.height);
    double squares = 0;
    const size_t pixels = static_cast<size_t>(a.shape.width) * static_cast<size_t>(a.shape.height);
    for (size_t i = 0; i < pixels; ++i)
        for (size_t c = 0; c < static_cast<size_t>(channels); ++c) {
            const int difference = a.pixels[i * static_cast<size_t>(a.shape.channels) + c] -
                                   b.pixels[i * static_cast<size_t>(b.shape.channels) + c];
            squares += difference * difference;
        }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(pixels) * channels / squares);
}

inline uint32_t wordAt(std::span<const uint8_t> bytes, size_t offset)
{
    return static_cast<uint32_t>(bytes[offset]) | static_cast<uint32_t>(bytes[offset + 1]) << 8 |
           static_cast<uint32_t>(bytes[offset + 2]) << 16 | static_cast<uint32_t>(bytes[offset + 3]) << 24;
}

inline void setWord(Bytes& bytes, size_t offset, uint32_t word)
{
    for (size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<uint8_t>(word >> 8 * i);
}

inline void setLetters(Bytes& bytes, size_t offset, const char* letters)
{
    std::copy_n(letters, 4, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace support

#endif
