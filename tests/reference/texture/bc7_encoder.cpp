#include "reference/texture/bc7_encoder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "reference/texture/bptc_tables.h"

namespace model {
namespace {

struct Mode {
    int subsets, partitionBits, pBits, rotationBits, selectionBits, index, index2;
    int precision[4], precisionWithP[4];
};
constexpr Mode modes[8] = {
    {3, 4, 6, 0, 0, 3, 0, {4, 4, 4, 0}, {5, 5, 5, 0}}, {2, 6, 2, 0, 0, 3, 0, {6, 6, 6, 0}, {7, 7, 7, 0}},
    {3, 6, 0, 0, 0, 2, 0, {5, 5, 5, 0}, {5, 5, 5, 0}}, {2, 6, 4, 0, 0, 2, 0, {7, 7, 7, 0}, {8, 8, 8, 0}},
    {1, 0, 0, 2, 1, 2, 3, {5, 5, 5, 6}, {5, 5, 5, 6}}, {1, 0, 0, 2, 0, 2, 2, {7, 7, 7, 8}, {7, 7, 7, 8}},
    {1, 0, 2, 0, 0, 4, 0, {7, 7, 7, 7}, {8, 8, 8, 8}}, {2, 6, 4, 0, 0, 2, 0, {5, 5, 5, 5}, {6, 6, 6, 6}}};

constexpr double largest = std::numeric_limits<double>::max();

using Colour = std::array<int, 4>;
struct Pair {
    Colour a, b;
};
using Ends = std::array<Pair, 3>;
using Pixels = std::array<Colour, 16>;

int interpolated(int a, int b, int w) { return ((64 - w) * a + w * b + 32) >> 6; }

// One way through a mode.
struct Encoder {
    const Mode& m;
    const Pixels& pixels;
    int shape, rotation, selection;
    Svd svd;

    bool isApart() const { return m.index2 != 0; }
    int ip() const { return selection == 1 ? m.index2 : m.index; }
    int ip2() const { return selection == 1 ? m.index : m.index2; }
    int subset(int i) const { return subsetOf(m.subsets, shape, i); }

    // The nearest entry over channels from..to of 8-bit endpoints.
    static double search(const Colour& pixel, const Pair& values, int from, int to, int bits, int& index)
    {
        double best = largest;
        for (int j = 0; j < 1 << bits; ++j) {
            if (!(best > 0))
                break;
            double error = 0;
            for (int c = from; c <= to; ++c) {
                const auto k = static_cast<size_t>(c);
                const double d = pixel[k] - interpolated(values.a[k], values.b[k], weightOf(bits, j));
                error += d * d;
            }
            if (error > best)
                break;
            if (error < best) {
                best = error;
                index = j;
            }
        }
        return best;
    }
    double pixelError(const Colour& pixel, const Pair& values, int& index, int& index2) const
    {
        if (!isApart())
            return search(pixel, values, 0, 3, m.index, index);
        return search(pixel, values, 0, 2, ip(), index) + search(pixel, values, 3, 3, ip2(), index2);
    }

