#include "jpeg2k/transform/component_kernels.h"

#include "jpeg2k/transform/component_arithmetic.h"

namespace q3 {

namespace {

// The rows come by value, so that no store can change where they lie.
template <typename Arithmetic, typename Src, typename Dst>
void transformRow(Src src, Dst dst, int width, bool pixelByPixel)
{
    constexpr int lanes = lanesOf<typename Dst::Sample>;
    int i = 0;
    if (!pixelByPixel)
        for (; i + lanes <= width; i += lanes) dst.store(i, Arithmetic::of(src.load(i, lanes)), lanes);
    while (i < width) {
        const int count = pixelByPixel ? 1 : width - i;
        dst.store(i, Arithmetic::of(src.load(i, count)), count);
        i += count;
    }
}

template <typename Arithmetic, typename T>
void toPlanes(const T* pSrc, T* const pDst[3], int width)
{
    const PixelRow<const T> src = {pSrc};
    const PlaneRow<T> dst = {{pDst[0], pDst[1], pDst[2]}};
    transformRow<Arithmetic>(src, dst, width, rowsOverlap(dst, src, width));
}

template <typename Arithmetic, typename T>
void fromPlanes(const T* const pSrc[3], T* pDst, int width)
{
    const PlaneRow<const T> src = {{pSrc[0], pSrc[1], pSrc[2]}};
    const PixelRow<T> dst = {pDst};
    transformRow<Arithmetic>(src, dst, width, rowsOverlap(src, dst, width));
}

template <typename Arithmetic, typename T>
void inPlace(T* const pSrcDst[3], int width)
{
    const PlaneRow<T> row = {{pSrcDst[0], pSrcDst[1], pSrcDst[2]}};
    transformRow<Arithmetic>(row, row, width, rowsOverlap(row, width));
}

}  // namespace

void ownjc_RCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int16_t* const pDst[3], int width)
{
    toPlanes<RctForward16>(pSrc, pDst, width);
}
void ownjc_RCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int32_t* const pDst[3], int width)
{
    toPlanes<RctForward32>(pSrc, pDst, width);
}
void ownjc_ICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, float* const pDst[3], int width)
{
    toPlanes<IctForwardFloat>(pSrc, pDst, width);
}

void ownjc_RCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int16_t* pDst, int width)
{
    fromPlanes<RctInverse16>(pSrc, pDst, width);
}
void ownjc_RCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int32_t* pDst, int width)
{
    fromPlanes<RctInverse32>(pSrc, pDst, width);
}
void ownjc_ICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], float* pDst, int width)
{
    fromPlanes<IctInverseFloat>(pSrc, pDst, width);
}

void ownjc_RCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width) { inPlace<RctForward16>(pSrcDst, width); }
void ownjc_RCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width) { inPlace<RctInverse16>(pSrcDst, width); }
void ownjc_RCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width) { inPlace<RctForward32>(pSrcDst, width); }
void ownjc_RCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width) { inPlace<RctInverse32>(pSrcDst, width); }
void my_ICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width) { inPlace<IctForward16>(pSrcDst, width); }
void my_ICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int width) { inPlace<IctInverse16>(pSrcDst, width); }
void ownjc_ICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width) { inPlace<IctForward32>(pSrcDst, width); }
void ownjc_ICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int width) { inPlace<IctInverse32>(pSrcDst, width); }
void ownjc_ICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int width) { inPlace<IctForwardFloat>(pSrcDst, width); }
void ownjc_ICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int width) { inPlace<IctInverseFloat>(pSrcDst, width); }

}  // namespace q3
