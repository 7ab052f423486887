#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/ac_bit_writer.h"
#include "jpeg/entropy/correction_bits.h"
#include "jpeg/entropy/encoder_symbols.h"
#include "jpeg/entropy/eob_run.h"
#include "jpeg/entropy/progressive_magnitudes.h"

namespace q3 {
namespace {

// What a call does with the segment and the state.
class AcScan {
public:
    AcScan(uint8_t* pDst, int dstLenBytes, int position, const VekEncodeHuffmanSpec& table,
           VekEncodeHuffmanState* pState)
        : writer_(pDst, dstLenBytes, position, *pState), table_(table), state_(pState), eobRun_(pState->eobRun)
    {
    }

    VekStatus first(const int16_t* pSrc, const Band& band)
    {
        int next = band.first;  // behind the last coefficient written
        for (uint64_t left = significantPositions(pSrc, band); left != 0; left &= left - 1) {
            const int k = std::countr_zero(left);
            int run = k - next;
            next = k + 1;
            VekStatus status = endRun();
            for (; run > 15 && status == vekStsOk; run -= 16) status = writer_.putSymbol(table_, zeroRunLength);
            VEK_CHECK(status == vekStsOk, status);
            const int v = coefficient(pSrc, k);
            const int t = shiftedRight(std::abs(v), band.low);
            const int category = std::bit_width(static_cast<uint32_t>(t));
            VEK_CHECK(category <= largestProgressiveCategory, vekStsJpegMarkerShort);
            status = writer_.putSymbol(table_, (run << 4) + category);
            VEK_CHECK(status == vekStsOk, status);
            status = writer_.put(static_cast<uint32_t>(t ^ v >> 31), category);
            VEK_CHECK(status == vekStsOk, status);
        }
        if (next > band.last)
            return vekStsOk;
        eobRun_ = grown(eobRun_, 1);
        return eobRun_ >= largestEobRun ? endRun() : vekStsOk;
    }

    VekStatus refine(const int16_t* pSrc, const Band& band)
    {
        const Refinement block(pSrc, band);
        CorrectionBits corrections;
        int run = 0;
        int next = band.first;
        for (uint64_t left = block.significant & block.upToLastNew(); left != 0; left &= left - 1) {
            const int k = std::countr_zero(left);
            run += k - next;
            next = k + 1;
            for (; run > 15; run -= 16) {
                const VekStatus status = symbol(zeroRunLength, 0, 0, corrections);
                VEK_CHECK(status == vekStsOk, status);
            }
            const uint64_t position = left & (0 - left);
            if ((block.isNew & position) == 0) {
                corrections.append(block.odd, position);
                continue;
            }
            const VekStatus status = symbol((run << 4) + 1, coefficient(pSrc, k) < 0 ? 0 : 1, 1, corrections);
            VEK_CHECK(status == vekStsOk, status);
            run = 0;
        }
        const uint64_t tail = band.positions() & ~block.upToLastNew();
        corrections.append(block.odd, block.significant & tail);
        if ((tail & ~block.significant) == 0 && corrections.count == 0)
            return vekStsOk;
        eobRun_ = grown(eobRun_, 1);
        const VekStatus status = corrections.keep(state_);
        VEK_CHECK(status == vekStsOk, status);
        if (state_->numCorrectionBits > fullCorrectionBits || eobRun_ == largestEobRun)
            return endRunAndCorrections();
        return vekStsOk;
    }

    // Ends the run and the scan. Only a full destination stops it halfway.
    VekStatus flush()
    {
        const VekStatus runStatus = endRun();
        VekStatus status = runStatus == vekStsJpegOutOfBuffer ? runStatus : writeCorrectionBits(writer_, state_);
        if (status == vekStsOk)
            status = writer_.finish();
        return status == vekStsOk ? runStatus : status;
    }

    void keep(int* pDstCurrPos)
    {
        writer_.keep(pDstCurrPos, state_);
        state_->eobRun = eobRun_;
    }

private:
    static int coefficient(const int16_t* pSrc, int k)
    {
        return loadScalar<int16_t>(pSrc + zigzagPositions[static_cast<size_t>(k)]);
    }

    [[gnu::always_inline]] VekStatus endRun()
    {
        return endEobRun(eobRun_, [this](int symbol, int value, int bits) -> VekStatus {
            const VekStatus status = writer_.putSymbol(table_, symbol);
            if (status != vekStsOk || bits == 0)
                return status;
            return writer_.put(static_cast<uint32_t>(value), bits);
        });
    }

    VekStatus endRunAndCorrections()
    {
        const VekStatus status = endRun();
        VEK_CHECK(status == vekStsOk, status);
        return writeCorrectionBits(writer_, state_);
    }

    // A symbol of this block, with all that has to stand before it and the block's corrections behind it.
    VekStatus symbol(int symbol, int value, int bits, CorrectionBits& corrections)
    {
        VekStatus status = endRunAndCorrections();
        VEK_CHECK(status == vekStsOk, status);
        status = writer_.putSymbol(table_, symbol);
        VEK_CHECK(status == vekStsOk, status);
        status = writer_.put(static_cast<uint32_t>(value), bits);
        VEK_CHECK(status == vekStsOk, status);
        return corrections.write(writer_);
    }

    AcBitWriter writer_;
    const VekEncodeHuffmanSpec& table_;
    VekEncodeHuffmanState* state_;
    int eobRun_;
};

VekStatus ownjc_EncodeHuffman8x8_ACFlush_JPEG_16s1u_C1(uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                                       const VekEncodeHuffmanSpec* pAcTable,
                                                       VekEncodeHuffmanState* pEncHuffState)
{
    AcScan scan(pDst, dstLenBytes, *pDstCurrPos, *pAcTable, pEncHuffState);
    const VekStatus status = scan.flush();
    scan.keep(pDstCurrPos);
    const int eobRun = pEncHuffState->eobRun;
    ownjc_EncodeHuffmanStateInit(pEncHuffState);
    pEncHuffState->eobRun = eobRun;
    return status;
}

using Encode = VekStatus (AcScan::*)(const int16_t* pSrc, const Band& band);

template <Encode encode>
VekStatus encodeAc(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos, const Band& band,
                   const VekEncodeHuffmanSpec* pAcTable, VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pAcTable);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_EncodeHuffman8x8_ACFlush_JPEG_16s1u_C1(pDst, dstLenBytes, pDstCurrPos, pAcTable, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK(band.valid(), vekStsBadArgument);
    AcScan scan(pDst, dstLenBytes, *pDstCurrPos, *pAcTable, pEncHuffState);
    const VekStatus status = (scan.*encode)(pSrc, band);
    scan.keep(pDstCurrPos);
    return status;
}

}  // namespace

VekStatus vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, int Ss, int Se, int Al,
                                                     const VekEncodeHuffmanSpec* pAcTable,
                                                     VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    return encodeAc<&AcScan::first>(pSrc, pDst, dstLenBytes, pDstCurrPos, {Ss, Se, Al}, pAcTable, pEncHuffState,
                                    bFlushState);
}

VekStatus vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, int Ss, int Se, int Al,
                                                      const VekEncodeHuffmanSpec* pAcTable,
                                                      VekEncodeHuffmanState* pEncHuffState, int bFlushState)
{
    return encodeAc<&AcScan::refine>(pSrc, pDst, dstLenBytes, pDstCurrPos, {Ss, Se, Al}, pAcTable, pEncHuffState,
                                     bFlushState);
}

}  // namespace q3
