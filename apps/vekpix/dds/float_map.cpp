#include "dds/float_map.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>

#include "error.h"

namespace vekpix::dds {

// Of a half-precision number's bits; exact. Infinities and what is no number stay so.
float numberOfHalf(uint16_t half)
{
    const uint32_t sign = (half & 0x8000U) << 16;
    const uint32_t exponent = half >> 10 & 31;
    const uint32_t fraction = half & 0x3FFU;
    if (exponent == 0)
        return std::copysign(std::ldexp(static_cast<float>(fraction), -24), std::bit_cast<float>(sign));
    const uint32_t wideExponent = exponent == 31 ? 255 : exponent + 112;
    return std::bit_cast<float>(sign | wideExponent << 23 | fraction << 13);
}

void writeFloatMap(std::span<const uint8_t> file, const DecodeOptions& options, ByteSink& sink,
                   const std::function<void(int)>& onRows)
{
    const Chosen chosen = choose(file, options);
    const Surface& surface = chosen.surface;
    if (!isFloat(chosen.texture.format))
        throw Error("only a BC6H texture becomes a .pfm file");
    // The scale of -1 tells that the numbers are little-endian.
    const std::string header =
        "PF\n" + std::to_string(surface.width) + " " + std::to_string(surface.height) + "\n-1.0\n";
    sink.write({reinterpret_cast<const uint8_t*>(header.data()), header.size()});

    BlockDecoder blocks(chosen.texture.format, surface, file.data() + surface.offset, options.threads);
    constexpr size_t bandBlocks = 16;
    std::vector<uint8_t> decoded(4 * std::min(bandBlocks, surface.blocksHigh) * blocks.rowBytes());
    std::vector<float> numbers(3 * static_cast<size_t>(surface.width));
    size_t bottom = static_cast<size_t>(surface.height);
    for (size_t band = (surface.blocksHigh + bandBlocks - 1) / bandBlocks; band-- > 0;) {
        const size_t first = band * bandBlocks;
        blocks.decode(first, std::min(bandBlocks, surface.blocksHigh - first), decoded.data());
        const size_t top = 4 * first;
        for (size_t y = bottom; y-- > top;) {
            const uint8_t* row = decoded.data() + (y - top) * blocks.rowBytes();
            for (size_t i = 0; i < numbers.size(); ++i) {
                uint16_t half = 0;
                std::memcpy(&half, row + 2 * i, sizeof half);
                numbers[i] = numberOfHalf(half);
            }
            sink.write({reinterpret_cast<const uint8_t*>(numbers.data()), numbers.size() * sizeof(float)});
        }
        if (onRows)
            onRows(static_cast<int>(bottom - top));
        bottom = top;
    }
}

}  // namespace vekpix::dds
