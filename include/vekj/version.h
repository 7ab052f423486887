/** @file
 *  The version record of the library. */
#ifndef VEKJ_VERSION_H
#define VEKJ_VERSION_H

#include "vekj/types.h"

/** The library's version; a constant object that the library owns. */
typedef struct VekLibVersion {
    int32_t versionMajor;      /**< 7 */
    int32_t versionMinor;      /**< 1 */
    int32_t buildMajor;        /**< 1 */
    int32_t buildNumber;       /**< 37466 */
    char tierTag[4];           /**< processor tier "q3", padded with zero bytes */
    const char* libraryName;   /**< name, and in brackets the tier */
    const char* versionText;   /**< the first three numbers, and `buildNumber` behind an "r" */
    const char* buildDateText; /**< month, day, year */
} VekLibVersion;

/** Returns the version record: the same pointer on every call, from any thread. Cannot fail; nobody frees the record.
 */
VEK_API const VekLibVersion* vekjGetLibVersion(void);

#endif
