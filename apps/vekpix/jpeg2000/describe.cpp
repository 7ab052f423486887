#include "jpeg2000/describe.h"

#include <array>
#include <ostream>
#include <utility>

#include "jpeg2000/codestream_reader.h"
#include "jpeg2000/jp2_boxes.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr std::array progressionNames = {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"};

const char* nameOf(Progression progression) { return progressionNames[static_cast<size_t>(progression)]; }

const char* nameOf(ColourSpace colours)
{
    switch (colours) {
        case ColourSpace::Srgb:
            return "sRGB";
        case ColourSpace::Grey:
            return "grey";
        case ColourSpace::Sycc:
            return "sYCC";
        default:
            return "not told";
    }
}

void describeBoxes(const Jp2File& jp2, std::span<const uint8_t> file, std::ostream& out)
{
    out << "colours: " << nameOf(jp2.colourSpace) << '\n';
    if (jp2.palette)
        out << "palette: " << jp2.palette->values.size() / jp2.palette->bits.size() << " entries of "
            << jp2.palette->bits.size() << " values\n";
    for (const ChannelUse& use : jp2.channels) {
        out << "  channel " << use.channel << ": ";
        if (use.isColour)
            out << "colour " << use.colour << '\n';
        else
            out << "no colour\n";
    }
    out << "code-stream: " << jp2.codestream.size() << " bytes, at byte " << jp2.codestream.data() - file.data()
        << '\n';
}

// Calls tell(first, last) for each run of equal elements.
template <class Element, class Tell>
void forEachRun(const std::vector<Element>& elements, const Tell& tell)
{
    for (size_t first = 0; first < elements.size();) {
        size_t last = first;
        while (last + 1 < elements.size() && elements[last + 1] == elements[first]) ++last;
        tell(first, last);
        first = last + 1;
    }
}

void tellComponents(size_t first, size_t last, std::ostream& out)
{
    if (first == last)
        out << "  component " << first << ": ";
    else
        out << "  components " << first << " to " << last << ": ";
}

void describeSize(const PictureSize& size, std::ostream& out)
{
    out << "picture: " << size.x1 - size.x0 << " x " << size.y1 - size.y0 << " at " << size.x0 << ", " << size.y0
        << "\ntiles: " << size.tilesWide() << " x " << size.tilesHigh() << " of " << size.tileWidth << " x "
        << size.tileHeight << " from " << size.tileX0 << ", " << size.tileY0 << "\nsamples:\n";
    forEachRun(size.components, [&](size_t first, size_t last) {
        const ComponentSize& component = size.components[first];
        tellComponents(first, last, out);
        out << component.bits << " bits" << (component.isSigned ? " with a sign" : "") << ", one for " << component.dx
            << " x " << component.dy << '\n';
    });
}

void describeBlockStyle(int style, std::ostream& out)
{
    constexpr std::array<std::pair<int, const char*>, 6> names = {{{styleBypass, "bypass"},
                                                                   {styleReset, "reset"},
                                                                   {styleTermAll, "termall"},
                                                                   {styleCausal, "causal"},
                                                                   {stylePredictableTermination, "pterm"},
                                                                   {styleSegmentationSymbols, "segsym"}}};
    for (const auto& [bit, name] : names)
        if ((style & bit) != 0)
            out << ", " << name;
}

void describePrecincts(const CodingStyle& style, std::ostream& out)
{
    const auto whole = [&](size_t r) { return style.precinctWidthLog[r] == 15 && style.precinctHeightLog[r] == 15; };
    const auto resolutions = static_cast<size_t>(style.levels) + 1;
    bool anySmall = false;
    for (size_t r = 0; r < resolutions; ++r) anySmall |= !whole(r);
    if (!anySmall)
        return;
    out << "    precincts";
    for (size_t r = 0; r < resolutions; ++r)
        out << (r > 0 ? ", " : " ") << (1 << style.precinctWidthLog[r]) << " x " << (1 << style.precinctHeightLog[r]);
    out << '\n';
}

void describeComponents(const TileParameters& parameters, std::ostream& out)
{
    forEachRun(parameters.components, [&](size_t first, size_t last) {
        const ComponentParameters& component = parameters.components[first];
        const CodingStyle& style = component.style;
        tellComponents(first, last, out);
        out << (style.reversible ? "5/3 reversible, " : "9/7 irreversible, ") << style.levels << " levels, blocks of "
            << (1 << style.blockWidthLog) << " x " << (1 << style.blockHeightLog);
        describeBlockStyle(style.blockStyle, out);
        out << '\n';
        describePrecincts(style, out);
        constexpr std::array kinds = {"exponents alone", "steps derived from the first", "a step for each band"};
        out << "    quantisation: " << kinds[static_cast<size_t>(component.quantization.kind)] << ", "
            << component.quantization.guardBits << " guard bits\n";
        if (component.regionShift > 0)
            out << "    region of interest: " << component.regionShift << " planes up\n";
    });
}

void describeParameters(const TileParameters& parameters, std::ostream& out)
{
    out << "coding: " << nameOf(parameters.progression) << ", " << parameters.layers
        << (parameters.layers == 1 ? " layer" : " layers")
        << (parameters.componentTransform ? ", component transform" : "")
        << (parameters.packetMarkers ? ", SOP markers" : "") << (parameters.headerMarkers ? ", EPH markers" : "")
        << '\n';
    describeComponents(parameters, out);
    for (const ProgressionRange& range : parameters.changes)
        out << "  " << nameOf(range.order) << " for resolutions " << range.firstResolution << " to "
            << range.endResolution - 1 << ", components " << range.firstComponent << " to " << range.endComponent - 1
            << ", layers up to " << range.endLayer - 1 << '\n';
}

void describeTile(const Codestream& codestream, int tile, std::ostream& out)
{
    const TilePackets& packets = codestream.tilePackets(tile);
    out << "tile " << tile << ": ";
    if (packets.parts.empty()) {
        out << "missing\n";
        return;
    }
    size_t bytes = packets.headers.size();
    for (const auto& part : packets.parts) bytes += part.size();
    out << bytes << " bytes in " << packets.parts.size() << (packets.parts.size() == 1 ? " tile-part" : " tile-parts")
        << (packets.headersApart ? ", packet headers apart" : "") << '\n';
    const TileParameters parameters = codestream.tileParameters(tile);
    if (parameters != codestream.parameters())
        describeParameters(parameters, out);
}

}  // namespace

void describe(std::span<const uint8_t> file, std::ostream& out)
{
    out << (isJp2(file) ? "JP2, " : "JPEG 2000 code-stream, ") << file.size() << " bytes\n";
    const Jp2File jp2 = readJp2(file);
    if (isJp2(file))
        describeBoxes(jp2, file, out);
    const Codestream codestream(jp2.codestream);
    describeSize(codestream.size(), out);
    describeParameters(codestream.parameters(), out);
    for (int tile = 0; tile < codestream.size().tileCount(); ++tile) describeTile(codestream, tile, out);
}

}  // namespace vekpix::jpeg2000
