// How sub-bands are scaled: planes and quantisation steps (ISO/IEC 15444-1, Annex E).
#ifndef VEKPIX_JPEG2000_BAND_SCALE_H
#define VEKPIX_JPEG2000_BAND_SCALE_H

#include <algorithm>
#include <cmath>

#include "jpeg2000/tile_layout.h"

namespace vekpix::jpeg2000 {

// Samples of the irreversible transform have bits behind the point, as many as its 32-bit form has room for.
inline int fractionBits(int sampleBits) { return std::min(13, 26 - sampleBits); }

// Binary logarithm of the band's gain.
inline int gainLog(Orientation orientation)
{
    if (orientation == Orientation::LL)
        return 0;
    return orientation == Orientation::HH ? 2 : 1;
}

inline double stepSize(const Band& band, const StepSize& step, int sampleBits)
{
    return std::ldexp(1 + step.mantissa / 2048.0, sampleBits + gainLog(band.orientation) - step.exponent);
}

// Planes that a band's samples can have.
inline int bandPlanes(const Quantization& quantization, const Band& band)
{
    return quantization.guardBits + quantization.steps[static_cast<size_t>(band.index)].exponent - 1;
}

}  // namespace vekpix::jpeg2000

#endif
