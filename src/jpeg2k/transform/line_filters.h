// The row filters: lines in pieces, from and to memory.
#ifndef VEK_JPEG2K_TRANSFORM_LINE_FILTERS_H
#define VEK_JPEG2K_TRANSFORM_LINE_FILTERS_H

#include "jpeg2k/transform/lifting53.h"
#include "jpeg2k/transform/lifting97_stages.h"
#include "jpeg2k/transform/line_pieces.h"

namespace q3 {

// The 5/3 filter on a piece.
template <typename T>
struct LineFilter53 {
    using Sample = T;
    static constexpr int reach = 1, pauses = 2;

    // To low(k) and high(k) in the places of even(k) and odd(k), for k from k0 - 1 (high only) to k1; wants even(k) for
    // k from k0 - reach to k1 + reach and odd(k) up to k1 + reach - 1.
    void forward(Piece<T>& piece, int k0, int k1) const
    {
        const int count = k1 - k0 + 1;
        piece.pause();
        liftPiece(piece.odd(k0 - 1), piece.even(k0 - 1), piece.even(k0), count + 1, Lifting53<T>::detail);
        piece.pause();
        liftPiece(piece.even(k0), piece.odd(k0 - 1), piece.odd(k0), count, Lifting53<T>::smooth);
    }
    // To even(k) for k from k0 to k1 + 1 and odd(k) up to k1, in the places of low(k) and high(k); wants low(k) for k
    // from k0 - reach + 1 to k1 + reach, and high(k) from k0 - reach on.
    void inverse(Piece<T>& piece, int k0, int k1) const
    {
        const int count = k1 - k0 + 1;
        piece.pause();
        liftPiece(piece.even(k0), piece.odd(k0 - 1), piece.odd(k0), count + 1, Lifting53<T>::undoSmooth);
        piece.pause();
        liftPiece(piece.odd(k0), piece.even(k0), piece.even(k0 + 1), count, Lifting53<T>::undoDetail);
    }
};

// No stage is computed in another arithmetic than the rest.
struct NoEnds {};

// The 9/7 filter on a piece, with the contract of LineFilter53. With EndStages a line of `pairs` pairs is computed in
// two arithmetics: at the beginning of the line the first four results of stage 1, three of stage 2, two of stage 3
// and one of stage 4, and at its end the last one of each, by EndStages; the rest in vectors by Stages. The stages are
// counted over all results that the line's outputs depend on.
template <typename T, typename Stages, typename EndStages = NoEnds>
struct LineFilter97 {
    using Sample = T;
    static constexpr int reach = 2, pauses = 4;
    int pairs = 0;

    void forward(Piece<T>& piece, int k0, int k1) const
    {
        const int w = pairs;
        piece.pause();
        lift(piece.odd(k0 - 2), piece.even(k0 - 2), piece.even(k0 - 1), {k0 - 2, k1 + 1}, {2, w - 1},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::forward1(v, l, r); });
        piece.pause();
        lift(piece.even(k0 - 1), piece.odd(k0 - 2), piece.odd(k0 - 1), {k0 - 1, k1 + 1}, {2, w - 1},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::forward2(v, l, r); });
        piece.pause();
        lift(piece.odd(k0 - 1), piece.even(k0 - 1), piece.even(k0), {k0 - 1, k1}, {1, w - 2},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::forward3(v, l, r); });
        piece.pause();
        lift(piece.even(k0), piece.odd(k0 - 1), piece.odd(k0), {k0, k1}, {1, w - 2},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::forward4(v, l, r); });
        lift(piece.odd(k0 - 1), piece.odd(k0 - 1), piece.odd(k0 - 1), {k0 - 1, k1}, {0, w - 3},
             [](auto v, auto, auto) { return decltype(stagesOf(v))::forward5(v); });
    }

    void inverse(Piece<T>& piece, int k0, int k1) const
    {
        const int w = pairs;
        const int count = k1 - k0 + 1;
        if constexpr (!Stages::bandsAsStored) {
            scalePiece(piece.even(k0 - 1), count + 3, Stages::low);
            scalePiece(piece.odd(k0 - 2), count + 4, Stages::high);
        }
        piece.pause();
        lift(piece.even(k0 - 1), piece.odd(k0 - 2), piece.odd(k0 - 1), {k0 - 1, k1 + 2}, {3, w},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::inverse1(v, l, r); });
        piece.pause();
        lift(piece.odd(k0 - 1), piece.even(k0 - 1), piece.even(k0), {k0 - 1, k1 + 1}, {2, w - 1},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::inverse2(v, l, r); });
        piece.pause();
        lift(piece.even(k0), piece.odd(k0 - 1), piece.odd(k0), {k0, k1 + 1}, {2, w - 1},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::inverse3(v, l, r); });
        piece.pause();
        lift(piece.odd(k0), piece.even(k0), piece.even(k0 + 1), {k0, k1}, {1, w - 2},
             [](auto v, auto l, auto r) { return decltype(stagesOf(v))::inverse4(v, l, r); });
        if constexpr (!Stages::samplesAsStored) {
            scalePiece(piece.even(k0), count + 1, Stages::sample);
            scalePiece(piece.odd(k0), count, Stages::sample);
        }
    }

