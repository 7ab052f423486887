#include "texture/bc7_rough_fit.h"

#include <algorithm>
#include <cstddef>

#include "texture/bc7_axes.h"
#include "texture/bc7_palette_search.h"
#include "texture/bc7_svd.h"

namespace q3 {
namespace {

uint8_t byteOf(float v) { return static_cast<uint8_t>(!(v < 255.0F) ? 255 : !(v > 0.0F) ? 0 : static_cast<int>(v)); }

struct SubsetPixels {
    std::array<std::array<float, 4>, 16> pixels;
    size_t count = 0;
};

// Fits lines to subsets of three pixels and more, along the main axis of their first `channels` channels: four at a
// time, in lanes.
class LineFits {
public:
    explicit LineFits(size_t channels) : channels_(channels) {}

    // Stores the channels of the line's ends at the latest in finish().
    void add(const SubsetPixels& subset, Bc7EndpointPair& ends)
    {
        const size_t lane = count_++;
        ends_[lane] = &ends;
        rows_[lane] = static_cast<float>(subset.count);
        mostRows_ = std::max(mostRows_, subset.count);
        std::array<float, 4> mean{};
        for (size_t i = 0; i < subset.count; ++i)
            for (size_t c = 0; c < channels_; ++c) mean[c] += subset.pixels[i][c];
        const float share = 1.0F / static_cast<float>(subset.count);
        for (size_t c = 0; c < channels_; ++c) means_[c][lane] = mean[c] *= share;
        for (size_t i = 0; i < subset.count; ++i)
            for (size_t c = 0; c < channels_; ++c) centred_[i][c][lane] = subset.pixels[i][c] - mean[c];
        if (count_ == lanes)
            finish();
    }

    void finish()
    {
        if (count_ == 0)
            return;
        MatrixLanes pixels{};
        for (size_t i = 0; i < mostRows_; ++i)
            for (size_t c = 0; c < channels_; ++c) pixels[i][c] = _mm_load_ps(centred_[i][c].data());
        const RowLanes axes = axesOf(pixels);
        const auto placeOf = [&](const RowLanes& p) {
            if (channels_ == 3)
                return _mm_fmadd_ps(p[2], axes[2], _mm_fmadd_ps(p[0], axes[0], _mm_mul_ps(p[1], axes[1])));
            return _mm_add_ps(_mm_fmadd_ps(p[1], axes[1], _mm_mul_ps(p[2], axes[2])),
                              _mm_fmadd_ps(p[0], axes[0], _mm_mul_ps(p[3], axes[3])));
        };
        __m128 lowest = placeOf(pixels[0]), highest = lowest;
        for (size_t i = 1; i < mostRows_; ++i) {
            const __m128 place = placeOf(pixels[i]);
            const __m128 isThere = _mm_cmplt_ps(_mm_set1_ps(static_cast<float>(i)), _mm_load_ps(rows_.data()));
            lowest = _mm_blendv_ps(lowest, _mm_min_ps(place, lowest), isThere);
            highest = _mm_blendv_ps(highest, _mm_max_ps(place, highest), isThere);
        }
        for (size_t c = 0; c < channels_; ++c) {
            alignas(16) Lanes a, b;
            const __m128 mean = _mm_load_ps(means_[c].data());
            _mm_store_ps(a.data(), _mm_fmadd_ps(lowest, axes[c], mean));
            _mm_store_ps(b.data(), _mm_fmadd_ps(highest, axes[c], mean));
            for (size_t lane = 0; lane < count_; ++lane) {
                ends_[lane]->a[c] = byteOf(a[lane]);
                ends_[lane]->b[c] = byteOf(b[lane]);
            }
        }
        count_ = mostRows_ = 0;
        centred_ = {};
    }

private:
    static constexpr size_t lanes = 4;
    using Lanes = std::array<float, lanes>;

