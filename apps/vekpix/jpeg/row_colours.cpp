#include "jpeg/row_colours.h"

#include <algorithm>
#include <cstring>

#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

constexpr int segmentPixels = 8192;  // colour conversion of more would begin threads of its own

template <size_t channels, class Sample>
void interleave(const ComponentRows<Sample>& samples, int width, Sample* pixels)
{
    for (int x = 0; x < width; ++x)
        for (size_t c = 0; c < channels; ++c) *pixels++ = samples[c][x];
}

void ycbcrToRgb(const ComponentRows<uint8_t>& samples, int width, int /*bits*/, uint8_t* pixels)
{
    for (int x = 0; x < width; x += segmentPixels) {
        const uint8_t* const planes[3] = {samples[0] + x, samples[1] + x, samples[2] + x};
        expectOk(vekiYCbCrToRGB_JPEG_8u_P3C3R(planes, width, pixels + static_cast<size_t>(x) * 3, width * 3,
                                              {std::min(segmentPixels, width - x), 1}),
                 "colour conversion");
    }
}

void ycckToCmyk(const ComponentRows<uint8_t>& samples, int width, int /*bits*/, uint8_t* inks)
{
    for (int x = 0; x < width; x += segmentPixels) {
        const uint8_t* const planes[4] = {samples[0] + x, samples[1] + x, samples[2] + x, samples[3] + x};
        expectOk(vekiYCCKToCMYK_JPEG_8u_P4C4R(planes, width, inks + static_cast<size_t>(x) * 4, width * 4,
                                              {std::min(segmentPixels, width - x), 1}),
                 "colour conversion");
    }
}

// Red, green and blue by T.871, clause 7, in 16-bit fixed point and rounded to the nearest.
std::array<int, 3> rgbOf(int y, int cb, int cr, int bits)
{
    const int u = cb - (1 << (bits - 1));
    const int v = cr - (1 << (bits - 1));
    const int largest = (1 << bits) - 1;
    const auto sum = [&](int chroma) { return std::clamp(y + ((chroma + 32768) >> 16), 0, largest); };
    return {sum(91881 * v), sum(-22554 * u - 46802 * v), sum(116130 * u)};
}

void ycbcrToRgb(const ComponentRows<uint16_t>& samples, int width, int bits, uint16_t* pixels)
{
    for (int x = 0; x < width; ++x)
        for (const int light : rgbOf(samples[0][x], samples[1][x], samples[2][x], bits))
            *pixels++ = static_cast<uint16_t>(light);
}

void ycckToCmyk(const ComponentRows<uint16_t>& samples, int width, int bits, uint16_t* inks)
{
    const int largest = (1 << bits) - 1;
    for (int x = 0; x < width; ++x) {
        for (const int light : rgbOf(samples[0][x], samples[1][x], samples[2][x], bits))
            *inks++ = static_cast<uint16_t>(largest - light);
        *inks++ = samples[3][x];
    }
}

// Ink on paper to light: the share of light that the colour's ink and the black ink let through.
template <class Sample>
void inksToRgb(const Sample* inks, int flip, int largest, int width, Sample* pixels)
{
    for (int x = 0; x < width; ++x, inks += 4, pixels += 3) {
        const int black = inks[3] ^ flip;
        for (int c = 0; c < 3; ++c) pixels[c] = static_cast<Sample>(((inks[c] ^ flip) * black + largest / 2) / largest);
    }
}

template <class Sample>
void convert(const RowColours& colours, const ComponentRows<Sample>& samples, int width, Sample* pixels, Sample* inks)
{
    switch (colours.model) {
        case ColourModel::Grey:
            std::memcpy(pixels, samples[0], static_cast<size_t>(width) * sizeof(Sample));
            return;
        case ColourModel::Rgb:
            interleave<3>(samples, width, pixels);
            return;
        case ColourModel::YCbCr:
            ycbcrToRgb(samples, width, colours.bits, pixels);
            return;
        case ColourModel::Cmyk:
            interleave<4>(samples, width, inks);
            break;
        case ColourModel::Ycck:
            ycckToCmyk(samples, width, colours.bits, inks);
            break;
    }
    const int largest = (1 << colours.bits) - 1;
    if (colours.inksOut) {
        const int flip = colours.inverted ? largest : 0;
        std::transform(inks, inks + static_cast<size_t>(width) * 4, pixels,
                       [flip](Sample ink) { return static_cast<Sample>(ink ^ flip); });
    } else {
        inksToRgb(inks, colours.inverted ? 0 : largest, largest, width, pixels);
    }
}

}  // namespace

void convertRow(const RowColours& colours, const ComponentRows<uint8_t>& samples, int width, uint8_t* pixels,
                uint8_t* inks)
{
    convert(colours, samples, width, pixels, inks);
}

void convertRow(const RowColours& colours, const ComponentRows<uint16_t>& samples, int width, uint16_t* pixels,
                uint16_t* inks)
{
    convert(colours, samples, width, pixels, inks);
}

}  // namespace vekpix::jpeg
