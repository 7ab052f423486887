#include "reference/jpeg/dct_constants.h"

#include <bit>
#include <cmath>
#include <numbers>

namespace model {

static_assert(std::bit_cast<uint32_t>(floatCosine4) == 0x3F3504F3);
static_assert(std::bit_cast<uint32_t>(floatTangent1) == 0x3E4BAFAF);
static_assert(std::bit_cast<uint32_t>(floatTangent2) == 0x3ED413CD);
static_assert(std::bit_cast<uint32_t>(floatTangent3) == 0x3F2B0DC1);

float scale(size_t row, size_t column)
{
    const auto s = [](size_t k) {
        if (k % 4 == 0)
            return 1.0L;
        const size_t folded = k < 4 ? k : 8 - k;
        return std::numbers::sqrt2_v<long double> *
               std::cos(static_cast<long double>(folded) * std::numbers::pi_v<long double> / 16);
    };
    return static_cast<float>(s(row) * s(column) / 8);
}

}  // namespace model
