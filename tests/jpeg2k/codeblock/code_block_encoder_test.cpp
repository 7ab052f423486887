#include <gtest/gtest.h>

#include <cstring>

#include "code_blocks.h"
#include "reference/jpeg2k/code_block_encoder.h"
#include "support/sanitizers.h"

namespace {

using codeblock::GuardedBlock;
using codeblock::randomBlock;
using codeblock::randomSize;
using support::Guard;
using support::GuardedArray;
using support::Random;
using Bytes = std::vector<uint8_t>;

class CodeBlockEncoder : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(vekStsOk, vekiEncodeInitAlloc_JPEG2K(&state_, {256, 256})); }
    void TearDown() override { vekiEncodeFree_JPEG2K(state_); }

    // Loads a block, and stores it in pieces of `room` bytes, beside the model.
    void expectEncoded(const std::vector<uint32_t>& samples, VekSize size, int subband, int magnBits, int termMode,
                       int style, int room, int gap)
    {
        model::CodeBlockEncoder expected(samples, size.width, size.height, subband, magnBits, termMode, style);
        GuardedBlock block(size, gap);
        block.set(samples);
        int sfBits = -1, passes = -1, segments = -1;
        ASSERT_EQ(vekStsOk,
                  vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(block.data(), block.step, size, state_, subband, magnBits,
                                                         termMode, 0, style, &sfBits, &passes, &segments));
        ASSERT_EQ(expected.sfBits, sfBits);
        ASSERT_EQ(static_cast<int>(expected.passes.size()), passes);
        ASSERT_EQ(expected.segments(), segments);
        for (int calls = 0, isNotFinished = 1; isNotFinished != 0; ++calls) {
            ASSERT_GT(1000000, calls);
            const auto stored = expected.store(room);
            GuardedArray<uint8_t> piece(static_cast<size_t>(room), calls % 2 == 0 ? Guard::Before : Guard::Behind);
            std::memset(piece.data(), 0xA5, static_cast<size_t>(room));
            int length = room;
            ASSERT_EQ(vekStsOk, vekiEncodeStoreBits_JPEG2K_1u(piece.data(), &length, state_, &isNotFinished));
            ASSERT_EQ(stored.bytes, Bytes(piece.data(), piece.data() + length));
            ASSERT_EQ(stored.isNotFinished, isNotFinished);
            for (int i = length; i < room; ++i) ASSERT_EQ(0xA5, piece.data()[i]);
            expectFigures(expected, passes);
        }
        for (int i = 0; i < segments; ++i) {
            int length = -1;
            ASSERT_EQ(vekStsOk, vekiEncodeGetTermPassLen_JPEG2K(state_, i, &length));
            ASSERT_EQ(expected.segmentLength(i), length);
        }
        int unused = 0;
        ASSERT_EQ(vekStsJpeg2KBadPassNumber, vekiEncodeGetTermPassLen_JPEG2K(state_, segments, &unused));
    }

    void expectFigures(const model::CodeBlockEncoder& expected, int passes)
    {
        for (int i = 0; i < passes; ++i) {
            int rate = -1;
            double distortion = -1;
            ASSERT_EQ(vekStsOk, vekiEncodeGetRate_JPEG2K(state_, i, &rate));
            ASSERT_EQ(vekStsOk, vekiEncodeGetDist_JPEG2K(state_, i, &distortion));
            ASSERT_EQ(expected.passes[static_cast<size_t>(i)].rate, rate) << i;
            ASSERT_EQ(expected.distortion(i), distortion) << i;
        }
    }

    VekEncodeState_JPEG2K* state_ = nullptr;
};

TEST_F(CodeBlockEncoder, EveryStyleAndTerminationAsTheModel)
{
    Random random(1);
    for (int style = 0; style < 64; ++style)
        for (int termMode = -1; termMode < 4; ++termMode)
            for (int i = 0; i < (support::underSanitizer ? 1 : 3); ++i) {
                const VekSize size = randomSize(random);
                const auto block = randomBlock(random, size, random.in(1, 31));
                expectEncoded(block, size, random.in(-1, 4), random.in(0, 31), termMode, style, 1 << 20,
                              random.in(0, 9));
                if (HasFatalFailure())
                    return;
            }
}

