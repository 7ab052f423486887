// Which coefficients of a block are not zero.
#ifndef VEK_JPEG_ENTROPY_BLOCK_MASK_H
#define VEK_JPEG_ENTROPY_BLOCK_MASK_H

#include <array>
#include <cstdint>
#include <utility>

#include "frame/vec.h"
#include "jpeg/entropy/constant_tables.h"

namespace q3 {

// For each row of a block the zig-zag positions of its coefficients; they rise from left to right.
constexpr std::array<uint64_t, 8> zigzagPositionsOfRow = [] {
    std::array<uint64_t, 8> t{};
    for (int k = 0; k < 64; ++k)
        t[static_cast<size_t>(own_jc_izigzag_index[static_cast<size_t>(k)] / 8)] |= uint64_t{1} << k;
    return t;
}();

// own_jc_izigzag_index for single bytes.
constexpr std::array<uint8_t, 64> zigzagPositions = [] {
    std::array<uint8_t, 64> t{};
    for (size_t k = 0; k < 64; ++k) t[k] = static_cast<uint8_t>(own_jc_izigzag_index[k]);
    return t;
}();

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
    uint64_t rows = 0;  // a bit for each coefficient in natural order
    for (size_t half = 0; half < 2; ++half) {
        const __m256i equal =
            _mm256_packs_epi16(_mm256_cmpeq_epi16(a.rows[2 * half], b), _mm256_cmpeq_epi16(a.rows[2 * half + 1], b));
        const __m256i inOrder = _mm256_permute4x64_epi64(equal, 0xD8);
        rows |= uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(inOrder))} << (32 * half);
    }
    return [rows]<size_t... row>(std::index_sequence<row...>)
    {
        return (_pdep_u64(rows >> (8 * row), zigzagPositionsOfRow[row]) | ...);
    }
    (std::make_index_sequence<8>());
}

// Bit k is set if the coefficient at zig-zag position k is not zero.
inline uint64_t nonZeroInZigzag(const BlockVectors& block) { return ~equalInZigzag(block, _mm256_setzero_si256()); }
inline uint64_t nonZeroInZigzag(const int16_t* pBlock) { return nonZeroInZigzag(loadBlock(pBlock)); }

}  // namespace q3

#endif
