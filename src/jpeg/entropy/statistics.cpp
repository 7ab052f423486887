#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/magnitude.h"

namespace q3 {

// Counts the symbols that the sequential encoder would write. The limits of the categories, 15 for DC and 14 for AC,
// differ by one.
VekStatus vekiGetHuffmanStatistics8x8_JPEG_16s_C1(const int16_t* pSrc, int* pDcStatistics, int* pAcStatistics,
                                                  int16_t* pLastDC)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDcStatistics);
    VEK_CHECK_POINTER(pAcStatistics);
    VEK_CHECK_POINTER(pLastDC);
    const auto dc = loadScalar<int16_t>(pSrc);
    const int diff = dc - *pLastDC;
    *pLastDC = dc;
    const int dcCategory = categoryOf(diff);
    VEK_CHECK(dcCategory <= 15, vekStsJpegMarkerShort);
    ++pDcStatistics[dcCategory];

    uint64_t mask = nonZeroInZigzag(pSrc) & ~uint64_t{1};
    int last = 0;
    while (mask != 0) {
        const int k = std::countr_zero(mask);
        mask &= mask - 1;
        const int run = k - last - 1;
        last = k;
        pAcStatistics[0xF0] += run >> 4;
        const int category = categoryOf(loadScalar<int16_t>(pSrc + own_jc_izigzag_index[static_cast<size_t>(k)]));
        VEK_CHECK(category <= 14, vekStsJpegMarkerShort);
        ++pAcStatistics[((run & 15) << 4) + category];
    }
    if (last != 63)
        ++pAcStatistics[0];
    return vekStsOk;
}

}  // namespace q3
