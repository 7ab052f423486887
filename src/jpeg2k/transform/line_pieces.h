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

#include "frame/past_cache.h"
#include "jpeg2k/transform/lanes.h"

namespace q3 {

constexpr int piecePairs = 2048;  // at most: a piece stays in the first-level cache

template <typename T>
class Piece {
public:
    static constexpr int reach = 2;  // pairs that the filters may want before and behind those of the piece

    explicit Piece(int first) : first_(first) {}

    // While a piece is lifted, lines of the cache that the next one will want are fetched: a few at a time, at each
    // pause of the filter, so that none waits for a place.
    void fetchAhead(const T* first, const T* second, int lines)
    {
        ahead_[0] = reinterpret_cast<const char*>(first);
        ahead_[1] = reinterpret_cast<const char*>(second);
        aheadLines_ = lines;
    }
    void pause()
    {
        for (int i = 0; i < aheadLines_; ++i)
            for (const char*& at : ahead_) {
                _mm_prefetch(at, _MM_HINT_T0);
                at += 64;
            }
    }

    T* even(int k) { return even_ + (k - first_ + before); }
    T* odd(int k) { return odd_ + (k - first_ + before); }

private:
    static constexpr int before = 8;
    static constexpr int needed = before + piecePairs + reach + 1 + 2 * lanesOf<T>;  // whole vectors fit behind it
    // Half a page further on modulo pages: loads of odd samples must not look like the stores of even ones before them.
    static constexpr int pageSamples = 4096 / static_cast<int>(sizeof(T));
    static constexpr int capacity = needed / pageSamples * pageSamples + pageSamples + pageSamples / 2;

    int first_;
    int aheadLines_ = 0;
    const char* ahead_[2] = {};
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

// Results from a piece to memory.
template <typename T>
inline void putSamples(T* to, const T* from, int count, bool pastCache)
{
    const size_t bytes = static_cast<size_t>(count) * sizeof(T);
    if (pastCache)
        copyPastCache(to, from, static_cast<int64_t>(bytes));
    else
        std::memcpy(to, from, bytes);
}

// Calls store(x + i, vector) for x = first[0], second[0], first[1], ..., for whole pairs of vectors among the first
// `count` samples; tells how many samples that were.
template <typename T, typename Store>
inline int interleaveVectors(const T* first, const T* second, T* x, int count, const Store& store)
{
    constexpr int lanes = lanesOf<T>;
    int i = 0;
    for (; 2 * (i + lanes) <= count; i += lanes) {
        const __m256i a = loadU(first + i);
        const __m256i b = loadU(second + i);
        const __m256i low = sizeof(T) == 2 ? _mm256_unpacklo_epi16(a, b) : _mm256_unpacklo_epi32(a, b);
        const __m256i high = sizeof(T) == 2 ? _mm256_unpackhi_epi16(a, b) : _mm256_unpackhi_epi32(a, b);
        store(x + 2 * i, _mm256_permute2x128_si256(low, high, 0x20));
        store(x + 2 * i + lanes, _mm256_permute2x128_si256(low, high, 0x31));
    }
    return 2 * i;
}
template <typename T>
inline void interleave(const T* first, const T* second, T* x, int count)
{
    const int done = interleaveVectors(first, second, x, count, [](T* p, __m256i v) { storeU(p, v); });
    for (int j = done; j < count; ++j) storeScalar<T>(x + j, j % 2 == 0 ? first[j / 2] : second[j / 2]);
}
template <typename T>
inline void interleavePastCache(const T* first, const T* second, T* x, int count)
{
    const int64_t unaligned = bytesToAligned(x);
    if (unaligned % int64_t{sizeof(T)} != 0)
        return interleave(first, second, x, count);
    T end[2 * lanesOf<T>];
    const int head = std::min(static_cast<int>(unaligned) / static_cast<int>(sizeof(T)), count);
    interleave(first, second, end, head);
    putSamples(x, end, head, true);
    const T* const next = head % 2 == 0 ? first + head / 2 : second + head / 2;
    const T* const afterNext = head % 2 == 0 ? second + head / 2 : first + head / 2 + 1;
    const int done =
        interleaveVectors(next, afterNext, x + head, count - head, [](T* p, __m256i v) { streamAligned(p, v); });
    interleave(next + done / 2, afterNext + done / 2, end, count - head - done);
    putSamples(x + head + done, end, count - head - done, true);
}
template <typename T>
inline void interleave(const T* first, const T* second, T* x, int count, bool pastCache)
{
    if (pastCache)
        interleavePastCache(first, second, x, count);
    else
        interleave(first, second, x, count);
}

// Where position i of a line of n samples mirrored at its ends is found; the ends are not repeated. n is at least 2.
inline int mirrored(int i, int n)
{
    while (i < 0 || i >= n) i = i < 0 ? -i : 2 * (n - 1) - i;
    return i;
}

}  // namespace q3

#endif
