// The main axes of four small matrices at once.
#ifndef VEK_TEXTURE_BC7_AXES_H
#define VEK_TEXTURE_BC7_AXES_H

#include <immintrin.h>

#include <array>
#include <cstddef>

namespace q3 {

// A row, and all rows, of four matrices.
struct RowLanes {
    __m128 columns[4];

    __m128& operator[](size_t c) { return columns[c]; }
    const __m128& operator[](size_t c) const { return columns[c]; }
};
using MatrixLanes = std::array<RowLanes, 16>;

// Of each of four matrices the right singular vector of the largest singular value: to the bit the first row that
// svd_32f gives as V'. `n` columns, 3 or 4; `m` rows, up to 16, of which a matrix that has fewer fills the rest with
// zeros. The matrices are lost.
RowLanes mainAxes(int n, int m, MatrixLanes& a);

}  // namespace q3

#endif
