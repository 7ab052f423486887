/** @file
 *  Types, status codes and the export macro that every family shares. */
#ifndef VEKJ_TYPES_H
#define VEKJ_TYPES_H

#include <stdint.h>

/** @def VEK_API
 *  Marks an exported function: C linkage, visible outside the library. */
#ifdef __cplusplus
#define VEK_API extern "C" __attribute__((visibility("default")))
#else
#define VEK_API __attribute__((visibility("default")))
#endif

/** Result of a call: 0 is success, a negative value an error, a positive value a warning with the work done. */
typedef int32_t VekStatus;

#ifdef __cplusplus
enum : VekStatus
#else
enum
#endif
{
    vekStsDivByZero = 6,          /**< Warning: a divisor was zero; the results were stored all the same. */
    vekStsOddSize = 35,           /**< Warning: an odd width or height; the last column or row was left undone. */
    vekStsOk = 0,                 /**< Success. */
    vekStsJpegCoefOverrun = -2,   /**< A run carried the coefficient position past the end of the block. */
    vekStsBadArgument = -5,       /**< A scalar argument is outside its domain. */
    vekStsBadSize = -6,           /**< A width, height or length is below its minimum or not of the required form. */
    vekStsOutOfRange = -7,        /**< A value is outside the range that the format can carry. */
    vekStsNullPointer = -8,       /**< A required pointer is null; in the JPEG Huffman allocators also: no memory. */
    vekStsNoMemory = -9,          /**< Allocation failed. */
    vekStsBadStep = -14,          /**< A row step is below 1, or too small for the row that it must span. */
    vekStsContextMismatch = -17,  /**< A state object does not bear its magic number. */
    vekStsJpegOutOfBuffer = -62,  /**< JPEG: the source ended before the bits asked for, or the destination is full. */
    vekStsJpegMarkerShort = -63,  /**< JPEG: a marker came before the bits asked for, no code matched, or a value's
                                       category is too large for its table. */
    vekStsJpegHuffmanTable = -64, /**< JPEG: an invalid Huffman table, or a symbol that has no code. */
    vekStsJpeg2KCorruptCodeBlock = -112, /**< JPEG 2000: the code-block decoder found corrupt data. */
    vekStsJpeg2KBadPassNumber = -113,    /**< JPEG 2000: a pass index beyond the passes that the encoder holds. */
    vekStsTiffRowFormat = -124,          /**< TIFF: a PackBits row ended early or would overrun its destination. */
    vekStsJpeg2KNotAttached = -180,      /**< JPEG 2000: a step before a code-block was attached. */
    vekStsBadBlockMode = -9999           /**< BC7: a mode above 7. */
};

/** Width and height of a region, in samples or pixels; passed by value. */
typedef struct VekSize {
    int32_t width;  /**< samples or pixels in a row */
    int32_t height; /**< rows */
} VekSize;

/** A rectangle on a reference grid: its first sample, and its size. */
typedef struct VekRect {
    int32_t x;      /**< column of the first sample */
    int32_t y;      /**< row of the first sample */
    int32_t width;  /**< samples in a row */
    int32_t height; /**< rows */
} VekRect;

#endif
