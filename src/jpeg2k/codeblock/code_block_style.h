// Style words of code-blocks.
#ifndef VEK_JPEG2K_CODEBLOCK_CODE_BLOCK_STYLE_H
#define VEK_JPEG2K_CODEBLOCK_CODE_BLOCK_STYLE_H

#include <cstdint>

namespace q3 {

constexpr uint32_t styleCausal = 0x1;
constexpr uint32_t styleBypass = 0x2;
constexpr uint32_t styleTerminate = 0x4;
constexpr uint32_t styleReset = 0x8;
constexpr uint32_t styleSegmentation = 0x10;

// Of encoders only.
constexpr uint32_t styleLosslessDistortion = 0x20;

// Of decoders only.
constexpr uint32_t styleRollBack = 0x10000;
constexpr uint32_t styleDstIsClear = 0x20000;
constexpr uint32_t styleKeepMidpoints = 0x40000;
constexpr uint32_t styleFlagsAreClear = 0x80000;
constexpr uint32_t stylePredictable = 0x100000;

}  // namespace q3

#endif
