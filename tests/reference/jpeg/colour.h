// Models of the colour conversions of rows, one pixel at a time.
#ifndef VEK_TESTS_REFERENCE_JPEG_COLOUR_H
#define VEK_TESTS_REFERENCE_JPEG_COLOUR_H

#include <array>

namespace model {

// Three channels: R, G, B or Y, Cb, Cr.
using Triple = std::array<int, 3>;

enum class Inverse { planar, interleaved, rounded, subsampled };
Triple toRgb(Inverse form, int y, int cb, int cr);

enum class Forward { q15, q14, differences, q16 };
Triple toYcc(Forward form, int r, int g, int b);

int lumaInSinglePrecision(int r, int g, int b);

// Of subsampled output, in the body of a row and in its tail: luma of a pixel, and chroma of the sums over `samples`
// pixels.
int subsampledLuma(bool body, int r, int g, int b);
std::array<int, 2> subsampledChroma(bool body, int samples, int r, int g, int b);

}  // namespace model

#endif
