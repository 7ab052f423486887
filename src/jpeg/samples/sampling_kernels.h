// Row kernels of chroma sampling. No kernel reads or writes outside the columns that its comment names.
#ifndef VEK_JPEG_SAMPLES_SAMPLING_KERNELS_H
#define VEK_JPEG_SAMPLES_SAMPLING_KERNELS_H

#include <cstdint>

namespace q3 {

// Whole planes; `width` results.
void ownjc_SampleDownH2V1_JPEG_8u_C1(const uint8_t* pSrc, uint8_t* pDst, int width);
void ownjc_SampleDownH2V2_JPEG_8u_C1(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int width);
void ownjc_SampleUpH2V1_JPEG_8u_C1(const uint8_t* pSrc, uint8_t* pDst, int width);
void ownjc_SampleUpH2V2_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, uint8_t* pDst, int width);

// Rows that know their ends; `srcWidth` source samples.
void ownjc_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst);
void ownjc_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth, uint8_t* pDst);
void ownjc_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int srcWidth, uint8_t* pDst);
void ownjc_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int srcWidth, uint8_t* pDst);

}  // namespace q3

#endif
