// The state of a code-block encoder: the symbols of all passes, and how far they have gone out as bytes.
#ifndef VEK_JPEG2K_CODEBLOCK_ENCODER_STATE_H
#define VEK_JPEG2K_CODEBLOCK_ENCODER_STATE_H

#include <array>

#include "jpeg2k/codeblock/mq_encoder.h"
#include "jpeg2k/codeblock/raw_writer.h"
#include "vekj/jpeg2k_codeblock.h"

namespace q3 {

constexpr uint32_t encoderMagic = 0x4C4D5344;  // "DSML"
constexpr int mostPasses = 3 * 31 - 2;

// In each of 31 planes a column of a stripe has six symbols at most, and over all planes four signs. The plane itself
// has four more.
constexpr int64_t mostSymbolsOfColumn = 6 * 31 + 4;
constexpr int64_t mostSegmentationSymbols = 4 * 31;

struct CodingPass {
    int32_t symbols;
    int32_t distortion;  // with exponent, a power of two
    int32_t exponent;
    bool isRaw;
    int32_t length;  // bytes that went out while it was the current one
    int32_t rate;    // bytes up to where its data end
};

// Bytes that have left the coder, but not gone out: those of one symbol, or of a flush.
struct ByteQueue {
    std::array<uint8_t, 16> bytes;
    int32_t write = 0;
    int32_t read = 0;
    bool skipsFirst = true;  // the coder's empty first byte
};

}  // namespace q3

struct VekEncodeState_JPEG2K {
    uint32_t idCtx;
    int32_t passCount;
    std::array<q3::CodingPass, q3::mostPasses> passes;

    uint8_t* pSymbols;   // of all passes
    uint32_t* pFlags;    // as the passes need them
    uint32_t* pSamples;  // four of a column of a stripe together

    bool resetsContexts;
    bool terminatesEachPass;
    int32_t termMode;

    int32_t passCurrent;
    const uint8_t* pNextSymbol;
    int32_t symbolsLeft;  // of the current pass
    int32_t passBytes;    // that have gone out for it
    int32_t bytesTotal;   // for those before it
    bool mqCoded;         // a symbol has gone through the coder since the segment's begin
    q3::MqContexts contexts;
    q3::MqEncoder mq;
    q3::ByteQueue queue;
    q3::RawWriter raw;
};

namespace q3 {

// The current pass, if there is one left, is ready to go out.
void beginPass(VekEncodeState_JPEG2K* pState);

inline bool isLastOfSegment(const VekEncodeState_JPEG2K* pState, int pass)
{
    return pState->terminatesEachPass || pass + 1 == pState->passCount ||
           pState->passes[static_cast<size_t>(pass)].isRaw != pState->passes[static_cast<size_t>(pass) + 1].isRaw;
}

}  // namespace q3

#endif
