// RGB to YCbCr on rows without subsampling, in three forms whose results are not interchangeable; shifts are
// arithmetic, clip is to a byte.
//
//  Q15, whole groups of 8 pixels of 8-bit interleaved sources, and luma alone at every column:
//      Y = clip((9798 R + 19235 G + 3736 B + 16266) >> 15)
//      Cb = clip((-5529 R - 10855 G + 16384 B + 4210688) >> 15),  Cr = clip((16384 R - 13720 G - 2664 B + 4210704) >>
//      15)
//  Q14, their last width & 7 columns, and every column of packed 16-bit sources:
//      Y = clip((4899 R + 9617 G + 1868 B + 8192) >> 14)
//      Cb = clip((-2764 R - 5428 G + 8192 B + 2105344) >> 14),  Cr = clip((8192 R - 6860 G - 1332 B + 2105344) >> 14)
//  Differences, the first width & ~3 columns of planar and CMYK sources; the rest are unclipped Q16 sums
//  (colour_scalar.h):
//      Y = (19595 R + 38470 G + 7471 B + 32768) >> 16
//      Cb = clip(((B - Y) * 18491 + 4210688) >> 15),  Cr = clip(((R - Y) * 23373 + 4210688) >> 15)
#ifndef VEK_JPEG_SAMPLES_COLOUR_FORWARD_KERNELS_H
#define VEK_JPEG_SAMPLES_COLOUR_FORWARD_KERNELS_H

#include "jpeg/samples/columns.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

template <Order order, int PixelBytes>
void ownjc_RGBToYCbCr_JPEG_8u_CnP3(Source<1, PixelBytes> src, Destination<3> dst, int width);
template <Order order, Fields fields>
void ownjc_RGBPackedToYCbCr_JPEG_16u8u_C3P3(Source<1, 2> src, Destination<3> dst, int width);
template <Order order>
void ownjc_RGBToY_JPEG_8u_C3C1(Source<1, 3> src, Destination<1> dst, int width);

void ownjc_RGBToYCbCr_JPEG_8u_P3(Source<3> src, Destination<3> dst, int width);
void ownjc_CMYKToYCCK_JPEG_8u_P4(Source<4> src, Destination<4> dst, int width);
void ownjc_CMYKToYCCK_JPEG_8u_C4P4(Source<1, 4> src, Destination<4> dst, int width);

// Luma in single precision: ((R * 0.299) + (G * 0.587)) + (B * 0.114), every operation rounded, to the nearest integer
// with ties to even; the last width & 3 columns in Q16.
void ownjc_RGBToY_JPEG_8u_P3C1(Source<3> src, Destination<1> dst, int width);

}  // namespace q3

#endif
