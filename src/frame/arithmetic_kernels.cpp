#include "frame/arithmetic_kernels.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/checks.h"
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

// quotient() of eight 32-bit divisors other than 0
inline __m256i quotients(__m256 value, __m256i divisors)
{
    return _mm256_cvtps_epi32(_mm256_div_ps(value, _mm256_cvtepi32_ps(divisors)));
}

// x * t / 32768, to the nearest integer with ties to even, saturated; x signed, t unsigned, 16 lanes.
//   r = mulhrs(x, t as signed) rounds ties up: a tie that went to an odd number goes back by one
//   t >= 32768 reads as t - 65536: 2 x is missing, an even number, which leaves the ties as they are
inline __m256i mulQ15TiesToEven(__m256i x, __m256i t)
{
    const __m256i lowProduct = _mm256_and_si256(_mm256_mullo_epi16(x, t), _mm256_set1_epi16(0x7FFF));
    const __m256i tie = _mm256_cmpeq_epi16(lowProduct, _mm256_set1_epi16(0x4000));
    const __m256i up = _mm256_mulhrs_epi16(x, t);
    const __m256i odd = _mm256_and_si256(up, _mm256_set1_epi16(1));
    const __m256i even = _mm256_sub_epi16(up, _mm256_and_si256(tie, odd));
    const __m256i missing = _mm256_and_si256(x, _mm256_srai_epi16(t, 15));
    return _mm256_adds_epi16(_mm256_adds_epi16(even, missing), missing);
}

}  // namespace

VekStatus ownveksDivCRev_16u(const uint16_t* pSrc, uint16_t value, uint16_t* pDst, int len)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256 value32f = _mm256_set1_ps(static_cast<float>(value));
    __m256i zeros = zero;
    int i = 0;
    for (; i <= len - 16; i += 16) {
        const __m256i d = loadU(pSrc + i);
        const __m256i isZero = _mm256_cmpeq_epi16(d, zero);
        const __m256i divisors = _mm256_sub_epi16(d, isZero);  // 1 for 0: a division by it may trap
        const __m256i low = quotients(value32f, _mm256_unpacklo_epi16(divisors, zero));
        const __m256i high = quotients(value32f, _mm256_unpackhi_epi16(divisors, zero));
        storeU(pDst + i, _mm256_or_si256(_mm256_packus_epi32(low, high), isZero));
        zeros = _mm256_or_si256(zeros, isZero);
    }
    bool zeroSeen = _mm256_testz_si256(zeros, zeros) == 0;
    for (; i < len; ++i) {
        const auto d = loadScalar<uint16_t>(pSrc + i);
        zeroSeen |= d == 0;
        storeScalar(pDst + i, d == 0 ? uint16_t{65535} : quotient(value, d));
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
        bool zeroSeen = false;
        for (int i = 0; i < len; ++i) zeroSeen |= loadScalar<uint16_t>(pSrc + i) == 0;
        std::memset(pDst, 0, static_cast<size_t>(len) * sizeof(uint16_t));
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
        for (; i <= len - 16; i += 16) storeU(pDst + i, mulQ15TiesToEven(loadU(pSrc + i), loadU(pTable + i)));
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
