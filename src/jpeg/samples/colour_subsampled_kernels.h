// Colour conversion on rows whose chroma is subsampled: one chroma sample for two columns of one row (4:2:2), or of two
// (4:1:1). Only whole groups are converted. Rows is 1 or 2: the luma planes of Y and of the pixels are rows here.
#ifndef VEK_JPEG_SAMPLES_COLOUR_SUBSAMPLED_KERNELS_H
#define VEK_JPEG_SAMPLES_COLOUR_SUBSAMPLED_KERNELS_H

#include "jpeg/samples/columns.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

// `width` columns, even; in 16-bit arithmetic:
//      sample = clip(((Y << 4) + off) >> 4),   offR = high(Cr << 7, 11485) - 2871 + 8,   offB = high(Cb << 7, 14516) -
//      3629 + 8, offG = 2167 - (high(Cb << 7, 2819) + high(Cr << 7, 5850)) + 8,   high(a, k) = (a * k) >> 16
template <Order order, int Rows>
void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C3(Source<Rows> y, ChromaSource chroma, Destination<Rows, 3> dst, int width);
template <Order order, int Rows>
void ownjc_YCbCrSubsampledToRGB_JPEG_8u_P3C4(Source<Rows> y, ChromaSource chroma, Destination<Rows, 4> dst, int width,
                                             uint8_t aval);

// Y0 Cb Y1 Cr streams. The first width & ~7 columns as above, the other whole pairs in the rounded Q16 form
// (colour_scalar.h).
void ownjc_YCbCr422ToRGB_JPEG_8u_C2C3(const uint8_t* pSrc, uint8_t* pDst, int width);

// `width` columns, even. Luma of the first width & ~15 columns is
//      Y = (high(R << 8, 4899) + high(G << 8, 9617) + high(B << 8, 1868) + 32) >> 6
// and of the others (4899 R + 9617 G + 1868 B + 8192) >> 14. Chroma, with Rs, Gs, Bs the sums over a group and clip to
// a byte:
//      4:2:2, the first width & ~15 columns, high() of sums shifted left by 6:
//          Cb = clip((high(Bs, 8192) - (high(Rs, 2765) + high(Gs, 5427)) + 4112) >> 5)
//          Cr = clip((high(Rs, 8192) - (high(Gs, 6860) + high(Bs, 1332)) + 4112) >> 5)
//      else, T = (n * 8192 * 128.5 + 8192 Bs - 5427 Gs - 2765 Rs) >> (13 + log2 n) with n samples in a group, and
//      likewise (8192 Rs - 1332 Bs - 6860 Gs): the first width & ~15 columns take min(T, 255), the others the low byte
//      of T, which wraps pure blue and pure red to 0.
template <Order order, int PixelBytes, int Rows>
void ownjc_RGBToYCbCrSubsampled_JPEG_8u_CnP3(Source<Rows, PixelBytes> src, Destination<Rows> y,
                                             ChromaDestination chroma, int width);

}  // namespace q3

#endif
