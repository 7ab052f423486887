// The inverse DCT against its model: coefficients that saturate and wrap, all reduced and scaled forms, any address,
// any step.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "jpeg/samples/dct_inverse.h"
#include "jpeg/samples/dct_support.h"
#include "reference/jpeg/dct_inverse.h"
#include "vekj/jpeg_samples.h"

namespace {

using namespace dct;
using Words = std::array<uint16_t, 64>;

Block transformed(const Block& coefficients, const Table& table)
{
    Block out = filledBlock<int16_t>(0x5A5A);
    EXPECT_EQ(vekStsOk, vekiDCTQuantInv8x8_JPEG_16s_C1(coefficients.data(), out.data(), table.data()));
    return out;
}

class DctInverse : public testing::TestWithParam<Kind> {};

TEST_P(DctInverse, EqualsItsModel)
{
    Random random(1);
    for (int i = 0; i < blocksPerKind; ++i) {
        const Block coefficients = makeBlock(random, GetParam());
        const Table table = makeTable(random);
        ASSERT_EQ(model::inverseDctQuant(coefficients, table), transformed(coefficients, table)) << i;
    }
}

TEST_P(DctInverse, WithoutDequantisationEqualsItsModel)
{
    Random random(2);
    for (int i = 0; i < 4 * blocksPerKind; ++i) {
        Block block = makeBlock(random, GetParam());
        const Block expected = model::inverseDct(block);
        Block apart;
        q3::dct_8x8_inv_16s(block.data(), apart.data());
        ASSERT_EQ(expected, apart) << i;
        q3::dct_8x8_inv_16s(block.data(), block.data());
        ASSERT_EQ(expected, block) << i;
    }
}

TEST_P(DctInverse, InPlaceEqualsOutOfPlace)
{
    Random random(3);
    for (int i = 0; i < blocksPerKind / 4; ++i) {
        Block block = makeBlock(random, GetParam());
        Block both = block;
        const Table table = makeTable(random);
        const Block expected = model::inverseDctQuant(block, table);
        ASSERT_EQ(vekStsOk, vekiDCTQuantInv8x8_JPEG_16s_C1I(block.data(), table.data()));
        ASSERT_EQ(expected, block) << i;
        ASSERT_EQ(vekStsOk, vekiDCTQuantInv8x8_JPEG_16s_C1(both.data(), both.data(), table.data()));
        ASSERT_EQ(expected, both) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, DctInverse, testing::ValuesIn(kinds));

TEST(DctInverse, DequantisesEachCoefficientByItsOwnStep)
{
    Random random(4);
    for (int i = 0; i < blocksPerKind; ++i) {
        const Block coefficients = makeBlock(random, Kind::nominal);
        Table table{};
        table[random.in<size_t>(0, 63)] = random.any<uint16_t>();
        ASSERT_EQ(model::inverseDctQuant(coefficients, table), transformed(coefficients, table)) << i;
    }
}

TEST(DctInverse, ProductsWrapBeforeTheTransform)
{
    Block coefficients{};
    coefficients[0] = 16384;
    EXPECT_EQ(Block{}, transformed(coefficients, filledBlock<uint16_t>(4)));
    coefficients[0] = 1;
    const Block minusEight = transformed(coefficients, filledBlock<uint16_t>(65528));
    coefficients[0] = -8;
    EXPECT_EQ(transformed(coefficients, filledBlock<uint16_t>(1)), minusEight);
}

TEST(DctInverse, AnyAddressInsideItsMemory)
{
    Random random(5);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (size_t offset = 0; offset < 34; ++offset) {
            const Block coefficients = makeBlock(random, Kind::any);
            const Table table = makeTable(random);
            const Block expected = model::inverseDctQuant(coefficients, table);
            Placed<int16_t> src(coefficients, guard, offset);
            Placed<uint16_t> steps(table, guard, offset * 7 % 33);
            Placed<int16_t> dst(Block{}, guard, offset * 5 % 33);
            ASSERT_EQ(vekStsOk, vekiDCTQuantInv8x8_JPEG_16s_C1(src.data(), dst.data(), steps.data()));
            ASSERT_EQ(expected, dst.block()) << offset;
            ASSERT_EQ(coefficients, src.block()) << offset;
            ASSERT_EQ(vekStsOk, vekiDCTQuantInv8x8_JPEG_16s_C1I(src.data(), steps.data()));
            ASSERT_EQ(expected, src.block()) << offset;
        }
}

TEST(DctInverse, ChecksItsPointers)
{
    Block src = filledBlock<int16_t>(77);
    Block dst = filledBlock<int16_t>(0x5A5A);
    const Table table = filledBlock<uint16_t>(1);
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantInv8x8_JPEG_16s_C1(nullptr, dst.data(), table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantInv8x8_JPEG_16s_C1(src.data(), nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantInv8x8_JPEG_16s_C1(src.data(), dst.data(), nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantInv8x8_JPEG_16s_C1I(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiDCTQuantInv8x8_JPEG_16s_C1I(src.data(), nullptr));
    EXPECT_EQ(filledBlock<int16_t>(77), src);
    EXPECT_EQ(filledBlock<int16_t>(0x5A5A), dst);
}

// The members that write bytes. `used` coefficients in rows and columns count; so many bytes of the block's memory,
// from its first on, hold them.
struct Member {
    const char* name;
    VekStatus (*function)(const int16_t*, uint8_t*, int, const uint16_t*);
    std::vector<uint8_t> (*model)(const Block&, const Table&);
    size_t size;  // samples in a row, and rows
    bool (*ignores)(size_t row, size_t column);
    size_t read;  // coefficients from the first to the last that counts
};

const Member members[] = {
    {"Full", vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R, model::inverseDctToBytes, 8, [](size_t, size_t) { return false; },
     64},
    {"Of4x4", vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, model::inverseDctOf4x4ToBytes, 8,
     [](size_t row, size_t column) { return row > 3 || column > 3; }, 28},
    {"Of2x2", vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, model::inverseDctOf2x2ToBytes, 8,
     [](size_t row, size_t column) { return row > 1 || column > 1; }, 10},
    {"Of1x1", vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, model::inverseDctOf1x1ToBytes, 8,
     [](size_t row, size_t column) { return row > 0 || column > 0; }, 1},
    {"To4x4", vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, model::inverseDctTo4x4Bytes, 4,
     [](size_t row, size_t column) { return row == 4 || column == 4; }, 64},
    {"To2x2", vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, model::inverseDctTo2x2Bytes, 2,
     [](size_t row, size_t column) {
         return row == 2 || row == 4 || row == 6 || column == 2 || column == 4 || column == 6;
     },
     64},
};
void PrintTo(const Member& member, std::ostream* os) { *os << member.name; }

std::vector<uint8_t> samplesOf(const Member& member, const Block& coefficients, const Table& table)
{
    std::vector<uint8_t> out(member.size * member.size, 0xA5);
    EXPECT_EQ(vekStsOk, member.function(coefficients.data(), out.data(), static_cast<int>(member.size), table.data()));
    return out;
}

class DctInverseToBytes : public testing::TestWithParam<Member> {};

TEST_P(DctInverseToBytes, EqualsItsModel)
{
    Random random(6);
    for (const Kind kind : kinds)
        for (int i = 0; i < blocksPerKind; ++i) {
            const Block coefficients = makeBlock(random, kind);
            const Table table = i % 2 == 0 ? makeTable(random) : filledBlock<uint16_t>(1);
            ASSERT_EQ(GetParam().model(coefficients, table), samplesOf(GetParam(), coefficients, table))
                << testing::PrintToString(kind) << ' ' << i;
        }
}

// Blocks whose samples are not clipped, and enough of them that a row's rounding term that is off by one in 2^12 shows:
// the fewer the samples, the more blocks that takes.
TEST_P(DctInverseToBytes, EqualsItsModelWhereNothingClips)
{
    Random random(14);
    const int blocks = (GetParam().size == 2 ? 80 : GetParam().size == 4 ? 30 : 5) * blocksPerKind;
    const Table table = filledBlock<uint16_t>(1);
    for (int i = 0; i < blocks; ++i) {
        std::array<int8_t, 64> bytes;
        random.fill(bytes);
        Block coefficients;
        for (size_t k = 0; k < 64; ++k) coefficients[k] = static_cast<int16_t>(bytes[k] / 2);
        ASSERT_EQ(GetParam().model(coefficients, table), samplesOf(GetParam(), coefficients, table)) << i;
    }
}

TEST_P(DctInverseToBytes, EqualsItsModelForEachCoefficientAlone)
{
    for (size_t position = 0; position < 64; ++position)
        for (int value = -32768; value <= 32767; value += support::underSanitizer ? 4099 : 257) {
            Block coefficients{};
            coefficients[position] = static_cast<int16_t>(value);
            const Table table = filledBlock<uint16_t>(1);
            ASSERT_EQ(GetParam().model(coefficients, table), samplesOf(GetParam(), coefficients, table))
                << position << ' ' << value;
        }
}

TEST_P(DctInverseToBytes, IgnoresTheCoefficientsItDoesNotName)
{
    Random random(7);
    for (int i = 0; i < blocksPerKind / 4; ++i) {
        const Block coefficients = makeBlock(random, Kind::nominal);
        const Table table = makeTable(random);
        Block other = coefficients;
        for (size_t k = 0; k < 64; ++k)
            if (GetParam().ignores(k / 8, k % 8))
                other[k] = random.extreme<int16_t>();
        ASSERT_EQ(samplesOf(GetParam(), coefficients, table), samplesOf(GetParam(), other, table)) << i;
    }
}

TEST_P(DctInverseToBytes, ReadsNothingBehindTheLastCoefficientThatCounts)
{
    Random random(8);
    for (size_t offset = 0; offset < 20; ++offset) {
        const Block coefficients = makeBlock(random, Kind::nominal);
        const Table table = makeTable(random);
        Placed<int16_t> src(coefficients.data(), GetParam().read);
        std::vector<uint8_t> out(GetParam().size * GetParam().size);
        ASSERT_EQ(vekStsOk,
                  GetParam().function(src.data(), out.data(), static_cast<int>(GetParam().size), table.data()));
        ASSERT_EQ(GetParam().model(coefficients, table), out);
    }
}

TEST_P(DctInverseToBytes, AnyStepAndAddressInsideItsMemoryWithGapsUntouched)
{
    Random random(9);
    const size_t size = GetParam().size;
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (size_t step = size; step < 140; step += step < 40 ? 1 : 33)
            for (size_t offset = 0; offset < 3; ++offset) {
                const Block coefficients = makeBlock(random, random.chance(50) ? Kind::sparse : Kind::any);
                const Table table = makeTable(random);
                std::vector<uint8_t> expected((size - 1) * step + size, 0xA5);
                Placed<uint8_t> dst(expected.data(), expected.size(), guard, 7 * offset);
                Placed<int16_t> src(coefficients, guard, (step + offset) % 33);
                Placed<uint16_t> steps(table, guard, (5 * step + offset) % 33);
                const std::vector<uint8_t> samples = GetParam().model(coefficients, table);
                for (size_t y = 0; y < size; ++y)
                    std::memcpy(expected.data() + y * step, samples.data() + y * size, size);
                ASSERT_EQ(vekStsOk, GetParam().function(src.data(), dst.data(), static_cast<int>(step), steps.data()));
                ASSERT_EQ(expected, std::vector<uint8_t>(dst.data(), dst.data() + expected.size())) << step;
                ASSERT_EQ(coefficients, src.block());
            }
}

TEST_P(DctInverseToBytes, ShortStepIsNoError)
{
    for (size_t step = 1; step < GetParam().size; ++step) {
        const std::vector<uint8_t> empty((GetParam().size - 1) * step + GetParam().size, 0xA5);
        Placed<uint8_t> dst(empty.data(), empty.size());
        const Block coefficients{};
        const Table table = filledBlock<uint16_t>(1);
        ASSERT_EQ(vekStsOk, GetParam().function(coefficients.data(), dst.data(), static_cast<int>(step), table.data()));
        ASSERT_EQ(std::vector<uint8_t>(empty.size(), 128), std::vector<uint8_t>(dst.data(), dst.data() + empty.size()));
    }
}

TEST_P(DctInverseToBytes, ZerosGiveMiddleGrey)
{
    EXPECT_EQ(std::vector<uint8_t>(GetParam().size * GetParam().size, 128),
              samplesOf(GetParam(), Block{}, filledBlock<uint16_t>(65535)));
}

TEST_P(DctInverseToBytes, ChecksInOrder)
{
    const Block src{};
    const Table table{};
    std::array<uint8_t, 64> dst = filledBlock<uint8_t>(0xA5);
    const auto function = GetParam().function;
    EXPECT_EQ(vekStsNullPointer, function(nullptr, dst.data(), 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), nullptr, 0, nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), dst.data(), 0, nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), dst.data(), -8, table.data()));
    EXPECT_EQ(vekStsBadStep, function(src.data(), dst.data(), std::numeric_limits<int>::min(), table.data()));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), dst.data(), 1, nullptr));
    EXPECT_EQ(filledBlock<uint8_t>(0xA5), dst);
}

