#include "texture/bc7_refine.h"

#include <algorithm>
#include <utility>

#include "texture/bc7_emit.h"
#include "texture/bc7_palette_search.h"

namespace q3 {
namespace {

constexpr int exhaustiveReach = 5;

// To the nearest, half up.
uint8_t quantised(int v, int bits)
{
    if (bits == 0)
        return 255;
    return static_cast<uint8_t>(std::min(255, v + (128 >> bits)) >> (8 - bits));
}

uint8_t unquantised(int q, int bits)
{
    if (bits == 0)
        return 255;
    const int v = q << (8 - bits) & 255;
    return static_cast<uint8_t>(v | v >> bits);
}

Bc7EndpointPair unquantised(const Bc7Mode& mode, const Bc7EndpointPair& pair)
{
    Bc7EndpointPair v;
    for (size_t c = 0; c < 4; ++c) {
        const int bits = mode.precision(static_cast<int>(c));
        v.a[c] = unquantised(pair.a[c], bits);
        v.b[c] = unquantised(pair.b[c], bits);
    }
    return v;
}

// The indices of a block with given endpoints.
struct Assignment {
    Bc7Endpoints endpoints;  // quantised, exchanged where an anchor's index would have its highest bit set
    Bc7Indices indices, alphaIndices;
    std::array<int32_t, 3> errors{};  // of the subsets
};

Assignment AssignIndices(const Bc7Mode& mode, const Bc7Pixels& pixels, const Bc7Choice& choice,
                         const Bc7Endpoints& endpoints)
{
    const Partition& subsetOf = subsetsOf(mode, choice.partition);
    Bc7Endpoints values{};
    for (size_t p = 0; p < static_cast<size_t>(mode.subsets); ++p) values[p] = unquantised(mode, endpoints[p]);
    const BlockSearch search = searchBlock(mode, choice.selection, pixels, endpointsOfPixels(subsetOf, values));
    std::array<int32_t, 16> errors, indices, alphaIndices{};
    search.errors.store(errors.data());
    search.indices.store(indices.data());
    if (hasAlphaSet(mode))
        search.alphaIndices.store(alphaIndices.data());

    Assignment result{.endpoints = endpoints, .indices = {}, .alphaIndices = {}};
    for (size_t i = 0; i < 16; ++i) {
        result.errors[subsetOf[i]] += errors[i];
        result.indices[i] = static_cast<uint8_t>(indices[i]);
        result.alphaIndices[i] = static_cast<uint8_t>(alphaIndices[i]);
    }

    const bool isAlphaApart = hasAlphaSet(mode);
    const int bits = isAlphaApart ? colourIndexBits(mode, choice.selection) : mode.indexBits;
    const auto anchors = anchorsOf(mode, choice.partition);
    for (size_t p = 0; p < static_cast<size_t>(mode.subsets); ++p) {
        if ((result.indices[anchors[p]] >> (bits - 1) & 1) == 0)
            continue;
        Bc7EndpointPair& pair = result.endpoints[p];
        std::swap_ranges(pair.a.begin(), pair.a.begin() + (isAlphaApart ? 3 : 4), pair.b.begin());
        for (size_t i = 0; i < 16; ++i)
            if (subsetOf[i] == p)
                result.indices[i] = static_cast<uint8_t>((1 << bits) - 1 - result.indices[i]);
    }
    if (isAlphaApart) {
        const int alphaBits = alphaIndexBits(mode, choice.selection);
        if ((result.alphaIndices[0] >> (alphaBits - 1) & 1) != 0) {
            std::swap(result.endpoints[0].a[3], result.endpoints[0].b[3]);
            for (uint8_t& index : result.alphaIndices) index = static_cast<uint8_t>((1 << alphaBits) - 1 - index);
        }
    }
    return result;
}

// The pixels of one subset, channel by channel, in 32-bit lanes. There is at least one.
struct SubsetLanes {
    alignas(32) std::array<std::array<int32_t, 16>, 4> channels{};
    alignas(32) std::array<int32_t, 16> isThere{};  // all ones
    size_t count = 0;
    int vectors = 1;  // that hold them, eight each

