// Every MCU conversion against its model: nominal and extreme samples, planes and pixels at any address, steps with
// gaps.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/jpeg/mcu.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/jpeg_samples.h"

namespace {

using model::Mcu;
using model::McuPlanes;
using model::Pixels;
using model::Sampling;
using support::Guard;
using support::GuardedBytes;
using support::Random;

using Decode = VekStatus (*)(const int16_t* const* planes, void* pixels, int step);
using Encode = VekStatus (*)(const void* pixels, int step, int16_t* const* planes);

// Functions of both pixel types under one type.
template <auto function>
VekStatus call(const int16_t* const* planes, void* pixels, int step)
{
    if constexpr (std::is_invocable_v<decltype(function), const int16_t* const*, uint8_t*, int>)
        return function(planes, static_cast<uint8_t*>(pixels), step);
    else
        return function(planes, static_cast<uint16_t*>(pixels), step);
}
template <auto function>
VekStatus call(const void* pixels, int step, int16_t* const* planes)
{
    if constexpr (std::is_invocable_v<decltype(function), const uint8_t*, int, int16_t* const*>)
        return function(static_cast<const uint8_t*>(pixels), step, planes);
    else
        return function(static_cast<const uint16_t*>(pixels), step, planes);
}

template <typename Function>
struct Member {
    const char* name;
    Mcu mcu;
    Function function;
};
template <typename Function>
void PrintTo(const Member<Function>& member, std::ostream* os)
{
    *os << member.name;
}

constexpr Member<Decode> decoders[] = {
    {"vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R", {Sampling::s444, Pixels::rgb}, call<vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R", {Sampling::s422, Pixels::rgb}, call<vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R", {Sampling::s411, Pixels::rgb}, call<vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R", {Sampling::s444, Pixels::bgr}, call<vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R", {Sampling::s422, Pixels::bgr}, call<vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R", {Sampling::s411, Pixels::bgr}, call<vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R>},
    {"vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R",
     {Sampling::s444, Pixels::bgr555},
     call<vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R>},
    {"vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R",
     {Sampling::s422, Pixels::bgr555},
     call<vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R>},
    {"vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R",
     {Sampling::s411, Pixels::bgr555},
     call<vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R>},
    {"vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R",
     {Sampling::s444, Pixels::bgr565},
     call<vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R>},
    {"vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R",
     {Sampling::s422, Pixels::bgr565},
     call<vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R>},
    {"vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R",
     {Sampling::s411, Pixels::bgr565},
     call<vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R>},
    {"vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R", {Sampling::s444, Pixels::cmyk}, call<vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R>},
    {"vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R", {Sampling::s422, Pixels::cmyk}, call<vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R>},
    {"vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R", {Sampling::s411, Pixels::cmyk}, call<vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R>},
    {"vekiSampleUp444LS_MCU_16s8u_P3C3R", {Sampling::s444, Pixels::ycc}, call<vekiSampleUp444LS_MCU_16s8u_P3C3R>},
    {"vekiSampleUp422LS_MCU_16s8u_P3C3R", {Sampling::s422, Pixels::ycc}, call<vekiSampleUp422LS_MCU_16s8u_P3C3R>},
    {"vekiSampleUp411LS_MCU_16s8u_P3C3R", {Sampling::s411, Pixels::ycc}, call<vekiSampleUp411LS_MCU_16s8u_P3C3R>},
    {"vekiJoin422LS_MCU_16s8u_P3C2R", {Sampling::s422, Pixels::stream422}, call<vekiJoin422LS_MCU_16s8u_P3C2R>},
};
constexpr Member<Encode> encoders[] = {
    {"vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R", {Sampling::s444, Pixels::rgb}, call<vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R>},
    {"vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R", {Sampling::s422, Pixels::rgb}, call<vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R>},
    {"vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R", {Sampling::s411, Pixels::rgb}, call<vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R>},
    {"vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R", {Sampling::s444, Pixels::bgr}, call<vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R>},
    {"vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R", {Sampling::s422, Pixels::bgr}, call<vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R>},
    {"vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R", {Sampling::s411, Pixels::bgr}, call<vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R>},
    {"vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R",
     {Sampling::s444, Pixels::bgr555},
     call<vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R>},
    {"vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R",
     {Sampling::s422, Pixels::bgr555},
     call<vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R>},
    {"vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R",
     {Sampling::s411, Pixels::bgr555},
     call<vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R>},
    {"vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R",
     {Sampling::s444, Pixels::bgr565},
     call<vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R>},
    {"vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R",
     {Sampling::s422, Pixels::bgr565},
     call<vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R>},
    {"vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R",
     {Sampling::s411, Pixels::bgr565},
     call<vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R>},
    {"vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R", {Sampling::s444, Pixels::cmyk}, call<vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R>},
    {"vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R", {Sampling::s422, Pixels::cmyk}, call<vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R>},
    {"vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R", {Sampling::s411, Pixels::cmyk}, call<vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R>},
    {"vekiSampleDown444LS_MCU_8u16s_C3P3R", {Sampling::s444, Pixels::ycc}, call<vekiSampleDown444LS_MCU_8u16s_C3P3R>},
    {"vekiSampleDown422LS_MCU_8u16s_C3P3R", {Sampling::s422, Pixels::ycc}, call<vekiSampleDown422LS_MCU_8u16s_C3P3R>},
    {"vekiSampleDown411LS_MCU_8u16s_C3P3R", {Sampling::s411, Pixels::ycc}, call<vekiSampleDown411LS_MCU_8u16s_C3P3R>},
    {"vekiSplit422LS_MCU_8u16s_C2P3R", {Sampling::s422, Pixels::stream422}, call<vekiSplit422LS_MCU_8u16s_C2P3R>},
};
constexpr int members = 38;
static_assert(std::size(decoders) + std::size(encoders) == members);

// Planes at chosen addresses, each ending at an unmapped page unless it is moved down by `distance`.
class Planes {
public:
    Planes(const Mcu& mcu, const std::array<size_t, 4>& distances) : mcu_(mcu)
    {
        for (int i = 0; i < mcu.planes(); ++i) {
            const size_t bytes = 2 * mcu.planeSize(i);
            memory_[static_cast<size_t>(i)] =
                std::make_unique<GuardedBytes>(bytes, Guard::Behind, distances[static_cast<size_t>(i)]);
            pointers_[static_cast<size_t>(i)] = reinterpret_cast<int16_t*>(memory_[static_cast<size_t>(i)]->data());
        }
    }
    int16_t** pointers() { return pointers_.data(); }
    std::array<bool, 4> aligned() const
    {
        std::array<bool, 4> result{};
        for (size_t i = 0; i < 4; ++i) result[i] = reinterpret_cast<uintptr_t>(pointers_[i]) % 16 == 0;
        return result;
    }
    void set(const McuPlanes& values)
    {
        for (size_t i = 0; i < static_cast<size_t>(mcu_.planes()); ++i)
            std::memcpy(pointers_[i], values[i].data(), 2 * values[i].size());
    }
    McuPlanes get() const
    {
        McuPlanes values;
        for (int i = 0; i < mcu_.planes(); ++i) {
            auto& plane = values[static_cast<size_t>(i)];
            plane.resize(mcu_.planeSize(i));
            std::memcpy(plane.data(), pointers_[static_cast<size_t>(i)], 2 * plane.size());
        }
        return values;
    }

private:
    Mcu mcu_;
    std::array<std::unique_ptr<GuardedBytes>, 4> memory_;
    std::array<int16_t*, 4> pointers_{};
};

// Rows of pixels with a gap behind each but the last, which ends at an unmapped page. The number of gaps is odd: the 16
// gaps from 0 to 15 put the first pixel at each address modulo 16.
class PixelRows {
public:
    PixelRows(const Mcu& mcu, int gap)
        : rowBytes_(mcu.width() * mcu.pixelBytes()),
          height_(mcu.height()),
          step_(rowBytes_ + gap),
          memory_(static_cast<size_t>(step_ * (height_ - 1) + rowBytes_))
    {
        std::memset(memory_.data(), gapByte, static_cast<size_t>(step_ * (height_ - 1) + rowBytes_));
    }
    uint8_t* data() { return memory_.data(); }
    int step() const { return step_; }
    void set(const std::vector<uint8_t>& bytes)
    {
        for (int y = 0; y < height_; ++y)
            std::memcpy(memory_.data() + y * step_, bytes.data() + y * rowBytes_, static_cast<size_t>(rowBytes_));
    }
    std::vector<uint8_t> get()
    {
        std::vector<uint8_t> bytes(static_cast<size_t>(rowBytes_ * height_));
        for (int y = 0; y < height_; ++y)
            std::memcpy(bytes.data() + y * rowBytes_, memory_.data() + y * step_, static_cast<size_t>(rowBytes_));
        return bytes;
    }
    bool gapsUntouched()
    {
        for (int y = 0; y + 1 < height_; ++y)
            for (int x = rowBytes_; x < step_; ++x)
                if (memory_.data()[y * step_ + x] != gapByte)
                    return false;
        return true;
    }

private:
    static constexpr uint8_t gapByte = 0xA5;
    int rowBytes_;
    int height_;
    int step_;
    GuardedBytes memory_;
};

// Rows as far apart as a step can tell. Nothing between them is mapped but the rest of their pages.
class DistantRows {
public:
    static constexpr int step = std::numeric_limits<int>::max();

    explicit DistantRows(const Mcu& mcu)
        : rowBytes_(static_cast<size_t>(mcu.width() * mcu.pixelBytes())), height_(static_cast<size_t>(mcu.height()))
    {
        void* map = mmap(nullptr, mappedSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (map == MAP_FAILED)
            std::abort();
        rows_ = static_cast<uint8_t*>(map);
        for (size_t y = 0; y < height_; ++y) {
            const size_t begin = y * step / page() * page();
            if (mprotect(rows_ + begin, y * step + rowBytes_ - begin, PROT_READ | PROT_WRITE) != 0)
                std::abort();
        }
    }
    ~DistantRows() { munmap(rows_, mappedSize()); }
    DistantRows(const DistantRows&) = delete;
    DistantRows& operator=(const DistantRows&) = delete;

    uint8_t* data() { return rows_; }
    void set(const std::vector<uint8_t>& bytes)
    {
        for (size_t y = 0; y < height_; ++y) std::memcpy(rows_ + y * step, bytes.data() + y * rowBytes_, rowBytes_);
    }
    std::vector<uint8_t> get() const
    {
        std::vector<uint8_t> bytes(rowBytes_ * height_);
        for (size_t y = 0; y < height_; ++y) std::memcpy(bytes.data() + y * rowBytes_, rows_ + y * step, rowBytes_);
        return bytes;
    }

private:
    static size_t page() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }
    size_t mappedSize() const { return (height_ - 1) * step + page(); }

    size_t rowBytes_;
    size_t height_;
    uint8_t* rows_;
};

McuPlanes randomPlanes(const Mcu& mcu, Random& random, int kind)
{
    McuPlanes planes;
    for (int i = 0; i < mcu.planes(); ++i) {
        auto& plane = planes[static_cast<size_t>(i)];
        plane.resize(mcu.planeSize(i));
        for (int16_t& v : plane)
            v = kind == 0   ? random.in<int16_t>(-128, 127)
                : kind == 1 ? random.in<int16_t>(-400, 400)
                            : random.extreme<int16_t>();
    }
    return planes;
}

std::vector<uint8_t> randomPixels(const Mcu& mcu, Random& random)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(mcu.width() * mcu.height() * mcu.pixelBytes()));
    for (uint8_t& b : bytes) b = random.extreme<uint8_t>();
    return bytes;
}