INSTANTIATE_TEST_SUITE_P(Members, DctInverseToBytes, testing::ValuesIn(members),
                         [](const auto& member) { return std::string(member.param.name); });

Block dcOnly(int16_t dc)
{
    Block block{};
    block[0] = dc;
    return block;
}

TEST(DctInverseToBytes, DcOf8Gives129InTheFullAndInTheDcOnlyForm)
{
    const std::vector<uint8_t> expected(64, 129);
    EXPECT_EQ(expected, samplesOf(members[0], dcOnly(2), filledBlock<uint16_t>(4)));
    EXPECT_EQ(expected, samplesOf(members[3], dcOnly(2), filledBlock<uint16_t>(4)));
}

TEST(DctInverseToBytes, DcOf4RoundsByRowsInTheFullFormAndTruncatesInTheDcOnlyForm)
{
    std::vector<uint8_t> expected(64, 129);
    std::fill(expected.begin() + 24, expected.begin() + 40, uint8_t{128});  // rows 3 and 4
    EXPECT_EQ(expected, samplesOf(members[0], dcOnly(1), filledBlock<uint16_t>(4)));
    EXPECT_EQ(std::vector<uint8_t>(64, 128), samplesOf(members[3], dcOnly(1), filledBlock<uint16_t>(4)));
}

