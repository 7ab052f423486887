#include "frame/memory_kernels.h"

#include <array>
#include <cstring>

#include "frame/checks.h"
#include "frame/past_cache.h"
#include "frame/vec.h"
#include "vekcore.h"

namespace q3 {
namespace {

constexpr int stringMoveLength = 32768;        // bytes from which a string move copies
constexpr int64_t plainFillLength = 0x200000;  // bytes up to which a fill never bypasses the cache
constexpr int64_t longCopyTotal = 0x400001;    // bytes from which a copy of long rows may bypass the cache
constexpr int64_t longWidenTotal = 0x80001;    // 3 * samples from which a widening may

// Whether `length` exceeds the largest cache. No policy applies if its size is unknown.
bool exceedsCache(int64_t length)
{
    int32_t cacheSize = 0;
    return vekGetMaxCacheSizeB(&cacheSize) == 0 && cacheSize >= 1 && cacheSize < length;
}
bool reachesCache(int64_t length)
{
    int32_t cacheSize = 0;
    return vekGetMaxCacheSizeB(&cacheSize) == 0 && cacheSize >= 1 && cacheSize <= length;
}

uint8_t* ownsCopy_8u_AVX(const uint8_t* pSrc, uint8_t* pDst, int64_t len)
{
    int64_t i = 0;
    for (; i <= len - 128; i += 128) {
        const __m256i a = loadU(pSrc + i);
        const __m256i b = loadU(pSrc + i + 32);
        const __m256i c = loadU(pSrc + i + 64);
        const __m256i d = loadU(pSrc + i + 96);
        storeU(pDst + i, a);
        storeU(pDst + i + 32, b);
        storeU(pDst + i + 64, c);
        storeU(pDst + i + 96, d);
    }
    for (; i <= len - 32; i += 32) storeU(pDst + i, loadU(pSrc + i));
    std::memcpy(pDst + i, pSrc + i, static_cast<size_t>(len - i));
    return pDst;
}

uint8_t* ownsCopy_8u_repE9(const uint8_t* pSrc, uint8_t* pDst, int64_t len)
{
    void* to = pDst;
    const void* from = pSrc;
    __asm__ volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(len) : : "memory");
    return pDst;
}

// Vectors of one repeated byte in 64-byte steps past the cache; at least 64 bytes. The ends are ordinary stores.
void fillPastCache(uint8_t* pDst, int64_t len, __m256i pattern)
{
    const int64_t head = static_cast<int64_t>(-reinterpret_cast<uintptr_t>(pDst) & 63);
    storeU(pDst, pattern);
    storeU(pDst + 32, pattern);
    int64_t i = head;
    for (; i <= len - 64; i += 64) {
        _mm256_stream_si256(reinterpret_cast<__m256i*>(pDst + i), pattern);
        _mm256_stream_si256(reinterpret_cast<__m256i*>(pDst + i + 32), pattern);
    }
    _mm_sfence();
    storeU(pDst + len - 64, pattern);
    storeU(pDst + len - 32, pattern);
}

void fillPlain(uint8_t* pDst, int64_t len, uint8_t value)
{
    const __m256i v = _mm256_set1_epi8(static_cast<int8_t>(value));
    int64_t i = 0;
    for (; i <= len - 32; i += 32) storeU(pDst + i, v);
    std::memset(pDst + i, value, static_cast<size_t>(len - i));
}

void fill(uint8_t* pDst, int64_t len, uint8_t value)
{
    if (len > plainFillLength)
        ownsSet_8u(value, pDst, len);
    else
        fillPlain(pDst, len, value);
}

void owniCopy8u_E9(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, int64_t rowBytes, int height)
{
    for (int y = 0; y < height; ++y) ownsCopy_8u_AVX(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), rowBytes);
}