    SubsetLanes(const Bc7Pixels& pixels, const Partition& subsetOf, size_t subset)
    {
        for (size_t i = 0; i < 16; ++i) {
            if (subsetOf[i] != subset)
                continue;
            for (size_t c = 0; c < 4; ++c) channels[c][count] = pixels.channels[c][i];
            isThere[count++] = -1;
        }
        vectors = count > 8 ? 2 : 1;
    }
};

// One channel's entries between two endpoints of 8 bits, four in each half of a vector: the weights of both endpoints,
// as pairs of 16 bits, by the endpoints.
inline __m256i makeEntries(int a, int b, const int32_t* weightPairs)
{
    const __m256i weights = _mm256_broadcastsi128_si256(loadU128(weightPairs));
    const __m256i sums = _mm256_madd_epi16(weights, _mm256_set1_epi32(a | b << 16));
    return _mm256_srli_epi32(_mm256_add_epi32(sums, _mm256_set1_epi32(32)), 6);
}

inline int32_t sumOf(__m256i v)
{
    const __m128i four = _mm_add_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    const __m128i two = _mm_add_epi32(four, _mm_shuffle_epi32(four, 0x4E));
    return _mm_cvtsi128_si32(_mm_add_epi32(two, _mm_shuffle_epi32(two, 0xB1)));
}

// The error of a subset while the endpoints of one channel vary. What the other channels add to each entry's distance
// is fixed, and so is the error of those whose indices are apart.
class ChannelSearch {
public:
    ChannelSearch(const Bc7Mode& mode, uint32_t selection, const SubsetLanes& lanes, const Bc7EndpointPair& pair,
                  size_t channel)
        : lanes_(lanes), pixels_(lanes.channels[channel]), bits_(mode.precision(static_cast<int>(channel)))
    {
        const bool isApart = hasAlphaSet(mode);
        const bool isAlpha = isApart && channel == 3;
        const int colourBits = isApart ? colourIndexBits(mode, selection) : mode.indexBits;
        setWeights(isAlpha ? alphaIndexBits(mode, selection) : colourBits);
        const Bc7EndpointPair values = unquantised(mode, pair);
        if (isAlpha) {
            ChannelSearch colour(lanes, 0, colourBits);
            colour.add(values, 1);
            colour.add(values, 2);
            fixed_ = colour.errorOf(values.a[0], values.b[0]);
            return;
        }
        for (size_t c = 0; c < (isApart ? 3U : 4U); ++c)
            if (c != channel)
                add(values, c);
        if (isApart)
            fixed_ = ChannelSearch(lanes, 3, alphaIndexBits(mode, selection)).errorOf(values.a[3], values.b[3]);
    }

    // With quantised endpoints.
    int32_t error(int a, int b) const { return errorOf(unquantised(a, bits_), unquantised(b, bits_)); }

    // Of eight pairs of quantised endpoints, the first in the lower halves.
    __m256i errors(const std::array<int32_t, 8>& pairs) const
    {
        const __m256i high = _mm256_sll_epi16(loadU(pairs.data()), _mm_cvtsi32_si128(8 - bits_));
        const __m256i ends = _mm256_or_si256(high, _mm256_srl_epi16(high, _mm_cvtsi32_si128(bits_)));
        return count_ == 4 ? errorsOfEight<4>(ends) : count_ == 8 ? errorsOfEight<8>(ends) : errorsOfEight<16>(ends);
    }

private:
    ChannelSearch(const SubsetLanes& lanes, size_t channel, int indexBits)
        : lanes_(lanes), pixels_(lanes.channels[channel]), bits_(8)
    {
        setWeights(indexBits);
    }

