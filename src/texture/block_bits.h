// The bits of a block of 16 bytes, numbered from the lowest of the first byte.
#ifndef VEK_TEXTURE_BLOCK_BITS_H
#define VEK_TEXTURE_BLOCK_BITS_H

#include "frame/vec.h"

namespace q3 {

struct BlockBits {
    uint64_t low, high;

    static BlockBits load(const uint8_t* block)
    {
        return {loadScalar<uint64_t>(block), loadScalar<uint64_t>(block + 8)};
    }
    void store(uint8_t* block) const
    {
        storeScalar(block, low);
        storeScalar(block + 8, high);
    }

    // `count` bits from `first` on, at most 64.
    template <int first, int count>
    uint64_t field() const
    {
        constexpr uint64_t mask = count == 64 ? ~uint64_t{0} : (uint64_t{1} << (count % 64)) - 1;
        if constexpr (count == 0)
            return 0;
        else if constexpr (first >= 64)
            return high >> (first - 64) & mask;
        else if constexpr (first + count <= 64 || first == 0)
            return low >> first & mask;
        else
            return (low >> first | high << (64 - first)) & mask;
    }
    template <int first, int count>
    void put(uint64_t value)
    {
        if constexpr (count == 0)
            return;
        else if constexpr (first >= 64)
            high |= value << (first - 64);
        else {
            low |= value << first;
            if constexpr (first + count > 64)
                high |= value >> (64 - first);
        }
    }
};

}  // namespace q3

#endif
