#include "jpeg/entropy/encoder_state.h"

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"

namespace q3 {

void ownjc_EncodeHuffmanStateInit(VekEncodeHuffmanState* pEncHuffState) { *pEncHuffState = {}; }

VekStatus vekiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize)
{
    VEK_CHECK_POINTER(pSize);
    *pSize = sizeof(VekEncodeHuffmanState);
    return vekStsOk;
}

VekStatus vekiEncodeHuffmanStateInit_JPEG_8u(VekEncodeHuffmanState* pEncHuffState)
{
    VEK_CHECK_POINTER(pEncHuffState);
    ownjc_EncodeHuffmanStateInit(pEncHuffState);
    return vekStsOk;
}

VekStatus vekiEncodeHuffmanStateInitAlloc_JPEG_8u(VekEncodeHuffmanState** ppEncHuffState)
{
    VEK_CHECK_POINTER(ppEncHuffState);
    auto* const state = reinterpret_cast<VekEncodeHuffmanState*>(veksMalloc_8u(sizeof(VekEncodeHuffmanState)));
    VEK_CHECK_POINTER(state);
    ownjc_EncodeHuffmanStateInit(state);
    *ppEncHuffState = state;
    return vekStsOk;
}

VekStatus vekiEncodeHuffmanStateFree_JPEG_8u(VekEncodeHuffmanState* pEncHuffState)
{
    VEK_CHECK_POINTER(pEncHuffState);
    veksFree(pEncHuffState);
    return vekStsOk;
}

}  // namespace q3