// Addresses of the planes: all on 16-byte boundaries (32 or not), then one after the other off it, then all off it, odd
// ones too.
std::vector<std::array<size_t, 4>> planeAddresses()
{
    std::vector<std::array<size_t, 4>> list = {{0, 0, 0, 0}, {16, 16, 16, 16}, {0, 16, 0, 16}};
    for (size_t plane = 0; plane < 4; ++plane)
        for (size_t distance : {2, 8, 14, 1, 15}) {
            std::array<size_t, 4> one{};
            one[plane] = distance;
            list.push_back(one);
        }
    for (size_t distance = 1; distance < 16; ++distance) list.push_back({distance, distance, distance, distance});
    return list;
}

// The first value from `from` on with which the sum of products for green lies next to where its result steps:
// block forms round it after 14 bits, the other one cuts it after 16. If there is none, any value.
int16_t redDifferenceAtAStep(int64_t blueDifference, int16_t from, bool blockForm)
{
    const int64_t steps = blockForm ? 1 << 14 : 1 << 16;
    int16_t v = from;
    for (int64_t i = 0; i < steps; ++i, v = static_cast<int16_t>(v + 1)) {
        const int64_t sum =
            blockForm ? 5638 * blueDifference + 11700 * v + steps / 2 : 22554 * blueDifference + 46802 * v;
        if (((sum + 2) & (steps - 1)) <= 4)
            break;
    }
    return v;
}

