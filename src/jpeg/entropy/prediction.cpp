#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg/entropy/prediction_kernels.h"

namespace q3 {
namespace {

VekStatus checkFirstRow(const int16_t* pSrc, const int16_t* pDst, int width, int P, int Pt)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(width);
    VEK_CHECK(P >= 2 && P <= 16 && Pt >= 0, vekStsBadArgument);
    return vekStsOk;
}

VekStatus checkRow(const int16_t* pSrc, const int16_t* pPrevRow, const int16_t* pDst, int width, int predictor)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pPrevRow);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(width);
    VEK_CHECK(predictor >= 1 && predictor <= 7, vekStsBadArgument);
    return vekStsOk;
}

// 2 ^ (P - Pt - 1), the count taken modulo 32, cut to 16 bits.
int16_t firstReference(int P, int Pt)
{
    return static_cast<int16_t>(uint32_t{1} << (static_cast<uint32_t>(P - 1 - Pt) & 31));
}

}  // namespace

VekStatus vekiDiffPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int width, int P, int Pt)
{
    const VekStatus status = checkFirstRow(pSrc, pDst, width, P, Pt);
    if (status == vekStsOk)
        ownjc_DiffPredFirstRow(pSrc, pDst, width, firstReference(P, Pt));
    return status;
}

VekStatus vekiDiffPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width,
                                      int predictor)
{
    const VekStatus status = checkRow(pSrc, pPrevRow, pDst, width, predictor);
    if (status == vekStsOk)
        ownjc_DiffPredRow(pSrc, pPrevRow, pDst, width, predictor);
    return status;
}

VekStatus vekiReconstructPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int width, int P, int Pt)
{
    const VekStatus status = checkFirstRow(pSrc, pDst, width, P, Pt);
    if (status == vekStsOk)
        ownjc_ReconstructPredFirstRow(pSrc, pDst, width, firstReference(P, Pt));
    return status;
}

VekStatus vekiReconstructPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevRow, int16_t* pDst, int width,
                                             int predictor)
{
    const VekStatus status = checkRow(pSrc, pPrevRow, pDst, width, predictor);
    if (status == vekStsOk)
        ownjc_ReconstructPredRow(pSrc, pPrevRow, pDst, width, predictor);
    return status;
}

}  // namespace q3
