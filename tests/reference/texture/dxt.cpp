#include "reference/texture/dxt.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace model {
namespace {

using Bytes = std::vector<uint8_t>;
using Channel = std::array<int, 16>;

// Pixel (x, y) of a block at (bx, by), beyond the image that of its last column and row.
Channel channelOf(const Pixels& image, int bx, int by, int c)
{
    Channel values;
    for (int i = 0; i < 16; ++i) {
        const int x = std::min(4 * bx + i % 4, image.width - 1);
        const int y = std::min(4 * by + i / 4, image.height - 1);
        values[static_cast<size_t>(i)] = image.at(x, y, c);
    }
    return values;
}

int lowest(const Channel& values) { return *std::min_element(values.begin(), values.end()); }
int highest(const Channel& values) { return *std::max_element(values.begin(), values.end()); }

void append(Bytes& out, uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

uint64_t alphaIndices(const Channel& values, int a0, int a1)
{
    const int mid = (a0 - a1) / 14;
    int thresholds[7];
    thresholds[0] = (a1 + mid) & 255;
    for (int k = 1; k < 7; ++k) thresholds[k] = (((7 - k) * a0 + k * a1) / 7 + mid) & 255;
    uint64_t bits = 0;
    for (size_t i = 0; i < 16; ++i) {
        int n = 0;
        for (const int t : thresholds) n += values[i] <= t ? 1 : 0;
        int index = (n + 1) & 7;
        if (index < 2)
            index ^= 1;
        bits |= static_cast<uint64_t>(index) << (3 * i);
    }
    return bits;
}

void appendAlpha(Bytes& out, const Channel& values, int a0, int a1)
{
    append(out, static_cast<uint64_t>(a0), 1);
    append(out, static_cast<uint64_t>(a1), 1);
    append(out, alphaIndices(values, a0, a1), 6);
}

void appendInsetAlpha(Bytes& out, const Channel& values)
{
    const int inset = (highest(values) - lowest(values)) >> 4;
    appendAlpha(out, values, std::max(highest(values) - inset, 0), std::min(lowest(values) + inset, 255));
}

// By the L1 distances to the four colours of `palette[channel]`.
uint32_t colourIndices(const std::vector<Channel>& pixels, const std::vector<std::array<int, 4>>& palette)
{
    uint32_t bits = 0;
    for (size_t i = 0; i < 16; ++i) {
        int d[4] = {};
        for (size_t c = 0; c < pixels.size(); ++c)
            for (size_t k = 0; k < 4; ++k) d[k] += std::abs(pixels[c][i] - palette[c][k]);
        const bool low = d[0] > d[3] && d[2] > d[3];
        const bool high = (d[1] > d[2] && d[0] > d[2]) || (d[0] > d[3] && d[1] > d[3]);
        bits |= (low ? 1U : 0U) << (2 * i) | (high ? 1U : 0U) << (2 * i + 1);
    }
    return bits;
}

std::array<int, 4> paletteOf(int c0, int c1) { return {c0, c1, (2 * c0 + c1) / 3, (c0 + 2 * c1) / 3}; }

void appendColours(Bytes& out, const Pixels& image, int bx, int by)
{
    std::vector<Channel> pixels;
    std::vector<std::array<int, 4>> palette;
    int hi[3], lo[3];
    for (int c = 0; c < 3; ++c) {
        pixels.push_back(channelOf(image, bx, by, c));
        const int inset = (highest(pixels.back()) - lowest(pixels.back())) >> 4;
        hi[c] = std::max(highest(pixels.back()) - inset, 0);
        lo[c] = std::min(lowest(pixels.back()) + inset, 255);
        const auto expand = [c](int v) { return c == 1 ? (v & 252) | v >> 6 : (v & 248) | v >> 5; };
        palette.push_back(paletteOf(expand(hi[c]), expand(lo[c])));
    }
    const auto word = [](const int* v) { return v[0] >> 3 << 11 | v[1] >> 2 << 5 | v[2] >> 3; };
    append(out, static_cast<uint64_t>(word(hi)), 2);
    append(out, static_cast<uint64_t>(word(lo)), 2);
    append(out, colourIndices(pixels, palette), 4);
}

void appendYCoCg(Bytes& out, const Pixels& image, int bx, int by)
{
    const Channel luma = channelOf(image, bx, by, 0);
    appendAlpha(out, luma, highest(luma), lowest(luma));

    Channel co = channelOf(image, bx, by, 1);
    Channel cg = channelOf(image, bx, by, 2);
    int m = 0;
    for (const Channel* chroma : {&co, &cg})
        m = std::max({m, std::abs(lowest(*chroma) - 128), std::abs(highest(*chroma) - 128)});
    const int scale = 1 + (m <= 63 ? 1 : 0) + (m <= 31 ? 2 : 0);
    for (Channel* chroma : {&co, &cg})
        for (int& v : *chroma) v = ((v - 128) * scale + 128) & 255;

    struct Ends {
        uint32_t low, high;
    };
    const auto ends = [](const Channel& values, uint32_t mask, int shift) {
        const auto lo = static_cast<uint32_t>(lowest(values));
        const auto hi = static_cast<uint32_t>(highest(values));
        const uint32_t range = hi - lo;
        const uint32_t newHigh = std::min(((hi << 4) - (range - 7)) >> 4, 255U);
        const uint32_t newLow = ((lo << 4) + range - 7) >> 4;
        return Ends{((newLow & ~mask) | newLow >> shift) & 255, ((newHigh & ~mask) | newHigh >> shift) & 255};
    };
    const Ends coEnds = ends(co, 7, 5);
    Ends cgEnds = ends(cg, 3, 6);
    const int midCo = static_cast<int>((coEnds.low + coEnds.high + 1) >> 1);
    const int midCg = static_cast<int>((cgEnds.low + cgEnds.high + 1) >> 1);
    int side = 0;
    for (size_t i = 0; i < 16; ++i) side += (co[i] >= midCo) != (cg[i] >= midCg) ? 1 : 0;
    if (side > 8)
        std::swap(cgEnds.low, cgEnds.high);
    const auto code = static_cast<uint32_t>(scale - 1);
    append(out, coEnds.high >> 3 << 11 | cgEnds.high >> 2 << 5 | code, 2);
    append(out, coEnds.low >> 3 << 11 | cgEnds.low >> 2 << 5 | code, 2);
    append(out,
           colourIndices({co, cg}, {paletteOf(static_cast<int>(coEnds.high), static_cast<int>(coEnds.low)),
                                    paletteOf(static_cast<int>(cgEnds.high), static_cast<int>(cgEnds.low))}),
           4);
}

template <class Append>
Bytes encode(const Pixels& image, const Append& appendBlock)
{
    Bytes out;
    for (int by = 0; by < (image.height + 3) / 4; ++by)
        for (int bx = 0; bx < (image.width + 3) / 4; ++bx) appendBlock(out, bx, by);
    return out;
}

uint64_t bitsOf(const Bytes& blocks, size_t offset, int bytes)
{
    uint64_t v = 0;
    for (int i = 0; i < bytes; ++i) v |= static_cast<uint64_t>(blocks[offset + static_cast<size_t>(i)]) << (8 * i);
    return v;
}

std::array<int, 16> alphaValues(const Bytes& blocks, size_t offset)
{
    const int a0 = blocks[offset], a1 = blocks[offset + 1];
    int table[8] = {a0, a1};
    for (int k = 2; k < 8; ++k) {
        if (a0 > a1)
            table[k] = ((8 - k) * a0 + (k - 1) * a1 + 3) / 7;
        else
            table[k] = k == 6 ? 0 : k == 7 ? 255 : ((6 - k) * a0 + (k - 1) * a1 + 2) / 5;
    }
    const uint64_t bits = bitsOf(blocks, offset + 2, 6);
    std::array<int, 16> values;
    for (size_t i = 0; i < 16; ++i) values[i] = table[bits >> (3 * i) & 7];
    return values;
}

// R, G, B, A of each pixel.
std::array<std::array<int, 4>, 16> colourValues(const Bytes& blocks, size_t offset, bool comparesColours)
{
    const auto c0 = static_cast<int>(bitsOf(blocks, offset, 2));
    const auto c1 = static_cast<int>(bitsOf(blocks, offset + 2, 2));
    const auto expand = [](int c) {
        const int r = c >> 11, g = c >> 5 & 63, b = c & 31;
        return std::array<int, 3>{r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2};
    };
    const bool isThree = comparesColours && c0 <= c1;
    std::array<std::array<int, 4>, 4> palette;
    for (size_t c = 0; c < 3; ++c) {
        const int a = expand(c0)[c], b = expand(c1)[c];
        palette[0][c] = a;
        palette[1][c] = b;
        palette[2][c] = isThree ? (a + b) >> 1 : (2 * a + b) / 3;
        palette[3][c] = isThree ? 255 : (a + 2 * b) / 3;
    }
    for (auto& entry : palette) entry[3] = 255;
    const uint64_t bits = bitsOf(blocks, offset + 4, 4);
    std::array<std::array<int, 4>, 16> values;
    for (size_t i = 0; i < 16; ++i) values[i] = palette[bits >> (2 * i) & 3];
    return values;
}

// Calls value(offset of the block, pixel of the block, channel) for every sample.
template <class Value>
Pixels decode(int width, int height, int channels, size_t blockBytes, const Value& value)
{
    Pixels image(width, height, channels);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                const auto block = static_cast<size_t>(y / 4 * ((width + 3) / 4) + x / 4);
                image.at(x, y, c) = static_cast<uint8_t>(
                    value(block * blockBytes, static_cast<size_t>(y % 4 * 4 + x % 4), static_cast<size_t>(c)));
            }
    return image;
}

}  // namespace

