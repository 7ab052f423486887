#include <gtest/gtest.h>

#include <cstring>

#include "images.h"
#include "reference/texture/bptc.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"
#include "vekj.h"

namespace {

using support::GuardedBytes;
using support::Random;
using texture::blocksOf;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xA5;

using Decode = VekStatus (*)(const uint8_t* blocks, void* pixels, int step, VekSize size);
VekStatus decodeBc7(const uint8_t* blocks, void* pixels, int step, VekSize size)
{
    return vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(blocks, static_cast<uint8_t*>(pixels), step, size);
}
VekStatus decodeBc6hUnsigned(const uint8_t* blocks, void* pixels, int step, VekSize size)
{
    return vekiTextureDecodeBlockToRGB_BC6_16u_C1C3R(blocks, static_cast<uint16_t*>(pixels), step, size);
}
VekStatus decodeBc6hSigned(const uint8_t* blocks, void* pixels, int step, VekSize size)
{
    return vekiTextureDecodeBlockToRGB_BC6_16s_C1C3R(blocks, static_cast<int16_t*>(pixels), step, size);
}

Bytes modelBc7(const uint8_t* block)
{
    const model::Bc7Block pixels = model::decodeBc7(block);
    Bytes bytes(sizeof pixels);
    std::memcpy(bytes.data(), &pixels, sizeof pixels);
    return bytes;
}
template <bool isSigned>
Bytes modelBc6h(const uint8_t* block)
{
    const model::Bc6hBlock pixels = model::decodeBc6h(block, isSigned);
    Bytes bytes(sizeof pixels);
    std::memcpy(bytes.data(), &pixels, sizeof pixels);
    return bytes;
}

// What an edge block stores of BC6H: rows overlap in a scratch of zeros, and are taken from other places.
Bytes edgeRow(const Bytes& block, int columns, int y)
{
    Bytes scratch(256, 0);
    for (size_t r = 0; r < 4; ++r) std::memcpy(&scratch[16 * r], &block[24 * r], 24);
    const auto from = scratch.begin() + y * (6 * columns + 8);
    return {from, from + 6 * columns};
}

struct Format {
    const char* name;
    Decode decode;
    Bytes (*model)(const uint8_t*);
    int pixelBytes;
    bool hasOddEdges;
};
const Format formats[] = {{"BC7", decodeBc7, modelBc7, 4, false},
                          {"BC6HUnsigned", decodeBc6hUnsigned, modelBc6h<false>, 6, true},
                          {"BC6HSigned", decodeBc6hSigned, modelBc6h<true>, 6, true}};

class BptcDecoder : public testing::TestWithParam<Format> {};
INSTANTIATE_TEST_SUITE_P(All, BptcDecoder, testing::ValuesIn(formats),
                         [](const auto& test) { return std::string(test.param.name); });

// Any step, negative ones too, gaps untouched.
void expectDecoded(const Format& format, const Bytes& blocks, int width, int height, int gap, bool isBottomUp)
{
    GuardedBytes src(blocks.size());
    std::copy(blocks.begin(), blocks.end(), src.data());
    const int rowBytes = width * format.pixelBytes;
    const int step = rowBytes + gap;
    const auto size = static_cast<size_t>(step * (height - 1) + rowBytes);
    GuardedBytes dst(size);
    std::memset(dst.data(), untouched, size);
    uint8_t* const first = isBottomUp ? dst.data() + step * (height - 1) : dst.data();
    ASSERT_EQ(vekStsOk, format.decode(src.data(), first, isBottomUp ? -step : step, {width, height}));
    Bytes expected(size, untouched);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += 4) {
            const int columns = std::min(4, width - x);
            const size_t block = static_cast<size_t>(y / 4 * ((width + 3) / 4) + x / 4);
            const Bytes pixels = format.model(&blocks[16 * block]);
            const bool isEdge = columns < 4 || height - y / 4 * 4 < 4;
            const auto from = pixels.begin() + y % 4 * 4 * format.pixelBytes;
            const Bytes row = isEdge && format.hasOddEdges ? edgeRow(pixels, columns, y % 4)
                                                           : Bytes(from, from + columns * format.pixelBytes);
            const int at = (isBottomUp ? height - 1 - y : y) * step + x * format.pixelBytes;
            std::copy(row.begin(), row.end(), expected.begin() + at);
        }
    ASSERT_EQ(expected, Bytes(dst.data(), dst.data() + size)) << width << 'x' << height;
}

