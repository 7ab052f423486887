#include "jpeg/samples/dct_inverse.h"

#include "frame/checks.h"
#include "frame/implementations.h"

namespace q3 {
namespace {

template <typename Sample, typename Step>
VekStatus checkLevelShifted(const int16_t* pSrc, const Sample* pDst, int dstStep, const Step* pQuantInvTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_POINTER(pQuantInvTable);
    return vekStsOk;
}

}  // namespace

VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, const uint16_t* pQuantInvTable)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pQuantInvTable);
    dct_quant_inv8x8_16s(pSrc, pDst, pQuantInvTable);
    return vekStsOk;
}

VekStatus vekiDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_POINTER(pQuantInvTable);
    dct_quant_inv8x8_16s(pSrcDst, pSrcDst, pQuantInvTable);
    return vekStsOk;
}

VekStatus vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                              const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int dstStep,
                                               const float* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_qnt_inv_8x8_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                  const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8_4x4_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                  const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8_2x2_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                  const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8_1x1_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                   const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8To4x4_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

VekStatus vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int dstStep,
                                                   const uint16_t* pQuantInvTable)
{
    const VekStatus status = checkLevelShifted(pSrc, pDst, dstStep, pQuantInvTable);
    if (status == vekStsOk)
        dct_quant_inv8x8To2x2_ls(pSrc, pDst, dstStep, pQuantInvTable);
    return status;
}

}  // namespace q3
