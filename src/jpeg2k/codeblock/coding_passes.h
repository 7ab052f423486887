// The three coding passes over a code-block (ISO/IEC 15444-1, Annex D.3), for decoders and encoders alike: stripes of
// four rows, in each of them column by column, in each column downwards.
//
// What happens at a sample is up to the coder:
//   stripe(y)             the stripe that begins with row y comes next
//   zero(flags, x, r)     whether the sample at column x, row r of the stripe becomes significant
//   sign(flags, x, r)     it has become significant: whether it is negative
//   refine(flags, x, r)   its next bit
//   runLength(x)          the row of the first sample of a column to become significant, 4 if there is none
// `flags` are those of the sample.
#ifndef VEK_JPEG2K_CODEBLOCK_CODING_PASSES_H
#define VEK_JPEG2K_CODEBLOCK_CODING_PASSES_H

#include <algorithm>

#include "jpeg2k/codeblock/sample_flags.h"

namespace q3 {

// Calls work(words of the stripe's first column, rows) for every stripe. The number of rows is a constant in all whole
// stripes.
template <class Coder, class Work>
[[gnu::always_inline]] inline void forEachStripe(const FlagView& view, Coder& coder, const Work& work)
{
    int y = 0;
    for (; view.height - y >= 4; y += 4) {
        coder.stripe(y);
        work(view.pair(y), 4);
    }
    if (y < view.height) {
        coder.stripe(y);
        work(view.pair(y), view.height - y);
    }
}

// Samples that are not significant yet, but next to one that is.
template <bool causal, class Coder>
[[gnu::always_inline]] inline void significancePass(const FlagView& view, Coder& coder)
{
    const auto sample = [&]<Half half>(uint32_t * w, int x, int r, bool tellsAbove) __attribute__((always_inline))
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (anySignificant | significant)) != anySignificant)
            return;
        if (coder.zero(flags, x, r))
            tellNeighbours<half>(w, view.stride, coder.sign(flags, x, r), significant | visited, tellsAbove);
        else
            *w |= in<half>(visited);
    };
    const auto pair = [&](uint32_t * w, int x, int r, int rows, bool tellsAbove) __attribute__((always_inline))
    {
        if ((~*w & *w << 2 & inBoth(significant)) == 0)
            return;
        sample.template operator()<Half::upper>(w, x, r, tellsAbove);
        if (rows > 1)
            sample.template operator()<Half::lower>(w, x, r + 1, true);
    };
    forEachStripe(
        view, coder, [&](uint32_t * words, int rows) __attribute__((always_inline)) {
            for (int x = 0; x < view.width; ++x) {
                pair(words + x, x, 0, rows, !causal);
                if (rows > 2)
                    pair(words + view.stride + x, x, 2, rows - 2, true);
            }
        });
}

// Samples that are significant from an earlier plane on. Raw passes leave no mark on them.
template <bool marks, class Coder>
[[gnu::always_inline]] inline void refinementPass(const FlagView& view, Coder& coder)
{
    const auto sample = [&]<Half half>(uint32_t * w, int x, int r) __attribute__((always_inline))
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (visited | significant)) != significant)
            return;
        coder.refine(flags, x, r);
        if constexpr (marks)
            *w |= in<half>(refined);
    };
    const auto pair = [&](uint32_t * w, int x, int r, int rows) __attribute__((always_inline))
    {
        if ((*w & ~(*w << 1) & inBoth(significant)) == 0)
            return;
        sample.template operator()<Half::upper>(w, x, r);
        if (rows > 1)
            sample.template operator()<Half::lower>(w, x, r + 1);
    };
    forEachStripe(
        view, coder, [&](uint32_t * words, int rows) __attribute__((always_inline)) {
            for (int x = 0; x < view.width; ++x) {
                pair(words + x, x, 0, rows);
                if (rows > 2)
                    pair(words + view.stride + x, x, 2, rows - 2);
            }
        });
}

// All that the other two have left over. It ends the plane: marks of visits go.
template <bool causal, class Coder>
[[gnu::always_inline]] inline void cleanupPass(const FlagView& view, Coder& coder)
{
    const auto sample = [&]<Half half>(uint32_t * w, int x, int r, bool tellsAbove) __attribute__((always_inline))
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (visited | significant)) == 0 && coder.zero(flags, x, r))
            tellNeighbours<half>(w, view.stride, coder.sign(flags, x, r), significant | visited, tellsAbove);
    };
    const auto pair = [&](uint32_t * w, int x, int r, int rows, bool tellsAbove) __attribute__((always_inline))
    {
        if ((~(*w | *w << 1) & inBoth(significant)) != 0) {
            sample.template operator()<Half::upper>(w, x, r, tellsAbove);
            if (rows > 1)
                sample.template operator()<Half::lower>(w, x, r + 1, true);
        }
        *w &= ~inBoth(visited);
    };
    forEachStripe(
        view, coder, [&](uint32_t * words, int rows) __attribute__((always_inline)) {
            for (int x = 0; x < view.width; ++x) {
                uint32_t* const upper = words + x;
                uint32_t* const lower = upper + view.stride;
                if (rows == 4 && (*upper | *lower) == 0) {
                    const int r = coder.runLength(x);
                    if (r == 4)
                        continue;
                    const bool isNegative = coder.sign(0, x, r);
                    if (r == 0) {
                        tellNeighbours<Half::upper>(upper, view.stride, isNegative, significant | visited, !causal);
                    } else if (r == 1) {
                        tellNeighbours<Half::lower>(upper, view.stride, isNegative, significant, true);
                    } else if (r == 2) {
                        tellNeighbours<Half::upper>(lower, view.stride, isNegative, significant | visited, true);
                    } else {
                        tellNeighbours<Half::lower>(lower, view.stride, isNegative, significant, true);
                        continue;
                    }
                    if (r == 0)
                        pair(upper, x, 0, 4, !causal);
                } else {
                    pair(upper, x, 0, rows, !causal);
                }
                if (rows > 2)
                    pair(lower, x, 2, rows - 2, true);
            }
        });
}

}  // namespace q3

#endif
