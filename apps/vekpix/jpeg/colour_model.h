// What a file's components are.
#ifndef VEKPIX_JPEG_COLOUR_MODEL_H
#define VEKPIX_JPEG_COLOUR_MODEL_H

namespace vekpix::jpeg {

// Cmyk and Ycck: the inks cyan, magenta, yellow, black; Ycck has the first three as the YCbCr of what they leave of the
// light.
enum class ColourModel { Grey, YCbCr, Rgb, Cmyk, Ycck };

}  // namespace vekpix::jpeg

#endif
