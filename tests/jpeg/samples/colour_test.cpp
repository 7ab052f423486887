// Every row-wise colour conversion against its model: all widths, steps with gaps, planes that end at unmapped pages,
// any address.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/jpeg/colour.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/jpeg_samples.h"

namespace {

using model::Forward;
using model::Inverse;
using model::Triple;
using support::Guard;
using support::GuardedBytes;
using support::Random;

constexpr uint8_t fourth = 99;

struct Arguments {
    std::array<uint8_t*, 4> src{}, dst{};
    std::array<int, 4> srcStep{}, dstStep{};
    VekSize roi{};
    bool srcMissing = false, dstMissing = false;  // null instead of the array of planes
};

// An argument as a function takes it: an array of planes, or the one image.
template <typename T>
T pointerAs(const std::array<uint8_t*, 4>& planes, bool missing)
{
    if (missing)
        return nullptr;
    if constexpr (std::is_pointer_v<std::remove_pointer_t<T>>)
        return const_cast<T>(reinterpret_cast<const std::remove_pointer_t<T>*>(planes.data()));
    else
        return reinterpret_cast<T>(planes[0]);
}
template <typename T>
T stepAs(const std::array<int, 4>& steps)
{
    if constexpr (std::is_pointer_v<T>)
        return steps.data();
    else
        return steps[0];
}
template <typename Src, typename SrcStep, typename Dst, typename DstStep, typename... Aval>
VekStatus invoke(VekStatus (*function)(Src, SrcStep, Dst, DstStep, VekSize, Aval...), const Arguments& a)
{
    return function(pointerAs<Src>(a.src, a.srcMissing), stepAs<SrcStep>(a.srcStep),
                    pointerAs<Dst>(a.dst, a.dstMissing), stepAs<DstStep>(a.dstStep), a.roi, Aval{fourth}...);
}
template <auto function>
VekStatus call(const Arguments& a)
{
    return invoke(function, a);
}

struct Member {
    const char* name;
    bool inverse;  // to RGB or CMYK
    int srcPlanes, srcBytes, dstPlanes, dstBytes;
    bool bgr;
    int greenBits;   // of packed pixels, else 0
    int chromaRows;  // rows that share a chroma sample with two columns, 0 for none
    bool black;
    VekStatus (*function)(const Arguments&);

