#include <gtest/gtest.h>

#include <cstring>

#include "images.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"
#include "vekj.h"

namespace {

using model::Pixels;
using support::GuardedBytes;
using support::Random;
using texture::blocksOf;
using texture::randomImage;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xA5;

struct Encoder {
    const char* name;
    VekStatus (*encode)(const uint8_t*, uint32_t, VekSize, uint8_t*);
    Bytes (*model)(const Pixels&);
    int channels;
    size_t blockBytes;
};
const Encoder encoders[] = {
    {"DXT1", vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, model::encodeDxt1, 4, 8},
    {"DXT3", vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, model::encodeDxt3, 4, 16},
    {"DXT5", vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, model::encodeDxt5, 4, 16},
    {"YCoCg", vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, model::encodeYCoCgDxt5, 3, 16},
    {"BC4", vekiTextureEncodeBlock_BC4_8u_C1R, model::encodeBc4, 1, 8},
    {"BC5", vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R, model::encodeBc5, 2, 16},
};

struct Decoder {
    const char* name;
    VekStatus (*decode)(const uint8_t*, uint8_t*, uint32_t, VekSize);
    Pixels (*model)(const Bytes&, int, int);
    int channels;
    size_t blockBytes;
};
const Decoder decoders[] = {
    {"DXT1", vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, model::decodeDxt1, 4, 8},
    {"DXT3", vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, model::decodeDxt3, 4, 16},
    {"DXT5", vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, model::decodeDxt5, 4, 16},
    {"BC4", vekiTextureDecodeBlock_BC4_8u_C1R, model::decodeBc4, 1, 8},
    {"BC5", vekiTextureDecodeBlockToRG_BC5_8u_C1C2R, model::decodeBc5, 2, 16},
};

template <class Function>
std::string nameOf(const testing::TestParamInfo<Function>& info)
{
    return info.param.name;
}

// The image ends, or begins, at an unmapped page, with rows `step` bytes apart.
Bytes encode(const Encoder& e, const Pixels& image, size_t step, support::Guard guard)
{
    const size_t rowBytes = static_cast<size_t>(image.width * image.channels);
    GuardedBytes src(step * static_cast<size_t>(image.height - 1) + rowBytes, guard);
    for (int y = 0; y < image.height; ++y)
        std::memcpy(src.data() + step * static_cast<size_t>(y), &image.bytes[rowBytes * static_cast<size_t>(y)],
                    rowBytes);
    const size_t size = blocksOf(image.width, image.height) * e.blockBytes;
    GuardedBytes dst(size, guard);
    EXPECT_EQ(vekStsOk, e.encode(src.data(), static_cast<uint32_t>(step), {image.width, image.height}, dst.data()));
    return {dst.data(), dst.data() + size};
}

Pixels decode(const Decoder& d, const Bytes& blocks, int width, int height, size_t step, support::Guard guard)
{
    GuardedBytes src(blocks.size(), guard);
    std::copy(blocks.begin(), blocks.end(), src.data());
    const size_t rowBytes = static_cast<size_t>(width * d.channels);
    const size_t size = step * static_cast<size_t>(height - 1) + rowBytes;
    GuardedBytes dst(size, guard);
    std::memset(dst.data(), untouched, size);
    EXPECT_EQ(vekStsOk, d.decode(src.data(), dst.data(), static_cast<uint32_t>(step), {width, height}));
    Pixels image(width, height, d.channels);
    for (size_t i = 0; i < size; ++i) {
        if (i % step < rowBytes)
            image.bytes[i / step * rowBytes + i % step] = dst.data()[i];
        else
            EXPECT_EQ(untouched, dst.data()[i]) << "gap at " << i;
    }
    return image;
}

class DxtEncoder : public testing::TestWithParam<Encoder> {};
INSTANTIATE_TEST_SUITE_P(All, DxtEncoder, testing::ValuesIn(encoders), nameOf<Encoder>);
class DxtDecoder : public testing::TestWithParam<Decoder> {};
INSTANTIATE_TEST_SUITE_P(All, DxtDecoder, testing::ValuesIn(decoders), nameOf<Decoder>);

TEST_P(DxtEncoder, EverySizeAsTheModel)
{
    const Encoder& e = GetParam();
    Random random(11);
    for (int height = 1; height <= 17; ++height)
        for (int width = 1; width <= 17; ++width) {
            const Pixels image = randomImage(random, width, height, e.channels);
            const size_t step = static_cast<size_t>(width * e.channels + random.in(0, 9));
            const auto guard = random.chance(50) ? support::Guard::Behind : support::Guard::Before;
            ASSERT_EQ(e.model(image), encode(e, image, step, guard)) << width << 'x' << height;
        }
}

TEST_P(DxtEncoder, ManyBlocksAsTheModel)
{
    const Encoder& e = GetParam();
    Random random(12);
    for (int i = 0; i < (support::underSanitizer ? 30 : 300); ++i) {
        const Pixels image = randomImage(random, 64, 16, e.channels);
        ASSERT_EQ(e.model(image), encode(e, image, static_cast<size_t>(64 * e.channels), support::Guard::Behind));
    }
}

// Every lowest and highest value, with a third one between them.
TEST_P(DxtEncoder, EveryPairOfExtremesAsTheModel)
{
    const Encoder& e = GetParam();
    Random random(13);
    for (int low = 0; low < 256; low += support::underSanitizer ? 17 : 1) {
        Pixels image(4 * 256, 4, e.channels);
        for (int high = 0; high < 256; ++high)
            for (int i = 0; i < 16; ++i)
                for (int c = 0; c < e.channels; ++c)
                    image.at(4 * high + i % 4, i / 4, c) =
                        static_cast<uint8_t>(i == 0   ? low
                                             : i == 1 ? high
                                                      : random.in(std::min(low, high), std::max(low, high)));
        ASSERT_EQ(e.model(image), encode(e, image, static_cast<size_t>(1024 * e.channels), support::Guard::Behind));
    }
}

TEST_P(DxtEncoder, ChecksItsArgumentsInOrder)
{
    const Encoder& e = GetParam();
    uint8_t src[64] = {}, dst[16];
    std::memset(dst, untouched, sizeof dst);
    EXPECT_EQ(vekStsNullPointer, e.encode(nullptr, 0, {0, 0}, dst));
    EXPECT_EQ(vekStsNullPointer, e.encode(src, 0, {0, 0}, nullptr));
    EXPECT_EQ(vekStsBadStep, e.encode(src, 0, {0, 0}, dst));
    EXPECT_EQ(vekStsBadSize, e.encode(src, 16, {0, 4}, dst));
    EXPECT_EQ(vekStsBadSize, e.encode(src, 16, {4, 0}, dst));
    EXPECT_EQ(vekStsBadSize, e.encode(src, 16, {-4, 4}, dst));
    for (const uint8_t byte : dst) EXPECT_EQ(untouched, byte);
    EXPECT_EQ(vekStsOk, e.encode(src, 1, {4, 1}, dst));  // steps need not span a row
}

TEST_P(DxtDecoder, EverySizeAsTheModel)
{
    const Decoder& d = GetParam();
    Random random(21);
    for (int height = 1; height <= 17; ++height)
        for (int width = 1; width <= 17; ++width) {
            Bytes blocks(blocksOf(width, height) * d.blockBytes);
            random.fill(blocks);
            const size_t step = static_cast<size_t>(width * d.channels + random.in(0, 9));
            const auto guard = random.chance(50) ? support::Guard::Behind : support::Guard::Before;
            ASSERT_EQ(d.model(blocks, width, height).bytes, decode(d, blocks, width, height, step, guard).bytes)
                << width << 'x' << height;
        }
}

// Rows of several groups of blocks, with and without a rest.
TEST_P(DxtDecoder, WideImagesAsTheModel)
{
    const Decoder& d = GetParam();
    Random random(23);
    for (int width = 31; width <= 66; ++width) {
        const int height = random.in(4, 13);
        Bytes blocks(blocksOf(width, height) * d.blockBytes);
        random.fill(blocks);
        const size_t step = static_cast<size_t>(width * d.channels + random.in(0, 9));
        ASSERT_EQ(d.model(blocks, width, height).bytes,
                  decode(d, blocks, width, height, step, support::Guard::Behind).bytes)
            << width << 'x' << height;
    }
}

// Bytes 0 and 1 take every pair of values; so do bytes 8 and 9, with others.
TEST_P(DxtDecoder, EveryPairOfEndpointBytesAsTheModel)
{
    const Decoder& d = GetParam();
    Random random(22);
    for (int a = 0; a < 256; a += support::underSanitizer ? 17 : 1) {
        Bytes blocks(256 * d.blockBytes);
        random.fill(blocks);
        for (size_t b = 0; b < 256; ++b)
            for (size_t half = 0; half < d.blockBytes; half += 8) {
                blocks[b * d.blockBytes + half] = static_cast<uint8_t>(a);
                blocks[b * d.blockBytes + half + 1] = static_cast<uint8_t>(b);
            }
        const size_t step = static_cast<size_t>(1024 * d.channels);
        ASSERT_EQ(d.model(blocks, 1024, 4).bytes, decode(d, blocks, 1024, 4, step, support::Guard::Behind).bytes) << a;
    }
}

TEST_P(DxtDecoder, ChecksItsArgumentsInOrder)
{
    const Decoder& d = GetParam();
    uint8_t src[16] = {}, dst[64];
    std::memset(dst, untouched, sizeof dst);
    EXPECT_EQ(vekStsNullPointer, d.decode(nullptr, dst, 0, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, d.decode(src, nullptr, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, d.decode(src, dst, 0, {0, 0}));
    EXPECT_EQ(vekStsBadSize, d.decode(src, dst, 16, {0, 4}));
    EXPECT_EQ(vekStsBadSize, d.decode(src, dst, 16, {4, 0}));
    for (const uint8_t byte : dst) EXPECT_EQ(untouched, byte);
}

Bytes encodeFlat(const Encoder& e, std::initializer_list<int> pixel)
{
    Pixels image(1, 1, e.channels);
    int c = 0;
    for (const int v : pixel) image.at(0, 0, c++) = static_cast<uint8_t>(v);
    return encode(e, image, static_cast<size_t>(e.channels), support::Guard::Behind);
}

TEST(DxtEncoderCases, OneGreyPixelIsOneBlockOfEqualColours)
{
    for (int v = 0; v < 256; ++v) {
        const Bytes block = encodeFlat(encoders[0], {v, v, v, 7});
        ASSERT_EQ(8U, block.size());
        EXPECT_TRUE(block[0] == block[2] && block[1] == block[3]);
        EXPECT_EQ(Bytes(4, 0), Bytes(block.begin() + 4, block.end()));
    }
}

TEST(DxtEncoderCases, AlphaHasNoEffectOnDxt1)
{
    Random random(3);
    Pixels image = randomImage(random, 16, 16, 4);
    const Bytes blocks = encode(encoders[0], image, 64, support::Guard::Behind);
    for (int i = 0; i < 256; ++i) image.at(i % 16, i / 16, 3) = random.any<uint8_t>();
    EXPECT_EQ(blocks, encode(encoders[0], image, 64, support::Guard::Behind));
}

TEST(DxtEncoderCases, ConstantAlphaTakesIndexOne)
{
    const Bytes block = encodeFlat(encoders[2], {1, 2, 3, 77});
    EXPECT_EQ(77, block[0]);
    EXPECT_EQ(77, block[1]);
    for (size_t i = 2; i < 8; i += 3) {  // 001 eight times, low bit first
        EXPECT_EQ(0x49, block[i]);
        EXPECT_EQ(0x92, block[i + 1]);
        EXPECT_EQ(0x24, block[i + 2]);
    }
}

TEST(DxtEncoderCases, AlphaOf0And255IsInsetBy15)
{
    Pixels image(4, 4, 1);
    for (int i = 0; i < 16; ++i) image.at(i % 4, i / 4, 0) = i % 2 == 0 ? 0 : 255;
    const Bytes block = encode(encoders[4], image, 4, support::Guard::Behind);
    EXPECT_EQ(240, block[0]);
    EXPECT_EQ(15, block[1]);
}

TEST(DxtEncoderCases, ChromaScaleGoesByTheFarthestValue)
{
    const std::pair<int, int> cases[] = {{64, 0}, {63, 1}, {32, 1}, {31, 3}, {0, 3}};
    for (const auto& [m, code] : cases) {
        const Bytes block = encodeFlat(encoders[3], {100, 128 + m, 128});
        EXPECT_EQ(code, block[8] & 31) << m;
        EXPECT_EQ(code, block[10] & 31) << m;
    }
}

TEST(DxtEncoderCases, NoChromaAtAllWrapsItsLowEnd)
{
    const Bytes block = encodeFlat(encoders[3], {100, 0, 128});
    EXPECT_EQ(0, block[9] >> 3);
    EXPECT_EQ(31, block[11] >> 3);
}

Pixels decodeOne(const Decoder& d, const Bytes& block)
{
    return decode(d, block, 4, 4, static_cast<size_t>(4 * d.channels), support::Guard::Behind);
}

TEST(DxtDecoderCases, FourthOfThreeColoursIsOpaqueWhite)
{
    const Pixels image = decodeOne(decoders[0], {0x12, 0x34, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(Bytes(64, 255), image.bytes);
}

TEST(DxtDecoderCases, FullAlphaOfFourBitsIs240)
{
    Bytes block(16, 0xFF);
    const Pixels image = decodeOne(decoders[1], block);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(240, image.at(i % 4, i / 4, 3));
}

TEST(DxtDecoderCases, AlphaFrom255To0)
{
    const Bytes block = {255, 0, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA};  // indices 0 to 7, twice
    const Pixels image = decodeOne(decoders[3], block);
    const Bytes expected = {255, 0, 219, 182, 146, 109, 73, 36};
    EXPECT_EQ(expected, Bytes(image.bytes.begin(), image.bytes.begin() + 8));
}

TEST(DxtDecoderCases, EqualAlphaEndpointsStillGive0And255)
{
    for (int a = 0; a < 256; ++a) {
        const auto v = static_cast<uint8_t>(a);
        const Pixels image = decodeOne(decoders[3], {v, v, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA});
        const Bytes expected = {v, v, v, v, v, v, 0, 255};
        EXPECT_EQ(expected, Bytes(image.bytes.begin(), image.bytes.begin() + 8));
    }
}

}  // namespace
