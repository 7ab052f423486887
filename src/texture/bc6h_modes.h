// The fourteen modes of BC6H blocks.
#ifndef VEK_TEXTURE_BC6H_MODES_H
#define VEK_TEXTURE_BC6H_MODES_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace q3 {

struct Bc6hMode {
    int basePrecision;                  // bits of the first endpoint
    std::array<int, 3> otherPrecision;  // bits of the others, by channel
    bool isTransformed;                 // the others are differences from the first
    int codeBits;
    // The fields behind the code from the lowest bit up: channel, endpoint, and their bits, of which the last named
    // comes first in the block.
    const char* layout;
};

constexpr std::array<Bc6hMode, 14> bc6hModes = {{
    {10,
     {5, 5, 5},
     true,
     2,
     "G2.4 B2.4 B3.4 R0.9:0 G0.9:0 B0.9:0 R1.4:0 G3.4 G2.3:0 G1.4:0 B3.0 G3.3:0 B1.4:0 B3.1 B2.3:0 R2.4:0 B3.2 R3.4:0 "
     "B3.3"},
    {7,
     {6, 6, 6},
     true,
     2,
     "G2.5 G3.4 G3.5 R0.6:0 B3.0 B3.1 B2.4 G0.6:0 B2.5 B3.2 G2.4 B0.6:0 B3.3 B3.5 B3.4 R1.5:0 G2.3:0 G1.5:0 G3.3:0 "
     "B1.5:0 B2.3:0 R2.5:0 R3.5:0"},
    {11,
     {5, 4, 4},
     true,
     5,
     "R0.9:0 G0.9:0 B0.9:0 R1.4:0 R0.10 G2.3:0 G1.3:0 G0.10 B3.0 G3.3:0 B1.3:0 B0.10 B3.1 B2.3:0 R2.4:0 B3.2 R3.4:0 "
     "B3.3"},
    {11,
     {4, 5, 4},
     true,
     5,
     "R0.9:0 G0.9:0 B0.9:0 R1.3:0 R0.10 G3.4 G2.3:0 G1.4:0 G0.10 G3.3:0 B1.3:0 B0.10 B3.1 B2.3:0 R2.3:0 B3.0 B3.2 "
     "R3.3:0 G2.4 B3.3"},
    {11,
     {4, 4, 5},
     true,
     5,
     "R0.9:0 G0.9:0 B0.9:0 R1.3:0 R0.10 B2.4 G2.3:0 G1.3:0 G0.10 B3.0 G3.3:0 B1.4:0 B0.10 B2.3:0 R2.3:0 B3.1 B3.2 "
     "R3.3:0 B3.4 B3.3"},
    {9,
     {5, 5, 5},
     true,
     5,
     "R0.8:0 B2.4 G0.8:0 G2.4 B0.8:0 B3.4 R1.4:0 G3.4 G2.3:0 G1.4:0 B3.0 G3.3:0 B1.4:0 B3.1 B2.3:0 R2.4:0 B3.2 R3.4:0 "
     "B3.3"},
    {8,
     {6, 5, 5},
     true,
     5,
     "R0.7:0 G3.4 B2.4 G0.7:0 B3.2 G2.4 B0.7:0 B3.3 B3.4 R1.5:0 G2.3:0 G1.4:0 B3.0 G3.3:0 B1.4:0 B3.1 B2.3:0 R2.5:0 "
     "R3.5:0"},
    {8,
     {5, 6, 5},
     true,
     5,
     "R0.7:0 B3.0 B2.4 G0.7:0 G2.5 G2.4 B0.7:0 G3.5 B3.4 R1.4:0 G3.4 G2.3:0 G1.5:0 G3.3:0 B1.4:0 B3.1 B2.3:0 R2.4:0 "
     "B3.2 R3.4:0 B3.3"},
    {8,
     {5, 5, 6},
     true,
     5,
     "R0.7:0 B3.1 B2.4 G0.7:0 B2.5 G2.4 B0.7:0 B3.5 B3.4 R1.4:0 G3.4 G2.3:0 G1.4:0 B3.0 G3.3:0 B1.5:0 B2.3:0 R2.4:0 "
     "B3.2 R3.4:0 B3.3"},
    {6,
     {6, 6, 6},
     false,
     5,
     "R0.5:0 G3.4 B3.0 B3.1 B2.4 G0.5:0 G2.5 B2.5 B3.2 G2.4 B0.5:0 G3.5 B3.3 B3.5 B3.4 R1.5:0 G2.3:0 G1.5:0 G3.3:0 "
     "B1.5:0 B2.3:0 R2.5:0 R3.5:0"},
    {10, {10, 10, 10}, false, 5, "R0.9:0 G0.9:0 B0.9:0 R1.9:0 G1.9:0 B1.9:0"},
    {11, {9, 9, 9}, true, 5, "R0.9:0 G0.9:0 B0.9:0 R1.8:0 R0.10 G1.8:0 G0.10 B1.8:0 B0.10"},
    {12, {8, 8, 8}, true, 5, "R0.9:0 G0.9:0 B0.9:0 R1.7:0 R0.10:11 G1.7:0 G0.10:11 B1.7:0 B0.10:11"},
    {16, {4, 4, 4}, true, 5, "R0.9:0 G0.9:0 B0.9:0 R1.3:0 R0.10:15 G1.3:0 G0.10:15 B1.3:0 B0.10:15"},
}};
constexpr int twoSubsetModes = 10;  // the first ones; all others have one subset