    bool stream() const { return inverse && srcPlanes == 1; }
    bool lumaOnly() const { return !inverse && dstPlanes == 1; }
    bool stepsChecked() const { return chromaRows == 0 && (srcBytes != 4 && (dstBytes != 4 || black)); }
    // What is converted of a region.
    VekSize whole(VekSize roi) const
    {
        if (chromaRows == 0)
            return roi;
        return {roi.width & ~1, chromaRows == 2 ? roi.height & ~1 : roi.height};
    }
};
void PrintTo(const Member& m, std::ostream* os) { *os << m.name; }

constexpr Member members[] = {
    {"vekiYCbCrToRGB_JPEG_8u_P3R", true, 3, 1, 3, 1, false, 0, 0, false, call<vekiYCbCrToRGB_JPEG_8u_P3R>},
    {"vekiRGBToYCbCr_JPEG_8u_P3R", false, 3, 1, 3, 1, false, 0, 0, false, call<vekiRGBToYCbCr_JPEG_8u_P3R>},
    {"vekiCMYKToYCCK_JPEG_8u_P4R", false, 4, 1, 4, 1, false, 0, 0, true, call<vekiCMYKToYCCK_JPEG_8u_P4R>},
    {"vekiYCCKToCMYK_JPEG_8u_P4R", true, 4, 1, 4, 1, false, 0, 0, true, call<vekiYCCKToCMYK_JPEG_8u_P4R>},
    {"vekiYCbCrToRGB_JPEG_8u_P3C3R", true, 3, 1, 1, 3, false, 0, 0, false, call<vekiYCbCrToRGB_JPEG_8u_P3C3R>},
    {"vekiYCbCrToBGR_JPEG_8u_P3C3R", true, 3, 1, 1, 3, true, 0, 0, false, call<vekiYCbCrToBGR_JPEG_8u_P3C3R>},
    {"vekiYCCKToCMYK_JPEG_8u_P4C4R", true, 4, 1, 1, 4, false, 0, 0, true, call<vekiYCCKToCMYK_JPEG_8u_P4C4R>},
    {"vekiYCbCrToRGB555_JPEG_8u16u_P3C3R", true, 3, 1, 1, 2, false, 5, 0, false,
     call<vekiYCbCrToRGB555_JPEG_8u16u_P3C3R>},
    {"vekiYCbCrToBGR555_JPEG_8u16u_P3C3R", true, 3, 1, 1, 2, true, 5, 0, false,
     call<vekiYCbCrToBGR555_JPEG_8u16u_P3C3R>},
    {"vekiYCbCrToRGB565_JPEG_8u16u_P3C3R", true, 3, 1, 1, 2, false, 6, 0, false,
     call<vekiYCbCrToRGB565_JPEG_8u16u_P3C3R>},
    {"vekiYCbCrToBGR565_JPEG_8u16u_P3C3R", true, 3, 1, 1, 2, true, 6, 0, false,
     call<vekiYCbCrToBGR565_JPEG_8u16u_P3C3R>},
    {"vekiYCbCrToRGB_JPEG_8u_P3C4R", true, 3, 1, 1, 4, false, 0, 0, false, call<vekiYCbCrToRGB_JPEG_8u_P3C4R>},
    {"vekiYCbCrToBGR_JPEG_8u_P3C4R", true, 3, 1, 1, 4, true, 0, 0, false, call<vekiYCbCrToBGR_JPEG_8u_P3C4R>},
    {"vekiRGBToYCbCr_JPEG_8u_C3P3R", false, 1, 3, 3, 1, false, 0, 0, false, call<vekiRGBToYCbCr_JPEG_8u_C3P3R>},
    {"vekiBGRToYCbCr_JPEG_8u_C3P3R", false, 1, 3, 3, 1, true, 0, 0, false, call<vekiBGRToYCbCr_JPEG_8u_C3P3R>},
    {"vekiRGBToYCbCr_JPEG_8u_C4P3R", false, 1, 4, 3, 1, false, 0, 0, false, call<vekiRGBToYCbCr_JPEG_8u_C4P3R>},
    {"vekiBGRToYCbCr_JPEG_8u_C4P3R", false, 1, 4, 3, 1, true, 0, 0, false, call<vekiBGRToYCbCr_JPEG_8u_C4P3R>},
    {"vekiCMYKToYCCK_JPEG_8u_C4P4R", false, 1, 4, 4, 1, false, 0, 0, true, call<vekiCMYKToYCCK_JPEG_8u_C4P4R>},
    {"vekiRGB555ToYCbCr_JPEG_16u8u_C3P3R", false, 1, 2, 3, 1, false, 5, 0, false,
     call<vekiRGB555ToYCbCr_JPEG_16u8u_C3P3R>},
    {"vekiBGR555ToYCbCr_JPEG_16u8u_C3P3R", false, 1, 2, 3, 1, true, 5, 0, false,
     call<vekiBGR555ToYCbCr_JPEG_16u8u_C3P3R>},
    {"vekiRGB565ToYCbCr_JPEG_16u8u_C3P3R", false, 1, 2, 3, 1, false, 6, 0, false,
     call<vekiRGB565ToYCbCr_JPEG_16u8u_C3P3R>},
    {"vekiBGR565ToYCbCr_JPEG_16u8u_C3P3R", false, 1, 2, 3, 1, true, 6, 0, false,
     call<vekiBGR565ToYCbCr_JPEG_16u8u_C3P3R>},
    {"vekiRGBToY_JPEG_8u_P3C1R", false, 3, 1, 1, 1, false, 0, 0, false, call<vekiRGBToY_JPEG_8u_P3C1R>},
    {"vekiRGBToY_JPEG_8u_C3C1R", false, 1, 3, 1, 1, false, 0, 0, false, call<vekiRGBToY_JPEG_8u_C3C1R>},
    {"vekiBGRToY_JPEG_8u_C3C1R", false, 1, 3, 1, 1, true, 0, 0, false, call<vekiBGRToY_JPEG_8u_C3C1R>},
    {"vekiYCbCr422ToRGB_JPEG_8u_P3C3R", true, 3, 1, 1, 3, false, 0, 1, false, call<vekiYCbCr422ToRGB_JPEG_8u_P3C3R>},
    {"vekiYCbCr422ToBGR_JPEG_8u_P3C3R", true, 3, 1, 1, 3, true, 0, 1, false, call<vekiYCbCr422ToBGR_JPEG_8u_P3C3R>},
    {"vekiYCbCr411ToRGB_JPEG_8u_P3C3R", true, 3, 1, 1, 3, false, 0, 2, false, call<vekiYCbCr411ToRGB_JPEG_8u_P3C3R>},
    {"vekiYCbCr411ToBGR_JPEG_8u_P3C3R", true, 3, 1, 1, 3, true, 0, 2, false, call<vekiYCbCr411ToBGR_JPEG_8u_P3C3R>},
    {"vekiYCbCr422ToRGB_JPEG_8u_P3C4R", true, 3, 1, 1, 4, false, 0, 1, false, call<vekiYCbCr422ToRGB_JPEG_8u_P3C4R>},
    {"vekiYCbCr422ToBGR_JPEG_8u_P3C4R", true, 3, 1, 1, 4, true, 0, 1, false, call<vekiYCbCr422ToBGR_JPEG_8u_P3C4R>},
    {"vekiYCbCr411ToRGB_JPEG_8u_P3C4R", true, 3, 1, 1, 4, false, 0, 2, false, call<vekiYCbCr411ToRGB_JPEG_8u_P3C4R>},
    {"vekiYCbCr411ToBGR_JPEG_8u_P3C4R", true, 3, 1, 1, 4, true, 0, 2, false, call<vekiYCbCr411ToBGR_JPEG_8u_P3C4R>},
    {"vekiRGBToYCbCr422_JPEG_8u_C3P3R", false, 1, 3, 3, 1, false, 0, 1, false, call<vekiRGBToYCbCr422_JPEG_8u_C3P3R>},
    {"vekiBGRToYCbCr422_JPEG_8u_C3P3R", false, 1, 3, 3, 1, true, 0, 1, false, call<vekiBGRToYCbCr422_JPEG_8u_C3P3R>},
    {"vekiRGBToYCbCr422_JPEG_8u_C4P3R", false, 1, 4, 3, 1, false, 0, 1, false, call<vekiRGBToYCbCr422_JPEG_8u_C4P3R>},
    {"vekiBGRToYCbCr422_JPEG_8u_C4P3R", false, 1, 4, 3, 1, true, 0, 1, false, call<vekiBGRToYCbCr422_JPEG_8u_C4P3R>},
    {"vekiRGBToYCbCr411_JPEG_8u_C3P3R", false, 1, 3, 3, 1, false, 0, 2, false, call<vekiRGBToYCbCr411_JPEG_8u_C3P3R>},
    {"vekiBGRToYCbCr411_JPEG_8u_C3P3R", false, 1, 3, 3, 1, true, 0, 2, false, call<vekiBGRToYCbCr411_JPEG_8u_C3P3R>},
    {"vekiRGBToYCbCr411_JPEG_8u_C4P3R", false, 1, 4, 3, 1, false, 0, 2, false, call<vekiRGBToYCbCr411_JPEG_8u_C4P3R>},
    {"vekiBGRToYCbCr411_JPEG_8u_C4P3R", false, 1, 4, 3, 1, true, 0, 2, false, call<vekiBGRToYCbCr411_JPEG_8u_C4P3R>},
    {"vekiYCbCr422ToRGB_JPEG_8u_C2C3R", true, 1, 2, 1, 3, false, 0, 1, false, call<vekiYCbCr422ToRGB_JPEG_8u_C2C3R>},
};
static_assert(std::size(members) == 42);

// The planes of one image; each ends at an unmapped page, or some bytes before it. Chroma planes of a subsampled image
// are smaller.
class Image {
public:
    Image(int planes, int bytes, int chromaRows, VekSize size, Random& random)
    {
        for (int i = 0; i < planes; ++i) {
            const bool chroma = chromaRows > 0 && planes > 1 && i > 0;
            Plane p;
            p.width = (chroma ? size.width / 2 : size.width) * bytes;
            p.height = chroma ? size.height / chromaRows : size.height;
            p.step = p.width + random.in(0, 5);
            if (chromaRows == 0 && i > 0)
                p.step = planes_[0].step;
            p.memory = std::make_unique<GuardedBytes>(p.bytes(), Guard::Behind, random.in<size_t>(0, 17));
            std::memset(p.memory->data(), 0xA5, p.bytes());
            planes_.push_back(std::move(p));
        }
    }
    void fill(Random& random)
    {
        for (Plane& p : planes_)
            for (size_t i = 0; i < p.bytes(); ++i)
                p.memory->data()[i] = random.chance(30) ? random.extreme<uint8_t>() : random.any<uint8_t>();
    }
    // Sets byte `offset` of every `distance` bytes of a plane to value(column, row).
    template <typename Value>
    void set(int plane, int distance, int offset, const Value& value)
    {
        const Plane& p = planes_[static_cast<size_t>(plane)];
        for (int y = 0; y < p.height; ++y)
            for (int x = 0; distance * x + offset < p.width; ++x)
                *at(plane, distance * x + offset, y) = static_cast<uint8_t>(value(x, y));
    }
    uint8_t* at(int plane, int x, int y)
    {
        Plane& p = planes_[static_cast<size_t>(plane)];
        return p.memory->data() + int64_t{p.step} * y + x;
    }
    void pass(std::array<uint8_t*, 4>& pointers, std::array<int, 4>& steps)
    {
        for (size_t i = 0; i < planes_.size(); ++i) {
            pointers[i] = planes_[i].memory->data();
            steps[i] = planes_[i].step;
        }
    }
    std::vector<std::vector<uint8_t>> content() const
    {
        std::vector<std::vector<uint8_t>> all;
        for (const Plane& p : planes_) all.emplace_back(p.memory->data(), p.memory->data() + p.bytes());
        return all;
    }

private:
    struct Plane {
        int width = 0, height = 0, step = 0;
        std::unique_ptr<GuardedBytes> memory;
        size_t bytes() const
        {
            return static_cast<size_t>(step) * static_cast<size_t>(height - 1) + static_cast<size_t>(width);
        }
    };
    std::vector<Plane> planes_;
};

// Gives two of the channels every pair of values, one counting columns and one rows; packed pixels become every word.
void sweepPairs(const Member& m, Image& image)
{
    const auto column = [](int x, int) { return x; };
    const auto row = [](int, int y) { return y; };
    if (m.srcPlanes > 1) {
        image.set(1, 1, 0, column);
        image.set(2, 1, 0, row);
        return;
    }
    const int distance = m.stream() ? 4 : m.srcBytes;
    const int first = m.greenBits != 0 ? 0 : 1;
    image.set(0, distance, first, column);
    image.set(0, distance, m.stream() ? 3 : first + 1, row);
}

// Puts R, G, B into a pixel of the destination, or into its planes.
void putRgb(const Member& m, Image& image, int x, int y, Triple c, int black)
{
    if (m.black)
        c = {255 - c[0], 255 - c[1], 255 - c[2]};
    if (m.bgr)
        std::swap(c[0], c[2]);
    if (m.greenBits != 0) {
        const int word = c[0] >> 3 | (c[1] >> (8 - m.greenBits)) << 5 | (c[2] >> 3) << (5 + m.greenBits);
        *image.at(0, 2 * x, y) = static_cast<uint8_t>(word);
        *image.at(0, 2 * x + 1, y) = static_cast<uint8_t>(word >> 8);
        return;
    }
    for (int i = 0; i < 3; ++i) {
        uint8_t* const p = m.dstPlanes > 1 ? image.at(i, x, y) : image.at(0, m.dstBytes * x + i, y);
        *p = static_cast<uint8_t>(c[static_cast<size_t>(i)]);
    }
    if (m.dstPlanes == 4)
        *image.at(3, x, y) = static_cast<uint8_t>(black);
    if (m.dstBytes == 4)
        *image.at(0, 4 * x + 3, y) = m.black ? static_cast<uint8_t>(black) : fourth;
}

Triple rgbAt(const Member& m, Image& image, int x, int y, int& black)
{
    Triple c{};
    if (m.greenBits != 0) {
        const int word = *image.at(0, 2 * x, y) | *image.at(0, 2 * x + 1, y) << 8;
        const int green = (1 << m.greenBits) - 1;
        c = {(word & 31) << 3, (word >> 5 & green) << (8 - m.greenBits), (word >> (5 + m.greenBits) & 31) << 3};
    } else {
        for (int i = 0; i < 3; ++i)
            c[static_cast<size_t>(i)] = m.srcPlanes > 1 ? *image.at(i, x, y) : *image.at(0, m.srcBytes * x + i, y);
    }
    if (m.bgr)
        std::swap(c[0], c[2]);
    if (m.black) {
        black = m.srcPlanes == 4 ? *image.at(3, x, y) : *image.at(0, 4 * x + 3, y);
        c = {255 - c[0], 255 - c[1], 255 - c[2]};
    }
    return c;
}

void modelToRgb(const Member& m, Image& src, Image& dst, VekSize whole, int width)
{
    const bool planar = m.dstPlanes > 1 || m.greenBits != 0 || m.black;
    const int split = m.stream() ? width & ~7 : m.chromaRows > 0 ? width : width & ~3;
    const Inverse body = m.chromaRows > 0 ? Inverse::subsampled : planar ? Inverse::planar : Inverse::interleaved;
    for (int y = 0; y < whole.height; ++y)
        for (int x = 0; x < whole.width; ++x) {
            Triple ycc{};
            if (m.stream()) {
                ycc = {*src.at(0, 2 * x, y), *src.at(0, 2 * (x & ~1) + 1, y), *src.at(0, 2 * (x & ~1) + 3, y)};
            } else {
                const int cx = m.chromaRows > 0 ? x / 2 : x;
                const int cy = m.chromaRows > 0 ? y / m.chromaRows : y;
                ycc = {*src.at(0, x, y), *src.at(1, cx, cy), *src.at(2, cx, cy)};
            }
            const Inverse form = x < split ? body : Inverse::rounded;
            putRgb(m, dst, x, y, model::toRgb(form, ycc[0], ycc[1], ycc[2]), m.black ? *src.at(3, x, y) : 0);
        }
}

void modelToYcc(const Member& m, Image& src, Image& dst, VekSize whole, int width)
{
    const bool interleaved = m.srcPlanes == 1 && !m.black;
    for (int y = 0; y < whole.height; ++y)
        for (int x = 0; x < whole.width; ++x) {
            int black = 0;
            const Triple c = rgbAt(m, src, x, y, black);
            const bool tail = interleaved ? x >= (width & ~7) : x >= (width & ~3);
            Forward form =
                interleaved ? (tail ? Forward::q14 : Forward::q15) : (tail ? Forward::q16 : Forward::differences);
            if (m.greenBits != 0)
                form = Forward::q14;
            if (m.lumaOnly() && interleaved)
                form = Forward::q15;
            Triple ycc = model::toYcc(form, c[0], c[1], c[2]);
            if (m.lumaOnly() && !interleaved && !tail)
                ycc[0] = model::lumaInSinglePrecision(c[0], c[1], c[2]);
            for (int i = 0; i < std::min(m.dstPlanes, 3); ++i)
                *dst.at(i, x, y) = static_cast<uint8_t>(ycc[static_cast<size_t>(i)]);
            if (m.dstPlanes == 4)
                *dst.at(3, x, y) = static_cast<uint8_t>(black);
        }
}

void modelToSubsampled(const Member& m, Image& src, Image& dst, VekSize whole, int width)
{
    for (int y = 0; y < whole.height; y += m.chromaRows)
        for (int x = 0; x < whole.width; x += 2) {
            const bool body = x < (width & ~15);
            Triple sum{};
            for (int dy = 0; dy < m.chromaRows; ++dy)
                for (int dx = 0; dx < 2; ++dx) {
                    int black = 0;
                    const Triple c = rgbAt(m, src, x + dx, y + dy, black);
                    *dst.at(0, x + dx, y + dy) = static_cast<uint8_t>(model::subsampledLuma(body, c[0], c[1], c[2]));
                    for (size_t i = 0; i < 3; ++i) sum[i] += c[i];
                }
            const auto chroma = model::subsampledChroma(body, 2 * m.chromaRows, sum[0], sum[1], sum[2]);
            *dst.at(1, x / 2, y / m.chromaRows) = static_cast<uint8_t>(chroma[0]);
            *dst.at(2, x / 2, y / m.chromaRows) = static_cast<uint8_t>(chroma[1]);
        }
}

class Colour : public testing::TestWithParam<Member> {
protected:
    enum class Pairs { Any, Every };

