// Which coefficients of a block are not zero.
#ifndef VEK_JPEG_ENTROPY_BLOCK_MASK_H
#define VEK_JPEG_ENTROPY_BLOCK_MASK_H

#include <array>
#include <cstdint>

#include "frame/vec.h"
#include "jpeg/entropy/constant_tables.h"

namespace q3 {

// own_jc_izigzag_index for single bytes.
constexpr std::array<uint8_t, 64> zigzagPositions = [] {
    std::array<uint8_t, 64> t{};
    for (size_t k = 0; k < 64; ++k) t[k] = static_cast<uint8_t>(own_jc_izigzag_index[k]);
    return t;
}();

// Bytes of coefficients, packed from four vectors of two rows each, lie in four lanes: rows 0 and 2, rows 1 and 3, and
// so on. For each lane: the shuffle that puts its coefficients into the order of the zig-zag, and where they come in
// it.
struct ZigzagOfLanes {
    alignas(32) std::array<uint8_t, 64> shuffle;
    std::array<uint64_t, 4> positions;
};
constexpr ZigzagOfLanes zigzagOfLanes = [] {
    ZigzagOfLanes t{};
    std::array<size_t, 4> found{};
    for (size_t k = 0; k < 64; ++k) {
        const auto row = static_cast<size_t>(own_jc_izigzag_index[k] / 8);
        const auto column = static_cast<size_t>(own_jc_izigzag_index[k] % 8);
        const size_t lane = row / 4 * 2 + row % 2;
        t.shuffle[16 * lane + found[lane]++] = static_cast<uint8_t>(row / 2 % 2 * 8 + column);
        t.positions[lane] |= uint64_t{1} << k;
    }
    return t;
}();
static_assert(zigzagOfLanes.positions[0] % 256 == 0x6B && zigzagOfLanes.positions[1] % 256 == 0x94);

// Four vectors that hold one value for each coefficient of a block in natural order.
struct BlockVectors {
    __m256i rows[4];  // two rows each
};

inline BlockVectors loadBlock(const int16_t* pBlock)
{
    return {{loadU(pBlock), loadU(pBlock + 16), loadU(pBlock + 32), loadU(pBlock + 48)}};
}

// Bit k is set if the values of zig-zag position k are equal.
inline uint64_t equalInZigzag(const BlockVectors& a, __m256i b)
{
    uint64_t positions = 0;
    for (size_t half = 0; half < 2; ++half) {
        const __m256i equal =
            _mm256_packs_epi16(_mm256_cmpeq_epi16(a.rows[2 * half], b), _mm256_cmpeq_epi16(a.rows[2 * half + 1], b));
        const __m256i sorted = _mm256_shuffle_epi8(equal, loadU(zigzagOfLanes.shuffle.data() + 32 * half));
        const auto bits = static_cast<uint32_t>(_mm256_movemask_epi8(sorted));
        positions |= _pdep_u64(bits, zigzagOfLanes.positions[2 * half]) |
                     _pdep_u64(bits >> 16, zigzagOfLanes.positions[2 * half + 1]);
    }
    return positions;
}

// Bit k is set if the coefficient at zig-zag position k is not zero.
inline uint64_t nonZeroInZigzag(const BlockVectors& block) { return ~equalInZigzag(block, _mm256_setzero_si256()); }
inline uint64_t nonZeroInZigzag(const int16_t* pBlock) { return nonZeroInZigzag(loadBlock(pBlock)); }

}  // namespace q3

#endif