TEST_F(CodeBlockEncoder, EveryRoomAsTheModel)
{
    Random random(2);
    for (int style = 0; style < 32; ++style)
        for (const int room : {1, 2, 3, 4, 5, 6, 8, 13, 40}) {
            const VekSize size = {random.in(1, 24), random.in(1, 24)};
            const auto block = randomBlock(random, size, random.in(1, 14));
            expectEncoded(block, size, random.in(0, 3), 31, random.in(0, 2), style, room, 0);
            if (HasFatalFailure())
                return;
        }
}

// One call more ends it.
TEST_F(CodeBlockEncoder, RoomOfExactlyTheStreamIsNotEnough)
{
    Random random(3);
    const VekSize size = {16, 16};
    const auto block = randomBlock(random, size, 8);
    for (int style = 0; style < 32; ++style) {
        model::CodeBlockEncoder whole(block, 16, 16, 0, 31, 0, style);
        int length = 0;
        for (int isNotFinished = 1; isNotFinished != 0;) {
            const auto stored = whole.store(1 << 20);
            length += static_cast<int>(stored.bytes.size());
            isNotFinished = stored.isNotFinished;
        }
        expectEncoded(block, size, 0, 31, 0, style, length, 0);
    }
}

TEST_F(CodeBlockEncoder, LongAndHighBlocks)
{
    VekEncodeState_JPEG2K* const other = state_;
    Random random(4);
    for (const VekSize size : {VekSize{1024, 4}, VekSize{4, 1024}, VekSize{64, 64}, VekSize{1, 1}}) {
        ASSERT_EQ(vekStsOk, vekiEncodeInitAlloc_JPEG2K(&state_, size));
        expectEncoded(randomBlock(random, size, 20), size, 2, 31, 1, 0x2, 1 << 20, 0);
        vekiEncodeFree_JPEG2K(state_);
    }
    state_ = other;
}

TEST_F(CodeBlockEncoder, ManySymbolsOfOneColumn)
{
    Random random(5);
    ASSERT_EQ(vekStsOk, vekiEncodeFree_JPEG2K(state_));
    ASSERT_EQ(vekStsOk, vekiEncodeInitAlloc_JPEG2K(&state_, {1, 4}));
    for (int i = 0; i < 300; ++i) {
        std::vector<uint32_t> block(4);
        for (uint32_t& v : block) v = random.any<uint32_t>() >> random.in(0, 30);
        block[static_cast<size_t>(random.in(0, 3))] |= 0x40000000;
        expectEncoded(block, {1, 4}, 0, 31, 0, 0x10 | random.in(0, 15), 100000, 0);
    }
}

TEST_F(CodeBlockEncoder, AllZerosHaveNoPasses)
{
    const std::vector<uint32_t> block(16, 0x80000000);
    expectEncoded(block, {4, 4}, 0, 31, 0, 0, 5, 0);
    expectEncoded(block, {4, 4}, 0, 31, 0, 4, 5, 0);
    int sfBits = -1, passes = -1, segments = -1;
    const auto load = [&](int style) {
        return vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(reinterpret_cast<const int32_t*>(block.data()), 16, {4, 4},
                                                      state_, 0, 31, 0, 0, style, &sfBits, &passes, &segments);
    };
    EXPECT_EQ(vekStsOk, load(0));
    EXPECT_EQ(1, segments);
    EXPECT_EQ(vekStsOk, load(4));
    EXPECT_EQ(0, segments);
    EXPECT_EQ(0, sfBits);
    EXPECT_EQ(0, passes);
}

