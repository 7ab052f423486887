// Which files hold pictures, by their extensions, and the readers and writers of their rows.
#ifndef VEKPIX_IMAGE_FORMATS_H
#define VEKPIX_IMAGE_FORMATS_H

#include <memory>
#include <string>

#include "image/rows.h"
#include "io/byte_sink.h"

namespace vekpix {

enum class ImageFormat { Png, Ppm, Pgm, Pam, Pfm, Jpeg, Dds, Jpeg2000, Jp2, Tiff };

enum class SampleDepth {
    Eight,     // samples of more bits are rounded
    AsStored,  // as many bits as the file tells, at least 8
};

// By the extension (png, ppm, pgm, pam, pfm, jpg, jpeg, j2k, j2c, jp2, dds, tif, tiff; upper case too). An Error for
// any other name.
ImageFormat formatOf(const std::string& path);

// What names of coded pictures end with, for messages.
const char* codedFileExtensions();

enum class Transparency {
    White,  // shows white
    Kept,   // as an alpha channel, if the file has one
};

// The rows of a PNG, PPM, PGM or PAM file; palettes become colours.
std::unique_ptr<RowReader> openPicture(const std::string& path, SampleDepth depth = SampleDepth::Eight,
                                       Transparency transparency = Transparency::White);

// Writes a PNG, PPM, PGM or PAM picture to `sink`, which must outlive the writer. A PPM picture of one channel has
// equal colours; a PGM picture must have one channel. PNG and PAM hold alpha, and PAM alone holds inks.
std::unique_ptr<RowWriter> makePictureWriter(ImageFormat format, const Shape& shape, ByteSink& sink);

}  // namespace vekpix

#endif
