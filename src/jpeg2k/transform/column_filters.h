// The column filters: vectors of neighbouring columns, row pair after row pair. The numbering of even and odd rows is
// that of line_pieces.h.
#ifndef VEK_JPEG2K_TRANSFORM_COLUMN_FILTERS_H
#define VEK_JPEG2K_TRANSFORM_COLUMN_FILTERS_H

#include <algorithm>
#include <type_traits>

#include "frame/past_cache.h"
#include "jpeg2k/transform/lifting53.h"

namespace q3 {

constexpr int stripBytes = 16384;  // of a row, at a time: a dozen such rows stay in the second-level cache
template <typename T>
constexpr int stripColumns = stripBytes / static_cast<int>(sizeof(T));

// What a filter remembers of the row pairs before: a few rows as wide as a strip.
template <typename T, int rows>
struct StripState {
    explicit StripState(int columns)
    {
        for (auto& r : row)
            for (int i = 0; i < columns; i += lanesOf<T>) storeU(r + i, _mm256_setzero_si256());
    }
    alignas(32) T row[rows][stripColumns<T>];
};

// Calls step(i, count) for vectors of columns, the last with what is left.
template <typename T, typename Step>
inline void alongStrip(int width, const Step& step)
{
    int i = 0;
    for (; i + lanesOf<T> <= width; i += lanesOf<T>) step(i, std::integral_constant<int, lanesOf<T>>{});
    if (i < width)
        step(i, width - i);
}

// Past the cache only to aligned rows, and only whole vectors.
template <bool pastCache, typename T>
inline void storeResults(T* p, __m256i v, int count)
{
    if (pastCache && count == lanesOf<T>)
        streamAligned(p, v);
    else
        storeLanes(p, v, count);
}

// In the numbers of even and odd rows, step k of a forward filter reads even(k), odd(k) and even(k + 1), and gives
// low(k - lowLag) and high(k - highLag); step k of an inverse filter reads low(k) and high(k), and gives
// even(k - evenLag) and odd(k - oddLag). Results count from step -lead on, `lead` steps before the first one wanted.
template <typename T, bool pastCache = false>
struct ColumnFilter53 {
    using Sample = T;
    using ForwardState = StripState<T, 1>;
    using InverseState = StripState<T, 2>;
    static constexpr int lead = 1, lowLag = 0, highLag = 0, evenLag = 0, oddLag = 1;

    void forward(ForwardState& state, int, const T* even, const T* odd, const T* even2, T* low, T* high,
                 int width) const
    {
        T* const before = state.row[0];
        alongStrip<T>(width, [=](int i, auto count) {
            const __m256i e = loadLanes(even + i, count);
            const __m256i h = Lifting53<T>::detail(loadLanes(odd + i, count), e, loadLanes(even2 + i, count));
            storeResults<pastCache>(low + i, Lifting53<T>::smooth(e, loadU(before + i), h), count);
            storeResults<pastCache>(high + i, h, count);
            storeU(before + i, h);
        });
    }
    void inverse(InverseState& state, int, const T* low, const T* high, T* even, T* odd, int width) const
    {
        T* const highBefore = state.row[0];
        T* const evenBefore = state.row[1];
        alongStrip<T>(width, [=](int i, auto count) {
            const __m256i h = loadLanes(high + i, count);
            const __m256i h0 = loadU(highBefore + i);
            const __m256i e = Lifting53<T>::undoSmooth(loadLanes(low + i, count), h0, h);
            storeResults<pastCache>(odd + i, Lifting53<T>::undoDetail(h0, loadU(evenBefore + i), e), count);
            storeResults<pastCache>(even + i, e, count);
            storeU(highBefore + i, h);
            storeU(evenBefore + i, e);
        });
    }
};

// The 9/7 filter. Steps 2 to pairs - 1 of the forward filter and 3 to pairs of the inverse one are computed by Stages,
// those at both ends by EndStages; a filter without ends is made with the same for both.
template <typename T, typename Stages, typename EndStages = Stages, bool pastCache = false>
struct ColumnFilter97 {
    using Sample = T;
    using ForwardState = StripState<T, 3>;
    using InverseState = StripState<T, 4>;
    static constexpr int lead = 2, lowLag = 1, highLag = 2, evenLag = 1, oddLag = 2;
    int pairs = 0;

