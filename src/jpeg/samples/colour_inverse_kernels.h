// YCbCr to RGB on rows without subsampling. The first width & ~3 columns use Q14 products, the rest rounded Q16
// products: the two differ at a few inputs, and the column at which the form changes is part of the contract.
//
// Q14 form, u = Cb - 128 and v = Cr - 128, shifts arithmetic, clip to a byte:
//      R = clip(Y + ((22970 v + 8145) >> 14))
//      planar:       G = clip(Y - ((5638 u + 11700 v + 8082) >> 14)),    B = clip(Y + ((29032 u + 7535) >> 14))
//      interleaved:  G = clip(Y + ((-5638 u - 11700 v + 8302) >> 14)),   B = clip(Y + ((29032 u + 8135) >> 14))
#ifndef VEK_JPEG_SAMPLES_COLOUR_INVERSE_KERNELS_H
#define VEK_JPEG_SAMPLES_COLOUR_INVERSE_KERNELS_H

#include "jpeg/samples/columns.h"
#include "jpeg/samples/pixel_vectors.h"

namespace q3 {

void ownjc_YCbCrToRGB_JPEG_8u_P3(Source<3> src, Destination<3> dst, int width);
void ownjc_YCCKToCMYK_JPEG_8u_P4(Source<4> src, Destination<4> dst, int width);
void ownjc_YCCKToCMYK_JPEG_8u_P4C4(Source<4> src, Destination<1, 4> dst, int width);
template <Order order>
void ownjc_YCbCrToRGB_JPEG_8u_P3C3(Source<3> src, Destination<1, 3> dst, int width);
template <Order order>
void ownjc_YCbCrToRGB_JPEG_8u_P3C4(Source<3> src, Destination<1, 4> dst, int width, uint8_t aval);
template <Order order, Fields fields>
void ownjc_YCbCrToRGBPacked_JPEG_8u16u_P3C3(Source<3> src, Destination<1, 2> dst, int width);

}  // namespace q3

#endif
