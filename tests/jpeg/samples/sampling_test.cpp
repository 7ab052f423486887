// Chroma sampling against its definition: all widths, every destination address, gaps that stay untouched.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/jpeg_samples.h"

namespace {

using support::Guard;
using support::GuardedBytes;
using support::Random;

constexpr uint8_t untouched = 0xA5;

std::vector<uint8_t> randomRow(size_t size, Random& random)
{
    std::vector<uint8_t> row(size);
    for (uint8_t& v : row) v = random.chance(20) ? random.extreme<uint8_t>() : random.any<uint8_t>();
    return row;
}

// Source bytes right before an unmapped page.
struct Row {
    explicit Row(const std::vector<uint8_t>& values) : memory(values.size())
    {
        std::copy(values.begin(), values.end(), memory.data());
    }
    const uint8_t* data() { return memory.data(); }
    GuardedBytes memory;
};

// Runs `function(dst)` on `size` bytes at an address that is `offset` modulo 16, with bytes around that must stay.
std::vector<uint8_t> resultAt(size_t offset, size_t size, const std::function<VekStatus(uint8_t*)>& function)
{
    std::vector<uint8_t> buffer(size + 64, untouched);
    uint8_t* dst = buffer.data();
    while (reinterpret_cast<uintptr_t>(dst) % 16 != offset) ++dst;
    EXPECT_EQ(vekStsOk, function(dst));
    const std::vector<uint8_t> result(dst, dst + size);
    std::fill(dst, dst + size, untouched);
    EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](uint8_t v) { return v == untouched; }));
    return result;
}

int boxBias(int srcWidth, int j)
{
    if (srcWidth >= 16)
        return j % 2;
    return (srcWidth / 2 - 1 - j) % 2;
}

TEST(SampleDownRow, H2V1EqualsItsDefinitionAtEveryAddress)
{
    Random random(1);
    for (int width = 1; width <= 150; ++width)
        for (size_t offset = 0; offset < 16; ++offset) {
            const auto s = randomRow(static_cast<size_t>(width), random);
            Row src(s);
            const auto count = static_cast<size_t>(width / 2);
            const int k = static_cast<int>((16 - offset) % 16);
            const size_t due = width >= 16 && width - k <= k ? static_cast<size_t>((width - k) / 2) : count;
            std::vector<uint8_t> want(count, untouched);
            for (size_t j = 0; j < due; ++j)
                want[j] = static_cast<uint8_t>((s[2 * j] + s[2 * j + 1] + boxBias(width, static_cast<int>(j))) >> 1);
            ASSERT_EQ(want, resultAt(offset, count,
                                     [&](uint8_t* dst) {
                                         return vekiSampleDownRowH2V1_Box_JPEG_8u_C1(src.data(), width, dst);
                                     }))
                << width << " at " << offset;
        }
}

TEST(SampleDownRow, BiasesOfShortRowsAreAnchoredAtTheEnd)
{
    const std::vector<uint8_t> s = {0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1};
    alignas(16) uint8_t dst[8];
    ASSERT_EQ(vekStsOk, vekiSampleDownRowH2V1_Box_JPEG_8u_C1(s.data(), 8, dst));
    EXPECT_EQ((std::vector<uint8_t>{1, 0, 1, 0}), std::vector<uint8_t>(dst, dst + 4));
    ASSERT_EQ(vekStsOk, vekiSampleDownRowH2V1_Box_JPEG_8u_C1(s.data(), 14, dst));
    EXPECT_EQ((std::vector<uint8_t>{0, 1, 0, 1, 0, 1, 0}), std::vector<uint8_t>(dst, dst + 7));
}

TEST(SampleDownRow, OneByteBehindABoundarySixteenSamplesGiveNoResult)
{
    Random random(2);
    const auto s = randomRow(16, random);
    EXPECT_EQ(std::vector<uint8_t>(8, untouched),
              resultAt(1, 8, [&](uint8_t* dst) { return vekiSampleDownRowH2V1_Box_JPEG_8u_C1(s.data(), 16, dst); }));
}

TEST(SampleDownRow, H2V2EqualsItsDefinition)
{
    Random random(3);
    for (int width = 1; width <= 150; ++width) {
        const auto a = randomRow(static_cast<size_t>(width), random);
        const auto b = randomRow(static_cast<size_t>(width), random);
        Row rowA(a);
        Row rowB(b);
        std::vector<uint8_t> want(static_cast<size_t>(width / 2));
        for (size_t j = 0; j < want.size(); ++j)
            want[j] =
                static_cast<uint8_t>((a[2 * j] + a[2 * j + 1] + b[2 * j] + b[2 * j + 1] + (j % 2 == 0 ? 1 : 2)) >> 2);
        ASSERT_EQ(want, resultAt(random.in<size_t>(0, 15), want.size(),
                                 [&](uint8_t* dst) {
                                     return vekiSampleDownRowH2V2_Box_JPEG_8u_C1(rowA.data(), rowB.data(), width, dst);
                                 }))
            << width;
    }
}

