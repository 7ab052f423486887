// Prediction of samples in all 16 bits.
#ifndef VEKPIX_JPEG_LOSSLESS_BIAS_H
#define VEKPIX_JPEG_LOSSLESS_BIAS_H

namespace vekpix::jpeg {

// The library predicts signed values, samples are not: their halved sums and differences are the same only if 15 bits
// hold them. Samples in all 16 bits are less this bias, which all predictions keep but that of a first row's first
// sample: it is the bias itself, so that this difference goes without it. Adding or taking it is flipping the top bit.
inline int losslessBias(int bits, int pointTransform) { return bits - pointTransform == 16 ? 0x8000 : 0; }

}  // namespace vekpix::jpeg

#endif
