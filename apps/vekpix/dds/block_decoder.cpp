#include "dds/block_decoder.h"

#include "library_status.h"
#include "vekj.h"

namespace vekpix::dds {

namespace {

size_t decodedPixelBytes(Format format)
{
    if (format == Format::YCoCgBc3)
        return 4;
    return static_cast<size_t>(codedChannels(format)) * (isFloat(format) ? 2 : 1);
}

}  // namespace

BlockDecoder::BlockDecoder(Format format, const Surface& surface, const uint8_t* blocks, int threads)
    : format_(format), surface_(surface), blocks_(blocks), pixelBytes_(decodedPixelBytes(format)), crew_(threads)
{
}

void BlockDecoder::decode(size_t firstRow, size_t rows, uint8_t* pixels)
{
    const size_t codedBytes = surface_.blocksWide * blockBytes(format_);
    crew_.run(static_cast<int>(rows), [&](int item) {
        const auto row = static_cast<size_t>(item);
        decodeRow(blocks_ + (firstRow + row) * codedBytes, pixels + 4 * row * rowBytes());
    });
}

// Whole blocks always: the library's BC6H decoder fills those that are cut from overlapping rows.
void BlockDecoder::decodeRow(const uint8_t* blocks, uint8_t* pixels) const
{
    const VekSize size = {static_cast<int>(4 * surface_.blocksWide), 4};
    const auto step = static_cast<int>(rowBytes());
    const auto unsignedStep = static_cast<uint32_t>(step);
    switch (format_) {
        case Format::Bc1:
            expectOk(vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(blocks, pixels, unsignedStep, size), "DXT1");
            return;
        case Format::Bc2:
            expectOk(vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(blocks, pixels, unsignedStep, size), "DXT3");
            return;
        case Format::Bc3:
        case Format::YCoCgBc3:
            expectOk(vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(blocks, pixels, unsignedStep, size), "DXT5");
            return;
        case Format::Bc4:
            expectOk(vekiTextureDecodeBlock_BC4_8u_C1R(blocks, pixels, unsignedStep, size), "BC4");
            return;
        case Format::Bc5:
            expectOk(vekiTextureDecodeBlockToRG_BC5_8u_C1C2R(blocks, pixels, unsignedStep, size), "BC5");
            return;
        case Format::Bc6hUnsigned:
            expectOk(vekiTextureDecodeBlockToRGB_BC6_16u_C1C3R(blocks, reinterpret_cast<uint16_t*>(pixels), step, size),
                     "BC6H");
            return;
        case Format::Bc6hSigned:
            expectOk(vekiTextureDecodeBlockToRGB_BC6_16s_C1C3R(blocks, reinterpret_cast<int16_t*>(pixels), step, size),
                     "BC6H");
            return;
        case Format::Bc7:
            expectOk(vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(blocks, pixels, step, size), "BC7");
            return;
    }
}

}  // namespace vekpix::dds
