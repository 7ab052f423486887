// The kinds of blocks in a texture, and how files name them.
#ifndef VEKPIX_DDS_FORMAT_H
#define VEKPIX_DDS_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace vekpix::dds {

enum class Format {
    Bc1,           // opaque colours
    Bc2,           // colours, four bits of alpha
    Bc3,           // colours and alpha
    Bc4,           // one channel
    Bc5,           // two channels
    Bc6hUnsigned,  // floating-point colours
    Bc6hSigned,
    Bc7,       // colours and alpha, in eight modes
    YCoCgBc3,  // BC3 with the luminance as alpha, and scaled chroma as colours
};

// As the command line has it: bc1, ycocg-bc3.
std::string nameOf(Format format);
Format formatNamed(const std::string& name);

constexpr size_t blockBytes(Format format) { return format == Format::Bc1 || format == Format::Bc4 ? 8 : 16; }
constexpr bool isFloat(Format format) { return format == Format::Bc6hUnsigned || format == Format::Bc6hSigned; }
constexpr bool hasAlpha(Format format)
{
    return format == Format::Bc2 || format == Format::Bc3 || format == Format::Bc7;
}

// The channels of the pixels that the library's functions take and give, by format; 8 bits each, or 16 of a
// floating-point number.
constexpr int codedChannels(Format format)
{
    switch (format) {
        case Format::Bc4:
            return 1;
        case Format::Bc5:
            return 2;
        case Format::Bc6hUnsigned:
        case Format::Bc6hSigned:
        case Format::YCoCgBc3:
            return 3;
        case Format::Bc1:
        case Format::Bc2:
        case Format::Bc3:
        case Format::Bc7:
            break;
    }
    return 4;
}

}  // namespace vekpix::dds

#endif
