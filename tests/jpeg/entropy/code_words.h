// Sequential Huffman coding with words of '0' and '1' looked up in dictionaries, no tables and no bit buffers: a second
// opinion beside the models, for streams without errors.
#ifndef VEK_TESTS_JPEG_ENTROPY_CODE_WORDS_H
#define VEK_TESTS_JPEG_ENTROPY_CODE_WORDS_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "huffman_fixtures.h"

namespace words {

struct Code {
    std::map<int, std::string> wordOf;
    std::map<std::string, int> symbolOf;
};

// The word that follows one of the same length.
inline std::string successor(std::string word)
{
    for (size_t i = word.size(); i-- > 0;) {
        word[i] = word[i] == '0' ? '1' : '0';
        if (word[i] == '1')
            return word;
    }
    throw std::logic_error("no word left");
}

// For lists that leave the word of ones free.
inline Code codeOf(const model::HuffmanLists& lists)
{
    Code code;
    std::string next;
    size_t index = 0;
    for (const uint8_t count : lists.bits) {
        next += '0';
        for (int i = 0; i < count; ++i) {
            const int symbol = lists.vals[index++];
            code.wordOf[symbol] = next;
            code.symbolOf[next] = symbol;
            next = successor(next);
        }
    }
    return code;
}

// A positive value in binary, a negative one as the complement of its opposite, nothing for 0.
inline std::string magnitude(int v)
{
    std::string digits;
    for (int rest = std::abs(v); rest > 0; rest /= 2) digits.insert(digits.begin(), rest % 2 == 0 ? '0' : '1');
    if (v < 0)
        for (char& digit : digits) digit = digit == '0' ? '1' : '0';
    return digits;
}

inline int valueOf(const std::string& digits)
{
    if (digits.empty())
        return 0;
    const bool negative = digits[0] == '0';
    int v = 0;
    for (const char digit : digits) v = 2 * v + ((digit == '1') != negative ? 1 : 0);
    return negative ? -v : v;
}

// The coefficients in zig-zag order: down-left and up-right along the diagonals.
inline std::vector<int> inZigzag(const huffman::Block& block)
{
    std::vector<int> result;
    for (int sum = 0; sum <= 14; ++sum)
        for (int step = 0; step <= sum; ++step) {
            const int row = sum % 2 == 0 ? sum - step : step;
            const int column = sum - row;
            if (row < 8 && column < 8)
                result.push_back(block[static_cast<size_t>(8 * row + column)]);
        }
    return result;
}

// The symbols of a block, each with its magnitude.
struct Item {
    bool dc;
    int symbol;
    std::string digits;
};
inline std::vector<Item> itemsOf(const huffman::Block& block, int lastDc)
{
    const std::vector<int> values = inZigzag(block);
    std::string digits = magnitude(values[0] - lastDc);
    std::vector<Item> items = {{true, static_cast<int>(digits.size()), digits}};
    auto at = values.begin() + 1;
    for (;;) {
        const auto next = std::find_if(at, values.end(), [](int v) { return v != 0; });
        if (next == values.end())
            break;
        auto zeros = static_cast<int>(next - at);
        for (; zeros >= 16; zeros -= 16) items.push_back({false, 0xF0, ""});
        digits = magnitude(*next);
        items.push_back({false, 16 * zeros + static_cast<int>(digits.size()), digits});
        at = next + 1;
    }
    if (at != values.end())
        items.push_back({false, 0, ""});
    return items;
}

inline std::string encoded(const huffman::Block& block, int lastDc, const Code& dc, const Code& ac)
{
    std::string bits;
    for (const Item& item : itemsOf(block, lastDc)) bits += (item.dc ? dc : ac).wordOf.at(item.symbol) + item.digits;
    return bits;
}

// Reads at the front of `bits`, which is cut by what was read.
inline huffman::Block decoded(std::string& bits, int lastDc, const Code& dc, const Code& ac)
{
    size_t at = 0;
    const auto symbolBy = [&](const Code& code) {
        for (size_t length = 1;; ++length) {
            const auto found = code.symbolOf.find(bits.substr(at, length));
            if (found != code.symbolOf.end()) {
                at += length;
                return found->second;
            }
        }
    };
    const auto value = [&](int size) {
        const int v = valueOf(bits.substr(at, static_cast<size_t>(size)));
        at += static_cast<size_t>(size);
        return v;
    };
    std::vector<int> values = {lastDc + value(symbolBy(dc))};
    while (values.size() < 64) {
        const int symbol = symbolBy(ac);
        if (symbol == 0)
            break;
        values.resize(values.size() + static_cast<size_t>(symbol / 16));
        values.push_back(value(symbol % 16));
    }
    values.resize(64);
    huffman::Block positions{};
    for (size_t i = 0; i < 64; ++i) positions[i] = static_cast<int16_t>(i);
    const std::vector<int> order = inZigzag(positions);
    huffman::Block block{};
    for (size_t k = 0; k < 64; ++k) block[static_cast<size_t>(order[k])] = static_cast<int16_t>(values[k]);
    bits.erase(0, at);
    return block;
}

// As bytes with their stuffing; the last byte is padded with `padding`.
inline std::vector<uint8_t> stuffed(std::string bits, char padding)
{
    while (bits.size() % 8 != 0) bits += padding;
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < bits.size(); i += 8) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
        if (bytes.back() == 0xFF)
            bytes.push_back(0);
    }
    return bytes;
}

