// Luminance and two chroma differences in bytes. For BC3 textures the luminance takes the place of alpha.
//
//      Y  = (R + 2 G + B + 2) >> 2
//      Co = ((2 R - 2 B + 2) >> 2) + 128            Cg = ((2 G - R - B + 2) >> 2) + 128, both held at 255
//
//      G  = Y + cg          R = Y + co - cg         B = Y - co - cg
// with co = (Co - 128) / s, cg = (Cg - 128) / s; s is what the coder has multiplied the chroma of a block by, told by
// the texture's blue: 8 (s - 1).
#ifndef VEKPIX_DDS_YCOCG_H
#define VEKPIX_DDS_YCOCG_H

#include <cstddef>
#include <cstdint>

namespace vekpix::dds {

// Pixels of R, G, B become Y, Co, Cg.
void ycocgFromRgb(const uint8_t* rgb, uint8_t* ycocg, size_t pixels);
// Pixels of Co, Cg, scale, Y, as a BC3 decoder gives them, become R, G, B, to the nearest.
void rgbFromScaledYcocg(const uint8_t* texels, uint8_t* rgb, size_t pixels);

}  // namespace vekpix::dds

#endif
