#include "jpeg/samples/dct_forward.h"

#include "frame/checks.h"
#include "frame/implementations.h"

namespace q3 {

VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pQuantFwdTable);
    ownDCTQuantFwd8x8_JPEG_16s_C1(pSrc, pDst, pQuantFwdTable);
    return vekStsOk;
}

VekStatus vekiDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_POINTER(pQuantFwdTable);
    ownDCTQuantFwd8x8_JPEG_16s_C1(pSrcDst, pSrcDst, pQuantFwdTable);
    return vekStsOk;
}

VekStatus vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst,
                                              const uint16_t* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_POINTER(pQuantFwdTable);
    ownDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pSrc, srcStep, pDst, pQuantFwdTable);
    return vekStsOk;
}

VekStatus vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int srcStep, int16_t* pDst,
                                               const float* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_POINTER(pQuantFwdTable);
    dct_qnt_fwd_8x8_ls(pSrc, srcStep, pDst, pQuantFwdTable);
    return vekStsOk;
}

}  // namespace q3
