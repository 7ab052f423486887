#include "jpeg/samples/mcu_decode_forms.h"

namespace q3 {

static constexpr DecodeConstants decodeConstants(int16_t red, int16_t blue, int16_t greenCb, int16_t greenCr,
                                                 int32_t greenSummand)
{
    DecodeConstants c{};
    c.red.fill(red);
    c.blue.fill(blue);
    for (size_t i = 0; i < 16; i += 2) {
        c.green[i] = greenCb;
        c.green[i + 1] = greenCr;
    }
    c.greenSummand.fill(greenSummand);
    c.bias.fill(128);
    return c;
}

constinit const DecodeConstants DecodeFormA::constants = decodeConstants(13172, 25296, -5638, -11700, 2105344);
constinit const DecodeConstants DecodeFormB::constants = decodeConstants(13172, 25296, 22552, -18736, 4 * -2088960);
constinit const DecodeConstants DecodeScalarForm::constants = decodeConstants(26345, -14942, -22554, 18734, 0);

}  // namespace q3
