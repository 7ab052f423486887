// TIFF files of every kind that the application reads, and of others, made field by field.
#ifndef VEK_TESTS_VEKPIX_TIFF_FILES_H
#define VEK_TESTS_VEKPIX_TIFF_FILES_H

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "image/depth_rows.h"
#include "image/memory_rows.h"
#include "reference/tiff/pack_bits.h"

namespace support {

using Bytes = std::vector<uint8_t>;

// Shades, runs and noise.
inline vekpix::Raster drawnRaster(int width, int height, int channels, int bits, unsigned seed = 1)
{
    vekpix::Raster raster(vekpix::Shape{.width = width, .height = height, .channels = channels, .bits = bits});
    std::mt19937 engine(seed);
    const size_t samples = raster.shape.rowSamples() * static_cast<size_t>(height);
    for (size_t i = 0; i < samples; ++i) {
        const bool calm = i / 37 % 3 != 0;
        const int value = calm ? static_cast<int>(i / 37 * 1009) : static_cast<int>(engine());
        vekpix::setSample(raster.pixels.data(), i, raster.shape.sampleBytes(), value & ((1 << bits) - 1));
    }
    return raster;
}

struct TiffKind {
    bool bigEndian = false;
    bool packed = false;
    bool packedAcrossRows = false;  // packets know strips only
    bool separate = false;
    bool whiteIsZero = false;
    int rowsPerStrip = 1 << 30;
};

struct TiffField {
    int type;  // 3 words of 16 bits, 4 words of 32; each value of another type takes one byte here
    std::vector<uint32_t> values;
};

class TiffFile {
public:
    TiffFile(const vekpix::Raster& picture, const TiffKind& kind) : kind_(kind)
    {
        const vekpix::Shape& shape = picture.shape;
        const auto channels = static_cast<uint32_t>(shape.channels);
        fields[256] = {4, {static_cast<uint32_t>(shape.width)}};
        fields[257] = {3, {static_cast<uint32_t>(shape.height)}};
        fields[258] = {3, std::vector<uint32_t>(channels, static_cast<uint32_t>(shape.bits))};
        fields[259] = {3, {kind.packed ? 32773U : 1U}};
        fields[262] = {3, {channels == 3 ? 2U : kind.whiteIsZero ? 0U : 1U}};
        fields[277] = {3, {channels}};
        fields[278] = {4, {static_cast<uint32_t>(kind.rowsPerStrip)}};
        fields[284] = {3, {kind.separate ? 2U : 1U}};
        const int planes = kind.separate ? shape.channels : 1;
        for (int plane = 0; plane < planes; ++plane)
            for (int y = 0; y < shape.height; y += std::min(kind.rowsPerStrip, shape.height))
                strips.push_back(strip(picture, plane, planes, y));
    }

    // The file: its header, the strips, the directory, and the values that its entries have no room for.
    Bytes bytes() const
    {
        Bytes file = {static_cast<uint8_t>(kind_.bigEndian ? 'M' : 'I'),
                      static_cast<uint8_t>(kind_.bigEndian ? 'M' : 'I')};
        put(file, version, 2);
        put(file, 0, 4);
        TiffField offsets{4, {}};
        TiffField lengths{4, {}};
        for (const Bytes& strip : strips) {
            offsets.values.push_back(static_cast<uint32_t>(file.size()));
            lengths.values.push_back(static_cast<uint32_t>(strip.size()));
            file.insert(file.end(), strip.begin(), strip.end());
        }
        std::map<int, TiffField> all = fields;
        all.emplace(273, offsets);
        all.emplace(279, lengths);
        file.resize(file.size() + file.size() % 2);
        Bytes place;
        put(place, static_cast<uint32_t>(file.size()), 4);
        std::copy(place.begin(), place.end(), file.begin() + 4);
        Bytes behind;
        const size_t behindBegin = file.size() + 2 + 12 * all.size() + 4;
        put(file, static_cast<uint32_t>(all.size()), 2);
        for (const auto& [tag, field] : all) {
            put(file, static_cast<uint32_t>(tag), 2);
            put(file, static_cast<uint32_t>(field.type), 2);
            put(file, static_cast<uint32_t>(field.values.size()), 4);
            Bytes values;
            for (const uint32_t value : field.values) put(values, value, field.type == 3 ? 2 : field.type == 4 ? 4 : 1);
            if (values.size() > 4) {
                put(file, static_cast<uint32_t>(behindBegin + behind.size()), 4);
                behind.insert(behind.end(), values.begin(), values.end());
            } else {
                values.resize(4);
                file.insert(file.end(), values.begin(), values.end());
            }
        }
        put(file, next, 4);
        file.insert(file.end(), behind.begin(), behind.end());
        return file;
    }

    std::map<int, TiffField> fields;  // without those of strips, unless others are to be told
    std::vector<Bytes> strips;
    uint32_t version = 42;
    uint32_t next = 0;  // directory

private:
    void put(Bytes& file, uint32_t value, int count) const
    {
        for (int i = 0; i < count; ++i)
            file.push_back(static_cast<uint8_t>(value >> 8 * (kind_.bigEndian ? count - 1 - i : i)));
    }

    Bytes strip(const vekpix::Raster& picture, int plane, int planes, int top) const
    {
        const vekpix::Shape& shape = picture.shape;
        Bytes strip;
        Bytes row;
        const auto pack = [&] {
            for (const Bytes& packet : model::packetsOf(row)) strip.insert(strip.end(), packet.begin(), packet.end());
            row.clear();
        };
        for (int y = top; y < shape.height && y - top < kind_.rowsPerStrip; ++y) {
            for (size_t i = static_cast<size_t>(plane); i < shape.rowSamples(); i += static_cast<size_t>(planes)) {
                const int value = vekpix::sampleAt(picture.row(y), i, shape.sampleBytes());
                put(row, static_cast<uint32_t>(kind_.whiteIsZero ? (1 << shape.bits) - 1 - value : value),
                    shape.bits / 8);
            }
            if (kind_.packed && !kind_.packedAcrossRows)
                pack();
        }
        if (kind_.packed)
            pack();
        strip.insert(strip.end(), row.begin(), row.end());
        return strip;
    }

    TiffKind kind_;
};

}  // namespace support

#endif
