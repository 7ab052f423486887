// The slot table: the exported symbol `name` jumps through `name_arraddr`. A build with several processor tiers would
// fill the slots by tier; this one has a single tier and fills them when it is linked.
#include "frame/implementations.h"

#define VEK_EXPORT(name)                               \
    extern "C" decltype(::name)* const name##_arraddr; \
    decltype(::name)* const name##_arraddr = &q3::name;
#include "frame/exports.def"
#undef VEK_EXPORT
