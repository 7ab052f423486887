// Loads and stores of 32 pixels in the layouts of the colour conversions. A vector of 32 bytes holds one channel in
// pixel order.
#ifndef VEK_JPEG_SAMPLES_PIXEL_VECTORS_H
#define VEK_JPEG_SAMPLES_PIXEL_VECTORS_H

#include <array>

#include "frame/vec.h"

namespace q3 {

// Which channel of an interleaved pixel is red, and which is blue; green is channel 1.
enum class Order { RGB, BGR };
template <Order order>
constexpr int redChannel = order == Order::RGB ? 0 : 2;
template <Order order>
constexpr int blueChannel = 2 - redChannel<order>;

// 32 bytes each
struct Rgb {
    __m256i r, g, b;
};

// 16-bit words of a vector of bytes, each half in lane order: words 0-7 | 16-23, and 8-15 | 24-31. Packing the halves
// restores the order.
struct Words {
    __m256i lo, hi;
};
inline Words widen(__m256i bytes)
{
    const __m256i zero = _mm256_setzero_si256();
    return {_mm256_unpacklo_epi8(bytes, zero), _mm256_unpackhi_epi8(bytes, zero)};
}
inline __m256i packClipped(Words w) { return _mm256_packus_epi16(w.lo, w.hi); }

// Bytes at `low` and, in the upper lane, at `high`.
inline __m256i loadLanes(const uint8_t* low, const uint8_t* high)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(loadU128(low)), loadU128(high), 1);
}

inline void storeLanes(uint8_t* low, uint8_t* high, __m256i v)
{
    storeU128(low, _mm256_castsi256_si128(v));
    storeU128(high, _mm256_extracti128_si256(v, 1));
}

using ByteShuffle = std::array<int8_t, 16>;
inline __m256i shuffle(__m256i bytes, const ByteShuffle& shuffle)
{
    return _mm256_shuffle_epi8(bytes, _mm256_broadcastsi128_si256(loadU128(shuffle.data())));
}

// Byte i of a row of 16 three-byte pixels lies in chunk i / 16 of three. gather3[channel][chunk] brings the channel's
// bytes of the chunk to their pixels' places; scatter3[chunk][channel] the other way. Other places become zero.
constexpr auto gather3 = [] {
    std::array<std::array<ByteShuffle, 3>, 3> t{};
    for (size_t channel = 0; channel < 3; ++channel)
        for (size_t chunk = 0; chunk < 3; ++chunk)
            for (size_t pixel = 0; pixel < 16; ++pixel) {
                const size_t byte = 3 * pixel + channel;
                t[channel][chunk][pixel] = byte / 16 == chunk ? static_cast<int8_t>(byte % 16) : int8_t{-1};
            }
    return t;
}();
constexpr auto scatter3 = [] {
    std::array<std::array<ByteShuffle, 3>, 3> t{};
    for (size_t chunk = 0; chunk < 3; ++chunk)
        for (size_t channel = 0; channel < 3; ++channel)
            for (size_t i = 0; i < 16; ++i) {
                const size_t byte = 16 * chunk + i;
                t[chunk][channel][i] = byte % 3 == channel ? static_cast<int8_t>(byte / 3) : int8_t{-1};
            }
    return t;
}();

inline __m256i or3(__m256i a, __m256i b, __m256i c) { return _mm256_or_si256(_mm256_or_si256(a, b), c); }

// 32 interleaved pixels of 3 bytes
template <Order order>
inline Rgb loadC3(const uint8_t* p)
{
    const __m256i a = loadLanes(p, p + 48);
    const __m256i b = loadLanes(p + 16, p + 64);
    const __m256i c = loadLanes(p + 32, p + 80);
    const auto channel = [&](size_t i) {
        return or3(shuffle(a, gather3[i][0]), shuffle(b, gather3[i][1]), shuffle(c, gather3[i][2]));
    };
    return {channel(redChannel<order>), channel(1), channel(blueChannel<order>)};
}

