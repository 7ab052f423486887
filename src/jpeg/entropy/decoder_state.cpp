#include "jpeg/entropy/decoder_state.h"

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"

namespace q3 {

VekStatus vekiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize)
{
    VEK_CHECK_POINTER(pSize);
    *pSize = sizeof(VekDecodeHuffmanState);
    return vekStsOk;
}

VekStatus vekiDecodeHuffmanStateInit_JPEG_8u(VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pDecHuffState);
    *pDecHuffState = {};
    return vekStsOk;
}

VekStatus vekiDecodeHuffmanStateInitAlloc_JPEG_8u(VekDecodeHuffmanState** ppDecHuffState)
{
    VEK_CHECK_POINTER(ppDecHuffState);
    auto* const state = reinterpret_cast<VekDecodeHuffmanState*>(veksMalloc_8u(sizeof(VekDecodeHuffmanState)));
    VEK_CHECK_POINTER(state);
    *state = {};
    *ppDecHuffState = state;
    return vekStsOk;
}

VekStatus vekiDecodeHuffmanStateFree_JPEG_8u(VekDecodeHuffmanState* pDecHuffState)
{
    VEK_CHECK_POINTER(pDecHuffState);
    veksFree(pDecHuffState);
    return vekStsOk;
}

}  // namespace q3