class McuDecode : public testing::TestWithParam<Member<Decode>> {};

TEST_P(McuDecode, EqualsItsModelAtEveryAlignmentOfThePlanes)
{
    const auto& [name, mcu, function] = GetParam();
    Random random(1);
    for (const auto& distances : planeAddresses())
        for (int round = 0; round < 6; ++round) {
            Planes planes(mcu, distances);
            const McuPlanes values = randomPlanes(mcu, random, round % 3);
            planes.set(values);
            PixelRows pixels(mcu, random.in(0, 15));
            ASSERT_EQ(vekStsOk, function(planes.pointers(), pixels.data(), pixels.step()));
            ASSERT_EQ(mcu.decode(values, planes.aligned()), pixels.get()) << testing::PrintToString(distances);
            ASSERT_TRUE(pixels.gapsUntouched());
            ASSERT_EQ(values, planes.get());
        }
}

// Far beyond the nominal range most channels are clipped. Here the luma of each pixel brings one of them back.
TEST_P(McuDecode, EqualsItsModelToTheLastUnitOfAnyChroma)
{
    const auto& [name, mcu, function] = GetParam();
    Random random(4);
    for (const size_t distance : {0, 2})
        for (int round = 0; round < 4; ++round) {
            McuPlanes values = randomPlanes(mcu, random, 2);
            auto& [luma, cb, cr, key] = values;
            for (size_t i = 0; i < 64; ++i) {
                cb[i] = random.any<int16_t>();
                cr[i] = redDifferenceAtAStep(cb[i], random.any<int16_t>(), distance == 0);
            }
            for (int y = 0; y < mcu.height(); ++y)
                for (int x = 0; x < mcu.width(); ++x) {
                    const size_t i = mcu.chromaIndex(x, y);
                    const double terms[] = {1.402 * cr[i], -0.34414 * cb[i] - 0.71414 * cr[i], 1.772 * cb[i]};
                    luma[mcu.lumaIndex(x, y)] =
                        static_cast<int16_t>(random.in(-128, 127) - std::lround(terms[random.in(0, 2)]));
                }
            Planes planes(mcu, {distance, distance, distance, distance});
            planes.set(values);
            PixelRows pixels(mcu, 0);
            ASSERT_EQ(vekStsOk, function(planes.pointers(), pixels.data(), pixels.step()));
            ASSERT_EQ(mcu.decode(values, planes.aligned()), pixels.get()) << distance;
        }
}

