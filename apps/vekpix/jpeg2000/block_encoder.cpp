#include "jpeg2000/block_encoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <stdexcept>

#include "jpeg2000/block_style.h"
#include "jpeg2000/packet_code.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg2000 {

namespace {

struct FreeState {
    void operator()(VekEncodeState_JPEG2K* state) const { vekiEncodeFree_JPEG2K(state); }
};

// Integers become signs and magnitudes.
void toMagnitudes(int32_t* row, int width)
{
    for (int x = 0; x < width; ++x) row[x] = (row[x] & INT32_MIN) | std::abs(row[x]);
}

// Samples with bits behind the point become signs and quantised magnitudes, with `fraction` such bits. Returns the
// squared error of what a decoder makes of all their planes.
float toMagnitudes(int32_t* row, int width, float scale, int fraction)
{
    const auto unit = static_cast<float>(1 << fraction);
    constexpr int lanes = 8;
    std::array<float, lanes> errors{};
    const auto convert = [&](int x, float& error) {
        const float exact = std::abs(static_cast<float>(row[x])) * scale;
        const auto magnitude = static_cast<int32_t>(exact);
        const int32_t coded = magnitude >> fraction;
        const float decoded = coded == 0 ? 0.0F : (static_cast<float>(coded) + 0.5F) * unit;
        error += (exact - decoded) * (exact - decoded);
        row[x] = (row[x] & INT32_MIN) | magnitude;
    };
    int x = 0;
    for (; x + lanes <= width; x += lanes)
        for (int lane = 0; lane < lanes; ++lane) convert(x + lane, errors[static_cast<size_t>(lane)]);
    for (; x < width; ++x) convert(x, errors[0]);
    return std::accumulate(errors.begin(), errors.end(), 0.0F);
}

// The upper convex hull of bytes and distortion.
std::vector<Cut> convexCuts(const std::vector<uint32_t>& passEnds, const std::vector<double>& distortions)
{
    struct Point {
        Cut cut;
        uint32_t bytes;
    };
    std::vector<Point> hull = {{{}, 0}};
    for (size_t i = 0; i < passEnds.size(); ++i) {
        Cut cut = {static_cast<int>(i) + 1, 0, distortions[i]};
        for (;;) {
            const Point& last = hull.back();
            if (cut.distortion <= last.cut.distortion)
                break;
            const double bytes = static_cast<double>(passEnds[i]) - last.bytes;
            cut.slope = bytes > 0 ? (cut.distortion - last.cut.distortion) / bytes : HUGE_VAL;
            if (hull.size() == 1 || cut.slope < last.cut.slope) {
                hull.push_back({cut, passEnds[i]});
                break;
            }
            hull.pop_back();
        }
    }
    std::vector<Cut> cuts;
    for (size_t i = 1; i < hull.size(); ++i) cuts.push_back(hull[i].cut);
    return cuts;
}

}  // namespace

struct BlockEncoders::Encoder {
    std::unique_ptr<VekEncodeState_JPEG2K, FreeState> state;
    std::vector<uint8_t> room;
};

BlockEncoders::BlockEncoders(int blockWidth, int blockHeight, int style, bool reversible)
    : blockWidth_(blockWidth), blockHeight_(blockHeight), style_(style), reversible_(reversible)
{
}

BlockEncoders::~BlockEncoders() = default;

std::unique_ptr<BlockEncoders::Encoder> BlockEncoders::take()
{
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            std::unique_ptr<Encoder> encoder = std::move(idle_.back());
            idle_.pop_back();
            return encoder;
        }
    }
    auto encoder = std::make_unique<Encoder>();
    VekEncodeState_JPEG2K* state = nullptr;
    expectOk(vekiEncodeInitAlloc_JPEG2K(&state, {blockWidth_, blockHeight_}), "vekiEncodeInitAlloc");
    encoder->state.reset(state);
    encoder->room.resize(static_cast<size_t>(blockWidth_) * static_cast<size_t>(blockHeight_) * 5 + 1024);
    return encoder;
}

CodedBlock BlockEncoders::encode(const Plane& plane, const BlockPlace& place, Orientation orientation,
                                 const BandCoding& coding, int lowestPlane)
{
    CodedBlock block;
    double error = 0;
    for (int y = 0; y < place.height; ++y) {
        int32_t* const row = plane.at(place.x, place.y + y);
        if (reversible_)
            toMagnitudes(row, place.width);
        else
            error += toMagnitudes(row, place.width, coding.scale, coding.fractionPlanes);
    }
    block.leftover = std::ldexp(error, -2 * coding.fractionPlanes) * coding.weight;

    std::unique_ptr<Encoder> encoder = take();
    VekEncodeState_JPEG2K* const state = encoder->state.get();
    constexpr int nearShortest = 1;
    constexpr int predictable = 2;
    const int termination = (style_ & stylePredictableTermination) != 0 ? predictable : nearShortest;
    const int style = libraryStyle(style_) | (reversible_ ? libraryExactLowestPlane : 0);
    const int lowest = coding.fractionPlanes + lowestPlane;
    int planes = 0, passes = 0, segments = 0;
    expectOk(vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(plane.at(place.x, place.y), plane.stepBytes(),
                                                    {place.width, place.height}, state, libraryBand(orientation),
                                                    31 - lowest, termination, 0, style, &planes, &passes, &segments),
             "vekiEncodeLoadCodeBlock");
    const int codedPlanes = std::max(0, planes - coding.fractionPlanes);
    if (codedPlanes > coding.planes)
        throw std::logic_error("a code-block has more bit planes than its band");
    block.zeroPlanes = coding.planes - codedPlanes;

    int length = static_cast<int>(encoder->room.size());
    int isNotFinished = 0;
    expectOk(vekiEncodeStoreBits_JPEG2K_1u(encoder->room.data(), &length, state, &isNotFinished),
             "vekiEncodeStoreBits");
    if (isNotFinished != 0)
        throw std::logic_error("a code-block is longer than its room");
    block.bytes.assign(encoder->room.begin(), encoder->room.begin() + length);

    std::vector<double> distortions(static_cast<size_t>(passes));
    const double unit = std::ldexp(coding.weight, 2 * lowestPlane);
    uint32_t end = 0;
    int segment = -1, lastOfSegment = -1;
    uint32_t segmentEnd = 0;
    for (int i = 0; i < passes; ++i) {
        if (i > lastOfSegment) {
            end = segmentEnd;
            int segmentLength = 0;
            expectOk(vekiEncodeGetTermPassLen_JPEG2K(state, ++segment, &segmentLength), "vekiEncodeGetTermPassLen");
            segmentEnd += static_cast<uint32_t>(segmentLength);
            lastOfSegment = std::min(passes, i + segmentPasses(style_, i)) - 1;
        }
        int rate = 0;
        expectOk(vekiEncodeGetRate_JPEG2K(state, i, &rate), "vekiEncodeGetRate");
        end = std::clamp(static_cast<uint32_t>(rate), end, segmentEnd);
        block.passEnds.push_back(end);
        block.segmentEnds.push_back(segmentEnd);
        double distortion = 0;
        expectOk(vekiEncodeGetDist_JPEG2K(state, i, &distortion), "vekiEncodeGetDist");
        distortions[static_cast<size_t>(i)] = distortion * unit;
    }
    block.cuts = convexCuts(block.passEnds, distortions);
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(encoder));
    return block;
}

}  // namespace vekpix::jpeg2000
