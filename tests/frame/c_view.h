/* The public types as a C99 compiler lays them out. */
#ifndef VEK_TESTS_FRAME_C_VIEW_H
#define VEK_TESTS_FRAME_C_VIEW_H

#include <stddef.h>

#include "vekj.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CView {
    size_t sizeofVekStatus;
    size_t sizeofVekSize;
    size_t offsetofWidth;
    size_t offsetofHeight;
    size_t sizeofVekRect;
    size_t offsetsInVekRect[4];
    size_t sizeofVekLibVersion;
    size_t offsetofVersionMinor;
    size_t offsetofTierTag;
    size_t offsetofLibraryName;
    size_t offsetofVersionText;
    size_t offsetofBuildDateText;
    int everyStatus[19];
} CView;

CView cView(void);
const VekLibVersion* versionAskedFromC(void);

#ifdef __cplusplus
}
#endif

#endif
