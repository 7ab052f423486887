#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "images.h"
#include "reference/texture/bc7_encoder.h"
#include "reference/texture/bptc.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"
#include "texture/bc7_axes.h"
#include "texture/bc7_svd.h"
#include "vekj.h"

namespace {

using support::GuardedBytes;
using support::Random;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xA5;

// A block of rows `step` bytes apart, in guarded memory.
model::Bc7Encoded encode(const Bytes& pixels, int mode, size_t step = 16)
{
    GuardedBytes src(3 * step + 16);
    for (size_t y = 0; y < 4; ++y) std::memcpy(src.data() + y * step, &pixels[16 * y], 16);
    GuardedBytes dst(16);
    model::Bc7Encoded result{};
    EXPECT_EQ(vekStsOk, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src.data(), static_cast<uint32_t>(step),
                                                                       dst.data(), &result.error, mode));
    std::copy(dst.data(), dst.data() + 16, result.block.begin());
    return result;
}

int decodedError(const Bytes& pixels, const std::array<uint8_t, 16>& block)
{
    const model::Bc7Block decoded = model::decodeBc7(block.data());
    int error = 0;
    for (size_t i = 0; i < 64; ++i) {
        const int d = pixels[i] - decoded[i / 4][i % 4];
        error += d * d;
    }
    return error;
}

Bytes randomBlock(Random& random)
{
    Bytes pixels = texture::randomImage(random, 4, 4, 4).bytes;
    if (random.chance(40))
        for (size_t i = 3; i < 64; i += 4) pixels[i] = 255;
    if (random.chance(30)) {  // two or three colours
        uint8_t colours[3][4];
        for (auto& colour : colours)
            for (uint8_t& c : colour) c = random.any<uint8_t>();
        for (size_t i = 0; i < 64; i += 4) std::memcpy(&pixels[i], colours[random.in(0, 2)], 4);
    }
    return pixels;
}

class Bc7Encoder : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Mode, Bc7Encoder, testing::Range(0, 8));

TEST_P(Bc7Encoder, FindsWhatTheModelFinds)
{
    const int mode = GetParam();
    const int blocks = (mode == 5 || mode == 6   ? 150
                        : mode == 0 || mode == 4 ? 60
                                                 : 12) /
                       (support::underSanitizer ? 6 : 1);
    Random random(static_cast<uint64_t>(100 + mode));
    for (int i = 0; i < blocks; ++i) {
        const Bytes pixels = randomBlock(random);
        const model::Bc7Encoded expected = model::encodeBc7(pixels.data(), mode, q3::svd_32f);
        const model::Bc7Encoded found = encode(pixels, mode, static_cast<size_t>(random.in(16, 40)));
        ASSERT_EQ(expected.error, found.error) << i;
        ASSERT_EQ(expected.block, found.block) << i;
    }
}

TEST_P(Bc7Encoder, EmitsABlockOfItsModeThatDecodesToTheError)
{
    const int mode = GetParam();
    const bool isExact = mode == 2 || mode == 4 || mode == 5;  // no p-bits
    Random random(static_cast<uint64_t>(200 + mode));
    for (int i = 0; i < (support::underSanitizer ? 10 : 100); ++i) {
        const Bytes pixels = randomBlock(random);
        const model::Bc7Encoded found = encode(pixels, mode);
        ASSERT_EQ(1 << mode, found.block[0] & ((2 << mode) - 1));
        ASSERT_TRUE(!isExact || decodedError(pixels, found.block) == found.error);
    }
}

TEST(Bc7EncoderCases, BadModesLeaveAllAlone)
{
    uint8_t src[64] = {}, dst[16];
    std::memset(dst, untouched, sizeof dst);
    for (const int mode : {8, -1, 100}) {
        int error = 77;
        EXPECT_EQ(vekStsBadBlockMode, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src, 16, dst, &error, mode));
        EXPECT_EQ(77, error);
        for (const uint8_t byte : dst) EXPECT_EQ(untouched, byte);
    }
}

TEST(Bc7EncoderCases, ChecksItsArgumentsInOrder)
{
    uint8_t src[64] = {}, dst[16];
    int error = 0;
    EXPECT_EQ(vekStsNullPointer, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(nullptr, 0, dst, &error, 8));
    EXPECT_EQ(vekStsNullPointer, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src, 0, nullptr, &error, 8));
    EXPECT_EQ(vekStsNullPointer, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src, 0, dst, nullptr, 8));
    EXPECT_EQ(vekStsBadStep, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src, 0, dst, &error, 8));
    EXPECT_EQ(vekStsBadBlockMode, vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(src, 16, dst, &error, 8));
}

TEST(Bc7EncoderCases, TransparentBlockCostsItsAlphaInModesWithout)
{
    Random random(5);
    Bytes pixels(64);
    random.fill(pixels);
    for (size_t i = 3; i < 64; i += 4) pixels[i] = 0;
    for (int mode = 0; mode < 4; ++mode) EXPECT_LE(16 * 255 * 255, encode(pixels, mode).error);
}

