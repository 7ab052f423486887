// Calls of the ColLift forms, checked against a model of one column.
#ifndef VEK_TESTS_JPEG2K_TRANSFORM_COLLIFT_CALLS_H
#define VEK_TESTS_JPEG2K_TRANSFORM_COLLIFT_CALLS_H

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "jpeg2k/transform/sample_plane.h"
#include "support/generators.h"

namespace support {

template <typename T>
using StepModel = void (*)(const std::vector<T*>& rows, int i);

template <typename T, typename Function, size_t... i>
VekStatus callStep(Function function, const std::vector<T*>& rows, int width, std::index_sequence<i...>)
{
    return function(rows[i]..., width);
}
template <typename T, size_t count, typename Function>
VekStatus callStep(Function function, const std::vector<T*>& rows, int width)
{
    return callStep(function, rows, width, std::make_index_sequence<count>{});
}

template <typename T>
std::vector<T*> rowsOf(std::vector<SamplePlane<T>>& planes)
{
    std::vector<T*> rows;
    for (auto& plane : planes) rows.push_back(plane.data());
    return rows;
}

// All widths and addresses; each row between unmapped pages.
template <typename T, size_t count, typename Function>
void checkSteps(Function function, StepModel<T> model, uint64_t seed)
{
    Random random(seed);
    for (int width = 1; width <= 70; ++width)
        for (const Guard guard : {Guard::Behind, Guard::Before}) {
            const VekSize size = {width, 1};
            std::vector<SamplePlane<T>> planes, expected;
            for (size_t r = 0; r < count; ++r) {
                const size_t misalignment = random.in<size_t>(0, 40) * (random.chance(50) ? 1 : 0);
                planes.emplace_back(size, 0, guard, misalignment);
                planes.back().fill(random);
                expected.emplace_back(size, 0, guard, 0);
                expected.back().copyFrom(planes.back());
            }
            for (int i = 0; i < width; ++i) model(rowsOf(expected), i);
            ASSERT_EQ(vekStsOk, (callStep<T, count>(function, rowsOf(planes), width)));
            for (size_t r = 0; r < count; ++r) ASSERT_TRUE(expected[r] == planes[r]) << "row " << r << ", " << width;
        }
}

// Rows that are the same, by the number of the row that each argument stands for, and rows that overlap.
template <typename T, size_t count, typename Function>
void checkStepsOnSharedRows(Function function, StepModel<T> model, const std::array<size_t, count>& which,
                            uint64_t seed)
{
    Random random(seed);
    for (const int shift : {100, 3})  // 100 leaves them apart
        for (int width = 1; width <= 70; width += 3) {
            SamplePlane<T> memory({100 * static_cast<int>(count), 1}, 0, Guard::Behind, 0);
            memory.fill(random);
            SamplePlane<T> expected({100 * static_cast<int>(count), 1}, 0, Guard::Behind, 0);
            expected.copyFrom(memory);
            std::vector<T*> rows, expectedRows;
            for (size_t r = 0; r < count; ++r) {
                rows.push_back(memory.data() + static_cast<int>(which[r]) * shift);
                expectedRows.push_back(expected.data() + static_cast<int>(which[r]) * shift);
            }
            for (int i = 0; i < width; ++i) model(expectedRows, i);
            ASSERT_EQ(vekStsOk, (callStep<T, count>(function, rows, width)));
            ASSERT_TRUE(expected == memory) << width << ", rows " << shift << " apart";
        }
}

template <typename T, size_t count, typename Function>
void checkStepArguments(Function function)
{
    std::array<T, count> samples;
    samples.fill(T{5});
    const std::array<T, count> before = samples;
    std::vector<T*> rows;
    for (T& sample : samples) rows.push_back(&sample);
    for (size_t missing = 0; missing < count; ++missing) {
        std::vector<T*> incomplete = rows;
        incomplete[missing] = nullptr;
        EXPECT_EQ(vekStsNullPointer, (callStep<T, count>(function, incomplete, 0))) << missing;
    }
    EXPECT_EQ(vekStsBadSize, (callStep<T, count>(function, rows, 0)));
    EXPECT_EQ(vekStsBadSize, (callStep<T, count>(function, rows, -5)));
    EXPECT_EQ(before, samples);
}

}  // namespace support

#endif