TEST(DctInverseToBytes, DcOnlyFormCutsTheValueToSixteenBitsButNotTheProduct)
{
    const auto sample = [](int16_t dc, uint16_t step) {
        return samplesOf(members[3], dcOnly(dc), filledBlock(step))[63];
    };
    EXPECT_EQ(0, sample(32767, 8));
    EXPECT_EQ(255, sample(32767, 4));
    EXPECT_EQ(255, sample(-32768, 9));
    EXPECT_EQ(127, sample(-1, 1));
}

TEST(DctInverseToBytes, FullFormHasOneResultForEveryAlignmentOfItsInputs)
{
    Random random(10);
    for (int i = 0; i < 300; ++i) {
        const Block coefficients = makeBlock(random, Kind::any);
        const Table table = makeTable(random);
        const std::vector<uint8_t> expected = model::inverseDctToBytes(coefficients, table);
        Placed<int16_t> src(coefficients, Guard::Before, random.in<size_t>(0, 63));
        Placed<uint16_t> steps(table, Guard::Before, random.in<size_t>(0, 63));
        std::vector<uint8_t> out(64);
        ASSERT_EQ(vekStsOk, vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(src.data(), out.data(), 8, steps.data()));
        ASSERT_EQ(expected, out);
    }
}

Words wordsOf(const Block& coefficients, const FloatBlock& steps)
{
    Words out = filledBlock<uint16_t>(0xA5A5);
    EXPECT_EQ(vekStsOk, vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(coefficients.data(), out.data(), 16, steps.data()));
    return out;
}

