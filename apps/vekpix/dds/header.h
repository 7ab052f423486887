// What the front of a DDS file tells: 4 bytes of magic, a header of 124 bytes, and for FourCC DX10 20 more.
#ifndef VEKPIX_DDS_HEADER_H
#define VEKPIX_DDS_HEADER_H

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "dds/format.h"

namespace vekpix::dds {

enum class Face { PositiveX, NegativeX, PositiveY, NegativeY, PositiveZ, NegativeZ };
constexpr std::array<const char*, 6> faceNames = {"+x", "-x", "+y", "-y", "+z", "-z"};

struct Texture {
    Format format = Format::Bc1;
    int width = 0;
    int height = 0;
    int levels = 1;           // of mipmaps, with the full size
    uint32_t layers = 1;      // of an array: textures, or whole cubes
    std::vector<Face> faces;  // in the file's order; none: not a cube
    bool dx10 = false;
    uint32_t dxgiFormat = 0;  // with dx10
    std::string fourCc;

    bool isCube() const { return !faces.empty(); }
    size_t faceCount() const { return isCube() ? faces.size() : 1; }
    size_t headerBytes() const { return dx10 ? 148 : 128; }
};

constexpr int mostPixelsAside = 1 << 24;

// From full size down to 1 x 1.
int fullLevels(int width, int height);

// An Error for what is damaged or not supported. Tells nothing about the textures behind.
Texture parseHeader(std::span<const uint8_t> file);

// The bytes up to the first block. With `dx10`, or where there is no older way to tell it, with the longer header.
// Completes the texture: dx10, dxgiFormat, fourCc.
std::vector<uint8_t> makeHeader(Texture& texture);

}  // namespace vekpix::dds

#endif
