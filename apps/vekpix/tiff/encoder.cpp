#include "tiff/encoder.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "error.h"
#include "tiff/directory_writer.h"
#include "vekj/tiff.h"

namespace vekpix::tiff {

namespace {

constexpr size_t stripBytes = 128 << 10;  // before packing, unless a row has more
constexpr int longestLiteral = 128;       // each takes one byte more

class Encoder {
public:
    Encoder(RowReader& picture, ChangeableSink& sink, const EncodeOptions& options)
        : picture_(picture), shape_(picture.shape()), sink_(sink), options_(options)
    {
        const size_t rows = std::clamp(stripBytes / shape_.rowBytes(), size_t{1}, static_cast<size_t>(shape_.height));
        rowsPerStrip_ = static_cast<int>(rows);
        pixels_.resize(rows * shape_.rowBytes());
        if (options.packBits)
            packed_.resize(rows * packedRowRoom());
    }

    void run()
    {
        write(headerOf(options_.order, 0));
        for (int y = 0; y < shape_.height; y += rowsPerStrip_) {
            const int rows = std::min(rowsPerStrip_, shape_.height - y);
            writeStrip(rows);
            options_.onRows(rows);
        }
        if (written_ % 2 != 0)
            write(std::vector<uint8_t>(1));
        const uint32_t place = written_;
        write(directory());
        sink_.change(0, headerOf(options_.order, place));
    }

private:
    size_t packedRowRoom() const
    {
        return shape_.rowBytes() + (shape_.rowBytes() + longestLiteral - 1) / longestLiteral;
    }

    void writeStrip(int rows)
    {
        const size_t step = shape_.rowBytes();
        picture_.readRows(pixels_.data(), step, rows);
        if (shape_.bits == 16)
            reorderWords(pixels_.data(), static_cast<size_t>(rows) * shape_.rowSamples(), options_.order);
        std::span<const uint8_t> strip(pixels_.data(), static_cast<size_t>(rows) * step);
        if (options_.packBits)
            strip = packed(rows);
        offsets_.push_back(written_);
        byteCounts_.push_back(static_cast<uint32_t>(strip.size()));
        write(strip);
    }

    // Every row by itself.
    std::span<const uint8_t> packed(int rows)
    {
        const size_t step = shape_.rowBytes();
        int length = 0;
        for (int y = 0; y < rows; ++y)
            if (vekiPackBitsRow_TIFF_8u_C1(pixels_.data() + static_cast<size_t>(y) * step, static_cast<int>(step),
                                           packed_.data(), &length, static_cast<int>(packedRowRoom())) != vekStsOk)
                throw Error("a row cannot be packed");
        return {packed_.data(), static_cast<size_t>(length)};
    }

    void write(std::span<const uint8_t> bytes)
    {
        if (bytes.size() > std::numeric_limits<uint32_t>::max() - written_)
            throw Error("the picture is too large for a TIFF file, which ends at 4 GiB");
        sink_.write(bytes);
        written_ += static_cast<uint32_t>(bytes.size());
    }

    std::vector<uint8_t> directory() const
    {
        const auto channels = static_cast<uint32_t>(shape_.channels);
        const std::vector<uint32_t> bits(channels, static_cast<uint32_t>(shape_.bits));
        const std::vector<uint32_t> noResolution = {1, 1};
        const auto compression = options_.packBits ? Compression::PackBits : Compression::None;
        const auto photometric = channels == 3 ? Photometric::Rgb : Photometric::BlackIsZero;
        DirectoryWriter out(options_.order);
        out.add(Tag::ImageWidth, FieldType::Long, static_cast<uint32_t>(shape_.width));
        out.add(Tag::ImageLength, FieldType::Long, static_cast<uint32_t>(shape_.height));
        out.add(Tag::BitsPerSample, FieldType::Short, bits);
        out.add(Tag::Compression, FieldType::Short, static_cast<uint32_t>(compression));
        out.add(Tag::PhotometricInterpretation, FieldType::Short, static_cast<uint32_t>(photometric));
        out.add(Tag::StripOffsets, FieldType::Long, offsets_);
        out.add(Tag::Orientation, FieldType::Short, 1);  // rows from the top, pixels from the left
        out.add(Tag::SamplesPerPixel, FieldType::Short, channels);
        out.add(Tag::RowsPerStrip, FieldType::Long, static_cast<uint32_t>(rowsPerStrip_));
        out.add(Tag::StripByteCounts, FieldType::Long, byteCounts_);
        out.add(Tag::XResolution, FieldType::Rational, noResolution);
        out.add(Tag::YResolution, FieldType::Rational, noResolution);
        out.add(Tag::PlanarConfiguration, FieldType::Short, static_cast<uint32_t>(Planar::Chunky));
        out.add(Tag::ResolutionUnit, FieldType::Short, 1);
        return out.bytes(written_);
    }

    RowReader& picture_;
    const Shape shape_;
    ChangeableSink& sink_;
    const EncodeOptions& options_;
    int rowsPerStrip_ = 0;
    std::vector<uint8_t> pixels_;
    std::vector<uint8_t> packed_;
    std::vector<uint32_t> offsets_;
    std::vector<uint32_t> byteCounts_;
    uint32_t written_ = 0;
};

}  // namespace

void encode(RowReader& picture, ChangeableSink& sink, const EncodeOptions& options)
{
    const Shape& shape = picture.shape();
    if (shape.channels != 1 && shape.channels != 3)
        throw Error("TIFF files of inks are not supported");
    if (shape.bits != 8 && shape.bits != 16)
        throw Error("TIFF files hold samples of 8 or 16 bits");
    Encoder(picture, sink, options).run();
}

}  // namespace vekpix::tiff
