// Quantisation tables and quantisation against their models, over the whole domain where it can be counted.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include "jpeg/samples/quantisation_kernels.h"
#include "reference/jpeg/huffman.h"
#include "reference/jpeg/quantisation.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"
#include "vekj/jpeg_samples.h"

namespace {

using model::QuantTable;
using model::RawTable;
using support::Guard;
using support::GuardedBytes;
using support::Random;
using support::underSanitizer;

RawTable scaled(RawTable table, int quality)
{
    EXPECT_EQ(vekStsOk, vekiQuantFwdRawTableInit_JPEG_8u(table.data(), quality));
    return table;
}
RawTable filledRaw(int value)
{
    RawTable table;
    table.fill(static_cast<uint8_t>(value));
    return table;
}
RawTable countingFrom(int first)
{
    RawTable table;
    std::iota(table.begin(), table.end(), static_cast<uint8_t>(first));
    return table;
}

// All 256 entries at one quality, in four tables
void expectScaledAsModelled(int quality)
{
    for (int first = 0; first < 256; first += 64) {
        const RawTable raw = countingFrom(first);
        const RawTable result = scaled(raw, quality);
        for (size_t i = 0; i < 64; ++i)
            ASSERT_EQ(model::scaledByQuality(raw[i], quality), result[i]) << int{raw[i]} << " at quality " << quality;
    }
}

TEST(QualityScaling, EqualsItsModelAtEveryQualityThatTellsApart)
{
    for (int quality = 1; quality <= 1000; ++quality) expectScaledAsModelled(quality);
}

TEST(QualityScaling, EqualsItsModelWhereProductsWrap)
{
    constexpr int last = std::numeric_limits<int>::max();
    // 255 * (2 * quality - 200) leaves 31 bits from 4210852 on; 2 * quality from 2^30 on.
    for (const int centre : {4210852, 8421604, 1 << 23, 1 << 24, 1 << 29, (1 << 30) - 1, 1 << 30, last - 41})
        for (int quality = centre - 40; quality <= centre + 40; ++quality) expectScaledAsModelled(quality);
    Random random(1);
    for (int i = 0; i < (underSanitizer ? 300 : 20000); ++i) expectScaledAsModelled(random.in(1001, last));
}

TEST(QualityScaling, Quality50KeepsTheTableAndRaisesZeroToOne)
{
    for (int first = 0; first < 256; first += 64) {
        RawTable expected = countingFrom(first);
        std::replace(expected.begin(), expected.end(), uint8_t{0}, uint8_t{1});
        EXPECT_EQ(expected, scaled(countingFrom(first), 50));
    }
}

TEST(QualityScaling, Quality100AndAboveGivesAllOnes)
{
    for (const int quality : {100, 101, 1000, 4000000})
        for (int first = 0; first < 256; first += 64)
            EXPECT_EQ(filledRaw(1), scaled(countingFrom(first), quality)) << quality;
}

TEST(QualityScaling, Quality1MultipliesBy50)
{
    EXPECT_EQ(filledRaw(50), scaled(filledRaw(1), 1));
    EXPECT_EQ(filledRaw(250), scaled(filledRaw(5), 1));
    EXPECT_EQ(filledRaw(255), scaled(filledRaw(6), 1));  // 300 clamped
    EXPECT_EQ(filledRaw(1), scaled(filledRaw(0), 1));
}

TEST(QualityScaling, BeyondFourMillionOnesNoLongerHold)
{
    // 255 * (200 - 2 * 5000000) = -2549949000 wraps to 1745018296
    EXPECT_EQ(filledRaw(255), scaled(filledRaw(255), 5000000));
}

TEST(QualityScaling, ChecksItsArgumentsInOrder)
{
    EXPECT_EQ(vekStsNullPointer, vekiQuantFwdRawTableInit_JPEG_8u(nullptr, 0));
    RawTable table = countingFrom(9);
    EXPECT_EQ(vekStsBadArgument, vekiQuantFwdRawTableInit_JPEG_8u(table.data(), 0));
    EXPECT_EQ(vekStsBadArgument, vekiQuantFwdRawTableInit_JPEG_8u(table.data(), -1));
    EXPECT_EQ(vekStsBadArgument, vekiQuantFwdRawTableInit_JPEG_8u(table.data(), std::numeric_limits<int>::min()));
    EXPECT_EQ(countingFrom(9), table);
}

TEST(QuantTables, EqualTheirModels)
{
    Random random(2);
    for (int i = 0; i < 2000; ++i) {
        RawTable raw;
        for (uint8_t& step : raw) step = random.in<uint8_t>(i % 2, 255);  // with a zero now and then
        const bool hasZero = std::find(raw.begin(), raw.end(), 0) != raw.end();
        QuantTable forward;
        QuantTable inverse;
        ASSERT_EQ(hasZero ? vekStsDivByZero : vekStsOk, vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), forward.data()));
        ASSERT_EQ(vekStsOk, vekiQuantInvTableInit_JPEG_8u16u(raw.data(), inverse.data()));
        ASSERT_EQ(model::forwardTable(raw), forward);
        ASSERT_EQ(model::inverseTable(raw), inverse);
    }
}

