#include "jpeg/samples/mcu_pixel_stores.h"

namespace q3 {

template <Fields fields>
static constexpr typename StoreBGR16<fields>::Constants bgr16Constants()
{
    typename StoreBGR16<fields>::Constants c{};
    c.keptBlue.fill(0xF8);
    c.keptGreen.fill(fields == Fields::F555 ? 0xF8 : 0xFC);
    c.keptRed.fill(fields == Fields::F555 ? 0x7C : 0xF8);
    for (size_t i = 0; i < 32; i += 2) {
        c.factors[i] = 1;
        c.factors[i + 1] = fields == Fields::F555 ? 32 : 64;
    }
    return c;
}

template <>
constinit const StoreBGR16<Fields::F555>::Constants StoreBGR16<Fields::F555>::constants =
    bgr16Constants<Fields::F555>();
template <>
constinit const StoreBGR16<Fields::F565>::Constants StoreBGR16<Fields::F565>::constants =
    bgr16Constants<Fields::F565>();

constinit const StoreCMYK::Constants StoreCMYK::constants = [] {
    StoreCMYK::Constants c{};
    c.complement.fill(0x00FFFFFF);
    return c;
}();

}  // namespace q3