TEST(DctInverseToWords, EqualsItsModel)
{
    Random random(11);
    for (const Kind kind : kinds)
        for (int i = 0; i < blocksPerKind; ++i) {
            const Block coefficients = makeBlock(random, kind);
            FloatBlock steps;
            const int exponent = random.in(-20, 25);
            for (float& step : steps)
                step = i % 2 == 0 ? static_cast<float>(random.in(1, 255))
                                  : std::ldexp(static_cast<float>(random.in(-255, 255)), exponent - 8);
            ASSERT_EQ(model::inverseDctToWords(coefficients, steps), wordsOf(coefficients, steps))
                << testing::PrintToString(kind) << ' ' << i;
        }
}

TEST(DctInverseToWords, AnyStepAndAddressInsideItsMemoryWithGapsUntouched)
{
    Random random(12);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (size_t step = 16; step < 200; step += step < 40 ? 1 : 33)
            for (size_t offset = 0; offset < 3; ++offset) {
                const Block coefficients = makeBlock(random, Kind::coarse);
                const FloatBlock factors = filled(0.75F);
                std::vector<uint8_t> expected(7 * step + 16, 0xA5);
                Placed<uint8_t> dst(expected.data(), expected.size(), guard, 7 * offset);
                Placed<int16_t> src(coefficients, guard, (step + offset) % 33);
                Placed<float> steps(factors, guard, (5 * step + offset) % 33);
                const Words samples = model::inverseDctToWords(coefficients, factors);
                for (size_t y = 0; y < 8; ++y) std::memcpy(expected.data() + y * step, samples.data() + 8 * y, 16);
                ASSERT_EQ(vekStsOk,
                          vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(src.data(), reinterpret_cast<uint16_t*>(dst.data()),
                                                               static_cast<int>(step), steps.data()));
                ASSERT_EQ(expected, std::vector<uint8_t>(dst.data(), dst.data() + expected.size())) << step;
            }
}

