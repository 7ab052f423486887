// A piece of a line, taken apart into its even and odd samples: how the row filters hold it while they lift.
//
// Even and odd samples follow one another: odd(k) stands between even(k) and even(k + 1). For a line whose first sample
// stands at a position of parity `phase`, the forward filters number them so that
//      even(k) = x[2 k + phase]             odd(k) = x[2 k + 1 + phase]
//      low[k] comes from even(k)            high[k + phase] from odd(k)
// and the inverse ones so that
//      even(k) = x[2 k - phase]             odd(k) = x[2 k + 1 - phase]
//      and comes from low[k - phase]        and comes from high[k]
#ifndef VEK_JPEG2K_TRANSFORM_LINE_PIECES_H
#define VEK_JPEG2K_TRANSFORM_LINE_PIECES_H

#include <algorithm>

#include "jpeg2k/transform/lanes.h"

namespace q3 {

constexpr int piecePairs = 2048;  // at most: a piece stays in the first-level cache

template <typename T>
class Piece {
public:
    static constexpr int reach = 2;  // pairs that the filters may want before and behind those of the piece

    explicit Piece(int first) : first_(first) {}

    T* even(int k) { return even_ + (k - first_ + before); }
    T* odd(int k) { return odd_ + (k - first_ + before); }

private:
    static constexpr int before = 8;
    static constexpr int capacity = before + piecePairs + reach + 1 + 2 * lanesOf<T>;  // whole vectors fit behind it

    int first_;
    alignas(32) T even_[capacity];
    alignas(32) T odd_[capacity];
};

// own[i] = stage(own[i], left[i], right[i]) for i below count. The last vector may go beyond, in the piece's own room.
template <typename T, typename Stage>
inline void liftPiece(T* own, const T* left, const T* right, int count, const Stage& stage)
{
    for (int i = 0; i < count; i += lanesOf<T>)
        storeU(own + i, stage(loadU(own + i), loadU(left + i), loadU(right + i)));
}
template <typename T, typename Stage>
inline void scalePiece(T* own, int count, const Stage& stage)
{
    for (int i = 0; i < count; i += lanesOf<T>) storeU(own + i, stage(loadU(own + i)));
}

// Even and odd elements of two vectors that follow one another.
template <typename T>
inline void splitVectors(__m256i a, __m256i b, __m256i& even, __m256i& odd)
{
    constexpr int straight = 0xD8;  // quarters 0 2 1 3
    if constexpr (sizeof(T) == 2) {
        const __m256i apart =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15));
        const __m256i a2 = _mm256_shuffle_epi8(a, apart);
        const __m256i b2 = _mm256_shuffle_epi8(b, apart);
        even = _mm256_permute4x64_epi64(_mm256_unpacklo_epi64(a2, b2), straight);
        odd = _mm256_permute4x64_epi64(_mm256_unpackhi_epi64(a2, b2), straight);
    } else {
        const __m256 a2 = _mm256_castsi256_ps(a);
        const __m256 b2 = _mm256_castsi256_ps(b);
        even = _mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(a2, b2, 0x88)), straight);
        odd = _mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(a2, b2, 0xDD)), straight);
    }
}

template <typename T>
inline void split(const T* x, T* even, T* odd, int pairs)
{
    constexpr int lanes = lanesOf<T>;
    int i = 0;
    for (; i + lanes <= pairs; i += lanes) {
        __m256i e, o;
        splitVectors<T>(loadU(x + 2 * i), loadU(x + 2 * i + lanes), e, o);
        storeU(even + i, e);
        storeU(odd + i, o);
    }
    for (; i < pairs; ++i) {
        even[i] = loadScalar<T>(x + 2 * i);
        odd[i] = loadScalar<T>(x + 2 * i + 1);
    }
}

// x = first[0], second[0], first[1], ...: `count` samples.
template <typename T>
inline void interleave(const T* first, const T* second, T* x, int count)
{
    constexpr int lanes = lanesOf<T>;
    int i = 0;
    for (; 2 * (i + lanes) <= count; i += lanes) {
        const __m256i a = loadU(first + i);
        const __m256i b = loadU(second + i);
        const __m256i low = sizeof(T) == 2 ? _mm256_unpacklo_epi16(a, b) : _mm256_unpacklo_epi32(a, b);
        const __m256i high = sizeof(T) == 2 ? _mm256_unpackhi_epi16(a, b) : _mm256_unpackhi_epi32(a, b);
        storeU(x + 2 * i, _mm256_permute2x128_si256(low, high, 0x20));
        storeU(x + 2 * i + lanes, _mm256_permute2x128_si256(low, high, 0x31));
    }
    for (int j = 2 * i; j < count; ++j) storeScalar<T>(x + j, j % 2 == 0 ? first[j / 2] : second[j / 2]);
}

// Where position i of a line of n samples mirrored at its ends is found; the ends are not repeated. n is at least 2.
inline int mirrored(int i, int n)
{
    while (i < 0 || i >= n) i = i < 0 ? -i : 2 * (n - 1) - i;
    return i;
}

}  // namespace q3

#endif
