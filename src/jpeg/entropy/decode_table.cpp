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
VekStatus build(const uint8_t* pListBits, const uint8_t* pListVals, VekDecodeHuffmanSpec& spec)
{
    VEK_CHECK(countCodes(pListBits) >= 0, vekStsJpegHuffmanTable);
    std::memset(spec.valPtr, 0, sizeof spec.valPtr);
    std::memset(spec.minCode, 0, sizeof spec.minCode);
    std::memset(spec.maxCode, 0, sizeof spec.maxCode);

    uint32_t code = 0;
    int index = 0;
    for (int length = 1; length <= maxCodeLength; ++length) {
        const int count = pListBits[length - 1];
        if (count == 0) {
            spec.maxCode[length] = 0xFFFF;
        } else {
            spec.valPtr[length] = static_cast<uint16_t>(index);
            spec.minCode[length] = static_cast<uint16_t>(code);
            for (int i = 0; i < count; ++i, ++index) spec.symbols[index] = pListVals[index];
            code += static_cast<uint32_t>(count);
            spec.maxCode[length] = static_cast<uint16_t>(code - 1);
        }
        code <<= 1;
    }
    spec.maxCode[17] = 0xFFFF;

    std::memset(spec.lookup, 0, sizeof spec.lookup);
    for (uint32_t length = 1; length <= 8; ++length) {
        const int first = spec.valPtr[length];
        for (int i = 0; i < pListBits[length - 1]; ++i) {
            const uint32_t shift = 8 - length;
            const uint32_t begin = (spec.minCode[length] + static_cast<uint32_t>(i)) << shift;
            for (uint32_t place = begin; place < begin + (1U << shift); ++place) {
                if (place > 256)
                    return vekStsJpegHuffmanTable;
                if (place == 256)
                    continue;  // one past the end is let pass, and nothing stored
                spec.lookup[place] = length << 16 | spec.symbols[first + i];
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
    auto* const spec = reinterpret_cast<VekDecodeHuffmanSpec*>(veksMalloc_8u(sizeof(VekDecodeHuffmanSpec)));
    VEK_CHECK_POINTER(spec);
    *ppDecHuffSpec = spec;  // delivered even if the lists turn out bad: the caller frees it
    return build(pListBits, pListVals, *spec);
}

VekStatus vekiDecodeHuffmanSpecFree_JPEG_8u(VekDecodeHuffmanSpec* pDecHuffSpec)
{
    VEK_CHECK_POINTER(pDecHuffSpec);
    veksFree(pDecHuffSpec);
    return vekStsOk;
}

}  // namespace q3
