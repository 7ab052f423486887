/** @file
 *  The version record of the library. */
#ifndef VEKJ_VERSION_H
#define VEKJ_VERSION_H

#include "vekj/types.h"

/** The library's version; a constant object that the library owns. */
typedef struct VekLibVersion {
    int32_t versionMajor;
    int32_t versionMinor;
    int32_t buildMajor;
    int32_t buildNumber;
    char tierTag[4]; /**< processor tier, padded with zero bytes */
    const char* libraryName;
    const char* versionText; /**< carries `buildNumber` behind its "r" */
    const char* buildDateText;
} VekLibVersion;

/** Returns the version record: the same pointer on every call, from any thread. Cannot fail; nobody frees the record.
 */
VEK_API const VekLibVersion* vekjGetLibVersion(void);

#endif
