// The forward DCT against its model: blocks that saturate and wrap, tables of every kind, any address, any step.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "jpeg/samples/dct_forward.h"
#include "jpeg/samples/dct_support.h"
#include "reference/jpeg/dct_forward.h"
#include "vekj/jpeg_samples.h"

namespace {

using namespace dct;
using Words = std::array<uint16_t, 64>;
using Bytes = std::array<uint8_t, 64>;

Block transformed(const Block& samples, const Table& table)
{
    Block out = filledBlock<int16_t>(0x5A5A);
    EXPECT_EQ(vekStsOk, vekiDCTQuantFwd8x8_JPEG_16s_C1(samples.data(), out.data(), table.data()));
    return out;
}
Block transformed(const Bytes& samples, const Table& table)
{
    Block out = filledBlock<int16_t>(0x5A5A);
    EXPECT_EQ(vekStsOk, vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(samples.data(), 8, out.data(), table.data()));
    return out;
}
Block transformed(const Words& samples, const FloatBlock& factors)
{
    Block out = filledBlock<int16_t>(0x5A5A);
    EXPECT_EQ(vekStsOk, vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(samples.data(), 16, out.data(), factors.data()));
    return out;
}

Block levelShifted(const Bytes& samples)
{
    Block block;
    for (size_t i = 0; i < 64; ++i) block[i] = static_cast<int16_t>(samples[i] - 128);
    return block;
}

class DctForward : public testing::TestWithParam<Kind> {};

TEST_P(DctForward, EqualsItsModel)
{
    Random random(1);
    for (int i = 0; i < blocksPerKind; ++i) {
        const Block samples = makeBlock(random, GetParam());
        const Table table = makeTable(random);
        ASSERT_EQ(model::forwardDctQuant(samples, table), transformed(samples, table)) << i;
    }
}

// Enough blocks that a rounding term that is off by one in 2^20 shows.
TEST_P(DctForward, WithoutQuantisationEqualsItsModel)
{
    Random random(2);
    for (int i = 0; i < 4 * blocksPerKind; ++i) {
        Block block = makeBlock(random, GetParam());
        const Block expected = model::forwardDct(block);
        Block apart;
        q3::dct_8x8_fwd_16s(block.data(), apart.data());
        ASSERT_EQ(expected, apart) << i;
        q3::dct_8x8_fwd_16s(block.data(), block.data());
        ASSERT_EQ(expected, block) << i;
    }
}

TEST_P(DctForward, InPlaceEqualsOutOfPlace)
{
    Random random(3);
    for (int i = 0; i < blocksPerKind / 4; ++i) {
        Block block = makeBlock(random, GetParam());
        Block both = block;
        const Table table = makeTable(random);
        const Block expected = model::forwardDctQuant(block, table);
        ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8_JPEG_16s_C1I(block.data(), table.data()));
        ASSERT_EQ(expected, block) << i;
        ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8_JPEG_16s_C1(both.data(), both.data(), table.data()));
        ASSERT_EQ(expected, both) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, DctForward, testing::ValuesIn(kinds));

TEST(DctForward, QuantisesEachCoefficientByItsOwnEntry)
{
    Random random(4);
    for (int i = 0; i < blocksPerKind; ++i) {
        const Block samples = makeBlock(random, Kind::nominal);
        Table table{};
        table[random.in<size_t>(0, 63)] = random.any<uint16_t>();
        ASSERT_EQ(model::forwardDctQuant(samples, table), transformed(samples, table)) << i;
    }
}

TEST(DctForward, AnyAddressInsideItsMemory)
{
    Random random(5);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (size_t offset = 0; offset < 34; ++offset) {
            const Block samples = makeBlock(random, Kind::any);
            const Table table = makeTable(random);
            const Block expected = model::forwardDctQuant(samples, table);
            Placed<int16_t> src(samples, guard, offset);
            Placed<uint16_t> factors(table, guard, offset * 7 % 33);
            Placed<int16_t> dst(Block{}, guard, offset * 5 % 33);
            ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8_JPEG_16s_C1(src.data(), dst.data(), factors.data()));
            ASSERT_EQ(expected, dst.block()) << offset;
            ASSERT_EQ(samples, src.block()) << offset;
            ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8_JPEG_16s_C1I(src.data(), factors.data()));
            ASSERT_EQ(expected, src.block()) << offset;
        }
}

TEST(DctForward, ZerosGiveZeros)
{
    EXPECT_EQ(Block{}, transformed(Block{}, filledBlock<uint16_t>(32768)));
    EXPECT_EQ(Block{}, transformed(Block{}, filledBlock<uint16_t>(65535)));
}

