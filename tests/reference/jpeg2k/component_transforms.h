// Models of the multiple-component transforms (ISO/IEC 15444-1, Annex G), one pixel at a time.
#ifndef VEK_TESTS_REFERENCE_JPEG2K_COMPONENT_TRANSFORMS_H
#define VEK_TESTS_REFERENCE_JPEG2K_COMPONENT_TRANSFORMS_H

#include <array>
#include <cstdint>

namespace model {

// R, G, B or the three planes: Y, B - G, R - G of the reversible transform, Y, Cb, Cr of the irreversible one.
template <typename T>
using Components = std::array<T, 3>;

Components<int16_t> rctForward(Components<int16_t> rgb);
Components<int32_t> rctForward(Components<int32_t> rgb);
Components<int16_t> rctInverse(Components<int16_t> planes);
Components<int32_t> rctInverse(Components<int32_t> planes);

Components<int16_t> ictForward(Components<int16_t> rgb);
Components<int32_t> ictForward(Components<int32_t> rgb);
Components<float> ictForward(Components<float> rgb);
Components<int16_t> ictInverse(Components<int16_t> planes);
Components<int32_t> ictInverse(Components<int32_t> planes);
Components<float> ictInverse(Components<float> planes);

}  // namespace model

#endif
