#include "jpeg2000/codestream_reader.h"

#include <algorithm>
#include <limits>
#include <string>

#include "error.h"
#include "jpeg2000/big_endian.h"
#include "jpeg2000/markers.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int64_t largestCoordinate = 1 << 30;
constexpr int64_t mostTiles = 65535;
// Components of all tiles together, whatever the file's length; above, each must have a byte.
constexpr int64_t tileComponentsAnyway = 1 << 16;
constexpr size_t mostChanges = 512;

// Of two markers that set the same the higher counts.
enum Rank : uint8_t { rankNone, rankMain, rankMainComponent, rankTile, rankTileComponent };

// Applies marker segments of the main header or a tile's to parameters.
class HeaderParser {
public:
    HeaderParser(const PictureSize& size, TileParameters& parameters, std::vector<uint8_t>& styleRanks,
                 std::vector<uint8_t>& quantizationRanks, bool isTile)
        : size_(size),
          parameters_(parameters),
          styleRanks_(styleRanks),
          quantizationRanks_(quantizationRanks),
          isTile_(isTile)
    {
    }

    void segment(uint16_t marker, Fields fields)
    {
        switch (marker) {
            case markerCod:
                cod(fields);
                break;
            case markerCoc:
                coc(fields);
                break;
            case markerQcd:
                qcd(fields);
                break;
            case markerQcc:
                qcc(fields);
                break;
            case markerRgn:
                rgn(fields);
                break;
            case markerPoc:
                poc(fields);
                break;
            case markerCap:
                throw Error("the code-stream is of a later part of the standard");
            default:  // comments, lengths and the like
                break;
        }
    }

private:
    void cod(Fields& fields)
    {
        const uint32_t flags = fields.u8();
        const uint32_t progression = fields.u8();
        if (progression > static_cast<uint32_t>(Progression::Cprl))
            throw Error("unknown progression order");
        parameters_.progression = static_cast<Progression>(progression);
        parameters_.layers = static_cast<int>(fields.u16());
        if (parameters_.layers == 0)
            throw Error("the code-stream has no layers");
        const uint32_t componentTransform = fields.u8();
        if (componentTransform > 1)
            throw Error("unknown component transform");
        parameters_.componentTransform = componentTransform == 1;
        parameters_.packetMarkers = (flags & 2) != 0;
        parameters_.headerMarkers = (flags & 4) != 0;
        const CodingStyle style = codingStyle(fields, (flags & 1) != 0);
        const Rank rank = isTile_ ? rankTile : rankMain;
        for (size_t c = 0; c < parameters_.components.size(); ++c) setStyle(c, style, rank);
    }

    void coc(Fields& fields)
    {
        const size_t component = componentIndex(fields);
        const uint32_t flags = fields.u8();
        setStyle(component, codingStyle(fields, (flags & 1) != 0), isTile_ ? rankTileComponent : rankMainComponent);
    }

    static CodingStyle codingStyle(Fields& fields, bool hasPrecincts)
    {
        CodingStyle style;
        style.levels = static_cast<int>(fields.u8());
        style.blockWidthLog = static_cast<int>(fields.u8()) + 2;
        style.blockHeightLog = static_cast<int>(fields.u8()) + 2;
        style.blockStyle = static_cast<int>(fields.u8());
        const uint32_t transform = fields.u8();
        if (transform > 1)
            throw Error("unknown wavelet transform");
        style.reversible = transform == 1;
        if (style.levels > maxLevels)
            throw Error("too many decomposition levels");
        if (style.blockWidthLog > 10 || style.blockHeightLog > 10 || style.blockWidthLog + style.blockHeightLog > 12)
            throw Error("a code-block is larger than the standard allows");
        if ((style.blockStyle & ~0x3F) != 0)
            throw Error("unknown code-block style");
        for (int r = 0; r <= style.levels; ++r) {
            const uint32_t sizes = hasPrecincts ? fields.u8() : 0xFF;
            if (r > 0 && ((sizes & 15) == 0 || sizes >> 4 == 0))
                throw Error("a precinct is too small");
            style.precinctWidthLog[static_cast<size_t>(r)] = sizes & 15;
            style.precinctHeightLog[static_cast<size_t>(r)] = static_cast<uint8_t>(sizes >> 4);
        }
        return style;
    }

