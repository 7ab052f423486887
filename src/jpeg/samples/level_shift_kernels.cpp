#include "jpeg/samples/level_shift_kernels.h"

#include <algorithm>

#include "frame/parallel_rows.h"
#include "frame/vec.h"

namespace q3 {
namespace {

// The processor's own prefetching stops at the end of a page; ordinary stores to a line that is not there wait for it.
// A prefetch beyond the rows is no access.
inline void prefetchAhead(const void* p)
{
    constexpr uintptr_t distance = 2048;
    _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<uintptr_t>(p) + distance), _MM_HINT_T0);
}

}  // namespace

void ownjc_Sub128_JPEG_8u16s_C1(const uint8_t* pSrc, int16_t* pDst, int len)
{
    const __m256i bias = _mm256_set1_epi16(128);
    const auto shifted = [&](int i) { return _mm256_sub_epi16(_mm256_cvtepu8_epi16(loadU128(pSrc + i)), bias); };
    int i = 0;
    for (; i <= len - 64; i += 64) {
        prefetchAhead(pSrc + i);
        prefetchAhead(pDst + i);
        prefetchAhead(pDst + i + 32);
        storeU(pDst + i, shifted(i));
        storeU(pDst + i + 16, shifted(i + 16));
        storeU(pDst + i + 32, shifted(i + 32));
        storeU(pDst + i + 48, shifted(i + 48));
    }
    for (; i <= len - 16; i += 16) storeU(pDst + i, shifted(i));
    for (; i < len; ++i) storeScalar(pDst + i, static_cast<int16_t>(pSrc[i] - 128));
}

void ownjc_Add128_JPEG_16s8u_C1(const int16_t* pSrc, uint8_t* pDst, int len)
{
    // Saturated to a signed byte, then the sign bit turned: that is the sum clipped to 0 .. 255.
    const __m256i signBit = _mm256_set1_epi8(-128);
    const auto shifted = [&](int i) {
        const __m256i bytes = _mm256_packs_epi16(loadU(pSrc + i), loadU(pSrc + i + 16));
        return _mm256_xor_si256(_mm256_permute4x64_epi64(bytes, 0xD8), signBit);
    };
    int i = 0;
    for (; i <= len - 64; i += 64) {
        prefetchAhead(pSrc + i);
        prefetchAhead(pSrc + i + 32);
        prefetchAhead(pDst + i);
        storeU(pDst + i, shifted(i));
        storeU(pDst + i + 32, shifted(i + 32));
    }
    for (; i <= len - 32; i += 32) storeU(pDst + i, shifted(i));
    for (; i < len; ++i) pDst[i] = static_cast<uint8_t>(std::clamp(loadScalar<int16_t>(pSrc + i) + 128, 0, 255));
}

void ownjc_Sub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize)
{
    forEachRow(roiSize, [=](int y) {
        ownjc_Sub128_JPEG_8u16s_C1(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), roiSize.width);
    });
}

void ownjc_Add128_JPEG_16s8u_C1R(const int16_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, VekSize roiSize)
{
    forEachRow(roiSize, [=](int y) {
        ownjc_Add128_JPEG_16s8u_C1(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), roiSize.width);
    });
}

}  // namespace q3
