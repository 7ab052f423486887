// The fields of a directory that the application knows, and their values (TIFF 6.0, sections 2 to 10).
#ifndef VEKPIX_TIFF_TAGS_H
#define VEKPIX_TIFF_TAGS_H

#include <cstdint>

namespace vekpix::tiff {

enum class Tag : uint16_t {
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    PhotometricInterpretation = 262,
    FillOrder = 266,
    StripOffsets = 273,
    Orientation = 274,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    XResolution = 282,
    YResolution = 283,
    PlanarConfiguration = 284,
    ResolutionUnit = 296,
    Predictor = 317,
    ColorMap = 320,
    TileWidth = 322,
    TileOffsets = 324,
    ExtraSamples = 338,
    SampleFormat = 339,
};

// The name of a field, or null for one that is not known.
constexpr const char* nameOf(Tag tag)
{
    switch (tag) {
        case Tag::ImageWidth:
            return "ImageWidth";
        case Tag::ImageLength:
            return "ImageLength";
        case Tag::BitsPerSample:
            return "BitsPerSample";
        case Tag::Compression:
            return "Compression";
        case Tag::PhotometricInterpretation:
            return "PhotometricInterpretation";
        case Tag::FillOrder:
            return "FillOrder";
        case Tag::StripOffsets:
            return "StripOffsets";
        case Tag::Orientation:
            return "Orientation";
        case Tag::SamplesPerPixel:
            return "SamplesPerPixel";
        case Tag::RowsPerStrip:
            return "RowsPerStrip";
        case Tag::StripByteCounts:
            return "StripByteCounts";
        case Tag::XResolution:
            return "XResolution";
        case Tag::YResolution:
            return "YResolution";
        case Tag::PlanarConfiguration:
            return "PlanarConfiguration";
        case Tag::ResolutionUnit:
            return "ResolutionUnit";
        case Tag::Predictor:
            return "Predictor";
        case Tag::ColorMap:
            return "ColorMap";
        case Tag::TileWidth:
            return "TileWidth";
        case Tag::TileOffsets:
            return "TileOffsets";
        case Tag::ExtraSamples:
            return "ExtraSamples";
        case Tag::SampleFormat:
            return "SampleFormat";
    }
    return nullptr;
}

enum class FieldType : uint16_t { Byte = 1, Short = 3, Long = 4, Rational = 5 };

// Bytes of a whole number; 0 for a type that is none.
constexpr uint32_t numberBytes(FieldType type)
{
    return type == FieldType::Byte ? 1 : type == FieldType::Short ? 2 : type == FieldType::Long ? 4 : 0;
}

enum class Compression : uint16_t { None = 1, PackBits = 32773 };
enum class Photometric : uint16_t { WhiteIsZero = 0, BlackIsZero = 1, Rgb = 2, Palette = 3 };
enum class Planar : uint16_t { Chunky = 1, Separate = 2 };

constexpr uint16_t classicVersion = 42;
constexpr uint16_t bigVersion = 43;
constexpr uint32_t headerBytes = 8;
constexpr uint32_t entryBytes = 12;

}  // namespace vekpix::tiff

#endif