TEST_P(McuDecode, RowsMayLieAsFarApartAsAStepCanTell)
{
    const auto& [name, mcu, function] = GetParam();
    Random random(5);
    Planes planes(mcu, {});
    const McuPlanes values = randomPlanes(mcu, random, 0);
    planes.set(values);
    DistantRows rows(mcu);
    ASSERT_EQ(vekStsOk, function(planes.pointers(), rows.data(), rows.step));
    EXPECT_EQ(mcu.decode(values, planes.aligned()), rows.get());
}

TEST_P(McuDecode, TestsPlanesBeforeTheStep)
{
    const auto& [name, mcu, function] = GetParam();
    Planes planes(mcu, {});
    PixelRows pixels(mcu, 0);
    const auto before = pixels.get();
    EXPECT_EQ(vekStsNullPointer, function(nullptr, pixels.data(), 0));
    EXPECT_EQ(vekStsNullPointer, function(planes.pointers(), nullptr, 0));
    for (int i = 0; i < mcu.planes(); ++i) {
        Planes holed(mcu, {});
        holed.pointers()[i] = nullptr;
        EXPECT_EQ(vekStsNullPointer, function(holed.pointers(), pixels.data(), 0));
    }
    EXPECT_EQ(vekStsBadStep, function(planes.pointers(), pixels.data(), 0));
    EXPECT_EQ(vekStsBadStep, function(planes.pointers(), pixels.data(), -1));
    EXPECT_EQ(before, pixels.get());
}

INSTANTIATE_TEST_SUITE_P(Members, McuDecode, testing::ValuesIn(decoders),
                         [](const auto& member) { return std::string(member.param.name); });

class McuEncode : public testing::TestWithParam<Member<Encode>> {};

