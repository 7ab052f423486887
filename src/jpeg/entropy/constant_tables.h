// Tables that all JPEG entropy coders share.
#ifndef VEK_JPEG_ENTROPY_CONSTANT_TABLES_H
#define VEK_JPEG_ENTROPY_CONSTANT_TABLES_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace q3 {

// Number of significant bits of the index. A larger value v is sized as own_jc_csize[v >> 8] + 8.
constexpr std::array<int32_t, 256> own_jc_csize = [] {
    std::array<int32_t, 256> t{};
    for (size_t i = 0; i < t.size(); ++i) t[i] = static_cast<int32_t>(std::bit_width(i));
    return t;
}();
static_assert(own_jc_csize[0] == 0 && own_jc_csize[1] == 1 && own_jc_csize[255] == 8);

// Floor of the base-2 logarithm of the index; 0 for 0.
constexpr std::array<int32_t, 512> own_jc_eobsize = [] {
    std::array<int32_t, 512> t{};
    for (size_t i = 2; i < t.size(); ++i) t[i] = static_cast<int32_t>(std::bit_width(i)) - 1;
    return t;
}();
static_assert(own_jc_eobsize[1] == 0 && own_jc_eobsize[2] == 1 && own_jc_eobsize[511] == 8);

// 1 - 2^n: what makes an n-bit magnitude with a clear top bit the negative value that it stands for (ITU T.81, EXTEND).
constexpr std::array<int32_t, 16> own_jc_lowest_coef = [] {
    std::array<int32_t, 16> t{};
    for (size_t n = 1; n < t.size(); ++n) t[n] = 1 - (1 << n);
    return t;
}();
static_assert(own_jc_lowest_coef[0] == 0 && own_jc_lowest_coef[1] == -1 && own_jc_lowest_coef[15] == -32767);
constexpr std::array<int32_t, 16> own_jc_extend_offset = own_jc_lowest_coef;

// 2^(n - 1): the least n-bit magnitude that stands for a positive value.
constexpr std::array<int32_t, 16> own_jc_extend_test = [] {
    std::array<int32_t, 16> t{};
    for (size_t n = 1; n < t.size(); ++n) t[n] = 1 << (n - 1);
    return t;
}();
static_assert(own_jc_extend_test[0] == 0 && own_jc_extend_test[1] == 1 && own_jc_extend_test[15] == 16384);
constexpr std::array<int32_t, 16> own_jc_twoexpnminusone = own_jc_extend_test;

// Row-major position of the k-th coefficient in zig-zag order (ITU T.81, Figure A.6), then eight guards of 63, so that
// a run that overshoots the block lands on its last coefficient.
constexpr std::array<int32_t, 64 + 8> own_jc_izigzag_index = [] {
    std::array<int32_t, 64 + 8> t{};
    size_t k = 0;
    for (int d = 0; d < 15; ++d)  // the anti-diagonals: odd ones run downwards, even ones upwards
        for (int i = std::max(0, d - 7); i <= std::min(d, 7); ++i)
            t[k++] = d % 2 != 0 ? i * 8 + (d - i) : (d - i) * 8 + i;
    while (k < t.size()) t[k++] = 63;
    return t;
}();
static_assert(own_jc_izigzag_index[2] == 8 && own_jc_izigzag_index[35] == 56 && own_jc_izigzag_index[63] == 63);

}  // namespace q3

#endif
