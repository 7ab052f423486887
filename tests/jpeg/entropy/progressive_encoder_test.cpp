#include <gtest/gtest.h>

#include <string>

#include "progressive_fixtures.h"
#include "support/sanitizers.h"

namespace {

using progressive::Band;
using progressive::Block;
using progressive::bytesOf;
using progressive::Pass;
using progressive::Random;
using progressive::Tables;
using progressive::TwoBandWriters;
using progressive::TwoDcWriters;

constexpr Pass bothPasses[] = {Pass::First, Pass::Refine};
constexpr int sparse = support::underSanitizer ? 4 : 1;

Block only(int k, int value)
{
    Block block{};
    block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])] = static_cast<int16_t>(value);
    return block;
}

TEST(ProgressiveEncoder, EqualsItsModelOverLongScans)
{
    Random random(1);
    for (int round = 0; round < 240 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random);
            const Band band = progressive::randomBand(random);
            TwoBandWriters writers(tables, 60000);
            const int percent = random.in(0, 3) == 0 ? random.in(0, 100) : random.in(0, 12);
            for (int i = 0; i < 150; ++i) {
                writers.encode(pass, progressive::randomBlock(random, percent, random.in(1, 10), band.al), band);
                if (random.chance(2))
                    writers.flush(pass);
                ASSERT_FALSE(HasFailure()) << round << ' ' << i;
            }
            ASSERT_EQ(vekStsOk, writers.flush(pass));
        }
}

TEST(ProgressiveEncoder, EqualsItsModelInEveryBand)
{
    Random random(2);
    const Tables tables = progressive::randomTables(random);
    for (const Pass pass : bothPasses)
        for (int ss = 1; ss <= 63; ++ss)
            for (int se = ss; se <= 63; ++se) {
                const Band band{ss, se, (ss + se) % 14};
                TwoBandWriters writers(tables, 3000);
                for (int i = 0; i < 6; ++i)
                    writers.encode(pass, progressive::randomBlock(random, random.in(0, 100), 4, band.al), band);
                ASSERT_EQ(vekStsOk, writers.flush(pass));
                ASSERT_FALSE(HasFailure()) << ss << ' ' << se;
            }
}

TEST(ProgressiveEncoder, EqualsItsModelOnCoefficientsOfAnyValue)
{
    Random random(3);
    int failures = 0;
    for (int round = 0; round < 400 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random);
            const Band band = progressive::randomBand(random);
            TwoBandWriters writers(tables, 20000);
            for (int i = 0; i < 20; ++i) {
                failures += writers.encode(pass, progressive::extremeBlock(random), band) != vekStsOk;
                ASSERT_FALSE(HasFailure()) << round;
            }
        }
    EXPECT_LT(50 / sparse, failures);
}

TEST(ProgressiveEncoder, EqualsItsModelInEveryRoom)
{
    Random random(4);
    for (int room = 1; room <= 200; ++room)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random);
            const Band band = progressive::randomBand(random);
            TwoBandWriters writers(tables, room);
            bool full = false;
            for (int i = 0; i < 400 && !full; ++i) {
                const Block block = progressive::randomBlock(random, random.in(0, 60), random.in(1, 10), band.al);
                full = writers.encode(pass, block, band) != vekStsOk;
                ASSERT_FALSE(HasFailure()) << room;
            }
            writers.flush(pass);
            ASSERT_FALSE(HasFailure()) << room;
        }
}

// Every length of room, for one and the same scan: the flush at its end has one byte more each time.
TEST(ProgressiveEncoder, EqualsItsModelWithOneByteOfRoomMoreEachTime)
{
    Random random(5);
    for (const Pass pass : bothPasses) {
        const Tables tables = progressive::randomTables(random);
        const Band band{1, 63, 0};
        std::vector<Block> blocks;
        for (int i = 0; i < 12; ++i) blocks.push_back(progressive::randomBlock(random, 10, 3, 0));
        int successes = 0;
        for (int room = 1; successes < 3; ++room) {
            TwoBandWriters writers(tables, room);
            VekStatus status = vekStsOk;
            for (const Block& block : blocks)
                if (status == vekStsOk)
                    status = writers.encode(pass, block, band);
            const VekStatus ofFlush = writers.flush(pass);
            successes += status == vekStsOk && ofFlush == vekStsOk;
            ASSERT_FALSE(HasFailure()) << room;
        }
    }
}