TEST(QuantTables, EveryStepInEveryPlace)
{
    for (int step = 0; step < 256; ++step)
        for (size_t k = 0; k < 64; ++k) {
            RawTable raw = filledRaw(7);
            raw[k] = static_cast<uint8_t>(step);
            QuantTable forward;
            QuantTable inverse;
            ASSERT_EQ(step == 0 ? vekStsDivByZero : vekStsOk,
                      vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), forward.data()));
            ASSERT_EQ(vekStsOk, vekiQuantInvTableInit_JPEG_8u16u(raw.data(), inverse.data()));
            ASSERT_EQ(model::forwardTable(raw), forward) << step << " at " << k;
            ASSERT_EQ(model::inverseTable(raw), inverse) << step << " at " << k;
        }
}

TEST(QuantTables, Landmarks)
{
    RawTable raw = filledRaw(1);
    raw[1] = 255;  // the second in zig-zag order is to the right of DC
    raw[2] = 2;    // the third is below DC
    raw[3] = 0;    // the fourth is two rows below
    QuantTable table;
    EXPECT_EQ(vekStsDivByZero, vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), table.data()));
    EXPECT_EQ(32768, table[0]);
    EXPECT_EQ(129, table[1]);
    EXPECT_EQ(16384, table[8]);
    EXPECT_EQ(65535, table[16]);
    EXPECT_EQ(vekStsOk, vekiQuantInvTableInit_JPEG_8u16u(raw.data(), table.data()));
    EXPECT_EQ(1, table[0]);
    EXPECT_EQ(255, table[1]);
    EXPECT_EQ(2, table[8]);
    EXPECT_EQ(0, table[16]) << "a step of 0 is no error here";
}

TEST(QuantTables, AnyAddressAndNothingOutside)
{
    const RawTable raw = countingFrom(1);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (const size_t misalignment : {0, 1, 2, 3}) {
            GuardedBytes source(64, guard, misalignment);
            GuardedBytes destination(128, guard, misalignment);
            std::copy(raw.begin(), raw.end(), source.data());
            auto* table = reinterpret_cast<uint16_t*>(destination.data());
            QuantTable result;
            EXPECT_EQ(vekStsOk, vekiQuantFwdTableInit_JPEG_8u16u(source.data(), table));
            std::memcpy(result.data(), destination.data(), 128);
            EXPECT_EQ(model::forwardTable(raw), result);
            EXPECT_EQ(vekStsOk, vekiQuantInvTableInit_JPEG_8u16u(source.data(), table));
            std::memcpy(result.data(), destination.data(), 128);
            EXPECT_EQ(model::inverseTable(raw), result);
        }
}

TEST(QuantTables, CheckTheirPointers)
{
    const RawTable raw = filledRaw(1);
    QuantTable table{};
    EXPECT_EQ(vekStsNullPointer, vekiQuantFwdTableInit_JPEG_8u16u(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiQuantInvTableInit_JPEG_8u16u(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiQuantInvTableInit_JPEG_8u16u(raw.data(), nullptr));
    EXPECT_EQ(QuantTable{}, table);
}

using BlockFunction = VekStatus (*)(int16_t* block, const uint16_t* table);
using BlockModel = int16_t (*)(int16_t x, uint16_t t);

// Counts the pairs of a coefficient and a table entry whose result is not the model's.
template <BlockFunction function, BlockModel model>
int64_t mismatchesOverAllPairs(int stride)
{
    int64_t mismatches = 0;
#pragma omp parallel for reduction(+ : mismatches) schedule(static) num_threads(2)
    for (int t = 0; t <= 65535; t += stride) {
        QuantTable table;
        table.fill(static_cast<uint16_t>(t));
        for (int first = -32768; first <= 32767; first += 64) {
            int16_t block[64];
            for (int i = 0; i < 64; ++i) block[i] = static_cast<int16_t>(first + i);
            mismatches += function(block, table.data()) != vekStsOk;
            for (int i = 0; i < 64; ++i) mismatches += block[i] != model(static_cast<int16_t>(first + i), table[0]);
        }
    }
    return mismatches;
}

TEST(QuantiseExhaustive, ForwardEqualsItsModelForEveryPair)
{
    EXPECT_EQ(0, (mismatchesOverAllPairs<vekiQuantFwd8x8_JPEG_16s_C1I, model::quantised>(underSanitizer ? 1021 : 1)));
}

TEST(QuantiseExhaustive, InverseEqualsItsModelForEveryPair)
{
    EXPECT_EQ(0, (mismatchesOverAllPairs<vekiQuantInv8x8_JPEG_16s_C1I, model::dequantised>(underSanitizer ? 1021 : 1)));
}

int16_t quantOne(int x, int step)
{
    const RawTable raw = filledRaw(step);
    QuantTable table;
    vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), table.data());
    int16_t block[64] = {};
    block[63] = static_cast<int16_t>(x);
    EXPECT_EQ(vekStsOk, vekiQuantFwd8x8_JPEG_16s_C1I(block, table.data()));
    return block[63];
}

