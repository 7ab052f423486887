// Kernels of the row forms: one row. A forward one gives `width` samples of each band, an inverse one takes them. A
// phase of 0 means that x[0] stands at an even position, 1 that it stands at an odd one. Who lets results be stored
// past the cache calls _mm_sfence() behind the last row.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_ROW_KERNELS_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_ROW_KERNELS_H

#include <cstdint>

namespace q3 {

void ownjc_WTFwd_B53_16s(const int16_t* x, int16_t* low, int16_t* high, int width, int phase, bool pastCache);
void ownjc_WTFwd_B53_32s(const int32_t* x, int32_t* low, int32_t* high, int width, int phase, bool pastCache);
void ownjc_WTInv_B53_16s(const int16_t* low, const int16_t* high, int16_t* x, int width, int phase, bool pastCache);
void ownjc_WTInv_B53_32s(const int32_t* low, const int32_t* high, int32_t* x, int width, int phase, bool pastCache);

void ownjc_WTFwdRow_D97_16s(const int16_t* x, int16_t* low, int16_t* high, int width, int phase, bool pastCache);
void ownjc_WTInvRow_D97_16s_(const int16_t* low, const int16_t* high, int16_t* x, int width, int phase, bool pastCache);
void ownjc_WTFwdRow_D97_32s(const int32_t* x, int32_t* low, int32_t* high, int width, int phase, bool pastCache);
void ownjc_WTInvRow_D97_32s(const int32_t* low, const int32_t* high, int32_t* x, int width, int phase, bool pastCache);
void ownjc_WTFwd_D97_32f(const float* x, float* low, float* high, int width, int phase, bool pastCache);
void ownjc_WTInv_D97_32f_(const float* low, const float* high, float* x, int width, int phase, bool pastCache);

}  // namespace q3

#endif
