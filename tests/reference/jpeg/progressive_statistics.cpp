#include <cstdlib>

#include "reference/jpeg/progressive.h"

namespace model {
namespace {

int bitsIn(int v)
{
    int bits = 0;
    for (; v != 0; v /= 2) ++bits;
    return bits;
}

VekStatus countRun(std::array<int, 256>& counts, BandCounterState& state)
{
    if (state.eobRun == 0)
        return vekStsOk;
    if (state.eobRun > 32767) {
        ++counts[0xE0];
        state.eobRun -= 32767;
    }
    const int size = bitsIn(state.eobRun) - 1;
    if (size > 14)
        return vekStsJpegMarkerShort;
    ++counts[static_cast<size_t>(16 * size)];
    state.eobRun = 0;
    return vekStsOk;
}

int magnitude(const std::array<int16_t, 64>& block, int k, int al)
{
    return std::abs(static_cast<int>(block[static_cast<size_t>(zigzag[static_cast<size_t>(k)])])) >> al;
}

}  // namespace

VekStatus countDcFirst(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, int16_t& lastDc, int al)
{
    const int v = block[0] >> al;
    const int category = bitsIn(std::abs(v - lastDc));
    lastDc = static_cast<int16_t>(v);
    if (category > 11)
        return vekStsJpegMarkerShort;
    ++counts[static_cast<size_t>(category)];
    return vekStsOk;
}

VekStatus countAcFirst(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, const Band& band,
                       BandCounterState& state)
{
    int r = 0;
    for (int k = band.ss; k <= band.se; ++k) {
        const int t = magnitude(block, k, band.al);
        if (t == 0) {
            ++r;
            continue;
        }
        const VekStatus status = countRun(counts, state);
        if (status != vekStsOk)
            return status;
        counts[0xF0] += r / 16;
        r %= 16;
        const int size = bitsIn(t);
        if (size > 10)
            return vekStsJpegMarkerShort;
        ++counts[static_cast<size_t>(16 * r + size)];
        r = 0;
    }
    if (r > 0) {
        ++state.eobRun;
        if (state.eobRun >= 32767)
            return countRun(counts, state);
    }
    return vekStsOk;
}

VekStatus countAcRefine(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, const Band& band,
                        BandCounterState& state)
{
    int lastNew = band.ss - 1;
    for (int k = band.ss; k <= band.se; ++k)
        if (magnitude(block, k, band.al) == 1)
            lastNew = k;
    int r = 0;
    int ours = 0;  // correction bits of this block
    for (int k = band.ss; k <= band.se; ++k) {
        const int t = magnitude(block, k, band.al);
        if (t == 0) {
            ++r;
            continue;
        }
        for (; r > 15 && k <= lastNew; r -= 16) {
            const VekStatus status = countRun(counts, state);
            if (status != vekStsOk)
                return status;
            state.numCorrections = 0;
            ++counts[0xF0];
            ours = 0;
        }
        if (t > 1) {
            ++ours;
            continue;
        }
        const VekStatus status = countRun(counts, state);
        if (status != vekStsOk)
            return status;
        state.numCorrections = 0;
        ++counts[static_cast<size_t>(16 * r + 1)];
        ours = 0;
        r = 0;
    }
    if (r > 0 || ours > 0) {
        ++state.eobRun;
        state.numCorrections += ours;
        if (state.numCorrections > 937 || state.eobRun == 32767) {
            const VekStatus status = countRun(counts, state);
            if (status != vekStsOk)
                return status;
            state.numCorrections = 0;
        }
    }
    return vekStsOk;
}

VekStatus flushCounts(std::array<int, 256>& counts, BandCounterState& state)
{
    const VekStatus status = countRun(counts, state);
    state = {};
    return status;
}

}  // namespace model
