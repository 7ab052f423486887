#include <algorithm>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/ac_bit_reader.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/progressive_band.h"

namespace q3 {
namespace {

// Where zig-zag position k of a block lies. A run beyond the block ends on its last coefficient.
inline int16_t* at(int16_t* pBlock, int k)
{
    return pBlock + own_jc_izigzag_index[static_cast<size_t>(std::min(k, 64))];
}

VekStatus decodeFirst(AcBits& bits, int16_t* pBlock, const Band& band, const VekDecodeHuffmanSpec& table, int& eobRun)
{
    if (eobRun > 0) {
        --eobRun;
        return vekStsOk;
    }
    for (int k = band.first; k <= band.last; ++k) {
        int symbol = 0;
        VekStatus status = takeSymbol(bits, table, symbol);
        if (status != vekStsOk) [[unlikely]]
            return status;
        const int run = symbol >> 4 & 15;
        const int size = symbol & 15;
        int value = 0;
        if (size != 0) {
            k += run;
            status = takeBits(bits, size, value);
            if (status != vekStsOk) [[unlikely]]
                return status;
            storeScalar(at(pBlock, k), static_cast<int16_t>(shiftedLeft(extendMagnitude(value, size), band.low)));
        } else if (run == 15) {
            k += 15;
        } else {
            eobRun = 1 << run;
            status = takeBits(bits, run, value);
            if (status != vekStsOk) [[unlikely]]
                return status;
            eobRun += value - 1;
            return vekStsOk;
        }
    }
    return vekStsOk;
}

// `unit` with the sign of which -1 and 0 tell, without a branch: signs are as good as random.
inline int withSign(int unit, int sign) { return (unit ^ sign) - sign; }

// Corrects the coefficients at the given positions: each takes a bit, which if set moves it by one unit of the scan
// away from zero, unless that bit of it is set already.
[[gnu::always_inline]] inline VekStatus correct(AcBits& bits, int16_t* pBlock, uint64_t positions, int unit)
{
    while (positions != 0) {
        if (bits.count < 1) {
            const VekStatus status = refill(bits, 1);
            if (status != vekStsOk) [[unlikely]]
                return status;
        }
        for (; positions != 0 && bits.count > 0; positions &= positions - 1) {
            int16_t* const p = pBlock + zigzagPositions[static_cast<size_t>(std::countr_zero(positions))];
            const int coefficient = loadScalar<int16_t>(p);
            --bits.count;
            const int moves = -static_cast<int>(bits.bits >> bits.count & 1) & (~coefficient & unit);  // unit or 0
            storeScalar(p, static_cast<int16_t>(coefficient + withSign(moves, coefficient >> 31)));
        }
    }
    return vekStsOk;
}

VekStatus decodeRefine(AcBits& bits, int16_t* pBlock, const Band& band, const VekDecodeHuffmanSpec& table, int& eobRun)
{
    const int unit = shiftedLeft(1, band.low);
    const uint64_t nonZero = nonZeroInZigzag(pBlock);
    uint64_t left = band.positions();  // from k on
    if (eobRun == 0) {
        while (left != 0) {
            int symbol = 0;
            VekStatus status = takeSymbol(bits, table, symbol);
            if (status != vekStsOk) [[unlikely]]
                return status;
            const int run = symbol >> 4 & 15;
            const bool isNew = (symbol & 15) != 0;
            int value = 0;
            if (!isNew && run < 15) {
                eobRun = 1 << run;
                status = takeBits(bits, run, value);
                if (status != vekStsOk) [[unlikely]]
                    return status;
                eobRun += value;
                break;
            }
            if (isNew) {
                status = takeBits(bits, 1, value);
                if (status != vekStsOk) [[unlikely]]
                    return status;
            }
            // The zero that `run` others precede, and what lies from it on; none if the band has fewer.
            const uint64_t zero = _pdep_u64(uint64_t{1} << run, left & ~nonZero);
            const uint64_t behind = zero == 0 ? 0 : left & (0 - zero);
            status = correct(bits, pBlock, left & ~behind & nonZero, unit);
            if (status != vekStsOk) [[unlikely]]
                return status;
            if (isNew) {
                const int k = zero == 0 ? band.last + 1 : std::countr_zero(zero);
                storeScalar(at(pBlock, k), static_cast<int16_t>(withSign(unit, value - 1)));
            }
            left = behind & (behind - 1);
        }
    }
    if (eobRun > 0) {
        const VekStatus status = correct(bits, pBlock, left & nonZero, unit);
        if (status != vekStsOk) [[unlikely]]
            return status;
        --eobRun;
    }
    return vekStsOk;
}

using Decode = VekStatus(AcBits& bits, int16_t* pBlock, const Band& band, const VekDecodeHuffmanSpec& table,
                         int& eobRun);

template <Decode decode>
VekStatus decodeAc(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int16_t* pDst, int* pMarker,
                   const Band& band, const VekDecodeHuffmanSpec* pAcTable, VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_LENGTH(srcLenBytes);
    VEK_CHECK_POINTER(pSrcCurrPos);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pMarker);
    VEK_CHECK(band.valid(), vekStsBadArgument);
    VEK_CHECK_POINTER(pAcTable);
    VEK_CHECK_POINTER(pDecHuffState);
    const int count = std::clamp(pDecHuffState->numBits, 0, 64);  // even if the state was never initialised
    AcBits bits = {pSrc, srcLenBytes, *pSrcCurrPos, *pMarker, count, pDecHuffState->bitBuffer};
    int eobRun = pDecHuffState->eobRun;
    const VekStatus status = decode(bits, pDst, band, *pAcTable, eobRun);
    *pSrcCurrPos = bits.position;
    *pMarker = bits.marker;
    pDecHuffState->bitBuffer = bits.bits;
    pDecHuffState->numBits = bits.count;
    pDecHuffState->eobRun = eobRun;
    return status;
}

}  // namespace

VekStatus vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                     int16_t* pDst, int* pMarker, int Ss, int Se, int Al,
                                                     const VekDecodeHuffmanSpec* pAcTable,
                                                     VekDecodeHuffmanState* pDecHuffState)
{
    return decodeAc<decodeFirst>(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, {Ss, Se, Al}, pAcTable, pDecHuffState);
}

VekStatus vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      int16_t* pDst, int* pMarker, int Ss, int Se, int Al,
                                                      const VekDecodeHuffmanSpec* pAcTable,
                                                      VekDecodeHuffmanState* pDecHuffState)
{
    return decodeAc<decodeRefine>(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, {Ss, Se, Al}, pAcTable, pDecHuffState);
}

}  // namespace q3