    void qcd(Fields& fields)
    {
        const Quantization quantization = readQuantization(fields);
        for (size_t c = 0; c < parameters_.components.size(); ++c)
            setQuantization(c, quantization, isTile_ ? rankTile : rankMain);
    }

    void qcc(Fields& fields)
    {
        const size_t component = componentIndex(fields);
        setQuantization(component, readQuantization(fields), isTile_ ? rankTileComponent : rankMainComponent);
    }

    static Quantization readQuantization(Fields& fields)
    {
        Quantization quantization;
        const uint32_t style = fields.u8();
        quantization.guardBits = static_cast<int>(style >> 5);
        if ((style & 31) > 2)
            throw Error("unknown quantisation style");
        quantization.kind = static_cast<StepSizes>(style & 31);
        const size_t bytes = quantization.kind == StepSizes::None ? 1 : 2;
        const size_t count =
            quantization.kind == StepSizes::Derived ? 1 : std::min<size_t>(fields.left() / bytes, maxBands);
        for (size_t b = 0; b < count; ++b) {
            if (quantization.kind == StepSizes::None) {
                quantization.steps[b].exponent = static_cast<int>(fields.u8() >> 3);
            } else {
                const uint32_t step = fields.u16();
                quantization.steps[b] = {static_cast<int>(step >> 11), static_cast<int>(step & 0x7FF)};
            }
        }
        if (quantization.kind == StepSizes::Derived)
            for (int b = 1; b < maxBands; ++b) {
                StepSize& step = quantization.steps[static_cast<size_t>(b)];
                step = quantization.steps[0];
                step.exponent = std::max(0, step.exponent - (b - 1) / 3);
            }
        return quantization;
    }

    void rgn(Fields& fields)
    {
        const size_t component = componentIndex(fields);
        if (fields.u8() != 0)
            throw Error("unknown style of a region of interest");
        parameters_.components[component].regionShift = static_cast<int>(fields.u8());
    }

    void poc(Fields& fields)
    {
        if (isTile_ && !hasOwnChanges_)
            parameters_.changes.clear();
        hasOwnChanges_ = true;
        const bool wide = size_.components.size() > 256;
        while (fields.left() > 0) {
            ProgressionRange range;
            range.firstResolution = static_cast<int>(fields.u8());
            range.firstComponent = static_cast<int>(wide ? fields.u16() : fields.u8());
            range.endLayer = static_cast<int>(fields.u16());
            range.endResolution = static_cast<int>(fields.u8());
            range.endComponent = static_cast<int>(wide ? fields.u16() : fields.u8());
            if (range.endComponent == 0)
                range.endComponent = wide ? 16384 : 256;
            const uint32_t order = fields.u8();
            if (order > static_cast<uint32_t>(Progression::Cprl))
                throw Error("unknown progression order");
            range.order = static_cast<Progression>(order);
            if (parameters_.changes.size() == mostChanges)
                throw Error("too many progression changes");
            parameters_.changes.push_back(range);
        }
    }

    size_t componentIndex(Fields& fields) const
    {
        const size_t index = size_.components.size() > 256 ? fields.u16() : fields.u8();
        if (index >= size_.components.size())
            throw Error("a header names a component that is not there");
        return index;
    }

    void setStyle(size_t component, const CodingStyle& style, Rank rank)
    {
        if (rank < styleRanks_[component])
            return;
        parameters_.components[component].style = style;
        styleRanks_[component] = rank;
    }

    void setQuantization(size_t component, const Quantization& quantization, Rank rank)
    {
        if (rank < quantizationRanks_[component])
            return;
        parameters_.components[component].quantization = quantization;
        quantizationRanks_[component] = rank;
    }