TEST_P(McuEncode, EqualsItsModelAtEveryAlignmentOfThePlanes)
{
    const auto& [name, mcu, function] = GetParam();
    Random random(2);
    for (const auto& distances : planeAddresses())
        for (int round = 0; round < 4; ++round) {
            Planes planes(mcu, distances);
            const std::vector<uint8_t> bytes = randomPixels(mcu, random);
            PixelRows pixels(mcu, random.in(0, 15));
            pixels.set(bytes);
            ASSERT_EQ(vekStsOk, function(pixels.data(), pixels.step(), planes.pointers()));
            ASSERT_EQ(mcu.encode(bytes, planes.aligned()), planes.get()) << testing::PrintToString(distances);
            ASSERT_EQ(bytes, pixels.get());
            ASSERT_TRUE(pixels.gapsUntouched());
        }
}

TEST_P(McuEncode, RowsMayLieAsFarApartAsAStepCanTell)
{
    const auto& [name, mcu, function] = GetParam();
    Random random(6);
    Planes planes(mcu, {});
    const std::vector<uint8_t> bytes = randomPixels(mcu, random);
    DistantRows rows(mcu);
    rows.set(bytes);
    ASSERT_EQ(vekStsOk, function(rows.data(), rows.step, planes.pointers()));
    EXPECT_EQ(mcu.encode(bytes, planes.aligned()), planes.get());
}

TEST_P(McuEncode, TestsTheStepBeforePlanes)
{
    const auto& [name, mcu, function] = GetParam();
    Planes planes(mcu, {});
    PixelRows pixels(mcu, 0);
    const McuPlanes before = planes.get();
    EXPECT_EQ(vekStsNullPointer, function(nullptr, 0, planes.pointers()));
    EXPECT_EQ(vekStsNullPointer, function(pixels.data(), 0, nullptr));
    EXPECT_EQ(vekStsBadStep, function(pixels.data(), 0, planes.pointers()));
    for (int i = 0; i < mcu.planes(); ++i) {
        Planes holed(mcu, {});
        holed.pointers()[i] = nullptr;
        EXPECT_EQ(vekStsBadStep, function(pixels.data(), -1, holed.pointers()));
        EXPECT_EQ(vekStsNullPointer, function(pixels.data(), pixels.step(), holed.pointers()));
    }
    EXPECT_EQ(before, planes.get());
}

INSTANTIATE_TEST_SUITE_P(Members, McuEncode, testing::ValuesIn(encoders),
                         [](const auto& member) { return std::string(member.param.name); });

// One colour all over an MCU.
struct Flat {
    alignas(32) int16_t y[256];
    alignas(32) int16_t cb[64];
    alignas(32) int16_t cr[64];
    alignas(32) int16_t k[256];
    uint8_t pixels[16 * 16 * 4];

    Flat(int16_t luma, int16_t blue, int16_t red, int16_t black = 0)
    {
        std::fill(std::begin(y), std::end(y), luma);
        std::fill(std::begin(cb), std::end(cb), blue);
        std::fill(std::begin(cr), std::end(cr), red);
        std::fill(std::begin(k), std::end(k), black);
    }
    const int16_t* planes[4] = {y, cb, cr, k};
    int16_t* mutablePlanes[4] = {y, cb, cr, k};
};

TEST(McuCases, ZerosAreMidGreyInEveryForm)
{
    Flat mcu(0, 0, 0);
    const int16_t* const moved[3] = {mcu.y + 1, mcu.cb, mcu.cr};
    for (const int16_t* const* planes : {static_cast<const int16_t* const*>(mcu.planes), moved}) {
        vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(planes, mcu.pixels, 24);
        EXPECT_EQ(std::vector<uint8_t>(192, 128), std::vector<uint8_t>(mcu.pixels, mcu.pixels + 192));
        vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(planes, mcu.pixels, 48);
        EXPECT_EQ(std::vector<uint8_t>(384, 128), std::vector<uint8_t>(mcu.pixels, mcu.pixels + 384));
    }
}

TEST(McuCases, PureRedHasLumaMinus52)
{
    Flat mcu(0, 0, 0);
    for (int i = 0; i < 192; ++i) mcu.pixels[i] = i % 3 == 0 ? 255 : 0;
    vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(mcu.pixels, 24, mcu.mutablePlanes);
    EXPECT_EQ(-52, mcu.y[0]);
    EXPECT_EQ(-52, mcu.y[63]);
}

