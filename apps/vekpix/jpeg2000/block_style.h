// Code-block styles and sub-bands as the library has them.
#ifndef VEKPIX_JPEG2000_BLOCK_STYLE_H
#define VEKPIX_JPEG2000_BLOCK_STYLE_H

#include "jpeg2000/tile_layout.h"

namespace vekpix::jpeg2000 {

constexpr int libraryPredictableTermination = 0x100000;  // of the decoder
constexpr int libraryKeepMidpoints = 0x40000;            // of the decoder
constexpr int libraryExactLowestPlane = 0x20;            // of the encoder

// Without predictable termination, which the library's encoder and decoder tell in ways of their own.
inline int libraryStyle(int style)
{
    int result = 0;
    if ((style & styleCausal) != 0)
        result |= 0x1;
    if ((style & styleBypass) != 0)
        result |= 0x2;
    if ((style & styleTermAll) != 0)
        result |= 0x4;
    if ((style & styleReset) != 0)
        result |= 0x8;
    if ((style & styleSegmentationSymbols) != 0)
        result |= 0x10;
    return result;
}

inline int libraryBand(Orientation orientation)
{
    if (orientation == Orientation::HL)
        return 2;
    return orientation == Orientation::HH ? 3 : 0;
}

}  // namespace vekpix::jpeg2000

#endif
