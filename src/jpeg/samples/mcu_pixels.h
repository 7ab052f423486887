// Pixels of a tile (mcu_layout.h): stores on the decoding side, loads on the encoding side.
#ifndef VEK_JPEG_SAMPLES_MCU_PIXELS_H
#define VEK_JPEG_SAMPLES_MCU_PIXELS_H

#include "jpeg/samples/mcu_layout.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

inline __m128i lowLane(__m256i x) { return _mm256_castsi256_si128(x); }
inline __m128i highLane(__m256i x) { return _mm256_extracti128_si256(x, 1); }

template <size_t N>
struct Chunks {
    __m256i v[N];
};

// N vectors of 16 bytes a lane, the lane's pixels one after the other. For 8-pixel rows the first half of a lane's
// bytes is one row.
template <Layout layout, size_t N>
[[gnu::always_inline]] inline void storeLanes(TilePixels<uint8_t> dst, const Chunks<N>& chunks)
{
    if constexpr (layout != Layout::L444) {
        for (size_t i = 0; i < N; ++i) {
            storeU128(dst.rows[0] + 16 * i, lowLane(chunks.v[i]));
            storeU128(dst.rows[1] + 16 * i, highLane(chunks.v[i]));
        }
    } else {
        constexpr size_t rowBytes = 8 * N;
        for (size_t i = 0; i < 2 * N; ++i) {  // eight bytes at a time; neighbours in a row go together
            const size_t byte = 8 * i;
            const size_t row = byte < rowBytes ? 0 : 2;
            const size_t at = byte % rowBytes;
            const __m256i chunk = chunks.v[i / 2];
            if (i % 2 == 0 && at + 16 <= rowBytes) {
                storeU128(dst.rows[row] + at, lowLane(chunk));
                storeU128(dst.rows[row + 1] + at, highLane(chunk));
                ++i;
                continue;
            }
            const __m256i half = i % 2 == 0 ? chunk : _mm256_unpackhi_epi64(chunk, chunk);
            storeLow64(dst.rows[row] + at, lowLane(half));
            storeLow64(dst.rows[row + 1] + at, highLane(half));
        }
    }
}

template <Layout layout>
struct PixelsC3 {
    [[gnu::always_inline]] static void store(TilePixels<uint8_t> dst, __m256i c0, __m256i c1, __m256i c2)
    {
        const auto chunk = [&](size_t i) {
            return or3(shuffle(c0, scatter3[i][0]), shuffle(c1, scatter3[i][1]), shuffle(c2, scatter3[i][2]));
        };
        storeLanes<layout, 3>(dst, {{chunk(0), chunk(1), chunk(2)}});
    }
};

template <Layout layout>
inline void storeTileC4(TilePixels<uint8_t> dst, __m256i c0, __m256i c1, __m256i c2, __m256i c3)
{
    const __m256i low01 = _mm256_unpacklo_epi8(c0, c1);
    const __m256i high01 = _mm256_unpackhi_epi8(c0, c1);
    const __m256i low23 = _mm256_unpacklo_epi8(c2, c3);
    const __m256i high23 = _mm256_unpackhi_epi8(c2, c3);
    storeLanes<layout, 4>(dst, {{_mm256_unpacklo_epi16(low01, low23), _mm256_unpackhi_epi16(low01, low23),
                                 _mm256_unpacklo_epi16(high01, high23), _mm256_unpackhi_epi16(high01, high23)}});
}

// Blue in the low bits
template <Layout layout, Fields fields>
inline void storeTilePacked(TilePixels<uint8_t> dst, Rgb x)
{
    const Words r = widen(x.r);
    const Words g = widen(x.g);
    const Words b = widen(x.b);
    const __m256i topFive = _mm256_set1_epi16(0xF8);
    const __m256i topGreen = _mm256_set1_epi16(fields == Fields::F555 ? 0xF8 : 0xFC);
    const auto pack = [&](__m256i red, __m256i green, __m256i blue) {
        return or3(_mm256_srli_epi16(blue, 3),
                   _mm256_slli_epi16(_mm256_and_si256(green, topGreen), greenBits<fields> - 3),
                   _mm256_slli_epi16(_mm256_and_si256(red, topFive), greenBits<fields> + 2));
    };
    storeLanes<layout, 2>(dst, {{pack(r.lo, g.lo, b.lo), pack(r.hi, g.hi, b.hi)}});
}

// Four pixels a lane as pairs of 16-bit channels in 32 bits: (c0, c1) and (c2, 0). Quads 0 and 1 pack to `left`, 2 and
// 3 to `right`.
struct Quad {
    __m256i c01, c2;
};
struct Quads {
    Quad q[4];
};

