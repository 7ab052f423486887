// Quantisation of a block of 64 coefficients; any alignment, source and destination may be the same.
#ifndef VEK_JPEG_SAMPLES_QUANTISATION_KERNELS_H
#define VEK_JPEG_SAMPLES_QUANTISATION_KERNELS_H

#include <cstdint>

#include "frame/vec.h"

namespace q3 {

// With a = 8 * x cut to 16 bits, so that coefficients outside -4096 .. 4095 wrap: (((a * (t >> 1)) >> 16) + 1) >> 1;
// ties go up.
void ownjc_QuantFwd_8x8_Sfs15_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable);

// The low 16 bits of x * t
void ownjc_QuantInv_8x8_16s(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable);
void ownjc_QuantInv_8x8_16s_I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

}  // namespace q3

#endif
