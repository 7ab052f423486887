#include "reference/jpeg/mcu.h"

#include "reference/bits.h"

namespace model {
namespace {

struct Colour {
    int r, g, b;
};

Colour saturatedOffsets(int y, int cb, int cr)
{
    const int tR = (22970 * cr + 2105344) >> 14;
    const int tG = (-5638 * cb - 11700 * cr + 2105344) >> 14;
    const int tB = (29032 * cb + 2105344) >> 14;
    return {clip8(wrap16(y + saturate16(tR))), clip8(wrap16(y + saturate16(tG))), clip8(wrap16(y + saturate16(tB)))};
}

Colour cutOffsets(int y, int cb, int cr)
{
    const int tR = (11485 * cr + 1052672) >> 13;
    const int tB = (14516 * cb + 1052672) >> 13;
    const int tG = (5638 * cb + 11700 * cr - 2088960) >> 14;
    return {clip8(wrap16(y + wrap16(tR))), clip8(wrap16(y - wrap16(tG))), clip8(wrap16(y + wrap16(tB)))};
}

Colour unalignedForm(int64_t y, int64_t cb, int64_t cr)
{
    return {clip8(y + (wrap32(91881 * cr) >> 16) + 128), clip8(y + (wrap32(-22554 * cb - 46802 * cr) >> 16) + 128),
            clip8(y + (wrap32(116130 * cb) >> 16) + 128)};
}

void putWord(uint8_t* p, int word)
{
    p[0] = static_cast<uint8_t>(word);
    p[1] = static_cast<uint8_t>(word >> 8);
}

int log2OfGroup(Sampling s) { return s == Sampling::s444 ? 0 : s == Sampling::s422 ? 1 : 2; }

Colour colourOf(const uint8_t* p, Pixels pixels)
{
    const int word = p[0] | p[1] << 8;
    switch (pixels) {
        case Pixels::bgr:
            return {p[2], p[1], p[0]};
        case Pixels::cmyk:
            return {255 - p[0], 255 - p[1], 255 - p[2]};
        case Pixels::bgr555:
            return {(word >> 10 & 31) << 3, (word >> 5 & 31) << 3, (word & 31) << 3};
        case Pixels::bgr565:
            return {(word >> 11 & 31) << 3, (word >> 5 & 63) << 2, (word & 31) << 3};
        default:
            return {p[0], p[1], p[2]};
    }
}

}  // namespace

int Mcu::pixelBytes() const
{
    switch (pixels) {
        case Pixels::cmyk:
            return 4;
        case Pixels::bgr555:
        case Pixels::bgr565:
        case Pixels::stream422:
            return 2;
        default:
            return 3;
    }
}

size_t Mcu::planeSize(int plane) const
{
    return plane == 1 || plane == 2 ? 64 : static_cast<size_t>(width() * height());
}

size_t Mcu::lumaIndex(int x, int y) const
{
    switch (sampling) {
        case Sampling::s444:
            return static_cast<size_t>(8 * y + x);
        case Sampling::s422:
            return static_cast<size_t>(64 * (x / 8) + 8 * y + x % 8);
        default:
            return static_cast<size_t>(128 * (y / 8) + 64 * (x / 8) + 8 * (y % 8) + x % 8);
    }
}

size_t Mcu::chromaIndex(int x, int y) const
{
    switch (sampling) {
        case Sampling::s444:
            return static_cast<size_t>(8 * y + x);
        case Sampling::s422:
            return static_cast<size_t>(8 * y + x / 2);
        default:
            return static_cast<size_t>(8 * (y / 2) + x / 2);
    }
}

std::vector<uint8_t> Mcu::decode(const McuPlanes& planes, const std::array<bool, 4>& aligned) const
{
    const bool packed = pixels == Pixels::bgr555 || pixels == Pixels::bgr565;
    bool block = packed || (aligned[0] && aligned[1] && aligned[2]);
    if (pixels == Pixels::cmyk)
        block = block && aligned[3];
    const bool formA = sampling == Sampling::s444 && (pixels == Pixels::rgb || pixels == Pixels::bgr);
    std::vector<uint8_t> out(static_cast<size_t>(width() * height() * pixelBytes()));
    uint8_t* p = out.data();
    for (int y = 0; y < height(); ++y)
        for (int x = 0; x < width(); ++x, p += pixelBytes()) {
            const int luma = planes[0][lumaIndex(x, y)];
            const int cb = planes[1][chromaIndex(x, y)];
            const int cr = planes[2][chromaIndex(x, y)];
            if (pixels == Pixels::ycc) {
                p[0] = clip8(luma + 128);
                p[1] = clip8(cb + 128);
                p[2] = clip8(cr + 128);
                continue;
            }
            if (pixels == Pixels::stream422) {
                p[0] = clip8(luma + 128);
                p[1] = clip8((x % 2 == 0 ? cb : cr) + 128);
                continue;
            }
            Colour c = unalignedForm(luma, cb, cr);
            if (block)
                c = formA ? saturatedOffsets(luma, cb, cr) : cutOffsets(luma, cb, cr);
            if (pixels == Pixels::bgr555)
                putWord(p, c.b >> 3 | (c.g >> 3) << 5 | (c.r >> 3) << 10);
            if (pixels == Pixels::bgr565)
                putWord(p, c.b >> 3 | (c.g >> 2) << 5 | (c.r >> 3) << 11);
            if (pixels == Pixels::rgb || pixels == Pixels::bgr) {
                const bool rgb = pixels == Pixels::rgb;
                p[0] = static_cast<uint8_t>(rgb ? c.r : c.b);
                p[1] = static_cast<uint8_t>(c.g);
                p[2] = static_cast<uint8_t>(rgb ? c.b : c.r);
            }
            if (pixels == Pixels::cmyk) {
                const int k = planes[3][lumaIndex(x, y)] + 128;
                p[0] = static_cast<uint8_t>(255 - c.r);
                p[1] = static_cast<uint8_t>(255 - c.g);
                p[2] = static_cast<uint8_t>(255 - c.b);
                p[3] = block ? clip8(k) : static_cast<uint8_t>(k);
            }
        }
    return out;
}

McuPlanes Mcu::encode(const std::vector<uint8_t>& bytes, const std::array<bool, 4>& aligned) const
{
    bool block = true;
    if (sampling == Sampling::s411 && (pixels == Pixels::rgb || pixels == Pixels::bgr))
        block = aligned[0];
    if (pixels == Pixels::cmyk)
        block = aligned[0] && aligned[3];
    if (pixels == Pixels::cmyk && sampling == Sampling::s444)
        block = block && aligned[1] && aligned[2];

    McuPlanes result;
    for (int i = 0; i < planes(); ++i) result[static_cast<size_t>(i)].resize(planeSize(i));
    std::array<Colour, 64> sums{};
    const uint8_t* p = bytes.data();
    for (int y = 0; y < height(); ++y)
        for (int x = 0; x < width(); ++x, p += pixelBytes()) {
            if (pixels == Pixels::stream422) {
                result[0][lumaIndex(x, y)] = static_cast<int16_t>(p[0] - 128);
                result[x % 2 == 0 ? 1 : 2][chromaIndex(x, y)] = static_cast<int16_t>(p[1] - 128);
                continue;
            }
            const Colour c = colourOf(p, pixels);
            int luma = block ? (4899 * c.r + 9617 * c.g + 1868 * c.b - 2088960) >> 14
                             : ((19595 * c.r + 38470 * c.g + 7471 * c.b) >> 16) - 128;
            if (pixels == Pixels::ycc)
                luma = c.r - 128;
            result[0][lumaIndex(x, y)] = static_cast<int16_t>(luma);
            if (pixels == Pixels::cmyk)
                result[3][lumaIndex(x, y)] = static_cast<int16_t>(p[3] - 128);
            Colour& sum = sums[chromaIndex(x, y)];
            sum = {sum.r + c.r, sum.g + c.g, sum.b + c.b};
        }
    if (pixels == Pixels::stream422)
        return result;
    const int log2n = log2OfGroup(sampling);
    const int n = 1 << log2n;
    for (size_t i = 0; i < 64; ++i) {
        const Colour s = sums[i];
        int cb = (-11059 * s.r - 21709 * s.g + 32768 * s.b) >> (16 + log2n);
        int cr = (32768 * s.r - 27439 * s.g - 5329 * s.b) >> (16 + log2n);
        if (block) {
            const int term = pixels == Pixels::cmyk && sampling == Sampling::s444 ? 8133 : 8192 * n;
            cb = (-2764 * s.r - 5428 * s.g + 8192 * s.b + term) >> (14 + log2n);
            cr = (8192 * s.r - 6860 * s.g - 1332 * s.b + term) >> (14 + log2n);
        }
        if (pixels == Pixels::ycc) {
            cb = (s.g - 128 * n) >> log2n;
            cr = (s.b - 128 * n) >> log2n;
        }
        result[1][i] = static_cast<int16_t>(cb);
        result[2][i] = static_cast<int16_t>(cr);
    }
    return result;
}

}  // namespace model