    // One region; the result is compared with the model's byte for byte, gaps included.
    void expectRegion(VekSize roi, Random& random, Pairs pairs = Pairs::Any)
    {
        const Member& m = GetParam();
        const VekSize whole = m.whole(roi);
        Image src(m.srcPlanes, m.srcBytes, m.chromaRows, whole, random);
        Image dst(m.dstPlanes, m.dstBytes, m.chromaRows, whole, random);
        src.fill(random);
        if (pairs == Pairs::Every)
            sweepPairs(m, src);
        const auto untouched = dst.content();
        Arguments a;
        a.roi = roi;
        src.pass(a.src, a.srcStep);
        dst.pass(a.dst, a.dstStep);
        const auto source = src.content();
        const bool odd = whole.width != roi.width || whole.height != roi.height;
        ASSERT_EQ(odd ? vekStsOddSize : vekStsOk, m.function(a));
        const auto got = dst.content();
        ASSERT_EQ(source, src.content());
        for (size_t i = 0; i < untouched.size(); ++i) std::memcpy(a.dst[i], untouched[i].data(), untouched[i].size());
        if (m.inverse)
            modelToRgb(m, src, dst, whole, roi.width);
        else if (m.chromaRows > 0)
            modelToSubsampled(m, src, dst, whole, roi.width);
        else
            modelToYcc(m, src, dst, whole, roi.width);
        ASSERT_EQ(dst.content(), got) << roi.width << " x " << roi.height;
    }
};

TEST_P(Colour, EqualsItsModelInEveryWidth)
{
    Random random(1);
    const int least = GetParam().chromaRows > 0 ? 2 : 1;
    for (int width = least; width <= 80; ++width)
        for (int round = 0; round < 3; ++round) {
            expectRegion({width, random.in(GetParam().chromaRows == 2 ? 2 : 1, 5)}, random);
            if (HasFatalFailure())
                return;
        }
}

TEST_P(Colour, EqualsItsModelOnEveryPairOfTwoChannels)
{
    Random random(4);
    const Member& m = GetParam();
    const bool sharedChroma = m.srcPlanes > 1 && m.chromaRows > 0;
    expectRegion({sharedChroma || m.stream() ? 512 : 256, sharedChroma ? 256 * m.chromaRows : 256}, random,
                 Pairs::Every);
}

TEST_P(Colour, EqualsItsModelOnRegionsForSeveralThreads)
{
    Random random(2);
    const int before = omp_get_max_threads();
    for (int threads : {1, 2, 5}) {
        omp_set_num_threads(threads);
        expectRegion({8192 / 64, 64}, random);
        expectRegion({2731, 3}, random);
        expectRegion({127, 130}, random);
    }
    omp_set_num_threads(before);
}

TEST_P(Colour, ChecksItsArgumentsInOrder)
{
    const Member& m = GetParam();
    Random random(3);
    Image src(m.srcPlanes, m.srcBytes, m.chromaRows, {16, 4}, random);
    Image dst(m.dstPlanes, m.dstBytes, m.chromaRows, {16, 4}, random);
    Arguments good;
    good.roi = {16, 4};
    src.pass(good.src, good.srcStep);
    dst.pass(good.dst, good.dstStep);
    const auto before = dst.content();
    Arguments bad = good;
    bad.roi = {0, 0};
    bad.srcStep = bad.dstStep = {0, 0, 0, 0};
    for (int i = 0; i < m.srcPlanes; ++i) {
        Arguments a = bad;
        a.src[static_cast<size_t>(i)] = nullptr;
        EXPECT_EQ(vekStsNullPointer, m.function(a));
    }
    for (int i = 0; i < m.dstPlanes; ++i) {
        Arguments a = bad;
        a.dst[static_cast<size_t>(i)] = nullptr;
        EXPECT_EQ(vekStsNullPointer, m.function(a));
    }
    Arguments missing = bad;
    missing.srcMissing = true;
    EXPECT_EQ(vekStsNullPointer, m.function(missing));
    missing = bad;
    missing.dstMissing = true;
    EXPECT_EQ(vekStsNullPointer, m.function(missing));
    EXPECT_EQ(m.stepsChecked() ? vekStsBadStep : vekStsBadSize, m.function(bad));
    bad.srcStep = good.srcStep;
    EXPECT_EQ(m.stepsChecked() ? vekStsBadStep : vekStsBadSize, m.function(bad));
    bad.dstStep = good.dstStep;
    for (const VekSize roi : {VekSize{0, 4}, VekSize{16, 0}, VekSize{-1, 4}, VekSize{m.chromaRows > 0 ? 1 : 0, 4},
                              VekSize{16, m.chromaRows == 2 ? 1 : 0}}) {
        bad.roi = roi;
        EXPECT_EQ(vekStsBadSize, m.function(bad));
    }
    EXPECT_EQ(before, dst.content());
    EXPECT_EQ(vekStsOk, m.function(good));
}

INSTANTIATE_TEST_SUITE_P(Members, Colour, testing::ValuesIn(members),
                         [](const auto& member) { return std::string(member.param.name); });

// A row of equal pixels through three planes
std::vector<uint8_t> rowOf(int width, uint8_t a, uint8_t b, uint8_t c)
{
    std::vector<uint8_t> pixels;
    for (int i = 0; i < width; ++i) pixels.insert(pixels.end(), {a, b, c});
    return pixels;
}

TEST(ColourCases, TheFormsOfARowDifferAtCr179)
{
    const std::vector<uint8_t> y(5, 100);
    const std::vector<uint8_t> cb(5, 128);
    const std::vector<uint8_t> cr(5, 179);
    const uint8_t* const src[3] = {y.data(), cb.data(), cr.data()};
    std::vector<uint8_t> dst(15);
    ASSERT_EQ(vekStsOk, vekiYCbCrToRGB_JPEG_8u_P3C3R(src, 5, dst.data(), 15, {5, 1}));
    EXPECT_EQ(171, dst[0]);
    EXPECT_EQ(172, dst[12]);
}

TEST(ColourCases, PureBlueWrapsInTheTailOfARowOnly)
{
    for (const auto& [function, rows] :
         {std::pair(&vekiRGBToYCbCr422_JPEG_8u_C3P3R, 1), std::pair(&vekiRGBToYCbCr411_JPEG_8u_C3P3R, 2)}) {
        std::vector<uint8_t> src = rowOf(18 * rows, 0, 0, 255);
        std::vector<uint8_t> y(static_cast<size_t>(18 * rows));
        std::vector<uint8_t> cb(9);
        std::vector<uint8_t> cr(9);
        uint8_t* const dst[3] = {y.data(), cb.data(), cr.data()};
        const int steps[3] = {18, 9, 9};
        ASSERT_EQ(vekStsOk, function(src.data(), 54, dst, steps, {18, rows}));
        EXPECT_EQ(255, cb[0]);
        EXPECT_EQ(255, cb[7]);
        EXPECT_EQ(0, cb[8]);
        src = rowOf(18 * rows, 255, 255, 255);
        ASSERT_EQ(vekStsOk, function(src.data(), 54, dst, steps, {18, rows}));
        for (const uint8_t c : {cb[0], cb[8], cr[0], cr[8]}) EXPECT_EQ(128, c);
    }
}

TEST(ColourCases, WhiteAndBlackPixelsOfTwelveColumnsEndInTheCoarserForm)
{
    Triple fine = model::toYcc(Forward::q15, 200, 17, 91);
    Triple coarse = model::toYcc(Forward::q14, 200, 17, 91);
    const std::vector<uint8_t> src = rowOf(12, 200, 17, 91);
    std::vector<uint8_t> planes(36);
    uint8_t* const dst[3] = {planes.data(), planes.data() + 12, planes.data() + 24};
    ASSERT_EQ(vekStsOk, vekiRGBToYCbCr_JPEG_8u_C3P3R(src.data(), 36, dst, 12, {12, 1}));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(fine[i], dst[i][7]);
        EXPECT_EQ(coarse[i], dst[i][8]);
    }
}

}  // namespace
