// Lossless prediction against its definition: every predictor, all widths, values that wrap.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/jpeg_entropy.h"

namespace {

using support::GuardedArray;
using support::Random;
using Row = std::vector<int16_t>;

int16_t wrapped(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

int predict(int predictor, int a, int b, int c)
{
    switch (predictor) {
        case 1:
            return a;
        case 2:
            return b;
        case 3:
            return c;
        case 4:
            return a + b - c;
        case 5:
            return a + ((b - c) >> 1);
        case 6:
            return b + ((a - c) >> 1);
        default:
            return (a + b) >> 1;
    }
}

Row differences(const Row& row, const Row& above, int predictor)
{
    Row d(row.size());
    for (size_t i = 0; i < row.size(); ++i)
        d[i] = wrapped(row[i] - (i == 0 ? above[0] : predict(predictor, row[i - 1], above[i], above[i - 1])));
    return d;
}

// Of any value, or but for some of them of a picture of 8 or 12 bits, where no sum wraps
Row randomRow(size_t width, Random& random)
{
    Row row(width);
    const int kind = random.in(0, 3);
    for (int16_t& v : row) {
        const bool ofPicture = kind != 0 && !(kind == 3 && random.chance(1));
        v = ofPicture           ? random.in<int16_t>(0, kind == 1 ? 255 : 4095)
            : random.chance(50) ? random.extreme<int16_t>()
                                : random.any<int16_t>();
    }
    return row;
}

// Widths up to beyond what is done at a time, and beyond how long sums that wrap are reckoned with
std::vector<int> widths()
{
    std::vector<int> result;
    for (int width = 1; width <= 100; ++width) result.push_back(width);
    for (const int width : {255, 256, 273, 500, 1024, 1070, 2500, 5000}) result.push_back(width);
    return result;
}

// A row right before an unmapped page, or `offset` samples before it, with samples between that stay untouched
class Guarded {
public:
    explicit Guarded(const Row& row, size_t offset = 0) : memory_(row.size() + offset), size_(row.size())
    {
        std::fill(memory_.begin(), memory_.end(), int16_t{99});
        std::copy(row.begin(), row.end(), memory_.begin());
    }
    int16_t* data() { return memory_.data(); }
    Row values()
    {
        EXPECT_TRUE(std::all_of(data() + size_, memory_.end(), [](int16_t v) { return v == 99; }));
        return {data(), data() + size_};
    }

private:
    GuardedArray<int16_t> memory_;
    size_t size_;
};

TEST(LosslessRow, DifferencesAndTheirInverseEqualTheirDefinition)
{
    Random random(1);
    for (const int width : widths())
        for (int round = 0; round < 6; ++round)
            for (int predictor = 1; predictor <= 7; ++predictor) {
                const Row row = randomRow(static_cast<size_t>(width), random);
                const Row above = randomRow(static_cast<size_t>(width), random);
                const Row want = differences(row, above, predictor);
                Guarded src(row, random.in<size_t>(0, 16));
                Guarded prev(above);
                Guarded dst(Row(row.size(), 77), random.in<size_t>(0, 16));
                ASSERT_EQ(vekStsOk, vekiDiffPredRow_JPEG_16s_C1(src.data(), prev.data(), dst.data(), width, predictor));
                ASSERT_EQ(want, dst.values()) << predictor << ", " << width;
                Guarded back(Row(row.size(), 77), random.in<size_t>(0, 16));
                ASSERT_EQ(vekStsOk,
                          vekiReconstructPredRow_JPEG_16s_C1(dst.data(), prev.data(), back.data(), width, predictor));
                ASSERT_EQ(row, back.values()) << predictor << ", " << width;
                ASSERT_EQ(vekStsOk, vekiDiffPredRow_JPEG_16s_C1(src.data(), prev.data(), src.data(), width, predictor));
                ASSERT_EQ(want, src.values()) << "in place";
                ASSERT_EQ(vekStsOk,
                          vekiReconstructPredRow_JPEG_16s_C1(src.data(), prev.data(), src.data(), width, predictor));
                ASSERT_EQ(row, src.values()) << "in place";
            }
}

TEST(LosslessFirstRow, DifferencesAndTheirInverseEqualTheirDefinition)
{
    Random random(2);
    for (const int width : widths())
        for (int precision = 2; precision <= 16; ++precision)
            for (int transform : {0, 1, precision - 1, precision, 5, 31, 40}) {
                const Row row = randomRow(static_cast<size_t>(width), random);
                const auto reference = wrapped(int64_t{1} << (static_cast<unsigned>(precision - transform - 1) % 32));
                Row want(row.size());
                for (size_t i = 0; i < row.size(); ++i) want[i] = wrapped(row[i] - (i == 0 ? reference : row[i - 1]));
                Guarded src(row);
                Guarded dst(Row(row.size(), 77), random.in<size_t>(0, 16));
                ASSERT_EQ(vekStsOk,
                          vekiDiffPredFirstRow_JPEG_16s_C1(src.data(), dst.data(), width, precision, transform));
                ASSERT_EQ(want, dst.values());
                Guarded back(Row(row.size(), 77));
                ASSERT_EQ(vekStsOk, vekiReconstructPredFirstRow_JPEG_16s_C1(dst.data(), back.data(), width, precision,
                                                                            transform));
                ASSERT_EQ(row, back.values());
            }
}

TEST(LosslessRow, TheFirstSampleIsPredictedFromAbove)
{
    const int16_t difference[1] = {5};
    const int16_t above[1] = {100};
    for (int predictor = 1; predictor <= 7; ++predictor) {
        int16_t dst = 0;
        EXPECT_EQ(vekStsOk, vekiReconstructPredRow_JPEG_16s_C1(difference, above, &dst, 1, predictor));
        EXPECT_EQ(105, dst);
    }
}

// Halvings of sums that just do and just do not leave 16 bits, at every place of a group of columns
TEST(LosslessRow, SumsAtTheEndsOfTheirRangeAreHalvedAsDefined)
{
    Random random(3);
    for (int round = 0; round < 3000; ++round)
        for (int predictor = 5; predictor <= 7; ++predictor) {
            const int width = random.in(9, 40);
            const auto near =
                static_cast<int16_t>(random.chance(50) ? 32767 - random.in(0, 3) : -32768 + random.in(0, 3));
            Row row(static_cast<size_t>(width));
            Row above(row.size());
            for (int16_t& v : row) v = wrapped(near + random.in(-2, 2));
            for (int16_t& v : above) v = random.chance(20) ? random.extreme<int16_t>() : near;
            Row back(row.size());
            const Row d = differences(row, above, predictor);
            ASSERT_EQ(vekStsOk,
                      vekiReconstructPredRow_JPEG_16s_C1(d.data(), above.data(), back.data(), width, predictor));
            ASSERT_EQ(row, back);
        }
}

TEST(LosslessFirstRow, ReferencesOfTheEnds)
{
    const int16_t zero = 0;
    int16_t dst = 0;
    EXPECT_EQ(vekStsOk, vekiReconstructPredFirstRow_JPEG_16s_C1(&zero, &dst, 1, 16, 15));
    EXPECT_EQ(1, dst);
    EXPECT_EQ(vekStsOk, vekiReconstructPredFirstRow_JPEG_16s_C1(&zero, &dst, 1, 16, 0));
    EXPECT_EQ(-32768, dst);
    EXPECT_EQ(vekStsOk, vekiReconstructPredFirstRow_JPEG_16s_C1(&zero, &dst, 1, 2, 5));
    EXPECT_EQ(0, dst);  // 2^28 cut to 16 bits
}

TEST(Lossless, ChecksItsArgumentsInOrder)
{
    const int16_t row[2] = {1, 2};
    int16_t dst[2] = {7, 7};
    for (auto function : {&vekiDiffPredFirstRow_JPEG_16s_C1, &vekiReconstructPredFirstRow_JPEG_16s_C1}) {
        EXPECT_EQ(vekStsNullPointer, function(nullptr, dst, 0, 1, -1));
        EXPECT_EQ(vekStsNullPointer, function(row, nullptr, 0, 1, -1));
        EXPECT_EQ(vekStsBadSize, function(row, dst, 0, 1, -1));
        EXPECT_EQ(vekStsBadArgument, function(row, dst, 2, 1, 0));
        EXPECT_EQ(vekStsBadArgument, function(row, dst, 2, 17, 0));
        EXPECT_EQ(vekStsBadArgument, function(row, dst, 2, 8, -1));
    }
    for (auto function : {&vekiDiffPredRow_JPEG_16s_C1, &vekiReconstructPredRow_JPEG_16s_C1}) {
        EXPECT_EQ(vekStsNullPointer, function(nullptr, row, dst, 0, 0));
        EXPECT_EQ(vekStsNullPointer, function(row, nullptr, dst, 0, 0));
        EXPECT_EQ(vekStsNullPointer, function(row, row, nullptr, 0, 0));
        EXPECT_EQ(vekStsBadSize, function(row, row, dst, 0, 0));
        EXPECT_EQ(vekStsBadArgument, function(row, row, dst, 2, 0));
        EXPECT_EQ(vekStsBadArgument, function(row, row, dst, 2, 8));
    }
    EXPECT_EQ(7, dst[0]);
}

}  // namespace
