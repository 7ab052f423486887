#include <gtest/gtest.h>

#include <algorithm>

#include "huffman_fixtures.h"
#include "support/guarded_buffer.h"

namespace {

using huffman::annexK;
using huffman::Block;
using huffman::Tables;
using support::GuardedArray;
using support::Random;

// A stream that is written twice, by the library and by the model, with the same room.
class TwoStreams {
public:
    TwoStreams(const Tables& tables, int room) : tables_(tables), dst_(static_cast<size_t>(room))
    {
        expected_.bytes.resize(static_cast<size_t>(room));
        vekiEncodeHuffmanStateInit_JPEG_8u(&state_);
    }
    VekStatus encode(const Block& block)
    {
        const VekStatus want = model::encodeBlock(block, expected_, expectedDc_, tables_.modelEncodeDc,
                                                  tables_.modelEncodeAc, expectedState_);
        support::GuardedBytes memory(sizeof block, support::Guard::Behind, misalignment_++ % 16);
        std::memcpy(memory.data(), block.data(), sizeof block);
        const auto* const src = reinterpret_cast<const int16_t*>(memory.data());
        const VekStatus got =
            vekiEncodeHuffman8x8_JPEG_16s1u_C1(src, dst_.data(), static_cast<int>(dst_.size()), &position_, &dc_,
                                               &tables_.encodeDc, &tables_.encodeAc, &state_, 0);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    VekStatus flush()
    {
        const VekStatus want = model::flush(expected_, expectedState_);
        const VekStatus got = vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst_.data(), static_cast<int>(dst_.size()),
                                                                 &position_, nullptr, nullptr, nullptr, &state_, 1);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    void compare()
    {
        ASSERT_EQ(expected_.position, position_);
        ASSERT_EQ(0, std::memcmp(expected_.bytes.data(), dst_.data(), static_cast<size_t>(position_)));
        ASSERT_EQ(expectedDc_, dc_);
        ASSERT_EQ(expectedState_.numBits, state_.numBits);
        const uint32_t mask = ((1U << state_.numBits) - 1) << (24 - state_.numBits);
        ASSERT_EQ(expectedState_.pending & mask, state_.bitBuffer & mask);
    }
    int position() const { return position_; }
    const uint8_t* bytes() { return dst_.data(); }
    VekEncodeHuffmanState& state() { return state_; }

private:
    const Tables& tables_;
    model::Output expected_;
    model::EncoderState expectedState_;
    int16_t expectedDc_ = 0;
    GuardedArray<uint8_t> dst_;
    int position_ = 0;
    int16_t dc_ = 0;
    VekEncodeHuffmanState state_;
    size_t misalignment_ = 0;  // of the blocks, which need not even lie at even addresses
};

TEST(HuffmanEncoder, ReportsItsStatesSizeAndInitialisesIt)
{
    int size = 0;
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1048, size);
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanStateGetBufSize_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanStateInit_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanStateInitAlloc_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanStateFree_JPEG_8u(nullptr));
    GuardedArray<VekEncodeHuffmanState> state(1);
    std::memset(state.data(), 0xFF, 1048);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateInit_JPEG_8u(state.data()));
    const VekEncodeHuffmanState zero{};
    EXPECT_EQ(0, std::memcmp(&zero, state.data(), offsetof(VekEncodeHuffmanState, correctionBits) + 1024));
    VekEncodeHuffmanState* allocated = nullptr;
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateInitAlloc_JPEG_8u(&allocated));
    EXPECT_EQ(0, allocated->numBits);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateFree_JPEG_8u(allocated));
}