    void setWeights(int indexBits)
    {
        const uint8_t* const weights = weightsOf(indexBits);
        count_ = 1 << indexBits;
        for (size_t j = 0; j < static_cast<size_t>(count_); ++j) {
            weightPairs_[j] = (64 - weights[j]) | weights[j] << 16;
            others_[j].fill(0);
        }
    }

    static __m256i squaredDifference(const int32_t* pixels, __m256i entry)
    {
        const __m256i d = _mm256_sub_epi16(loadU(pixels), entry);
        return _mm256_madd_epi16(d, d);
    }

    // Calls `each` with the number of every entry and the entry in all lanes.
    template <int count, class Each>
    void forEachEntry(int a, int b, const Each& each) const
    {
        for (size_t j = 0; j < count; j += 4) {
            const __m256i entries = makeEntries(a, b, weightPairs_.data() + j);
            each(j, _mm256_shuffle_epi32(entries, 0x00));
            each(j + 1, _mm256_shuffle_epi32(entries, 0x55));
            each(j + 2, _mm256_shuffle_epi32(entries, 0xAA));
            each(j + 3, _mm256_shuffle_epi32(entries, 0xFF));
        }
    }

    void add(const Bc7EndpointPair& values, size_t channel)
    {
        const auto addTo = [&](size_t j, __m256i entry) {
            for (size_t i = 0; i < 16; i += 8) {
                int32_t* const p = others_[j].data() + i;
                storeU(p, _mm256_add_epi32(loadU(p), squaredDifference(lanes_.channels[channel].data() + i, entry)));
            }
        };
        const int a = values.a[channel], b = values.b[channel];
        if (count_ == 4)
            forEachEntry<4>(a, b, addTo);
        else if (count_ == 8)
            forEachEntry<8>(a, b, addTo);
        else
            forEachEntry<16>(a, b, addTo);
    }

    int32_t errorOf(int a, int b) const { return lanes_.vectors == 1 ? errorOfLanes<1>(a, b) : errorOfLanes<2>(a, b); }

    template <size_t vectors>
    int32_t errorOfLanes(int a, int b) const
    {
        return count_ == 4   ? errorOfEntries<4, vectors>(a, b)
               : count_ == 8 ? errorOfEntries<8, vectors>(a, b)
                             : errorOfEntries<16, vectors>(a, b);
    }

    // Eight pixels, or eight palettes. Where one has stopped, its distances count as the largest there are, and so the
    // best one stays.
    struct Nearest {
        __m256i best = _mm256_set1_epi32(INT32_MAX);
        __m256i stopped = _mm256_setzero_si256();

        void take(__m256i distance)
        {
            const __m256i isFarther = _mm256_cmpgt_epi32(distance, best);
            best = _mm256_min_epu32(best, _mm256_or_si256(distance, stopped));
            stopped = _mm256_or_si256(stopped, isFarther);
        }
    };

    template <int count, size_t vectors>
    int32_t errorOfEntries(int a, int b) const
    {
        Nearest first, second;
        const auto distance = [&](size_t j, size_t i, __m256i entry) {
            return _mm256_add_epi32(loadU(others_[j].data() + i), squaredDifference(pixels_.data() + i, entry));
        };
        forEachEntry<count>(a, b, [&](size_t j, __m256i entry) {
            first.take(distance(j, 0, entry));
            if constexpr (vectors == 2)
                second.take(distance(j, 8, entry));
        });
        __m256i errors = _mm256_and_si256(first.best, loadU(lanes_.isThere.data()));
        if constexpr (vectors == 2)
            errors = _mm256_add_epi32(errors, _mm256_and_si256(second.best, loadU(lanes_.isThere.data() + 8)));
        return fixed_ + sumOf(errors);
    }

