// A small singular value decomposition, for the main axis of a few pixels.
#ifndef VEK_TEXTURE_BC7_SVD_H
#define VEK_TEXTURE_BC7_SVD_H

namespace q3 {

// a = U diag(w) V', by Golub and Reinsch: `m` rows, up to 16, of `n` columns, up to 4, `lda` floats apart; they are
// lost. w receives the n singular values, the largest first, vT the rows of V', `ldvT` floats apart. U is not formed.
// Sums are 64-bit floats.
void svd_32f(int n, int m, float* a, int lda, float* w, float* vT, int ldvT);

}  // namespace q3

#endif
