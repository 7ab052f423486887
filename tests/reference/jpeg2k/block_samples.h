// What the coding passes know of the samples of a code-block, sample by sample (ISO/IEC 15444-1, Annex D).
#ifndef VEK_TESTS_REFERENCE_JPEG2K_BLOCK_SAMPLES_H
#define VEK_TESTS_REFERENCE_JPEG2K_BLOCK_SAMPLES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace model {

class BlockSamples {
public:
    struct Sample {
        bool significant = false, negative = false, visited = false, refined = false;
    };

    BlockSamples(int w, int h, int band, bool isCausal)
        : width(w), height(h), subband(band), causal(isCausal), samples_(static_cast<size_t>(w * h))
    {
    }

    Sample& at(int x, int y) { return samples_[static_cast<size_t>(y * width + x)]; }

    // 1 or -1 for a significant neighbour by its sign, else 0. With vertically causal contexts the next stripe counts
    // for nothing.
    int neighbour(int x, int y, int dx, int dy)
    {
        const int nx = x + dx, ny = y + dy;
        if (nx < 0 || nx >= width || ny < 0 || ny >= height || (causal && dy == 1 && ny % 4 == 0))
            return 0;
        const Sample& s = at(nx, ny);
        return !s.significant ? 0 : s.negative ? -1 : 1;
    }
    int countOf(int x, int y, bool horizontal, bool vertical, bool diagonal)
    {
        int n = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const bool counts = (dx != 0 && dy == 0 && horizontal) || (dx == 0 && dy != 0 && vertical) ||
                                    (dx != 0 && dy != 0 && diagonal);
                n += counts && neighbour(x, y, dx, dy) != 0 ? 1 : 0;
            }
        return n;
    }
    bool hasSignificantNeighbour(int x, int y) { return countOf(x, y, true, true, true) > 0; }

    int zeroContext(int x, int y)
    {
        int h = countOf(x, y, true, false, false);
        int v = countOf(x, y, false, true, false);
        const int d = countOf(x, y, false, false, true);
        if (subband == 3) {
            const int hv = std::min(h + v, 2);
            if (d >= 3)
                return 2 + 8;
            if (d == 2)
                return 2 + (hv > 0 ? 7 : 6);
            return 2 + (d == 1 ? 3 + hv : hv);
        }
        if (subband == 2)
            std::swap(h, v);
        if (h == 2)
            return 2 + 8;
        if (h == 1)
            return 2 + (v > 0 ? 7 : d > 0 ? 6 : 5);
        return 2 + (v == 2 ? 4 : v == 1 ? 3 : std::min(d, 2));
    }
    int refinementContext(int x, int y) { return at(x, y).refined ? 18 : hasSignificantNeighbour(x, y) ? 17 : 16; }
    // Table D.3.
    void signContext(int x, int y, int& context, int& inversion)
    {
        const auto clip = [](int n) { return std::clamp(n, -1, 1); };
        const int h = clip(neighbour(x, y, -1, 0) + neighbour(x, y, 1, 0));
        const int v = clip(neighbour(x, y, 0, -1) + neighbour(x, y, 0, 1));
        static constexpr int labels[3][3] = {{13, 12, 11}, {10, 9, 10}, {11, 12, 13}};  // by h + 1, v + 1
        context = 2 + labels[h + 1][v + 1];
        inversion = h < 0 || (h == 0 && v < 0) ? 1 : 0;
    }

    const int width, height, subband;
    const bool causal;

private:
    std::vector<Sample> samples_;
};

// The passes, each for all samples in their order. What a coder does at one:
//   zero(x, y): whether it becomes significant; sign(x, y): then, whether it is negative; refine(x, y);
//   runLength(x, y): in a column from row y down, the number of samples before the first, 4 for none
template <class Coder>
void significancePass(BlockSamples& block, Coder& coder)
{
    for (int top = 0; top < block.height; top += 4)
        for (int x = 0; x < block.width; ++x)
            for (int y = top; y < std::min(top + 4, block.height); ++y) {
                if (block.at(x, y).significant || !block.hasSignificantNeighbour(x, y))
                    continue;
                if (coder.zero(x, y)) {
                    const bool negative = coder.sign(x, y);
                    block.at(x, y).negative = negative;
                    block.at(x, y).significant = true;
                }
                block.at(x, y).visited = true;
            }
}

template <class Coder>
void refinementPass(BlockSamples& block, Coder& coder, bool marks)
{
    for (int top = 0; top < block.height; top += 4)
        for (int x = 0; x < block.width; ++x)
            for (int y = top; y < std::min(top + 4, block.height); ++y) {
                if (!block.at(x, y).significant || block.at(x, y).visited)
                    continue;
                coder.refine(x, y);
                if (marks)
                    block.at(x, y).refined = true;
            }
}

template <class Coder>
void cleanupPass(BlockSamples& block, Coder& coder)
{
    const auto become = [&](int x, int y) {
        const bool negative = coder.sign(x, y);
        block.at(x, y).negative = negative;
        block.at(x, y).significant = true;
    };
    for (int top = 0; top < block.height; top += 4)
        for (int x = 0; x < block.width; ++x) {
            int y = top;
            bool untouched = top + 4 <= block.height;
            for (int k = top; k < std::min(top + 4, block.height); ++k) {
                const BlockSamples::Sample& s = block.at(x, k);
                if (s.significant || s.visited || block.hasSignificantNeighbour(x, k))
                    untouched = false;
            }
            if (untouched) {
                const int r = coder.runLength(x, top);
                if (r == 4)
                    continue;
                become(x, top + r);
                y = top + r + 1;
            }
            for (; y < std::min(top + 4, block.height); ++y) {
                if (block.at(x, y).significant || block.at(x, y).visited)
                    continue;
                if (coder.zero(x, y))
                    become(x, y);
            }
        }
    for (int y = 0; y < block.height; ++y)
        for (int x = 0; x < block.width; ++x) block.at(x, y).visited = false;
}

}  // namespace model

#endif
