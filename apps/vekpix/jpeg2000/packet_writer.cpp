#include "jpeg2000/packet_writer.h"

#include <algorithm>
#include <bit>

#include "jpeg2000/packet_code.h"

namespace vekpix::jpeg2000 {

namespace {

// The passes that a packet adds to a block, as far as they lie in one segment.
struct Portion {
    int passes;
    uint32_t begin;
    uint32_t end;
};

std::vector<Portion> portions(const CodedBlock& block, int style, int from, int to)
{
    std::vector<Portion> result;
    int segmentFirst = 0;
    while (from < to) {
        int segmentEnd = segmentFirst + segmentPasses(style, segmentFirst);
        while (segmentEnd <= from) {
            segmentFirst = segmentEnd;
            segmentEnd += segmentPasses(style, segmentFirst);
        }
        const int end = std::min(to, segmentEnd);
        uint32_t begin = 0;
        if (from > segmentFirst)
            begin = block.passEnds[static_cast<size_t>(from - 1)];
        else if (segmentFirst > 0)
            begin = block.segmentEnds[static_cast<size_t>(segmentFirst - 1)];
        result.push_back({end - from, begin, block.passEnds[static_cast<size_t>(end - 1)]});
        from = end;
    }
    return result;
}

}  // namespace

PacketWriter::PacketWriter(const TileLayout& layout, const TileParameters& parameters,
                           const std::vector<CodedBlock>& blocks)
    : layout_(&layout), parameters_(&parameters), blocks_(&blocks), states_(blocks.size())
{
    for (const TileComponent& component : layout.components) {
        auto& resolutions = bands_.emplace_back();
        for (const Resolution& resolution : component.resolutions) {
            auto& precincts = resolutions.emplace_back();
            for (const Precinct& precinct : resolution.precincts) {
                auto& bands = precincts.emplace_back();
                for (size_t b = 0; b < resolution.bands.size(); ++b) {
                    const PrecinctBand& band = precinct.bands[b];
                    TagTree tree(band.columns, band.rows);
                    bands.push_back({tree, tree});
                    for (int i = 0; i < band.columns * band.rows; ++i) {
                        const CodedBlock& block = blocks[static_cast<size_t>(band.firstBlock + i)];
                        if (block.passes() > 0)
                            bands.back().zeroPlanes.setValue(i, block.zeroPlanes);
                    }
                }
            }
        }
    }
}

size_t PacketWriter::write(const Packet& packet, const std::vector<int>& passes, bool withBodies,
                           std::vector<uint8_t>& out)
{
    const auto c = static_cast<size_t>(packet.component);
    const auto r = static_cast<size_t>(packet.resolution);
    const auto k = static_cast<size_t>(packet.precinct);
    const Resolution& resolution = layout_->components[c].resolutions[r];
    const Precinct& precinct = resolution.precincts[k];
    const int style = parameters_->components[c].style.blockStyle;
    bool isEmpty = true;
    for (size_t b = 0; b < resolution.bands.size(); ++b) {
        const PrecinctBand& band = precinct.bands[b];
        for (int i = 0; i < band.columns * band.rows; ++i) {
            const auto number = static_cast<size_t>(band.firstBlock + i);
            if (passes[number] > states_[number].passes) {
                isEmpty = false;
                if (states_[number].passes == 0)
                    bands_[c][r][k][b].inclusion.setValue(i, packet.layer);
            }
        }
    }
    HeaderBitWriter bits(out);
    bits.bit(isEmpty ? 0 : 1);
    pieces_.clear();
    if (!isEmpty)
        for (size_t b = 0; b < resolution.bands.size(); ++b) {
            const PrecinctBand& band = precinct.bands[b];
            for (int i = 0; i < band.columns * band.rows; ++i) {
                const int number = band.firstBlock + i;
                writeBlock(bits, bands_[c][r][k][b], i, number, packet.layer, passes[static_cast<size_t>(number)],
                           style);
            }
        }
    bits.finish();
    size_t length = 0;
    for (const auto& [data, size] : pieces_) {
        length += size;
        if (withBodies)
            out.insert(out.end(), data, data + size);
    }
    return length;
}

void PacketWriter::writeBlock(HeaderBitWriter& bits, BandState& band, int cell, int number, int layer, int passes,
                              int style)
{
    BlockState& state = states_[static_cast<size_t>(number)];
    const CodedBlock& block = (*blocks_)[static_cast<size_t>(number)];
    const bool contributes = passes > state.passes;
    if (state.passes > 0) {
        bits.bit(contributes ? 1 : 0);
    } else {
        band.inclusion.writeBelow(bits, cell, layer + 1);
        if (contributes) {
            band.zeroPlanes.writeBelow(bits, cell, block.zeroPlanes + 1);
            state.lengthBits = firstLengthBits;
        }
    }
    if (!contributes)
        return;
    writePassCount(bits, passes - state.passes);
    const std::vector<Portion> added = portions(block, style, state.passes, passes);
    int more = 0;
    for (const Portion& portion : added)
        more = std::max(more, static_cast<int>(std::bit_width(portion.end - portion.begin)) - state.lengthBits -
                                  extraLengthBits(portion.passes));
    for (int i = 0; i < more; ++i) bits.bit(1);
    bits.bit(0);
    state.lengthBits += more;
    for (const Portion& portion : added) {
        bits.bits(static_cast<int>(portion.end - portion.begin), state.lengthBits + extraLengthBits(portion.passes));
        pieces_.emplace_back(block.bytes.data() + portion.begin, portion.end - portion.begin);
    }
    state.passes = passes;
}

}  // namespace vekpix::jpeg2000
