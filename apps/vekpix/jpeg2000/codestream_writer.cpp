#include "jpeg2000/codestream_writer.h"

#include "error.h"
#include "jpeg2000/big_endian.h"
#include "jpeg2000/markers.h"

namespace vekpix::jpeg2000 {

namespace {

void appendSegment(std::vector<uint8_t>& out, Marker marker, const std::vector<uint8_t>& contents)
{
    put16(out, marker);
    put16(out, static_cast<uint32_t>(contents.size() + 2));
    out.insert(out.end(), contents.begin(), contents.end());
}

std::vector<uint8_t> sizeSegment(const PictureSize& size)
{
    std::vector<uint8_t> out;
    put16(out, 0);
    for (const int64_t value :
         {size.x1, size.y1, size.x0, size.y0, size.tileWidth, size.tileHeight, size.tileX0, size.tileY0})
        put32(out, static_cast<uint32_t>(value));
    put16(out, static_cast<uint32_t>(size.components.size()));
    for (const ComponentSize& component : size.components) {
        put8(out, static_cast<uint32_t>((component.isSigned ? 0x80 : 0) | (component.bits - 1)));
        put8(out, static_cast<uint32_t>(component.dx));
        put8(out, static_cast<uint32_t>(component.dy));
    }
    return out;
}

std::vector<uint8_t> styleSegment(const TileParameters& parameters)
{
    const CodingStyle& style = parameters.components[0].style;
    std::vector<uint8_t> out;
    put8(out, 0);  // precincts of the largest size, no markers among packets
    put8(out, static_cast<uint32_t>(parameters.progression));
    put16(out, static_cast<uint32_t>(parameters.layers));
    put8(out, parameters.componentTransform ? 1 : 0);
    put8(out, static_cast<uint32_t>(style.levels));
    put8(out, static_cast<uint32_t>(style.blockWidthLog - 2));
    put8(out, static_cast<uint32_t>(style.blockHeightLog - 2));
    put8(out, static_cast<uint32_t>(style.blockStyle));
    put8(out, style.reversible ? 1 : 0);
    return out;
}

std::vector<uint8_t> quantizationSegment(const TileParameters& parameters)
{
    const Quantization& quantization = parameters.components[0].quantization;
    const int bands = 3 * parameters.components[0].style.levels + 1;
    std::vector<uint8_t> out;
    put8(out, static_cast<uint32_t>(quantization.guardBits << 5 | static_cast<int>(quantization.kind)));
    for (int b = 0; b < bands; ++b) {
        const StepSize& step = quantization.steps[static_cast<size_t>(b)];
        if (quantization.kind == StepSizes::None)
            put8(out, static_cast<uint32_t>(step.exponent << 3));
        else
            put16(out, static_cast<uint32_t>(step.exponent << 11 | step.mantissa));
    }
    return out;
}

}  // namespace

std::vector<uint8_t> mainHeader(const PictureSize& size, const TileParameters& parameters)
{
    std::vector<uint8_t> out;
    put16(out, markerSoc);
    appendSegment(out, markerSiz, sizeSegment(size));
    appendSegment(out, markerCod, styleSegment(parameters));
    appendSegment(out, markerQcd, quantizationSegment(parameters));
    return out;
}

void appendTilePartHeader(std::vector<uint8_t>& out, int tile, size_t packetBytes)
{
    if (packetBytes + tilePartHeaderBytes > UINT32_MAX)
        throw Error("a tile has more bytes than the format can tell: smaller tiles are needed");
    std::vector<uint8_t> start;
    put16(start, static_cast<uint32_t>(tile));
    put32(start, static_cast<uint32_t>(packetBytes + tilePartHeaderBytes));
    put8(start, 0);  // the first part of the tile
    put8(start, 1);  // and the only one
    appendSegment(out, markerSot, start);
    put16(out, markerSod);
}

void appendEnd(std::vector<uint8_t>& out) { put16(out, markerEoc); }

}  // namespace vekpix::jpeg2000
