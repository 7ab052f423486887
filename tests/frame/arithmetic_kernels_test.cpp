// The shared arithmetic kernels against their models, and on one thread or two.
#include "frame/arithmetic_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "frame/recorded_core.h"
#include "reference/frame/arithmetic.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"

namespace {

using support::GuardedArray;
using support::Random;
using support::underSanitizer;

int16_t mulOne(int x, int t, int scaleFactor)
{
    const auto table = static_cast<uint16_t>(t);
    const auto source = static_cast<int16_t>(x);
    int16_t result = 0x5A5A;
    q3::ownsMul_16u16s_PosSfs(&table, &source, &result, 1, scaleFactor);
    return result;
}

TEST(MulPosSfs, TiesGoToEven)
{
    EXPECT_EQ(2, mulOne(3, 16384, 15));  // 1.5
    EXPECT_EQ(2, mulOne(5, 16384, 15));  // 2.5
    EXPECT_EQ(0, mulOne(1, 16384, 15));
    EXPECT_EQ(0, mulOne(-1, 16384, 15));
    EXPECT_EQ(-2, mulOne(-3, 16384, 15));
    EXPECT_EQ(-2, mulOne(-5, 16384, 15));
}

TEST(MulPosSfs, SaturatesAndTakesTheTableAsUnsigned)
{
    EXPECT_EQ(32767, mulOne(32767, 65535, 15));
    EXPECT_EQ(-32768, mulOne(-32768, 65535, 15));
    EXPECT_EQ(-32768, mulOne(-32768, 32768, 15));
    EXPECT_EQ(20000, mulOne(10000, 65535, 15));
    EXPECT_EQ(32767, mulOne(1, 65535, 1));  // 32767.5 would be 32768
}

// The whole arrays of 65536 coefficients go through one call for each table entry.
TEST(MulPosSfs, By15EqualsItsModelForEveryPair)
{
    constexpr int stride = underSanitizer ? 1021 : 1;
    constexpr int count = 65536;
    std::vector<int16_t> x(count);
    std::iota(x.begin(), x.end(), static_cast<int16_t>(-32768));
    int64_t mismatches = 0;
#pragma omp parallel for reduction(+ : mismatches) schedule(static) num_threads(2)
    for (int t = 0; t <= 65535; t += stride) {
        thread_local std::vector<uint16_t> table(count);
        thread_local std::vector<int16_t> result(count);
        std::fill(table.begin(), table.end(), static_cast<uint16_t>(t));
        q3::ownsMul_16u16s_PosSfs(table.data(), x.data(), result.data(), count, 15);
        for (int i = 0; i < count; ++i)
            mismatches += result[static_cast<size_t>(i)] !=
                          model::mulPosSfs(x[static_cast<size_t>(i)], static_cast<uint16_t>(t), 15);
    }
    EXPECT_EQ(0, mismatches);
}

TEST(MulPosSfs, EqualsItsModelForEveryScaleAndLength)
{
    Random random(1);
    for (const int scaleFactor : {1, 2, 3, 7, 8, 14, 15, 16, 17, 30, 31, 32, 33, 62, 63, 64, 1000}) {
        for (int len = 1; len <= 70; ++len) {
            GuardedArray<uint16_t> table(static_cast<size_t>(len));
            GuardedArray<int16_t> source(static_cast<size_t>(len));
            GuardedArray<int16_t> result(static_cast<size_t>(len));
            for (uint16_t& t : table) t = random.extreme<uint16_t>();
            for (int16_t& x : source) x = random.extreme<int16_t>();
            q3::ownsMul_16u16s_PosSfs(table.data(), source.data(), result.data(), len, scaleFactor);
            for (size_t i = 0; i < source.size(); ++i)
                ASSERT_EQ(model::mulPosSfs(source[i], table[i], scaleFactor), result[i])
                    << source[i] << " * " << table[i] << " >> " << scaleFactor << ", entry " << i << " of " << len;
        }
    }
}

TEST(MulPosSfs, WorksInPlace)
{
    Random random(2);
    std::vector<uint16_t> table(64);
    std::vector<int16_t> block(64);
    random.fill(table);
    random.fill(block);
    const std::vector<int16_t> source = block;
    q3::ownsMul_16u16s_PosSfs(table.data(), block.data(), block.data(), 64, 15);
    for (size_t i = 0; i < 64; ++i) EXPECT_EQ(model::mulPosSfs(source[i], table[i], 15), block[i]);
}

TEST(DivCRev, Landmarks)
{
    uint16_t entries[] = {1, 2, 3, 0};
    EXPECT_EQ(vekStsDivByZero, q3::veksDivCRev_16u_I(32768, entries, 4));
    EXPECT_EQ(32768, entries[0]);
    EXPECT_EQ(16384, entries[1]);
    EXPECT_EQ(10923, entries[2]);
    EXPECT_EQ(65535, entries[3]);
}

TEST(DivCRev, ValueZeroZeroesTheDestination)
{
    const uint16_t withZero[] = {1, 65535, 0, 7};
    const uint16_t without[] = {1, 65535, 3, 7};
    std::vector<uint16_t> result(4, 0x5A5A);
    EXPECT_EQ(vekStsDivByZero, q3::veksDivCRev_16u(withZero, 0, result.data(), 4));
    EXPECT_EQ(std::vector<uint16_t>(4, 0), result);
    result.assign(4, 0x5A5A);
    EXPECT_EQ(vekStsOk, q3::veksDivCRev_16u(without, 0, result.data(), 4));
    EXPECT_EQ(std::vector<uint16_t>(4, 0), result);
    uint16_t inPlace[] = {0, 5};
    EXPECT_EQ(vekStsDivByZero, q3::veksDivCRev_16u_I(0, inPlace, 2));
    EXPECT_EQ(0, inPlace[0]);
    EXPECT_EQ(0, inPlace[1]);
}

TEST(DivCRev, ChecksItsArgumentsInOrder)
{
    uint16_t entry = 3;
    EXPECT_EQ(vekStsNullPointer, q3::veksDivCRev_16u(nullptr, 1, &entry, 0));
    EXPECT_EQ(vekStsNullPointer, q3::veksDivCRev_16u(&entry, 1, nullptr, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksDivCRev_16u(&entry, 1, &entry, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksDivCRev_16u(&entry, 0, &entry, -1));
    EXPECT_EQ(vekStsNullPointer, q3::veksDivCRev_16u_I(1, nullptr, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksDivCRev_16u_I(1, &entry, 0));
    EXPECT_EQ(3, entry);
}

// Every divisor for many values, and with the others random: 32768 and the values about it and at the ends always.
TEST(DivCRev, IsTheRoundedQuotient)
{
    recorded::numThreads = 1;
    constexpr int count = 65536;
    std::vector<uint16_t> divisors(count);
    std::iota(divisors.begin(), divisors.end(), static_cast<uint16_t>(0));
    std::vector<uint16_t> result(count);
    std::vector<uint16_t> values = {1, 2, 3, 100, 255, 256, 32766, 32767, 32768, 32769, 65533, 65534, 65535};
    Random random(3);
    while (values.size() < (underSanitizer ? 30 : 1000)) values.push_back(random.in<uint16_t>(1, 65535));
    for (const uint16_t value : values) {
        ASSERT_EQ(vekStsDivByZero, q3::veksDivCRev_16u(divisors.data(), value, result.data(), count));
        for (size_t i = 0; i < count; ++i)
            ASSERT_EQ(model::reversedQuotient(value, divisors[i]), result[i]) << value << " / " << i;
    }
}

TEST(DivCRev, EveryLengthAtThePageEnd)
{
    Random random(4);
    for (int len = 1; len <= 70; ++len) {
        GuardedArray<uint16_t> source(static_cast<size_t>(len));
        GuardedArray<uint16_t> result(static_cast<size_t>(len));
        bool zeroSeen = false;
        for (uint16_t& d : source) {
            d = random.extreme<uint16_t>();
            zeroSeen |= d == 0;
        }
        const auto value = random.in<uint16_t>(1, 65535);
        ASSERT_EQ(zeroSeen ? vekStsDivByZero : vekStsOk, q3::veksDivCRev_16u(source.data(), value, result.data(), len));
        for (size_t i = 0; i < source.size(); ++i) ASSERT_EQ(model::reversedQuotient(value, source[i]), result[i]);
    }
}

TEST(DivCRev, OddAddresses)
{
    std::vector<uint8_t> bytes(2 * 64 + 1);
    for (size_t i = 0; i < 64; ++i) bytes[1 + 2 * i] = static_cast<uint8_t>(i + 1);
    auto* entries = reinterpret_cast<uint16_t*>(bytes.data() + 1);
    EXPECT_EQ(vekStsOk, q3::veksDivCRev_16u_I(32768, entries, 64));
    for (size_t i = 0; i < 64; ++i)
        EXPECT_EQ(model::reversedQuotient(32768, static_cast<uint16_t>(i + 1)),
                  bytes[1 + 2 * i] | bytes[2 + 2 * i] << 8);
}

class DivCRevThreads : public testing::TestWithParam<int> {};

TEST_P(DivCRevThreads, TheResultDoesNotDependOnThem)
{
    Random random(5);
    for (const int len : {2047, 2048, 2049, 4001}) {
        for (const int zeroAt : {-1, 0, len / 2 - 1, len / 2, len - 1}) {
            std::vector<uint16_t> source(static_cast<size_t>(len));
            for (uint16_t& d : source) d = random.in<uint16_t>(1, 65535);
            if (zeroAt >= 0)
                source[static_cast<size_t>(zeroAt)] = 0;
            std::vector<uint16_t> result(source.size());
            recorded::numThreads = GetParam();
            recorded::numThreadsCalls = 0;
            ASSERT_EQ(zeroAt >= 0 ? vekStsDivByZero : vekStsOk,
                      q3::veksDivCRev_16u(source.data(), 40000, result.data(), len));
            EXPECT_EQ(len < 2048 ? 0 : 1, recorded::numThreadsCalls) << "only a long array asks for threads";
            for (size_t i = 0; i < source.size(); ++i)
                ASSERT_EQ(model::reversedQuotient(40000, source[i]), result[i]) << i << " of " << len;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Counts, DivCRevThreads, testing::Values(1, 2, 3, 16, 2048, 5000));

TEST(DivCRevThreads, AFewEntriesStayOnTheCallingThread)
{
    uint16_t source[] = {3, 0, 9};
    uint16_t result[3] = {};
    recorded::numThreads = 4;  // more than entries
    EXPECT_EQ(vekStsDivByZero, q3::ownveksDivCRev_16u_omp(source, 32768, result, 3));
    EXPECT_EQ(10923, result[0]);
    EXPECT_EQ(65535, result[1]);
    EXPECT_EQ(3641, result[2]);
    recorded::numThreads = 3;
    EXPECT_EQ(vekStsDivByZero, q3::ownveksDivCRev_16u_omp(source, 32768, result, 3));
    EXPECT_EQ(3641, result[2]);
}

}  // namespace