    const PictureSize& size_;
    TileParameters& parameters_;
    std::vector<uint8_t>& styleRanks_;
    std::vector<uint8_t>& quantizationRanks_;
    bool isTile_;
    bool hasOwnChanges_ = false;
};

void checkComponents(const TileParameters& parameters)
{
    for (const ComponentParameters& component : parameters.components)
        if (component.style.reversible && component.quantization.kind != StepSizes::None)
            throw Error("a reversible transform has quantised samples");
}

PictureSize readSize(Fields fields)
{
    PictureSize size;
    fields.u16();  // capabilities
    size.x1 = fields.u32();
    size.y1 = fields.u32();
    size.x0 = fields.u32();
    size.y0 = fields.u32();
    size.tileWidth = fields.u32();
    size.tileHeight = fields.u32();
    size.tileX0 = fields.u32();
    size.tileY0 = fields.u32();
    const uint32_t count = fields.u16();
    if (count == 0 || count > 16384 || fields.left() != 3 * count)
        throw Error("impossible number of components");
    if (size.x1 > largestCoordinate || size.y1 > largestCoordinate)
        throw Error("the picture is too large");
    if (size.x0 >= size.x1 || size.y0 >= size.y1 || size.tileWidth == 0 || size.tileHeight == 0 ||
        size.tileX0 > size.x0 || size.tileY0 > size.y0 || size.tileX0 + size.tileWidth <= size.x0 ||
        size.tileY0 + size.tileHeight <= size.y0)
        throw Error("impossible sizes of picture and tiles");
    const int64_t tiles =
        ceilDiv(size.x1 - size.tileX0, size.tileWidth) * ceilDiv(size.y1 - size.tileY0, size.tileHeight);
    if (tiles > mostTiles)
        throw Error("too many tiles");
    for (uint32_t c = 0; c < count; ++c) {
        const uint32_t depth = fields.u8();
        ComponentSize component;
        component.isSigned = (depth & 0x80) != 0;
        component.bits = static_cast<int>(depth & 0x7F) + 1;
        component.dx = static_cast<int>(fields.u8());
        component.dy = static_cast<int>(fields.u8());
        if (component.dx == 0 || component.dy == 0)
            throw Error("impossible sample distances");
        size.components.push_back(component);
    }
    return size;
}

void append(std::vector<uint8_t>& bytes, std::span<const uint8_t> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// The contents of marker segments with packet headers, which number themselves.
class PackedHeaders {
public:
    void add(Fields fields)
    {
        const uint32_t number = fields.u8();
        segments_.push_back({number, fields.rest()});
    }
    bool empty() const { return segments_.empty(); }
    std::vector<uint8_t> joined()
    {
        std::stable_sort(segments_.begin(), segments_.end(),
                         [](const Segment& a, const Segment& b) { return a.number < b.number; });
        std::vector<uint8_t> bytes;
        for (const Segment& segment : segments_) append(bytes, segment.bytes);
        return bytes;
    }

private:
    struct Segment {
        uint32_t number;
        std::span<const uint8_t> bytes;
    };
    std::vector<Segment> segments_;
};

// Calls visit(marker, fields) for marker segments up to one of `end` or the last byte; returns the bytes from there on.
template <class Visit>
std::span<const uint8_t> forEachSegment(std::span<const uint8_t> bytes, std::initializer_list<Marker> end,
                                        const Visit& visit)
{
    Fields fields(bytes);
    for (;;) {
        const auto here = fields.rest();
        const auto marker = static_cast<uint16_t>(fields.u16());
        if (std::find(end.begin(), end.end(), marker) != end.end())
            return here;
        if (marker < 0xFF00)
            throw Error("the code-stream has no marker where one must be");
        const uint32_t length = fields.u16();
        if (length < 2)
            throw Error("a marker segment is too short");
        visit(marker, Fields(fields.bytes(length - 2)));
    }
}

}  // namespace

