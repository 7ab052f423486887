// The argument checks that the row and column forms share, and their walk over rows.
#ifndef VEK_JPEG2K_TRANSFORM_WAVELET_ARGUMENTS_H
#define VEK_JPEG2K_TRANSFORM_WAVELET_ARGUMENTS_H

#include "frame/checks.h"
#include "frame/vec.h"

namespace q3 {

// A region of one plane.
template <typename T>
struct Region {
    T* data;
    int step;

    T* row(int y) const { return rowAt(data, step, y); }
};

// Results of this many bytes and more are stored past the cache: most would be driven out before they are read.
constexpr int64_t pastCacheBytes = int64_t{16} << 20;

// Whether two results for each sample of this size go there.
template <typename T>
inline bool storesPastCache(VekSize size)
{
    return 2 * int64_t{size.width} * size.height * int64_t{sizeof(T)} >= pastCacheBytes;
}

template <typename A, typename B, typename C>
inline VekStatus checkRegions(const Region<A>& a, const Region<B>& b, const Region<C>& c, VekSize roiSize)
{
    VEK_CHECK_POINTER(a.data);
    VEK_CHECK_POINTER(b.data);
    VEK_CHECK_POINTER(c.data);
    VEK_CHECK_STEP(a.step);
    VEK_CHECK_STEP(b.step);
    VEK_CHECK_STEP(c.step);
    VEK_CHECK_SIZE(roiSize);
    return vekStsOk;
}

}  // namespace q3

#endif
