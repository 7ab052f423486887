// Any blocks through the texture decoders: as their models, and nothing outside.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "reference/texture/bptc.h"
#include "reference/texture/dxt.h"
#include "vekj.h"

namespace {

using Bytes = std::vector<uint8_t>;

void expect(bool condition)
{
    if (!condition)
        std::abort();
}

// Blocks for an image of the size, the given ones again and again.
Bytes blocksFor(int width, int height, size_t blockBytes, const uint8_t* data, size_t size)
{
    Bytes blocks(static_cast<size_t>((width + 3) / 4) * static_cast<size_t>((height + 3) / 4) * blockBytes);
    for (size_t i = 0; i < blocks.size(); ++i) blocks[i] = size == 0 ? 0 : data[i % size];
    return blocks;
}

template <class Decode, class Model>
void decodeDxt(Decode decode, Model model, int channels, size_t blockBytes, int width, int height, const uint8_t* data,
               size_t size)
{
    const Bytes blocks = blocksFor(width, height, blockBytes, data, size);
    Bytes pixels(static_cast<size_t>(width * height * channels));
    expect(decode(blocks.data(), pixels.data(), static_cast<uint32_t>(width * channels), {width, height}) == vekStsOk);
    expect(model(blocks, width, height).bytes == pixels);
}

// One block; edges of images have a rule of their own.
template <class Pixel, class Decode, class Expected>
void decodeBlock(Decode decode, const Expected& expected, const Bytes& block)
{
    Pixel pixels[sizeof expected / sizeof(Pixel)];
    expect(decode(block.data(), pixels, static_cast<int>(sizeof pixels / 4), {4, 4}) == vekStsOk);
    expect(std::memcmp(pixels, &expected, sizeof pixels) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    const int function = data[0] % 8;
    const int width = 1 + data[1] % 20, height = 1 + data[2] % 20;
    data += 3;
    size -= 3;
    const Bytes block = blocksFor(4, 4, 16, data, size);
    switch (function) {
        case 0:
            decodeDxt(vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, model::decodeDxt1, 4, 8, width, height, data, size);
            break;
        case 1:
            decodeDxt(vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, model::decodeDxt3, 4, 16, width, height, data, size);
            break;
        case 2:
            decodeDxt(vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, model::decodeDxt5, 4, 16, width, height, data, size);
            break;
        case 3:
            decodeDxt(vekiTextureDecodeBlock_BC4_8u_C1R, model::decodeBc4, 1, 8, width, height, data, size);
            break;
        case 4:
            decodeDxt(vekiTextureDecodeBlockToRG_BC5_8u_C1C2R, model::decodeBc5, 2, 16, width, height, data, size);
            break;
        case 5:
            decodeBlock<uint8_t>(vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R, model::decodeBc7(block.data()), block);
            break;
        case 6:
            decodeBlock<uint16_t>(vekiTextureDecodeBlockToRGB_BC6_16u_C1C3R, model::decodeBc6h(block.data(), false),
                                  block);
            break;
        default:
            decodeBlock<int16_t>(vekiTextureDecodeBlockToRGB_BC6_16s_C1C3R, model::decodeBc6h(block.data(), true),
                                 block);
    }
    return 0;
}