private:
    struct Range {
        int first, last;
    };
    static Stages stagesOf(__m256i);
    static EndStages stagesOf(T);

    // Single samples go to EndStages, vectors to Stages. The ends are computed before the vectors pass over them.
    template <typename Stage>
    static void lift(T* own, const T* left, const T* right, Range all, Range interior, const Stage& stage)
    {
        const int count = all.last - all.first + 1;
        if constexpr (std::is_same_v<EndStages, NoEnds>) {
            liftPiece(own, left, right, count, [&](__m256i o, __m256i l, __m256i r) { return stage(o, l, r); });
        } else {
            if (interior.first > interior.last) {
                for (int i = 0; i < count; ++i) own[i] = stage(own[i], left[i], right[i]);
                return;
            }
            const int front = std::clamp(interior.first - all.first, 0, count);
            const int back = std::clamp(all.last - interior.last, 0, count - front);
            constexpr int most = 4;
            T frontResults[most], backResults[most];
            for (int i = 0; i < front; ++i) frontResults[i] = stage(own[i], left[i], right[i]);
            for (int i = 0; i < back; ++i)
                backResults[i] = stage(own[count - back + i], left[count - back + i], right[count - back + i]);
            liftPiece(own, left, right, count, [&](__m256i o, __m256i l, __m256i r) { return stage(o, l, r); });
            std::copy_n(frontResults, front, own);
            std::copy_n(backResults, back, own + (count - back));
        }
    }
};

// A line in natural order, of which the samples from first to last can be read, and stand for the mirrored ones beyond.
template <typename T>
struct NaturalLine {
    const T* x;
    int phase;
    int first, last;

    T at(int i) const { return loadScalar<T>(x + (i < first || i > last ? mirrored(i, last + 1) : i)); }
    // even(k) for k from a to b, odd(k) from a to b - 1
    void load(Piece<T>& piece, int a, int b) const
    {
        int k = a;
        for (; k < b && 2 * k + phase < first; ++k) loadPair(piece, k);
        const int inside = std::max(0, std::min(b - k, (last - phase - 2 * k + 1) / 2));
        split(x + 2 * int64_t{k} + phase, piece.even(k), piece.odd(k), inside);
        for (k += inside; k < b; ++k) loadPair(piece, k);
        *piece.even(b) = at(2 * b + phase);
    }

private:
    void loadPair(Piece<T>& piece, int k) const
    {
        *piece.even(k) = at(2 * k + phase);
        *piece.odd(k) = at(2 * k + 1 + phase);
    }
};

// The two bands of a line.
template <typename T>
struct BandLine {
    const T* low;
    const T* high;
    int phase;
    int first, last;  // positions of the line whose samples can be read, and stand for the mirrored ones beyond

