// Correction bits of a refinement scan that wait for the end-of-band run or the coefficient which they follow.
#ifndef VEK_JPEG_ENTROPY_CORRECTION_BITS_H
#define VEK_JPEG_ENTROPY_CORRECTION_BITS_H

#include <immintrin.h>

#include <bit>
#include <cstdint>

#include "frame/checks.h"
#include "jpeg/entropy/ac_bit_writer.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/reversed_bits.h"

namespace q3 {

constexpr uint64_t bitOfEachByte = 0x0101010101010101;

// Those of one block, the oldest in bit 0. A band has no more than 63.
struct CorrectionBits {
    uint64_t bits = 0;
    int count = 0;

    // The bits of `values` at the given positions.
    void append(uint64_t values, uint64_t positions)
    {
        bits |= _pext_u64(values, positions) << count;
        count += std::popcount(positions);
    }

    VekStatus write(AcBitWriter& writer)
    {
        if (count == 0)
            return vekStsOk;
        const VekStatus status = writer.putEach(reversedBits(bits) >> (64 - count), count);
        if (status == vekStsOk)
            *this = {};
        return status;
    }

    // Adds them to those that are pending. There is room, unless calls that failed to write them have piled them up.
    VekStatus keep(VekEncodeHuffmanState* pState) const
    {
        const auto pending = static_cast<uint32_t>(pState->numCorrectionBits);
        VEK_CHECK(pending <= sizeof pState->correctionBits - static_cast<uint32_t>(count), vekStsJpegOutOfBuffer);
        uint8_t* const p = pState->correctionBits + pState->numCorrectionBits;
        for (int i = 0; i < count; ++i) p[i] = static_cast<uint8_t>(bits >> i & 1);
        pState->numCorrectionBits += count;
        return vekStsOk;
    }
};

// Writes the pending ones.
inline VekStatus writeCorrectionBits(AcBitWriter& writer, VekEncodeHuffmanState* pState)
{
    const int count = std::min(pState->numCorrectionBits, static_cast<int>(sizeof pState->correctionBits));
    for (int i = 0; i < count; i += 8) {
        const uint64_t eight = _pext_u64(loadBigEndian64(pState->correctionBits + i), bitOfEachByte);
        const int n = std::min(8, count - i);
        const VekStatus status = writer.putEach(eight >> (8 - n), n);
        VEK_CHECK(status == vekStsOk, status);
    }
    pState->numCorrectionBits = 0;
    return vekStsOk;
}

}  // namespace q3

#endif