TEST(Bc7EncoderCases, FlatGreyIsExactWithoutRotationOrSelection)
{
    for (const int mode : {4, 5, 6}) {
        const model::Bc7Encoded found = encode(Bytes(64, 255), mode);
        EXPECT_EQ(0, found.error);
        EXPECT_EQ(0, decodedError(Bytes(64, 255), found.block));
        EXPECT_EQ(1 << mode, found.block[0] & (mode == 6 ? 0x7F : 0xFF));  // rotation 0, selection 0
    }
}

// The axis beside that of 64-bit Jacobi rotations of A'A.
TEST(Svd, FindsTheSingularValuesAndAnOrthonormalBasis)
{
    Random random(6);
    for (int trial = 0; trial < 3000; ++trial) {
        const int n = random.in(3, 4), m = random.in(3, 16);
        const int range = 1 << random.in(0, 7);
        std::vector<float> a(static_cast<size_t>(m) * 8);
        double square[4][4] = {}, norm = 0;
        for (int i = 0; i < m; ++i) {
            float* const row = &a[static_cast<size_t>(8 * i)];
            for (int c = 0; c < n; ++c) row[c] = static_cast<float>(random.in(-range, range)) / 2;
            for (int c = 0; c < n; ++c)
                for (int d = 0; d < n; ++d) square[c][d] += double{row[c]} * row[d];
        }
        for (int c = 0; c < n; ++c) norm += square[c][c];
        float w[4], v[64];
        q3::svd_32f(n, m, a.data(), 8, w, v, 16);
        double sum = 0;
        for (int i = 0; i < n; ++i) {
            ASSERT_TRUE(i == 0 || w[i] <= w[i - 1]);
            ASSERT_LE(0, w[i]);
            sum += double{w[i]} * w[i];
            for (int j = 0; j <= i; ++j) {
                double dot = 0;
                for (int c = 0; c < n; ++c) dot += double{v[16 * i + c]} * v[16 * j + c];
                ASSERT_NEAR(i == j ? 1 : 0, dot, 1e-5);
            }
            for (int c = 0; c < n; ++c) {  // A'A v = w^2 v
                double image = 0;
                for (int d = 0; d < n; ++d) image += square[c][d] * v[16 * i + d];
                ASSERT_NEAR(double{w[i]} * w[i] * v[16 * i + c], image, 1e-5 * norm + 1e-9) << trial;
            }
        }
        ASSERT_NEAR(norm, sum, 1e-5 * norm);
    }
}

// Four at once, of any heights, like each one alone: noise, lines, planes, few values, one value.
TEST(Svd, OfFourMatricesFindsTheSameAxes)
{
    Random random(7);
    for (int trial = 0; trial < (support::underSanitizer ? 2000 : 60000); ++trial) {
        const int n = random.in(3, 4);
        int heights[4];
        alignas(32) float lanes[16][4][4] = {}, axes[4][4];
        float expected[4][64];
        for (int lane = 0; lane < 4; ++lane) {
            heights[lane] = random.in(3, 16);
            float a[16 * 8], w[4];
            const int kind = random.in(0, 5), range = 1 << random.in(0, 8);
            int along[2][4];
            for (auto& direction : along)
                for (int& v : direction) v = random.in(-range, range);
            for (int r = 0; r < heights[lane]; ++r) {
                const int t = random.in(-9, 9), u = kind == 2 ? random.in(-9, 9) : 0;
                for (int c = 0; c < n; ++c) {
                    const int v = kind == 0   ? random.in(-range, range)
                                  : kind <= 2 ? t * along[0][c] + u * along[1][c]
                                  : kind == 3 ? (random.chance(80) ? 0 : range)
                                  : kind == 4 ? along[0][c]
                                              : (c == 1 ? 0 : random.in(-range, range));
                    a[8 * r + c] = lanes[r][c][lane] = static_cast<float>(v) / (trial % 2 == 0 ? 1.0F : 7.0F);
                }
            }
            q3::svd_32f(n, heights[lane], a, 8, w, expected[lane], 16);
        }
        q3::MatrixLanes matrices{};
        const int m = *std::max_element(heights, heights + 4);
        for (size_t r = 0; r < 16; ++r)
            for (size_t c = 0; c < 4; ++c) matrices[r][c] = _mm_load_ps(lanes[r][c]);
        const q3::RowLanes found = q3::mainAxes(n, m, matrices);
        for (int c = 0; c < n; ++c) _mm_store_ps(axes[c], found[static_cast<size_t>(c)]);
        for (int lane = 0; lane < 4; ++lane)
            for (int c = 0; c < n; ++c)
                ASSERT_EQ(0, std::memcmp(&expected[lane][c], &axes[c][lane], 4)) << trial << ' ' << lane << ' ' << c;
    }
}

}  // namespace
