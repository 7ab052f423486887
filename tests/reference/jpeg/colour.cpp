#include "reference/jpeg/colour.h"

#include <cmath>

#include "reference/bits.h"

namespace model {
namespace {

int highHalf(int a, int k) { return (a * k) >> 16; }
int lowByte(int64_t v) { return static_cast<int>(static_cast<uint64_t>(v) & 0xFF); }

}  // namespace

Triple toRgb(Inverse form, int y, int cb, int cr)
{
    const int u = cb - 128;
    const int v = cr - 128;
    switch (form) {
        case Inverse::planar:
            return {clip8(y + ((22970 * cr - 2932015) >> 14)), clip8(y - ((5638 * cb + 11700 * cr - 2211182) >> 14)),
                    clip8(y + ((29032 * cb - 3708561) >> 14))};
        case Inverse::interleaved:
            return {clip8(y + ((22970 * cr - 2932015) >> 14)), clip8(y + ((-5638 * cb - 11700 * cr + 2227566) >> 14)),
                    clip8(y + ((29032 * cb - 3707961) >> 14))};
        case Inverse::rounded:
            return {clip8(y + ((91881 * v + 32768) >> 16)), clip8(y + ((-22554 * u + 32768 - 46802 * v) >> 16)),
                    clip8(y + ((116130 * u + 32768) >> 16))};
        default:
            break;
    }
    const int r = highHalf(cr << 7, 11485) - 2871 + 8;
    const int b = highHalf(cb << 7, 14516) - 3629 + 8;
    const int g = 2167 - (highHalf(cb << 7, 2819) + highHalf(cr << 7, 5850)) + 8;
    return {clip8(((y << 4) + r) >> 4), clip8(((y << 4) + g) >> 4), clip8(((y << 4) + b) >> 4)};
}

Triple toYcc(Forward form, int r, int g, int b)
{
    const int y16 = (19595 * r + 38470 * g + 7471 * b + 32768) >> 16;
    switch (form) {
        case Forward::q15:
            return {clip8((9798 * r + 19235 * g + 3736 * b + 16266) >> 15),
                    clip8((-5529 * r - 10855 * g + 16384 * b + 4210688) >> 15),
                    clip8((16384 * r - 13720 * g - 2664 * b + 4210704) >> 15)};
        case Forward::q14:
            return {clip8((4899 * r + 9617 * g + 1868 * b + 8192) >> 14),
                    clip8((-2764 * r - 5428 * g + 8192 * b + 2105344) >> 14),
                    clip8((8192 * r - 6860 * g - 1332 * b + 2105344) >> 14)};
        case Forward::differences:
            return {y16, clip8(((b - y16) * 18491 + 4210688) >> 15), clip8(((r - y16) * 23373 + 4210688) >> 15)};
        default:
            break;
    }
    return {y16, lowByte((-11059 * r - 21709 * g + 32768 * b + 8421375) >> 16),
            lowByte((32768 * r + 8421375 - 27439 * g - 5329 * b) >> 16)};
}

int lumaInSinglePrecision(int r, int g, int b)
{
    const float pr = static_cast<float>(r) * 0.299F;
    const float pg = static_cast<float>(g) * 0.587F;
    const float pb = static_cast<float>(b) * 0.114F;
    const float sum = pr + pg;
    return clip8(std::lrint(sum + pb));
}

int subsampledLuma(bool body, int r, int g, int b)
{
    if (!body)
        return lowByte((4899 * r + 9617 * g + 1868 * b + 8192) >> 14);
    return clip8((highHalf(r << 8, 4899) + highHalf(g << 8, 9617) + highHalf(b << 8, 1868) + 32) >> 6);
}

std::array<int, 2> subsampledChroma(bool body, int samples, int r, int g, int b)
{
    if (body && samples == 2) {
        const int r6 = r << 6;
        const int g6 = g << 6;
        const int b6 = b << 6;
        return {clip8((highHalf(b6, 8192) - (highHalf(r6, 2765) + highHalf(g6, 5427)) + 4112) >> 5),
                clip8((highHalf(r6, 8192) - (highHalf(g6, 6860) + highHalf(b6, 1332)) + 4112) >> 5)};
    }
    // 128.5 in the scale of the sums, so that 256 stands for the largest value; a tail keeps its low byte only.
    const int shift = samples == 2 ? 15 : 16;
    const int64_t half = int64_t{257} << (shift - 1);
    const int64_t cb = ((b << 13) - 5427 * g - 2765 * r + half) >> shift;
    const int64_t cr = ((r << 13) - 1332 * b - 6860 * g + half) >> shift;
    if (body)
        return {clip8(cb), clip8(cr)};
    return {lowByte(cb), lowByte(cr)};
}

}  // namespace model
