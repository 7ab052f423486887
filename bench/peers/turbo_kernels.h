// Vector kernels of the packaged JPEG library (libjpeg-turbo 2.1), which its static library offers to the linker but no
// header of it declares. Rows are passed as arrays of row pointers. The kernels read and write whole vectors: rows need
// room up to the next multiple of 32 pixels (of 64 for the up-sampling ones), and tables and blocks a 32-byte boundary.
#ifndef VEK_BENCH_PEERS_TURBO_KERNELS_H
#define VEK_BENCH_PEERS_TURBO_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace turbo {

using Rows = uint8_t**;        // one pointer for each row
using PlaneRows = uint8_t***;  // the rows of each plane

// Divisors of a quantiser, each in the natural order of coefficients: |x| becomes
// ((|x| + correction) * reciprocal >> 16) * scale >> 16.
struct alignas(32) Divisors {
    uint16_t reciprocal[64];
    uint16_t correction[64];
    uint16_t scale[64];
    int16_t shift[64];  // the vector kernels multiply by `scale` instead
};

// Code and length of each symbol.
struct HuffmanTable {
    uint32_t code[256];
    char length[256];
};

// The encoder keeps its bits here between blocks.
struct HuffmanState {
    uint8_t* nextOutputByte;
    size_t freeInBuffer;
    uint64_t putBuffer;
    int freeBits = 64;
    int lastDc[4];
    void* compressor;
    int simd;
};

extern "C" {

// Samples and the DCT. The workspace is one block; `firstColumn` counts samples.
void jsimd_convsamp_avx2(Rows samples, unsigned firstColumn, int16_t* workspace);
void jsimd_fdct_islow_avx2(int16_t* workspace);
void jsimd_quantize_avx2(int16_t* coefficients, const Divisors* divisors, const int16_t* workspace);
void jsimd_idct_islow_avx2(const int16_t* steps, const int16_t* coefficients, Rows output, unsigned firstColumn);
void jsimd_idct_4x4_sse2(const int16_t* steps, const int16_t* coefficients, Rows output, unsigned firstColumn);
void jsimd_idct_2x2_sse2(const int16_t* steps, const int16_t* coefficients, Rows output, unsigned firstColumn);
void jsimd_convsamp_float_sse2(Rows samples, unsigned firstColumn, float* workspace);
void jsimd_fdct_float_sse(float* workspace);
void jsimd_quantize_float_sse2(int16_t* coefficients, const float* divisors, const float* workspace);
void jsimd_idct_float_sse2(const float* steps, const int16_t* coefficients, Rows output, unsigned firstColumn);

// Colour. Pixels have 3 bytes, those of an `x` in the name 4; planes are indexed from `firstRow` on.
void jsimd_rgb_ycc_convert_avx2(unsigned width, Rows rgb, PlaneRows planes, unsigned firstRow, int rows);
void jsimd_extbgr_ycc_convert_avx2(unsigned width, Rows bgr, PlaneRows planes, unsigned firstRow, int rows);
void jsimd_extrgbx_ycc_convert_avx2(unsigned width, Rows rgbx, PlaneRows planes, unsigned firstRow, int rows);
void jsimd_extbgrx_ycc_convert_avx2(unsigned width, Rows bgrx, PlaneRows planes, unsigned firstRow, int rows);
void jsimd_rgb_gray_convert_avx2(unsigned width, Rows rgb, PlaneRows luma, unsigned firstRow, int rows);
void jsimd_extbgr_gray_convert_avx2(unsigned width, Rows bgr, PlaneRows luma, unsigned firstRow, int rows);
void jsimd_ycc_rgb_convert_avx2(unsigned width, PlaneRows planes, unsigned firstRow, Rows rgb, int rows);
void jsimd_ycc_extbgr_convert_avx2(unsigned width, PlaneRows planes, unsigned firstRow, Rows bgr, int rows);
void jsimd_ycc_extrgbx_convert_avx2(unsigned width, PlaneRows planes, unsigned firstRow, Rows rgbx, int rows);
void jsimd_ycc_extbgrx_convert_avx2(unsigned width, PlaneRows planes, unsigned firstRow, Rows bgrx, int rows);

// Chroma sampling. Down: `blocks` of 8 outputs in a row, `outputRows` rows, from `inputRows` rows (which the kernel
// extends to the right up to whole blocks). Up: `inputRows` is the number of output rows.
void jsimd_h2v1_downsample_avx2(unsigned width, int inputRows, unsigned outputRows, unsigned blocks, Rows input,
                                Rows output);
void jsimd_h2v2_downsample_avx2(unsigned width, int inputRows, unsigned outputRows, unsigned blocks, Rows input,
                                Rows output);
void jsimd_h2v1_upsample_avx2(int outputRows, unsigned outputWidth, Rows input, Rows* output);
void jsimd_h2v2_upsample_avx2(int outputRows, unsigned outputWidth, Rows input, Rows* output);
void jsimd_h2v1_fancy_upsample_avx2(int outputRows, unsigned inputWidth, Rows input, Rows* output);
void jsimd_h2v2_fancy_upsample_avx2(int outputRows, unsigned inputWidth, Rows input, Rows* output);

// Up-sampling and colour in one: one row of pixels (h2v1) or two (h2v2) from one row of chroma.
void jsimd_h2v1_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows rgb);
void jsimd_h2v1_extbgr_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows bgr);
void jsimd_h2v1_extrgbx_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows rgbx);
void jsimd_h2v1_extbgrx_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows bgrx);
void jsimd_h2v2_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows rgb);
void jsimd_h2v2_extbgr_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows bgr);
void jsimd_h2v2_extrgbx_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows rgbx);
void jsimd_h2v2_extbgrx_merged_upsample_avx2(unsigned width, PlaneRows planes, unsigned rowGroup, Rows bgrx);

// Codes one block with byte stuffing and returns the end of what it wrote; 512 bytes of room are enough for any block.
uint8_t* jsimd_huff_encode_one_block_sse2(HuffmanState* state, uint8_t* buffer, const int16_t* block, int lastDc,
                                          const HuffmanTable* dc, const HuffmanTable* ac);
}

// The quantiser's divisors for one step: a reciprocal of 16 significant bits, so that the result is |x| / step rounded
// to the nearest integer. Steps below 3 would need a scale beyond 16 bits.
inline void setDivisor(Divisors& divisors, int position, unsigned step)
{
    unsigned bits = 0;
    while (step >> (bits + 1) != 0) ++bits;
    const unsigned shift = 16 + bits;
    uint32_t quotient = (uint32_t{1} << shift) / step;
    const uint32_t remainder = (uint32_t{1} << shift) % step;
    uint32_t correction = step / 2;
    unsigned last = shift;
    if (remainder == 0) {  // a power of two
        quotient >>= 1;
        --last;
    } else if (remainder <= step / 2) {
        ++correction;
    } else {
        ++quotient;
    }
    divisors.reciprocal[position] = static_cast<uint16_t>(quotient);
    divisors.correction[position] = static_cast<uint16_t>(correction);
    divisors.scale[position] = static_cast<uint16_t>(uint32_t{1} << (32 - last));
    divisors.shift[position] = static_cast<int16_t>(last - 16);
}

}  // namespace turbo

#endif
