// What all functions of column lifting do alike.
#ifndef VEK_JPEG2K_TRANSFORM_LIFT_ROWS_H
#define VEK_JPEG2K_TRANSFORM_LIFT_ROWS_H

#include "frame/checks.h"

namespace q3 {

// Checks rows and width, and calls kernel(rows, width).
template <auto kernel, class... Row>
VekStatus liftRows(int width, Row*... rows)
{
    VEK_CHECK(((rows != nullptr) && ...), vekStsNullPointer);
    VEK_CHECK_LENGTH(width);
    kernel(rows..., width);
    return vekStsOk;
}

}  // namespace q3

#endif
