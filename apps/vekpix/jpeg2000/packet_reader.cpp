#include "jpeg2000/packet_reader.h"

#include <algorithm>
#include <memory>

#include "jpeg2000/markers.h"
#include "jpeg2000/packet_code.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int mostZeroPlanes = 64;

// Tells of each block of a precinct's band in which layer it begins, and how many of its planes are missing.
struct BandTrees {
    TagTree inclusion;
    TagTree zeroPlanes;
};

struct PrecinctTrees {
    std::vector<BandTrees> bands;
};

class PacketReader {
public:
    PacketReader(const TileLayout& layout, const TileParameters& parameters, const TilePackets& packets,
                 const Wanted& wanted)
        : layout_(layout), parameters_(parameters), packets_(packets), wanted_(wanted), headers_(packets.headers)
    {
        data_.blocks.resize(layout.blocks.size());
        for (const TileComponent& component : layout.components) {
            trees_.emplace_back();
            for (const Resolution& resolution : component.resolutions)
                trees_.back().emplace_back(resolution.precincts.size());
        }
    }

    TileData readAll()
    {
        forEachPacket(layout_, parameters_, [this](const Packet& packet) { return readPacket(packet); });
        return std::move(data_);
    }

private:
    // A code-block's share of a packet.
    struct Share {
        int block;
        uint32_t length;
        bool beginsSegment;
        int passes;
    };

    bool readPacket(const Packet& packet)
    {
        while (rest_.empty() && nextPart_ < packets_.parts.size()) rest_ = packets_.parts[nextPart_++];
        std::span<const uint8_t>& headers = packets_.headersApart ? headers_ : rest_;
        if (headers.empty())
            return false;
        skipMarker(rest_, markerSop, 6);
        shares_.clear();
        readHeader(packet, headers);
        skipMarker(headers, markerEph, 2);
        const bool isWanted = packet.layer < wanted_.layers && packet.resolution < resolutionsWanted(packet.component);
        for (const Share& share : shares_) take(share, isWanted);
        return true;
    }

    int resolutionsWanted(int component) const
    {
        const size_t all = layout_.components[static_cast<size_t>(component)].resolutions.size();
        return static_cast<int>(all) - wanted_.droppedResolutions;
    }

    // Markers may stand here only if the headers say so, but no packet can be mistaken for one.
    static void skipMarker(std::span<const uint8_t>& bytes, Marker marker, size_t length)
    {
        if (bytes.size() >= length && bytes[0] == 0xFF && bytes[1] == (marker & 0xFF))
            bytes = bytes.subspan(length);
    }

    void readHeader(const Packet& packet, std::span<const uint8_t>& bytes)
    {
        HeaderBitReader bits(bytes);
        const auto c = static_cast<size_t>(packet.component);
        const auto r = static_cast<size_t>(packet.resolution);
        const auto k = static_cast<size_t>(packet.precinct);
        const Resolution& resolution = layout_.components[c].resolutions[r];
        const int style = parameters_.components[c].style.blockStyle;
        if (bits.bit() != 0) {
            PrecinctTrees& trees = treesOf(c, r, k, resolution);
            for (size_t b = 0; b < resolution.bands.size(); ++b) {
                const PrecinctBand& band = resolution.precincts[k].bands[b];
                for (int i = 0; i < band.columns * band.rows; ++i)
                    readBlock(bits, trees.bands[b], i, band.firstBlock + i, packet.layer, style);
            }
        }
        bytes = bytes.subspan(bits.finish());
    }

    PrecinctTrees& treesOf(size_t c, size_t r, size_t k, const Resolution& resolution)
    {
        std::unique_ptr<PrecinctTrees>& trees = trees_[c][r][k];
        if (!trees) {
            trees = std::make_unique<PrecinctTrees>();
            for (size_t b = 0; b < resolution.bands.size(); ++b) {
                const PrecinctBand& band = resolution.precincts[k].bands[b];
                trees->bands.push_back({TagTree(band.columns, band.rows), TagTree(band.columns, band.rows)});
            }
        }
        return *trees;
    }

    void readBlock(HeaderBitReader& bits, BandTrees& trees, int cell, int number, int layer, int style)
    {
        BlockData& block = data_.blocks[static_cast<size_t>(number)];
        if (block.zeroPlanes >= 0) {
            if (bits.bit() == 0)
                return;
        } else {
            if (!trees.inclusion.readBelow(bits, cell, layer + 1))
                return;
            int threshold = 1;
            while (!trees.zeroPlanes.readBelow(bits, cell, threshold))
                if (++threshold > mostZeroPlanes)
                    throw Error("a code-block has too few bit planes");
            block.zeroPlanes = trees.zeroPlanes.value(cell);
            block.lengthBits = firstLengthBits;
        }
        int passes = readPassCount(bits);
        while (bits.bit() != 0) ++block.lengthBits;
        while (passes > 0) {
            const int room = block.segmentBegan + segmentPasses(style, block.segmentBegan) - block.passesRead;
            const int share = std::min(passes, room);
            const int lengthBits = block.lengthBits + extraLengthBits(share);
            if (lengthBits > 31)
                throw Error("a code-block is too long");
            shares_.push_back(
                {number, static_cast<uint32_t>(bits.bits(lengthBits)), block.passesRead == block.segmentBegan, share});
            block.passesRead += share;
            if (share == room)
                block.segmentBegan = block.passesRead;
            passes -= share;
        }
    }

    void take(const Share& share, bool isWanted)
    {
        if (share.length > rest_.size())
            throw Error("a packet ends early");
        if (isWanted) {
            BlockData& block = data_.blocks[static_cast<size_t>(share.block)];
            const int chunk = static_cast<int>(data_.chunks.size());
            data_.chunks.push_back({rest_.data(), share.length, share.beginsSegment, -1});
            (block.firstChunk < 0 ? block.firstChunk : data_.chunks[static_cast<size_t>(block.lastChunk)].next) = chunk;
            block.lastChunk = chunk;
            block.passes += share.passes;
        }
        rest_ = rest_.subspan(share.length);
    }

    const TileLayout& layout_;
    const TileParameters& parameters_;
    const TilePackets& packets_;
    const Wanted& wanted_;
    TileData data_;
    std::vector<std::vector<std::vector<std::unique_ptr<PrecinctTrees>>>> trees_;  // component, resolution, precinct
    std::span<const uint8_t> rest_;                                                // of a tile-part
    std::span<const uint8_t> headers_;                                             // where they are apart
    size_t nextPart_ = 0;
    std::vector<Share> shares_;
};

}  // namespace

TileData readPackets(const TileLayout& layout, const TileParameters& parameters, const TilePackets& packets,
                     const Wanted& wanted)
{
    return PacketReader(layout, parameters, packets, wanted).readAll();
}

}  // namespace vekpix::jpeg2000