    template <size_t count>
    __m256i errorsOfEight(__m256i ends) const
    {
        __m256i entries[count];
        for (size_t j = 0; j < count; ++j) {
            const __m256i sums = _mm256_madd_epi16(ends, _mm256_set1_epi32(weightPairs_[j]));
            entries[j] = _mm256_srli_epi32(_mm256_add_epi32(sums, _mm256_set1_epi32(32)), 6);
        }
        __m256i sum = _mm256_set1_epi32(fixed_);
        for (size_t i = 0; i < lanes_.count; ++i) {
            const __m256i pixel = _mm256_set1_epi32(pixels_[i]);
            Nearest nearest;
            for (size_t j = 0; j < count; ++j) {
                const __m256i d = _mm256_sub_epi16(pixel, entries[j]);
                nearest.take(_mm256_add_epi32(_mm256_set1_epi32(others_[j][i]), _mm256_madd_epi16(d, d)));
            }
            sum = _mm256_add_epi32(sum, nearest.best);
        }
        return sum;
    }

    const SubsetLanes& lanes_;
    const std::array<int32_t, 16>& pixels_;
    int bits_;
    std::array<int32_t, 16> weightPairs_;
    int count_ = 0;
    int32_t fixed_ = 0;
    alignas(32) std::array<std::array<int32_t, 16>, 16> others_;
};

// Moves one of two endpoints by powers of two, the largest first, as long as the error falls below `error`.
struct Perturbed {
    int value;
    int32_t error;
};
Perturbed perturb(const ChannelSearch& search, int a, int b, bool movesA, int bits, int32_t error)
{
    int value = movesA ? a : b;
    for (int step = 1 << (bits - 1); step > 0; step >>= 1) {
        int move = 0;
        for (const int by : {-step, step}) {
            const int tried = value + by;
            if (tried < 0 || tried >= 1 << bits)
                continue;
            const int32_t e = movesA ? search.error(tried, b) : search.error(a, tried);
            if (e < error) {
                error = e;
                move = by;
            }
        }
        value += move;
    }
    return {value, error};
}

// Moves the endpoints in turn, beginning with the one that gains more.
void alternate(const ChannelSearch& search, int bits, uint8_t& a, uint8_t& b, int32_t& error)
{
    const Perturbed first = perturb(search, a, b, true, bits, error);
    const Perturbed second = perturb(search, a, b, false, bits, error);
    bool movesA = first.error < second.error;
    Perturbed next = movesA ? first : second;
    while (next.error < error) {
        (movesA ? a : b) = static_cast<uint8_t>(next.value);
        error = next.error;
        movesA = !movesA;
        next = perturb(search, a, b, movesA, bits, error);
    }
}

// Tries all pairs near the endpoints that keep their order. The bounds of the second are exclusive above.
void Exhaustive(const ChannelSearch& search, int bits, uint8_t& a, uint8_t& b, int32_t& error)
{
    if (error == 0)
        return;
    const int top = (1 << bits) - 1;
    const int aLow = std::max(0, a - exhaustiveReach), aHigh = std::min(a + exhaustiveReach, top);
    const int bLow = std::max(0, b - exhaustiveReach), bHigh = std::min(b + exhaustiveReach, top);
    int32_t best = b << 16 | a;
    std::array<int32_t, 8> pairs{};
    size_t count = 0;
    const auto measure = [&] {
        const __m256i errors = search.errors(pairs);
        const __m256i isLess = _mm256_cmpgt_epi32(_mm256_set1_epi32(error), errors);
        if (_mm256_movemask_epi8(isLess) != 0) {
            std::array<int32_t, 8> each;
            storeU(each.data(), errors);
            for (size_t i = 0; i < count; ++i) {
                best = each[i] < error ? pairs[i] : best;
                error = std::min(error, each[i]);
            }
        }
        count = 0;
    };
    const auto attempt = [&](int tryA, int tryB) {
        pairs[count++] = tryB << 16 | tryA;
        if (count == pairs.size())
            measure();
    };
    if (a > b) {
        for (int tryB = bLow; tryB < bHigh; ++tryB)
            for (int tryA = std::max(tryB, aLow); tryA <= aHigh; ++tryA) attempt(tryA, tryB);
    } else {
        for (int tryA = aLow; tryA <= aHigh; ++tryA)
            for (int tryB = std::max(tryA, bLow); tryB < bHigh; ++tryB) attempt(tryA, tryB);
    }
    measure();
    a = static_cast<uint8_t>(best & 0xFF);
    b = static_cast<uint8_t>(best >> 16);
}

Bc7EndpointPair optimise(const Bc7Mode& mode, uint32_t selection, const SubsetLanes& lanes, Bc7EndpointPair pair,
                         int32_t error)
{
    for (const auto improve : {alternate, Exhaustive}) {
        for (size_t c = 0; c < 4; ++c) {
            const int bits = mode.precision(static_cast<int>(c));
            if (bits != 0)
                improve(ChannelSearch(mode, selection, lanes, pair, c), bits, pair.a[c], pair.b[c], error);
        }
    }
    return pair;
}

// Takes the p-bits off the endpoints, by a vote of all that share one.
std::array<uint32_t, 6> takePBits(const Bc7Mode& mode, Bc7Endpoints& endpoints)
{
    std::array<uint32_t, 6> votes{}, counts{}, pBits{};
    if (mode.pBits == PBits::none)
        return pBits;
    const auto numPBits = static_cast<size_t>(mode.numPBits());
    const auto numEndpoints = static_cast<size_t>(mode.endpoints());
    for (size_t c = 0; c < 4; ++c) {
        if (mode.channelBits(static_cast<int>(c)) == 0)
            continue;
        for (size_t i = 0; i < numEndpoints; ++i) {
            Bc7EndpointPair& pair = endpoints[i / 2];
            uint8_t& value = i % 2 == 0 ? pair.a[c] : pair.b[c];
            const size_t slot = i * numPBits / numEndpoints;
            votes[slot] += value & 1;
            ++counts[slot];
            value >>= 1;
        }
    }
    for (size_t i = 0; i < numPBits; ++i) pBits[i] = votes[i] > counts[i] >> 1 ? 1 : 0;
    return pBits;
}

int32_t totalOf(const Assignment& assignment)
{
    return assignment.errors[0] + assignment.errors[1] + assignment.errors[2];
}

}  // namespace

int32_t Refine(size_t modeIndex, const Bc7Pixels& pixels, const Bc7Choice& choice, const Bc7Endpoints& rough,
               BlockBits& block)
{
    const Bc7Mode& mode = bc7Modes[modeIndex];
    const auto subsets = static_cast<size_t>(mode.subsets);
    Bc7Endpoints endpoints{};
    for (size_t p = 0; p < subsets; ++p) {
        for (size_t c = 0; c < 4; ++c) {
            const int bits = mode.precision(static_cast<int>(c));
            endpoints[p].a[c] = quantised(rough[p].a[c], bits);
            endpoints[p].b[c] = quantised(rough[p].b[c], bits);
        }
    }
    const Assignment original = AssignIndices(mode, pixels, choice, endpoints);
    for (size_t p = 0; p < subsets; ++p) {
        const SubsetLanes lanes(pixels, subsetsOf(mode, choice.partition), p);
        endpoints[p] = optimise(mode, choice.selection, lanes, original.endpoints[p], original.errors[p]);
    }
    const Assignment optimised = AssignIndices(mode, pixels, choice, endpoints);
    const Assignment& better = totalOf(original) > totalOf(optimised) ? optimised : original;

    const bool isExchanged = choice.selection != 0;
    Bc7Fields fields = {.choice = choice,
                        .endpoints = better.endpoints,
                        .pBits = {},
                        .indices = isExchanged ? better.alphaIndices : better.indices,
                        .indices2 = isExchanged ? better.indices : better.alphaIndices};
    fields.pBits = takePBits(mode, fields.endpoints);
    block = emit_block_bc7(modeIndex, fields);
    return totalOf(better);
}

}  // namespace q3
