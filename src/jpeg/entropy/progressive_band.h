// What one AC scan of a progressive picture codes (ITU T.81, Annex G).
#ifndef VEK_JPEG_ENTROPY_PROGRESSIVE_BAND_H
#define VEK_JPEG_ENTROPY_PROGRESSIVE_BAND_H

#include <cstdint>

namespace q3 {

constexpr int largestLow = 13;
constexpr int largestEobRun = 0x7FFF;      // that has a code
constexpr int fullCorrectionBits = 0x3A9;  // pending ones that still leave room for another block's

// Zig-zag positions first to last, without the lowest `low` bits.
struct Band {
    int first, last, low;

    bool valid() const { return first >= 1 && first <= 63 && last >= first && last <= 63 && low <= largestLow; }
    uint64_t positions() const { return (~uint64_t{0} << first) & (~uint64_t{0} >> (63 - last)); }
};

// Shifts whose count is taken modulo 32.
inline int shiftedLeft(int v, int low) { return static_cast<int>(static_cast<uint32_t>(v) << (low & 31)); }
inline int shiftedRight(int v, int low) { return v >> (low & 31); }

}  // namespace q3

#endif
