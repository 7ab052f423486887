// Models of lossless Huffman coding (ITU T.81, H.1.2.2 and H.2.2): rows, single values, counts. Bit by bit.
#ifndef VEK_TESTS_REFERENCE_JPEG_LOSSLESS_ROWS_H
#define VEK_TESTS_REFERENCE_JPEG_LOSSLESS_ROWS_H

#include <array>
#include <cstdint>
#include <vector>

#include "reference/jpeg/huffman.h"

namespace model {

using Rows = std::vector<std::vector<int16_t>>;

// Of all rows the first values, then the second ones, and so on; rows from the fifth on do not count.
VekStatus encodeRows(const Rows& rows, Output& out, const std::vector<const EncodeTable*>& tables, EncoderState& state);
VekStatus decodeRows(Input& in, Rows& rows, const std::vector<const DecodeTable*>& tables, DecoderState& state);

VekStatus encodeValue(int16_t value, Output& out, const EncodeTable& table, EncoderState& state);
VekStatus decodeValue(Input& in, int16_t& value, const DecodeTable& table, DecoderState& state);
void countValue(int16_t value, std::array<int, 256>& counts);

}  // namespace model

#endif