    int inside(int i) const { return i < first || i > last ? mirrored(i, last + 1) : i; }
    // low(k) for k from a + 1 to b, high(k) from a to b, in the places of even(k) and odd(k)
    void load(Piece<T>& piece, int a, int b) const
    {
        fill(low, phase, -phase, a + 1, b, piece.even(a + 1));
        fill(high, phase - 1, 0, a, b, piece.odd(a));
    }

private:
    // Sample k of the band stands at position 2 k - shift and has the index k + offset.
    void fill(const T* band, int shift, int offset, int a, int b, T* to) const
    {
        int k = a;
        for (; k <= b && 2 * k - shift < first; ++k) *to++ = mirroredSample(band, shift, offset, k);
        const int count = std::max(0, std::min(b + 1 - k, (last + shift - 2 * k) / 2 + 1));
        if (2 * k - shift <= last) {
            std::memcpy(to, band + (k + offset), static_cast<size_t>(count) * sizeof(T));
            to += count;
            k += count;
        }
        for (; k <= b; ++k) *to++ = mirroredSample(band, shift, offset, k);
    }
    T mirroredSample(const T* band, int shift, int offset, int k) const
    {
        return loadScalar<T>(band + (inside(2 * k - shift) + shift) / 2 + offset);
    }
};

// Pieces of lines beyond the cache, and the lines of the cache that half of one takes.
constexpr int pairsPastCache = 512;
template <typename T>
constexpr int linesAhead = pairsPastCache* static_cast<int>(sizeof(T)) / 64;

// Filters a line into its bands. highCount is lowCount, or one more with phase 1, or one less with phase 0. The results
// of a piece are written before the next one is read.
template <typename Filter, typename T>
inline void forwardLine(const Filter& filter, const NaturalLine<T>& line, T* low, int lowCount, T* high, int highCount,
                        bool pastCache = false)
{
    const int pairs = pastCache ? pairsPastCache : piecePairs;
    for (int k0 = 0; k0 < lowCount; k0 += pairs) {
        const bool last = lowCount - k0 <= pairs;
        const int k1 = last ? lowCount - 1 : k0 + pairs - 1;
        Piece<T> piece(k0);
        line.load(piece, k0 - Filter::reach, k1 + Filter::reach);
        if (pastCache) {
            const T* const next = line.x + 2 * (int64_t{k0} + pairs);
            piece.fetchAhead(next, next + pairs, linesAhead<T> / Filter::pauses);
        }
        filter.forward(piece, k0, k1);
        putSamples(low + k0, piece.even(k0), k1 - k0 + 1, pastCache);
        const int highEnd = last ? highCount : k1 + 1;
        putSamples(high + k0, piece.odd(k0 - line.phase), highEnd - k0, pastCache);
    }
}

// Filters the bands of a line into its `count` samples.
template <typename Filter, typename T>
inline void inverseLine(const Filter& filter, const BandLine<T>& line, T* x, int count, bool pastCache = false)
{
    const int pairs = pastCache ? pairsPastCache : piecePairs;
    for (int k0 = 0; 2 * k0 < count; k0 += pairs) {
        const int samples = std::min(count - 2 * k0, 2 * pairs);
        const int k1 = k0 + (samples + 1) / 2 - 1;
        Piece<T> piece(k0);
        line.load(piece, k0 - Filter::reach, k1 + Filter::reach);
        if (pastCache)
            piece.fetchAhead(line.low + k0 + pairs, line.high + k0 + pairs, linesAhead<T> / Filter::pauses);
        filter.inverse(piece, k0, k1);
        if (line.phase == 0)
            interleave(piece.even(k0), piece.odd(k0), x + 2 * int64_t{k0}, samples, pastCache);
        else
            interleave(piece.odd(k0), piece.even(k0 + 1), x + 2 * int64_t{k0}, samples, pastCache);
    }
}

}  // namespace q3

#endif
