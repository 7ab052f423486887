#include <gtest/gtest.h>

#include <array>

#include "progressive_fixtures.h"
#include "support/sanitizers.h"

namespace {

using progressive::Band;
using progressive::Block;
using progressive::Pass;
using progressive::Random;
using progressive::Tables;

constexpr Pass bothPasses[] = {Pass::First, Pass::Refine};
constexpr int sparse = support::underSanitizer ? 4 : 1;

Block only(int k, int value)
{
    Block block{};
    block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])] = static_cast<int16_t>(value);
    return block;
}

// The symbols of an AC scan, counted by the library and by the model.
class TwoCounters {
public:
    TwoCounters() : counts_(256), state_(1)
    {
        state().bitBuffer = 0x123456789ABCDEF0;  // counting stores no bits
        state().numBits = 17;
        state().correctionBits[0] = 0xA5;
    }
    VekStatus count(Pass pass, const Block& block, const Band& band)
    {
        const VekStatus want = pass == Pass::First ? model::countAcFirst(block, expected_, band, expectedState_)
                                                   : model::countAcRefine(block, expected_, band, expectedState_);
        const VekStatus got = call(pass, progressive::guarded(block, misalignment_++), band, 0);
        EXPECT_EQ(want, got);
        compare();
        EXPECT_EQ(0x123456789ABCDEF0U, state().bitBuffer);
        EXPECT_EQ(17, state().numBits);
        EXPECT_EQ(0xA5, state().correctionBits[0]);
        return got;
    }
    VekStatus flush(Pass pass)
    {
        const VekStatus want = model::flushCounts(expected_, expectedState_);
        const VekStatus got = call(pass, nullptr, {0, 64, 99}, 1);
        EXPECT_EQ(want, got);
        compare();
        EXPECT_EQ(0U, state().bitBuffer);
        EXPECT_EQ(0, state().numBits);
        EXPECT_EQ(0, state().correctionBits[0]);
        return got;
    }
    void setPending(int eobRun, int numCorrections)
    {
        expectedState_ = {eobRun, numCorrections};
        state().eobRun = eobRun;
        state().numCorrectionBits = numCorrections;
    }
    VekEncodeHuffmanState& state() { return *state_.data(); }
    int operator[](size_t symbol) { return counts_[symbol]; }
    std::array<int, 256> counts()
    {
        std::array<int, 256> result{};
        std::copy(counts_.begin(), counts_.end(), result.begin());
        return result;
    }

private:
    VekStatus call(Pass pass, const int16_t* src, const Band& band, int flush)
    {
        const auto function = pass == Pass::First ? vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                                  : vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
        return function(src, counts_.data(), band.ss, band.se, band.al, state_.data(), flush);
    }
    void compare()
    {
        EXPECT_EQ(expected_, counts());
        EXPECT_EQ(expectedState_.eobRun, state().eobRun);
        EXPECT_EQ(expectedState_.numCorrections, state().numCorrectionBits);
    }

    std::array<int, 256> expected_{};
    model::BandCounterState expectedState_;
    support::GuardedArray<int> counts_;
    support::GuardedArray<VekEncodeHuffmanState> state_;
    size_t misalignment_ = 0;
};

TEST(ProgressiveStatistics, EqualTheirModel)
{
    Random random(1);
    int failures = 0;
    for (int round = 0; round < 300 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            TwoCounters counters;
            const Band band = progressive::randomBand(random);
            const int percent = random.chance(50) ? random.in(0, 100) : random.in(0, 12);
            for (int i = 0; i < 60; ++i) {
                const Block block = random.chance(5)
                                        ? progressive::extremeBlock(random)
                                        : progressive::randomBlock(random, percent, random.in(1, 11), band.al);
                failures += counters.count(pass, block, band) != vekStsOk;
                ASSERT_FALSE(HasFailure()) << round;
            }
            counters.flush(pass);
            ASSERT_FALSE(HasFailure()) << round;
        }
    EXPECT_LT(50 / sparse, failures);
}

TEST(ProgressiveStatistics, EqualTheirModelInEveryBand)
{
    Random random(2);
    for (const Pass pass : bothPasses) {
        TwoCounters counters;
        counters.flush(pass);
        for (int ss = 1; ss <= 63; ++ss)
            for (int se = ss; se <= 63; ++se) {
                counters.state().bitBuffer = 0x123456789ABCDEF0;
                counters.state().numBits = 17;
                counters.state().correctionBits[0] = 0xA5;
                for (int i = 0; i < 4; ++i)
                    counters.count(pass, progressive::randomBlock(random, random.in(0, 100), 4, (ss + se) % 14),
                                   {ss, se, (ss + se) % 14});
                ASSERT_FALSE(HasFailure()) << ss << ' ' << se;
            }
    }
}