TEST(HuffmanEncoder, EqualsItsModelOverLongStreams)
{
    Random random(1);
    const Tables standard = annexK();
    for (int kind = 0; kind < 4; ++kind)
        for (int round = 0; round < 30; ++round) {
            const Tables other(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
            TwoStreams streams(round % 3 == 0 ? standard : other, 100000);
            for (int i = 0; i < 150; ++i) {
                streams.encode(huffman::randomBlock(random, kind));
                if (random.chance(3))
                    streams.flush();
                if (testing::Test::HasFailure())
                    return;
            }
        }
}

TEST(HuffmanEncoder, EqualsItsModelAroundTheLargestMagnitudesOfEightBitPictures)
{
    Random random(21);
    const Tables tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
    for (const int16_t dc : {0, 1023, 1024, -1024, 2047, -32768, 32767})
        for (const int16_t v : {1022, 1023, 1024, 1025, -1023, -1024, -1025, 2047, 32767, -32767, -32768})
            for (size_t i = 1; i < 64; ++i) {
                TwoStreams streams(tables, 600);
                Block block{};
                block[0] = dc;
                block[i] = v;
                block[63] = i % 2 == 0 ? int16_t{1} : block[63];
                streams.encode(block);
                streams.encode(huffman::randomBlock(random, 1));
                streams.flush();
                ASSERT_FALSE(testing::Test::HasFailure()) << dc << ' ' << v << " at " << i;
            }
}

TEST(HuffmanEncoder, AStateThatNoCallLeftKeepsToTheRoom)
{
    Random random(22);
    const Tables tables = annexK();
    for (const int numBits : {8, 17, 24, 25, 32, 63, 64, 1000, INT32_MAX, -1, -8, INT32_MIN})
        for (int room = 1; room < 50; ++room) {
            GuardedArray<uint8_t> dst(static_cast<size_t>(room));
            VekEncodeHuffmanState state{};
            state.bitBuffer = random.any<uint64_t>();
            state.numBits = numBits;
            int position = 0;
            int16_t dc = 0;
            for (int i = 0; i < 6; ++i) {
                const Block block = huffman::randomBlock(random, 2);
                vekiEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), dst.data(), room, &position, &dc, &tables.encodeDc,
                                                   &tables.encodeAc, &state, i % 4 == 3);
                ASSERT_TRUE(position >= 0 && position <= room) << numBits << ' ' << room;
            }
        }
}

TEST(HuffmanEncoder, EqualsItsModelInEveryRoom)
{
    Random random(2);
    const Tables tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
    for (int room = 1; room <= 260; ++room) {
        TwoStreams streams(tables, room);
        for (int i = 0; i < 40; ++i) {
            streams.encode(huffman::randomBlock(random, random.in(0, 3)));
            if (random.chance(10))
                streams.flush();
            if (testing::Test::HasFailure())
                return;
        }
    }
}

TEST(HuffmanEncoder, EqualsItsModelOnRunsOfEveryLengthInLittleAndAmpleRoom)
{
    Random random(6);
    const Tables tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
    for (int run = 0; run <= 62; ++run)
        for (int first : {1, random.in(1, 63)})
            for (int room = 1; room <= 30; ++room) {
                if (first + run > 63)
                    continue;
                Block block{};
                block[static_cast<size_t>(model::zigzag[static_cast<size_t>(first + run)])] = random.in<int16_t>(1, 9);
                if (first > 1)
                    block[static_cast<size_t>(model::zigzag[static_cast<size_t>(first) - 1])] = -1;
                TwoStreams streams(tables, room);
                streams.encode(block);
                streams.flush();
                ASSERT_FALSE(HasFailure()) << run << " from " << first << " in " << room;
            }
}

// Words of ones with a zero behind them.
model::HuffmanLists nearlyOnes()
{
    return huffman::lists({1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1},
                          {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0, 15});
}

// Nearly every byte is 0xFF.
TEST(HuffmanEncoder, EqualsItsModelOnBytesThatAreAllStuffedInEveryRoom)
{
    const Tables tables(nearlyOnes(), nearlyOnes());
    Block block;
    block.fill(32767);
    for (int room = 1; room <= 520; ++room) {
        TwoStreams streams(tables, room);
        streams.encode(block);
        streams.encode(block);
        ASSERT_FALSE(HasFailure()) << room;
    }
}