TEST(DctForward, ConstantBlocksHaveOnlyDc)
{
    const auto dcOf = [](int16_t value) {
        Block out = transformed(filledBlock(value), filledBlock<uint16_t>(32768));
        const int16_t dc = out[0];
        out[0] = 0;
        EXPECT_EQ(Block{}, out) << value;
        return dc;
    };
    EXPECT_EQ(1016, dcOf(127));
    EXPECT_EQ(-1024, dcOf(-128));
}

TEST(DctForward, ConstantOfTheLargestValueLosesItsHighBits)
{
    EXPECT_EQ(-4, transformed(filledBlock<int16_t>(32767), filledBlock<uint16_t>(32768))[0]);
}

TEST(DctForward, EntryOf32768LeavesTheCoefficient)
{
    Random random(6);
    for (int i = 0; i < blocksPerKind / 10; ++i) {
        const Block samples = makeBlock(random, Kind::nominal);
        ASSERT_EQ(model::forwardDct(samples), transformed(samples, filledBlock<uint16_t>(32768)));
    }
}

TEST(DctForward, TiesGoToEven)
{
    // A constant block of v has a DC of 8 v: 8 and 24 by 2048 are a half and one and a half.
    EXPECT_EQ(0, transformed(filledBlock<int16_t>(1), filledBlock<uint16_t>(2048))[0]);
    EXPECT_EQ(2, transformed(filledBlock<int16_t>(3), filledBlock<uint16_t>(2048))[0]);
    EXPECT_EQ(2, transformed(filledBlock<int16_t>(5), filledBlock<uint16_t>(2048))[0]);
    EXPECT_EQ(0, transformed(filledBlock<int16_t>(-1), filledBlock<uint16_t>(2048))[0]);
    EXPECT_EQ(-2, transformed(filledBlock<int16_t>(-3), filledBlock<uint16_t>(2048))[0]);
}

TEST(DctForward, EntriesAbove32767AreNotNegative)
{
    EXPECT_EQ(2032, transformed(filledBlock<int16_t>(127), filledBlock<uint16_t>(65535))[0]);
    EXPECT_EQ(-2048, transformed(filledBlock<int16_t>(-128), filledBlock<uint16_t>(65535))[0]);
}

