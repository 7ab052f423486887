// Layout of the table objects.
#ifndef VEK_JPEG_ENTROPY_HUFFMAN_TABLES_H
#define VEK_JPEG_ENTROPY_HUFFMAN_TABLES_H

#include <cstddef>
#include <cstdint>

#include "vekj/jpeg_entropy.h"

// The symbol of code c of length l is symbols[valPtr[l] + c - minCode[l]].
struct VekDecodeHuffmanSpec {
    uint16_t symbols[256];  // in the order of the list
    uint32_t
        lookup[256];  // by the next 8 bits: code length << 16 | symbol; 0 for codes longer than 8 bits and for none
    uint16_t minCode[18];  // by code length: first code
    uint16_t maxCode[18];  // by code length: last code; 0xFFFF where there is none, and at 17
    uint16_t valPtr[18];   // by code length: index in `symbols` of the first code
};
static_assert(sizeof(VekDecodeHuffmanSpec) == 1644);
static_assert(offsetof(VekDecodeHuffmanSpec, lookup) == 512 && offsetof(VekDecodeHuffmanSpec, minCode) == 1536);

struct VekEncodeHuffmanSpec {
    uint32_t codes[256];  // by symbol: code length << 16 | code; 0 for a symbol without a code
};
static_assert(sizeof(VekEncodeHuffmanSpec) == 1024);

#endif