// Category 16 borders on the symbols of the next run, and behind the longest run on none.
TEST(HuffmanEncoder, TheLeastCoefficientTakesTheNextRunsEntryAndBehindFifteenZerosNone)
{
    model::HuffmanLists all = huffman::lists({0, 0, 0, 0, 0, 0, 0, 0, 255, 1}, {});
    for (size_t i = 0; i < 256; ++i) all.vals[i] = static_cast<uint8_t>(i);
    const Tables tables(all, all);
    for (const int room : {20, 100})
        for (int zeros = 0; zeros < 18; ++zeros) {
            Block block{};
            block[static_cast<size_t>(model::zigzag[static_cast<size_t>(zeros) + 1])] = -32768;
            TwoStreams streams(tables, room);
            EXPECT_EQ(zeros == 15 ? VekStatus{vekStsJpegHuffmanTable} : VekStatus{vekStsOk}, streams.encode(block));
            ASSERT_FALSE(HasFailure()) << zeros << " in " << room;
        }
    // The form that tests no codes writes the magnitude alone: nine bits for no difference, 0111111111111111, nine bits
    // for the end of the block.
    Block block{};
    block[static_cast<size_t>(model::zigzag[16])] = -32768;
    uint8_t dst[8] = {};
    int bits = 0;
    int16_t dc = 0;
    vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst, &bits, &dc, &tables.encodeDc, &tables.encodeAc);
    EXPECT_EQ(8 + 9 + 16 + 9, bits);  // and a stuffed zero
    EXPECT_EQ(0, std::memcmp("\x00\x3F\xFF\x00\x80\x00", dst, 6));
}

TEST(HuffmanEncoder, EqualsItsModelWithCodesMissing)
{
    Random random(3);
    int failures = 0;
    for (int round = 0; round < 200; ++round) {
        const Tables tables(huffman::randomLists(random, random.in(8, 20)),
                            huffman::randomLists(random, random.in(100, 240)));
        TwoStreams streams(tables, 4000);
        for (int i = 0; i < 10; ++i)
            failures += streams.encode(huffman::randomBlock(random, random.in(0, 3))) != vekStsOk;
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_LT(0, failures);
}

TEST(HuffmanEncoder, ChecksItsArgumentsInOrder)
{
    const Tables tables = annexK();
    const Block block{};
    uint8_t dst[64] = {};
    int position = 3;
    int16_t dc = 11;
    VekEncodeHuffmanState state{};
    const auto call = [&](const int16_t* pSrc, uint8_t* pDst, int room, int* pPosition, int16_t* pDc,
                          const VekEncodeHuffmanSpec* pDcTable, const VekEncodeHuffmanSpec* pAcTable,
                          VekEncodeHuffmanState* pState, int flush) {
        return vekiEncodeHuffman8x8_JPEG_16s1u_C1(pSrc, pDst, room, pPosition, pDc, pDcTable, pAcTable, pState, flush);
    };
    const int16_t* const src = block.data();
    EXPECT_EQ(vekStsNullPointer, call(nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, dst, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, dst, -1, nullptr, nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, call(src, dst, 64, nullptr, &dc, &tables.encodeDc, &tables.encodeAc, &state, 1));
    EXPECT_EQ(vekStsNullPointer, call(src, dst, 64, &position, &dc, &tables.encodeDc, &tables.encodeAc, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, 64, &position, &dc, &tables.encodeDc, &tables.encodeAc, &state, 0));
    EXPECT_EQ(vekStsNullPointer, call(src, dst, 64, &position, nullptr, &tables.encodeDc, &tables.encodeAc, &state, 0));
    EXPECT_EQ(vekStsNullPointer, call(src, dst, 64, &position, &dc, nullptr, &tables.encodeAc, &state, 0));
    EXPECT_EQ(vekStsNullPointer, call(src, dst, 64, &position, &dc, &tables.encodeDc, nullptr, &state, 0));
    EXPECT_EQ(vekStsOk, call(nullptr, dst, 64, &position, nullptr, nullptr, nullptr, &state, 1));
    EXPECT_EQ(3, position);
    EXPECT_EQ(11, dc);
    EXPECT_EQ(0, dst[3]);
}

// The bits that one block adds to an empty stream, padded by a flush.
std::vector<uint8_t> encoded(const Block& block, int16_t lastDc = 0)
{
    const Tables tables = annexK();
    std::vector<uint8_t> dst(600);
    int position = 0;
    VekEncodeHuffmanState state{};
    EXPECT_EQ(vekStsOk, vekiEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), dst.data(), 600, &position, &lastDc,
                                                           &tables.encodeDc, &tables.encodeAc, &state, 0));
    vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst.data(), 600, &position, nullptr, nullptr, nullptr, &state, 1);
    dst.resize(static_cast<size_t>(position));
    return dst;
}

