// Blocks of sign and magnitude, and the library's coders around them.
#ifndef VEK_TESTS_JPEG2K_CODEBLOCK_CODE_BLOCKS_H
#define VEK_TESTS_JPEG2K_CODEBLOCK_CODE_BLOCKS_H

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj.h"

namespace codeblock {

using support::Random;

// Blocks as wavelets give them, and others.
inline std::vector<uint32_t> randomBlock(Random& random, VekSize size, int planes)
{
    std::vector<uint32_t> block(static_cast<size_t>(size.width * size.height));
    const int percent = random.in(0, 100);
    const bool isGeometric = random.chance(60);
    for (uint32_t& v : block) {
        uint32_t magnitude = 0;
        if (random.chance(percent)) {
            const int bits = isGeometric ? std::min(random.in(1, planes), random.in(1, planes)) : planes;
            magnitude = random.any<uint32_t>() & ((uint32_t{1} << bits) - 1);
        }
        v = magnitude == 0 ? 0 : magnitude | random.in(0U, 1U) << 31;
    }
    return block;
}

inline VekSize randomSize(Random& random)
{
    switch (random.in(0, 7)) {
        case 0:
            return {random.in(1, 5), random.in(1, 5)};
        case 1:
            return {random.in(1, 200), random.in(1, 8)};
        case 2:
            return {random.in(1, 4), random.in(1, 200)};
        default:
            return {random.in(1, 40), random.in(1, 40)};
    }
}

// Rows `gap` bytes apart, at any address, ending at an unmapped page.
class GuardedBlock {
public:
    GuardedBlock(VekSize size, int gap)
        : step(4 * size.width + gap),
          size_(size),
          bytes_(static_cast<size_t>(step * (size.height - 1) + 4 * size.width))
    {
    }
    int32_t* data() { return reinterpret_cast<int32_t*>(bytes_.data()); }
    uint8_t* row(int y) { return bytes_.data() + y * step; }
    void set(const std::vector<uint32_t>& samples)
    {
        const auto width = static_cast<size_t>(size_.width);
        for (int y = 0; y < size_.height; ++y) std::memcpy(row(y), &samples[static_cast<size_t>(y) * width], 4 * width);
    }
    std::vector<uint32_t> get()
    {
        const auto width = static_cast<size_t>(size_.width);
        std::vector<uint32_t> samples(width * static_cast<size_t>(size_.height));
        for (int y = 0; y < size_.height; ++y) std::memcpy(&samples[static_cast<size_t>(y) * width], row(y), 4 * width);
        return samples;
    }

    const int step;

private:
    VekSize size_;
    support::GuardedBytes bytes_;
};

// A decoder's state of exactly the reported size, at a multiple of 8 and before an unmapped page.
class GuardedState {
public:
    explicit GuardedState(VekSize size) : bytes_(static_cast<size_t>(sizeOf(size))) {}
    VekDecodeCBProgrState_JPEG2K* get() { return reinterpret_cast<VekDecodeCBProgrState_JPEG2K*>(bytes_.data()); }

private:
    static int sizeOf(VekSize size)
    {
        int bytes = 0;
        vekiDecodeGetBufSize_JPEG2K(size, &bytes);
        return bytes;
    }
    support::GuardedBytes bytes_;
};

}  // namespace codeblock

#endif