TEST(QuantFwd8x8, TiesGoUp)
{
    EXPECT_EQ(1, quantOne(1, 2));
    EXPECT_EQ(0, quantOne(-1, 2));
    EXPECT_EQ(2, quantOne(3, 2));
    EXPECT_EQ(-1, quantOne(-3, 2));
}

TEST(QuantFwd8x8, BeyondThirteenBitsWraps)
{
    EXPECT_EQ(4095, quantOne(4095, 1));
    EXPECT_EQ(-4096, quantOne(4096, 1));
    EXPECT_EQ(-4096, quantOne(-4096, 1));
    EXPECT_EQ(4095, quantOne(-4097, 1));
}

TEST(QuantFwd8x8, StepOneKeepsThirteenBits)
{
    for (int x = -4096; x <= 4095; ++x) ASSERT_EQ(x, quantOne(x, 1));
}

TEST(QuantInv8x8, ProductsWrap)
{
    const auto product = [](int16_t x, uint16_t t) {
        int16_t block[64] = {x};
        QuantTable table;
        table.fill(t);
        EXPECT_EQ(vekStsOk, vekiQuantInv8x8_JPEG_16s_C1I(block, table.data()));
        return block[0];
    };
    EXPECT_EQ(-32768, product(16384, 2));
    EXPECT_EQ(1, product(-1, 65535));
    EXPECT_EQ(-510, product(-2, 255));
}

TEST(QuantiseBlock, EachEntryByItsOwnStepAtAnyAddress)
{
    Random random(3);
    for (const Guard guard : {Guard::Behind, Guard::Before})
        for (size_t misalignment = 0; misalignment < 33; ++misalignment) {
            GuardedBytes block(128, guard, misalignment);
            GuardedBytes table(128, guard, misalignment ^ 5);
            GuardedBytes other(128, guard, misalignment ^ 2);
            std::array<int16_t, 64> x;
            QuantTable t;
            random.fill(x);
            random.fill(t);
            std::memcpy(block.data(), x.data(), 128);
            std::memcpy(table.data(), t.data(), 128);
            auto* pBlock = reinterpret_cast<int16_t*>(block.data());
            auto* pOther = reinterpret_cast<int16_t*>(other.data());
            const auto* pTable = reinterpret_cast<const uint16_t*>(table.data());
            std::array<int16_t, 64> forward;
            std::array<int16_t, 64> inverse;
            for (size_t i = 0; i < 64; ++i) {
                forward[i] = model::quantised(x[i], t[i]);
                inverse[i] = model::dequantised(x[i], t[i]);
            }
            q3::ownjc_QuantFwd_8x8_Sfs15_16s(pBlock, pOther, pTable);
            EXPECT_EQ(0, std::memcmp(forward.data(), other.data(), 128)) << misalignment;
            q3::ownjc_QuantInv_8x8_16s(pBlock, pOther, pTable);
            EXPECT_EQ(0, std::memcmp(inverse.data(), other.data(), 128)) << misalignment;
            EXPECT_EQ(0, std::memcmp(x.data(), block.data(), 128)) << "the source stays";
            EXPECT_EQ(vekStsOk, vekiQuantFwd8x8_JPEG_16s_C1I(pBlock, pTable));
            EXPECT_EQ(0, std::memcmp(forward.data(), block.data(), 128)) << misalignment;
            std::memcpy(block.data(), x.data(), 128);
            EXPECT_EQ(vekStsOk, vekiQuantInv8x8_JPEG_16s_C1I(pBlock, pTable));
            EXPECT_EQ(0, std::memcmp(inverse.data(), block.data(), 128)) << misalignment;
            EXPECT_EQ(0, std::memcmp(t.data(), table.data(), 128)) << "the table stays";
        }
}

TEST(QuantiseBlock, ChecksItsPointers)
{
    int16_t block[64] = {5};
    const QuantTable table{};
    EXPECT_EQ(vekStsNullPointer, vekiQuantFwd8x8_JPEG_16s_C1I(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiQuantFwd8x8_JPEG_16s_C1I(block, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiQuantInv8x8_JPEG_16s_C1I(nullptr, table.data()));
    EXPECT_EQ(vekStsNullPointer, vekiQuantInv8x8_JPEG_16s_C1I(block, nullptr));
    EXPECT_EQ(5, block[0]);
}

}  // namespace
