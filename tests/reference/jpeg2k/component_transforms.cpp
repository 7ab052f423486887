#include "reference/jpeg2k/component_transforms.h"

#include "reference/bits.h"

namespace model {

Components<int16_t> rctForward(Components<int16_t> rgb)
{
    const int32_t r = rgb[0], g = rgb[1], b = rgb[2];
    return {wrap16((r + 2 * g + b) >> 2), wrap16(b - g), wrap16(r - g)};
}

Components<int16_t> rctInverse(Components<int16_t> planes)
{
    const int32_t y = planes[0], y1 = planes[1], y2 = planes[2];
    const int32_t g = y - ((y1 + y2) >> 2);
    return {wrap16(y2 + g), wrap16(g), wrap16(y1 + g)};
}

Components<int32_t> rctForward(Components<int32_t> rgb)
{
    const int64_t r = rgb[0], g = rgb[1], b = rgb[2];
    return {wrap32(r + 2 * g + b) >> 2, wrap32(b - g), wrap32(r - g)};
}

Components<int32_t> rctInverse(Components<int32_t> planes)
{
    const int64_t y = planes[0], y1 = planes[1], y2 = planes[2];
    const int64_t g = wrap32(y - (wrap32(y1 + y2) >> 2));
    return {wrap32(y2 + g), wrap32(g), wrap32(y1 + g)};
}

// Every product and every sum is rounded to single precision.
Components<float> ictForward(Components<float> rgb)
{
    const auto [r, g, b] = rgb;
    const float y1 = r * 0.299F, y2 = g * 0.587F, y3 = b * 0.114F;
    const float cb1 = r * -0.16875F, cb2 = g * -0.33126F, cb3 = b * 0.5F;
    const float cr1 = r * 0.5F, cr2 = g * -0.41869F, cr3 = b * -0.08131F;
    const float y = y1 + y2, cb = cb1 + cb2, cr = cr1 + cr2;
    return {y + y3, cb + cb3, cr + cr3};
}

Components<float> ictInverse(Components<float> planes)
{
    const auto [y, cb, cr] = planes;
    const float r1 = cr * 1.402F, g1 = cb * -0.34413F, g2 = cr * -0.71414F, b1 = cb * 1.772F;
    const float g = g1 + g2;
    return {r1 + y, g + y, b1 + y};
}

Components<int32_t> ictForward(Components<int32_t> rgb)
{
    const int64_t r = rgb[0], g = rgb[1], b = rgb[2];
    return {wrap32(4899 * r + 9617 * g + 1868 * b + 8192) >> 14, wrap32(-2765 * r - 5427 * g + 8192 * b + 8192) >> 14,
            wrap32(8192 * r - 6860 * g - 1332 * b + 8192) >> 14};
}

Components<int32_t> ictInverse(Components<int32_t> planes)
{
    const int64_t y = planes[0], cb = planes[1], cr = planes[2];
    return {wrap32(y + (wrap32(22970 * cr + 8192) >> 14)), wrap32(y + (wrap32(-11700 * cr - 5638 * cb + 8192) >> 14)),
            wrap32(y + (wrap32(29032 * cb + 8192) >> 14))};
}

Components<int16_t> ictForward(Components<int16_t> rgb)
{
    const int32_t r = rgb[0], g = rgb[1], b = rgb[2];
    const int32_t t = 4899 * r + 9617 * g + 1868 * b;
    const int16_t db = wrap16((b * 16384 - t + 8192) >> 14);
    const int16_t dr = wrap16((r * 16384 - t + 8192) >> 14);
    return {saturate16((t + 8192) >> 14), saturate16((9246 * db + 8192) >> 14), saturate16((11686 * dr + 8192) >> 14)};
}

Components<int16_t> ictInverse(Components<int16_t> planes)
{
    const int32_t y = planes[0], cb = planes[1], cr = planes[2];
    return {saturate16(y + ((22970 * cr + 8192) >> 14)),
            saturate16(y - ((5638 * cb + 11700 * cr + 8192) >> 14)),  // the sign stands outside the rounding
            saturate16(y + ((29032 * cb + 8192) >> 14))};
}

}  // namespace model