    Pair roughPair(const std::vector<Colour>& list) const
    {
        if (list.size() <= 2)
            return {list.front(), list.back()};
        const size_t n = isApart() ? 3 : 4;
        float mean[4] = {};
        for (const Colour& p : list)
            for (size_t c = 0; c < n; ++c) mean[c] += static_cast<float>(p[c]);
        for (float& v : mean) v *= 1.0F / static_cast<float>(list.size());
        std::vector<float> centred(list.size() * 8);
        for (size_t i = 0; i < list.size(); ++i)
            for (size_t c = 0; c < n; ++c) centred[8 * i + c] = static_cast<float>(list[i][c]) - mean[c];
        std::vector<float> matrix = centred;
        float w[4], v[64];
        svd(static_cast<int>(n), static_cast<int>(list.size()), matrix.data(), 8, w, v, 16);
        float low = 0, high = 0;
        for (size_t i = 0; i < list.size(); ++i) {
            const float* p = &centred[8 * i];
            float t = 0;
            if (n == 3) {
                t = p[1] * v[1];
                t = std::fma(p[0], v[0], t);
                t = std::fma(p[2], v[2], t);
            } else {
                const float blue = p[2] * v[2], alpha = p[3] * v[3];
                t = std::fma(p[1], v[1], blue) + std::fma(p[0], v[0], alpha);
            }
            if (i == 0 || t < low)
                low = t;
            if (i == 0 || t > high)
                high = t;
        }
        Pair pair{};
        const auto byte = [](float x) { return !(x < 255.0F) ? 255 : !(x > 0.0F) ? 0 : static_cast<int>(x); };
        for (size_t c = 0; c < n; ++c) {
            pair.a[c] = byte(std::fma(low, v[c], mean[c]));
            pair.b[c] = byte(std::fma(high, v[c], mean[c]));
        }
        if (isApart()) {
            pair.a[3] = 255;
            for (const Colour& p : list) {
                pair.a[3] = std::min(pair.a[3], p[3]);
                pair.b[3] = std::max(pair.b[3], p[3]);
            }
        }
        return pair;
    }

    std::vector<Colour> pixelsOf(int p) const
    {
        std::vector<Colour> list;
        for (int i = 0; i < 16; ++i)
            if (subset(i) == p)
                list.push_back(pixels[static_cast<size_t>(i)]);
        return list;
    }

    double rough(Ends& ends) const
    {
        for (int p = 0; p < m.subsets; ++p) ends[static_cast<size_t>(p)] = roughPair(pixelsOf(p));
        double sum = 0;
        int index = 0, index2 = 0;
        for (int i = 0; i < 16; ++i)
            sum += pixelError(pixels[static_cast<size_t>(i)], ends[static_cast<size_t>(subset(i))], index, index2);
        return sum;
    }

    static int unquantised(int q, int n)
    {
        if (n == 0)
            return 255;
        const int v = q << (8 - n) & 255;
        return v | v >> n;
    }
    Pair values(const Pair& pair) const
    {
        Pair v{};
        for (size_t c = 0; c < 4; ++c) {
            v.a[c] = unquantised(pair.a[c], m.precisionWithP[c]);
            v.b[c] = unquantised(pair.b[c], m.precisionWithP[c]);
        }
        return v;
    }

    struct Assigned {
        Ends ends;
        int index[16] = {}, index2[16] = {};
        double errors[3] = {};
        double total() const { return errors[0] + errors[1] + errors[2]; }
    };
    Assigned assign(const Ends& ends) const
    {
        Assigned r;
        r.ends = ends;
        for (int i = 0; i < 16; ++i)
            r.errors[subset(i)] += pixelError(pixels[static_cast<size_t>(i)],
                                              values(ends[static_cast<size_t>(subset(i))]), r.index[i], r.index2[i]);
        const int bits = isApart() ? ip() : m.index;
        for (int p = 0; p < m.subsets; ++p) {
            int anchor = 0;
            while (subset(anchor) != p || !isAnchor(m.subsets, shape, anchor)) ++anchor;
            if ((r.index[anchor] & 1 << (bits - 1)) == 0)
                continue;
            Pair& pair = r.ends[static_cast<size_t>(p)];
            for (size_t c = 0; c < (isApart() ? 3U : 4U); ++c) std::swap(pair.a[c], pair.b[c]);
            for (int i = 0; i < 16; ++i)
                if (subset(i) == p)
                    r.index[i] = (1 << bits) - 1 - r.index[i];
        }
        if (isApart() && (r.index2[0] & 1 << (ip2() - 1)) != 0) {
            std::swap(r.ends[0].a[3], r.ends[0].b[3]);
            for (int& i : r.index2) i = (1 << ip2()) - 1 - i;
        }
        return r;
    }

    double errorOf(const std::vector<Colour>& list, const Pair& pair, double limit) const
    {
        const Pair v = values(pair);
        double sum = 0;
        int index = 0, index2 = 0;
        for (const Colour& p : list) {
            sum += pixelError(p, v, index, index2);
            if (sum > limit)
                return largest;
        }
        return sum;
    }

