// How much errors of sub-band samples weigh in the picture.
#ifndef VEKPIX_JPEG2000_WAVELET_NORMS_H
#define VEKPIX_JPEG2000_WAVELET_NORMS_H

#include "jpeg2000/tile_layout.h"

namespace vekpix::jpeg2000 {

// The Euclidean norm of what a sample of 1 in the band becomes by the inverse transform.
double waveletNorm(bool reversible, Orientation orientation, int level);

// The same of the inverse component transforms, RCT and ICT, for a component.
double componentNorm(bool reversible, int component);

}  // namespace vekpix::jpeg2000

#endif
