// The level shift: every value, every width, gaps left alone, and the same bytes on any number of threads.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <vector>

#include "frame/recorded_core.h"
#include "reference/jpeg/quantisation.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "support/repeated_bytes.h"
#include "support/sanitizers.h"
#include "vekj/jpeg_samples.h"

namespace {

using support::Guard;
using support::GuardedBytes;
using support::Random;

// The two directions: type of source and destination, function, model.
struct Down {
    using From = uint8_t;
    using To = int16_t;
    static constexpr auto call = vekiSub128_JPEG_8u16s_C1R;
    static To expected(From v) { return model::levelShiftedDown(v); }
};
struct Up {
    using From = int16_t;
    using To = uint8_t;
    static constexpr auto call = vekiAdd128_JPEG_16s8u_C1R;
    static To expected(From v) { return model::levelShiftedUp(v); }
};

struct Layout {
    VekSize roi;
    int srcGap, dstGap;  // bytes behind each row but the last
    Guard guard = Guard::Behind;
    size_t srcMisalignment = 0;
    size_t dstMisalignment = 0;
};

template <typename Direction>
void expectShifted(const Layout& layout, Random& random)
{
    using From = typename Direction::From;
    using To = typename Direction::To;
    const auto [roi, srcGap, dstGap, guard, srcMisalignment, dstMisalignment] = layout;
    const size_t width = static_cast<size_t>(roi.width);
    const int srcStep = static_cast<int>(width * sizeof(From)) + srcGap;
    const int dstStep = static_cast<int>(width * sizeof(To)) + dstGap;
    const size_t rowsBefore = static_cast<size_t>(roi.height - 1);
    const size_t srcSize = rowsBefore * static_cast<size_t>(srcStep) + width * sizeof(From);
    const size_t dstSize = rowsBefore * static_cast<size_t>(dstStep) + width * sizeof(To);
    GuardedBytes source(srcSize, guard, srcMisalignment);
    GuardedBytes destination(dstSize, guard, dstMisalignment);
    std::memset(destination.data(), 0xA7, dstSize);
    std::vector<uint8_t> wanted(dstSize, 0xA7);
    for (size_t i = 0; i < srcSize; ++i) source.data()[i] = random.any<uint8_t>();
    for (size_t y = 0; y <= rowsBefore; ++y)
        for (size_t x = 0; x < width; ++x) {
            From from;
            uint8_t* const at = source.data() + y * static_cast<size_t>(srcStep) + x * sizeof from;
            if (sizeof from == 2 && random.chance(70)) {  // mostly about the range that is not clipped
                from = static_cast<From>(random.in(-140, 140));
                std::memcpy(at, &from, sizeof from);
            }
            std::memcpy(&from, at, sizeof from);
            const To to = Direction::expected(from);
            std::memcpy(wanted.data() + y * static_cast<size_t>(dstStep) + x * sizeof to, &to, sizeof to);
        }
    ASSERT_EQ(vekStsOk, Direction::call(reinterpret_cast<From*>(source.data()), srcStep,
                                        reinterpret_cast<To*>(destination.data()), dstStep, roi));
    ASSERT_EQ(0, std::memcmp(wanted.data(), destination.data(), dstSize))
        << roi.width << " x " << roi.height << ", gaps " << srcGap << " and " << dstGap << ", addresses off by "
        << srcMisalignment << " and " << dstMisalignment;
}

template <typename T>
class LevelShift : public testing::Test {
protected:
    void SetUp() override { recorded::numThreads = 2; }
};
using Directions = testing::Types<Down, Up>;
TYPED_TEST_SUITE(LevelShift, Directions);

TYPED_TEST(LevelShift, EveryWidth)
{
    Random random(1);
    for (int width = 1; width <= 300; ++width)
        for (const Guard guard : {Guard::Behind, Guard::Before})
            for (const auto& [srcGap, dstGap] : {std::pair(0, 0), {1, 3}, {16, 2}})
                expectShifted<TypeParam>({{width, 3}, srcGap, dstGap, guard}, random);
}

TYPED_TEST(LevelShift, EveryAlignmentOddAddressesToo)
{
    Random random(2);
    for (size_t src = 0; src < 33; ++src)
        for (size_t dst = 0; dst < 33; ++dst) {
            const int width = static_cast<int>(60 + (src * 33 + dst) % 100);
            expectShifted<TypeParam>({{width, 2}, 1, 1, Guard::Before, src, dst}, random);
        }
}

TYPED_TEST(LevelShift, AnyNumberOfThreadsGivesTheSameBytes)
{
    Random random(3);
    for (const int threads : {1, 2, 3, 7, 16}) {
        recorded::numThreads = threads;
        for (const VekSize roi : {VekSize{8192, 1}, {8193, 1}, {1, 8193}, {64, 129}, {333, 50}, {9000, 3}, {128, 300}})
            expectShifted<TypeParam>({roi, 5, 7}, random);
    }
}

TYPED_TEST(LevelShift, AsksForTheThreadsOnce)
{
    Random random(4);
    for (const VekSize roi : {VekSize{1, 1}, {8192, 1}, {100, 200}}) {
        recorded::numThreadsCalls = 0;
        expectShifted<TypeParam>({roi, 0, 0}, random);
        EXPECT_EQ(1, recorded::numThreadsCalls);
    }
}

TYPED_TEST(LevelShift, ChecksItsArgumentsInOrder)
{
    std::vector<typename TypeParam::From> source(8, 1);
    std::vector<typename TypeParam::To> destination(8, 77);
    const auto call = [&](bool src, int srcStep, bool dst, int dstStep, VekSize roi) {
        return TypeParam::call(src ? source.data() : nullptr, srcStep, dst ? destination.data() : nullptr, dstStep,
                               roi);
    };
    recorded::numThreadsCalls = 0;
    EXPECT_EQ(vekStsNullPointer, call(false, 0, false, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, call(true, 0, false, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, call(true, -1, false, 0, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, call(true, 1, false, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, call(true, 1, true, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, call(true, 1, true, -3, {0, 0}));
    EXPECT_EQ(vekStsBadSize, call(true, 1, true, 1, {0, 1}));
    EXPECT_EQ(vekStsBadSize, call(true, 1, true, 1, {1, 0}));
    EXPECT_EQ(vekStsBadSize, call(true, 1, true, 1, {-1, 1}));
    EXPECT_EQ(0, recorded::numThreadsCalls) << "a failed check reaches no parallel region";
    EXPECT_EQ(std::vector<typename TypeParam::To>(8, 77), destination);
}

TYPED_TEST(LevelShift, AStepShorterThanTheRowIsNoError)
{
    std::vector<typename TypeParam::From> source(64, 5);
    std::vector<typename TypeParam::To> destination(64, 0);
    EXPECT_EQ(vekStsOk, TypeParam::call(source.data(), 1, destination.data(), 2, {4, 1}));
    EXPECT_EQ(TypeParam::expected(5), destination[3]);
}

// An index that passes the end of an int is seen by UndefinedBehaviorSanitizer only.
TYPED_TEST(LevelShift, TheWidestRow)
{
    constexpr int width = support::underThreadSanitizer ? 1 << 24 : INT32_MAX;
    using From = typename TypeParam::From;
    using To = typename TypeParam::To;
    support::RepeatedBytes source(width * sizeof(From));
    support::RepeatedBytes destination(width * sizeof(To));
    std::memset(source.data(), 1, source.period);
    const auto* const from = reinterpret_cast<const From*>(source.data());
    auto* const to = reinterpret_cast<To*>(destination.data());
    recorded::numThreads = 1;
    ASSERT_EQ(vekStsOk, TypeParam::call(from, 1, to, 1, {width, 1}));
    for (size_t i = 0; i < destination.period / sizeof(To); ++i) ASSERT_EQ(TypeParam::expected(from[0]), to[i]);
}

TEST(LevelShiftDown, EveryByte)
{
    std::vector<uint8_t> source(256);
    std::vector<int16_t> destination(256);
    for (size_t i = 0; i < 256; ++i) source[i] = static_cast<uint8_t>(i);
    ASSERT_EQ(vekStsOk, vekiSub128_JPEG_8u16s_C1R(source.data(), 256, destination.data(), 512, {256, 1}));
    for (int i = 0; i < 256; ++i) EXPECT_EQ(i - 128, destination[static_cast<size_t>(i)]);
}

TEST(LevelShiftUp, EveryWord)
{
    recorded::numThreads = 2;
    std::vector<int16_t> source(65536);
    std::vector<uint8_t> destination(65536);
    for (size_t i = 0; i < 65536; ++i) source[i] = static_cast<int16_t>(i - 32768);
    for (const VekSize roi : {VekSize{65536, 1}, {64, 1024}, {7, 9362}}) {  // vectors and scalar tails
        destination.assign(65536, 0x11);
        ASSERT_EQ(vekStsOk,
                  vekiAdd128_JPEG_16s8u_C1R(source.data(), roi.width * 2, destination.data(), roi.width, roi));
        const auto count = static_cast<size_t>(roi.width) * static_cast<size_t>(roi.height);
        for (size_t i = 0; i < count; ++i) ASSERT_EQ(model::levelShiftedUp(source[i]), destination[i]) << source[i];
    }
}

TEST(LevelShiftUp, ClipsAtTheEndsOfTheRange)
{
    const int16_t source[] = {-32768, -129, -128, -127, 0, 126, 127, 128, 32767};
    uint8_t destination[9] = {};
    ASSERT_EQ(vekStsOk, vekiAdd128_JPEG_16s8u_C1R(source, 18, destination, 9, {9, 1}));
    EXPECT_EQ(std::vector<uint8_t>({0, 0, 0, 1, 128, 254, 255, 255, 255}),
              std::vector<uint8_t>(destination, destination + 9));
}

// A team of the OpenMP runtime stays alive after its region, so that the threads of this process tell.
int threadsOfThisProcess()
{
    int count = 0;
    for ([[maybe_unused]] const auto& task : std::filesystem::directory_iterator("/proc/self/task")) ++count;
    return count;
}

TEST(LevelShiftThreads, From8193SamplesOnARegionIsShared)
{
    constexpr int team = 24;  // more than any other test here has
    recorded::numThreads = team;
    std::vector<uint8_t> bytes(8193, 200);
    std::vector<int16_t> words(8193);
    ASSERT_LT(threadsOfThisProcess(), team);
    ASSERT_EQ(vekStsOk, vekiSub128_JPEG_8u16s_C1R(bytes.data(), 64, words.data(), 128, {64, 128}));
    ASSERT_EQ(vekStsOk, vekiAdd128_JPEG_16s8u_C1R(words.data(), 128, bytes.data(), 64, {64, 128}));
    EXPECT_LT(threadsOfThisProcess(), team) << "8192 samples stay on the calling thread";
    ASSERT_EQ(vekStsOk, vekiSub128_JPEG_8u16s_C1R(bytes.data(), 3, words.data(), 6, {3, 2731}));
    EXPECT_GE(threadsOfThisProcess(), team) << "8193 samples are shared";
    EXPECT_EQ(72, words[8192]);
}

}  // namespace