TEST(SampleUpRow, H2V1EqualsItsDefinition)
{
    Random random(4);
    for (int width = 1; width <= 150; ++width) {
        const auto s = randomRow(static_cast<size_t>(width), random);
        Row src(s);
        std::vector<uint8_t> want(2 * s.size());
        for (size_t i = 0; i < s.size(); ++i) {
            want[2 * i] = static_cast<uint8_t>(i == 0 ? s[0] : (3 * s[i] + s[i - 1] + 1) >> 2);
            want[2 * i + 1] = static_cast<uint8_t>(i + 1 == s.size() ? s[i] : (3 * s[i] + s[i + 1] + 2) >> 2);
        }
        ASSERT_EQ(want, resultAt(random.in<size_t>(0, 15), want.size(),
                                 [&](uint8_t* dst) {
                                     return vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(src.data(), width, dst);
                                 }))
            << width;
    }
}

TEST(SampleUpRow, H2V2EqualsItsDefinition)
{
    Random random(5);
    for (int width = 1; width <= 150; ++width) {
        const auto a = randomRow(static_cast<size_t>(width), random);
        const auto b = randomRow(static_cast<size_t>(width), random);
        Row rowA(a);
        Row rowB(b);
        std::vector<uint8_t> want(2 * a.size());
        const auto t = [&](size_t i) { return 3 * a[i] + b[i]; };
        for (size_t i = 0; i < a.size(); ++i) {
            want[2 * i] = static_cast<uint8_t>((i == 0 ? 4 * t(0) + 8 : 3 * t(i) + t(i - 1) + 8) >> 4);
            want[2 * i + 1] = static_cast<uint8_t>((i + 1 == a.size() ? 4 * t(i) + 7 : 3 * t(i) + t(i + 1) + 7) >> 4);
        }
        ASSERT_EQ(want, resultAt(random.in<size_t>(0, 15), want.size(),
                                 [&](uint8_t* dst) {
                                     return vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(rowA.data(), rowB.data(), width,
                                                                                    dst);
                                 }))
            << width;
    }
}

TEST(SampleRows, ConstantRowsStayConstant)
{
    for (int v : {0, 1, 77, 254, 255}) {
        const std::vector<uint8_t> s(40, static_cast<uint8_t>(v));
        alignas(16) uint8_t dst[80];
        const auto all = [&](int count) { return std::all_of(dst, dst + count, [v](uint8_t x) { return x == v; }); };
        vekiSampleDownRowH2V1_Box_JPEG_8u_C1(s.data(), 40, dst);
        EXPECT_TRUE(all(20));
        vekiSampleDownRowH2V2_Box_JPEG_8u_C1(s.data(), s.data(), 40, dst);
        EXPECT_TRUE(all(20));
        vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s.data(), 40, dst);
        EXPECT_TRUE(all(80));
        vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s.data(), s.data(), 40, dst);
        EXPECT_TRUE(all(80));
    }
}

