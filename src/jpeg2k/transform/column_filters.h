// The column filters: vectors of neighbouring columns, row pair after row pair. The numbering of even and odd rows is
// that of line_pieces.h.
#ifndef VEK_JPEG2K_TRANSFORM_COLUMN_FILTERS_H
#define VEK_JPEG2K_TRANSFORM_COLUMN_FILTERS_H

#include <algorithm>

#include "jpeg2k/transform/lifting53.h"

namespace q3 {

constexpr int stripBytes = 1024;  // of a row, at a time: a handful of such rows stay in the first-level cache
template <typename T>
constexpr int stripColumns = stripBytes / static_cast<int>(sizeof(T));

// What a filter remembers of the row pairs before: a few rows as wide as a strip.
template <typename T, int rows>
struct StripState {
    alignas(32) T row[rows][stripColumns<T>] = {};
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

// Forward: step k reads even(k), odd(k) and even(k + 1), and gives low(k - lowLag) and high(k - highLag), in the numbers
// of even and odd rows. Inverse: step k reads low(k) and high(k), and gives even(k - evenLag) and odd(k - oddLag).
// Results count from step -lead on, `lead` steps before the first one wanted.
template <typename T>
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
            storeLanes(low + i, Lifting53<T>::smooth(e, loadU(before + i), h), count);
            storeLanes(high + i, h, count);
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
            storeLanes(odd + i, Lifting53<T>::undoDetail(h0, loadU(evenBefore + i), e), count);
            storeLanes(even + i, e, count);
            storeU(highBefore + i, h);
            storeU(evenBefore + i, e);
        });
    }
};

// Rows of a line of columns: given by a function of their number, which knows every number that is asked for.
template <typename Filter, typename Source, typename Low, typename High>
inline void forwardColumns(const Filter& filter, const Source& x, int phase, const Low& low, int lowCount,
                           const High& high, int highCount, int width)
{
    using T = typename Filter::Sample;
    T nowhere[stripColumns<T>];
    const int lastLow = lowCount - 1;  // in the numbers of even and odd rows
    const int lastHigh = highCount - 1 - phase;
    const int last = std::max(lastLow + Filter::lowLag, lastHigh + Filter::highLag);
    for (int c = 0; c < width; c += stripColumns<T>) {
        const int columns = std::min(stripColumns<T>, width - c);
        typename Filter::ForwardState state;
        for (int k = -Filter::lead; k <= last; ++k) {
            const int l = k - Filter::lowLag;
            const int h = k - Filter::highLag;
            filter.forward(state, k, x(2 * k + phase) + c, x(2 * k + 1 + phase) + c, x(2 * k + 2 + phase) + c,
                           l >= 0 && l <= lastLow ? low(l) + c : nowhere,
                           h >= -phase && h <= lastHigh ? high(h + phase) + c : nowhere, columns);
        }
    }
}

// low(k - phase) and high(k) are asked for any k from -lead on; x(i) for i from 0 to count - 1.
template <typename Filter, typename Low, typename High, typename Destination>
inline void inverseColumns(const Filter& filter, const Low& low, const High& high, int phase, const Destination& x,
                           int count, int width)
{
    using T = typename Filter::Sample;
    T nowhere[stripColumns<T>];
    const int last = std::max((count - 1 + phase) / 2 + Filter::evenLag, (count - 2 + phase) / 2 + Filter::oddLag);
    const auto rowOrNowhere = [&](int i, int c) { return i >= 0 && i < count ? x(i) + c : nowhere; };
    for (int c = 0; c < width; c += stripColumns<T>) {
        const int columns = std::min(stripColumns<T>, width - c);
        typename Filter::InverseState state;
        for (int k = -Filter::lead; k <= last; ++k)
            filter.inverse(state, k, low(k - phase) + c, high(k) + c,
                           rowOrNowhere(2 * (k - Filter::evenLag) - phase, c),
                           rowOrNowhere(2 * (k - Filter::oddLag) + 1 - phase, c), columns);
    }
}

}  // namespace q3

#endif