    double perturb(const std::vector<Colour>& list, const Pair& pair, bool movesA, size_t c, double error,
                   int& value) const
    {
        const int n = m.precisionWithP[c];
        double least = error;
        value = movesA ? pair.a[c] : pair.b[c];
        for (int step = 1 << (n - 1); step >= 1; step /= 2) {
            int best = 0;
            for (const int sign : {-1, 1}) {
                const int tried = value + sign * step;
                if (tried < 0 || tried >= 1 << n)
                    continue;
                Pair candidate = pair;
                (movesA ? candidate.a[c] : candidate.b[c]) = tried;
                const double e = errorOf(list, candidate, least);
                if (e < least) {
                    least = e;
                    best = sign * step;
                }
            }
            value += best;
        }
        return least;
    }

    void exhaust(const std::vector<Colour>& list, Pair& pair, size_t c, double& error) const
    {
        const int n = m.precisionWithP[c];
        if (n == 0 || error == 0)
            return;
        const int a = pair.a[c], b = pair.b[c], top = (1 << n) - 1;
        const int aLow = std::max(0, a - 5), aHigh = std::min(a + 5, top);
        const int bLow = std::max(0, b - 5), bHigh = std::min(b + 5, top);
        Pair best = pair;
        const auto attempt = [&](int x, int y) {
            Pair candidate = pair;
            candidate.a[c] = x;
            candidate.b[c] = y;
            const double e = errorOf(list, candidate, error);
            if (e < error) {
                error = e;
                best = candidate;
            }
        };
        if (a > b) {
            for (int y = bLow; y < bHigh; ++y)
                for (int x = std::max(y, aLow); x <= aHigh; ++x) attempt(x, y);
        } else {
            for (int x = aLow; x <= aHigh; ++x)
                for (int y = std::max(x, bLow); y < bHigh; ++y) attempt(x, y);
        }
        pair = best;
    }

    Pair optimised(const std::vector<Colour>& list, Pair pair, double e) const
    {
        for (size_t c = 0; c < 4; ++c) {
            if (m.precisionWithP[c] == 0)
                continue;
            int newA = 0, newB = 0;
            const double errorA = perturb(list, pair, true, c, e, newA);
            const double errorB = perturb(list, pair, false, c, e, newB);
            bool movesA = false;
            if (errorA < errorB) {
                if (errorA >= e)
                    continue;
                pair.a[c] = newA;
                e = errorA;
            } else {
                if (errorB >= e)
                    continue;
                pair.b[c] = newB;
                e = errorB;
                movesA = true;
            }
            for (;;) {
                int value = 0;
                const double error = perturb(list, pair, movesA, c, e, value);
                if (error >= e)
                    break;
                (movesA ? pair.a[c] : pair.b[c]) = value;
                e = error;
                movesA = !movesA;
            }
        }
        for (size_t c = 0; c < 4; ++c) exhaust(list, pair, c, e);
        return pair;
    }

    double refine(const Ends& roughEnds, int modeNumber, std::array<uint8_t, 16>& block) const
    {
        Ends ends{};
        for (int p = 0; p < m.subsets; ++p)
            for (size_t c = 0; c < 4; ++c) {
                const int n = m.precisionWithP[c];
                const auto quantise = [n](int v) {
                    return n == 0 ? 255 : n == 8 ? v : std::min(255, v + (1 << (7 - n))) >> (8 - n);
                };
                const auto k = static_cast<size_t>(p);
                ends[k].a[c] = quantise(roughEnds[k].a[c]);
                ends[k].b[c] = quantise(roughEnds[k].b[c]);
            }
        const Assigned original = assign(ends);
        Ends better = original.ends;
        for (int p = 0; p < m.subsets; ++p) {
            const auto k = static_cast<size_t>(p);
            better[k] = optimised(pixelsOf(p), original.ends[k], original.errors[p]);
        }
        const Assigned optimum = assign(better);
        const Assigned& chosen = original.total() > optimum.total() ? optimum : original;
        emit(chosen, modeNumber, block);
        return chosen.total();
    }

