#include <gtest/gtest.h>

#include <cstring>

#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj.h"

namespace {

using support::GuardedBytes;
using support::Random;

TEST(SamplePlanes, SplitAndJoinEveryLengthAtAnyAddress)
{
    Random random(5);
    for (int length = 1; length <= 200; ++length) {
        const auto n = static_cast<size_t>(length);
        for (size_t off = 0; off < 2; ++off) {
            GuardedBytes samples(2 * n, support::Guard::Behind, off), joined(2 * n, support::Guard::Behind, off);
            GuardedBytes high(n), low(n);
            for (size_t i = 0; i < 2 * n; ++i) samples.data()[i] = random.any<uint8_t>();
            uint8_t* planes[2] = {high.data(), low.data()};
            const uint8_t* sources[2] = {high.data(), low.data()};
            ASSERT_EQ(vekStsOk,
                      vekiSplitRow_TIFF_16u8u_C1(reinterpret_cast<const uint16_t*>(samples.data()), planes, length));
            for (size_t i = 0; i < n; ++i) {
                ASSERT_EQ(samples.data()[2 * i + 1], high.data()[i]);
                ASSERT_EQ(samples.data()[2 * i], low.data()[i]);
            }
            ASSERT_EQ(vekStsOk, vekiJoinRow_TIFF_8u16u_C1(sources, reinterpret_cast<uint16_t*>(joined.data()), length));
            ASSERT_EQ(0, std::memcmp(samples.data(), joined.data(), 2 * n));
        }
    }
}

TEST(SamplePlanes, CheckTheirArgumentsInOrder)
{
    uint16_t samples[2] = {};
    uint8_t a[2] = {}, b[2] = {};
    uint8_t* planes[2] = {a, b};
    const uint8_t* sources[2] = {a, b};
    EXPECT_EQ(vekStsNullPointer, vekiSplitRow_TIFF_16u8u_C1(nullptr, planes, 0));
    EXPECT_EQ(vekStsNullPointer, vekiSplitRow_TIFF_16u8u_C1(samples, nullptr, 0));
    EXPECT_EQ(vekStsBadStep, vekiSplitRow_TIFF_16u8u_C1(samples, planes, 0));
    EXPECT_EQ(vekStsNullPointer, vekiJoinRow_TIFF_8u16u_C1(nullptr, samples, 0));
    EXPECT_EQ(vekStsNullPointer, vekiJoinRow_TIFF_8u16u_C1(sources, nullptr, 0));
    EXPECT_EQ(vekStsBadStep, vekiJoinRow_TIFF_8u16u_C1(sources, samples, -1));
}

}  // namespace
