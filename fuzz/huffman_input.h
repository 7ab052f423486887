// The tables that the fuzz targets of the Huffman coders make of their input.
#ifndef VEK_FUZZ_HUFFMAN_INPUT_H
#define VEK_FUZZ_HUFFMAN_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "input.h"
#include "jpeg/entropy/huffman_tables.h"
#include "reference/jpeg/huffman.h"

namespace fuzz {

struct Table {
    model::HuffmanLists lists;
    VekDecodeHuffmanSpec object{};
    model::DecodeTable expected{};
    bool valid = false;
};

inline Table readTable(Bytes& bytes)
{
    Table table;
    model::HuffmanLists& lists = table.lists;
    int symbols = 0;
    for (uint8_t& count : lists.bits) {
        count = bytes.next();
        symbols += count;
    }
    for (int i = 0; i < std::min(symbols, 256); ++i) lists.vals[static_cast<size_t>(i)] = bytes.next();
    const VekStatus status = vekiDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &table.object);
    require(status == model::buildDecodeTable(lists, table.expected));
    table.valid = status == vekStsOk;
    return table;
}

}  // namespace fuzz

#endif