template <Order order>
inline void storeC3(uint8_t* p, Rgb x)
{
    const __m256i first = order == Order::RGB ? x.r : x.b;
    const __m256i third = order == Order::RGB ? x.b : x.r;
    const auto chunk = [&](size_t i) {
        return or3(shuffle(first, scatter3[i][0]), shuffle(x.g, scatter3[i][1]), shuffle(third, scatter3[i][2]));
    };
    storeLanes(p, p + 48, chunk(0));
    storeLanes(p + 16, p + 64, chunk(1));
    storeLanes(p + 32, p + 80, chunk(2));
}

// 32 interleaved pixels of 4 bytes
struct Channels4 {
    __m256i c0, c1, c2, c3;
};
inline Channels4 loadChannels4(const uint8_t* p)
{
    constexpr ByteShuffle byChannel = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    const auto quads = [&](int i) { return shuffle(loadLanes(p + 16 * i, p + 64 + 16 * i), byChannel); };
    const __m256i q0 = quads(0);
    const __m256i q1 = quads(1);
    const __m256i q2 = quads(2);
    const __m256i q3 = quads(3);
    const __m256i low01 = _mm256_unpacklo_epi32(q0, q1);
    const __m256i low23 = _mm256_unpacklo_epi32(q2, q3);
    const __m256i high01 = _mm256_unpackhi_epi32(q0, q1);
    const __m256i high23 = _mm256_unpackhi_epi32(q2, q3);
    return {_mm256_unpacklo_epi64(low01, low23), _mm256_unpackhi_epi64(low01, low23),
            _mm256_unpacklo_epi64(high01, high23), _mm256_unpackhi_epi64(high01, high23)};
}
template <Order order>
inline Rgb loadC4(const uint8_t* p)
{
    const Channels4 x = loadChannels4(p);
    return order == Order::RGB ? Rgb{x.c0, x.c1, x.c2} : Rgb{x.c2, x.c1, x.c0};
}

// The channels c0 to c3 of 32 pixels of 4 bytes
inline void storeChannels4(uint8_t* p, __m256i c0, __m256i c1, __m256i c2, __m256i c3)
{
    const __m256i low01 = _mm256_unpacklo_epi8(c0, c1);
    const __m256i high01 = _mm256_unpackhi_epi8(c0, c1);
    const __m256i low23 = _mm256_unpacklo_epi8(c2, c3);
    const __m256i high23 = _mm256_unpackhi_epi8(c2, c3);
    storeLanes(p, p + 64, _mm256_unpacklo_epi16(low01, low23));  // pixels 0-3 | 16-19
    storeLanes(p + 16, p + 80, _mm256_unpackhi_epi16(low01, low23));
    storeLanes(p + 32, p + 96, _mm256_unpacklo_epi16(high01, high23));
    storeLanes(p + 48, p + 112, _mm256_unpackhi_epi16(high01, high23));
}
template <Order order>
inline void storeC4(uint8_t* p, Rgb x, __m256i fourth)
{
    storeChannels4(p, order == Order::RGB ? x.r : x.b, x.g, order == Order::RGB ? x.b : x.r, fourth);
}

// Fields of a 16-bit pixel, from bit 0: 5 bits, then 5 or 6, then 5. The order names the channel of the first field.
enum class Fields { F555, F565 };
template <Fields fields>
constexpr int greenBits = fields == Fields::F555 ? 5 : 6;

template <Order order, Fields fields>
inline void storePacked(uint8_t* p, Rgb x)
{
    const Words first = widen(order == Order::RGB ? x.r : x.b);
    const Words green = widen(x.g);
    const Words third = widen(order == Order::RGB ? x.b : x.r);
    const __m256i topFive = _mm256_set1_epi16(0xF8);
    const __m256i topGreen = _mm256_set1_epi16(fields == Fields::F555 ? 0xF8 : 0xFC);
    const auto pack = [&](__m256i a, __m256i g, __m256i c) {
        return or3(_mm256_srli_epi16(a, 3), _mm256_slli_epi16(_mm256_and_si256(g, topGreen), greenBits<fields> - 3),
                   _mm256_slli_epi16(_mm256_and_si256(c, topFive), greenBits<fields> + 2));
    };
    storeLanes(p, p + 32, pack(first.lo, green.lo, third.lo));
    storeLanes(p + 16, p + 48, pack(first.hi, green.hi, third.hi));
}

}  // namespace q3

#endif