TEST(ProgressiveEncoder, EqualsItsModelWithCodesMissing)
{
    Random random(6);
    int failures = 0;
    for (int round = 0; round < 400 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random, random.in(60, 250));
            const Band band = progressive::randomBand(random);
            TwoBandWriters writers(tables, 8000);
            for (int i = 0; i < 10; ++i) {
                const Block block = progressive::randomBlock(random, random.in(0, 40), random.in(1, 10), band.al);
                failures += writers.encode(pass, block, band) == vekStsJpegHuffmanTable;
                ASSERT_FALSE(HasFailure()) << round;
            }
            writers.flush(pass);
            ASSERT_FALSE(HasFailure()) << round;
        }
    EXPECT_LT(100 / sparse, failures);
}

// Runs of empty blocks up to the longest that a symbol can tell, and over it.
TEST(ProgressiveEncoder, EqualsItsModelOverEndOfBandRunsOfEveryLength)
{
    Random random(7);
    const Tables tables = progressive::randomTables(random);
    const Band band{1, 5, 0};
    const Block empty{};
    for (const Pass pass : bothPasses) {
        TwoBandWriters writers(tables, 20000);
        for (const int run : {0, 1, 2, 3, 4, 7, 8, 255, 256, 257, 511, 512, 4095, 4096, 16383, 16384, 32700}) {
            writers.setPending(run);
            for (int i = 0; i < 3; ++i) writers.encode(pass, empty, band);
            writers.encode(pass, only(2, 1), band);
            ASSERT_FALSE(HasFailure()) << run;
        }
        writers.flush(pass);
        for (int i = 0; i < 32767 * 2 + 5; ++i) {
            writers.encode(pass, empty, band);
            ASSERT_FALSE(HasFailure()) << i;
        }
        EXPECT_EQ(5, writers.state().eobRun);
        EXPECT_EQ(vekStsOk, writers.flush(pass));
    }
}

TEST(ProgressiveEncoder, RunsOverTheLongestAreEmittedInTwoAndTooLongOnesRefused)
{
    Random random(8);
    const Tables tables = progressive::randomTables(random);
    for (const Pass pass : bothPasses)
        for (const int run : {32767, 32768, 32769, 40000, 65533, 65534, 65535, 65536, 131071}) {
            for (const bool byFlush : {false, true}) {
                TwoBandWriters writers(tables, 100);
                writers.setPending(run, {1, 0, 1});
                const VekStatus status = byFlush ? writers.flush(pass) : writers.encode(pass, only(1, 1), {1, 1, 0});
                EXPECT_EQ(run > 65534 ? vekStsJpegMarkerShort : vekStsOk, status) << run;
                EXPECT_EQ(run > 65534 ? run - 32767 : 0, writers.state().eobRun);
                ASSERT_FALSE(HasFailure()) << run;
            }
        }
}

TEST(ProgressiveEncoder, CollectsCorrectionBitsUpToTheirLimit)
{
    Random random(9);
    const Tables tables = progressive::randomTables(random);
    const Band band{1, 63, 0};
    for (int perBlock = 1; perBlock <= 63; ++perBlock) {
        TwoBandWriters writers(tables, 4000);
        int most = 0;
        for (int i = 0; i < 1100 / perBlock + 20; ++i) {
            Block block{};
            for (int k = 1; k <= perBlock; ++k)
                block[static_cast<size_t>(model::zigzag[static_cast<size_t>(64 - k)])] = random.in<int16_t>(2, 9);
            ASSERT_EQ(vekStsOk, writers.encode(Pass::Refine, block, band));
            ASSERT_FALSE(HasFailure()) << perBlock;
            most = std::max(most, writers.state().numCorrectionBits);
        }
        EXPECT_EQ(937 / perBlock * perBlock, most);
        ASSERT_EQ(vekStsOk, writers.flush(Pass::Refine));
    }
}

// The caller goes on although the run cannot be written: the state's room for correction bits is never left.
TEST(ProgressiveEncoder, KeepsToItsStateWhenTheCallerIgnoresFailures)
{
    Random random(10);
    const Tables none(huffman::luminanceDc(), {});
    for (const int room : {1, 20}) {
        const Tables& tables = none;
        support::GuardedArray<VekEncodeHuffmanState> state(1);
        support::GuardedArray<uint8_t> dst(static_cast<size_t>(room));
        int position = 0;
        Block block;
        for (int16_t& c : block) c = random.in<int16_t>(2, 5);
        for (int i = 0; i < 300; ++i) {
            vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(block.data(), dst.data(), room, &position, 1, 63, 0,
                                                        &tables.encodeAc, state.data(), 0);
            ASSERT_LE(position, room);
        }
        vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(nullptr, dst.data(), room, &position, 1, 63, 0, &tables.encodeAc,
                                                    state.data(), 1);
        EXPECT_EQ(0, state[0].numCorrectionBits);
    }
}