TEST(HuffmanEncoder, AZeroBlockIsCategoryZeroAndEndOfBlock)
{
    EXPECT_EQ((std::vector<uint8_t>{0b00101011}), encoded({}));  // 00, 1010, then 1 bits
}

TEST(HuffmanEncoder, DifferencesOfMinusOneAndOneDifferInTheirMagnitudeBit)
{
    Block block{};
    EXPECT_EQ((std::vector<uint8_t>{0b01001010}), encoded(block, 1));  // 010 0 1010
    EXPECT_EQ((std::vector<uint8_t>{0b01011010}), encoded(block, -1));
}

TEST(HuffmanEncoder, ACoefficientAtTheEndNeedsNoEndOfBlock)
{
    Block block{};
    block[63] = 1;
    // Code 00, three times 11111111001 for sixteen zeros, and for run 14 and category 1 a code of 16 bits and one
    // magnitude bit.
    const Tables tables = annexK();
    TwoStreams streams(tables, 100);
    streams.encode(block);
    const auto stuffed = std::count(streams.bytes(), streams.bytes() + streams.position(), uint8_t{0xFF});
    EXPECT_EQ(2 + 3 * 11 + 16 + 1, 8 * (streams.position() - stuffed) + streams.state().numBits);
}

TEST(HuffmanEncoder, SixteenZerosAreOneCodeAndFifteenAreNone)
{
    const Tables tables = annexK();
    for (int zeros : {15, 16}) {
        Block block{};
        block[static_cast<size_t>(model::zigzag[static_cast<size_t>(zeros) + 1])] = 1;
        std::array<int, 256> dc{};
        std::array<int, 256> ac{};
        int16_t lastDc = 0;
        EXPECT_EQ(vekStsOk, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &lastDc));
        EXPECT_EQ(zeros == 16 ? 1 : 0, ac[0xF0]);
        EXPECT_EQ(zeros == 16 ? 1 : 0, ac[0x01]);
        EXPECT_EQ(zeros == 15 ? 1 : 0, ac[0xF1]);
        TwoStreams streams(tables, 100);
        EXPECT_EQ(vekStsOk, streams.encode(block));
    }
}

TEST(HuffmanEncoder, AByteOf255InTheLastPlaceIsOutOfBuffer)
{
    // One code of 8 one bits would be refused; 0xFF comes from a magnitude: category 8 after a 2-bit code and 6 pending
    // bits.
    model::HuffmanLists dc = huffman::lists({0, 1}, {8});
    model::HuffmanLists ac = huffman::lists({1}, {0});
    const Tables tables(dc, ac);
    uint8_t dst[2] = {};
    int position = 0;
    int16_t lastDc = 0;
    VekEncodeHuffmanState state{};
    Block block{};
    block[0] = 255;  // 00 11111111, then 0
    ASSERT_EQ(vekStsOk, vekiEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), dst, 2, &position, &lastDc, &tables.encodeDc,
                                                           &tables.encodeAc, &state, 0));
    EXPECT_EQ(1, position);
    EXPECT_EQ(0x3F, dst[0]);
    position = 0;
    lastDc = 0;
    state = {};
    state.numBits = 6;  // 000000 00 | 11111111 | 0
    uint8_t one[2] = {};
    EXPECT_EQ(vekStsJpegOutOfBuffer, vekiEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), one, 2, &position, &lastDc,
                                                                        &tables.encodeDc, &tables.encodeAc, &state, 0));
    EXPECT_EQ(2, position);
    EXPECT_EQ(0xFF, one[1]);
    EXPECT_EQ(255, lastDc);
}

TEST(HuffmanEncoder, AFlushWritesOnlyPendingBits)
{
    uint8_t dst[4] = {};
    int position = 0;
    VekEncodeHuffmanState state{};
    EXPECT_EQ(vekStsOk,
              vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, 4, &position, nullptr, nullptr, nullptr, &state, 1));
    EXPECT_EQ(0, position);
    state.bitBuffer = 0x400000;
    state.numBits = 3;
    EXPECT_EQ(vekStsOk,
              vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, 4, &position, nullptr, nullptr, nullptr, &state, 1));
    EXPECT_EQ(1, position);
    EXPECT_EQ(0b01011111, dst[0]);
    EXPECT_EQ(0, state.numBits);
}

