// Tables and values for the tests of lossless Huffman coding.
#ifndef VEK_TESTS_JPEG_ENTROPY_LOSSLESS_FIXTURES_H
#define VEK_TESTS_JPEG_ENTROPY_LOSSLESS_FIXTURES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "jpeg/entropy/decoder_state.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/huffman_tables.h"
#include "reference/jpeg/lossless_rows.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj/jpeg_entropy.h"

namespace lossless {

// A code for some categories, for both coders and both models. The objects end at unmapped pages.
class Table {
public:
    explicit Table(const model::HuffmanLists& lists)
        : encode_(std::make_unique<support::GuardedArray<VekEncodeHuffmanSpec>>(1)),
          decode_(std::make_unique<support::GuardedArray<VekDecodeHuffmanSpec>>(1))
    {
        vekiEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), encode_->data());
        vekiDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), decode_->data());
        model::buildEncodeTable(lists, modelEncode);
        model::buildDecodeTable(lists, modelDecode);
    }
    VekEncodeHuffmanSpec* encode() const { return encode_->data(); }
    VekDecodeHuffmanSpec* decode() const { return decode_->data(); }

    // An entry that no table builder makes
    void setEntry(size_t category, uint32_t entry)
    {
        encode()->codes[category] = entry;
        modelEncode[category] = entry;
    }

    model::EncodeTable modelEncode{};
    model::DecodeTable modelDecode{};

private:
    std::unique_ptr<support::GuardedArray<VekEncodeHuffmanSpec>> encode_;
    std::unique_ptr<support::GuardedArray<VekDecodeHuffmanSpec>> decode_;
};

// `count` symbols from 0 to `last`, with code lengths from nearly equal to as different as they can be.
inline model::HuffmanLists randomLists(support::Random& random, int count, int last = 16)
{
    std::vector<size_t> symbols;
    for (int i = 0; i <= last; ++i) symbols.push_back(static_cast<size_t>(i));
    for (size_t i = symbols.size() - 1; i > 0; --i) std::swap(symbols[i], symbols[random.in<size_t>(0, i)]);
    symbols.resize(static_cast<size_t>(count));
    const int steepness = random.in(0, 16);
    std::array<int, 256> counts{};
    for (const size_t symbol : symbols) counts[symbol] = 1 << random.in(0, steepness);
    model::HuffmanLists lists;
    int numVals = 0;
    model::optimalLists(counts, lists, numVals);
    return lists;
}

inline Table fullTable(support::Random& random) { return Table(randomLists(random, 17)); }

// Codes 00, 010 to 110, 1110 and so on for categories 0 to 16; the last has 14 bits.
inline Table standardTable()
{
    model::HuffmanLists lists;
    lists.bits = {0, 1, 5, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0};
    for (uint8_t i = 0; i <= 16; ++i) lists.vals[i] = i;
    return Table(lists);
}

// Small differences (kind 0), of every category alike (1), of any value (2), mostly -32768 and such (3).
inline int16_t randomValue(support::Random& random, int kind)
{
    switch (kind) {
        case 0:
            return random.in<int16_t>(-5, 5);
        case 1: {
            const int bits = random.in(0, 16);
            return static_cast<int16_t>(random.in(-(1 << bits), 1 << bits) / 2);
        }
        case 2:
            return random.any<int16_t>();
        default:
            return random.extreme<int16_t>();
    }
}

inline model::Rows randomRows(support::Random& random, int numRows, int width, int kind)
{
    model::Rows rows(static_cast<size_t>(numRows), std::vector<int16_t>(static_cast<size_t>(width)));
    for (auto& row : rows)
        for (int16_t& v : row) v = randomValue(random, kind);
    return rows;
}

// Pointers to the tables of the rows that count.
inline std::vector<const Table*> tablesFor(support::Random& random, const std::vector<Table>& tables, size_t numRows)
{
    std::vector<const Table*> chosen;
    for (size_t c = 0; c < numRows; ++c) chosen.push_back(&tables[random.in<size_t>(0, tables.size() - 1)]);
    return chosen;
}

// Rows and the pointers to them, each right before an unmapped page; of more than four only four are there at all.
class GuardedRows {
public:
    GuardedRows(const model::Rows& rows, size_t offset = 0) : pointers_(std::min<size_t>(rows.size(), 4))
    {
        for (size_t c = 0; c < pointers_.size(); ++c) {
            const size_t size = rows[c].size() * sizeof(int16_t);
            memory_.push_back(
                std::make_unique<support::GuardedBytes>(size, support::Guard::Behind, offset * sizeof(int16_t)));
            std::memcpy(memory_.back()->data(), rows[c].data(), size);
            pointers_[c] = reinterpret_cast<int16_t*>(memory_.back()->data());
        }
    }
    int16_t** rows() { return pointers_.data(); }
    const int16_t** constRows() { return const_cast<const int16_t**>(pointers_.data()); }
    std::vector<int16_t> row(size_t c, size_t width) { return {pointers_[c], pointers_[c] + width}; }

private:
    std::vector<std::unique_ptr<support::GuardedBytes>> memory_;
    support::GuardedArray<int16_t*> pointers_;
};

}  // namespace lossless

#endif
