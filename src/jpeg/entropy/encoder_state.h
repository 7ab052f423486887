// Layout of the encoder's state.
#ifndef VEK_JPEG_ENTROPY_ENCODER_STATE_H
#define VEK_JPEG_ENTROPY_ENCODER_STATE_H

#include <cstddef>
#include <cstdint>

#include "vekj/jpeg_entropy.h"

struct VekEncodeHuffmanState {
    uint64_t bitBuffer;            // sequential coders: a 32-bit word whose bit 23 is the oldest of the pending bits
    int32_t numBits;               // pending bits
    int32_t eobRun;                // pending end-of-band run of a progressive scan
    int32_t numCorrectionBits;     // pending correction bits of a progressive scan
    uint8_t correctionBits[1024];  // one bit in each byte
};
static_assert(sizeof(VekEncodeHuffmanState) == 1048 && offsetof(VekEncodeHuffmanState, correctionBits) == 20);

namespace q3 {

// As every sequential coder leaves it.
inline bool holdsNoWholeByte(const VekEncodeHuffmanState& state) { return static_cast<uint32_t>(state.numBits) < 8; }

void ownjc_EncodeHuffmanStateInit(VekEncodeHuffmanState* pEncHuffState);

}  // namespace q3

#endif
