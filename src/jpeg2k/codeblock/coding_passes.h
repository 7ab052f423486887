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

#include "jpeg2k/codeblock/sample_flags.h"

namespace q3 {

// Passes are classes of static functions, all of them expanded in place: only then does a coder lie in registers.
// `words` points to the first word of a column, `w` to that of a sample. The number of rows is a constant in all whole
// stripes.
template <class Pass, class Coder>
[[gnu::always_inline]] inline void runPass(const FlagView& view, Coder& coder)
{
    const auto [first, stride, width, height] = view;
    uint32_t* words = first;
    int y = 0;
    for (; height - y >= 4; y += 4, words += 2 * stride) {
        coder.stripe(y);
        for (int x = 0; x < width; ++x) Pass::column(words + x, stride, coder, x, 4);
    }
    if (y < height) {
        coder.stripe(y);
        for (int x = 0; x < width; ++x) Pass::column(words + x, stride, coder, x, height - y);
    }
}

// Samples that are not significant yet, but next to one that is.
template <bool causal>
struct SignificancePass {
    template <class Coder>
    [[gnu::always_inline]] static void column(uint32_t* words, ptrdiff_t stride, Coder& coder, int x, int rows)
    {
        pair<!causal>(words, stride, coder, x, 0, rows);
        if (rows > 2)
            pair<true>(words + stride, stride, coder, x, 2, rows - 2);
    }

private:
    template <bool tellsAbove, class Coder>
    [[gnu::always_inline]] static void pair(uint32_t* w, ptrdiff_t stride, Coder& coder, int x, int r, int rows)
    {
        if ((~*w & *w << 2 & inBoth(significant)) == 0)
            return;
        sample<Half::upper, tellsAbove>(w, stride, coder, x, r);
        if (rows > 1)
            sample<Half::lower, true>(w, stride, coder, x, r + 1);
    }
    template <Half half, bool tellsAbove, class Coder>
    [[gnu::always_inline]] static void sample(uint32_t* w, ptrdiff_t stride, Coder& coder, int x, int r)
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (anySignificant | significant)) != anySignificant)
            return;
        if (coder.zero(flags, x, r))
            tellNeighbours<half>(w, stride, coder.sign(flags, x, r), significant | visited, tellsAbove);
        else
            *w |= in<half>(visited);
    }
};

// Samples that are significant from an earlier plane on. Raw passes leave no mark on them.
template <bool marks>
struct RefinementPass {
    template <class Coder>
    [[gnu::always_inline]] static void column(uint32_t* words, ptrdiff_t stride, Coder& coder, int x, int rows)
    {
        pair(words, coder, x, 0, rows);
        if (rows > 2)
            pair(words + stride, coder, x, 2, rows - 2);
    }

private:
    template <class Coder>
    [[gnu::always_inline]] static void pair(uint32_t* w, Coder& coder, int x, int r, int rows)
    {
        if ((*w & ~(*w << 1) & inBoth(significant)) == 0)
            return;
        sample<Half::upper>(w, coder, x, r);
        if (rows > 1)
            sample<Half::lower>(w, coder, x, r + 1);
    }
    template <Half half, class Coder>
    [[gnu::always_inline]] static void sample(uint32_t* w, Coder& coder, int x, int r)
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (visited | significant)) != significant)
            return;
        coder.refine(flags, x, r);
        if constexpr (marks)
            *w |= in<half>(refined);
    }
};

// All that the other two have left over. It ends the plane: marks of visits go.
template <bool causal>
struct CleanupPass {
    template <class Coder>
    [[gnu::always_inline]] static void column(uint32_t* words, ptrdiff_t stride, Coder& coder, int x, int rows)
    {
        uint32_t* const upper = words;
        uint32_t* const lower = words + stride;
        if (rows == 4 && (*upper | *lower) == 0) {
            const int r = coder.runLength(x);
            if (r == 4)
                return;
            const bool isNegative = coder.sign(0, x, r);
            if (r == 0) {
                tellNeighbours<Half::upper>(upper, stride, isNegative, significant | visited, !causal);
                pair<!causal>(upper, stride, coder, x, 0, 4);
            } else if (r == 1) {
                tellNeighbours<Half::lower>(upper, stride, isNegative, significant, true);
            } else if (r == 2) {
                tellNeighbours<Half::upper>(lower, stride, isNegative, significant | visited, true);
            } else {
                tellNeighbours<Half::lower>(lower, stride, isNegative, significant, true);
                return;
            }
        } else {
            pair<!causal>(upper, stride, coder, x, 0, rows);
        }
        if (rows > 2)
            pair<true>(lower, stride, coder, x, 2, rows - 2);
    }

private:
    template <bool tellsAbove, class Coder>
    [[gnu::always_inline]] static void pair(uint32_t* w, ptrdiff_t stride, Coder& coder, int x, int r, int rows)
    {
        if ((~(*w | *w << 1) & inBoth(significant)) != 0) {
            sample<Half::upper, tellsAbove>(w, stride, coder, x, r);
            if (rows > 1)
                sample<Half::lower, true>(w, stride, coder, x, r + 1);
        }
        *w &= ~inBoth(visited);
    }
    template <Half half, bool tellsAbove, class Coder>
    [[gnu::always_inline]] static void sample(uint32_t* w, ptrdiff_t stride, Coder& coder, int x, int r)
    {
        const uint32_t flags = halfOf<half>(*w);
        if ((flags & (visited | significant)) == 0 && coder.zero(flags, x, r))
            tellNeighbours<half>(w, stride, coder.sign(flags, x, r), significant | visited, tellsAbove);
    }
};

template <bool causal, class Coder>
[[gnu::always_inline]] inline void significancePass(const FlagView& view, Coder& coder)
{
    runPass<SignificancePass<causal>>(view, coder);
}
template <bool marks, class Coder>
[[gnu::always_inline]] inline void refinementPass(const FlagView& view, Coder& coder)
{
    runPass<RefinementPass<marks>>(view, coder);
}
template <bool causal, class Coder>
[[gnu::always_inline]] inline void cleanupPass(const FlagView& view, Coder& coder)
{
    runPass<CleanupPass<causal>>(view, coder);
}

}  // namespace q3

#endif