    void emit(const Assigned& chosen, int modeNumber, std::array<uint8_t, 16>& block) const
    {
        Ends ends = chosen.ends;
        int votes[6] = {}, counts[6] = {};
        const int endpoints = 2 * m.subsets;
        for (size_t c = 0; c < 4; ++c) {
            if (m.pBits == 0 || m.precision[c] == m.precisionWithP[c])
                continue;
            for (int i = 0; i < endpoints; ++i) {
                Pair& pair = ends[static_cast<size_t>(i / 2)];
                int& v = i % 2 == 0 ? pair.a[c] : pair.b[c];
                const int slot = i * m.pBits / endpoints;
                votes[slot] += v & 1;
                ++counts[slot];
                v >>= 1;
            }
        }
        block.fill(0);
        int position = 0;
        const auto put = [&](int value, int bits) {
            for (int i = 0; i < bits; ++i, ++position)
                if ((value >> i & 1) != 0)
                    block[static_cast<size_t>(position / 8)] |= static_cast<uint8_t>(1 << position % 8);
        };
        put(1 << modeNumber, modeNumber + 1);
        if (m.partitionBits != 0)
            put(shape, m.partitionBits);
        put(rotation, m.rotationBits);
        put(selection, m.selectionBits);
        for (size_t c = 0; c < 4; ++c)
            for (int i = 0; i < endpoints; ++i) {
                const Pair& pair = ends[static_cast<size_t>(i / 2)];
                put(i % 2 == 0 ? pair.a[c] : pair.b[c], m.precision[c]);
            }
        for (int k = 0; k < m.pBits; ++k) put(votes[k] > counts[k] >> 1 ? 1 : 0, 1);
        const int* first = selection == 1 ? chosen.index2 : chosen.index;
        const int* second = selection == 1 ? chosen.index : chosen.index2;
        for (int i = 0; i < 16; ++i) put(first[i], m.index - (isAnchor(m.subsets, shape, i) ? 1 : 0));
        if (isApart())
            for (int i = 0; i < 16; ++i) put(second[i], m.index2 - (i == 0 ? 1 : 0));
    }
};

}  // namespace

Bc7Encoded encodeBc7(const uint8_t* bytes, int modeNumber, Svd svd)
{
    const Mode& m = modes[modeNumber];
    Pixels pixels;
    for (size_t i = 0; i < 64; ++i) pixels[i / 4][i % 4] = bytes[i];
    const int shapes = 1 << m.partitionBits;
    const int items = std::max(shapes >> 2, 1);
    double best = largest;
    Bc7Encoded result{};
    for (int r = 0; r < 1 << m.rotationBits && best != 0; ++r)
        for (int s = 0; s < 1 << m.selectionBits && best != 0; ++s) {
            Pixels rotated = pixels;
            if (r != 0)
                for (Colour& p : rotated) std::swap(p[static_cast<size_t>(r - 1)], p[3]);
            std::vector<double> errors;
            std::vector<int> order;
            std::vector<Ends> ends(static_cast<size_t>(shapes));
            for (int shape = 0; shape < shapes; ++shape) {
                const Encoder encoder = {m, rotated, shape, r, s, svd};
                errors.push_back(encoder.rough(ends[static_cast<size_t>(shape)]));
                order.push_back(shape);
            }
            for (size_t i = 0; i < static_cast<size_t>(items); ++i)
                for (size_t j = i + 1; j < static_cast<size_t>(shapes); ++j)
                    if (errors[i] > errors[j]) {
                        std::swap(errors[i], errors[j]);
                        std::swap(order[i], order[j]);
                    }
            for (size_t i = 0; i < static_cast<size_t>(items); ++i) {
                std::array<uint8_t, 16> block;
                const Encoder encoder = {m, rotated, order[i], r, s, svd};
                const double e = encoder.refine(ends[static_cast<size_t>(order[i])], modeNumber, block);
                if (best > e) {
                    best = e;
                    result.block = block;
                    if (best == 0)
                        break;
                }
            }
        }
    result.error = static_cast<int>(best);
    return result;
}

}  // namespace model