TEST(McuCases, TheLargestRedDifferenceSaturatesIn444AndWrapsIn422)
{
    Flat mcu(0, 0, 32767);
    vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(mcu.planes, mcu.pixels, 24);
    EXPECT_EQ(255, mcu.pixels[0]);
    vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(mcu.planes, mcu.pixels, 48);
    EXPECT_EQ(0, mcu.pixels[0]);
}

TEST(McuCases, AlignedAndUnalignedFormsDifferByOne)
{
    Flat mcu(0, 0, 1);
    const int16_t* const moved[3] = {mcu.y + 1, mcu.cb, mcu.cr};
    vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(mcu.planes, mcu.pixels, 24);
    EXPECT_EQ(129, mcu.pixels[0]);  // 1.4 rounded
    EXPECT_EQ(127, mcu.pixels[1]);  // -0.7 rounded
    vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(moved, mcu.pixels, 24);
    EXPECT_EQ(129, mcu.pixels[0]);  // 1.4 rounded down
    EXPECT_EQ(127, mcu.pixels[1]);  // -0.7 rounded down
    Flat blue(0, 1, 0);
    const int16_t* const movedBlue[3] = {blue.y + 1, blue.cb, blue.cr};
    vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(blue.planes, blue.pixels, 24);
    EXPECT_EQ(130, blue.pixels[2]);  // 1.77 rounded
    vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(movedBlue, blue.pixels, 24);
    EXPECT_EQ(129, blue.pixels[2]);  // 1.77 rounded down
}

TEST(McuCases, Cmyk444RoundsChromaLowerThanRgb)
{
    int lower = 0;
    Random random(3);
    for (int round = 0; round < 400; ++round) {
        Flat rgb(0, 0, 0);
        Flat cmyk(0, 0, 0);
        for (int i = 0; i < 64; ++i)
            for (int c = 0; c < 3; ++c) {
                rgb.pixels[3 * i + c] = random.any<uint8_t>();
                cmyk.pixels[4 * i + c] = static_cast<uint8_t>(255 - rgb.pixels[3 * i + c]);
            }
        vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R(rgb.pixels, 24, rgb.mutablePlanes);
        vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R(cmyk.pixels, 32, cmyk.mutablePlanes);
        for (int i = 0; i < 64; ++i) {
            ASSERT_GE(1, rgb.cb[i] - cmyk.cb[i]);
            ASSERT_LE(0, rgb.cb[i] - cmyk.cb[i]);
            lower += rgb.cb[i] != cmyk.cb[i];
        }
    }
    EXPECT_LT(0, lower);
}

TEST(McuCases, BlackClipsOnAlignedPlanesAndWrapsOnOthers)
{
    Flat mcu(0, 0, 0, 32767);
    vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(mcu.planes, mcu.pixels, 32);
    EXPECT_EQ(255, mcu.pixels[3]);
    const int16_t* const moved[4] = {mcu.y, mcu.cb, mcu.cr, mcu.k + 1};
    vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(moved, mcu.pixels, 32);
    EXPECT_EQ((32767 + 128) & 0xFF, mcu.pixels[3]);
}

TEST(McuCases, WhiteOfFifteenBitsIs248AndItsTopBitCountsForNothing)
{
    uint16_t words[64];
    Flat low(0, 0, 0);
    Flat high(0, 0, 0);
    std::fill(std::begin(words), std::end(words), uint16_t{0x7FFF});
    vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(words, 16, low.mutablePlanes);
    std::fill(std::begin(words), std::end(words), uint16_t{0xFFFF});
    vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(words, 16, high.mutablePlanes);
    EXPECT_EQ(120, low.y[0]);  // (16384 * 248 - 2088960) >> 14
    EXPECT_EQ(120, high.y[63]);
}

TEST(McuCases, MeansOfChromaAreRoundedDown)
{
    Flat mcu(0, 0, 0);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 16; ++x) {
            uint8_t* const p = mcu.pixels + 48 * y + 3 * x;
            p[0] = 128;
            p[1] = x % 2 == 0 ? 128 : 129;
            p[2] = x % 2 == 0 ? 128 : 127;
        }
    vekiSampleDown422LS_MCU_8u16s_C3P3R(mcu.pixels, 48, mcu.mutablePlanes);
    EXPECT_EQ(0, mcu.y[0]);
    EXPECT_EQ(0, mcu.cb[0]);   // 1 / 2
    EXPECT_EQ(-1, mcu.cr[0]);  // -1 / 2
}

}  // namespace