TEST_P(BptcDecoder, EverySizeAsTheModel)
{
    Random random(31);
    for (int height = 1; height <= 13; ++height)
        for (int width = 1; width <= 13; ++width) {
            Bytes blocks(16 * blocksOf(width, height));
            random.fill(blocks);
            expectDecoded(GetParam(), blocks, width, height, random.in(0, 9), random.chance(30));
        }
}

TEST_P(BptcDecoder, EveryFirstByteAndPartitionAsTheModel)
{
    Random random(32);
    for (int i = 0; i < (support::underSanitizer ? 8 : 80); ++i) {
        Bytes blocks(16 * 256 * 4);
        random.fill(blocks);
        for (size_t b = 0; b < 1024; ++b) blocks[16 * b] = static_cast<uint8_t>(b);
        expectDecoded(GetParam(), blocks, 4096, 4, 0, false);
    }
}

// Blocks of few bits, and of nearly all: endpoints at the ends of their ranges.
TEST_P(BptcDecoder, ExtremeBlocksAsTheModel)
{
    Random random(33);
    for (int i = 0; i < (support::underSanitizer ? 8 : 40); ++i) {
        Bytes blocks(16 * 1024);
        for (size_t b = 0; b < blocks.size(); ++b) {
            const int kind = random.in(0, 3);
            blocks[b] = static_cast<uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : random.in(0, 255));
            if (b % 16 == 0)
                blocks[b] = random.any<uint8_t>();
        }
        expectDecoded(GetParam(), blocks, 4096, 4, 0, false);
    }
}

TEST_P(BptcDecoder, ChecksItsArgumentsInOrder)
{
    const Format& format = GetParam();
    uint8_t src[16] = {};
    alignas(8) uint8_t dst[96];
    std::memset(dst, untouched, sizeof dst);
    EXPECT_EQ(vekStsNullPointer, format.decode(nullptr, dst, 0, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, format.decode(src, nullptr, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, format.decode(src, dst, 0, {0, 0}));
    EXPECT_EQ(vekStsBadSize, format.decode(src, dst, 24, {0, 4}));
    EXPECT_EQ(vekStsBadSize, format.decode(src, dst, 24, {4, -1}));
    for (const uint8_t byte : dst) EXPECT_EQ(untouched, byte);
}

TEST(BptcDecoderCases, ReservedModesGiveZeros)
{
    Bytes pixels(64, untouched);
    Bytes block(16, 0xFF);
    block[0] = 0;
    EXPECT_EQ(vekStsOk, decodeBc7(block.data(), pixels.data(), 16, {4, 4}));
    EXPECT_EQ(Bytes(64, 0), pixels);
    for (const int code : {0x13, 0x17, 0x1B, 0x1F, 0xF3}) {
        std::vector<uint16_t> values(48, 0x5A5A);
        block[0] = static_cast<uint8_t>(code);
        EXPECT_EQ(vekStsOk, decodeBc6hSigned(block.data(), values.data(), 24, {4, 4}));
        EXPECT_EQ(std::vector<uint16_t>(48, 0), values);
    }
}

TEST(BptcDecoderCases, LargestEndpointIsTheLargestFiniteNumber)
{
    Bytes block(16, 0);
    for (size_t i = 0; i < 9; ++i) block[i] = 0xFF;
    block[0] = 0xE3;  // one subset, endpoints of ten bits
    std::vector<uint16_t> values(48);
    EXPECT_EQ(vekStsOk, decodeBc6hUnsigned(block.data(), values.data(), 24, {4, 4}));
    EXPECT_EQ(0x7BFF, values[0]);
}

}  // namespace
