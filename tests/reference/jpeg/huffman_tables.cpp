#include <climits>

#include "reference/jpeg/huffman.h"

namespace model {
namespace {

// The code length of every entry of the list; false if there are more than 256.
bool expand(const HuffmanLists& lists, std::vector<int>& sizes)
{
    for (int length = 1; length <= 16; ++length) {
        const int count = lists.bits[static_cast<size_t>(length - 1)];
        if (sizes.size() + static_cast<size_t>(count) > 256)
            return false;
        sizes.insert(sizes.end(), static_cast<size_t>(count), length);
    }
    return true;
}

}  // namespace

const std::array<int, 72> zigzag = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19,
                                    26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56,
                                    57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51, 58, 59, 52, 45, 38, 31,
                                    39, 46, 53, 60, 61, 54, 47, 55, 62, 63, 63, 63, 63, 63, 63, 63, 63, 63};

VekStatus buildDecodeTable(const HuffmanLists& lists, DecodeTable& table)
{
    std::vector<int> sizes;
    if (!expand(lists, sizes))
        return vekStsJpegHuffmanTable;
    std::vector<int> codes;
    int code = 0;
    int size = sizes.empty() ? 0 : sizes[0];
    for (const int s : sizes) {
        while (size < s) {
            code *= 2;
            ++size;
        }
        codes.push_back(code++);
    }

    table = {};
    size_t index = 0;
    for (size_t length = 1; length <= 16; ++length) {
        const size_t count = lists.bits[length - 1];
        if (count == 0) {
            table.maxCode[length] = 0xFFFF;
            continue;
        }
        table.valPtr[length] = static_cast<uint16_t>(index);
        table.minCode[length] = static_cast<uint16_t>(codes[index]);
        for (size_t i = 0; i < count; ++i) table.symbols[index + i] = lists.vals[index + i];
        index += count;
        table.maxCode[length] = static_cast<uint16_t>(codes[index - 1]);
    }
    table.maxCode[17] = 0xFFFF;

    for (size_t i = 0; i < sizes.size() && sizes[i] <= 8; ++i) {
        const int entries = 1 << (8 - sizes[i]);
        for (int k = 0; k < entries; ++k) {
            const int place = codes[i] * entries + k;
            if (place > 256)
                return vekStsJpegHuffmanTable;
            if (place == 256)
                continue;
            table.lookup[static_cast<size_t>(place)] = static_cast<uint32_t>(sizes[i]) << 16 | lists.vals[i];
        }
    }
    return vekStsOk;
}

VekStatus buildEncodeTable(const HuffmanLists& lists, EncodeTable& table)
{
    std::vector<int> sizes;
    if (!expand(lists, sizes))
        return vekStsJpegHuffmanTable;
    table.fill(0);
    uint64_t code = 0;
    size_t k = 0;
    for (int size = sizes.empty() ? 0 : sizes[0]; k < sizes.size(); ++size) {
        for (; k < sizes.size() && sizes[k] == size; ++k)
            table[lists.vals[k]] = static_cast<uint32_t>(size) << 16 | static_cast<uint32_t>(code++);
        if (code >= uint64_t{1} << size)
            return vekStsJpegHuffmanTable;
        code *= 2;
    }
    return vekStsOk;
}

VekStatus optimalLists(const std::array<int, 256>& counts, HuffmanLists& lists, int& numVals)
{
    std::array<int64_t, 257> freq{};
    for (size_t i = 0; i < 256; ++i) freq[i] = counts[i];
    freq[256] = 1;
    std::array<int, 257> codeSize{};
    std::array<int, 257> others{};
    others.fill(-1);
    for (;;) {
        const auto least = [&](int except) {
            int found = -1;
            int64_t smallest = 1000000000;
            for (int i = 0; i < 256; ++i)
                if (i != except && freq[static_cast<size_t>(i)] != 0 && freq[static_cast<size_t>(i)] <= smallest) {
                    smallest = freq[static_cast<size_t>(i)];
                    found = i;
                }
            if (except != 256 && freq[256] != 0 && freq[256] <= smallest)
                found = 256;
            return found;
        };
        const int c1 = least(-1);
        const int c2 = least(c1);
        if (c2 < 0)
            break;
        freq[static_cast<size_t>(c1)] += freq[static_cast<size_t>(c2)];
        freq[static_cast<size_t>(c2)] = 0;
        int member = c1;
        ++codeSize[static_cast<size_t>(member)];
        while (others[static_cast<size_t>(member)] >= 0) {
            member = others[static_cast<size_t>(member)];
            ++codeSize[static_cast<size_t>(member)];
        }
        others[static_cast<size_t>(member)] = c2;
        for (member = c2; member >= 0; member = others[static_cast<size_t>(member)])
            ++codeSize[static_cast<size_t>(member)];
    }
    std::array<uint8_t, 33> bits{};
    for (const int size : codeSize) {
        if (size > 32)
            return vekStsJpegHuffmanTable;
        if (size > 0)
            ++bits[static_cast<size_t>(size)];
    }
    for (size_t i = 32; i > 16; --i)
        while (bits[i] > 0) {
            size_t j = i - 2;
            while (bits[j] == 0) --j;
            bits[i] = static_cast<uint8_t>(bits[i] - 2);
            bits[i - 1] = static_cast<uint8_t>(bits[i - 1] + 1);
            bits[j + 1] = static_cast<uint8_t>(bits[j + 1] + 2);
            bits[j] = static_cast<uint8_t>(bits[j] - 1);
        }
    for (size_t i = 16; i >= 1; --i)
        if (bits[i] != 0) {
            --bits[i];
            break;
        }
    for (size_t i = 0; i < 16; ++i) lists.bits[i] = bits[i + 1];
    numVals = 0;
    for (int size = 1; size <= 32; ++size)
        for (size_t symbol = 0; symbol < 256; ++symbol)
            if (codeSize[symbol] == size)
                lists.vals[static_cast<size_t>(numVals++)] = static_cast<uint8_t>(symbol);
    return vekStsOk;
}

}  // namespace model