Codestream::Codestream(std::span<const uint8_t> bytes)
{
    Fields start(bytes);
    if (bytes.size() < 4 || start.u16() != markerSoc || start.u16() != markerSiz)
        throw Error("not a JPEG 2000 code-stream");
    const uint32_t sizeLength = start.u16();
    size_ = readSize(Fields(start.bytes(sizeLength < 2 ? 0 : sizeLength - 2)));
    const auto components = static_cast<int64_t>(size_.components.size());
    if (size_.tileCount() * components > std::max(tileComponentsAnyway, static_cast<int64_t>(bytes.size())))
        throw Error("the file holds too little data for its tiles and components");
    parameters_.components.resize(size_.components.size());
    styleRanks_.assign(size_.components.size(), rankNone);
    quantizationRanks_.assign(size_.components.size(), rankNone);
    tiles_.resize(static_cast<size_t>(size_.tileCount()));
    HeaderParser parser(size_, parameters_, styleRanks_, quantizationRanks_, false);
    PackedHeaders packed;
    auto rest = forEachSegment(start.rest(), {markerSot, markerEoc}, [&](uint16_t marker, Fields fields) {
        if (marker == markerPpm)
            packed.add(fields);
        else
            parser.segment(marker, fields);
    });
    for (size_t c = 0; c < size_.components.size(); ++c)
        if (styleRanks_[c] == rankNone || quantizationRanks_[c] == rankNone)
            throw Error("the code-stream tells no coding style");
    const bool allPacked = !packed.empty();
    const std::vector<uint8_t> packedBytes = packed.joined();
    Fields packedLeft(packedBytes);

    while (rest.size() >= 2 && rest[0] == 0xFF && rest[1] == (markerSot & 0xFF)) {
        Fields fields(rest);
        fields.u16();
        if (fields.u16() != 10)
            throw Error("a tile-part has an impossible header");
        const uint32_t tile = fields.u16();
        uint64_t length = fields.u32();
        fields.u8();  // the tile-part's number
        const uint32_t partCount = fields.u8();
        if (tile >= tiles_.size())
            throw Error("a tile-part belongs to no tile");
        if (length == 0) {  // up to the end
            length = rest.size();
            if (length >= 2 && rest[length - 2] == 0xFF && rest[length - 1] == (markerEoc & 0xFF))
                length -= 2;
        }
        if (length > rest.size())
            throw Error("the file ends early");
        constexpr size_t startLength = 12;
        if (length < startLength + 2)
            throw Error("a tile-part is too short");
        const auto part = rest.first(length).subspan(startLength);
        PackedHeaders partPacked;
        const auto data = forEachSegment(part, {markerSod}, [&](uint16_t marker, const Fields& segment) {
            if (marker == markerPpt)
                partPacked.add(segment);
        });
        tiles_[tile].headers.push_back(part.first(part.size() - data.size() + 2));
        TilePackets& packets = tiles_[tile].packets;
        packets.parts.push_back(data.subspan(2));
        packets.headersApart |= allPacked || !partPacked.empty();
        if (allPacked)
            append(packets.headers, packedLeft.bytes(packedLeft.u32()));
        append(packets.headers, partPacked.joined());
        tiles_[tile].toldParts = std::max<size_t>(tiles_[tile].toldParts, partCount);
        rest = rest.subspan(length);
    }
    for (const TileParts& tile : tiles_)
        if (tile.packets.parts.size() < tile.toldParts)
            throw Error("the file ends early");
}

TileParameters Codestream::tileParameters(int tile) const
{
    TileParameters parameters = parameters_;
    std::vector<uint8_t> styleRanks = styleRanks_;
    std::vector<uint8_t> quantizationRanks = quantizationRanks_;
    HeaderParser parser(size_, parameters, styleRanks, quantizationRanks, true);
    for (const auto& header : tiles_[static_cast<size_t>(tile)].headers)
        forEachSegment(header, {markerSod}, [&](uint16_t marker, Fields fields) { parser.segment(marker, fields); });
    checkComponents(parameters);
    return parameters;
}

}  // namespace vekpix::jpeg2000
