// Row kernels of lossless prediction (ITU T.81, Annex H). Samples are 16 bits; sums and differences wrap.
#ifndef VEK_JPEG_ENTROPY_PREDICTION_KERNELS_H
#define VEK_JPEG_ENTROPY_PREDICTION_KERNELS_H

#include <cstdint>

namespace q3 {

// The first row is predicted from the left, its first sample from `reference`.
void ownjc_DiffPredFirstRow(const int16_t* pSrc, int16_t* pDst, int width, int16_t reference);
void ownjc_ReconstructPredFirstRow(const int16_t* pSrc, int16_t* pDst, int width, int16_t reference);

// Other rows; the first sample is predicted from above. `predictor` is 1 to 7. Source and destination may be the same
// row.
void ownjc_DiffPredRow(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width, int predictor);
void ownjc_ReconstructPredRow(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width, int predictor);

}  // namespace q3

#endif