    void forward(ForwardState& state, int k, const T* even, const T* odd, const T* even2, T* low, T* high,
                 int width) const
    {
        if (k >= 2 && k < pairs)
            forwardBy<Stages>(state, even, odd, even2, low, high, width);
        else
            forwardBy<EndStages>(state, even, odd, even2, low, high, width);
    }
    void inverse(InverseState& state, int k, const T* low, const T* high, T* even, T* odd, int width) const
    {
        if (k >= 3 && k <= pairs)
            inverseBy<Stages>(state, low, high, even, odd, width);
        else
            inverseBy<EndStages>(state, low, high, even, odd, width);
    }

private:
    template <typename By>
    static void forwardBy(ForwardState& state, const T* even, const T* odd, const T* even2, T* low, T* high, int width)
    {
        T* const odd1 = state.row[0];   // of step k - 1, after stage 1
        T* const even1 = state.row[1];  // of step k - 1, after stage 2
        T* const odd2 = state.row[2];   // of step k - 2, after stage 3
        alongStrip<T>(width, [=](int i, auto count) {
            const __m256i e = loadLanes(even + i, count);
            const __m256i o1 = By::forward1(loadLanes(odd + i, count), e, loadLanes(even2 + i, count));
            const __m256i e1 = By::forward2(e, loadU(odd1 + i), o1);
            const __m256i o2Before = loadU(odd2 + i);
            const __m256i o2 = By::forward3(loadU(odd1 + i), loadU(even1 + i), e1);
            storeResults<pastCache>(low + i, By::forward4(loadU(even1 + i), o2Before, o2), count);
            storeResults<pastCache>(high + i, By::forward5(o2Before), count);
            storeU(odd1 + i, o1);
            storeU(even1 + i, e1);
            storeU(odd2 + i, o2);
        });
    }
    template <typename By>
    static void inverseBy(InverseState& state, const T* low, const T* high, T* even, T* odd, int width)
    {
        T* const highBefore = state.row[0];  // of step k - 1
        T* const even1 = state.row[1];       // of step k - 1, after stage 1
        T* const odd1 = state.row[2];        // of step k - 2, after stage 2
        T* const even2 = state.row[3];       // of step k - 2, after stage 3
        alongStrip<T>(width, [=](int i, auto count) {
            __m256i l = loadLanes(low + i, count);
            __m256i h = loadLanes(high + i, count);
            if constexpr (!By::bandsAsStored) {
                l = By::low(l);
                h = By::high(h);
            }
            const __m256i h0 = loadU(highBefore + i);
            const __m256i e1 = By::inverse1(l, h0, h);
            const __m256i o1Before = loadU(odd1 + i);
            const __m256i o1 = By::inverse2(h0, loadU(even1 + i), e1);
            const __m256i e2 = By::inverse3(loadU(even1 + i), o1Before, o1);
            const __m256i o2 = By::inverse4(o1Before, loadU(even2 + i), e2);
            storeResults<pastCache>(even + i, result<By>(e2), count);
            storeResults<pastCache>(odd + i, result<By>(o2), count);
            storeU(highBefore + i, h);
            storeU(even1 + i, e1);
            storeU(odd1 + i, o1);
            storeU(even2 + i, e2);
        });
    }
    template <typename By>
    static __m256i result(__m256i v)
    {
        if constexpr (By::samplesAsStored)
            return v;
        else
            return By::sample(v);
    }
};

// Calls work(c, columns) for strips: if there is a head, fewer columns than a vector has, the first strip is that.
template <typename T, typename Work>
inline void overColumns(int width, int head, const Work& work)
{
    for (int c = 0; c < width;) {
        const int columns = std::min(c == 0 && head > 0 ? head : stripColumns<T>, width - c);
        work(c, columns);
        c += columns;
    }
}

// Rows of a line of columns: given by a function of their number, which knows every number that is asked for. Filters
// that store past the cache want aligned rows of results behind the head.
template <typename Filter, typename Source, typename Low, typename High>
inline void forwardColumns(const Filter& filter, const Source& x, int phase, const Low& low, int lowCount,
                           const High& high, int highCount, int width, int head = 0)
{
    using T = typename Filter::Sample;
    alignas(32) T nowhere[stripColumns<T>];
    const int lastLow = lowCount - 1;  // in the numbers of even and odd rows
    const int lastHigh = highCount - 1 - phase;
    const int last = std::max(lastLow + Filter::lowLag, lastHigh + Filter::highLag);
    overColumns<T>(width, head, [&](int c, int columns) {
        typename Filter::ForwardState state(columns);
        for (int k = -Filter::lead; k <= last; ++k) {
            const int l = k - Filter::lowLag;
            const int h = k - Filter::highLag;
            filter.forward(state, k, x(2 * k + phase) + c, x(2 * k + 1 + phase) + c, x(2 * k + 2 + phase) + c,
                           l >= 0 && l <= lastLow ? low(l) + c : nowhere,
                           h >= -phase && h <= lastHigh ? high(h + phase) + c : nowhere, columns);
        }
    });
}

// low(k - phase) and high(k) are asked for any k from -lead on; x(i) for i from 0 to count - 1.
template <typename Filter, typename Low, typename High, typename Destination>
inline void inverseColumns(const Filter& filter, const Low& low, const High& high, int phase, const Destination& x,
                           int count, int width, int head = 0)
{
    using T = typename Filter::Sample;
    alignas(32) T nowhere[stripColumns<T>];
    const int last = std::max((count - 1 + phase) / 2 + Filter::evenLag, (count - 2 + phase) / 2 + Filter::oddLag);
    const auto rowOrNowhere = [&](int i, int c) { return i >= 0 && i < count ? x(i) + c : nowhere; };
    overColumns<T>(width, head, [&](int c, int columns) {
        typename Filter::InverseState state(columns);
        for (int k = -Filter::lead; k <= last; ++k)
            filter.inverse(state, k, low(k - phase) + c, high(k) + c,
                           rowOrNowhere(2 * (k - Filter::evenLag) - phase, c),
                           rowOrNowhere(2 * (k - Filter::oddLag) + 1 - phase, c), columns);
    });
}

}  // namespace q3

#endif