TEST(HuffmanEncoder, AFlushIntoAFullDestinationResetsTheState)
{
    uint8_t dst[1] = {};
    int position = 1;
    VekEncodeHuffmanState state{};
    state.bitBuffer = 0x400000;
    state.numBits = 3;
    state.eobRun = 5;
    EXPECT_EQ(vekStsJpegOutOfBuffer,
              vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, 1, &position, nullptr, nullptr, nullptr, &state, 1));
    EXPECT_EQ(0, state.numBits);
    EXPECT_EQ(0, state.eobRun);
}

TEST(HuffmanEncoderDirect, EqualsItsModelAndKeepsToItsRoom)
{
    Random random(4);
    for (int round = 0; round < 300; ++round) {
        const Tables tables(huffman::randomLists(random, random.in(10, 256)),
                            huffman::randomLists(random, random.in(100, 256)));
        std::vector<uint8_t> expected(20000);
        for (uint8_t& b : expected) b = random.any<uint8_t>();
        int expectedBits = random.in(0, 20);
        const int firstBits = expectedBits;
        int16_t expectedDc = 0;
        std::vector<Block> blocks;
        const std::vector<uint8_t> before = expected;
        for (int i = random.in(1, 12); i > 0; --i) {
            blocks.push_back(huffman::randomBlock(random, random.in(0, 3)));
            model::encodeDirect(blocks.back(), expected, expectedBits, expectedDc, tables.modelEncodeDc,
                                tables.modelEncodeAc);
        }
        const auto room = static_cast<size_t>(expectedBits / 8 + 1);
        GuardedArray<uint8_t> dst(room);
        std::copy(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(room), dst.begin());
        int bits = firstBits;
        int16_t dc = 0;
        for (const Block& block : blocks)
            ASSERT_EQ(vekStsOk, vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst.data(), &bits, &dc,
                                                                          &tables.encodeDc, &tables.encodeAc));
        ASSERT_EQ(expectedBits, bits);
        ASSERT_EQ(expectedDc, dc);
        ASSERT_TRUE(std::equal(dst.begin(), dst.end(), expected.begin()));
    }
}

TEST(HuffmanEncoderDirect, EqualsItsModelOnTheLongestBlockWithEveryByteStuffed)
{
    const Tables tables(nearlyOnes(), nearlyOnes());
    Block block;
    block.fill(32767);
    for (int begin = 0; begin < 8; ++begin) {
        std::vector<uint8_t> expected(1000, 0xFE);
        int expectedBits = begin;
        int16_t dc = 0;
        model::encodeDirect(block, expected, expectedBits, dc, tables.modelEncodeDc, tables.modelEncodeAc);
        EXPECT_LT(8 * 430, expectedBits);
        GuardedArray<uint8_t> dst(static_cast<size_t>(expectedBits / 8 + 1));
        dst[0] = 0xFE;
        int bits = begin;
        dc = 0;
        EXPECT_EQ(vekStsOk, vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst.data(), &bits, &dc,
                                                                      &tables.encodeDc, &tables.encodeAc));
        EXPECT_EQ(expectedBits, bits);
        EXPECT_TRUE(std::equal(dst.begin(), dst.end(), expected.begin()));
    }
}

TEST(HuffmanEncoderDirect, KeepsTheBitsBeforeItsPosition)
{
    const Tables tables = annexK();
    uint8_t dst[4] = {0b10110111, 0, 0, 0};
    int bits = 5;
    int16_t dc = 0;
    const Block block{};
    EXPECT_EQ(vekStsOk, vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst, &bits, &dc, &tables.encodeDc,
                                                                  &tables.encodeAc));
    EXPECT_EQ(11, bits);
    EXPECT_EQ(0b10110001, dst[0]);  // 10110, then 001010
    EXPECT_EQ(0b01000000, dst[1]);
}

