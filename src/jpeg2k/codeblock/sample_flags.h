// What the coding passes know of the samples of a code-block (ISO/IEC 15444-1, Annex D). A word holds the flags of two
// samples, one below the other: those of the upper one in its low half. Two words under each other are a column of a
// stripe. A word stands at each side of a row, and a row above and below all, to be written to but not read.
#ifndef VEK_JPEG2K_CODEBLOCK_SAMPLE_FLAGS_H
#define VEK_JPEG2K_CODEBLOCK_SAMPLE_FLAGS_H

#include <cstddef>
#include <cstdint>

namespace q3 {

// Of a half, for its sample; bits 0 to 8 and 4 to 12 are indices of the context tables.
constexpr uint32_t southEastSignificant = 0x0001;
constexpr uint32_t southWestSignificant = 0x0002;
constexpr uint32_t northEastSignificant = 0x0004;
constexpr uint32_t northWestSignificant = 0x0008;
constexpr uint32_t southSignificant = 0x0010;
constexpr uint32_t northSignificant = 0x0020;
constexpr uint32_t eastSignificant = 0x0040;
constexpr uint32_t westSignificant = 0x0080;
constexpr uint32_t refined = 0x0100;
constexpr uint32_t southNegative = 0x0200;
constexpr uint32_t northNegative = 0x0400;
constexpr uint32_t eastNegative = 0x0800;
constexpr uint32_t westNegative = 0x1000;
constexpr uint32_t anySignificant = 0x2000;  // of the neighbours
constexpr uint32_t visited = 0x4000;
constexpr uint32_t significant = 0x8000;

constexpr uint32_t inUpper(uint32_t flags) { return flags; }
constexpr uint32_t inLower(uint32_t flags) { return flags << 16; }
constexpr uint32_t inBoth(uint32_t flags) { return inUpper(flags) | inLower(flags); }

// The upper sample of a word, or the lower one.
enum class Half { upper, lower };
template <Half half>
constexpr uint32_t in(uint32_t flags)
{
    return half == Half::upper ? inUpper(flags) : inLower(flags);
}
template <Half half>
constexpr uint32_t halfOf(uint32_t word)
{
    return half == Half::upper ? word & 0xFFFF : word >> 16;
}

// The flags of one block.
struct FlagView {
    uint32_t* words;   // of the first two rows' first column
    ptrdiff_t stride;  // in words
    int width, height;
};
constexpr ptrdiff_t flagStrideOf(int width) { return (4 * ptrdiff_t{width} + 8 + 31) / 32 * 8; }
constexpr ptrdiff_t flagRowsOf(int height) { return (ptrdiff_t{height} + 1) / 2 + 2; }
constexpr ptrdiff_t flagBytesOf(int width, int height) { return 4 * flagStrideOf(width) * flagRowsOf(height); }

// A sample has become significant, with its sign. `own` is what its own half takes; an upper sample may leave those
// above it in ignorance.
template <Half half>
[[gnu::always_inline]] inline void tellNeighbours(uint32_t* w, ptrdiff_t stride, bool isNegative, uint32_t own,
                                                  bool tellsAbove)
{
    const uint32_t sign = isNegative ? ~uint32_t{0} : 0;
    const auto tell = [sign](uint32_t& word, uint32_t always, uint32_t ifNegative) {
        word |= always | (ifNegative & sign);
    };
    if constexpr (half == Half::upper) {
        tell(w[0], inUpper(own) | inLower(anySignificant | northSignificant), inLower(northNegative));
        tell(w[1], inUpper(anySignificant | westSignificant) | inLower(anySignificant | northWestSignificant),
             inUpper(westNegative));
        tell(w[-1], inUpper(anySignificant | eastSignificant) | inLower(anySignificant | northEastSignificant),
             inUpper(eastNegative));
        if (tellsAbove) {
            tell(w[-stride], inLower(anySignificant | southSignificant), inLower(southNegative));
            w[-stride - 1] |= inLower(anySignificant | southEastSignificant);
            w[-stride + 1] |= inLower(anySignificant | southWestSignificant);
        }
    } else {
        tell(w[0], inLower(own) | inUpper(anySignificant | southSignificant), inUpper(southNegative));
        tell(w[1], inLower(anySignificant | westSignificant) | inUpper(anySignificant | southWestSignificant),
             inLower(westNegative));
        tell(w[-1], inLower(anySignificant | eastSignificant) | inUpper(anySignificant | southEastSignificant),
             inLower(eastNegative));
        tell(w[stride], inUpper(anySignificant | northSignificant), inUpper(northNegative));
        w[stride - 1] |= inUpper(anySignificant | northEastSignificant);
        w[stride + 1] |= inUpper(anySignificant | northWestSignificant);
    }
}

}  // namespace q3

#endif
