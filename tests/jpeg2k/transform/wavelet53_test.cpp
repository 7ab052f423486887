// The reversible 5/3 filter in its row, column and ColLift forms.
#include <gtest/gtest.h>

#include <algorithm>

#include "jpeg2k/transform/collift_calls.h"
#include "jpeg2k/transform/wavelet_forms.h"
#include "vekj/jpeg2k_transform.h"

namespace {

using support::Guard;
using support::GuardedArray;
using support::Random;
using support::WaveletForm;

template <typename T>
struct Forms;
template <>
struct Forms<int16_t> {
    static constexpr WaveletForm<int16_t> rows = {
        "rows of 16s",    false,           1, vekiWTFwdRow_B53_JPEG2K_16s_C1R, vekiWTInvRow_B53_JPEG2K_16s_C1R,
        model::forward53, model::inverse53};
    static constexpr WaveletForm<int16_t> columns = {
        "columns of 16s", true, 1, vekiWTFwdCol_B53_JPEG2K_16s_C1R, vekiWTInvCol_B53_JPEG2K_16s_C1R, model::forward53,
        model::inverse53};
    static constexpr auto forwardStep = vekiWTFwdColLift_B53_JPEG2K_16s_C1;
    static constexpr auto inverseStep = vekiWTInvColLift_B53_JPEG2K_16s_C1;
};
template <>
struct Forms<int32_t> {
    static constexpr WaveletForm<int32_t> rows = {
        "rows of 32s",    false,           1, vekiWTFwdRow_B53_JPEG2K_32s_C1R, vekiWTInvRow_B53_JPEG2K_32s_C1R,
        model::forward53, model::inverse53};
    static constexpr WaveletForm<int32_t> columns = {
        "columns of 32s", true, 1, vekiWTFwdCol_B53_JPEG2K_32s_C1R, vekiWTInvCol_B53_JPEG2K_32s_C1R, model::forward53,
        model::inverse53};
    static constexpr auto forwardStep = vekiWTFwdColLift_B53_JPEG2K_32s_C1;
    static constexpr auto inverseStep = vekiWTInvColLift_B53_JPEG2K_32s_C1;
};

template <typename T>
class Wavelet53 : public testing::Test {
};
using Samples = testing::Types<int16_t, int32_t>;
TYPED_TEST_SUITE(Wavelet53, Samples);

TYPED_TEST(Wavelet53, RowsEqualTheModel) { checkEverywhere(Forms<TypeParam>::rows, 51); }
TYPED_TEST(Wavelet53, ColumnsEqualTheModel) { checkEverywhere(Forms<TypeParam>::columns, 52); }
TYPED_TEST(Wavelet53, LargeRegionsEqualTheirParts)
{
    checkLargeRegions(Forms<TypeParam>::rows, 53);
    checkLargeRegions(Forms<TypeParam>::columns, 54);
}
TYPED_TEST(Wavelet53, RowsCheckTheirArguments) { checkArguments(Forms<TypeParam>::rows); }
TYPED_TEST(Wavelet53, ColumnsCheckTheirArguments) { checkArguments(Forms<TypeParam>::columns); }

TYPED_TEST(Wavelet53, EveryPhaseButZeroIsOdd)
{
    using T = TypeParam;
    const std::vector<T> x = {5, 9, -3, 100, 40, 7, 8, 1};
    const auto odd = model::forward53(&x[2], 2, 1);
    for (const int phase : {1, 2, -1, 256, 65536}) {
        T low[2], high[2];
        ASSERT_EQ(vekStsOk, Forms<T>::rows.forward(&x[2], 64, low, 64, high, 64, {2, 1}, phase));
        EXPECT_EQ(odd.low, std::vector<T>(low, low + 2)) << phase;
        EXPECT_EQ(odd.high, std::vector<T>(high, high + 2)) << phase;
    }
}

TYPED_TEST(Wavelet53, OnePairAtAnOddPositionReadsFiveSamples)
{
    using T = TypeParam;
    GuardedArray<T> x(5);
    std::copy_n(std::vector<T>{10, 20, 40, 80, 200}.begin(), 5, x.begin());
    T low = 0, high = 0;
    ASSERT_EQ(vekStsOk, Forms<T>::rows.forward(x.data() + 1, 64, &low, 64, &high, 64, {1, 1}, 1));
    EXPECT_EQ(20 - ((10 + 40) >> 1), high);
    const int next = 80 - ((40 + 200) >> 1);
    EXPECT_EQ(40 + ((high + next + 2) >> 2), low);
}

// All samples of the line are e, but the details are as given: L - e is the correction.
TYPED_TEST(Wavelet53, TheRoundingTermStandsInsideTheShift)
{
    using T = TypeParam;
    const auto correction = [](int sumOfDetails) {
        const auto details = static_cast<T>(sumOfDetails);
        const T line[5] = {0, details, 0, 0, 0};
        T low = 0, high = 0;
        EXPECT_EQ(vekStsOk, Forms<T>::rows.forward(line + 2, 64, &low, 64, &high, 64, {1, 1}, 0));
        return static_cast<int>(low);
    };
    EXPECT_EQ(0, correction(-2));
    EXPECT_EQ(-1, correction(-3));
    EXPECT_EQ(0, correction(1));
    EXPECT_EQ(1, correction(2));
}

// Forward, then inverse, over lines that go on beyond what is compared.
TYPED_TEST(Wavelet53, TheInverseUndoesFifteenBits)
{
    using T = TypeParam;
    Random random(53);
    for (const int phase : {0, 1})
        for (int pairs = 1; pairs < 80; ++pairs) {
            std::vector<T> x(static_cast<size_t>(2 * pairs + 12));
            for (T& v : x) v = random.in<T>(-16384, 16383);
            std::vector<T> low(static_cast<size_t>(pairs + 2)), high(low), back(static_cast<size_t>(2 * pairs));
            ASSERT_EQ(vekStsOk, Forms<T>::rows.forward(&x[4], 8, low.data(), 8, high.data(), 8, {pairs + 2, 1}, phase));
            // low[i] and high[i] stand one pair before those of the line that is put together again.
            ASSERT_EQ(vekStsOk, Forms<T>::rows.inverse(&low[1], 8, &high[1], 8, {pairs, 1}, back.data(), 8, phase));
            ASSERT_TRUE(std::equal(back.begin(), back.end(), x.begin() + 6)) << pairs << ", phase " << phase;
        }
}

TYPED_TEST(Wavelet53, ColumnsMayBeFilteredInPlace)
{
    using T = TypeParam;
    Random random(54);
    constexpr int width = 300, pairs = 12;
    std::vector<T> block(width * (2 * pairs + 3));
    random.fill(block);
    const std::vector<T> original = block;
    constexpr int step = width * static_cast<int>(sizeof(T));
    T* const first = &block[2 * width];
    ASSERT_EQ(vekStsOk,
              Forms<T>::columns.forward(first, step, first, 2 * step, first + width, 2 * step, {width, pairs}, 0));
    for (size_t x = 0; x < width; ++x) {
        std::vector<T> column;
        for (size_t y = 0; y < 2 * pairs + 3; ++y) column.push_back(original[y * width + x]);
        const auto bands = model::forward53(&column[2], pairs, 0);
        for (size_t i = 0; i < pairs; ++i) {
            ASSERT_EQ(bands.low[i], block[(2 + 2 * i) * width + x]);
            ASSERT_EQ(bands.high[i], block[(3 + 2 * i) * width + x]);
        }
    }
}

// Rows of the steps, in the order of the arguments.
template <typename T>
void forwardStepModel(const std::vector<T*>& row, int i)
{
    row[5][i] = model::minusHalf(row[1][i], row[0][i], row[2][i]);
    row[3][i] = model::plusQuarter(row[0][i], row[4][i], row[5][i]);
}
template <typename T>
void inverseStepModel(const std::vector<T*>& row, int i)
{
    row[5][i] = model::minusQuarter(row[0][i], row[1][i], row[2][i]);
    row[4][i] = model::plusHalf(row[1][i], row[5][i], row[3][i]);
}

TYPED_TEST(Wavelet53, ForwardStepsEqualTheModel)
{
    support::checkSteps<TypeParam, 6>(Forms<TypeParam>::forwardStep, forwardStepModel<TypeParam>, 55);
}
TYPED_TEST(Wavelet53, InverseStepsEqualTheModel)
{
    support::checkSteps<TypeParam, 6>(Forms<TypeParam>::inverseStep, inverseStepModel<TypeParam>, 56);
}
TYPED_TEST(Wavelet53, ForwardStepsMayWriteTheRowsTheyRead)
{
    support::checkStepsOnSharedRows<TypeParam, 6>(Forms<TypeParam>::forwardStep, forwardStepModel<TypeParam>,
                                                  {0, 1, 2, 0, 4, 1}, 57);
}
TYPED_TEST(Wavelet53, InverseStepsMayWriteTheRowsTheyRead)
{
    support::checkStepsOnSharedRows<TypeParam, 6>(Forms<TypeParam>::inverseStep, inverseStepModel<TypeParam>,
                                                  {0, 1, 2, 3, 1, 0}, 58);
}
TYPED_TEST(Wavelet53, StepsCheckTheirArguments)
{
    support::checkStepArguments<TypeParam, 6>(Forms<TypeParam>::forwardStep);
    support::checkStepArguments<TypeParam, 6>(Forms<TypeParam>::inverseStep);
}

}  // namespace
