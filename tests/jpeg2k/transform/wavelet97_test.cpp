// The irreversible 9/7 filter in its row, column and ColLift forms, each in the arithmetics of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "jpeg2k/transform/collift_calls.h"
#include "jpeg2k/transform/wavelet_forms.h"
#include "reference/jpeg2k/wavelet97.h"
#include "vekj/jpeg2k_transform.h"

namespace {

using support::GuardedArray;
using support::Random;
using support::WaveletForm;

template <typename T>
struct Arithmetics;
template <>
struct Arithmetics<int16_t> {
    static constexpr const model::Stages<int16_t>& ends = model::q16Clipped;
    static constexpr const model::Stages<int16_t>& interior = model::q15;
};
template <>
struct Arithmetics<int32_t> {
    static constexpr const model::Stages<int32_t>& ends = model::q16;
    static constexpr const model::Stages<int32_t>& interior = model::q16;
};
template <>
struct Arithmetics<float> {
    static constexpr const model::Stages<float>& ends = model::fusedFloat;
    static constexpr const model::Stages<float>& interior = model::separateFloat;
};

template <typename T>
model::Bands<T> liftedForward(const T* x, int pairs, int phase)
{
    return model::forward97(x, pairs, phase, Arithmetics<T>::ends, Arithmetics<T>::interior);
}
template <typename T>
model::Bands<T> rowForward(const T* x, int pairs, int phase)
{
    return pairs == 1 ? model::nineTaps(x + phase, x + 1 - phase) : liftedForward(x, pairs, phase);
}
template <typename T>
std::vector<T> liftedInverse(const T* low, const T* high, int pairs, int phase)
{
    return model::inverse97(low, high, pairs, phase, Arithmetics<T>::ends, Arithmetics<T>::interior);
}

template <typename T>
struct Forms;
template <>
struct Forms<int16_t> {
    static constexpr WaveletForm<int16_t> rows = {
        "rows of 16s", false,        2, vekiWTFwdRow_D97_JPEG2K_16s_C1R, vekiWTInvRow_D97_JPEG2K_16s_C1R,
        rowForward,    liftedInverse};
    static constexpr auto forwardStep = vekiWTFwdColLift_D97_JPEG2K_16s_C1;
    static constexpr auto inverseStep = vekiWTInvColLift_D97_JPEG2K_16s_C1;
};
template <>
struct Forms<int32_t> {
    static constexpr WaveletForm<int32_t> rows = {
        "rows of 32s", false,        2, vekiWTFwdRow_D97_JPEG2K_32s_C1R, vekiWTInvRow_D97_JPEG2K_32s_C1R,
        rowForward,    liftedInverse};
    static constexpr auto forwardStep = vekiWTFwdColLift_D97_JPEG2K_32s_C1;
    static constexpr auto inverseStep = vekiWTInvColLift_D97_JPEG2K_32s_C1;
};
template <>
struct Forms<float> {
    static constexpr WaveletForm<float> rows = {
        "rows of 32f", false,        2, vekiWTFwdRow_D97_JPEG2K_32f_C1R, vekiWTInvRow_D97_JPEG2K_32f_C1R,
        rowForward,    liftedInverse};
    static constexpr auto forwardStep = vekiWTFwdColLift_D97_JPEG2K_32f_C1;
    static constexpr auto inverseStep = vekiWTInvColLift_D97_JPEG2K_32f_C1;
};
constexpr WaveletForm<float> columns = {
    "columns of 32f", true,         2, vekiWTFwdCol_D97_JPEG2K_32f_C1R, vekiWTInvCol_D97_JPEG2K_32f_C1R,
    liftedForward,    liftedInverse};

template <typename T>
class Wavelet97 : public testing::Test {
};
using Samples = testing::Types<int16_t, int32_t, float>;
TYPED_TEST_SUITE(Wavelet97, Samples);

TYPED_TEST(Wavelet97, RowsEqualTheModel) { checkEverywhere(Forms<TypeParam>::rows, 71); }
TYPED_TEST(Wavelet97, LargeRegionsOfRowsEqualTheirParts) { checkLargeRegions(Forms<TypeParam>::rows, 73); }
TYPED_TEST(Wavelet97, RowsCheckTheirArguments) { checkArguments(Forms<TypeParam>::rows); }
TEST(Wavelet97Columns, EqualTheModel) { checkEverywhere(columns, 72); }
TEST(Wavelet97Columns, LargeRegionsEqualTheirParts) { checkLargeRegions(columns, 74); }
TEST(Wavelet97Columns, CheckTheirArguments) { checkArguments(columns); }

// A line of 2 * pairs samples mirrored at its ends, beginning at sample -4 of it; phase 0.
template <typename T>
std::vector<T> mirroredLine(const std::vector<T>& line)
{
    const int n = static_cast<int>(line.size());
    std::vector<T> result;
    for (int i = -4; i < n + 4; ++i) {
        int at = i;
        while (at < 0 || at >= n) at = at < 0 ? -at : 2 * (n - 1) - at;
        result.push_back(line[static_cast<size_t>(at)]);
    }
    return result;
}

TYPED_TEST(Wavelet97, TheInverseUndoesTheForwardFilterButForRounding)
{
    using T = TypeParam;
    Random random(73);
    for (const int pairs : {8, 20, 61}) {
        std::vector<T> line(static_cast<size_t>(2 * pairs));
        for (T& v : line) v = static_cast<T>(random.in(-2000, 2000));
        const std::vector<T> x = mirroredLine(line);
        const auto count = static_cast<size_t>(pairs);
        std::vector<T> low(count + 4), high(count + 4), back(2 * count);
        ASSERT_EQ(vekStsOk, Forms<T>::rows.forward(&x[4], 8, &low[2], 8, &high[2], 8, {pairs, 1}, 0));
        for (size_t i = 0; i < 2; ++i) {  // low mirrored about x[0] and about x[2 * pairs - 1], high likewise
            low[1 - i] = low[3 + i];
            high[1 - i] = high[2 + i];
            low[count + 2 + i] = low[count + 1 - i];
            high[count + 2 + i] = high[count - i];
        }
        ASSERT_EQ(vekStsOk, Forms<T>::rows.inverse(&low[2], 8, &high[2], 8, {pairs, 1}, back.data(), 8, 0));
        for (size_t i = 0; i < 2 * count; ++i)
            ASSERT_NEAR(static_cast<double>(line[i]), static_cast<double>(back[i]), 4.0) << i << " of " << 2 * pairs;
    }
}

TYPED_TEST(Wavelet97, ASinglePairGoesThroughTheTaps)
{
    using T = TypeParam;
    Random random(74);
    bool differs = false;
    for (int repeat = 0; repeat < 200; ++repeat) {
        std::vector<T> x(9);
        for (T& v : x) v = static_cast<T>(random.in(-1000, 1000));
        T low = 0, high = 0;
        ASSERT_EQ(vekStsOk, Forms<T>::rows.forward(&x[4], 8, &low, 8, &high, 8, {1, 1}, 0));
        const auto taps = model::nineTaps(&x[4], &x[5]);
        ASSERT_EQ(taps.low[0], low);
        ASSERT_EQ(taps.high[0], high);
        const auto lifted = liftedForward(&x[4], 1, 0);
        ASSERT_NEAR(static_cast<double>(lifted.low[0]), static_cast<double>(low), 2.5);
        ASSERT_NEAR(static_cast<double>(lifted.high[0]), static_cast<double>(high), 3.5);
        differs = differs || lifted.low[0] != low;
    }
    EXPECT_TRUE(differs);
}

TEST(Wavelet97Rows, TwoPairsOfSixteenBitsAreBothEnds)
{
    Random random(75);
    for (int repeat = 0; repeat < 500; ++repeat) {
        std::vector<int16_t> x(12);
        random.fill(x);
        int16_t low[2], high[2];
        ASSERT_EQ(vekStsOk, vekiWTFwdRow_D97_JPEG2K_16s_C1R(&x[4], 24, low, 4, high, 4, {2, 1}, 0));
        const auto all = model::forward97(&x[4], 2, 0, model::q16Clipped, model::q16Clipped);
        ASSERT_EQ(all.low, std::vector<int16_t>(low, low + 2));
        ASSERT_EQ(all.high, std::vector<int16_t>(high, high + 2));
    }
}

TEST(Wavelet97Rows, EndsAndInteriorOfSixteenBitsAreTwoArithmetics)
{
    Random random(76);
    int endsDiffer = 0, interiorsDiffer = 0;
    for (int repeat = 0; repeat < 50; ++repeat) {
        std::vector<int16_t> x(140), low(64), high(64);
        for (auto& v : x) v = random.in<int16_t>(-3000, 3000);
        ASSERT_EQ(vekStsOk, vekiWTFwdRow_D97_JPEG2K_16s_C1R(&x[4], 280, low.data(), 128, high.data(), 128, {64, 1}, 0));
        const auto q16 = model::forward97(&x[4], 64, 0, model::q16Clipped, model::q16Clipped);
        const auto q15 = model::forward97(&x[4], 64, 0, model::q15, model::q15);
        ASSERT_EQ(q16.low[0], low[0]);
        ASSERT_TRUE(std::equal(low.begin() + 4, low.end() - 4, q15.low.begin() + 4));
        endsDiffer += q15.low[0] != low[0];
        interiorsDiffer += q16.low != low;
    }
    EXPECT_GT(endsDiffer, 0);
    EXPECT_EQ(50, interiorsDiffer);
}

TEST(Wavelet97Rows, EndsAndInteriorOfFloatsDifferInTheLastBit)
{
    Random random(77);
    std::vector<float> x(140);
    for (auto& v : x) v = static_cast<float>(random.in(-3000000, 3000000)) / 1024.0F;
    std::vector<float> low(64), high(64);
    ASSERT_EQ(vekStsOk, vekiWTFwdRow_D97_JPEG2K_32f_C1R(&x[4], 560, low.data(), 256, high.data(), 256, {64, 1}, 0));
    const auto fused = model::forward97(&x[4], 64, 0, model::fusedFloat, model::fusedFloat);
    const auto separate = model::forward97(&x[4], 64, 0, model::separateFloat, model::separateFloat);
    EXPECT_NE(fused.low, low);
    EXPECT_EQ(fused.low[0], low[0]);
    EXPECT_EQ(fused.high[0], high[0]);
    EXPECT_TRUE(std::equal(low.begin() + 4, low.end() - 4, separate.low.begin() + 4));
}

// Whether all fifteen stage results saturate or not, a flat line gives the gain of the filter: 1 for low, 0 for high.
TEST(Wavelet97Rows, AFlatLineOfTheGreatestSixteenBitNumberStaysInRange)
{
    for (const int width : {1, 2, 3, 20, 64}) {
        const std::vector<int16_t> x(static_cast<size_t>(2 * width + 8), 32767);
        std::vector<int16_t> low(static_cast<size_t>(width)), high(low);
        ASSERT_EQ(vekStsOk,
                  vekiWTFwdRow_D97_JPEG2K_16s_C1R(&x[4], 400, low.data(), 200, high.data(), 200, {width, 1}, 0));
        const auto expected = rowForward(&x[4], width, 0);
        EXPECT_EQ(expected.low, low);
        EXPECT_EQ(expected.high, high);
        for (const int16_t v : low) EXPECT_GT(v, 26000) << width;
    }
}

// Alternating extremes make every stage overflow: in both arithmetics the stages saturate, one by one.
TEST(Wavelet97Rows, EveryStageOfSixteenBitsSaturates)
{
    for (const int16_t first : {int16_t{32767}, int16_t{-32768}})
        for (const int phase : {0, 1}) {
            std::vector<int16_t> x(72);
            for (size_t i = 0; i < x.size(); ++i) x[i] = i % 2 == 0 ? first : static_cast<int16_t>(-1 - first);
            std::vector<int16_t> low(32), high(32);
            ASSERT_EQ(vekStsOk,
                      vekiWTFwdRow_D97_JPEG2K_16s_C1R(&x[4], 144, low.data(), 64, high.data(), 64, {32, 1}, phase));
            const auto expected = rowForward(&x[4], 32, phase);
            EXPECT_EQ(expected.low, low);
            EXPECT_EQ(expected.high, high);
            const std::vector<int32_t> wide(x.begin(), x.end());
            const auto unbounded = model::forward97(&wide[4], 32, phase, model::q16, model::q16);
            for (size_t i = 0; i < 32; ++i) EXPECT_GT(std::abs(unbounded.high[i]), 2 * std::abs(high[i])) << i;
        }
}

TEST(Wavelet97Rows, TheLowResultOfTheTapsIsClippedAboveOnly)
{
    // 39515 + 2 * 17489 + 2 * 1753 at one end of the numbers, the negative taps at the other.
    const auto low = [](int16_t positive, int16_t negative) {
        const int16_t x[9] = {positive, negative, negative, positive, positive, positive, negative, negative, positive};
        int16_t l = 0, h = 0;
        EXPECT_EQ(vekStsOk, vekiWTFwdRow_D97_JPEG2K_16s_C1R(x + 4, 18, &l, 2, &h, 2, {1, 1}, 0));
        return l;
    };
    EXPECT_EQ(32767, low(32767, -32768));
    const int64_t sum = int64_t{39515 + 2 * 17489 + 2 * 1753} * -32768 - int64_t{2 * 5126 + 2 * 1105} * 32767;
    EXPECT_EQ(static_cast<int16_t>(static_cast<uint16_t>((sum + 32768) >> 16)), low(-32768, 32767));
    EXPECT_GT(low(-32768, 32767), 0);  // cut, not clipped
}

TEST(Wavelet97Rows, TheHighResultOfTheTapsIsClippedOnBothSides)
{
    const auto high = [](int16_t own, int16_t neighbours) {
        const int16_t x[9] = {0, 0, own, neighbours, neighbours, own, neighbours, neighbours, own};
        int16_t l = 0, h = 0;
        EXPECT_EQ(vekStsOk, vekiWTFwdRow_D97_JPEG2K_16s_C1R(x + 4, 18, &l, 2, &h, 2, {1, 1}, 0));
        return h;
    };
    EXPECT_EQ(32767, high(32767, -32768));
    EXPECT_EQ(-32768, high(-32768, 32767));
}

// Rows of the steps, in the order of the arguments.
template <typename T>
const model::Stages<T>& stepStages()
{
    return Arithmetics<T>::interior;
}
template <typename T>
void forwardStepModel(const std::vector<T*>& row, int i)
{
    const auto& stages = stepStages<T>();
    row[7][i] = stages.forward1(row[1][i], row[0][i], row[2][i]);
    row[4][i] = stages.forward2(row[0][i], row[6][i], row[7][i]);
    row[6][i] = stages.forward3(row[6][i], row[3][i], row[4][i]);
    row[3][i] = stages.forward4(row[3][i], row[5][i], row[6][i]);
    row[5][i] = stages.forward5(row[5][i]);
}
template <typename T>
void inverseStepModel(const std::vector<T*>& row, int i)
{
    const auto& stages = stepStages<T>();
    row[7][i] = stages.inverse1(row[0][i], row[1][i], row[2][i]);
    row[6][i] = stages.inverse2(row[1][i], row[5][i], row[7][i]);
    row[5][i] = stages.inverse3(row[5][i], row[4][i], row[6][i]);
    row[4][i] = stages.inverse4(row[4][i], row[3][i], row[5][i]);
}

TYPED_TEST(Wavelet97, ForwardStepsEqualTheModel)
{
    support::checkSteps<TypeParam, 8>(Forms<TypeParam>::forwardStep, forwardStepModel<TypeParam>, 78);
}
TYPED_TEST(Wavelet97, InverseStepsEqualTheModel)
{
    support::checkSteps<TypeParam, 8>(Forms<TypeParam>::inverseStep, inverseStepModel<TypeParam>, 79);
}
TYPED_TEST(Wavelet97, ForwardStepsMayWriteTheRowsTheyRead)
{
    support::checkStepsOnSharedRows<TypeParam, 8>(Forms<TypeParam>::forwardStep, forwardStepModel<TypeParam>,
                                                  {0, 1, 2, 3, 0, 5, 6, 1}, 80);
}
TYPED_TEST(Wavelet97, InverseStepsMayWriteTheRowsTheyRead)
{
    support::checkStepsOnSharedRows<TypeParam, 8>(Forms<TypeParam>::inverseStep, inverseStepModel<TypeParam>,
                                                  {0, 1, 2, 3, 4, 5, 1, 0}, 81);
}
TYPED_TEST(Wavelet97, StepsCheckTheirArguments)
{
    support::checkStepArguments<TypeParam, 8>(Forms<TypeParam>::forwardStep);
    support::checkStepArguments<TypeParam, 8>(Forms<TypeParam>::inverseStep);
}

}  // namespace
