#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/encoder_symbols.h"
#include "jpeg/entropy/eob_run.h"
#include "jpeg/entropy/progressive_magnitudes.h"

namespace q3 {
namespace {

constexpr int largestCountedCategory = largestProgressiveCategory - 1;  // one below the encoder's

VekStatus countEobRun(int* pAcStatistics, VekEncodeHuffmanState* pState)
{
    return endEobRun(pState->eobRun, [pAcStatistics](int symbol, int, int) -> VekStatus {
        ++pAcStatistics[symbol];
        return vekStsOk;
    });
}

VekStatus countFirst(const int16_t* pSrc, int* pAcStatistics, const Band& band, VekEncodeHuffmanState* pState)
{
    int next = band.first;  // behind the last coefficient counted
    for (uint64_t left = significantPositions(pSrc, band); left != 0; left &= left - 1) {
        const int k = std::countr_zero(left);
        const int run = k - next;
        next = k + 1;
        const VekStatus status = countEobRun(pAcStatistics, pState);
        VEK_CHECK(status == vekStsOk, status);
        pAcStatistics[zeroRunLength] += run >> 4;
        const int v = loadScalar<int16_t>(pSrc + zigzagPositions[static_cast<size_t>(k)]);
        const int category = std::bit_width(static_cast<uint32_t>(shiftedRight(std::abs(v), band.low)));
        VEK_CHECK(category <= largestCountedCategory, vekStsJpegMarkerShort);
        ++pAcStatistics[((run & 15) << 4) + category];
    }
    if (next > band.last)
        return vekStsOk;
    pState->eobRun = grown(pState->eobRun, 1);
    return pState->eobRun >= largestEobRun ? countEobRun(pAcStatistics, pState) : vekStsOk;
}

VekStatus countRefine(const int16_t* pSrc, int* pAcStatistics, const Band& band, VekEncodeHuffmanState* pState)
{
    const Refinement block(pSrc, band);
    const auto count = [&](int symbol) -> VekStatus {
        const VekStatus status = countEobRun(pAcStatistics, pState);
        VEK_CHECK(status == vekStsOk, status);
        pState->numCorrectionBits = 0;
        ++pAcStatistics[symbol];
        return vekStsOk;
    };
    int corrections = 0;  // since the block's last symbol
    int run = 0;
    int next = band.first;
    for (uint64_t left = block.significant & block.upToLastNew(); left != 0; left &= left - 1) {
        const int k = std::countr_zero(left);
        run += k - next;
        next = k + 1;
        for (; run > 15; run -= 16, corrections = 0) {
            const VekStatus status = count(zeroRunLength);
            VEK_CHECK(status == vekStsOk, status);
        }
        if ((block.isNew >> k & 1) == 0) {
            ++corrections;
            continue;
        }
        const VekStatus status = count((run << 4) + 1);
        VEK_CHECK(status == vekStsOk, status);
        corrections = 0;
        run = 0;
    }
    const uint64_t tail = band.positions() & ~block.upToLastNew();
    corrections += std::popcount(block.significant & tail);
    if ((tail & ~block.significant) == 0 && corrections == 0)
        return vekStsOk;
    pState->eobRun = grown(pState->eobRun, 1);
    pState->numCorrectionBits = grown(pState->numCorrectionBits, corrections);
    if (pState->numCorrectionBits > fullCorrectionBits || pState->eobRun == largestEobRun) {
        const VekStatus status = countEobRun(pAcStatistics, pState);
        VEK_CHECK(status == vekStsOk, status);
        pState->numCorrectionBits = 0;
    }
    return vekStsOk;
}

using Count = VekStatus(const int16_t* pSrc, int* pAcStatistics, const Band& band, VekEncodeHuffmanState* pState);

template <Count count>
VekStatus countAc(const int16_t* pSrc, int* pAcStatistics, const Band& band, VekEncodeHuffmanState* pEncHuffState,
                  int bFlushState)
{
    VEK_CHECK_POINTER(pAcStatistics);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0) {
        const VekStatus status = countEobRun(pAcStatistics, pEncHuffState);
        ownjc_EncodeHuffmanStateInit(pEncHuffState);
        return status;
    }
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK(band.valid(), vekStsBadArgument);
    return count(pSrc, pAcStatistics, band, pEncHuffState);
}

}  // namespace

VekStatus vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const int16_t* pSrc, int* pAcStatistics, int Ss, int Se,
                                                          int Al, VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    return countAc<countFirst>(pSrc, pAcStatistics, {Ss, Se, Al}, pEncHuffState, bFlushState);
}

VekStatus vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const int16_t* pSrc, int* pAcStatistics, int Ss, int Se,
                                                           int Al, VekEncodeHuffmanState* pEncHuffState,
                                                           int bFlushState)
{
    return countAc<countRefine>(pSrc, pAcStatistics, {Ss, Se, Al}, pEncHuffState, bFlushState);
}

}  // namespace q3