// Whatever the encoder writes has a code in the table that is made of the statistics, and it needs no other.
TEST(ProgressiveStatistics, SufficeForTheEncoder)
{
    Random random(3);
    for (int round = 0; round < 160 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            TwoCounters counters;
            const Band band = progressive::randomBand(random);
            const int percent = round % 2 == 0 ? random.in(0, 100) : random.in(0, 3);
            std::vector<Block> blocks;
            for (int i = 0; i < 150; ++i)
                blocks.push_back(progressive::randomBlock(random, percent, random.in(1, 10), band.al));
            for (const Block& block : blocks) ASSERT_EQ(vekStsOk, counters.count(pass, block, band));
            ASSERT_EQ(vekStsOk, counters.flush(pass));
            model::HuffmanLists lists;
            ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counters.counts().data(), lists.bits.data(),
                                                                      lists.vals.data()));
            const Tables tables(huffman::luminanceDc(), lists);
            progressive::TwoBandWriters writers(tables, 60000);
            for (const Block& block : blocks) ASSERT_EQ(vekStsOk, writers.encode(pass, block, band));
            ASSERT_EQ(vekStsOk, writers.flush(pass));
            ASSERT_FALSE(HasFailure()) << round;
        }
}

TEST(ProgressiveStatistics, CountRunsUpToTheLongestAndOverIt)
{
    for (const Pass pass : bothPasses) {
        TwoCounters counters;
        for (int i = 0; i < 32767 * 2 + 5; ++i) ASSERT_EQ(vekStsOk, counters.count(pass, {}, {1, 5, 0}));
        ASSERT_FALSE(HasFailure());
        EXPECT_EQ(2, counters[0xE0]);
        EXPECT_EQ(vekStsOk, counters.flush(pass));
        EXPECT_EQ(1, counters[0x20]);
        for (const int run : {32767, 32768, 32769, 65534, 65535, 131071}) {
            TwoCounters one;
            one.setPending(run, 0);
            EXPECT_EQ(run < 65535 ? vekStsOk : vekStsJpegMarkerShort, one.flush(pass)) << run;
            EXPECT_EQ(run == 65534 ? 2 : 1, one[0xE0]) << run;
            EXPECT_EQ(0, one.state().eobRun);  // even if it could not be counted
        }
    }
}

TEST(ProgressiveStatistics, RunsOfOneAreSymbolZero)
{
    for (const Pass pass : bothPasses) {
        TwoCounters counters;
        EXPECT_EQ(vekStsOk, counters.count(pass, {}, {1, 63, 0}));
        EXPECT_EQ(0, counters[0]);
        EXPECT_EQ(vekStsOk, counters.flush(pass));
        EXPECT_EQ(1, counters[0]);
        EXPECT_EQ(vekStsOk, counters.flush(pass));
        EXPECT_EQ(1, counters[0]);
    }
}

TEST(ProgressiveStatistics, TheCorrectionBitsOfARefinementAreCountedUpToTheirLimit)
{
    for (const int fresh : {7, 8}) {
        TwoCounters counters;
        counters.setPending(20, 930);
        Block block{};
        for (int k = 1; k <= fresh; ++k) block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])] = -3;
        EXPECT_EQ(vekStsOk, counters.count(Pass::Refine, block, {1, 63, 0}));
        EXPECT_EQ(fresh == 7 ? 937 : 0, counters.state().numCorrectionBits);
        EXPECT_EQ(fresh == 7 ? 21 : 0, counters.state().eobRun);
        EXPECT_EQ(fresh == 7 ? 0 : 1, counters[0x40]);
    }
}

TEST(ProgressiveStatistics, TheLimitOfAnAcValueIsOneBelowTheEncoders)
{
    Random random(4);
    const Tables tables = progressive::randomTables(random);
    for (const int al : {0, 2}) {
        TwoCounters counters;
        EXPECT_EQ(vekStsOk, counters.count(Pass::First, only(33, -(1023 << al)), {1, 33, al}));
        EXPECT_EQ(1, counters[0x0A]);
        EXPECT_EQ(2, counters[0xF0]);
        EXPECT_EQ(vekStsJpegMarkerShort, counters.count(Pass::First, only(33, 1024 << al), {1, 33, al}));
        EXPECT_EQ(4, counters[0xF0]);  // what comes before it stays counted
        progressive::TwoBandWriters writers(tables, 100);
        EXPECT_EQ(vekStsOk, writers.encode(Pass::First, only(33, 1024 << al), {1, 33, al}));
    }
}

