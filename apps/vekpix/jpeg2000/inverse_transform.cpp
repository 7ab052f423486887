#include "jpeg2000/inverse_transform.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "error.h"
#include "jpeg2000/band_scale.h"
#include "jpeg2000/wavelets.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int rowsAtOnce = 64;

void inverseWavelet(const TileComponent& component, const CodingStyle& style, int droppedResolutions,
                    const Plane& plane)
{
    Wavelet wavelet(style.reversible);
    for (int r = 1; r <= style.levels - droppedResolutions; ++r)
        wavelet.inverse(plane, component.resolutions[static_cast<size_t>(r)].rect);
}

float toFloat(int32_t fixed, float unit) { return static_cast<float>(fixed) * unit; }

int32_t rounded(float value)
{
    constexpr float largest = 1 << 30;
    return static_cast<int32_t>(std::nearbyint(std::min(std::max(value, -largest), largest)));
}

// Samples with bits behind the point become integers, row by row; three components pass through the ICT on the way.
class IrreversibleRows {
public:
    IrreversibleRows(int width, int fraction, int components, bool transform)
        : width_(static_cast<size_t>(width)), unit_(std::ldexp(1.0F, -fraction)), transform_(transform)
    {
        for (int c = 0; c < components; ++c) rows_[static_cast<size_t>(c)].resize(width_);
    }

    void convert(const std::array<int32_t*, 3>& rows, size_t components)
    {
        for (size_t c = 0; c < components; ++c)
            for (size_t x = 0; x < width_; ++x) rows_[c][x] = toFloat(rows[c][x], unit_);
        if (transform_) {
            float* const planes[3] = {rows_[0].data(), rows_[1].data(), rows_[2].data()};
            const auto width = static_cast<int>(width_);
            expectOk(vekiICTInv_JPEG2K_32f_P3IR(planes, width * static_cast<int>(sizeof(float)), {width, 1}),
                     "vekiICTInv");
        }
        for (size_t c = 0; c < components; ++c)
            for (size_t x = 0; x < width_; ++x) rows[c][x] = rounded(rows_[c][x]);
    }

private:
    size_t width_;
    float unit_;
    bool transform_;
    std::array<std::vector<float>, 3> rows_;
};

// The samples that a plane holds.
Rect planeRect(const TileLayout& layout, size_t component, int droppedResolutions)
{
    const std::vector<Resolution>& resolutions = layout.components[component].resolutions;
    return resolutions[resolutions.size() - 1 - static_cast<size_t>(droppedResolutions)].rect;
}

void undoComponents(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                    const Wanted& wanted, const std::vector<Plane>& planes, size_t first, size_t count, bool transform,
                    Crew& crew)
{
    const Rect rect = planeRect(layout, first, wanted.droppedResolutions);
    const bool reversible = parameters.components[first].style.reversible;
    if (rect.empty() || (reversible && !transform))
        return;
    const int fraction = fractionBits(size.components[first].bits);
    crew.run((rect.height() + rowsAtOnce - 1) / rowsAtOnce, [&](int item) {
        const int y0 = item * rowsAtOnce, y1 = std::min(rect.height(), y0 + rowsAtOnce);
        if (reversible) {
            int32_t* const rows[3] = {planes[0].at(0, y0), planes[1].at(0, y0), planes[2].at(0, y0)};
            expectOk(vekiRCTInv_JPEG2K_32s_P3IR(rows, planes[0].stepBytes(), {rect.width(), y1 - y0}), "vekiRCTInv");
            return;
        }
        IrreversibleRows converter(rect.width(), fraction, static_cast<int>(count), transform);
        for (int y = y0; y < y1; ++y) {
            std::array<int32_t*, 3> rows{};
            for (size_t c = 0; c < count; ++c) rows[c] = planes[first + c].at(0, y);
            converter.convert(rows, count);
        }
    });
}

bool canTransform(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters)
{
    if (size.components.size() < 3)
        return false;
    for (size_t c = 1; c < 3; ++c)
        if (layout.components[c].rect != layout.components[0].rect ||
            parameters.components[c].style.reversible != parameters.components[0].style.reversible ||
            fractionBits(size.components[c].bits) != fractionBits(size.components[0].bits) ||
            parameters.components[c].style.levels != parameters.components[0].style.levels)
            return false;
    return true;
}

}  // namespace

void inverseTransform(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                      const Wanted& wanted, const std::vector<Plane>& planes, Crew& crew)
{
    crew.run(static_cast<int>(planes.size()), [&](int c) {
        const auto component = static_cast<size_t>(c);
        inverseWavelet(layout.components[component], parameters.components[component].style, wanted.droppedResolutions,
                       planes[component]);
    });
    size_t first = 0;
    if (parameters.componentTransform) {
        if (!canTransform(layout, size, parameters))
            throw Error("the components do not suit the component transform");
        undoComponents(layout, size, parameters, wanted, planes, 0, 3, true, crew);
        first = 3;
    }
    for (; first < planes.size(); ++first)
        undoComponents(layout, size, parameters, wanted, planes, first, 1, false, crew);
}

}  // namespace vekpix::jpeg2000