TEST(ProgressiveEncoder, AStateThatWasNeverInitialisedDoesNoHarm)
{
    Random random(15);
    const Tables tables = progressive::randomTables(random);
    for (int round = 0; round < 4000 / sparse; ++round) {
        support::GuardedArray<VekEncodeHuffmanState> state(1);
        state[0].bitBuffer = random.bits();
        state[0].numBits = random.extreme<int32_t>();
        state[0].eobRun = random.extreme<int32_t>();
        state[0].numCorrectionBits = random.extreme<int32_t>();
        support::GuardedArray<int> counts(256);
        support::GuardedArray<uint8_t> dst(random.in<size_t>(1, 40));
        const int room = static_cast<int>(dst.size());
        int position = 0;
        const int16_t* const block = progressive::guarded(progressive::randomBlock(random, random.in(0, 100), 3, 0), 0);
        const bool refines = random.chance(50);
        const auto encode =
            refines ? vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1 : vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1;
        const auto count = refines ? vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1
                                   : vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1;
        VekEncodeHuffmanState counting = state[0];
        count(block, counts.data(), 1, 63, 0, &counting, 0);
        for (const int flush : {0, 1}) {
            encode(block, dst.data(), room, &position, 1, 63, 0, &tables.encodeAc, state.data(), flush);
            ASSERT_LE(0, position);
            ASSERT_GE(room, position);
        }
    }
}

TEST(ProgressiveEncoder, DcScansEqualTheirModel)
{
    Random random(11);
    int failures = 0;
    for (int round = 0; round < 200 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random, round % 3 == 0 ? 200 : 256);
            const int al = random.in(0, 13);
            TwoDcWriters writers(tables, random.chance(20) ? random.in(1, 60) : 4000);
            for (int i = 0; i < 120; ++i) {
                Block block{};
                block[0] = random.chance(70) ? random.in<int16_t>(-1023, 1023) : random.extreme<int16_t>();
                failures += writers.encode(pass, block, al) != vekStsOk;
                if (random.chance(3)) {
                    writers.flush(pass);
                    writers.restart();
                }
                ASSERT_FALSE(HasFailure()) << round;
            }
            writers.flush(pass);
            ASSERT_FALSE(HasFailure()) << round;
        }
    EXPECT_LT(50, failures);
}

TEST(ProgressiveEncoder, ADcCategoryAboveElevenFailsWithThePredictionUpdated)
{
    Random random(12);
    const Tables tables = progressive::randomTables(random);
    TwoDcWriters writers(tables, 100);
    EXPECT_EQ(vekStsOk, writers.encode(Pass::First, only(0, 2047), 0));
    EXPECT_EQ(vekStsJpegMarkerShort, writers.encode(Pass::First, only(0, -1), 0));  // a difference of -2048
    EXPECT_EQ(-1, writers.dc());
    EXPECT_EQ(vekStsOk, writers.encode(Pass::First, only(0, 2046), 0));
}

// Two codes of two bits: 00 for a pending run of one block, 01 for a run of 32767.
TEST(ProgressiveEncoder, TheLongestRunIsOneSymbolWithFourteenBits)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 2}, {0x00, 0xE0}));
    TwoBandWriters writers(tables, 100);
    writers.setPending(32766);
    EXPECT_EQ(vekStsOk, writers.encode(Pass::First, {}, {1, 63, 0}));
    EXPECT_EQ(0, writers.state().eobRun);
    EXPECT_EQ(16, writers.state().numBits);
    EXPECT_EQ(0b01'11111111111111U, writers.state().bitBuffer & 0xFFFF);
    EXPECT_EQ(0, writers.position());
}

TEST(ProgressiveEncoder, ARunOfOneIsSymbolZeroWithoutMoreBits)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 2}, {0xE0, 0x00}));
    for (const Pass pass : bothPasses) {
        TwoBandWriters writers(tables, 100);
        writers.setPending(1);
        EXPECT_EQ(vekStsOk, writers.flush(pass));
        EXPECT_EQ(bytesOf("01"), writers.bytes());
    }
}

