// The palette entries that the pixels of a block take. An entry j with weight w of endpoints a and b is
// (64 - w) a + w b + 32, divided by 64 and truncated. A pixel goes through the entries from the first on, and stops at
// one that is farther away than the nearest so far, by sums of squared differences; of equal ones it takes the first.
#ifndef VEK_TEXTURE_BC7_PALETTE_SEARCH_H
#define VEK_TEXTURE_BC7_PALETTE_SEARCH_H

#include "frame/vec.h"
#include "texture/bc7_block.h"

namespace q3 {

// Values of sixteen pixels, in an order of their own: 0 to 3 and 8 to 11, then 4 to 7 and 12 to 15.
struct PixelWords {
    __m256i even, odd;

    // In the pixels' order.
    void store(int32_t* p) const
    {
        storeU(p, _mm256_permute2x128_si256(even, odd, 0x20));
        storeU(p + 8, _mm256_permute2x128_si256(even, odd, 0x31));
    }
};

// The state of all searches.
class NearestEntries {
public:
    void take(int entry, const PixelWords& errors)
    {
        if (entry == 0) {
            best_ = errors;
            index_ = {_mm256_setzero_si256(), _mm256_setzero_si256()};
            goesOn_ = {_mm256_set1_epi32(-1), _mm256_set1_epi32(-1)};
            return;
        }
        const __m256i j = _mm256_set1_epi32(entry);
        takeHalf(j, errors.even, best_.even, index_.even, goesOn_.even);
        takeHalf(j, errors.odd, best_.odd, index_.odd, goesOn_.odd);
    }
    const PixelWords& errors() const { return best_; }
    const PixelWords& indices() const { return index_; }

private:
    static void takeHalf(__m256i j, __m256i error, __m256i& best, __m256i& index, __m256i& goesOn)
    {
        goesOn = _mm256_andnot_si256(_mm256_cmpgt_epi32(error, best), goesOn);
        const __m256i isNearer = _mm256_and_si256(_mm256_cmpgt_epi32(best, error), goesOn);
        best = _mm256_blendv_epi8(best, error, goesOn);
        index = _mm256_blendv_epi8(index, j, isNearer);
    }

    PixelWords best_, index_, goesOn_;
};

// One channel's endpoints, of 8 bits, for each pixel.
struct ChannelEndpoints {
    __m256i a, b;
};

// Searches over channels `first` to `last`.
template <int first, int last>
NearestEntries searchPalettes(const Bc7Pixels& pixels, const std::array<ChannelEndpoints, 4>& endpoints, int indexBits)
{
    NearestEntries nearest;
    const uint8_t* const weights = weightsOf(indexBits);
    const __m256i zero = _mm256_setzero_si256();
    for (int j = 0; j < 1 << indexBits; ++j) {
        const __m256i weightA = _mm256_set1_epi16(static_cast<int16_t>(64 - weights[j]));
        const __m256i weightB = _mm256_set1_epi16(weights[j]);
        const auto difference = [&](int c) {
            const ChannelEndpoints& ends = endpoints[static_cast<size_t>(c)];
            const __m256i sum =
                _mm256_add_epi16(_mm256_mullo_epi16(ends.a, weightA), _mm256_mullo_epi16(ends.b, weightB));
            const __m256i entry = _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(32)), 6);
            return _mm256_sub_epi16(loadU(pixels.channels[static_cast<size_t>(c)].data()), entry);
        };
        PixelWords errors = {zero, zero};
        for (int c = first; c <= last; c += 2) {
            const __m256i d = difference(c);
            const __m256i e = c < last ? difference(c + 1) : zero;
            const __m256i even = _mm256_unpacklo_epi16(d, e);
            const __m256i odd = _mm256_unpackhi_epi16(d, e);
            errors.even = _mm256_add_epi32(errors.even, _mm256_madd_epi16(even, even));
            errors.odd = _mm256_add_epi32(errors.odd, _mm256_madd_epi16(odd, odd));
        }
        nearest.take(j, errors);
    }
    return nearest;
}

struct BlockSearch {
    PixelWords errors;
    PixelWords indices;       // of colour, or of all channels
    PixelWords alphaIndices;  // where they are apart
};

inline BlockSearch searchBlock(const Bc7Mode& mode, uint32_t selection, const Bc7Pixels& pixels,
                               const std::array<ChannelEndpoints, 4>& endpoints)
{
    if (!hasAlphaSet(mode)) {
        const NearestEntries all = searchPalettes<0, 3>(pixels, endpoints, mode.indexBits);
        return {all.errors(), all.indices(), all.indices()};
    }
    const NearestEntries colour = searchPalettes<0, 2>(pixels, endpoints, colourIndexBits(mode, selection));
    const NearestEntries alpha = searchPalettes<3, 3>(pixels, endpoints, alphaIndexBits(mode, selection));
    return {{_mm256_add_epi32(colour.errors().even, alpha.errors().even),
             _mm256_add_epi32(colour.errors().odd, alpha.errors().odd)},
            colour.indices(),
            alpha.indices()};
}

// Spreads the subsets' endpoints over their pixels.
inline std::array<ChannelEndpoints, 4> endpointsOfPixels(const Partition& subsets, const Bc7Endpoints& endpoints)
{
    const __m256i subset = _mm256_cvtepu8_epi16(loadU128(subsets.data()));
    std::array<ChannelEndpoints, 4> spread;
    for (size_t c = 0; c < 4; ++c) {
        const auto pick = [&](Bc7Colour Bc7EndpointPair::*end) {
            const auto value = [&](size_t p) { return _mm256_set1_epi16((endpoints[p].*end)[c]); };
            const __m256i second = _mm256_cmpeq_epi16(subset, _mm256_set1_epi16(1));
            const __m256i third = _mm256_cmpeq_epi16(subset, _mm256_set1_epi16(2));
            return _mm256_blendv_epi8(_mm256_blendv_epi8(value(0), value(1), second), value(2), third);
        };
        spread[c] = {pick(&Bc7EndpointPair::a), pick(&Bc7EndpointPair::b)};
    }
    return spread;
}

}  // namespace q3

#endif
