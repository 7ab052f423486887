#include "texture/bc7_rough_fit.h"

#include <algorithm>
#include <cmath>

#include "texture/bc7_palette_search.h"
#include "texture/bc7_svd.h"

namespace q3 {
namespace {

constexpr int rowFloats = 8;
constexpr int axisFloats = 16;

struct SubsetPixels {
    std::array<std::array<float, 4>, 16> pixels;
    int count = 0;
};

uint8_t byteOf(float v) { return static_cast<uint8_t>(!(v < 255.0F) ? 255 : !(v > 0.0F) ? 0 : static_cast<int>(v)); }

// The ends of three pixels and more along the main axis of their first `channels` channels.
Bc7EndpointPair fitLine(const SubsetPixels& subset, int channels)
{
    const auto used = static_cast<size_t>(channels);
    const auto count = static_cast<size_t>(subset.count);
    std::array<float, 4> mean{};
    for (size_t i = 0; i < count; ++i)
        for (size_t c = 0; c < used; ++c) mean[c] += subset.pixels[i][c];
    const float share = 1.0F / static_cast<float>(subset.count);
    for (float& m : mean) m *= share;

    std::array<float, 16 * rowFloats> centred, scratch;
    for (size_t i = 0; i < count; ++i)
        for (size_t c = 0; c < used; ++c) centred[i * rowFloats + c] = subset.pixels[i][c] - mean[c];
    for (size_t i = 0; i < count; ++i)
        for (size_t c = 0; c < used; ++c) scratch[i * rowFloats + c] = centred[i * rowFloats + c];
    std::array<float, 4> values;
    std::array<float, 4 * axisFloats> axes;
    svd_32f(channels, subset.count, scratch.data(), rowFloats, values.data(), axes.data(), axisFloats);

    float lowest = 0, highest = 0;
    for (size_t i = 0; i < count; ++i) {
        const float* const p = centred.data() + i * rowFloats;
        const float t = channels == 3
                            ? std::fma(p[2], axes[2], std::fma(p[0], axes[0], p[1] * axes[1]))
                            : std::fma(p[1], axes[1], p[2] * axes[2]) + std::fma(p[0], axes[0], p[3] * axes[3]);
        lowest = i == 0 ? t : std::min(lowest, t);
        highest = i == 0 ? t : std::max(highest, t);
    }
    Bc7EndpointPair ends{};
    for (size_t c = 0; c < used; ++c) {
        ends.a[c] = byteOf(std::fma(lowest, axes[c], mean[c]));
        ends.b[c] = byteOf(std::fma(highest, axes[c], mean[c]));
    }
    return ends;
}

Bc7EndpointPair endsOf(const SubsetPixels& subset, bool isAlphaApart)
{
    const auto bytes = [](const std::array<float, 4>& p) {
        Bc7Colour colour;
        for (size_t c = 0; c < 4; ++c) colour[c] = static_cast<uint8_t>(p[c]);
        return colour;
    };
    if (subset.count <= 2)
        return {bytes(subset.pixels[0]), bytes(subset.pixels[static_cast<size_t>(subset.count) - 1])};
    if (!isAlphaApart)
        return fitLine(subset, 4);
    Bc7EndpointPair ends = fitLine(subset, 3);
    const auto [lowest, highest] = std::minmax_element(subset.pixels.begin(), subset.pixels.begin() + subset.count,
                                                       [](const auto& p, const auto& q) { return p[3] < q[3]; });
    ends.a[3] = static_cast<uint8_t>((*lowest)[3]);
    ends.b[3] = static_cast<uint8_t>((*highest)[3]);
    return ends;
}

struct SubsetPlace {
    uint8_t partition, subset;
};
using SubsetPlaces = std::array<std::array<SubsetPlace, 3>, 64>;

// Where the pixels of each subset are first a subset. Of the 192 subsets of three-subset partitions 140 differ; of
// two-subset partitions all do.
constexpr SubsetPlaces firstPlaces = [] {
    SubsetPlaces places{};
    std::array<uint32_t, 192> seen{};  // the pixels of each, a bit for a pixel
    for (size_t n = 0; n < seen.size(); ++n) {
        for (size_t i = 0; i < 16; ++i)
            if (subset_index_three_subsets[n / 3][i] == n % 3)
                seen[n] |= 1U << i;
        size_t first = 0;
        while (seen[first] != seen[n]) ++first;
        places[n / 3][n % 3] = {static_cast<uint8_t>(first / 3), static_cast<uint8_t>(first % 3)};
    }
    return places;
}();

}  // namespace

int32_t RoughMSE(const Bc7Mode& mode, const Bc7Pixels& pixels, size_t partition, uint32_t selection,
                 std::array<Bc7Endpoints, 64>& endpoints)
{
    const Partition& subsetOf = subsetsOf(mode, partition);
    std::array<SubsetPixels, 3> subsets;
    for (size_t i = 0; i < 16; ++i) {
        SubsetPixels& subset = subsets[subsetOf[i]];
        std::array<float, 4>& p = subset.pixels[static_cast<size_t>(subset.count++)];
        for (size_t c = 0; c < 4; ++c) p[c] = pixels.channels[c][i];
    }
    Bc7Endpoints ends{};
    for (size_t p = 0; p < static_cast<size_t>(mode.subsets); ++p) {
        const SubsetPlace first = firstPlaces[partition][p];
        ends[p] = mode.subsets == 3 && first.partition < partition ? endpoints[first.partition][first.subset]
                                                                   : endsOf(subsets[p], hasAlphaSet(mode));
    }
    endpoints[partition] = ends;

    std::array<int32_t, 16> errors;
    searchBlock(mode, selection, pixels, endpointsOfPixels(subsetOf, ends)).errors.store(errors.data());
    int32_t sum = 0;
    for (const int32_t error : errors) sum += error;
    return sum;
}

}  // namespace q3
