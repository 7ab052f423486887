#include "dds/texel_rows.h"

#include <algorithm>
#include <array>

#include "error.h"

namespace vekpix::dds {

TexelRows::TexelRows(RowReader& source, int channels) : source_(source)
{
    if (source.shape().inks())
        throw Error("a texture holds no picture of inks");
    shape_ = {source.width(), source.height(), channels, 8, channels == 4};
    row_.resize(source.shape().rowBytes());
}

void TexelRows::readRows(uint8_t* pixels, size_t step, int rows)
{
    const Shape& from = source_.shape();
    if (from.channels == shape_.channels && from.alpha == shape_.alpha) {
        source_.readRows(pixels, step, rows);
        return;
    }
    const int lastColour = from.colours() - 1;
    for (int y = 0; y < rows; ++y, pixels += step) {
        source_.readRows(row_.data(), row_.size(), 1);
        const uint8_t* in = row_.data();
        uint8_t* out = pixels;
        for (int x = 0; x < width(); ++x, in += from.channels, out += shape_.channels) {
            const std::array<uint8_t, 4> pixel = {in[0], in[std::min(1, lastColour)], in[std::min(2, lastColour)],
                                                  from.alpha ? in[lastColour + 1] : uint8_t{255}};
            std::copy_n(pixel.begin(), shape_.channels, out);
        }
    }
}

}  // namespace vekpix::dds