// Where the four pixels of quad i of a tile begin, in pixels, and in which rows.
template <Layout layout>
constexpr int quadRow(int i)
{
    return layout == Layout::L444 ? i / 2 * 2 : 0;
}
template <Layout layout>
constexpr int quadColumn(int i)
{
    return layout == Layout::L444 ? i % 2 * 4 : 4 * i;
}

template <int PixelBytes>
constexpr ByteShuffle channelShuffle(int first, int low, int high)
{
    ByteShuffle s{};
    for (int pixel = 0; pixel < 4; ++pixel) {
        const int byte = first + pixel * PixelBytes;
        const size_t at = 4 * static_cast<size_t>(pixel);
        s[at] = static_cast<int8_t>(byte + low);
        s[at + 1] = -1;
        s[at + 2] = high < 0 ? int8_t{-1} : static_cast<int8_t>(byte + high);
        s[at + 3] = -1;
    }
    return s;
}

// Channels C0, C1, C2 of 3-byte pixels. The last quad of a row is loaded from 4 bytes earlier, so as to end with the
// row.
template <Layout layout, int C0, int C1, int C2>
inline Quads loadQuadsC3(TilePixels<const uint8_t> src)
{
    static constexpr ByteShuffle shuffle01[2] = {channelShuffle<3>(0, C0, C1), channelShuffle<3>(4, C0, C1)};
    static constexpr ByteShuffle shuffle2[2] = {channelShuffle<3>(0, C2, -1), channelShuffle<3>(4, C2, -1)};
    Quads x;
    for (int i = 0; i < 4; ++i) {
        const int column = quadColumn<layout>(i);
        const int late = column + 4 == pixelWidth<layout> ? 1 : 0;
        const int byte = 3 * column - 4 * late;
        const int row = quadRow<layout>(i);
        const __m256i pixels = loadLanes(src.rows[row] + byte, src.rows[row + 1] + byte);
        x.q[i] = {shuffle(pixels, shuffle01[late]), shuffle(pixels, shuffle2[late])};
    }
    return x;
}

// The complements of the first three channels of 4-byte pixels as RGB, and the fourth as a tile of words.
template <Layout layout>
inline Quads loadQuadsCmyk(TilePixels<const uint8_t> src, Tile& black)
{
    static constexpr ByteShuffle shuffle01 = channelShuffle<4>(0, 0, 1);
    static constexpr ByteShuffle shuffle2 = channelShuffle<4>(0, 2, -1);
    Quads x;
    __m256i k[4];
    for (int i = 0; i < 4; ++i) {
        const int byte = 4 * quadColumn<layout>(i);
        const int row = quadRow<layout>(i);
        const __m256i pixels = loadLanes(src.rows[row] + byte, src.rows[row + 1] + byte);
        const __m256i inverted = _mm256_xor_si256(pixels, _mm256_set1_epi8(-1));
        x.q[i] = {shuffle(inverted, shuffle01), shuffle(inverted, shuffle2)};
        k[i] = _mm256_srli_epi32(pixels, 24);
    }
    black = {_mm256_packs_epi32(k[0], k[1]), _mm256_packs_epi32(k[2], k[3])};
    return x;
}

// Packed pixels, blue in the low bits; a field's low bits become zero.
template <Layout layout, Fields fields>
inline Quads loadQuadsPacked(TilePixels<const uint8_t> src)
{
    const __m256i five = _mm256_set1_epi16(0xF8);
    const __m256i green = _mm256_set1_epi16(fields == Fields::F555 ? 0xF8 : 0xFC);
    const __m256i zero = _mm256_setzero_si256();
    Quads x;
    for (int i = 0; i < 4; i += 2) {
        const int byte = 2 * quadColumn<layout>(i);
        const int row = quadRow<layout>(i);
        const __m256i words = loadLanes(src.rows[row] + byte, src.rows[row + 1] + byte);
        const __m256i b = _mm256_and_si256(_mm256_slli_epi16(words, 3), five);
        const __m256i g = _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> - 3), green);
        const __m256i r = _mm256_and_si256(_mm256_srli_epi16(words, greenBits<fields> + 2), five);
        x.q[i] = {_mm256_unpacklo_epi16(r, g), _mm256_unpacklo_epi16(b, zero)};
        x.q[i + 1] = {_mm256_unpackhi_epi16(r, g), _mm256_unpackhi_epi16(b, zero)};
    }
    return x;
}

}  // namespace q3

#endif
