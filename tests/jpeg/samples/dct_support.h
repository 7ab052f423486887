// Inputs and memory for the tests of the DCT.
#ifndef VEK_TESTS_JPEG_SAMPLES_DCT_SUPPORT_H
#define VEK_TESTS_JPEG_SAMPLES_DCT_SUPPORT_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>

#include "reference/jpeg/dct_constants.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"

namespace dct {

using model::Block;
using model::FloatBlock;
using model::Table;
using support::Guard;
using support::GuardedBytes;
using support::Random;

constexpr int blocksPerKind = support::underSanitizer ? 200 : 10000;

enum class Kind { nominal, sparse, coarse, any, extreme, saturating, constant };
constexpr Kind kinds[] = {Kind::nominal, Kind::sparse,     Kind::coarse,  Kind::any,
                          Kind::extreme, Kind::saturating, Kind::constant};

inline void PrintTo(Kind kind, std::ostream* os)
{
    constexpr const char* names[] = {"nominal", "sparse", "coarse", "any", "extreme", "saturating", "constant"};
    *os << names[static_cast<int>(kind)];
}

// Blocks of samples or of coefficients. Saturating: the ends of the range in the sign patterns of the transform's own
// sums, and in random ones, so that sums of products leave 32 bits.
inline Block makeBlock(Random& random, Kind kind)
{
    Block block{};
    const int rowPattern = random.in(0, 255);
    const int columnPattern = random.in(0, 255);
    const auto constant = random.extreme<int16_t>();
    for (size_t i = 0; i < 64; ++i) {
        const bool negative = ((rowPattern >> (i / 8) ^ columnPattern >> (i % 8)) & 1) != 0;
        switch (kind) {
            case Kind::nominal:
                block[i] = random.in<int16_t>(-128, 127);
                break;
            case Kind::sparse:
                block[i] = random.chance(15) ? random.in<int16_t>(-1024, 1023) : int16_t{0};
                break;
            case Kind::coarse:
                block[i] = random.in<int16_t>(-3000, 3000);
                break;
            case Kind::any:
                block[i] = random.any<int16_t>();
                break;
            case Kind::extreme:
                block[i] = random.extreme<int16_t>();
                break;
            case Kind::saturating:
                block[i] = negative ? int16_t{-32768} : int16_t{32767};
                break;
            case Kind::constant:
                block[i] = constant;
                break;
        }
    }
    return block;
}

// Entries of one value that matters, or of many.
inline Table makeTable(Random& random)
{
    static constexpr uint16_t marked[] = {0, 1, 32767, 32768, 65535};
    Table table{};
    const int which = random.in(0, 8);
    for (uint16_t& entry : table) {
        if (which < 5)
            entry = marked[which];
        else if (which == 5)
            entry = marked[random.in(0, 4)];
        else if (which == 6)
            entry = random.any<uint16_t>();
        else
            entry = random.in<uint16_t>(1, 255);
    }
    return table;
}

inline FloatBlock filled(float value)
{
    FloatBlock block;
    block.fill(value);
    return block;
}
template <typename T>
std::array<T, 64> filledBlock(T value)
{
    std::array<T, 64> block;
    block.fill(value);
    return block;
}

// Equal to the bit.
template <typename T>
bool same(const std::array<T, 64>& a, const std::array<T, 64>& b)
{
    return std::memcmp(a.data(), b.data(), sizeof a) == 0;
}
inline bool hasNaN(const FloatBlock& block)
{
    return std::any_of(block.begin(), block.end(), [](float v) { return std::isnan(v); });
}

// A copy of `count` elements in guarded memory, at any address.
template <typename T>
class Placed {
public:
    Placed(const T* values, size_t count, Guard guard = Guard::Behind, size_t misalignment = 0)
        : bytes_(count * sizeof(T), guard, misalignment)
    {
        std::memcpy(bytes_.data(), values, count * sizeof(T));
    }
    template <size_t count>
    explicit Placed(const std::array<T, count>& values, Guard guard = Guard::Behind, size_t misalignment = 0)
        : Placed(values.data(), count, guard, misalignment)
    {
    }

    T* data() { return reinterpret_cast<T*>(bytes_.data()); }
    std::array<T, 64> block()
    {
        std::array<T, 64> values;
        std::memcpy(values.data(), bytes_.data(), sizeof values);
        return values;
    }

private:
    GuardedBytes bytes_;
};

}  // namespace dct

#endif
