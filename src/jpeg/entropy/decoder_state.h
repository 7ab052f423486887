// Layout of the decoder's state.
#ifndef VEK_JPEG_ENTROPY_DECODER_STATE_H
#define VEK_JPEG_ENTROPY_DECODER_STATE_H

#include <cstddef>
#include <cstdint>

#include "vekj/jpeg_entropy.h"

struct VekDecodeHuffmanState {
    uint64_t bitBuffer;     // bits taken from the stream and not yet consumed; the newest is bit 0
    int32_t numBits;        // how many; below 0 if a marker left a value short of bits
    int32_t eobRun;         // blocks left in an end-of-band run of a progressive scan
    int32_t endOfBlockPos;  // zig-zag position that the last sequential block reached
};
static_assert(sizeof(VekDecodeHuffmanState) == 24 && offsetof(VekDecodeHuffmanState, endOfBlockPos) == 16);

#endif