TEST(DctForward, ChecksItsPointers)
{
    Block src = filledBlock<int16_t>(77);
    Block dst = filledBlock<int16_t>(0x5A5A);
    const Table table = filledBlock<uint16_t>(32768);
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantFwd8x8_JPEG_16s_C1(nullptr, dst.data(), table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantFwd8x8_JPEG_16s_C1(src.data(), nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantFwd8x8_JPEG_16s_C1(src.data(), dst.data(), nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantFwd8x8_JPEG_16s_C1I(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantFwd8x8_JPEG_16s_C1I(src.data(), nullptr));
    EXPECT_EQ(filledBlock<int16_t>(77), src);
    EXPECT_EQ(filledBlock<int16_t>(0x5A5A), dst);
}

// A picture of 8 rows with gaps of noise between them, which ends with its last row.
template <typename T>
std::vector<uint8_t> picture(Random& random, const std::array<T, 64>& samples, int step)
{
    constexpr size_t rowBytes = 8 * sizeof(T);
    std::vector<uint8_t> bytes(static_cast<size_t>(7 * step) + rowBytes);
    random.fill(bytes);
    for (size_t y = 0; y < 8; ++y)
        std::memcpy(bytes.data() + y * static_cast<size_t>(step), samples.data() + 8 * y, rowBytes);
    return bytes;
}

// Noise, ends of the range, a slope with a little noise, all but grey.
Bytes makeBytes(Random& random, int kind)
{
    Bytes samples;
    random.fill(samples);
    const int right = random.in(-12, 12);
    const int down = random.in(-12, 12);
    for (int i = 0; i < 64; ++i) {
        uint8_t& sample = samples[static_cast<size_t>(i)];
        if (kind == 1)
            sample = sample < 128 ? 0 : 255;
        else if (kind == 2)
            sample =
                static_cast<uint8_t>(std::clamp(128 + right * (i % 8 - 4) + down * (i / 8 - 4) + sample % 4, 0, 255));
        else if (kind == 3)
            sample = static_cast<uint8_t>(127 + sample % 3);
    }
    return samples;
}

TEST(DctForwardOfBytes, EqualsItsModel)
{
    Random random(7);
    for (int i = 0; i < 8 * blocksPerKind; ++i) {
        const Bytes samples = makeBytes(random, i % 4);
        const Table table = makeTable(random);
        ASSERT_EQ(model::forwardDctQuant(levelShifted(samples), table), transformed(samples, table)) << i;
    }
}

TEST(DctForwardOfBytes, AnyStepAndAddressInsideItsMemory)
{
    Random random(8);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (const int step : {8, 9, 10, 11, 15, 16, 17, 23, 24, 31, 32, 33, 64, 1000, 4096, 5003}) {
            Bytes samples;
            random.fill(samples);
            const std::vector<uint8_t> rows = picture(random, samples, step);
            const Table table = makeTable(random);
            const size_t offset = random.in<size_t>(0, 40);
            Placed<uint8_t> src(rows.data(), rows.size(), guard, offset);
            Placed<uint16_t> factors(table, guard, offset * 7 % 33);
            Placed<int16_t> dst(Block{}, guard, offset * 5 % 33);
            ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(src.data(), step, dst.data(), factors.data()));
            ASSERT_EQ(model::forwardDctQuant(levelShifted(samples), table), dst.block()) << step;
        }
}

TEST(DctForwardOfBytes, ShortStepReadsRowsThatOverlap)
{
    Random random(9);
    for (int step = 1; step < 8; ++step) {
        std::vector<uint8_t> rows(static_cast<size_t>(7 * step + 8));
        random.fill(rows);
        Bytes samples;
        for (size_t i = 0; i < 64; ++i) samples[i] = rows[i / 8 * static_cast<size_t>(step) + i % 8];
        const Table table = makeTable(random);
        Placed<uint8_t> src(rows.data(), rows.size());
        Block out;
        ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(src.data(), step, out.data(), table.data()));
        ASSERT_EQ(model::forwardDctQuant(levelShifted(samples), table), out) << step;
    }
}

TEST(DctForwardOfBytes, EndsOfTheRange)
{
    EXPECT_EQ(-1024, transformed(filledBlock<uint8_t>(0), filledBlock<uint16_t>(32768))[0]);
    EXPECT_EQ(1016, transformed(filledBlock<uint8_t>(255), filledBlock<uint16_t>(32768))[0]);
    EXPECT_EQ(Block{}, transformed(filledBlock<uint8_t>(128), filledBlock<uint16_t>(65535)));
}

// Checks in their order: source and destination, step, table.
template <typename Sample, typename Factor, typename Function>
void checkOrder(Function function)
{
    std::array<Sample, 64> src{};
    std::array<Factor, 64> table{};
    Block dst = filledBlock<int16_t>(0x5A5A);
    EXPECT_EQ(vekStsNullPointer, function(nullptr, 0, dst.data(), nullptr));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), 0, nullptr, nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), 0, dst.data(), nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), -8, dst.data(), table.data()));
    EXPECT_EQ(vekStsBadStep, function(src.data(), std::numeric_limits<int>::min(), dst.data(), table.data()));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), 1, dst.data(), nullptr));
    EXPECT_EQ(filledBlock<int16_t>(0x5A5A), dst);
}

TEST(DctForwardOfBytes, ChecksInOrder) { checkOrder<uint8_t, uint16_t>(vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R); }
TEST(DctForwardOfWords, ChecksInOrder) { checkOrder<uint16_t, float>(vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R); }

Words makeSamples(Random& random, int kind)
{
    Words samples;
    for (uint16_t& sample : samples) {
        if (kind == 0)
            sample = random.in<uint16_t>(0, 4095);
        else if (kind == 1)
            sample = random.chance(50) ? uint16_t{0} : uint16_t{4095};
        else if (kind == 2)
            sample = random.any<uint16_t>();
        else
            sample = random.chance(50) ? uint16_t{0x7FFF} : uint16_t{0x8000};
    }
    return samples;
}

TEST(DctForwardOfWords, EqualsItsModel)
{
    Random random(10);
    for (int i = 0; i < 4 * blocksPerKind; ++i) {
        const Words samples = makeSamples(random, i % 4);
        FloatBlock factors;
        const int exponent = random.in(-6, 40);
        for (float& factor : factors)
            factor = i % 3 == 0 ? 1.0F / static_cast<float>(random.in(1, 255))
                                : std::ldexp(static_cast<float>(random.in(-255, 255)), exponent - 12);
        ASSERT_EQ(model::forwardDctQuant(samples, factors), transformed(samples, factors)) << i;
    }
}

