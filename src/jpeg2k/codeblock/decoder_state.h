// The state of a code-block decoder: the block that it is attached to, and how far it has come.
#ifndef VEK_JPEG2K_CODEBLOCK_DECODER_STATE_H
#define VEK_JPEG2K_CODEBLOCK_DECODER_STATE_H

#include "jpeg2k/codeblock/code_block_style.h"
#include "jpeg2k/codeblock/context_tables.h"
#include "jpeg2k/codeblock/mq_states.h"
#include "jpeg2k/codeblock/sample_flags.h"
#include "vekj/jpeg2k_codeblock.h"

// The flag array follows, at the next multiple of 32 bytes.
struct VekDecodeCBProgrState_JPEG2K {
    uint32_t idCtx;
    int32_t attached;
    int32_t* pDst;
    int32_t dstStep;
    VekSize size;
    uint32_t cbStyle;
    int32_t bitPlane;
    int32_t bypassPlane;  // raw segments begin below it
    int32_t passKind;     // what the next segment begins with
    int32_t passesLeft;
    const q3::ZeroCodingTable* pZeroCodingLUT;
    q3::MqContexts contexts;
    q3::FlagView flags;
};

namespace q3 {

constexpr uint32_t decoderMagic = 0x434D4150;  // "PAMC"

// What a state takes besides its flags, alignment included.
constexpr int decoderStateBytes = 472;
static_assert(sizeof(VekDecodeCBProgrState_JPEG2K) + 24 <= decoderStateBytes);

// What the segment's first pass is, in a state's passKind.
enum PassKind : int32_t {
    firstCleanup = 0,
    refinement = 1,
    significance = 2,
    laterCleanup = 3,
    rawRefinement = 4,
    rawSignificance = 5,
};

}  // namespace q3

#endif
