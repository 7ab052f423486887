/** @file
 *  Core services: processor features, aligned allocation, cache size, thread count. Thread-safe throughout. */
#ifndef VEKCORE_H
#define VEKCORE_H

#include <stdint.h>

/** @def VEKCORE_API
 *  Marks an exported function: C linkage, visible outside the library. */
#ifdef __cplusplus
#define VEKCORE_API extern "C" __attribute__((visibility("default")))
#else
#define VEKCORE_API __attribute__((visibility("default")))
#endif

/** @name Bits of the feature mask
 *  A bit stands for an instruction set that the processor has and, where it needs saved register state (AVX, FMA, F16C,
 *  AVX2, AVX-512), that the operating system has enabled.
 *  @{ */
#define VEK_CPU_SSE2 UINT64_C(0x1)        /**< SSE2 */
#define VEK_CPU_SSE3 UINT64_C(0x2)        /**< SSE3 */
#define VEK_CPU_SSSE3 UINT64_C(0x4)       /**< SSSE3 */
#define VEK_CPU_SSE41 UINT64_C(0x8)       /**< SSE4.1 */
#define VEK_CPU_AVX2 UINT64_C(0x10)       /**< AVX2; with VEK_CPU_FMA, what this library needs */
#define VEK_CPU_FMA UINT64_C(0x20)        /**< FMA with three operands */
#define VEK_CPU_SSE42 UINT64_C(0x40)      /**< SSE4.2 */
#define VEK_CPU_AVX UINT64_C(0x80)        /**< AVX */
#define VEK_CPU_POPCNT UINT64_C(0x100)    /**< POPCNT */
#define VEK_CPU_LZCNT UINT64_C(0x200)     /**< LZCNT */
#define VEK_CPU_BMI1 UINT64_C(0x400)      /**< BMI1 */
#define VEK_CPU_BMI2 UINT64_C(0x800)      /**< BMI2 */
#define VEK_CPU_F16C UINT64_C(0x1000)     /**< F16C */
#define VEK_CPU_MOVBE UINT64_C(0x2000)    /**< MOVBE */
#define VEK_CPU_AVX512F UINT64_C(0x4000)  /**< AVX-512 Foundation */
#define VEK_CPU_AVX512BW UINT64_C(0x8000) /**< AVX-512 Byte and Word */
/** @} */

/** Detects the processor's features.
 *  @param pFeatures  receives the feature mask; may be null
 *  @param pCpuInfo   receives registers eax, ebx, ecx, edx of CPUID leaf 1; may be null
 *  @return 0 */
VEKCORE_API int32_t vekGetCpuFeatures(uint64_t* pFeatures, uint32_t pCpuInfo[4]);

/** Returns the mask of the features that the library may use. Detects them on the first call. */
VEKCORE_API uint64_t vekGetEnabledCpuFeatures(void);

/** Allocates at least `length` bytes at a 64-byte boundary.
 *  @return the block, to be released by vekFree(), or null if `length` is below 1 or memory is short */
VEKCORE_API void* vekMalloc(int32_t length);

/** Releases a block that vekMalloc() gave. Null is accepted. */
VEKCORE_API void vekFree(void* p);

/** Reports the size of the processor's largest data or unified cache, in bytes.
 *  @return 0; or -1 with nothing stored if `pSize` is null or the processor does not tell */
VEKCORE_API int32_t vekGetMaxCacheSizeB(int32_t* pSize);

/** Returns the number of threads that a parallel region may use, at least 1: the OpenMP runtime's own setting
 *  (OMP_NUM_THREADS, omp_set_num_threads), but no more than the processors that the process may run on. */
VEKCORE_API int32_t ownGetNumThreads(void);

#endif