TEST(SampleRows, CheckPointersThenTheWidth)
{
    uint8_t row[4] = {1, 2, 3, 4};
    uint8_t dst[8] = {};
    EXPECT_EQ(vekStsNullPointer, vekiSampleDownRowH2V1_Box_JPEG_8u_C1(nullptr, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleDownRowH2V1_Box_JPEG_8u_C1(row, 0, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiSampleDownRowH2V1_Box_JPEG_8u_C1(row, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleDownRowH2V2_Box_JPEG_8u_C1(nullptr, row, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleDownRowH2V2_Box_JPEG_8u_C1(row, nullptr, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleDownRowH2V2_Box_JPEG_8u_C1(row, row, 0, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiSampleDownRowH2V2_Box_JPEG_8u_C1(row, row, -1, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(nullptr, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(row, 0, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1(row, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(nullptr, row, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(row, nullptr, 0, dst));
    EXPECT_EQ(vekStsNullPointer, vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(row, row, 0, nullptr));
    EXPECT_EQ(vekStsBadSize, vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1(row, row, 0, dst));
    EXPECT_EQ(0, dst[0]);
}

// Whole planes. `value(s, step, i, j)` is the definition of a result in terms of the source's sample (0, 0).
using PlaneFunction = VekStatus (*)(const uint8_t*, int, VekSize, uint8_t*, int, VekSize);
struct PlaneMember {
    const char* name;
    PlaneFunction function;
    int (*value)(const uint8_t* s, int step, int i, int j);
    bool up, rows;  // doubles; works on two rows
};

int downH2V1(const uint8_t* s, int step, int i, int j)
{
    const uint8_t* const p = s + step * i + 2 * j;
    return (p[0] + p[1] + 1) >> 1;
}
int downH2V2(const uint8_t* s, int step, int i, int j)
{
    const uint8_t* const p = s + 2 * step * i + 2 * j;
    return (p[0] + p[1] + p[step] + p[step + 1] + 3) >> 2;
}
int upH2V1(const uint8_t* s, int step, int i, int j)
{
    const uint8_t* const p = s + step * i + j / 2;
    return j % 2 == 0 ? (3 * p[0] + p[-1] + 1) >> 2 : (3 * p[0] + p[1] + 2) >> 2;
}
int upH2V2(const uint8_t* s, int step, int k, int j)
{
    const uint8_t* const a = s + step * (k / 2) + j / 2;
    const uint8_t* const b = k % 2 != 0 ? a + step : a - step;
    const auto t = [&](int x) { return 3 * a[x] + b[x]; };
    return j % 2 == 0 ? (3 * t(0) + t(-1) + 8) >> 4 : (3 * t(0) + t(1) + 7) >> 4;
}

constexpr PlaneMember planeMembers[] = {
    {"DownH2V1", vekiSampleDownH2V1_JPEG_8u_C1R, downH2V1, false, false},
    {"DownH2V2", vekiSampleDownH2V2_JPEG_8u_C1R, downH2V2, false, true},
    {"UpH2V1", vekiSampleUpH2V1_JPEG_8u_C1R, upH2V1, true, false},
    {"UpH2V2", vekiSampleUpH2V2_JPEG_8u_C1R, upH2V2, true, true},
};

class SamplePlane : public testing::TestWithParam<PlaneMember> {
protected:
    // The source holds just what may be read, and ends at an unmapped page.
    void expectPlane(VekSize size, Random& random)
    {
        const PlaneMember& m = GetParam();
        const int left = m.up ? 1 : 0;
        const int columns = m.up ? size.width / 2 + 2 : 2 * size.width;
        const int above = m.up && m.rows ? 1 : 0;
        const int rows = m.up ? (m.rows ? (size.height + 1) / 2 + 1 + (size.height % 2 == 0 ? 1 : 0) : size.height)
                              : size.height * (m.rows ? 2 : 1);
        const int step = columns + random.in(0, 7);
        const size_t bytes = static_cast<size_t>(step) * static_cast<size_t>(rows - 1) + static_cast<size_t>(columns);
        GuardedBytes src(bytes);
        for (size_t i = 0; i < bytes; ++i) src.data()[i] = random.any<uint8_t>();
        const uint8_t* const origin = src.data() + step * above + left;
        const int dstStep = size.width + random.in(0, 5);
        std::vector<uint8_t> dst(static_cast<size_t>(dstStep) * static_cast<size_t>(size.height), untouched);
        std::vector<uint8_t> want = dst;
        for (int i = 0; i < size.height; ++i)
            for (int j = 0; j < size.width; ++j)
                want[static_cast<size_t>(dstStep * i + j)] = static_cast<uint8_t>(m.value(origin, step, i, j));
        ASSERT_EQ(vekStsOk, m.function(origin, step, {1, 1}, dst.data(), dstStep, size));
        ASSERT_EQ(want, dst) << size.width << " x " << size.height;
    }
};

TEST_P(SamplePlane, EqualsItsDefinitionInEveryWidth)
{
    Random random(6);
    for (int width = 1; width <= 150; ++width) {
        expectPlane({width, random.in(1, 5)}, random);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(SamplePlane, IsTheSameForEveryNumberOfThreads)
{
    Random random(7);
    const int before = omp_get_max_threads();
    for (int threads : {1, 2, 6}) {
        omp_set_num_threads(threads);
        for (const VekSize size : {VekSize{8192, 1}, VekSize{64, 128}, VekSize{2731, 3}, VekSize{131, 77}})
            expectPlane(size, random);
    }
    omp_set_num_threads(before);
}

TEST_P(SamplePlane, ChecksItsArgumentsInOrder)
{
    const auto function = GetParam().function;
    std::vector<uint8_t> src(400);
    uint8_t dst[16] = {9};
    const VekSize one = {1, 1};
    const VekSize none = {0, 1};
    const uint8_t* const s = src.data() + 200;
    EXPECT_EQ(vekStsNullPointer, function(nullptr, 0, none, nullptr, 0, none));
    EXPECT_EQ(vekStsBadStep, function(s, 0, none, nullptr, 0, none));
    EXPECT_EQ(vekStsBadSize, function(s, 20, none, nullptr, 0, none));
    EXPECT_EQ(vekStsBadSize, function(s, 20, {1, 0}, nullptr, 0, none));
    EXPECT_EQ(vekStsNullPointer, function(s, 20, one, nullptr, 0, none));
    EXPECT_EQ(vekStsBadStep, function(s, 20, one, dst, -1, none));
    EXPECT_EQ(vekStsBadSize, function(s, 20, one, dst, 1, none));
    EXPECT_EQ(9, dst[0]);
    EXPECT_EQ(vekStsOk, function(s, 20, one, dst, 1, one));
}

INSTANTIATE_TEST_SUITE_P(Members, SamplePlane, testing::ValuesIn(planeMembers),
                         [](const auto& member) { return std::string(member.param.name); });

}  // namespace
