#include <algorithm>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/ac_bit_reader.h"
#include "jpeg/entropy/block_mask.h"
#include "jpeg/entropy/progressive_band.h"
#include "jpeg/entropy/reversed_bits.h"

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

// Takes a correction bit for each of the given positions and adds those whose bit is set to `moved`.
[[gnu::always_inline]] inline VekStatus takeCorrections(AcBits& bits, uint64_t positions, uint64_t& moved)
{
    int wanted = std::popcount(positions);
    while (wanted > 0) {
        if (bits.count < 1) [[unlikely]] {
            const VekStatus status = refill(bits, 1);
            if (status != vekStsOk) [[unlikely]]
                return status;
        }
        const int taken = std::min(wanted, bits.count);
        bits.count -= taken;
        wanted -= taken;
        // The oldest bit, now the lowest, is that of the first position.
        const uint64_t oldestFirst = reversedBits(bits.bits >> bits.count << (64 - taken));
        moved |= _pdep_u64(oldestFirst, positions);
        positions &= ~_pdep_u64(~uint64_t{0} >> (64 - taken), positions);
    }
    return vekStsOk;
}

// Moves the coefficients at the given positions by one unit of the scan away from zero, unless that bit of them is set
// already.
inline void correct(int16_t* pBlock, uint64_t positions, int unit)
{
    for (; positions != 0; positions &= positions - 1) {
        int16_t* const p = pBlock + zigzagPositions[static_cast<size_t>(std::countr_zero(positions))];
        const int coefficient = loadScalar<int16_t>(p);
        storeScalar(p, static_cast<int16_t>(coefficient + withSign(~coefficient & unit, coefficient >> 31)));
    }
}

// Corrections of coefficients wait in `moved`; they do not matter to what is read, nor to a new value that a run beyond
// the block puts in the place of one: it has the bit.
VekStatus readRefinement(AcBits& bits, int16_t* pBlock, const Band& band, const VekDecodeHuffmanSpec& table,
                         int& eobRun, uint64_t& moved)
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
            status = takeCorrections(bits, left & ~behind & nonZero, moved);
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
        const VekStatus status = takeCorrections(bits, left & nonZero, moved);
        if (status != vekStsOk) [[unlikely]]
            return status;
        --eobRun;
    }
    return vekStsOk;
}

VekStatus decodeRefine(AcBits& bits, int16_t* pBlock, const Band& band, const VekDecodeHuffmanSpec& table, int& eobRun)
{
    uint64_t moved = 0;
    const VekStatus status = readRefinement(bits, pBlock, band, table, eobRun, moved);
    correct(pBlock, moved, shiftedLeft(1, band.low));
    return status;
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