TEST(ProgressiveEncoder, CorrectionBitsAboveTheirLimitAreWrittenAtOnce)
{
    Random random(13);
    const Tables tables = progressive::randomTables(random);
    for (const int fresh : {7, 8}) {
        TwoBandWriters writers(tables, 1000);
        writers.setPending(20, std::vector<uint8_t>(930, 1));
        Block block{};
        for (int k = 1; k <= fresh; ++k) block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])] = 2;
        EXPECT_EQ(vekStsOk, writers.encode(Pass::Refine, block, {1, 63, 0}));
        EXPECT_EQ(fresh == 7 ? 937 : 0, writers.state().numCorrectionBits);
        EXPECT_EQ(fresh == 7 ? 21 : 0, writers.state().eobRun);
    }
}

TEST(ProgressiveEncoder, AMagnitudeOfOneIsNewEvenBehindALargerOne)
{
    // 00: run 0, new; then its sign 0; then the correction bit of the 3 before it; then 1-bits up to the byte.
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 2}, {0x01, 0x00}));
    TwoBandWriters writers(tables, 100);
    Block block = only(1, 3);
    block[static_cast<size_t>(model::zigzag[2])] = -1;
    EXPECT_EQ(vekStsOk, writers.encode(Pass::Refine, block, {1, 2, 0}));
    EXPECT_EQ(0, writers.state().eobRun);
    EXPECT_EQ(vekStsOk, writers.flush(Pass::Refine));
    EXPECT_EQ(bytesOf("00 0 1"), writers.bytes());
}

TEST(ProgressiveEncoder, AFlushOfWholeBytesAddsNoPadding)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 1}, {0x01}));  // 00, then the sign
    for (const Pass pass : bothPasses) {
        TwoBandWriters writers(tables, 100);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(vekStsOk, writers.encode(pass, only(1, 1), {1, 1, 0}));
        EXPECT_EQ(24, writers.state().numBits);
        EXPECT_EQ(0, writers.position());
        EXPECT_EQ(vekStsOk, writers.flush(pass));
        EXPECT_EQ(bytesOf("001 001 001 001 001 001 001 001"), writers.bytes());
        EXPECT_EQ(vekStsOk, writers.flush(pass));
        EXPECT_EQ(3, writers.position());
    }
}

TEST(ProgressiveEncoder, AValueOfTwelveBitsFailsBehindTheCodesForZeros)
{
    Random random(14);
    const Tables tables = progressive::randomTables(random);
    for (const int al : {0, 3}) {
        TwoBandWriters writers(tables, 100);
        EXPECT_EQ(vekStsOk, writers.encode(Pass::First, only(40, 2047 << al), {1, 63, al}));
        EXPECT_EQ(vekStsJpegMarkerShort, writers.encode(Pass::First, only(40, -(2048 << al)), {1, 63, al}));
        EXPECT_EQ(0, writers.state().eobRun);  // was 1, and is written
    }
}

TEST(ProgressiveEncoder, AFlushThatCannotWriteTheRunStillWritesTheRest)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 1}, {0x01}));
    for (const Pass pass : bothPasses) {
        TwoBandWriters writers(tables, 100);
        EXPECT_EQ(vekStsOk, writers.encode(pass, only(1, 1), {1, 1, 0}));
        writers.setPending(2, {0, 1, 0});
        EXPECT_EQ(vekStsJpegHuffmanTable, writers.flush(pass));
        EXPECT_EQ(bytesOf("001 010"), writers.bytes());
        EXPECT_EQ(2, writers.state().eobRun);
        EXPECT_EQ(0, writers.state().numCorrectionBits);
        EXPECT_EQ(0, writers.state().numBits);
    }
}

TEST(ProgressiveEncoder, AFlushIntoAFullDestinationClearsThePendingBits)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({0, 1}, {0x01}));
    for (const Pass pass : bothPasses) {
        TwoBandWriters writers(tables, 1);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(vekStsOk, writers.encode(pass, only(1, 1), {1, 1, 0}));
        EXPECT_EQ(vekStsJpegOutOfBuffer, writers.flush(pass));
        EXPECT_EQ(1, writers.position());
        EXPECT_EQ(0, writers.state().numBits);
        EXPECT_EQ(0U, writers.state().bitBuffer);
    }
}

