// End-of-band runs of progressive AC scans (ITU T.81, G.1.2.2): symbol n << 4 stands for 2^n blocks and more, n bits
// telling how many more.
#ifndef VEK_JPEG_ENTROPY_EOB_RUN_H
#define VEK_JPEG_ENTROPY_EOB_RUN_H

#include <bit>

#include "frame/checks.h"
#include "jpeg/entropy/progressive_band.h"

namespace q3 {

constexpr int largestEobSize = 14;

// Wraps, as a state that was never initialised may hold any number.
inline int grown(int n, int more) { return static_cast<int>(static_cast<uint32_t>(n) + static_cast<uint32_t>(more)); }

// Hands the symbol of the pending run to `code(symbol, value, bits)`, with the `bits` low bits of `value` to follow,
// and ends the run. One that is longer than any symbol tells goes out in two.
template <class Code>
VekStatus endEobRun(int& eobRun, const Code& code)
{
    if (eobRun == 0)
        return vekStsOk;
    if (eobRun > largestEobRun) [[unlikely]] {
        const VekStatus status = code(largestEobSize << 4, eobRun, largestEobSize);
        VEK_CHECK(status == vekStsOk, status);
        eobRun -= largestEobRun;
    }
    const int size = std::bit_width(static_cast<uint32_t>(eobRun)) - 1;
    VEK_CHECK(size <= largestEobSize, vekStsJpegMarkerShort);
    const VekStatus status = code(size << 4, eobRun, size);
    VEK_CHECK(status == vekStsOk, status);
    eobRun = 0;
    return vekStsOk;
}

}  // namespace q3

#endif
