#include "reference/jpeg/quantisation.h"

#include "reference/jpeg/huffman.h"

namespace model {

uint8_t scaledByQuality(uint8_t entry, int32_t quality)
{
    const int32_t scale = quality < 50 ? 5000 / quality : wrap32(200 - 2 * int64_t{quality});
    const int32_t product = wrap32(int64_t{entry} * scale);
    const int32_t v = wrap32(int64_t{product} + 50) / 100;  // towards zero
    return static_cast<uint8_t>(v < 1 ? 1 : v > 255 ? 255 : v);
}

QuantTable inverseTable(const RawTable& zigzagOrder)
{
    QuantTable natural{};
    for (size_t k = 0; k < 64; ++k) natural[static_cast<size_t>(zigzag[k])] = zigzagOrder[k];
    return natural;
}

QuantTable forwardTable(const RawTable& zigzagOrder)
{
    QuantTable table = inverseTable(zigzagOrder);
    for (uint16_t& t : table) {
        const int step = t;
        // 2 * 32768 / step, halved with rounding; only steps of powers of two could tie, and they divide 32768.
        t = static_cast<uint16_t>(step == 0 ? 65535 : (65536 / step + 1) / 2);
    }
    return table;
}

}  // namespace model
