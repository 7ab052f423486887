#include <gtest/gtest.h>

#include <cstring>

#include "code_blocks.h"
#include "reference/jpeg2k/code_block_decoder.h"
#include "reference/jpeg2k/code_block_encoder.h"
#include "support/sanitizers.h"

namespace {

using codeblock::GuardedBlock;
using codeblock::GuardedState;
using codeblock::randomBlock;
using codeblock::randomSize;
using support::GuardedArray;
using support::Random;
using Bytes = std::vector<uint8_t>;

constexpr int bypass = 0x2, terminate = 0x4, segmentation = 0x10, rollBack = 0x10000, dstIsClear = 0x20000,
              keepMidpoints = 0x40000, flagsAreClear = 0x80000, predictable = 0x100000;

// A block's segments, as a code-stream carries them.
struct Stream {
    Bytes bytes;
    std::vector<int> lengths;
    int sfBits, passes;
};

Stream encodeByModel(Random& random, VekSize size, int subband, int style, int termMode)
{
    const auto block = randomBlock(random, size, random.in(1, 31));
    model::CodeBlockEncoder encoder(block, size.width, size.height, subband, 31, termMode, style & 0x1F);
    Stream stream;
    for (int isNotFinished = 1; isNotFinished != 0;) {
        const auto stored = encoder.store(1 << 20);
        stream.bytes.insert(stream.bytes.end(), stored.bytes.begin(), stored.bytes.end());
        isNotFinished = stored.isNotFinished;
    }
    for (int i = 0; i < encoder.segments(); ++i) stream.lengths.push_back(encoder.segmentLength(i));
    stream.sfBits = encoder.sfBits;
    stream.passes = static_cast<int>(encoder.passes.size());
    return stream;
}

// Decodes in both forms beside the model.
void expectDecoded(Random& random, const Stream& stream, VekSize size, int subband, int style)
{
    const model::DecodedBlock expected = model::decodeCodeBlock(stream.bytes, size.width, size.height, subband,
                                                                stream.sfBits, stream.passes, stream.lengths, style);
    GuardedState state(size);
    GuardedBlock block(size, random.in(0, 9));
    GuardedArray<uint8_t> source(stream.bytes.size());
    std::copy(stream.bytes.begin(), stream.bytes.end(), source.data());
    std::vector<int> lengths = stream.lengths;
    lengths.push_back(0);
    int errorBitPlane = -1000;
    ASSERT_EQ(expected.status,
              vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(
                  source.data(), block.data(), block.step, size, subband, stream.sfBits, stream.passes, lengths.data(),
                  static_cast<int>(stream.lengths.size()), style, &errorBitPlane, state.get()));
    ASSERT_EQ(expected.samples, block.get());
    ASSERT_EQ(expected.errorBitPlane, errorBitPlane);
    int passes = -1, plane = -1;
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrGetPassCounter_JPEG2K(state.get(), &passes));
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state.get(), &plane));
    ASSERT_EQ(expected.passesLeft, passes);
    ASSERT_EQ(expected.bitPlane, plane);

    // Step by step, going on after damage.
    model::CodeBlockDecoder decoder(size.width, size.height, subband, stream.sfBits, style, stream.passes);
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), block.step, size, state.get(), subband,
                                                               stream.sfBits, style));
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrSetPassCounter_JPEG2K(stream.passes, state.get()));
    size_t position = 0;
    for (const int length : stream.lengths) {
        GuardedArray<uint8_t> segment(static_cast<size_t>(length));
        std::copy_n(stream.bytes.begin() + static_cast<ptrdiff_t>(position), length, segment.data());
        ASSERT_EQ(decoder.step(stream.bytes.data() + position, length),
                  vekiDecodeCBProgrStep_JPEG2K(segment.data(), length, state.get()));
        position += static_cast<size_t>(length);
        ASSERT_EQ(decoder.samples, block.get());
        vekiDecodeCBProgrGetPassCounter_JPEG2K(state.get(), &passes);
        vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state.get(), &plane);
        ASSERT_EQ(decoder.passesLeft, passes);
        ASSERT_EQ(decoder.bitPlane, plane);
    }
}

int randomStyle(Random& random)
{
    int style = random.in(0, 31);
    for (const int bit : {rollBack, keepMidpoints, predictable})
        if (random.chance(40))
            style |= bit;
    return style;
}

TEST(CodeBlockDecoder, GoodStreamsOfEveryStyleAsTheModel)
{
    Random random(1);
    for (int style = 0; style < 32; ++style)
        for (int i = 0; i < (support::underSanitizer ? 3 : 12); ++i) {
            const VekSize size = randomSize(random);
            const int subband = random.in(-1, 4), termMode = random.in(0, 2);
            const Stream stream = encodeByModel(random, size, subband, style, termMode);
            expectDecoded(random, stream, size, subband, style | (randomStyle(random) & ~31));
            if (testing::Test::HasFatalFailure())
                return;
        }
}

