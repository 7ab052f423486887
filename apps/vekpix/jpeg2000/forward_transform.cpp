#include "jpeg2000/forward_transform.h"

#include <cmath>

#include "jpeg2000/band_scale.h"
#include "jpeg2000/wavelets.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int rowsAtOnce = 16;

template <class Sample>
void separate(const uint8_t* pixels, size_t width, size_t channels, int32_t offset, int32_t* const* rows)
{
    const auto* in = reinterpret_cast<const Sample*>(pixels);
    if (channels == 1) {
        for (size_t x = 0; x < width; ++x) rows[0][x] = in[x] - offset;
        return;
    }
    for (size_t x = 0; x < width; ++x) {
        rows[0][x] = in[3 * x] - offset;
        rows[1][x] = in[3 * x + 1] - offset;
        rows[2][x] = in[3 * x + 2] - offset;
    }
}

// Integers become fixed-point samples; three components pass through the ICT on the way.
class FixedPointRows {
public:
    FixedPointRows(int width, size_t channels, int fraction) : width_(width), unit_(std::ldexp(1.0F, fraction))
    {
        for (size_t c = 0; c < channels; ++c) rows_[c].resize(static_cast<size_t>(width));
    }

    void convert(int32_t* const* rows, size_t channels)
    {
        for (size_t c = 0; c < channels; ++c)
            for (size_t x = 0; x < rows_[c].size(); ++x) rows_[c][x] = static_cast<float>(rows[c][x]);
        if (channels == 3) {
            float* const planes[3] = {rows_[0].data(), rows_[1].data(), rows_[2].data()};
            expectOk(vekiICTFwd_JPEG2K_32f_P3IR(planes, width_ * static_cast<int>(sizeof(float)), {width_, 1}),
                     "vekiICTFwd");
        }
        for (size_t c = 0; c < channels; ++c)
            for (size_t x = 0; x < rows_[c].size(); ++x) rows[c][x] = static_cast<int32_t>(rows_[c][x] * unit_);
    }

private:
    int width_;
    float unit_;
    std::vector<float> rows_[3];
};

}  // namespace

void storeRows(const Shape& picture, const uint8_t* pixels, size_t step, int rows, bool reversible,
               const std::vector<Plane>& planes, int y, Crew& crew)
{
    const auto channels = static_cast<size_t>(picture.channels);
    const int32_t offset = 1 << (picture.bits - 1);
    crew.run((rows + rowsAtOnce - 1) / rowsAtOnce, [&](int item) {
        FixedPointRows converter(reversible ? 0 : picture.width, channels, fractionBits(picture.bits));
        const int first = item * rowsAtOnce, last = std::min(rows, first + rowsAtOnce);
        for (int row = first; row < last; ++row) {
            int32_t* samples[3] = {};
            for (size_t c = 0; c < channels; ++c) samples[c] = planes[c].at(0, y + row);
            const uint8_t* const source = pixels + step * static_cast<size_t>(row);
            const auto width = static_cast<size_t>(picture.width);
            if (picture.bits > 8)
                separate<uint16_t>(source, width, channels, offset, samples);
            else
                separate<uint8_t>(source, width, channels, offset, samples);
            if (!reversible)
                converter.convert(samples, channels);
            else if (channels == 3)
                expectOk(vekiRCTFwd_JPEG2K_32s_P3IR(samples, planes[0].stepBytes(), {picture.width, 1}), "vekiRCTFwd");
        }
    });
}

void forwardWavelets(const TileLayout& layout, const TileParameters& parameters, const std::vector<Plane>& planes,
                     Crew& crew)
{
    crew.run(static_cast<int>(planes.size()), [&](int c) {
        const auto component = static_cast<size_t>(c);
        const CodingStyle& style = parameters.components[component].style;
        Wavelet wavelet(style.reversible);
        for (int r = style.levels; r >= 1; --r)
            wavelet.forward(planes[component], layout.components[component].resolutions[static_cast<size_t>(r)].rect);
    });
}

}  // namespace vekpix::jpeg2000
