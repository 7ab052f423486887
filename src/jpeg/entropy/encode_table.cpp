#include <cstring>

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/code_lengths.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {
namespace {

// Codes by ITU T.81, Annex C. A code that uses up the space of its length is refused: the all-ones code is not for use.
// So even a table that is left half built holds no code wider than its length.
VekStatus build(const uint8_t* pListBits, const uint8_t* pListVals, VekEncodeHuffmanSpec& object)
{
    VEK_CHECK(countCodes(pListBits) >= 0, vekStsJpegHuffmanTable);
    std::memset(&object, 0, sizeof object);
    uint32_t code = 0;
    int index = 0;
    for (uint32_t length = 1; length <= maxCodeLength; ++length) {
        const int count = pListBits[length - 1];
        VEK_CHECK(code + static_cast<uint32_t>(count) < 1U << length, vekStsJpegHuffmanTable);
        for (int i = 0; i < count; ++i) object.codes[pListVals[index++]] = length << 16 | code++;
        code <<= 1;
    }
    return vekStsOk;
}

}  // namespace

VekStatus vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize)
{
    VEK_CHECK_POINTER(pSize);
    *pSize = sizeof(VekEncodeHuffmanSpec);
    return vekStsOk;
}

VekStatus vekiEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                            VekEncodeHuffmanSpec* pEncHuffSpec)
{
    VEK_CHECK_POINTER(pListBits);
    VEK_CHECK_POINTER(pListVals);
    VEK_CHECK_POINTER(pEncHuffSpec);
    return build(pListBits, pListVals, *pEncHuffSpec);
}

VekStatus vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                 VekEncodeHuffmanSpec** ppEncHuffSpec)
{
    VEK_CHECK_POINTER(pListBits);
    VEK_CHECK_POINTER(pListVals);
    VEK_CHECK_POINTER(ppEncHuffSpec);
    auto* const object = reinterpret_cast<VekEncodeHuffmanSpec*>(veksMalloc_8u(sizeof(VekEncodeHuffmanSpec)));
    VEK_CHECK_POINTER(object);
    *ppEncHuffSpec = object;  // delivered even if the lists turn out bad: the caller frees it
    return build(pListBits, pListVals, *object);
}

VekStatus vekiEncodeHuffmanSpecFree_JPEG_8u(VekEncodeHuffmanSpec* pEncHuffSpec)
{
    VEK_CHECK_POINTER(pEncHuffSpec);
    veksFree(pEncHuffSpec);
    return vekStsOk;
}

}  // namespace q3
