// The arithmetic words of the models: each cuts, clips or shifts just as its name says.
#ifndef VEK_TESTS_REFERENCE_BITS_H
#define VEK_TESTS_REFERENCE_BITS_H

#include <algorithm>
#include <cstdint>

namespace model {

inline int16_t wrap16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }
inline int32_t wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
inline int16_t saturate16(int64_t v) { return static_cast<int16_t>(std::clamp<int64_t>(v, -32768, 32767)); }
inline uint8_t clip8(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

}  // namespace model

#endif
