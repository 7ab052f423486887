// The vocabulary of argument checks. Each returns from the calling function with its status if the check fails; a
// function lists them in the order that is part of its contract.
#ifndef VEK_FRAME_CHECKS_H
#define VEK_FRAME_CHECKS_H

#include "vekj/types.h"

#define VEK_CHECK(condition, status)   \
    do {                               \
        if (!(condition)) [[unlikely]] \
            return (status);           \
    } while (false)

#define VEK_CHECK_POINTER(pointer) VEK_CHECK((pointer) != nullptr, vekStsNullPointer)
#define VEK_CHECK_STEP(step) VEK_CHECK((step) >= 1, vekStsBadStep)
#define VEK_CHECK_SIZE(size) VEK_CHECK((size).width >= 1 && (size).height >= 1, vekStsBadSize)
#define VEK_CHECK_LENGTH(length) VEK_CHECK((length) >= 1, vekStsBadSize)
#define VEK_CHECK_PLANES(planes, count) \
    for (int plane_ = 0; plane_ < (count); ++plane_) VEK_CHECK_POINTER((planes)[plane_])

#endif
