// Declares the implementation of every exported function, in namespace q3, with the type of its public declaration: an
// implementation file that includes this and disagrees with the header does not compile.
#ifndef VEK_FRAME_IMPLEMENTATIONS_H
#define VEK_FRAME_IMPLEMENTATIONS_H

#include "vekj.h"

namespace q3 {
#define VEK_EXPORT(name) decltype(::name) name;
#include "frame/exports.def"
#undef VEK_EXPORT
}  // namespace q3

#endif
