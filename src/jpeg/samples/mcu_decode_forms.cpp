#include "jpeg/samples/mcu_decode_forms.h"

namespace q3 {

constinit const DecodeFormA::Constants DecodeFormA::constants = [] {
    Constants c{};
    c.red.fill(13172);
    c.blue.fill(25296);
    c.bias.fill(128);
    for (size_t i = 0; i < 16; i += 2) {
        c.green[i] = -5638;
        c.green[i + 1] = -11700;
    }
    c.greenBias.fill(2105344);
    return c;
}();

}  // namespace q3
