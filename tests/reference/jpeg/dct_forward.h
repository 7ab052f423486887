// Models of the forward DCT with quantisation.
#ifndef VEK_TESTS_REFERENCE_JPEG_DCT_FORWARD_H
#define VEK_TESTS_REFERENCE_JPEG_DCT_FORWARD_H

#include "reference/jpeg/dct_constants.h"

namespace model {

Block forwardDct(const Block& samples);
Block forwardDctQuant(const Block& samples, const Table& table);

FloatBlock forwardDct(const FloatBlock& samples);
// Samples of 12 bits, read as signed 16-bit values.
Block forwardDctQuant(const std::array<uint16_t, 64>& samples, const FloatBlock& factors);

}  // namespace model

#endif
