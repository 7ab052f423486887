#include "image/formats.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "error.h"
#include "image/over_white_rows.h"
#include "image/png_rows.h"
#include "image/pnm_rows.h"

namespace vekpix {

ImageFormat formatOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".png")
        return ImageFormat::Png;
    if (extension == ".ppm")
        return ImageFormat::Ppm;
    if (extension == ".pgm")
        return ImageFormat::Pgm;
    if (extension == ".pam")
        return ImageFormat::Pam;
    if (extension == ".jpg" || extension == ".jpeg")
        return ImageFormat::Jpeg;
    if (extension == ".j2k" || extension == ".j2c")
        return ImageFormat::Jpeg2000;
    if (extension == ".jp2")
        return ImageFormat::Jp2;
    if (extension == ".dds")
        return ImageFormat::Dds;
    if (extension == ".pfm")
        return ImageFormat::Pfm;
    if (extension == ".tif" || extension == ".tiff")
        return ImageFormat::Tiff;
    throw Error(path + ": the name tells no picture format (.png, .ppm, .pgm, .pam, .pfm, " + codedFileExtensions() +
                ")");
}

const char* codedFileExtensions() { return ".jpg, .jpeg, .j2k, .j2c, .jp2, .dds, .tif or .tiff"; }

namespace {

std::unique_ptr<RowReader> openAsStored(const std::string& path, SampleDepth depth)
{
    switch (formatOf(path)) {
        case ImageFormat::Png:
            return openPng(path, depth);
        case ImageFormat::Ppm:
        case ImageFormat::Pgm:
        case ImageFormat::Pam:
            return openPnm(path, depth);
        case ImageFormat::Pfm:
        case ImageFormat::Jpeg:
        case ImageFormat::Jpeg2000:
        case ImageFormat::Jp2:
        case ImageFormat::Dds:
        case ImageFormat::Tiff:
            break;
    }
    throw Error(path + ": must be a PNG, PPM, PGM or PAM picture");
}

}  // namespace

std::unique_ptr<RowReader> openPicture(const std::string& path, SampleDepth depth, Transparency transparency)
{
    std::unique_ptr<RowReader> picture = openAsStored(path, depth);
    return transparency == Transparency::Kept ? std::move(picture) : overWhite(std::move(picture));
}

std::unique_ptr<RowWriter> makePictureWriter(ImageFormat format, const Shape& shape, ByteSink& sink)
{
    switch (format) {
        case ImageFormat::Png:
            return makePngWriter(shape, sink);
        case ImageFormat::Ppm:
            return makePnmWriter(shape, PnmKind::Ppm, sink);
        case ImageFormat::Pgm:
            return makePnmWriter(shape, PnmKind::Pgm, sink);
        case ImageFormat::Pam:
            return makePnmWriter(shape, PnmKind::Pam, sink);
        case ImageFormat::Pfm:
        case ImageFormat::Jpeg:
        case ImageFormat::Jpeg2000:
        case ImageFormat::Jp2:
        case ImageFormat::Dds:
        case ImageFormat::Tiff:
            break;
    }
    throw Error("the picture must become a PNG, PPM, PGM or PAM file");
}

}  // namespace vekpix