void owniCopy8u_cn(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, int64_t rowBytes, int height)
{
    const int64_t total = rowBytes * height;
    if (total < longCopyTotal || !exceedsCache(total)) {
        owniCopy8u_E9(pSrc, srcStep, pDst, dstStep, rowBytes, height);
        return;
    }
    for (int y = 0; y < height; ++y) copyPastCache(rowAt(pDst, dstStep, y), rowAt(pSrc, srcStep, y), rowBytes);
    _mm_sfence();
}

void owniCopy8uas(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, int64_t rowBytes, int height)
{
    owniCopy8u_E9(pSrc, srcStep, pDst, dstStep, rowBytes, height);
}

template <bool PastCache>
void widenRow(const uint8_t* pSrc, int16_t* pDst, int64_t len)
{
    int64_t i = 0;
    const bool stream = PastCache && isAligned(pDst, 2);
    if (stream)
        for (; i < len && !isAligned(pDst + i, 32); ++i) pDst[i] = pSrc[i];
    for (; i <= len - 16; i += 16) {
        const __m256i words = _mm256_cvtepu8_epi16(loadU128(pSrc + i));
        if (stream)
            _mm256_stream_si256(reinterpret_cast<__m256i*>(pDst + i), words);
        else
            storeU(pDst + i, words);
    }
    for (; i < len; ++i) storeScalar(pDst + i, static_cast<int16_t>(pSrc[i]));
}

void ownic_AndC_32s_C1R(const int32_t* pSrc, int32_t value, int32_t* pDst, int width)
{
    const __m256i mask = _mm256_set1_epi32(value);
    int x = 0;
    for (; x <= width - 8; x += 8) storeU(pDst + x, _mm256_and_si256(loadU(pSrc + x), mask));
    for (; x < width; ++x) storeScalar(pDst + x, loadScalar<int32_t>(pSrc + x) & value);
}

// Natural position of each zig-zag index (ITU T.81, Figure A.6).
constexpr std::array<uint8_t, 64> naturalPosition = [] {
    std::array<uint8_t, 64> t{};
    size_t k = 0;
    for (int d = 0; d < 15; ++d)
        for (int i = d > 7 ? d - 7 : 0; i <= (d < 7 ? d : 7); ++i)
            t[k++] = static_cast<uint8_t>(d % 2 != 0 ? i * 8 + (d - i) : (d - i) * 8 + i);
    return t;
}();
static_assert(naturalPosition[2] == 8 && naturalPosition[35] == 56 && naturalPosition[63] == 63);

}  // namespace

uint8_t* ownsCopy_8u(const uint8_t* pSrc, uint8_t* pDst, int len)
{
    return len < stringMoveLength ? ownsCopy_8u_AVX(pSrc, pDst, len) : ownsCopy_8u_repE9(pSrc, pDst, len);
}

VekStatus veksCopy_8u(const uint8_t* pSrc, uint8_t* pDst, int len)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    ownsCopy_8u(pSrc, pDst, len);
    return vekStsOk;
}

void ownsSet_8u(uint8_t value, uint8_t* pDst, int64_t len)
{
    if (exceedsCache(len) && len >= 64)
        fillPastCache(pDst, len, _mm256_set1_epi8(static_cast<int8_t>(value)));
    else
        fillPlain(pDst, len, value);
}

uint8_t* ownsZero_8u(uint8_t* pDst, int64_t len)
{
    ownsSet_8u(0, pDst, len);
    return pDst;
}

void ownsSet_32s(int32_t value, int32_t* pDst, int len)
{
    const int64_t bytes = int64_t{len} * 4;
    const __m256i v = _mm256_set1_epi32(value);
    if (bytes > plainFillLength && isAligned(pDst, 4) && exceedsCache(bytes)) {
        const int head = static_cast<int>(-reinterpret_cast<uintptr_t>(pDst) & 31) / 4;
        storeU(pDst, v);
        int i = head;
        for (; i <= len - 16; i += 16) {
            _mm256_stream_si256(reinterpret_cast<__m256i*>(pDst + i), v);
            _mm256_stream_si256(reinterpret_cast<__m256i*>(pDst + i + 8), v);
        }
        _mm_sfence();
        storeU(pDst + len - 16, v);
        storeU(pDst + len - 8, v);
        return;
    }
    int i = 0;
    for (; i <= len - 8; i += 8) storeU(pDst + i, v);
    for (; i < len; ++i) storeScalar(pDst + i, value);
}

