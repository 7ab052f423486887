#include <algorithm>
#include <array>

#include "frame/arithmetic_kernels.h"
#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/memory_kernels.h"
#include "jpeg/samples/quantisation_kernels.h"

namespace q3 {
namespace {

// The zig-zag raw table as 16-bit entries in natural order.
VekStatus widenToNaturalOrder(const uint8_t* pQuantRawTable, uint16_t* pTable)
{
    std::array<uint16_t, 64> zigzag;
    const VekStatus status = vekiConvert_8u16u_C1R(pQuantRawTable, 8, zigzag.data(), 16, {8, 8});
    if (status != vekStsOk)
        return status;
    return vekiZigzagInv8x8_16s_C1(reinterpret_cast<const int16_t*>(zigzag.data()), reinterpret_cast<int16_t*>(pTable));
}

}  // namespace

VekStatus vekiQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int qualityFactor)
{
    VEK_CHECK_POINTER(pQuantRawTable);
    VEK_CHECK(qualityFactor >= 1, vekStsBadArgument);
    const auto quality = static_cast<uint32_t>(qualityFactor);
    const uint32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;  // wraps at 32 bits, as all that follows
    for (int i = 0; i < 64; ++i) {
        const auto scaled = static_cast<int32_t>(pQuantRawTable[i] * scale + 50) / 100;
        pQuantRawTable[i] = static_cast<uint8_t>(std::clamp(scaled, 1, 255));
    }
    return vekStsOk;
}

VekStatus vekiQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pQuantRawTable);
    VEK_CHECK_POINTER(pQuantFwdTable);
    const VekStatus status = widenToNaturalOrder(pQuantRawTable, pQuantFwdTable);
    if (status != vekStsOk)
        return status;
    return veksDivCRev_16u_I(32768, pQuantFwdTable, 64);
}

VekStatus vekiQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable)
{
    VEK_CHECK_POINTER(pQuantRawTable);
    VEK_CHECK_POINTER(pQuantInvTable);
    return widenToNaturalOrder(pQuantRawTable, pQuantInvTable);
}

VekStatus vekiQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_POINTER(pQuantFwdTable);
    ownjc_QuantFwd_8x8_Sfs15_16s(pSrcDst, pSrcDst, pQuantFwdTable);
    return vekStsOk;
}

VekStatus vekiQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable)
{
    VEK_CHECK_POINTER(pSrcDst);
    VEK_CHECK_POINTER(pQuantInvTable);
    ownjc_QuantInv_8x8_16s_I(pSrcDst, pQuantInvTable);
    return vekStsOk;
}

}  // namespace q3
