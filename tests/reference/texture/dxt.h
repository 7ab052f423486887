// DXT, BC4 and BC5 blocks, pixel by pixel.
#ifndef VEK_TESTS_REFERENCE_TEXTURE_DXT_H
#define VEK_TESTS_REFERENCE_TEXTURE_DXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace model {

struct Pixels {
    int width, height, channels;
    std::vector<uint8_t> bytes;

    Pixels(int w, int h, int n) : width(w), height(h), channels(n), bytes(static_cast<size_t>(w * h * n)) {}
    uint8_t& at(int x, int y, int c) { return bytes[static_cast<size_t>((y * width + x) * channels + c)]; }
    uint8_t at(int x, int y, int c) const { return bytes[static_cast<size_t>((y * width + x) * channels + c)]; }
};

std::vector<uint8_t> encodeDxt1(const Pixels& image);
std::vector<uint8_t> encodeDxt3(const Pixels& image);
std::vector<uint8_t> encodeDxt5(const Pixels& image);
std::vector<uint8_t> encodeYCoCgDxt5(const Pixels& image);
std::vector<uint8_t> encodeBc4(const Pixels& image);
std::vector<uint8_t> encodeBc5(const Pixels& image);

Pixels decodeDxt1(const std::vector<uint8_t>& blocks, int width, int height);
Pixels decodeDxt3(const std::vector<uint8_t>& blocks, int width, int height);
Pixels decodeDxt5(const std::vector<uint8_t>& blocks, int width, int height);
Pixels decodeBc4(const std::vector<uint8_t>& blocks, int width, int height);
Pixels decodeBc5(const std::vector<uint8_t>& blocks, int width, int height);

}  // namespace model

#endif
