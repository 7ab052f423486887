// One level of the wavelet transform of a plane, by the library.
#ifndef VEKPIX_JPEG2000_WAVELETS_H
#define VEKPIX_JPEG2000_WAVELETS_H

#include <vector>

#include "jpeg2000/plane.h"
#include "jpeg2000/tile_layout.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg2000 {

class Wavelet {
public:
    explicit Wavelet(bool reversible) : reversible_(reversible) {}

    // `rect` tells the position of the plane's first samples, and how many to transform.
    void forward(const Plane& plane, const Rect& rect)
    {
        run(plane, rect, reversible_ ? vekiWTFwd_B53_JPEG2K_32s_C1IR : vekiWTFwd_D97_JPEG2K_32s_C1IR);
    }
    void inverse(const Plane& plane, const Rect& rect)
    {
        run(plane, rect, reversible_ ? vekiWTInv_B53_JPEG2K_32s_C1IR : vekiWTInv_D97_JPEG2K_32s_C1IR);
    }

private:
    using Transform = VekStatus (*)(int32_t*, int, const VekRect*, uint8_t*);

    void run(const Plane& plane, const Rect& rect, Transform transform)
    {
        if (rect.empty())
            return;
        const VekRect area = {rect.x0, rect.y0, rect.width(), rect.height()};
        int size = 0;
        expectOk(
            (reversible_ ? vekiWTGetBufSize_B53_JPEG2K_32s_C1IR : vekiWTGetBufSize_D97_JPEG2K_32s_C1IR)(&area, &size),
            "vekiWTGetBufSize");
        if (buffer_.size() <= static_cast<size_t>(size))
            buffer_.resize(static_cast<size_t>(size) + 1);
        expectOk(transform(plane.samples, plane.stepBytes(), &area, buffer_.data()), "the wavelet transform");
    }

    bool reversible_;
    std::vector<uint8_t> buffer_;
};

}  // namespace vekpix::jpeg2000

#endif
