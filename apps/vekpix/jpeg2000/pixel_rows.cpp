#include "jpeg2000/pixel_rows.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vekpix::jpeg2000 {

namespace {

// Values from 0 to 2^bits - 1 of a row, one for each pixel.
void levelRow(const SampleRow& row, int left, int width, int bits, int32_t* values)
{
    const ComponentSize& size = *row.size;
    const int32_t offset = 1 << (size.bits - 1);  // samples with a sign are shown as if they had none
    const int32_t largest = static_cast<int32_t>((int64_t{1} << size.bits) - 1);
    if (row.count <= 0) {
        std::fill(values, values + width, 0);
    } else if (size.dx == 1 && row.first == left && row.count >= width) {
        for (int x = 0; x < width; ++x) values[x] = std::clamp(row.samples[x], -offset, largest - offset) + offset;
    } else {
        for (int x = 0; x < width; ++x) {
            const int at = std::clamp((left + x) / size.dx - row.first, 0, row.count - 1);
            values[x] = std::clamp(row.samples[at], -offset, largest - offset) + offset;
        }
    }
    if (row.palette != nullptr)
        for (int x = 0; x < width; ++x) values[x] = row.palette->value(values[x], row.column);
    const int ownBits = row.palette != nullptr ? row.palette->bits[static_cast<size_t>(row.column)] : size.bits;
    if (ownBits < bits) {
        const int64_t wide = (int64_t{1} << bits) - 1;
        const int64_t own = (int64_t{1} << ownBits) - 1;
        for (int x = 0; x < width; ++x) values[x] = static_cast<int32_t>((values[x] * wide + own / 2) / own);
    }
}

void toRgb(std::array<std::vector<int32_t>, 3>& rows, int bits)
{
    const float half = std::ldexp(1.0F, bits - 1);
    const float largest = std::ldexp(1.0F, bits) - 1;
    for (size_t x = 0; x < rows[0].size(); ++x) {
        const auto y = static_cast<float>(rows[0][x]);
        const float cb = static_cast<float>(rows[1][x]) - half;
        const float cr = static_cast<float>(rows[2][x]) - half;
        const std::array<float, 3> rgb = {y + 1.402F * cr, y - 0.344136F * cb - 0.714136F * cr, y + 1.772F * cb};
        for (size_t c = 0; c < 3; ++c)
            rows[c][x] = static_cast<int32_t>(std::lround(std::clamp(rgb[c], 0.0F, largest)));
    }
}

template <class Sample>
void interleave(const std::array<std::vector<int32_t>, 3>& rows, size_t channels, uint8_t* pixels)
{
    auto* out = reinterpret_cast<Sample*>(pixels);
    const size_t width = rows[0].size();
    if (channels == 1) {
        for (size_t x = 0; x < width; ++x) out[x] = static_cast<Sample>(rows[0][x]);
        return;
    }
    for (size_t x = 0; x < width; ++x)
        for (size_t c = 0; c < 3; ++c) out[3 * x + c] = static_cast<Sample>(rows[c][x]);
}

}  // namespace

void PixelRows::convert(const std::array<SampleRow, 3>& rows, uint8_t* pixels, int left) const
{
    std::array<std::vector<int32_t>, 3> values;
    const auto channels = static_cast<size_t>(shape_.channels);
    for (size_t c = 0; c < channels; ++c) {
        values[c].resize(static_cast<size_t>(shape_.width));
        levelRow(rows[c], left, shape_.width, shape_.bits, values[c].data());
    }
    if (isYcc_ && channels == 3)
        toRgb(values, shape_.bits);
    if (shape_.bits > 8)
        interleave<uint16_t>(values, channels, pixels);
    else
        interleave<uint8_t>(values, channels, pixels);
}

}  // namespace vekpix::jpeg2000
