// Differences of the lossless coders (ITU T.81, H.1.2.2): a category and, but for the last, its magnitude bits.
#ifndef VEK_JPEG_ENTROPY_LOSSLESS_SYMBOLS_H
#define VEK_JPEG_ENTROPY_LOSSLESS_SYMBOLS_H

namespace q3 {

constexpr int largestLosslessCategory = 16;  // 32768, which stands alone
constexpr int mostRows = 4;                  // that are interleaved

}  // namespace q3

#endif
