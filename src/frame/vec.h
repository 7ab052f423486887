// The few vector idioms that more than one family uses.
#ifndef VEK_FRAME_VEC_H
#define VEK_FRAME_VEC_H

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace q3 {

// Unaligned loads and stores.
inline __m128i loadU128(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline __m256i loadU(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void storeU128(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline void storeU(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

// 8 bytes in the low or the high half of a vector.
inline __m128i loadLow64(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline void storeLow64(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }
inline void storeHigh64(void* p, __m128i v) { _mm_storeh_pi(static_cast<__m64*>(p), _mm_castsi128_ps(v)); }

// One scalar at any address.
template <typename T>
inline T loadScalar(const void* p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}
template <typename T>
inline void storeScalar(void* p, T value)
{
    std::memcpy(p, &value, sizeof value);
}

// The row that lies `y` steps of `step` bytes below `p`.
template <typename T>
inline T* rowAt(T* p, int64_t step, int y)
{
    using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(p) + step * y);
}

inline bool isAligned(const void* p, uintptr_t alignment) { return reinterpret_cast<uintptr_t>(p) % alignment == 0; }

}  // namespace q3

#endif