// The lists of an optimal code of at most 16 bits, from trees that are merged two by two, of rising counts and then of
// falling indices; with the symbols that have a word, in their order.
inline model::HuffmanLists optimal(const std::array<int, 256>& counts, size_t& numVals)
{
    struct Tree {
        int64_t count;
        int index;
        std::vector<int> leaves;
    };
    const auto before = [](const Tree& a, const Tree& b) {
        return std::pair(a.count, -a.index) < std::pair(b.count, -b.index);
    };
    std::multiset<Tree, decltype(before)> trees(before);
    for (int i = 0; i < 257; ++i) {
        const int64_t count = i == 256 ? 1 : counts[static_cast<size_t>(i)];
        if (count > 0 && count <= 1000000000)
            trees.insert({count, i, {i}});
    }
    std::map<int, int> length;
    while (trees.size() > 1) {
        Tree merged = *trees.begin();
        trees.erase(trees.begin());
        const Tree other = *trees.begin();
        trees.erase(trees.begin());
        merged.count += other.count;
        merged.leaves.insert(merged.leaves.end(), other.leaves.begin(), other.leaves.end());
        for (const int leaf : merged.leaves) ++length[leaf];
        if (merged.count <= 1000000000)
            trees.insert(merged);
    }

    model::HuffmanLists lists;
    std::multiset<int, std::greater<>> lengths;
    std::vector<std::pair<int, int>> order;
    for (const auto& [symbol, bits] : length) {
        lengths.insert(bits);
        if (symbol < 256)
            order.emplace_back(bits, symbol);
    }
    std::sort(order.begin(), order.end());
    numVals = order.size();
    for (size_t i = 0; i < order.size(); ++i) lists.vals[i] = static_cast<uint8_t>(order[i].second);
    // Two of the longest: one takes their parent's place, the other goes below the longest word that is shorter.
    while (!lengths.empty() && *lengths.begin() > 16) {
        const int longest = *lengths.begin();
        lengths.erase(lengths.begin());
        lengths.erase(lengths.begin());
        const auto split = lengths.lower_bound(longest - 2);
        const int raised = *split + 1;
        lengths.erase(split);
        lengths.insert({longest - 1, raised, raised});
    }
    if (!lengths.empty())
        lengths.erase(lengths.begin());
    for (const int bits : lengths) ++lists.bits[static_cast<size_t>(bits - 1)];
    return lists;
}

}  // namespace words

#endif