TEST(HuffmanEncoderDirect, RefusesNullPointers)
{
    const Tables tables = annexK();
    const Block block{};
    uint8_t dst[16] = {7};
    int bits = 0;
    int16_t dc = 0;
    const auto call = [](const int16_t* a, uint8_t* b, int* c, int16_t* d, const VekEncodeHuffmanSpec* e,
                         const VekEncodeHuffmanSpec* f) {
        return vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(a, b, c, d, e, f);
    };
    EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, &bits, &dc, &tables.encodeDc, &tables.encodeAc));
    EXPECT_EQ(vekStsNullPointer, call(block.data(), nullptr, &bits, &dc, &tables.encodeDc, &tables.encodeAc));
    EXPECT_EQ(vekStsNullPointer, call(block.data(), dst, nullptr, &dc, &tables.encodeDc, &tables.encodeAc));
    EXPECT_EQ(vekStsNullPointer, call(block.data(), dst, &bits, nullptr, &tables.encodeDc, &tables.encodeAc));
    EXPECT_EQ(vekStsNullPointer, call(block.data(), dst, &bits, &dc, nullptr, &tables.encodeAc));
    EXPECT_EQ(vekStsNullPointer, call(block.data(), dst, &bits, &dc, &tables.encodeDc, nullptr));
    EXPECT_EQ(7, dst[0]);
}

TEST(HuffmanStatistics, EqualTheirModelAndSufficeForTheEncoder)
{
    Random random(5);
    for (int round = 0; round < 60; ++round) {
        std::array<int, 256> dc{};
        std::array<int, 256> ac{};
        std::array<int, 256> wantDc{};
        std::array<int, 256> wantAc{};
        int16_t last = 0;
        int16_t wantLast = 0;
        std::vector<Block> blocks;
        for (int i = 0; i < 60; ++i) {
            const Block block = huffman::randomBlock(random, random.in(0, round % 2 == 0 ? 2 : 3));
            const VekStatus want = model::countSymbols(block, wantDc, wantAc, wantLast);
            ASSERT_EQ(want, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
            ASSERT_EQ(wantLast, last);
            if (want == vekStsOk)
                blocks.push_back(block);
        }
        ASSERT_EQ(wantDc, dc);
        ASSERT_EQ(wantAc, ac);
        if (round % 2 != 0)
            continue;
        model::HuffmanLists dcLists;
        model::HuffmanLists acLists;
        ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(dc.data(), dcLists.bits.data(), dcLists.vals.data()));
        ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(ac.data(), acLists.bits.data(), acLists.vals.data()));
        const Tables tables(dcLists, acLists);
        TwoStreams streams(tables, 60 * 600);
        for (const Block& block : blocks) ASSERT_EQ(vekStsOk, streams.encode(block));
    }
}

TEST(HuffmanStatistics, LimitsOfTheCategoriesDifferByOne)
{
    std::array<int, 256> dc{};
    std::array<int, 256> ac{};
    int16_t last = 0;
    Block block{};
    block[1] = 16384;  // category 15
    EXPECT_EQ(vekStsJpegMarkerShort,
              vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
    EXPECT_EQ(1, dc[0]);
    block[1] = 16383;
    EXPECT_EQ(vekStsOk, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
    block = {};
    block[0] = 32767;
    EXPECT_EQ(vekStsOk, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
    EXPECT_EQ(1, dc[15]);
    block[0] = -32768;
    EXPECT_EQ(vekStsJpegMarkerShort,
              vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
    EXPECT_EQ(-32768, last);
}

TEST(HuffmanStatistics, RefuseNullPointers)
{
    std::array<int, 256> counts{};
    int16_t last = 0;
    const Block block{};
    EXPECT_EQ(vekStsNullPointer, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(nullptr, counts.data(), counts.data(), &last));
    EXPECT_EQ(vekStsNullPointer, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), nullptr, counts.data(), &last));
    EXPECT_EQ(vekStsNullPointer, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), counts.data(), nullptr, &last));
    EXPECT_EQ(vekStsNullPointer,
              vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), counts.data(), counts.data(), nullptr));
    EXPECT_EQ((std::array<int, 256>{}), counts);
}

}  // namespace
