// Arithmetic kernels that the families share; not exported.
#ifndef VEK_FRAME_ARITHMETIC_KERNELS_H
#define VEK_FRAME_ARITHMETIC_KERNELS_H

#include <cstdint>

#include "vekj/types.h"

namespace q3 {

// Reversed division: dst = value / src in single precision, rounded to the nearest integer with ties to even and
// limited to 16 bits; 65535 for a zero divisor, and the result is the warning vekStsDivByZero then. If `value` is 0 the
// destination is all zero.
VekStatus veksDivCRev_16u(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len);
VekStatus veksDivCRev_16u_I(uint16_t value, uint16_t* pSrcDst, int len);
VekStatus ownveksDivCRev_16u(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len);
VekStatus ownveksDivCRev_16u_omp(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len);

// dst = src * table / 2^scaleFactor, rounded to the nearest integer with ties to even, saturated to 16 bits.
// scaleFactor is above 0.
void ownsMul_16u16s_PosSfs(const uint16_t* pTable, const int16_t* pSrc, int16_t* pDst, int len, int scaleFactor);

}  // namespace q3

#endif
