#include <algorithm>

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/memory_kernels.h"
#include "frame/vec.h"
#include "jpeg2k/codeblock/decode_passes.h"

namespace q3 {
namespace {

using State = VekDecodeCBProgrState_JPEG2K;

#define VEK_CHECK_DECODER(state)                                          \
    do {                                                                  \
        VEK_CHECK_POINTER(state);                                         \
        VEK_CHECK((state)->idCtx == decoderMagic, vekStsContextMismatch); \
    } while (false)

int64_t stateBytes(VekSize size) { return decoderStateBytes + int64_t{flagBytesOf(size.width, size.height)}; }

uint32_t* flagArrayOf(State* pState)
{
    const auto end = reinterpret_cast<uintptr_t>(pState + 1);
    return reinterpret_cast<uint32_t*>((end + 31) & ~uintptr_t{31});
}

bool has(const State* pState, uint32_t style) { return (pState->cbStyle & style) != 0; }

// Without termination of each pass, and before any raw pass: planes from the top down to the one where bypass begins.
bool decodeFirstSegment(State* pState, MqDecoder& mq)
{
    bool good = true;
    int passes = pState->passesLeft;
    while (passes > 0) {
        good &= decodeCleanup(pState, mq, has(pState, stylePredictable) && pState->bitPlane == pState->bypassPlane);
        if (--passes == 0)
            break;
        const int plane = pState->bitPlane--;
        if (plane <= pState->bypassPlane) {
            pState->passKind = rawSignificance;
            break;
        }
        good &= decodeSignificance(pState, mq, false);
        if (--passes == 0)
            break;
        good &= decodeRefinement(pState, mq, false);
        --passes;
    }
    pState->passesLeft = passes;
    return good;
}

// A segment of one or of several passes.
bool decodeSegment(State* pState, const uint8_t* pSrc, int srcLen)
{
    if (pState->passKind == rawSignificance) {
        RawReader raw(pSrc, srcLen);
        bool good = decodeRawSignificance(pState, raw, false);
        if (--pState->passesLeft > 0) {
            good &= decodeRawRefinement(pState, raw);
            --pState->passesLeft;
            pState->passKind = laterCleanup;
        }
        return good;
    }
    MqDecoder mq(pSrc, srcLen, pState->contexts);
    if (pState->passKind != laterCleanup)
        return decodeFirstSegment(pState, mq);
    const bool good = decodeCleanup(pState, mq, has(pState, stylePredictable));
    if (--pState->passesLeft > 0) {
        --pState->bitPlane;
        pState->passKind = rawSignificance;
    }
    return good;
}

// A segment of one pass.
bool decodePass(State* pState, const uint8_t* pSrc, int srcLen)
{
    --pState->passesLeft;
    if (pState->passKind == rawSignificance || pState->passKind == rawRefinement) {
        RawReader raw(pSrc, srcLen);
        if (pState->passKind == rawSignificance) {
            pState->passKind = rawRefinement;
            return decodeRawSignificance(pState, raw, true);
        }
        pState->passKind = laterCleanup;
        return decodeRawRefinement(pState, raw);
    }
    MqDecoder mq(pSrc, srcLen, pState->contexts);
    const bool check = has(pState, stylePredictable);
    if (pState->passKind == significance) {
        pState->passKind = refinement;
        return decodeSignificance(pState, mq, check);
    }
    if (pState->passKind == refinement) {
        pState->passKind = firstCleanup;
        return decodeRefinement(pState, mq, check);
    }
    const bool good = decodeCleanup(pState, mq, check);
    --pState->bitPlane;
    if (pState->passKind == laterCleanup || pState->bitPlane < pState->bypassPlane)
        pState->passKind = rawSignificance;
    else
        pState->passKind = significance;
    return good;
}

void initialise(State* pState)
{
    pState->idCtx = decoderMagic;
    pState->attached = 0;
}

void attach(State* pState, int32_t* pDst, int dstStep, VekSize size, int subband, int sfBits, int cbStyle)
{
    const auto [width, height] = size;
    pState->cbStyle = static_cast<uint32_t>(cbStyle);
    pState->pDst = pDst;
    pState->dstStep = dstStep;
    pState->size = size;
    if (!has(pState, styleDstIsClear)) {
        for (int y = 0; y < height; ++y)
            ownsZero_8u(reinterpret_cast<uint8_t*>(rowAt(pDst, dstStep, y)), 4 * int64_t{width});
    }
    const ptrdiff_t stride = flagStrideOf(width);
    uint32_t* const array = flagArrayOf(pState);
    pState->flags = {array + stride + 1, stride, width, height};
    if (!has(pState, styleFlagsAreClear)) {
        for (ptrdiff_t i = 0; i < flagRowsOf(height); ++i)
            ownsZero_8u(reinterpret_cast<uint8_t*>(array + i * stride), 4 * int64_t{width} + 8);
    }
    pState->contexts = initialContexts;
    pState->pZeroCodingLUT = &zeroCodingTableOf(subband);
    const int planes = std::clamp(sfBits, INT32_MIN + 4, 32);
    pState->bypassPlane = has(pState, styleBypass) ? std::max(planes - 4, 0) : 0;
    pState->bitPlane = planes - 1;
    pState->passesLeft = 0;
    pState->passKind = firstCleanup;
    pState->attached = 1;
}

VekStatus step(State* pState, const uint8_t* pSrc, int srcLen)
{
    if (pState->passesLeft < 1 || pState->bitPlane < 0)
        return vekStsOk;
    const bool good =
        has(pState, styleTerminate) ? decodePass(pState, pSrc, srcLen) : decodeSegment(pState, pSrc, srcLen);
    return good ? vekStsOk : vekStsJpeg2KCorruptCodeBlock;
}

// Falls back to what is known above the current plane.
void rollBack(const State* pState)
{
    if (pState->bitPlane < 0)
        return;
    const uint32_t unit = uint32_t{1} << pState->bitPlane;
    for (int y = 0; y < pState->size.height; ++y) {
        int32_t* const row = rowAt(pState->pDst, pState->dstStep, y);
        for (int x = 0; x < pState->size.width; ++x) {
            const uint32_t known = loadScalar<uint32_t>(row + x) & (0 - unit);
            storeScalar(row + x, (known & 0x7FFFFFFF) == 0 ? 0 : known | unit);
        }
    }
}

}  // namespace

VekStatus vekiDecodeCBProgrGetStateSize_JPEG2K(VekSize codeBlockMaxSize, int* pStateSize)
{
    VEK_CHECK_SIZE(codeBlockMaxSize);
    VEK_CHECK_POINTER(pStateSize);
    *pStateSize = static_cast<int>(stateBytes(codeBlockMaxSize));
    return vekStsOk;
}

VekStatus vekiDecodeGetBufSize_JPEG2K(VekSize codeBlockMaxSize, int* pSize)
{
    VEK_CHECK_SIZE(codeBlockMaxSize);
    VEK_CHECK_POINTER(pSize);
    *pSize = static_cast<int>(stateBytes(codeBlockMaxSize));
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrInit_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState)
{
    VEK_CHECK_POINTER(pState);
    initialise(pState);
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrInitAlloc_JPEG2K(VekDecodeCBProgrState_JPEG2K** ppState, VekSize codeBlockMaxSize)
{
    VEK_CHECK_POINTER(ppState);
    VEK_CHECK_SIZE(codeBlockMaxSize);
    const int64_t bytes = stateBytes(codeBlockMaxSize);
    *ppState = bytes > INT32_MAX ? nullptr : reinterpret_cast<State*>(veksMalloc_8u(static_cast<int32_t>(bytes)));
    VEK_CHECK(*ppState != nullptr, vekStsNoMemory);
    initialise(*ppState);
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrFree_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState)
{
    VEK_CHECK_DECODER(pState);
    veksFree(pState);
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(int32_t* pDst, int dstStep, VekSize codeBlockSize,
                                                 VekDecodeCBProgrState_JPEG2K* pState, int subband, int sfBits,
                                                 int cbStyle)
{
    VEK_CHECK_DECODER(pState);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(codeBlockSize);
    attach(pState, pDst, dstStep, codeBlockSize, subband, sfBits, cbStyle);
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrSetPassCounter_JPEG2K(int nPasses, VekDecodeCBProgrState_JPEG2K* pState)
{
    VEK_CHECK_DECODER(pState);
    pState->passesLeft = nPasses;
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrGetPassCounter_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState, int* pNOfResidualPasses)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK_POINTER(pNOfResidualPasses);
    VEK_CHECK_DECODER(pState);
    *pNOfResidualPasses = pState->passesLeft;
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(VekDecodeCBProgrState_JPEG2K* pState, int* pBitPlane)
{
    VEK_CHECK_DECODER(pState);
    VEK_CHECK_POINTER(pBitPlane);
    *pBitPlane = pState->bitPlane;
    return vekStsOk;
}

VekStatus vekiDecodeCBProgrStep_JPEG2K(const uint8_t* pSrc, int srcLen, VekDecodeCBProgrState_JPEG2K* pState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_DECODER(pState);
    VEK_CHECK(pState->attached != 0, vekStsJpeg2KNotAttached);
    return step(pState, pSrc, srcLen);
}

VekStatus vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(const uint8_t* pSrc, int32_t* pDst, int dstStep, VekSize codeBlockSize,
                                               int subband, int sfBits, int nPasses, const int* pTermPassLen,
                                               int nTermPasses, int cbStyle, int* pErrorBitPlane,
                                               VekDecodeCBProgrState_JPEG2K* pState)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pState);
    VEK_CHECK_SIZE(codeBlockSize);
    VEK_CHECK_POINTER(pTermPassLen);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    initialise(pState);
    attach(pState, pDst, dstStep, codeBlockSize, subband, sfBits, cbStyle);
    pState->passesLeft = nPasses;

    VekStatus status = vekStsOk;
    for (int i = 0; i < nTermPasses && status == vekStsOk; ++i) {
        status = step(pState, pSrc, pTermPassLen[i]);
        pSrc += std::max(pTermPassLen[i], 0);
    }
    if (status == vekStsJpeg2KCorruptCodeBlock) {
        if (pErrorBitPlane != nullptr)
            *pErrorBitPlane = pState->bitPlane;
        if (has(pState, styleRollBack))
            rollBack(pState);
    }
    if (!has(pState, styleKeepMidpoints) && pState->bitPlane >= 1) {
        const uint32_t known = ~uint32_t{0} << pState->bitPlane;
        vekiAndC_32s_C1IR(static_cast<int32_t>(known), pDst, dstStep, codeBlockSize);
    }
    return status;
}

}  // namespace q3