// By the first byte: the mode, or 14 and more for the reserved codes. Codes have two bits, or five if the second is
// set.
constexpr std::array<uint8_t, 256> modeMap = [] {
    std::array<uint8_t, 256> t{};
    for (size_t i = 0; i < t.size(); ++i) {
        const size_t high = i >> 2 & 7;
        t[i] = static_cast<uint8_t>((i & 2) == 0 ? i & 1 : (i & 1) == 0 ? 2 + high : 10 + high);
    }
    return t;
}();
static_assert(modeMap[0x02] == 2 && modeMap[0x1E] == 9 && modeMap[0x03] == 10 && modeMap[0x0F] == 13 &&
              modeMap[0x13] == 14 && modeMap[0xE1] == 1);

// `count` bits of the block from `from` on are those of a field from `to` on.
struct Bc6hRun {
    int channel, endpoint;
    int from, to, count;
};
struct Bc6hLayout {
    std::array<Bc6hRun, 40> runs{};
    size_t size = 0;
    int end = 0;  // the first bit behind the endpoints
};
constexpr Bc6hLayout bc6hLayoutOf(const Bc6hMode& mode)
{
    Bc6hLayout layout;
    layout.end = mode.codeBits;
    const char* p = mode.layout;
    const auto number = [&p] {
        int n = 0;
        for (; *p >= '0' && *p <= '9'; ++p) n = 10 * n + (*p - '0');
        return n;
    };
    for (; *p != 0; p += *p == ' ' ? 1 : 0) {
        const int channel = *p == 'R' ? 0 : *p == 'G' ? 1 : 2;
        ++p;
        const int endpoint = number();
        ++p;  // the point
        const int last = number();
        const int first = *p == ':' ? (++p, number()) : last;
        const int count = first <= last ? last - first + 1 : first - last + 1;
        if (first <= last) {
            layout.runs[layout.size++] = {channel, endpoint, layout.end, first, count};
        } else {
            for (int i = 0; i < count; ++i)
                layout.runs[layout.size++] = {channel, endpoint, layout.end + i, first - i, 1};
        }
        layout.end += count;
    }
    return layout;
}
static_assert([] {
    for (size_t i = 0; i < bc6hModes.size(); ++i)
        if (bc6hLayoutOf(bc6hModes[i]).end != (i < twoSubsetModes ? 77 : 65))
            return false;
    return true;
}());

}  // namespace q3

#endif
