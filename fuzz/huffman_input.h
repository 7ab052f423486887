// What the fuzz targets of the Huffman coders make of their input.
#ifndef VEK_FUZZ_HUFFMAN_INPUT_H
#define VEK_FUZZ_HUFFMAN_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "jpeg/entropy/huffman_tables.h"
#include "reference/jpeg/huffman.h"

namespace fuzz {

inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t next()
    {
        if (size_ == 0)
            return 0;
        --size_;
        return *data_++;
    }
    uint64_t next64()
    {
        uint64_t value = 0;
        for (int i = 0; i < 8; ++i) value = value << 8 | next();
        return value;
    }
    std::vector<uint8_t> rest() { return {data_, data_ + size_}; }

private:
    const uint8_t* data_;
    size_t size_;
};

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
