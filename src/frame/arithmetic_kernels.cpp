#include "frame/arithmetic_kernels.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/checks.h"
#include "frame/quantise_vec.h"
#include "frame/vec.h"
#include "vekcore.h"

namespace q3 {
namespace {

// The quotient of two integers below 65536 has no neighbour so near to a tie that rounding it to single precision first
// would decide otherwise than its exact value.
inline uint16_t quotient(uint16_t value, uint16_t divisor)
{
    const float q = std::nearbyint(static_cast<float>(value) / static_cast<float>(divisor));
    return static_cast<uint16_t>(q);
}

}  // namespace

VekStatus ownveksDivCRev_16u(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len)
{
    bool zeroSeen = false;
    for (int i = 0; i < len; ++i) {
        const uint16_t d = pSrc[i];
        zeroSeen |= d == 0;
        pDst[i] = d == 0 ? 65535 : quotient(value, d);
    }
    return zeroSeen ? vekStsDivByZero : vekStsOk;
}

VekStatus ownveksDivCRev_16u_omp(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len)
{
    const int available = ownGetNumThreads();
    if (available < 2 || len < available)
        return ownveksDivCRev_16u(pSrc, value, pDst, len);
    bool zeroSeen = false;
#pragma omp parallel num_threads(2) reduction(|| : zeroSeen)
    {
        const int threads = omp_get_num_threads();
        const int chunk = len / threads;
        const int begin = omp_get_thread_num() * chunk;
        const int count = omp_get_thread_num() == threads - 1 ? len - begin : chunk;
        zeroSeen = ownveksDivCRev_16u(pSrc + begin, value, pDst + begin, count) == vekStsDivByZero;
    }
    return zeroSeen ? vekStsDivByZero : vekStsOk;
}

VekStatus veksDivCRev_16u(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len)
{
    constexpr int parallelLength = 2048;
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    if (value == 0) {
        const bool zeroSeen = std::find(pSrc, pSrc + len, 0) != pSrc + len;
        std::fill_n(pDst, len, uint16_t{0});
        return zeroSeen ? vekStsDivByZero : vekStsOk;
    }
    return len >= parallelLength ? ownveksDivCRev_16u_omp(pSrc, value, pDst, len)
                                 : ownveksDivCRev_16u(pSrc, value, pDst, len);
}

VekStatus veksDivCRev_16u_I(uint16_t value, uint16_t* pSrcDst, int len)
{
    return veksDivCRev_16u(pSrcDst, value, pSrcDst, len);
}

void ownsMul_16u16s_PosSfs(const uint16_t* pTable, const int16_t* pSrc, int16_t* pDst, int len, int scaleFactor)
{
    int i = 0;
    if (scaleFactor == 15)
        for (; i + 16 <= len; i += 16) storeU(pDst + i, mulQ15TiesToEven(loadU(pSrc + i), loadU(pTable + i)));
    const int shift = std::min(scaleFactor, 62);  // every product is below 2^32: more makes no difference
    for (; i < len; ++i) {
        const int64_t product = int64_t{loadScalar<int16_t>(pSrc + i)} * loadScalar<uint16_t>(pTable + i);
        const int64_t half = int64_t{1} << (shift - 1);
        const int64_t odd = product >> shift & 1;
        const int64_t rounded = (product + half - 1 + odd) >> shift;
        storeScalar(pDst + i, static_cast<int16_t>(std::clamp<int64_t>(rounded, -32768, 32767)));
    }
}

}  // namespace q3
