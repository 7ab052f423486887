// What the coders of progressive AC scans look at in a block: magnitudes |v| >> low, by zig-zag position.
#ifndef VEK_JPEG_ENTROPY_PROGRESSIVE_MAGNITUDES_H
#define VEK_JPEG_ENTROPY_PROGRESSIVE_MAGNITUDES_H

#include <cstdlib>

#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/progressive_band.h"

namespace q3 {

inline BlockVectors magnitudesOf(const int16_t* pBlock, int low)
{
    BlockVectors v = loadBlock(pBlock);
    for (__m256i& rows : v.rows) rows = _mm256_srl_epi16(_mm256_abs_epi16(rows), _mm_cvtsi32_si128(low & 31));
    return v;
}

// The positions of a band whose magnitudes are not zero.
inline uint64_t significantPositions(const int16_t* pBlock, const Band& band)
{
    return nonZeroInZigzag(magnitudesOf(pBlock, band.low)) & band.positions();
}

// A band as a refinement sees it.
struct Refinement {
    uint64_t significant;  // magnitude not zero
    uint64_t isNew;        // magnitude 1
    uint64_t odd;          // those whose bit of this scan is set

    Refinement(const int16_t* pBlock, const Band& band)
    {
        BlockVectors v = magnitudesOf(pBlock, band.low);
        const __m256i one = _mm256_set1_epi16(1);
        significant = nonZeroInZigzag(v) & band.positions();
        isNew = equalInZigzag(v, one) & band.positions();
        for (__m256i& rows : v.rows) rows = _mm256_and_si256(rows, one);
        odd = equalInZigzag(v, one) & band.positions();
    }

    // Behind the last position that becomes significant there are only corrections.
    uint64_t upToLastNew() const { return isNew == 0 ? 0 : ~uint64_t{0} >> std::countl_zero(isNew); }
};

}  // namespace q3

#endif