    RowLanes axesOf(MatrixLanes pixels) const
    {
        if (count_ > 1)
            return mainAxes(static_cast<int>(channels_), static_cast<int>(mostRows_), pixels);
        constexpr size_t rowFloats = 8, axisFloats = 16;
        std::array<float, 16 * rowFloats> matrix;
        for (size_t i = 0; i < mostRows_; ++i)
            for (size_t c = 0; c < channels_; ++c) matrix[i * rowFloats + c] = centred_[i][c][0];
        std::array<float, 4> values;
        std::array<float, 4 * axisFloats> rows;
        svd_32f(static_cast<int>(channels_), static_cast<int>(mostRows_), matrix.data(), rowFloats, values.data(),
                rows.data(), axisFloats);
        RowLanes axes{};
        for (size_t c = 0; c < channels_; ++c) axes[c] = _mm_set1_ps(rows[c]);
        return axes;
    }

    size_t channels_;
    size_t count_ = 0, mostRows_ = 0;
    std::array<Bc7EndpointPair*, lanes> ends_;
    alignas(16) Lanes rows_{};
    alignas(16) std::array<Lanes, 4> means_{};
    alignas(16) std::array<std::array<Lanes, 4>, 16> centred_{};
};

void fitSubset(const SubsetPixels& subset, bool isAlphaApart, LineFits& lines, Bc7EndpointPair& ends)
{
    if (subset.count > 2)
        lines.add(subset, ends);
    for (size_t c = 0; c < 4 && subset.count <= 2; ++c) {
        ends.a[c] = static_cast<uint8_t>(subset.pixels[0][c]);
        ends.b[c] = static_cast<uint8_t>(subset.pixels[subset.count - 1][c]);
    }
    if (!isAlphaApart)
        return;
    const auto [lowest, highest] =
        std::minmax_element(subset.pixels.begin(), subset.pixels.begin() + static_cast<ptrdiff_t>(subset.count),
                            [](const auto& p, const auto& q) { return p[3] < q[3]; });
    ends.a[3] = static_cast<uint8_t>((*lowest)[3]);
    ends.b[3] = static_cast<uint8_t>((*highest)[3]);
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

// Whether the line was fitted for another partition before.
bool isKnown(const Bc7Mode& mode, size_t partition, size_t subset)
{
    return mode.subsets == 3 && firstPlaces[partition][subset].partition < partition;
}

}  // namespace

void RoughMSE(const Bc7Mode& mode, const Bc7Pixels& pixels, size_t partitions, uint32_t selection,
              Bc7Endpoints* endpoints, int32_t* errors)
{
    LineFits lines(hasAlphaSet(mode) ? 3 : 4);
    for (size_t s = 0; s < partitions; ++s) {
        const Partition& subsetOf = subsetsOf(mode, s);
        std::array<SubsetPixels, 3> subsets;
        for (size_t i = 0; i < 16; ++i) {
            SubsetPixels& subset = subsets[subsetOf[i]];
            std::array<float, 4>& p = subset.pixels[subset.count++];
            for (size_t c = 0; c < 4; ++c) p[c] = pixels.channels[c][i];
        }
        endpoints[s] = {};
        for (size_t p = 0; p < static_cast<size_t>(mode.subsets); ++p)
            if (!isKnown(mode, s, p))
                fitSubset(subsets[p], hasAlphaSet(mode), lines, endpoints[s][p]);
    }
    lines.finish();
    for (size_t s = 0; s < partitions; ++s) {
        for (size_t p = 0; p < static_cast<size_t>(mode.subsets); ++p)
            if (isKnown(mode, s, p))
                endpoints[s][p] = endpoints[firstPlaces[s][p].partition][firstPlaces[s][p].subset];
        std::array<int32_t, 16> pixelErrors;
        searchBlock(mode, selection, pixels, endpointsOfPixels(subsetsOf(mode, s), endpoints[s]))
            .errors.store(pixelErrors.data());
        errors[s] = 0;
        for (const int32_t error : pixelErrors) errors[s] += error;
    }
}

}  // namespace q3
