#include "tiff/layout.h"

#include <algorithm>
#include <string>

#include "error.h"

namespace vekpix::tiff {

namespace {

constexpr uint32_t maxSize = 1 << 24;          // width and height; keeps every product of them in range
constexpr uint64_t mostBytesOfPackedOne = 64;  // two bytes of PackBits stand for 128 at most

[[noreturn]] void refuse(const std::string& what) { throw Error("TIFF files with " + what + " are not supported"); }
[[noreturn]] void failDamaged(const std::string& what) { throw Error("damaged TIFF file: " + what); }

int sizeOf(const Directory& directory, Tag tag)
{
    const uint32_t size = directory.number(tag);
    if (size < 1 || size > maxSize)
        failDamaged(std::string(nameOf(tag)) + " is outside 1 .. " + std::to_string(maxSize));
    return static_cast<int>(size);
}

// The number that all values of a field are, one for each sample of a pixel.
uint32_t sameForAll(const Directory& directory, Tag tag, uint32_t samples, uint32_t otherwise)
{
    if (!directory.has(tag))
        return otherwise;
    const Numbers all = directory.numbers(tag);
    if (all.size() != samples)
        failDamaged(std::string(nameOf(tag)) + " has " + std::to_string(all.size()) + " values for " +
                    std::to_string(samples) + " samples");
    for (size_t i = 1; i < all.size(); ++i)
        if (all[i] != all[0])
            refuse("samples of different kinds");
    return all[0];
}

Compression compressionOf(const Directory& directory)
{
    const uint32_t number = directory.number(Tag::Compression, static_cast<uint32_t>(Compression::None));
    const auto compression = static_cast<Compression>(number);
    if (number > 0xFFFF || (compression != Compression::None && compression != Compression::PackBits))
        refuse("compression " + std::to_string(number));
    return compression;
}

Photometric photometricOf(const Directory& directory)
{
    const uint32_t number = directory.number(Tag::PhotometricInterpretation);
    if (number == static_cast<uint32_t>(Photometric::Palette))
        refuse("palettes");
    if (number > static_cast<uint32_t>(Photometric::Palette))
        refuse("photometric interpretation " + std::to_string(number));
    return static_cast<Photometric>(number);
}

Shape shapeOf(const Directory& directory, Photometric photometric)
{
    Shape shape;
    shape.width = sizeOf(directory, Tag::ImageWidth);
    shape.height = sizeOf(directory, Tag::ImageLength);
    shape.channels = photometric == Photometric::Rgb ? 3 : 1;
    const auto channels = static_cast<uint32_t>(shape.channels);
    const uint32_t samples = directory.number(Tag::SamplesPerPixel, 1);
    if (samples < channels)
        failDamaged("fewer samples than colours");
    if (samples > channels || directory.has(Tag::ExtraSamples))
        refuse("extra samples");
    const uint32_t bits = sameForAll(directory, Tag::BitsPerSample, samples, 1);
    if (bits != 8 && bits != 16)
        refuse("samples of " + std::to_string(bits) + (bits == 1 ? " bit" : " bits"));
    shape.bits = static_cast<int>(bits);
    if (sameForAll(directory, Tag::SampleFormat, samples, 1) != 1)
        refuse("samples that are no whole numbers from 0");
    return shape;
}

int planesOf(const Directory& directory, int channels)
{
    const uint32_t number = directory.number(Tag::PlanarConfiguration, static_cast<uint32_t>(Planar::Chunky));
    if (number == static_cast<uint32_t>(Planar::Separate))
        return channels;
    if (number != static_cast<uint32_t>(Planar::Chunky))
        failDamaged("PlanarConfiguration is " + std::to_string(number));
    return 1;
}

void checkStrips(const Layout& layout, size_t fileBytes)
{
    const auto perPlane = static_cast<size_t>(layout.stripsPerPlane);
    const size_t count = perPlane * static_cast<size_t>(layout.planes);
    if (layout.offsets.size() != count || layout.byteCounts.size() != count)
        failDamaged("it lists " + std::to_string(layout.offsets.size()) + " strips with " +
                    std::to_string(layout.byteCounts.size()) + " lengths, and should have " + std::to_string(count));
    const uint64_t expansion = layout.compression == Compression::None ? 1 : mostBytesOfPackedOne;
    uint64_t sum = 0;
    for (size_t i = 0; i < count; ++i) {
        const int above = static_cast<int>(i % perPlane) * layout.rowsPerStrip;
        const auto rows = static_cast<uint64_t>(std::min(layout.rowsPerStrip, layout.shape.height - above));
        const uint64_t length = layout.byteCounts[i];
        sum += length;
        if (layout.offsets[i] + length > fileBytes)
            failDamaged("strip " + std::to_string(i) + " lies outside");
        if (length * expansion < rows * layout.planeRowBytes())
            failDamaged("strip " + std::to_string(i) + " is too short for its rows");
    }
    if (sum > fileBytes)
        failDamaged("its strips overlap");
}

}  // namespace

Layout layoutOf(const Directory& directory, std::span<const uint8_t> file)
{
    if (directory.has(Tag::TileWidth) || directory.has(Tag::TileOffsets))
        refuse("tiles");
    const Compression compression = compressionOf(directory);
    const Photometric photometric = photometricOf(directory);
    const Shape shape = shapeOf(directory, photometric);
    if (directory.number(Tag::FillOrder, 1) != 1)
        refuse("bits in reversed order");
    const uint32_t rowsPerStrip = directory.number(Tag::RowsPerStrip, UINT32_MAX);
    if (rowsPerStrip == 0)
        failDamaged("RowsPerStrip is 0");
    Layout layout{shape,
                  directory.order(),
                  compression,
                  photometric == Photometric::WhiteIsZero,
                  planesOf(directory, shape.channels),
                  static_cast<int>(std::min(rowsPerStrip, static_cast<uint32_t>(shape.height))),
                  0,
                  directory.numbers(Tag::StripOffsets),
                  directory.numbers(Tag::StripByteCounts)};
    layout.stripsPerPlane = (shape.height + layout.rowsPerStrip - 1) / layout.rowsPerStrip;
    checkStrips(layout, file.size());
    return layout;
}

}  // namespace vekpix::tiff