TEST_F(CodeBlockEncoder, OneSampleOfOneIsOneCleanupPass)
{
    std::vector<int32_t> block(16, 0);
    block[5] = 1;
    int sfBits = -1, passes = -1, segments = -1;
    EXPECT_EQ(vekStsOk, vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(block.data(), 16, {4, 4}, state_, 0, 31, 0, 0, 0x20,
                                                               &sfBits, &passes, &segments));
    EXPECT_EQ(1, sfBits);
    EXPECT_EQ(1, passes);
    double distortion = 0;
    EXPECT_EQ(vekStsOk, vekiEncodeGetDist_JPEG2K(state_, 0, &distortion));
    EXPECT_EQ(1.0, distortion);
    int rate = 0;
    EXPECT_EQ(vekStsJpeg2KBadPassNumber, vekiEncodeGetRate_JPEG2K(state_, 1, &rate));
    EXPECT_EQ(vekStsJpeg2KBadPassNumber, vekiEncodeGetRate_JPEG2K(state_, -1, &rate));
    EXPECT_EQ(vekStsJpeg2KBadPassNumber, vekiEncodeGetDist_JPEG2K(state_, 1, &distortion));
}

TEST_F(CodeBlockEncoder, ChecksItsArgumentsInOrder)
{
    std::vector<int32_t> block(16, 3);
    int a = -7, b = -7, c = -7;
    double d = -7;
    uint8_t byte = 0;
    VekEncodeState_JPEG2K* none = nullptr;
    EXPECT_EQ(vekStsNullPointer, vekiEncodeInitAlloc_JPEG2K(nullptr, {0, 0}));
    EXPECT_EQ(vekStsBadSize, vekiEncodeInitAlloc_JPEG2K(&none, {4, 0}));
    const auto load = [&](const int32_t* src, int step, VekSize size, VekEncodeState_JPEG2K* state, int* p, int* q,
                          int* r) {
        return vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(src, step, size, state, 0, 31, 0, 0, 0, p, q, r);
    };
    std::vector<uint64_t> zeros(1000);
    auto* const bad = reinterpret_cast<VekEncodeState_JPEG2K*>(zeros.data());
    EXPECT_EQ(vekStsNullPointer, load(nullptr, 0, {0, 0}, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsContextMismatch, load(nullptr, 0, {0, 0}, bad, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, load(nullptr, 0, {0, 0}, state_, nullptr, &b, &c));
    EXPECT_EQ(vekStsNullPointer, load(nullptr, 0, {0, 0}, state_, &a, nullptr, &c));
    EXPECT_EQ(vekStsNullPointer, load(nullptr, 0, {0, 0}, state_, &a, &b, nullptr));
    EXPECT_EQ(vekStsBadSize, load(nullptr, 0, {0, 4}, state_, &a, &b, &c));
    EXPECT_EQ(vekStsNullPointer, load(nullptr, 0, {4, 4}, state_, &a, &b, &c));
    EXPECT_EQ(vekStsBadStep, load(block.data(), 0, {4, 4}, state_, &a, &b, &c));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeStoreBits_JPEG2K_1u(&byte, &a, nullptr, &b));
    EXPECT_EQ(vekStsContextMismatch, vekiEncodeStoreBits_JPEG2K_1u(nullptr, &a, bad, &b));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeStoreBits_JPEG2K_1u(nullptr, &a, state_, &b));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeStoreBits_JPEG2K_1u(&byte, nullptr, state_, &b));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeStoreBits_JPEG2K_1u(&byte, &a, state_, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiEncodeStoreBits_JPEG2K_1u(&byte, &a, state_, &b));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeGetTermPassLen_JPEG2K(nullptr, 0, &a));
    EXPECT_EQ(vekStsContextMismatch, vekiEncodeGetTermPassLen_JPEG2K(bad, 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeGetTermPassLen_JPEG2K(state_, 0, nullptr));
    EXPECT_EQ(vekStsContextMismatch, vekiEncodeGetRate_JPEG2K(bad, 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeGetRate_JPEG2K(state_, 0, nullptr));
    EXPECT_EQ(vekStsContextMismatch, vekiEncodeGetDist_JPEG2K(bad, 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeGetDist_JPEG2K(state_, 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeFree_JPEG2K(nullptr));
    EXPECT_TRUE(a == -7 && b == -7 && c == -7 && d == -7);
    // Before any block there is nothing to store.
    int length = 1;
    EXPECT_EQ(vekStsOk, vekiEncodeStoreBits_JPEG2K_1u(&byte, &length, state_, &b));
    EXPECT_EQ(0, length);
    EXPECT_EQ(0, b);
}

}  // namespace
