// The search of the BC7 encoder, pixel by pixel.
#ifndef VEK_TESTS_REFERENCE_TEXTURE_BC7_ENCODER_H
#define VEK_TESTS_REFERENCE_TEXTURE_BC7_ENCODER_H

#include <array>
#include <cstdint>

namespace model {

// Decomposes a matrix of m rows and n columns, as the library's does; its last bits are its own.
using Svd = void (*)(int n, int m, float* a, int lda, float* w, float* vT, int ldvT);

struct Bc7Encoded {
    std::array<uint8_t, 16> block;
    int error;
};
Bc7Encoded encodeBc7(const uint8_t* pixels, int mode, Svd svd);

}  // namespace model

#endif
