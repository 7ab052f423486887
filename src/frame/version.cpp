#include "frame/implementations.h"

namespace q3 {

const VekLibVersion* vekjGetLibVersion()
{
    static constexpr VekLibVersion version = {
        .versionMajor = 7,
        .versionMinor = 1,
        .buildMajor = 1,
        .buildNumber = 37466,
        .tierTag = {'q', '3', 0, 0},
        .libraryName = "vekJP AVX2 (q3)",
        .versionText = "7.1.1 (r37466)",
        .buildDateText = "Sep 24 2012",
    };
    return &version;
}

}  // namespace q3
