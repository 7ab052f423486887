// Models of the inverse DCT with dequantisation.
#ifndef VEK_TESTS_REFERENCE_JPEG_DCT_INVERSE_H
#define VEK_TESTS_REFERENCE_JPEG_DCT_INVERSE_H

#include <vector>

#include "reference/jpeg/dct_constants.h"

namespace model {

// No level shift, no clipping.
Block inverseDctQuant(const Block& coefficients, const Table& table);
Block inverseDct(const Block& coefficients);

// Samples of 8 bits in rows without gaps: 64, or 16 (to 4x4), or 4 (to 2x2).
std::vector<uint8_t> inverseDctToBytes(const Block& coefficients, const Table& table);
std::vector<uint8_t> inverseDctOf4x4ToBytes(const Block& coefficients, const Table& table);
std::vector<uint8_t> inverseDctOf2x2ToBytes(const Block& coefficients, const Table& table);
std::vector<uint8_t> inverseDctOf1x1ToBytes(const Block& coefficients, const Table& table);
std::vector<uint8_t> inverseDctTo4x4Bytes(const Block& coefficients, const Table& table);
std::vector<uint8_t> inverseDctTo2x2Bytes(const Block& coefficients, const Table& table);

FloatBlock inverseDct(const FloatBlock& coefficients);
// Samples of 12 bits.
std::array<uint16_t, 64> inverseDctToWords(const Block& coefficients, const FloatBlock& steps);

}  // namespace model

#endif
