// One row of three components, as planes or as interleaved pixels: how vectors of pixels are read and written.
#ifndef VEK_JPEG2K_TRANSFORM_PIXEL_LAYOUTS_H
#define VEK_JPEG2K_TRANSFORM_PIXEL_LAYOUTS_H

#include "jpeg2k/transform/lanes.h"

namespace q3 {

// As many pixels as a vector has lanes: R, G, B, or the three planes.
struct Triple {
    __m256i v[3];
};

// Takes interleaved triples apart and puts them together. The first 48 bytes lie in the low halves of three vectors,
// the next 48 in the high halves. In each half a component stands at every third element:
//      r0 g0 b0 r1 g1 b1 r2 g2 | b2 r3 g3 b3 r4 g4 b4 r5 | g5 b5 r6 g6 b6 r7 g7 b7      16-bit elements
//      r0 g0 b0 r1 | g1 b1 r2 g2 | b2 r3 g3 b3                                          32-bit elements
// so that blends gather each component out of order, and a shuffle within the halves sets it right.
template <int bytes>
struct Interleaving;

template <>
struct Interleaving<2> {
    static Triple split(const Triple& t)
    {
        return {{shuffled(gather(t.v[0], t.v[1], t.v[2]), 0, 3, 6, 1, 4, 7, 2, 5),
                 shuffled(gather(t.v[2], t.v[0], t.v[1]), 1, 4, 7, 2, 5, 0, 3, 6),
                 shuffled(gather(t.v[1], t.v[2], t.v[0]), 2, 5, 0, 3, 6, 1, 4, 7)}};
    }
    static Triple join(const Triple& t)
    {
        const __m256i r = shuffled(t.v[0], 0, 3, 6, 1, 4, 7, 2, 5);
        const __m256i g = shuffled(t.v[1], 5, 0, 3, 6, 1, 4, 7, 2);
        const __m256i b = shuffled(t.v[2], 2, 5, 0, 3, 6, 1, 4, 7);
        return {{gather(r, g, b), gather(b, r, g), gather(g, b, r)}};
    }

private:
    // Elements 0, 3, 6 of a, 1, 4, 7 of b and 2, 5 of c.
    static __m256i gather(__m256i a, __m256i b, __m256i c)
    {
        return _mm256_blend_epi16(_mm256_blend_epi16(a, b, 0x92), c, 0x24);
    }
    static __m256i shuffled(__m256i v, int e0, int e1, int e2, int e3, int e4, int e5, int e6, int e7)
    {
        const auto pair = [](int e) { return static_cast<short>((2 * e + 1) * 256 + 2 * e); };
        const __m128i indices =
            _mm_setr_epi16(pair(e0), pair(e1), pair(e2), pair(e3), pair(e4), pair(e5), pair(e6), pair(e7));
        return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(indices));
    }
};

template <>
struct Interleaving<4> {
    static Triple split(const Triple& t)
    {
        return {{_mm256_shuffle_epi32(gather(t.v[0], t.v[2], t.v[1]), 0x6C),    // 0 3 2 1
                 _mm256_shuffle_epi32(gather(t.v[1], t.v[0], t.v[2]), 0xB1),    // 1 0 3 2
                 _mm256_shuffle_epi32(gather(t.v[2], t.v[1], t.v[0]), 0xC6)}};  // 2 1 0 3
    }
    static Triple join(const Triple& t)
    {
        const __m256i r = _mm256_shuffle_epi32(t.v[0], 0x6C);
        const __m256i g = _mm256_shuffle_epi32(t.v[1], 0xB1);
        const __m256i b = _mm256_shuffle_epi32(t.v[2], 0xC6);
        return {{gather(r, g, b), gather(g, b, r), gather(b, r, g)}};
    }

private:
    // Elements 0, 3 of a, 1 of b and 2 of c.
    static __m256i gather(__m256i a, __m256i b, __m256i c)
    {
        return _mm256_blend_epi32(_mm256_blend_epi32(a, b, 0x22), c, 0x44);
    }
};

// Rows as the transforms see them. A count below lanesOf<T> reads or writes that many pixels only.
template <typename T>
struct PlaneRow {
    using Sample = T;
    T* plane[3];

    Triple load(int i, int count) const
    {
        return {{loadLanes(plane[0] + i, count), loadLanes(plane[1] + i, count), loadLanes(plane[2] + i, count)}};
    }
    void store(int i, const Triple& t, int count) const
    {
        storeLanes(plane[0] + i, t.v[0], count);
        storeLanes(plane[1] + i, t.v[1], count);
        storeLanes(plane[2] + i, t.v[2], count);
    }
};

template <typename T>
struct PixelRow {
    using Sample = T;
    T* pixels;

    Triple load(int i, int count) const
    {
        const T* p = pixels + 3 * int64_t{i};
        if (count == lanesOf<T>)
            return Interleaving<sizeof(T)>::split({{halves(p, 0), halves(p, 1), halves(p, 2)}});
        std::remove_const_t<T> whole[3 * lanesOf<T>] = {};
        std::memcpy(whole, p, static_cast<size_t>(count) * 3 * sizeof(T));
        return Interleaving<sizeof(T)>::split({{halves(whole, 0), halves(whole, 1), halves(whole, 2)}});
    }
    void store(int i, const Triple& t, int count) const
    {
        T* p = pixels + 3 * int64_t{i};
        const Triple joined = Interleaving<sizeof(T)>::join(t);
        if (count == lanesOf<T>)
            return storeAll(p, joined);
        T whole[3 * lanesOf<T>];
        storeAll(whole, joined);
        std::memcpy(p, whole, static_cast<size_t>(count) * 3 * sizeof(T));
    }

private:
    static constexpr int half = lanesOf<T> / 2;
    static __m256i halves(const T* p, int c)
    {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(loadU128(p + c * half)), loadU128(p + (c + 3) * half), 1);
    }
    static void storeAll(T* p, const Triple& joined)
    {
        storeHalves(p, 0, joined.v[0]);
        storeHalves(p, 1, joined.v[1]);
        storeHalves(p, 2, joined.v[2]);
    }
    static void storeHalves(T* p, int c, __m256i v)
    {
        storeU128(p + c * half, _mm256_castsi256_si128(v));
        storeU128(p + (c + 3) * half, _mm256_extracti128_si256(v, 1));
    }
};

// Whether any two of the rows share a byte, so that it matters which pixel is written first.
template <typename T>
inline bool rowsOverlap(const PlaneRow<T>& planes, int width)
{
    const int64_t bytes = int64_t{width} * int64_t{sizeof(T)};
    return overlap(planes.plane[0], bytes, planes.plane[1], bytes) ||
           overlap(planes.plane[0], bytes, planes.plane[2], bytes) ||
           overlap(planes.plane[1], bytes, planes.plane[2], bytes);
}
template <typename T, typename U>
inline bool rowsOverlap(const PlaneRow<T>& planes, const PixelRow<U>& pixels, int width)
{
    const int64_t bytes = int64_t{width} * int64_t{sizeof(T)};
    for (const T* plane : planes.plane)
        if (overlap(plane, bytes, pixels.pixels, 3 * bytes))
            return true;
    return rowsOverlap(planes, width);
}

}  // namespace q3

#endif
