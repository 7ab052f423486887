#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "code_blocks.h"

namespace {

using codeblock::randomBlock;
using support::GuardedArray;
using support::Random;

constexpr int predictable = 0x100000;

struct Encoder {
    explicit Encoder(VekSize size) { vekiEncodeInitAlloc_JPEG2K(&state, size); }
    ~Encoder() { vekiEncodeFree_JPEG2K(state); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
    VekEncodeState_JPEG2K* state = nullptr;
};

struct Coded {
    std::vector<uint8_t> bytes;
    std::vector<int> lengths;  // of the segments
    std::vector<int> rates;    // of the passes
    std::vector<double> distortions;
    int sfBits = 0;
    int passes = 0;
};

struct Way {
    int subband, style, termMode, room;
};

Coded encode(Encoder& encoder, const std::vector<uint32_t>& block, VekSize size, const Way& way, int magnBits = 31)
{
    Coded coded;
    int segments = -1;
    EXPECT_EQ(vekStsOk,
              vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(reinterpret_cast<const int32_t*>(block.data()), size.width * 4,
                                                     size, encoder.state, way.subband, magnBits, way.termMode, 0,
                                                     way.style, &coded.sfBits, &coded.passes, &segments));
    int isNotFinish = 1;
    for (int calls = 0; isNotFinish != 0 && calls < 200000; ++calls) {
        GuardedArray<uint8_t> piece(static_cast<size_t>(way.room));
        int length = way.room;
        EXPECT_EQ(vekStsOk, vekiEncodeStoreBits_JPEG2K_1u(piece.data(), &length, encoder.state, &isNotFinish));
        coded.bytes.insert(coded.bytes.end(), piece.data(), piece.data() + length);
    }
    EXPECT_EQ(0, isNotFinish);
    for (int i = 0; i < segments; ++i) {
        int length = -1;
        EXPECT_EQ(vekStsOk, vekiEncodeGetTermPassLen_JPEG2K(encoder.state, i, &length));
        coded.lengths.push_back(length);
    }
    for (int i = 0; i < coded.passes; ++i) {
        int rate = -1;
        double distortion = -1;
        EXPECT_EQ(vekStsOk, vekiEncodeGetRate_JPEG2K(encoder.state, i, &rate));
        EXPECT_EQ(vekStsOk, vekiEncodeGetDist_JPEG2K(encoder.state, i, &distortion));
        coded.rates.push_back(rate);
        coded.distortions.push_back(distortion);
    }
    return coded;
}

std::vector<uint32_t> decode(const Coded& coded, VekSize size, const Way& way, int moreStyle = 0,
                             VekStatus expected = vekStsOk)
{
    int bytes = 0;
    EXPECT_EQ(vekStsOk, vekiDecodeGetBufSize_JPEG2K(size, &bytes));
    support::GuardedBytes memory(static_cast<size_t>((bytes + 7) / 8 * 8));
    auto* const state = reinterpret_cast<VekDecodeCBProgrState_JPEG2K*>(memory.data());
    GuardedArray<uint8_t> source(coded.bytes.size());
    std::copy(coded.bytes.begin(), coded.bytes.end(), source.data());
    GuardedArray<int32_t> block(static_cast<size_t>(size.width * size.height));
    std::vector<int> lengths = coded.lengths;
    lengths.push_back(0);
    EXPECT_EQ(expected, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(source.data(), block.data(), size.width * 4, size,
                                                             way.subband, coded.sfBits, coded.passes, lengths.data(),
                                                             static_cast<int>(coded.lengths.size()),
                                                             way.style | moreStyle, nullptr, state));
    return {block.data(), block.data() + size.width * size.height};
}

TEST(CodeBlockRoundTrip, EveryStyleTerminationAndSubbandIsLossless)
{
    Random random(4711);
    Encoder encoder({64, 64});
    for (int style = 0; style < 32; ++style) {
        for (int termMode = 0; termMode < 3; ++termMode) {
            for (int subband = 0; subband < 4; ++subband) {
                const VekSize size = {random.in(1, 64), random.in(1, 64)};
                const auto block = randomBlock(random, size, random.in(1, 31));
                const Way way = {subband, style, termMode, 100000};
                const Coded coded = encode(encoder, block, size, way);
                ASSERT_EQ(block, decode(coded, size, way))
                    << style << ' ' << termMode << ' ' << subband << ' ' << size.width << 'x' << size.height;
            }
        }
    }
}

TEST(CodeBlockRoundTrip, AnyRoomGivesTheSameBytes)
{
    Random random(17);
    Encoder encoder({32, 32});
    for (int style = 0; style < 32; ++style) {
        const VekSize size = {random.in(1, 32), random.in(1, 32)};
        const auto block = randomBlock(random, size, random.in(1, 12));
        for (int termMode = 0; termMode < 3; ++termMode) {
            const Coded whole = encode(encoder, block, size, {1, style, termMode, 100000});
            for (const int room : {1, 2, 3, 4, 5, 7, 64}) {
                const Coded pieces = encode(encoder, block, size, {1, style, termMode, room});
                ASSERT_EQ(whole.bytes, pieces.bytes) << style << ' ' << termMode << ' ' << room;
                ASSERT_EQ(whole.lengths, pieces.lengths);
                ASSERT_EQ(whole.distortions, pieces.distortions);
            }
        }
    }
}

TEST(CodeBlockRoundTrip, BitFlushEndsPredictably)
{
    Random random(99);
    Encoder encoder({64, 64});
    for (int style = 0; style < 32; ++style) {
        for (int i = 0; i < 8; ++i) {
            const VekSize size = {random.in(1, 64), random.in(1, 64)};
            const auto block = randomBlock(random, size, random.in(1, 20));
            const Way way = {0, style, 2, 100000};
            const Coded coded = encode(encoder, block, size, way);
            ASSERT_EQ(block, decode(coded, size, way, predictable)) << style;
        }
    }
}

TEST(CodeBlockRoundTrip, LosslessDistortionIsTheSquaredErrorThatIsGone)
{
    Random random(5);
    Encoder encoder({64, 64});
    for (int i = 0; i < 50; ++i) {
        const VekSize size = {random.in(1, 64), random.in(1, 64)};
        const auto block = randomBlock(random, size, 6);  // no bits below those that the tables look at
        const Coded coded = encode(encoder, block, size, {0, 0x20, 0, 100000});
        double energy = 0;
        for (const uint32_t v : block) energy += double(v & 0x7FFFFFFF) * (v & 0x7FFFFFFF);
        ASSERT_DOUBLE_EQ(energy, coded.passes == 0 ? 0 : coded.distortions.back());
    }
}

}  // namespace
