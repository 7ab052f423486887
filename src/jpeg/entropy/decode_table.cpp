#include <cstring>

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/code_lengths.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {
namespace {

// Codes by ITU T.81, Annex C. A complete code is accepted, and so are codes beyond their length's space, whose bits
// then never come up in a stream: the only failures are too many codes and a place behind the end of `lookup`.
VekStatus build(const uint8_t* pListBits, const uint8_t* pListVals, VekDecodeHuffmanSpec& object)
{
    VEK_CHECK(countCodes(pListBits) >= 0, vekStsJpegHuffmanTable);
    std::memset(object.valPtr, 0, sizeof object.valPtr);
    std::memset(object.minCode, 0, sizeof object.minCode);
    std::memset(object.maxCode, 0, sizeof object.maxCode);

    uint32_t code = 0;
    int index = 0;
    for (int length = 1; length <= maxCodeLength; ++length) {
        const int count = pListBits[length - 1];
        if (count == 0) {
            object.maxCode[length] = 0xFFFF;
        } else {
            object.valPtr[length] = static_cast<uint16_t>(index);
            object.minCode[length] = static_cast<uint16_t>(code);
            for (int i = 0; i < count; ++i, ++index) object.symbols[index] = pListVals[index];
            code += static_cast<uint32_t>(count);
            object.maxCode[length] = static_cast<uint16_t>(code - 1);
        }
        code <<= 1;
    }
    object.maxCode[17] = 0xFFFF;

    std::memset(object.lookup, 0, sizeof object.lookup);
    for (uint32_t length = 1; length <= 8; ++length) {
        const int first = object.valPtr[length];
        for (int i = 0; i < pListBits[length - 1]; ++i) {
            const uint32_t shift = 8 - length;
            const uint32_t begin = (object.minCode[length] + static_cast<uint32_t>(i)) << shift;
            for (uint32_t place = begin; place < begin + (1U << shift); ++place) {
                if (place > 256)
                    return vekStsJpegHuffmanTable;
                if (place == 256)
                    continue;  // one past the end is let pass, and nothing stored
                object.lookup[place] = length << 16 | object.symbols[first + i];
            }
        }
    }
    return vekStsOk;
}

}  // namespace

VekStatus vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize)
{
    VEK_CHECK_POINTER(pSize);
    *pSize = sizeof(VekDecodeHuffmanSpec);
    return vekStsOk;
}

VekStatus vekiDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                            VekDecodeHuffmanSpec* pDecHuffSpec)
{
    VEK_CHECK_POINTER(pListBits);
    VEK_CHECK_POINTER(pListVals);
    VEK_CHECK_POINTER(pDecHuffSpec);
    return build(pListBits, pListVals, *pDecHuffSpec);
}

VekStatus vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pListBits, const uint8_t* pListVals,
                                                 VekDecodeHuffmanSpec** ppDecHuffSpec)
{
    VEK_CHECK_POINTER(pListBits);
    VEK_CHECK_POINTER(pListVals);
    VEK_CHECK_POINTER(ppDecHuffSpec);
    auto* const object = reinterpret_cast<VekDecodeHuffmanSpec*>(veksMalloc_8u(sizeof(VekDecodeHuffmanSpec)));
    VEK_CHECK_POINTER(object);
    *ppDecHuffSpec = object;  // delivered even if the lists turn out bad: the caller frees it
    return build(pListBits, pListVals, *object);
}

VekStatus vekiDecodeHuffmanSpecFree_JPEG_8u(VekDecodeHuffmanSpec* pDecHuffSpec)
{
    VEK_CHECK_POINTER(pDecHuffSpec);
    veksFree(pDecHuffSpec);
    return vekStsOk;
}

}  // namespace q3
