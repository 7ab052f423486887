#ifndef VEK_JPEG_ENTROPY_CODE_LENGTHS_H
#define VEK_JPEG_ENTROPY_CODE_LENGTHS_H

#include <array>
#include <cstdint>

namespace q3 {

constexpr int maxCodeLength = 16;
constexpr int maxCodes = 256;

// Number of codes that the list has, or -1 if it has more than 256.
inline int countCodes(const uint8_t* pListBits)
{
    int count = 0;
    for (int i = 0; i < maxCodeLength; ++i) {
        count += pListBits[i];
        if (count > maxCodes)
            return -1;
    }
    return count;
}

}  // namespace q3

#endif