VekStatus veksZero_8u(uint8_t* pDst, int len)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    fill(pDst, len, 0);
    return vekStsOk;
}

VekStatus veksZero_16s(int16_t* pDst, int len)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    fill(reinterpret_cast<uint8_t*>(pDst), int64_t{len} * 2, 0);
    return vekStsOk;
}

VekStatus veksZero_32f(float* pDst, int len)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    fill(reinterpret_cast<uint8_t*>(pDst), int64_t{len} * 4, 0);
    return vekStsOk;
}

VekStatus veksSet_8u(uint8_t value, uint8_t* pDst, int len)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(len);
    fill(pDst, len, value);
    return vekStsOk;
}

VekStatus vekiCopy_16s_C1R(const int16_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize)
{
    constexpr int longRowBytes = 1024;
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_SIZE(roiSize);
    const int64_t rowBytes = int64_t{roiSize.width} * 2;
    const auto copy = rowBytes < longRowBytes ? owniCopy8u_E9 : owniCopy8u_cn;
    copy(reinterpret_cast<const uint8_t*>(pSrc), srcStep, reinterpret_cast<uint8_t*>(pDst), dstStep, rowBytes,
         roiSize.height);
    return vekStsOk;
}

VekStatus vekiCopy_32f_C1R(const float* pSrc, int srcStep, float* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_SIZE(roiSize);
    owniCopy8uas(reinterpret_cast<const uint8_t*>(pSrc), srcStep, reinterpret_cast<uint8_t*>(pDst), dstStep,
                 int64_t{roiSize.width} * 4, roiSize.height);
    return vekStsOk;
}

VekStatus vekiConvert_8u16s_C1R(const uint8_t* pSrc, int srcStep, int16_t* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_SIZE(roiSize);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_STEP(dstStep);
    int64_t width = roiSize.width;
    int height = roiSize.height;
    const int64_t moved = 3 * width * height;
    if (srcStep == width && int64_t{dstStep} == 2 * int64_t{srcStep}) {  // one long row
        width *= height;
        height = 1;
    }
    const bool pastCache = moved >= longWidenTotal && reachesCache(moved);
    for (int y = 0; y < height; ++y) {
        if (pastCache)
            widenRow<true>(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), width);
        else
            widenRow<false>(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), width);
    }
    if (pastCache)
        _mm_sfence();
    return vekStsOk;
}

VekStatus vekiConvert_8u16u_C1R(const uint8_t* pSrc, int srcStep, uint16_t* pDst, int dstStep, VekSize roiSize)
{
    return vekiConvert_8u16s_C1R(pSrc, srcStep, reinterpret_cast<int16_t*>(pDst), dstStep, roiSize);
}

VekStatus vekiAndC_32s_C1R(const int32_t* pSrc, int srcStep, int32_t value, int32_t* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_STEP(srcStep);
    VEK_CHECK_STEP(dstStep);
    VEK_CHECK_SIZE(roiSize);
    for (int y = 0; y < roiSize.height; ++y)
        ownic_AndC_32s_C1R(rowAt(pSrc, srcStep, y), value, rowAt(pDst, dstStep, y), roiSize.width);
    return vekStsOk;
}

VekStatus vekiAndC_32s_C1IR(int32_t value, int32_t* pSrcDst, int srcDstStep, VekSize roiSize)
{
    return vekiAndC_32s_C1R(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize);
}

VekStatus vekiZigzagInv8x8_16s_C1(const int16_t* pSrc, int16_t* pDst)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    std::array<int16_t, 64> natural;
    for (size_t i = 0; i < 64; ++i) natural[naturalPosition[i]] = loadScalar<int16_t>(pSrc + i);
    std::memcpy(pDst, natural.data(), sizeof natural);
    return vekStsOk;
}

}  // namespace q3