TEST(ProgressiveEncoder, AcScansCheckTheirArgumentsInOrder)
{
    const Tables tables(huffman::luminanceDc(), huffman::luminanceAc());
    const Block block = only(3, 1);
    uint8_t dst[64] = {};
    int position = 3;
    VekEncodeHuffmanState state{};
    for (const auto function :
         {vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1, vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1}) {
        const auto call = [&](const int16_t* src, uint8_t* d, int room, int* pos, int ss, int se, int al,
                              const VekEncodeHuffmanSpec* table, VekEncodeHuffmanState* s,
                              int flush) { return function(src, d, room, pos, ss, se, al, table, s, flush); };
        const auto* const t = &tables.encodeAc;
        EXPECT_EQ(vekStsNullPointer, call(nullptr, nullptr, 0, nullptr, 0, 0, 99, nullptr, nullptr, 1));
        EXPECT_EQ(vekStsBadSize, call(nullptr, dst, 0, nullptr, 0, 0, 99, nullptr, nullptr, 1));
        EXPECT_EQ(vekStsBadSize, call(nullptr, dst, -1, nullptr, 0, 0, 99, nullptr, nullptr, 0));
        EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, 64, nullptr, 0, 0, 99, t, &state, 1));
        EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, 64, &position, 0, 0, 99, nullptr, &state, 1));
        EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, 64, &position, 0, 0, 99, t, nullptr, 1));
        EXPECT_EQ(vekStsNullPointer, call(nullptr, dst, 64, &position, 0, 0, 99, t, &state, 0));
        const auto range = [&](int ss, int se, int al) {
            return call(block.data(), dst, 64, &position, ss, se, al, t, &state, 0);
        };
        EXPECT_EQ(vekStsBadArgument, range(0, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(-1, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(64, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(6, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 5, 14));
        EXPECT_EQ(3, position);
        EXPECT_EQ(0, state.numBits);
        EXPECT_EQ(0, state.eobRun);
        EXPECT_EQ(vekStsOk, range(1, 5, 13));
        EXPECT_EQ(1, state.eobRun);
        EXPECT_EQ(vekStsOk, call(nullptr, dst, 64, &position, 0, 0, 99, t, &state, 1));  // looks at no range
        EXPECT_EQ(4, position);
        EXPECT_EQ(0b10101111, dst[3]);
        position = 3;
    }
}

TEST(ProgressiveEncoder, DcScansCheckTheirArgumentsInOrder)
{
    const Tables tables(huffman::luminanceDc(), huffman::luminanceAc());
    const Block block{};
    const int16_t* const src = block.data();
    uint8_t dst[64] = {};
    int position = 3;
    int16_t dc = 11;
    VekEncodeHuffmanState state{};
    const auto* const t = &tables.encodeDc;
    const auto first = vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1;
    EXPECT_EQ(vekStsNullPointer, first(nullptr, nullptr, 0, nullptr, nullptr, 99, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, first(nullptr, dst, 0, nullptr, nullptr, 99, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, first(src, dst, 64, nullptr, &dc, 0, t, &state, 1));
    EXPECT_EQ(vekStsNullPointer, first(src, dst, 64, &position, &dc, 0, t, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, first(nullptr, dst, 64, &position, &dc, 14, nullptr, &state, 0));
    EXPECT_EQ(vekStsNullPointer, first(src, dst, 64, &position, nullptr, 14, nullptr, &state, 0));
    EXPECT_EQ(vekStsBadArgument, first(src, dst, 64, &position, &dc, 14, nullptr, &state, 0));
    EXPECT_EQ(vekStsNullPointer, first(src, dst, 64, &position, &dc, 13, nullptr, &state, 0));
    EXPECT_EQ(vekStsOk, first(nullptr, dst, 64, &position, nullptr, 99, nullptr, &state, 1));
    const auto refine = vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1;
    EXPECT_EQ(vekStsNullPointer, refine(nullptr, nullptr, 0, nullptr, 99, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, refine(nullptr, dst, 0, nullptr, 99, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, refine(src, dst, 64, nullptr, 0, &state, 1));
    EXPECT_EQ(vekStsNullPointer, refine(src, dst, 64, &position, 0, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, refine(nullptr, dst, 64, &position, 99, &state, 0));
    EXPECT_EQ(vekStsBadArgument, refine(src, dst, 64, &position, 14, &state, 0));
    EXPECT_EQ(vekStsOk, refine(nullptr, dst, 64, &position, 99, &state, 1));
    EXPECT_EQ(3, position);
    EXPECT_EQ(11, dc);
    EXPECT_EQ(0, dst[3]);
    EXPECT_EQ(0, state.numBits);
    EXPECT_EQ(vekStsOk, refine(src, dst, 64, &position, 13, &state, 0));
    EXPECT_EQ(1, state.numBits);
    EXPECT_EQ(vekStsOk, first(src, dst, 64, &position, &dc, 13, t, &state, 0));
    EXPECT_EQ(0, dc);
}

}  // namespace