TEST(ProgressiveStatistics, OfADcScanEqualTheirModelAndSufficeForTheEncoder)
{
    Random random(5);
    int failures = 0;
    for (int round = 0; round < 200; ++round) {
        const int al = random.in(0, 13);
        support::GuardedArray<int> counts(256);
        std::array<int, 256> want{};
        int16_t dc = 0;
        int16_t wantDc = 0;
        std::vector<Block> blocks;
        for (int i = 0; i < 60; ++i) {
            Block block{};
            block[0] = round % 2 == 0 ? random.in<int16_t>(-1023, 1023) : random.extreme<int16_t>();
            const VekStatus expected = model::countDcFirst(block, want, wantDc, al);
            ASSERT_EQ(expected, vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(
                                    progressive::guarded(block, static_cast<size_t>(i)), counts.data(), &dc, al));
            ASSERT_EQ(wantDc, dc);
            ASSERT_TRUE(std::equal(want.begin(), want.end(), counts.begin()));
            failures += expected != vekStsOk;
            blocks.push_back(block);
        }
        if (round % 2 != 0)
            continue;
        model::HuffmanLists lists;
        ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), lists.bits.data(), lists.vals.data()));
        const Tables tables(lists, huffman::luminanceAc());
        progressive::TwoDcWriters writers(tables, 1000);
        for (const Block& block : blocks) ASSERT_EQ(vekStsOk, writers.encode(Pass::First, block, al));
    }
    EXPECT_LT(50, failures);
}

TEST(ProgressiveStatistics, OfADcScanEndAtCategoryEleven)
{
    std::array<int, 256> counts{};
    int16_t dc = 0;
    EXPECT_EQ(vekStsOk, vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(only(0, 2047).data(), counts.data(), &dc, 0));
    EXPECT_EQ(1, counts[11]);
    EXPECT_EQ(vekStsJpegMarkerShort,
              vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(only(0, -1).data(), counts.data(), &dc, 0));
    EXPECT_EQ(-1, dc);
    EXPECT_EQ(0, counts[12]);
}

TEST(ProgressiveStatistics, OfAcScansCheckTheirArgumentsInOrder)
{
    const Block block = only(3, 1);
    std::array<int, 256> counts{};
    VekEncodeHuffmanState state{};
    for (const auto function :
         {vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1, vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1}) {
        EXPECT_EQ(vekStsNullPointer, function(nullptr, nullptr, 0, 64, 99, &state, 1));
        EXPECT_EQ(vekStsNullPointer, function(nullptr, counts.data(), 0, 64, 99, nullptr, 1));
        EXPECT_EQ(vekStsOk, function(nullptr, counts.data(), 0, 64, 99, &state, 1));
        EXPECT_EQ(vekStsNullPointer, function(nullptr, counts.data(), 0, 64, 99, &state, 0));
        const auto range = [&](int ss, int se, int al) {
            return function(block.data(), counts.data(), ss, se, al, &state, 0);
        };
        EXPECT_EQ(vekStsBadArgument, range(0, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(-1, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(64, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(6, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 5, 14));
        EXPECT_EQ((std::array<int, 256>{}), counts);
        EXPECT_EQ(0, state.eobRun);
        EXPECT_EQ(vekStsOk, range(1, 5, 13));
        EXPECT_EQ(1, state.eobRun);
        state.eobRun = 0;
    }
}

TEST(ProgressiveStatistics, OfADcScanCheckTheirArgumentsInOrder)
{
    const Block block{};
    std::array<int, 256> counts{};
    int16_t dc = 7;
    const auto function = vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1;
    EXPECT_EQ(vekStsNullPointer, function(nullptr, counts.data(), &dc, 14));
    EXPECT_EQ(vekStsNullPointer, function(block.data(), nullptr, &dc, 14));
    EXPECT_EQ(vekStsNullPointer, function(block.data(), counts.data(), nullptr, 14));
    EXPECT_EQ(vekStsBadArgument, function(block.data(), counts.data(), &dc, 14));
    EXPECT_EQ(7, dc);
    EXPECT_EQ((std::array<int, 256>{}), counts);
    EXPECT_EQ(vekStsOk, function(block.data(), counts.data(), &dc, 13));
    EXPECT_EQ(0, dc);
}

}  // namespace