Bytes encodeDxt1(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) { appendColours(out, image, bx, by); });
}
Bytes encodeDxt3(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) {
        uint64_t bits = 0;
        const Channel alpha = channelOf(image, bx, by, 3);
        for (size_t i = 0; i < 16; ++i) bits |= static_cast<uint64_t>(alpha[i] >> 4) << (4 * i);
        append(out, bits, 8);
        appendColours(out, image, bx, by);
    });
}
Bytes encodeDxt5(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) {
        appendInsetAlpha(out, channelOf(image, bx, by, 3));
        appendColours(out, image, bx, by);
    });
}
Bytes encodeYCoCgDxt5(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) { appendYCoCg(out, image, bx, by); });
}
Bytes encodeBc4(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) { appendInsetAlpha(out, channelOf(image, bx, by, 0)); });
}
Bytes encodeBc5(const Pixels& image)
{
    return encode(image, [&](Bytes& out, int bx, int by) {
        for (int c = 0; c < 2; ++c) appendInsetAlpha(out, channelOf(image, bx, by, c));
    });
}

Pixels decodeDxt1(const Bytes& blocks, int width, int height)
{
    return decode(width, height, 4, 8,
                  [&](size_t offset, size_t i, size_t c) { return colourValues(blocks, offset, true)[i][c]; });
}
Pixels decodeDxt3(const Bytes& blocks, int width, int height)
{
    return decode(width, height, 4, 16, [&](size_t offset, size_t i, size_t c) {
        if (c == 3)
            return static_cast<int>(bitsOf(blocks, offset, 8) >> (4 * i) & 15) << 4;
        return colourValues(blocks, offset + 8, false)[i][c];
    });
}
Pixels decodeDxt5(const Bytes& blocks, int width, int height)
{
    return decode(width, height, 4, 16, [&](size_t offset, size_t i, size_t c) {
        return c == 3 ? alphaValues(blocks, offset)[i] : colourValues(blocks, offset + 8, false)[i][c];
    });
}
Pixels decodeBc4(const Bytes& blocks, int width, int height)
{
    return decode(width, height, 1, 8, [&](size_t offset, size_t i, size_t) { return alphaValues(blocks, offset)[i]; });
}
Pixels decodeBc5(const Bytes& blocks, int width, int height)
{
    return decode(width, height, 2, 16,
                  [&](size_t offset, size_t i, size_t c) { return alphaValues(blocks, offset + 8 * c)[i]; });
}

}  // namespace model
