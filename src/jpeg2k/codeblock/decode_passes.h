// Coding passes of the decoder. Each goes over the plane that the state is at, and tells whether the data are good.
#ifndef VEK_JPEG2K_CODEBLOCK_DECODE_PASSES_H
#define VEK_JPEG2K_CODEBLOCK_DECODE_PASSES_H

#include "jpeg2k/codeblock/decoder_state.h"
#include "jpeg2k/codeblock/mq_decoder.h"
#include "jpeg2k/codeblock/raw_reader.h"

namespace q3 {

// `check`: whether the segment ends here, and predictably.
bool decodeSignificance(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check);
bool decodeRefinement(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check);
bool decodeCleanup(VekDecodeCBProgrState_JPEG2K* pState, MqDecoder& mq, bool check);
bool decodeRawSignificance(VekDecodeCBProgrState_JPEG2K* pState, RawReader& raw, bool check);
bool decodeRawRefinement(VekDecodeCBProgrState_JPEG2K* pState, RawReader& raw);

}  // namespace q3

#endif