TEST(CodeBlockDecoder, DamagedStreamsAsTheModel)
{
    Random random(2);
    for (int i = 0; i < (support::underSanitizer ? 100 : 800); ++i) {
        const VekSize size = randomSize(random);
        const int subband = random.in(0, 3), style = randomStyle(random);
        Stream stream = encodeByModel(random, size, subband, style, random.in(0, 2));
        const int damages = random.in(1, 4);
        for (int k = 0; k < damages && !stream.bytes.empty(); ++k)
            stream.bytes[static_cast<size_t>(random.in(0, static_cast<int>(stream.bytes.size()) - 1))] =
                random.chance(30) ? 0xFF : random.any<uint8_t>();
        expectDecoded(random, stream, size, subband, style);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST(CodeBlockDecoder, CutAndRandomStreamsAsTheModel)
{
    Random random(3);
    for (int i = 0; i < (support::underSanitizer ? 100 : 800); ++i) {
        const VekSize size = randomSize(random);
        const int subband = random.in(0, 3), style = randomStyle(random);
        Stream stream;
        stream.sfBits = random.in(0, 31);
        stream.passes = random.in(0, 100);
        const int segments = random.in(0, 20);
        for (int k = 0; k < segments; ++k) {
            stream.lengths.push_back(random.chance(20) ? 0 : random.in(0, 60));
            for (int n = 0; n < stream.lengths.back(); ++n)
                stream.bytes.push_back(random.chance(20) ? 0xFF : random.any<uint8_t>());
        }
        expectDecoded(random, stream, size, subband, style);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST(CodeBlockDecoder, LongAndHighBlocks)
{
    Random random(4);
    for (const VekSize size : {VekSize{1024, 4}, VekSize{4, 1024}, VekSize{64, 64}, VekSize{1, 1}}) {
        const Stream stream = encodeByModel(random, size, 1, bypass, 0);
        expectDecoded(random, stream, size, 1, bypass);
    }
}

TEST(CodeBlockDecoder, KeepsTheBlockAndTheFlagsOnRequest)
{
    Random random(5);
    const VekSize size = {20, 13};
    GuardedState state(size);
    GuardedBlock block(size, 0);
    const auto before = randomBlock(random, size, 31);
    block.set(before);
    vekiDecodeCBProgrInit_JPEG2K(state.get());
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), block.step, size, state.get(), 0, 9,
                                                               dstIsClear | flagsAreClear));
    EXPECT_EQ(before, block.get());
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), block.step, size, state.get(), 0, 9, 0));
    EXPECT_EQ(std::vector<uint32_t>(before.size(), 0), block.get());
    // Flags of zeros are as good as cleared ones.
    const Stream stream = encodeByModel(random, size, 0, 0, 0);
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), block.step, size, state.get(), 0,
                                                               stream.sfBits, flagsAreClear));
    vekiDecodeCBProgrSetPassCounter_JPEG2K(stream.passes, state.get());
    EXPECT_EQ(vekStsOk,
              vekiDecodeCBProgrStep_JPEG2K(stream.bytes.data(), static_cast<int>(stream.bytes.size()), state.get()));
    model::CodeBlockDecoder decoder(size.width, size.height, 0, stream.sfBits, 0, stream.passes);
    decoder.step(stream.bytes.data(), static_cast<int>(stream.bytes.size()));
    EXPECT_EQ(decoder.samples, block.get());
}

TEST(CodeBlockDecoder, NoPlanesOrNoSegmentsAreNoError)
{
    const VekSize size = {5, 5};
    GuardedState state(size);
    GuardedBlock block(size, 0);
    const uint8_t byte = 0;
    const int lengths[1] = {1};
    EXPECT_EQ(vekStsOk, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, block.data(), 20, size, 0, 0, 5, lengths, 1, 0,
                                                             nullptr, state.get()));
    EXPECT_EQ(std::vector<uint32_t>(25, 0), block.get());
    block.set(std::vector<uint32_t>(25, 0xFFFFFFFF));
    EXPECT_EQ(vekStsOk, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, block.data(), 20, size, 0, 5, 5, lengths, -1,
                                                             dstIsClear, nullptr, state.get()));
    EXPECT_EQ(std::vector<uint32_t>(25, 0xFFFFFFF0), block.get());
}

TEST(CodeBlockDecoder, GoodEndingWipesABadSegmentationSymbol)
{
    Random random(6);
    int wiped = 0;
    for (int i = 0; i < 50; ++i) {
        const VekSize size = {8, 8};
        const Stream stream = encodeByModel(random, size, 0, terminate, 2);  // no symbols at all
        const int style = terminate | segmentation;
        const model::DecodedBlock without =
            model::decodeCodeBlock(stream.bytes, 8, 8, 0, stream.sfBits, stream.passes, stream.lengths, style);
        const model::DecodedBlock with = model::decodeCodeBlock(stream.bytes, 8, 8, 0, stream.sfBits, stream.passes,
                                                                stream.lengths, style | predictable);
        wiped += without.status != vekStsOk && with.status == vekStsOk ? 1 : 0;
        expectDecoded(random, stream, size, 0, style | predictable);
    }
    EXPECT_LT(0, wiped);
}

