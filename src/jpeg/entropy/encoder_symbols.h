// Symbols of the encoders (ITU T.81, F.1.2.2 and G.1.2).
#ifndef VEK_JPEG_ENTROPY_ENCODER_SYMBOLS_H
#define VEK_JPEG_ENTROPY_ENCODER_SYMBOLS_H

namespace q3 {

constexpr int zeroRunLength = 0xF0;  // sixteen zeros
constexpr int endOfBlock = 0;
constexpr int largestProgressiveCategory = 11;

}  // namespace q3

#endif
