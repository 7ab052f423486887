// Huffman tables from statistics (ITU T.81, Annex K.2).
#include <array>
#include <cstddef>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/code_lengths.h"

namespace q3 {
namespace {

constexpr int reserved = 256;  // the symbol that keeps the all-ones code unused
constexpr int maxUnlimitedLength = 32;

// Code sizes of the 256 symbols and the reserved one by merging the two rarest subtrees again and again.
class CodeSizes {
public:
    explicit CodeSizes(const int* pStatistics)
    {
        for (size_t i = 0; i < reserved; ++i) frequency_[i] = pStatistics[i];
        frequency_[reserved] = 1;
        size_.fill(0);
        next_.fill(-1);
        for (;;) {
            const int first = rarest(-1);
            const int second = rarest(first);
            if (second < 0)
                break;
            merge(static_cast<size_t>(first), static_cast<size_t>(second));
        }
    }
    int of(int symbol) const { return size_[static_cast<size_t>(symbol)]; }

private:
    // The entry with the least count that is not zero and not above the bound; the last of equals; -1 if there is none.
    int rarest(int except) const
    {
        int found = -1;
        int least = 1000000000;
        for (int i = 0; i <= reserved; ++i) {
            const int f = frequency_[static_cast<size_t>(i)];
            if (f != 0 && f <= least && i != except) {
                least = f;
                found = i;
            }
        }
        return found;
    }
    void merge(size_t first, size_t second)
    {
        frequency_[first] =
            static_cast<int>(static_cast<unsigned>(frequency_[first]) + static_cast<unsigned>(frequency_[second]));
        frequency_[second] = 0;
        size_t last = deepen(first);
        next_[last] = static_cast<int>(second);
        deepen(second);
    }
    // Lengthens the codes of a chain by one; returns its last member.
    size_t deepen(size_t i)
    {
        ++size_[i];
        while (next_[i] >= 0) {
            i = static_cast<size_t>(next_[i]);
            ++size_[i];
        }
        return i;
    }

    std::array<int, reserved + 1> frequency_;
    std::array<int, reserved + 1> size_;
    std::array<int, reserved + 1> next_;
};

using Counters = std::array<uint8_t, maxUnlimitedLength + 1>;

// Shortens the codes of more than 16 bits (Annex K.3).
void limitLengths(Counters& bits)
{
    for (size_t i = maxUnlimitedLength; i > maxCodeLength; --i)
        while (bits[i] > 0) {
            size_t j = i - 2;
            while (j > 0 && bits[j] == 0) --j;
            bits[i] = static_cast<uint8_t>(bits[i] - 2);
            ++bits[i - 1];
            bits[j + 1] = static_cast<uint8_t>(bits[j + 1] + 2);
            --bits[j];
        }
}

}  // namespace

VekStatus vekiEncodeHuffmanRawTableInit_JPEG_8u(const int* pStatistics, uint8_t* pListBits, uint8_t* pListVals)
{
    VEK_CHECK_POINTER(pStatistics);
    VEK_CHECK_POINTER(pListBits);
    VEK_CHECK_POINTER(pListVals);
    const CodeSizes sizes(pStatistics);
    Counters bits{};
    for (int symbol = 0; symbol <= reserved; ++symbol) {
        const int size = sizes.of(symbol);
        if (size == 0)
            continue;
        VEK_CHECK(size <= maxUnlimitedLength, vekStsJpegHuffmanTable);
        ++bits[static_cast<size_t>(size)];
    }
    limitLengths(bits);
    size_t longest = maxCodeLength;
    while (longest > 0 && bits[longest] == 0) --longest;
    if (longest > 0)
        --bits[longest];  // the reserved symbol's
    for (size_t i = 0; i < maxCodeLength; ++i) pListBits[i] = bits[i + 1];
    for (int size = 1; size <= maxUnlimitedLength; ++size)
        for (int symbol = 0; symbol < reserved; ++symbol)
            if (sizes.of(symbol) == size)
                *pListVals++ = static_cast<uint8_t>(symbol);
    return vekStsOk;
}

}  // namespace q3