TEST(CodeBlockDecoder, SafeOutsideItsDomain)
{
    Random random(7);
    for (const int sfBits : {-2147483647 - 1, -5, 32, 33, 1000, 2147483647})
        for (const int style : {0, 2, 4, 6, 0x100000}) {
            const VekSize size = {9, 9};
            GuardedState state(size);
            GuardedBlock block(size, 0);
            Bytes bytes(40);
            random.fill(bytes);
            const int lengths[4] = {10, -7, 0, 20};
            const VekStatus status =
                vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(bytes.data(), block.data(), block.step, size, 7, sfBits,
                                                     2147483647, lengths, 4, style, nullptr, state.get());
            EXPECT_TRUE(status == vekStsOk || status == vekStsJpeg2KCorruptCodeBlock) << sfBits << ' ' << style;
        }
}

TEST(CodeBlockDecoder, StateSizes)
{
    int bytes = 0;
    EXPECT_EQ(vekStsOk, vekiDecodeCBProgrGetStateSize_JPEG2K({64, 64}, &bytes));
    EXPECT_EQ(472 + 288 * 34, bytes);
    EXPECT_EQ(vekStsOk, vekiDecodeGetBufSize_JPEG2K({1, 1}, &bytes));
    EXPECT_EQ(472 + 32 * 3, bytes);
    EXPECT_EQ(vekStsBadSize, vekiDecodeCBProgrGetStateSize_JPEG2K({0, 64}, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrGetStateSize_JPEG2K({1, 64}, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiDecodeGetBufSize_JPEG2K({1, -1}, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeGetBufSize_JPEG2K({1, 1}, nullptr));
}

TEST(CodeBlockDecoder, ChecksItsArgumentsInOrder)
{
    const VekSize size = {4, 4};
    VekDecodeCBProgrState_JPEG2K* state = nullptr;
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrInitAlloc_JPEG2K(nullptr, {0, 0}));
    EXPECT_EQ(vekStsBadSize, vekiDecodeCBProgrInitAlloc_JPEG2K(&state, {0, 4}));
    ASSERT_EQ(vekStsOk, vekiDecodeCBProgrInitAlloc_JPEG2K(&state, size));
    std::vector<int32_t> block(16, 7);
    const uint8_t byte = 0;
    const int lengths[1] = {1};
    int value = -77;
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrInit_JPEG2K(nullptr));
    EXPECT_EQ(vekStsJpeg2KNotAttached, vekiDecodeCBProgrStep_JPEG2K(&byte, 1, state));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrStep_JPEG2K(nullptr, 1, state));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrStep_JPEG2K(&byte, 1, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, nullptr, 0, 1, 0));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, state, 0, 1, 0));
    EXPECT_EQ(vekStsBadStep, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), 0, {0, 0}, state, 0, 1, 0));
    EXPECT_EQ(vekStsBadSize, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), 16, {4, 0}, state, 0, 1, 0));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrSetPassCounter_JPEG2K(1, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrGetPassCounter_JPEG2K(state, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state, nullptr));
    EXPECT_EQ(vekStsOk, vekiDecodeCBProgrSetPassCounter_JPEG2K(9, state));
    EXPECT_EQ(vekStsOk, vekiDecodeCBProgrGetPassCounter_JPEG2K(state, &value));
    EXPECT_EQ(9, value);
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(nullptr, nullptr, 0, {0, 0}, 0, 1, 1, nullptr, 1,
                                                                      0, nullptr, state));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, nullptr, 0, {0, 0}, 0, 1, 1, nullptr, 1, 0,
                                                                      nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize,
              vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, nullptr, 0, {0, 0}, 0, 1, 1, nullptr, 1, 0, nullptr, state));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, block.data(), 0, size, 0, 1, 1, nullptr, 1,
                                                                      0, nullptr, state));
    EXPECT_EQ(vekStsNullPointer,
              vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, nullptr, 0, size, 0, 1, 1, lengths, 1, 0, nullptr, state));
    EXPECT_EQ(vekStsBadStep, vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(&byte, block.data(), 0, size, 0, 1, 1, lengths, 1, 0,
                                                                  nullptr, state));
    EXPECT_EQ(std::vector<int32_t>(16, 7), block);
    GuardedState other(size);
    std::memset(static_cast<void*>(other.get()), 0, 8);
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrFree_JPEG2K(other.get()));
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrStep_JPEG2K(&byte, 1, other.get()));
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, other.get(), 0, 1, 0));
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrSetPassCounter_JPEG2K(1, other.get()));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrGetPassCounter_JPEG2K(other.get(), nullptr));
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrGetPassCounter_JPEG2K(other.get(), &value));
    EXPECT_EQ(vekStsContextMismatch, vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(other.get(), nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeCBProgrFree_JPEG2K(nullptr));
    EXPECT_EQ(vekStsOk, vekiDecodeCBProgrFree_JPEG2K(state));
}

}  // namespace