TEST(DctInverseToWords, ZerosGiveMiddleGrey)
{
    EXPECT_EQ(filledBlock<uint16_t>(2048), wordsOf(Block{}, filled(1000.0F)));
    EXPECT_EQ(filledBlock<uint16_t>(2048), wordsOf(filledBlock<int16_t>(1000), filled(0.0F)));
}

TEST(DctInverseToWords, TruncatesAndClips)
{
    // A DC of d by a step of s adds d s / 8.
    EXPECT_EQ(filledBlock<uint16_t>(2048), wordsOf(dcOnly(1), filled(7.9375F)));
    EXPECT_EQ(filledBlock<uint16_t>(2049), wordsOf(dcOnly(1), filled(8.0F)));
    EXPECT_EQ(filledBlock<uint16_t>(2047), wordsOf(dcOnly(-1), filled(0.0625F)));
    EXPECT_EQ(filledBlock<uint16_t>(4095), wordsOf(dcOnly(2047), filled(8.0F)));
    EXPECT_EQ(filledBlock<uint16_t>(4095), wordsOf(dcOnly(2048), filled(8.0F)));
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(-2048), filled(8.0F)));
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(-2049), filled(8.0F)));
}

TEST(DctInverseToWords, SumsBeyondSixteenBitsAreWhiteAndBeyondThirtyTwoBlack)
{
    EXPECT_EQ(filledBlock<uint16_t>(4095), wordsOf(dcOnly(30720), filled(8.0F)));  // 32768
    EXPECT_EQ(filledBlock<uint16_t>(4095), wordsOf(dcOnly(1), filled(0x1.fffp33F)));
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(1), filled(0x1p34F)));  // 2^31
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(-1), filled(0x1p34F)));
    FloatBlock infinite = filled(1.0F);
    infinite[0] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(1), infinite));
    EXPECT_EQ(filledBlock<uint16_t>(0), wordsOf(dcOnly(-1), infinite));
}

TEST(DctInverseToWords, ChecksInOrder)
{
    const Block src{};
    const FloatBlock table{};
    Words dst = filledBlock<uint16_t>(0xA5A5);
    const auto function = vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R;
    EXPECT_EQ(vekStsNullPointer, function(nullptr, dst.data(), 0, nullptr));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), nullptr, 0, nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), dst.data(), 0, nullptr));
    EXPECT_EQ(vekStsBadStep, function(src.data(), dst.data(), -16, table.data()));
    EXPECT_EQ(vekStsNullPointer, function(src.data(), dst.data(), 1, nullptr));
    EXPECT_EQ(filledBlock<uint16_t>(0xA5A5), dst);
}

TEST(DctInverseOfFloats, EqualsItsModelToTheBit)
{
    Random random(13);
    for (int i = 0; i < 4 * blocksPerKind; ++i) {
        static constexpr int exponents[] = {0, 8, 12, 16, 60, 120, 127, -100, -120, -126, -130, -140};
        FloatBlock block;
        for (float& value : block)
            value = std::ldexp(static_cast<float>(random.in(-0xFFFFFF, 0xFFFFFF)), exponents[i % 12] - 24);
        const FloatBlock expected = model::inverseDct(block);
        if (hasNaN(expected))
            continue;  // sums of opposite infinities
        FloatBlock apart;
        q3::dct_8x8_inv_32f(block.data(), apart.data());
        ASSERT_TRUE(same(expected, apart)) << i;
        q3::dct_8x8_inv_32f(block.data(), block.data());
        ASSERT_TRUE(same(expected, block)) << i;
    }
}

}  // namespace
