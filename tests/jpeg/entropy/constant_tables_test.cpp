#include "jpeg/entropy/constant_tables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(EntropyConstants, SizesAreThoseOfTheirIndices)
{
    ASSERT_EQ(256U, q3::own_jc_csize.size());
    ASSERT_EQ(512U, q3::own_jc_eobsize.size());
    EXPECT_EQ(0, q3::own_jc_csize[0]);
    EXPECT_EQ(0, q3::own_jc_eobsize[0]);
    for (size_t i = 1; i < 512; ++i) {
        const int log = static_cast<int>(std::floor(std::log2(static_cast<double>(i))));
        EXPECT_EQ(log, q3::own_jc_eobsize[i]) << i;
        if (i < 256) {
            EXPECT_EQ(log + 1, q3::own_jc_csize[i]) << i;
        }
    }
}

TEST(EntropyConstants, MagnitudesAndTheirLimits)
{
    constexpr std::array<int32_t, 16> lowest = {0,    -1,   -3,    -7,    -15,   -31,   -63,    -127,
                                                -255, -511, -1023, -2047, -4095, -8191, -16383, -32767};
    constexpr std::array<int32_t, 16> test = {0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384};
    EXPECT_EQ(lowest, q3::own_jc_lowest_coef);
    EXPECT_EQ(lowest, q3::own_jc_extend_offset);
    EXPECT_EQ(test, q3::own_jc_extend_test);
    EXPECT_EQ(test, q3::own_jc_twoexpnminusone);
}

// ITU T.81, Figure A.6: the place in zig-zag order of each coefficient, row by row.
TEST(EntropyConstants, TheZigzagOrderIsThatOfTheStandardWithEightGuards)
{
    constexpr std::array<size_t, 64> figure = {0,  1,  5,  6,  14, 15, 27, 28, 2,  4,  7,  13, 16, 26, 29, 42,
                                               3,  8,  12, 17, 25, 30, 41, 43, 9,  11, 18, 24, 31, 40, 44, 53,
                                               10, 19, 23, 32, 39, 45, 52, 54, 20, 22, 33, 38, 46, 51, 55, 60,
                                               21, 34, 37, 47, 50, 56, 59, 61, 35, 36, 48, 49, 57, 58, 62, 63};
    ASSERT_EQ(72U, q3::own_jc_izigzag_index.size());
    for (size_t i = 0; i < 64; ++i) EXPECT_EQ(static_cast<int32_t>(i), q3::own_jc_izigzag_index[figure[i]]);
    for (size_t k = 64; k < 72; ++k) EXPECT_EQ(63, q3::own_jc_izigzag_index[k]);
}

}  // namespace