TEST(DctForwardOfWords, AnyStepAndAddressInsideItsMemory)
{
    Random random(11);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (const int step : {16, 17, 18, 19, 20, 24, 31, 32, 33, 48, 63, 64, 65, 1000, 4096, 5003}) {
            const Words samples = makeSamples(random, 2);
            const std::vector<uint8_t> rows = picture(random, samples, step);
            const FloatBlock factors = filled(0.25F);
            const size_t offset = random.in<size_t>(0, 40);
            Placed<uint8_t> src(rows.data(), rows.size(), guard, offset);
            Placed<float> placedFactors(factors, guard, offset * 7 % 33);
            Placed<int16_t> dst(Block{}, guard, offset * 5 % 33);
            ASSERT_EQ(vekStsOk, vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(reinterpret_cast<const uint16_t*>(src.data()),
                                                                     step, dst.data(), placedFactors.data()));
            ASSERT_EQ(model::forwardDctQuant(samples, factors), dst.block()) << step;
        }
}

TEST(DctForwardOfWords, MiddleGreyGivesZerosForAnyTable)
{
    Random random(12);
    FloatBlock factors;
    for (float& factor : factors) factor = std::ldexp(1.0F, random.in(-100, 100));
    EXPECT_EQ(Block{}, transformed(filledBlock<uint16_t>(2048), factors));
}

TEST(DctForwardOfWords, SamplesAreSigned)
{
    // -32768 - 2048, times 8
    EXPECT_EQ(-17408, transformed(filledBlock<uint16_t>(0x8000), filled(0.0625F))[0]);
    EXPECT_EQ(-1, transformed(filledBlock<uint16_t>(0xFFFF), filled(0x1p-14F))[0]);
}

TEST(DctForwardOfWords, RoundsTiesToEven)
{
    // A constant of 2049 has a DC of 8.
    EXPECT_EQ(0, transformed(filledBlock<uint16_t>(2049), filled(0.0625F))[0]);
    EXPECT_EQ(2, transformed(filledBlock<uint16_t>(2051), filled(0.0625F))[0]);
    EXPECT_EQ(2, transformed(filledBlock<uint16_t>(2053), filled(0.0625F))[0]);
    EXPECT_EQ(-2, transformed(filledBlock<uint16_t>(2045), filled(0.0625F))[0]);
}

TEST(DctForwardOfWords, ClipsUpToThirtyTwoBitsAndWrapsToTheLowestBeyond)
{
    const Words bright = filledBlock<uint16_t>(2049);  // DC 8
    const Words dark = filledBlock<uint16_t>(2047);    // DC -8
    const auto dcOf = [](const Words& samples, float factor) {
        FloatBlock factors = filled(0.0F);
        factors[0] = factor;
        return transformed(samples, factors)[0];
    };
    EXPECT_EQ(32767, dcOf(bright, 4096.0F));
    EXPECT_EQ(32767, dcOf(bright, 0x1.fffffep27F));
    EXPECT_EQ(-32768, dcOf(bright, 0x1p28F));
    EXPECT_EQ(-32768, dcOf(bright, std::numeric_limits<float>::max()));
    EXPECT_EQ(-32768, dcOf(bright, std::numeric_limits<float>::infinity()));
    EXPECT_EQ(-32768, dcOf(dark, 0x1p28F));
    EXPECT_EQ(-32768, dcOf(dark, std::numeric_limits<float>::infinity()));
    EXPECT_EQ(0, dcOf(bright, std::numeric_limits<float>::denorm_min()));
}

// Blocks of floats of one size, so that roundings show; huge ones and denormals too.
FloatBlock makeFloats(Random& random, int exponent)
{
    FloatBlock block;
    for (float& value : block) {
        const float fraction = static_cast<float>(random.in(-0xFFFFFF, 0xFFFFFF));
        value = std::ldexp(fraction, exponent - 24 - (random.chance(30) ? random.in(0, 8) : 0));
    }
    return block;
}

TEST(DctForwardOfFloats, EqualsItsModelToTheBit)
{
    Random random(13);
    for (int i = 0; i < 4 * blocksPerKind; ++i) {
        static constexpr int exponents[] = {0, 8, 12, 16, 60, 120, 127, -100, -120, -126, -130, -140};
        FloatBlock block = makeFloats(random, exponents[i % 12]);
        const FloatBlock expected = model::forwardDct(block);
        if (hasNaN(expected))
            continue;  // sums of opposite infinities
        FloatBlock apart;
        q3::dct_8x8_fwd_32f(block.data(), apart.data());
        ASSERT_TRUE(same(expected, apart)) << i;
        q3::dct_8x8_fwd_32f(block.data(), block.data());
        ASSERT_TRUE(same(expected, block)) << i;
    }
}

}  // namespace
