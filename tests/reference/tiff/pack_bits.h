// PackBits, byte by byte (TIFF 6.0, section 9).
#ifndef VEK_TESTS_REFERENCE_TIFF_PACK_BITS_H
#define VEK_TESTS_REFERENCE_TIFF_PACK_BITS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vekj/types.h"

namespace model {

// Whole packets, each by itself.
std::vector<std::vector<uint8_t>> packetsOf(const std::vector<uint8_t>& row);

struct Unpacked {
    VekStatus status;
    int position;
    std::vector<uint8_t> bytes;  // that were stored
};
// `behind` lies behind the source.
Unpacked unpack(const std::vector<uint8_t>& packed, int position, int length, uint8_t behind);

}  // namespace model

#endif
