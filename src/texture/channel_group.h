// Four blocks of one channel at once, 32 bytes: what a row of the walk decodes in BC4 and BC5 while it can.
#ifndef VEK_TEXTURE_CHANNEL_GROUP_H
#define VEK_TEXTURE_CHANNEL_GROUP_H

#include <array>

#include "frame/vec.h"

namespace q3 {

constexpr int groupBytes = 32;

// Seven or five steps lie between the endpoints. With weights that add up to 35 in both cases one factor divides for
// both: quotients by an odd number are rounded to nearest, whether one adds half of it less a half, or pmulhrsw rounds.
constexpr int16_t thirtyFifth = 936;

constexpr bool roundsExactly(int divisor)
{
    for (int v = 0; v <= divisor * 255; ++v)
        if ((v * (35 / divisor) * thirtyFifth + 0x4000) >> 15 != (v + divisor / 2) / divisor)
            return false;
    return true;
}
static_assert(roundsExactly(7) && roundsExactly(5));

// For each set of blocks whose first endpoint is not above the second: the weights of the endpoints of the blocks 0 and
// 2, of 1 and 3, and the last entries that are 255, for each block in its turn.
struct alignas(32) GroupWeights {
    std::array<std::array<int8_t, 32>, 2> weights;
    std::array<uint8_t, 32> last;
};
constexpr auto groupWeights = [] {
    std::array<GroupWeights, 16> table{};
    for (unsigned set = 0; set < 16; ++set)
        for (unsigned block = 0; block < 4; ++block) {
            const bool hasExtremes = (set >> block & 1) != 0;
            const int steps = hasExtremes ? 5 : 7;
            for (int entry = 0; entry < 8; ++entry) {
                const int second = entry == 0 ? 0 : entry == 1 ? steps : entry - 1;
                if (second > steps || (hasExtremes && entry > 5))
                    continue;
                auto& weights = table[set].weights[block % 2];
                const size_t at = block / 2 * 16 + 2 * static_cast<size_t>(entry);
                weights[at] = static_cast<int8_t>((steps - second) * 35 / steps);
                weights[at + 1] = static_cast<int8_t>(second * 35 / steps);
            }
            table[set].last[8 * block + 7] = hasExtremes ? 255 : 0;
        }
    return table;
}();

// Values of the blocks b and b + 1 in each half of the vectors, b being 0 and 2: four of b, four of b + 1, the rows 0
// and 1 in `upper`, 2 and 3 in `lower`.
struct GroupRows {
    __m256i upper, lower;
};

inline GroupRows decodeGroup(const uint8_t* blocks)
{
    const __m256i bits = loadU(blocks);
    const __m256i atSecond = _mm256_slli_epi16(bits, 8);
    const auto notAbove =
        static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_max_epu8(bits, atSecond), bits)));
    const GroupWeights& table = groupWeights[_pext_u32(notAbove, 0x02020202)];
    const auto entries = [&](int16_t endpoints, size_t half) {
        const __m256i pairs = _mm256_shuffle_epi8(bits, _mm256_set1_epi16(endpoints));
        const __m256i sums = _mm256_maddubs_epi16(pairs, loadU(table.weights[half].data()));
        return _mm256_mulhrs_epi16(sums, _mm256_set1_epi16(thirtyFifth));
    };
    const __m256i palettes =
        _mm256_or_si256(_mm256_packus_epi16(entries(0x0100, 0), entries(0x0908, 1)), loadU(table.last.data()));
    // Words with two indices each, six bits at bit 8, 6, 4 or 10; then one index a byte, plus 8 in the second block.
    const auto values = [&](__m128i bytes) {
        const auto inBothHalves = [](__m128i v) { return _mm256_broadcastsi128_si256(v); };
        const auto perWord = [](int a, int b, int c, int d) {
            return _mm_setr_epi16(static_cast<int16_t>(a), static_cast<int16_t>(b), static_cast<int16_t>(a),
                                  static_cast<int16_t>(b), static_cast<int16_t>(c), static_cast<int16_t>(d),
                                  static_cast<int16_t>(c), static_cast<int16_t>(d));
        };
        const __m256i words = _mm256_and_si256(_mm256_shuffle_epi8(bits, inBothHalves(bytes)),
                                               inBothHalves(perWord(63 << 8, 63 << 6, 63 << 4, 63 << 10)));
        const __m256i six = _mm256_mulhi_epu16(words, inBothHalves(perWord(1 << 8, 1 << 10, 1 << 12, 1 << 6)));
        const __m256i spread = _mm256_or_si256(six, _mm256_slli_epi16(six, 5));
        const __m256i indices =
            _mm256_or_si256(_mm256_and_si256(spread, _mm256_set1_epi8(7)), _mm256_set1_epi64x(0x0808'0808'0000'0000));
        return _mm256_shuffle_epi8(palettes, indices);
    };
    const __m128i upper = _mm_setr_epi8(1, 2, 2, 3, 9, 10, 10, 11, 3, 4, 3, 4, 11, 12, 11, 12);
    return {values(upper), values(_mm_add_epi8(upper, _mm_set1_epi8(3)))};
}

}  // namespace q3

#endif
